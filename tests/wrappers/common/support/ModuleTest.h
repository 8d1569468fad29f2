// SPDX-License-Identifier: ISC
#pragma once

#include "tests/support/TemporaryFolder.h"
#include "wrappers/common/Instance.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

/// Takes no notice of what an instance reports.
class IdleListener final : public Wrapper::Listener {
public:
    void OnLatencyChanged(Wrapper::Side /*side*/, uint32_t /*samples*/) noexcept override {}
    void OnGestureBegun(uint32_t /*index*/) noexcept override {}
    void OnParameterChanged(uint32_t /*index*/, float /*value*/) noexcept override {}
    void OnGestureEnded(uint32_t /*index*/) noexcept override {}
    void OnStateChanged() noexcept override {}
};

/// Tests that load a module find no settings of the user, and may choose the module.
class ModuleTest : public testing::Test {
protected:
    ~ModuleTest() override
    {
        unsetenv("PUFFGUARD_MODULE");
        unsetenv("FAKE_REFUSES");
    }

    /// The fake module answers 6 to this selector from now on, and the log is empty.
    void Refuse(uint32_t selector)
    {
        setenv("FAKE_REFUSES", std::to_string(selector).c_str(), 1);
        logged.clear();
    }

    std::shared_ptr<const Wrapper::Module> Load(const std::string& file)
    {
        setenv("PUFFGUARD_MODULE", file.c_str(), 1);
        return Wrapper::Module::Load(log);
    }

    std::unique_ptr<Wrapper::Instance>
    Create(const std::string& file, uint32_t channels = 2, double sampleRate = 48000)
    {
        const Wrapper::Setup setup = {
            Wrapper::Format::Other, Wrapper::Use::Live, sampleRate, channels};
        auto module = Load(file);
        return module ? Wrapper::Instance::Create(module, setup, listener, log) : nullptr;
    }

    Support::UserFolders folders;
    IdleListener listener;
    std::vector<std::string> logged;
    Wrapper::LogFunction log = [this](const std::string& text) { logged.push_back(text); };
};
