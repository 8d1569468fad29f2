// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/clap/Abi.h"
#include "wrappers/common/Instance.h"
#include "wrappers/common/LastWords.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace Clap {

/// The host's number of a parameter. It follows from the identifier, so that it outlives a new
/// order of the parameters: sessions and automation hold it.
clap_id MakeParameterId(std::string_view identifier);

/// The parameters of an instance as the host numbers and counts them, in their own units, and the
/// value that was last set for each, on whichever side.
class Parameters {
public:
    /// `newInstance` lives longer.
    explicit Parameters(Wrapper::Instance& newInstance);

    uint32_t Count() const { return static_cast<uint32_t>(ids.size()); }
    std::optional<uint32_t> Find(clap_id id) const noexcept; ///< [any]
    clap_id GetId(uint32_t index) const noexcept { return ids[index]; }
    bool Describe(uint32_t index, clap_param_info_t& info) const;
    std::optional<uint32_t> GetBypass() const { return instance.GetBypassIndex(); }

    // Of an index in range.
    double GetValue(uint32_t index) const noexcept { return values[index].load(); } ///< [any]
    /// Cut to the place and terminated; false when there is none, or no such value.
    bool ToText(uint32_t index, double value, std::span<char> text) const;
    std::optional<double> FromText(uint32_t index, std::string_view text) const;

    /// What the host sets, on the thread of `side`. What is no number changes nothing.
    void Set(Wrapper::Side side, uint32_t index, double value) noexcept;
    /// What the UI side has set by itself. [any]
    void Keep(uint32_t index, float normalised) noexcept;
    /// False, and nothing changed, when the bytes are no session. [main]
    bool Load(std::span<const uint8_t> session);
    /// Takes over the instance's values. [main]
    void Refresh() noexcept;

    /// True when a block has to begin before Restate(), which gives the host the last word again.
    /// [process]
    bool MustBeginBlock() noexcept { return words.MustBeginBlock(); }
    void Restate() noexcept; ///< [process]

private:
    const Wrapper::Parameter& At(uint32_t index) const noexcept
    {
        return instance.GetParameters()[index];
    }
    void TakeOver(uint32_t index, float normalised) noexcept;

    Wrapper::Instance& instance;
    std::vector<clap_id> ids;
    std::vector<std::atomic<double>> values;
    Wrapper::LastWords words;
};

} // namespace Clap
