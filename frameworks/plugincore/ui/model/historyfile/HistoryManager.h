// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/ui/model/historyfile/HistoryModel.h"
#include "frameworks/qobase/util/Expected.h"

/// An instance's undo history, as the instance sees it. All calls: [ui], under the UI lock.
class HistoryManager {
public:
    HistoryManager() = default;
    HistoryManager(const HistoryManager&) = delete;
    HistoryManager& operator=(const HistoryManager&) = delete;
    virtual ~HistoryManager() = default;

    /// Takes down the present state. False when it can't be had; the history is then as it was.
    virtual bool AddSnapshot(const String& label) = 0;
    /// Brings the file up to date with the history, also when only the state has changed since it
    /// was written here. A failure is traced, and tried again later.
    virtual void Flush() = 0;

    /// An editor shows from now on, or the user is about to change something: the present state is
    /// where they begin. The first time, the history is read from its file.
    virtual void onUserBegins() = 0;
    /// The state changed, by whatever way.
    virtual void onStateChanged() = 0;
    /// Ten times a second or so.
    virtual void onIdle() = 0;

    /// Empty before onUserBegins().
    virtual const HistoryModel& GetModel() const = 0;
    /// The snapshot that the user stands at; empty while there are none.
    virtual std::optional<uint32_t> GetSelectedRow() const = 0;
    /// Restores the snapshot of a row, which is then the selected one. A new snapshot takes the
    /// place of all behind it.
    virtual bool SelectRow(uint32_t row) = 0;
    /// To the row before or behind the selected one; false at the end of the list.
    virtual bool StepBack() = 0;
    virtual bool StepForward() = 0;

    /// What any history file of this product holds, whatever state it was written beside; the
    /// history stays as it is. A failure for one that is damaged, or that is none.
    virtual Util::Expected<HistoryModel> ReadFile(const String& path) const = 0;
};
