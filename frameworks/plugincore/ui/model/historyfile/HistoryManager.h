// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

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

    /// An editor shows from now on: the present state is where its user begins.
    virtual void onEditorOpened() = 0;
    /// The state changed, by whatever way.
    virtual void onStateChanged() = 0;
    /// Ten times a second or so.
    virtual void onIdle() = 0;
};
