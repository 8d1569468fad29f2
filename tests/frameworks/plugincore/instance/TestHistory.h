// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/ui/model/historyfile/HistoryManager.h"

#include <functional>
#include <utility>

/// A history that holds nothing, and passes on that the state has changed.
class TestHistory final : public HistoryManager {
public:
    explicit TestHistory(std::function<void()> newOnChange)
        : onChange(std::move(newOnChange))
    {
    }
    bool AddSnapshot(const String& /*label*/) override { return true; }
    void Flush() override {}
    void onUserBegins() override {}
    void onStateChanged() override { onChange(); }
    void onIdle() override {}
    const HistoryModel& GetModel() const override { return model; }
    std::optional<uint32_t> GetSelectedRow() const override { return std::nullopt; }
    bool SelectRow(uint32_t /*row*/) override { return false; }
    bool StepBack() override { return false; }
    bool StepForward() override { return false; }
    Util::Expected<HistoryModel> ReadFile(const String& /*path*/) const override { return model; }

private:
    const std::function<void()> onChange;
    HistoryModel model;
};
