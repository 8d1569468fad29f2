// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "frameworks/qobase/util/Bytes.h"

#include <algorithm>

namespace Support {

/// One parameter of each type that sessions and presets hold, one that they don't, and bytes.
class SavedElement final : public DSP::ElementDispatcher {
public:
    enum : uint32_t { Amount, Mode, On, Taste };

    explicit SavedElement(DSP::ElementHost& owner, const char* ownName = "Puffguard")
        : ElementDispatcher({owner, ownName, 48000.0F, 1})
    {
        RegisterFloatParam(Amount,
                           {.name = "Amount",
                            .range = {0.0F, 10.0F},
                            .defaultValue = 5.0F,
                            .target = &amount,
                            .onUIChange = [this](float) { ++changes; },
                            .info = {.units = "dB"}});
        RegisterEnumParam(
            Mode, {{.name = "Mode", .range = {1, 3}, .defaultValue = 2, .target = &mode}, {}});
        RegisterBoolParam(On, {.name = "On", .target = &isOn});
        RegisterFloatParam(Taste,
                           {.name = "Taste",
                            .range = {0.0F, 1.0F},
                            .target = &taste,
                            .info = {DSP::Persistence::Persistent, "", false}});
        FinaliseParams();
    }

    uint32_t GetParamVersion() const override { return 7; }
    bool HasExtraBytes() const override { return hasExtraBytes; }
    uint32_t GetExtraBytesCount() const override
    {
        return static_cast<uint32_t>(extraBytes.size());
    }
    void WriteExtraBytes(std::span<uint8_t> bytes) const override
    {
        std::copy(extraBytes.begin(), extraBytes.end(), bytes.begin());
    }
    void ReadExtraBytes(std::span<const uint8_t> bytes) override
    {
        extraBytes.assign(bytes.begin(), bytes.end());
    }
    void ClearExtraBytes() override { extraBytes.clear(); }

    Util::Bytes extraBytes;
    bool hasExtraBytes = true;
    int changes = 0; ///< of "Amount" that are reported to the host

private:
    float amount = 0.0F;
    uint32_t mode = 0;
    bool isOn = false;
    float taste = 0.0F;
};

} // namespace Support
