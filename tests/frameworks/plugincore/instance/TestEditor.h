// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/Plugin.h"

#include <atomic>
#include <functional>
#include <string>

/// Writes down what it is told.
class TestEditor final : public Editor {
public:
    explicit TestEditor(std::string& newEvents, uint64_t newWindow = 0)
        : events(newEvents)
        , window(newWindow)
    {
    }
    TestEditor(const TestEditor&) = delete;
    TestEditor& operator=(const TestEditor&) = delete;
    ~TestEditor() override { events += "gone "; }
    uint64_t GetNativeWindow() const override { return window; }
    void BeginLoad() override { events += "begin "; }
    void EndLoad() override { events += "end "; }
    void ParamChanged(const String& element, const String& param) override
    {
        events += "editor " + element.ToStdString() + "." + param.ToStdString() + "; ";
    }
    void StateChanged() override { events += "state "; }
    void CloseForFormat() override
    {
        events += "close ";
        if (onClose) {
            onClose();
        }
    }
    void ReopenAfterFormat() override { events += "reopen "; }
    void DetachControllers() override { events += "detach "; }
    void AttachControllers() override
    {
        events += "attach ";
        attached = true;
    }

    std::function<void()> onClose;
    std::atomic<bool> attached = false;

private:
    std::string& events;
    const uint64_t window;
};
