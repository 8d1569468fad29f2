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
        RegisterFloatParam(Level,
                           {.name = "Level",
                            .range = {-10.0F, 10.0F},
                            .defaultValue = 1.0F,
                            .target = &values[0],
                            .onUIChange = [this](float value) { Note(value); },
                            .info = {Persistence::Session, "dB", true}});
        RegisterFloatParam(Size,
                           {.name = "Size",
                            .range = {0.0F, 100.0F},
                            .defaultValue = 20.0F,
                            .target = &values[1],
                            .info = {Persistence::Persistent, "", false}});
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
    void Note(float value) { log.push_back("ui " + std::to_string(static_cast<int>(value))); }
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
        RegisterBoolParam(
            index,
            {.name = called, .defaultValue = true, .target = target, .info = {kept, "", false}});
    }

    float values[2] = {};
    uint32_t modes[2] = {};
    bool switches[2] = {};
};
