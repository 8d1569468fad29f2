// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "frameworks/plugincore/instance/GestureReport.h"
#include "frameworks/plugincore/instance/HistoryKeeper.h"
#include "frameworks/plugincore/instance/StateKeeper.h"

#include <functional>
#include <optional>

/// The undo history of an instance, and history files, as the host asks for them by messages.
///
/// Threads: all under the UI lock. [ui]
class HistoryMessages {
public:
    /// All that is referred to outlives the messages.
    struct Setup {
        HistoryKeeper& history;
        Util::HistoryDelegate& instance;
        DSP::DSPSet& set;
        StateKeeper& state;
        GestureReport& gestures;
        std::function<void()> onChanged; ///< values have been set otherwise than by the history
    };
    explicit HistoryMessages(Setup newSetup);

    /// Does what a record asks for, and answers in it, by a code of PluginCoreResult when the
    /// product has no history or the request is none.
    uint32_t Answer(HistoryRecord& record);

private:
    const HistoryModel& GetListed(const HistoryManager& history) const;
    void List(HistoryManager& history, HistoryRecord& record);
    void Open(const HistoryManager& history, HistoryRecord& record);
    uint32_t Describe(const HistoryManager& history, HistoryRecord& record) const;
    uint32_t GoTo(HistoryManager& history, HistoryRecord& record);
    void ResetAll(HistoryRecord& record);

    const Setup setup;
    std::optional<HistoryModel> opened; // of a file, while that is what was listed last
};
