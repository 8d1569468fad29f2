// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/product/PluginDefinition.h"
#include "frameworks/plugincore/ui/model/historyfile/HistoryDelegate.h"
#include "frameworks/plugincore/ui/model/historyfile/HistoryManager.h"
#include "frameworks/qobase/util/CriticalSection.h"
#include "frameworks/qobase/util/Uuid.h"

#include <memory>

/// The undo history of an instance, if the product has one, and the instance's own history file.
///
/// Threads: all under the UI lock. [ui]
class HistoryKeeper {
public:
    /// An offline instance has no file. `newDefinition` outlives the keeper.
    HistoryKeeper(const PluginDefinition& newDefinition, bool newIsOffline);

    /// The history, which may be null, from now on. [setup]
    void Adopt(std::unique_ptr<HistoryManager> newHistory) { history = std::move(newHistory); }
    /// Null when the product has no history.
    HistoryManager* Get() const { return history.get(); }

    /// The user is about to change something: what was before is the first state to go back to. A
    /// failure is only traced, here and in the next: what the user does is done all the same.
    void onActionBegins() noexcept;
    /// An action of the user's is finished: takes down the state of now.
    void AddEntry(const String& text) noexcept;
    /// An editor begins to show, or the last one has gone.
    void onEditorAttached(bool isOpen);
    void onStateChanged();
    void onIdle();
    /// Brings the history's file up to date.
    void Flush();
    /// The same as the last thing that an instance does: takes the lock, and only traces a failure.
    void FlushAtEnd(Util::CriticalSection& uiLock) noexcept;

    /// Full path of the instance's own file; its folder is made when missing. Empty when no file is
    /// to be touched. `session` counts for products that keep a file for each session.
    String MakeFilePath(const Util::Uuid& session) const;
    /// Writes the model to the file at `path`: whole, or not at all. An empty path: does nothing.
    Util::Expected<void>
    Save(Util::HistoryDelegate& instance, const String& path, const HistoryModel& model) const;
    /// Fills the model from there, or with the present state when the path is empty. Throws as
    /// HistoryDelegate::LoadHistory().
    void Load(Util::HistoryDelegate& instance, const String& path, HistoryModel& model) const;

private:
    const PluginDefinition& definition;
    const bool isOffline;
    std::unique_ptr<HistoryManager> history; // may be null
};
