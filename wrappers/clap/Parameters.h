// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/clap/Abi.h"
#include "wrappers/common/HostParameters.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace Clap {

/// The parameters of an instance as the host numbers and counts them, in their own units, and the
/// value that was last set for each, on whichever side.
class Parameters {
public:
    /// `newInstance` lives longer.
    explicit Parameters(Wrapper::Instance& newInstance);

    uint32_t Count() const noexcept { return parameters.Count(); }
    std::optional<uint32_t> Find(clap_id id) const noexcept ///< [any]
    {
        return parameters.Find(id);
    }
    clap_id GetId(uint32_t index) const noexcept { return parameters.GetIds()[index]; }
    bool Describe(uint32_t index, clap_param_info_t& info) const;

    // Of an index in range.
    double GetValue(uint32_t index) const noexcept { return values[index].load(); } ///< [any]
    /// Cut to the place and terminated; false when there is none, or no such value.
    bool ToText(uint32_t index, double value, std::span<char> text) const;
    std::optional<double> FromText(uint32_t index, std::string_view text) const;

    /// What the host sets, on the thread of `side`. What is no number changes nothing.
    void Set(Wrapper::Side side, uint32_t index, double value) noexcept;
    /// What the UI side has set by itself. [any]
    void Keep(uint32_t index, float normalised) noexcept;
    /// Empty when there is none. [main]
    std::vector<uint8_t> Save() { return parameters.Save(); }
    /// False, and nothing changed, when the bytes are no session. [main]
    bool Load(std::span<const uint8_t> session);
    /// Takes over the instance's values. [main]
    void Refresh();

    /// First of all in a block. [process]
    void BeginBlock(Wrapper::HostBlock& block) noexcept { parameters.BeginBlock(block); }

private:
    const Wrapper::Parameter& At(uint32_t index) const noexcept { return parameters.At(index); }
    void TakeOver(uint32_t index, float normalised) noexcept;

    Wrapper::HostParameters parameters;
    std::vector<std::atomic<double>> values; // by parameter, in its own unit
};

} // namespace Clap
