// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/ui/model/historyfile/HistoryDelegate.h"
#include "frameworks/plugincore/ui/model/historyfile/HistoryModel.h"

#include <algorithm>
#include <new>

namespace Support {

/// An instance whose state is the bytes that a test puts there.
class TestHistoryDelegate final : public Util::HistoryDelegate {
public:
    uint32_t GetStateSize() override
    {
        if (failures > 0) {
            --failures;
            throw std::bad_alloc();
        }
        return static_cast<uint32_t>(state.size());
    }
    uint32_t GetStateVersion() const override { return 1; }
    bool GetState(uint32_t size, void* buffer) override
    {
        if (refusals > 0) {
            --refusals;
            return false;
        }
        std::copy_n(state.begin(), size, static_cast<uint8_t*>(buffer));
        return true;
    }
    bool SetState(uint32_t size, const void* buffer, uint32_t version) override
    {
        const auto* first = static_cast<const uint8_t*>(buffer);
        if (version != 1 || size == 0) {
            return false;
        }
        state.assign(first, first + size);
        return true;
    }
    bool GetStateForFile(uint32_t size, void* buffer) override { return GetState(size, buffer); }
    void GetHistoryFilePath(String& out) override { out = path; }
    void StateChanged() override { ++changes; }
    Util::Expected<void> SaveHistory(const HistoryModel& /*model*/) override { return {}; }
    void LoadHistory(HistoryModel& /*model*/) override {}

    Util::Bytes state = {1, 2, 3};
    String path;
    int changes = 0;  // told of
    int refusals = 0; // of the state, from now on
    int failures = 0; // for want of memory, from now on
};

} // namespace Support
