// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "frameworks/qobase/util/Bytes.h"

#include <algorithm>
#include <functional>
#include <memory>

namespace Support {

/// Parameters of each type and persistence, and bytes.
class SavedElement final : public DSP::ElementDispatcher {
public:
    enum : uint32_t { Amount, Mode, On, Size, Colour, Shown, Held };

    explicit SavedElement(DSP::ElementHost& owner, const char* ownName = "Puffguard")
        : ElementDispatcher({owner, ownName, 48000.0F, 1})
    {
        using DSP::Persistence;
        RegisterFloatParam(Amount,
                           {.name = "Amount",
                            .range = {0.0F, 10.0F},
                            .defaultValue = 5.0F,
                            .target = &values[0],
                            .onUIChange = [this](float value) { onChange(value); },
                            .info = {Persistence::Session, "dB", true}});
        RegisterFloatParam(Size,
                           {.name = "Size",
                            .range = {0.0F, 100.0F},
                            .defaultValue = 20.0F,
                            .target = &values[1],
                            .info = {Persistence::Persistent, "", false}});
        RegisterEnum(Mode, "Mode", &modes[0], Persistence::Session);
        RegisterEnum(Colour, "Colour", &modes[1], Persistence::Persistent);
        RegisterSwitch(On, "On", &switches[0], Persistence::Session);
        RegisterSwitch(Shown, "Shown", &switches[1], Persistence::Persistent);
        RegisterSwitch(Held, "Held", &switches[2], Persistence::Transient);
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
    /// Takes what "Amount" is changed to on the UI side.
    std::function<void(float)> onChange = [this](float) { ++changes; };
    /// Makes its controllers instead of the host, when set.
    std::function<std::shared_ptr<Controller::ControllerSet>()> makeSet;

protected:
    std::shared_ptr<Controller::ControllerSet> CreateControllerSet() override
    {
        return makeSet ? makeSet() : ElementDispatcher::CreateControllerSet();
    }

private:
    void RegisterEnum(uint32_t index, const char* called, uint32_t* target, DSP::Persistence kept)
    {
        RegisterEnumParam(index,
                          {{.name = called,
                            .range = {1, 3},
                            .defaultValue = 2,
                            .target = target,
                            .info = {kept, "", false}},
                           {"one", "two", "three"}});
    }
    void RegisterSwitch(uint32_t index, const char* called, bool* target, DSP::Persistence kept)
    {
        RegisterBoolParam(index, {.name = called, .target = target, .info = {kept, "", false}});
    }

    float values[2] = {};
    uint32_t modes[2] = {};
    bool switches[3] = {};
};

} // namespace Support
