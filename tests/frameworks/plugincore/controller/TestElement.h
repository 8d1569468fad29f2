// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"

#include <functional>
#include <string>
#include <vector>

/// An element with a parameter of each type and of each persistence that matters here.
class TestElement final : public DSP::ElementDispatcher {
public:
    enum Param : uint32_t { Level, Mode, Active, Size, Colour, Shown };

    explicit TestElement(DSP::ElementHost& owner)
        : ElementDispatcher({owner, "Test", 48000.0F, 0})
    {
        using DSP::Persistence;
        DSP::ParamRegistration<float> level;
        level.name = "Level";
        level.range = {-10.0F, 10.0F};
        level.defaultValue = 1.0F;
        level.target = &values[0];
        level.info = {Persistence::Session, "dB", true};
        level.onUIChange = [this](float value) {
            log.push_back("ui " + std::to_string(static_cast<int>(value)));
        };
        RegisterFloatParam(Level, level);
        DSP::ParamRegistration<float> size;
        size.name = "Size";
        size.range = {0.0F, 100.0F};
        size.defaultValue = 20.0F;
        size.target = &values[1];
        size.info.persistence = Persistence::Persistent;
        RegisterFloatParam(Size, size);
        RegisterEnum(Mode, "Mode", &modes[0], Persistence::Session);
        RegisterEnum(Colour, "Colour", &modes[1], Persistence::Persistent);
        RegisterSwitch(Active, "Active", &switches[0], Persistence::Transient);
        RegisterSwitch(Shown, "Shown", &switches[1], Persistence::Persistent);
        FinaliseParams();
    }

    /// Instead of the host's, when set.
    std::function<std::shared_ptr<Controller::ControllerSet>()> makeSet;
    std::vector<std::string> log; ///< "ui VALUE" for each onUIChange of "Level"

protected:
    std::shared_ptr<Controller::ControllerSet> CreateControllerSet() override
    {
        return makeSet ? makeSet() : ElementDispatcher::CreateControllerSet();
    }

private:
    void RegisterEnum(uint32_t index,
                      const char* paramName,
                      uint32_t* target,
                      DSP::Persistence persistence)
    {
        DSP::EnumRegistration registration;
        registration.name = paramName;
        registration.range = {1, 3};
        registration.defaultValue = 2;
        registration.target = target;
        registration.labels = {"one", "two", "three"};
        registration.info.persistence = persistence;
        RegisterEnumParam(index, registration);
    }
    void RegisterSwitch(uint32_t index,
                        const char* paramName,
                        bool* target,
                        DSP::Persistence persistence)
    {
        DSP::ParamRegistration<bool> registration;
        registration.name = paramName;
        registration.defaultValue = true;
        registration.target = target;
        registration.info.persistence = persistence;
        RegisterBoolParam(index, registration);
    }

    float values[2] = {};
    uint32_t modes[2] = {};
    bool switches[2] = {};
};
