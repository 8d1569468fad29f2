// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/ui/model/historyfile/HistoryFile.h"
#include "frameworks/plugincore/ui/model/historyfile/HistoryManager.h"
#include "frameworks/qobase/util/FileLock.h"

#include <functional>

namespace UI::Dialog {

/// The form of the file that a dialog's history is kept in.
extern const HistoryFileForm DialogHistoryForm;

/// Shows the list of a history. It is notified, and doesn't answer by a call.
class HistoryView {
public:
    virtual ~HistoryView() = default;
    /// One row a snapshot, oldest first, in place of all that were there.
    virtual void SetRows(const std::vector<String>& labels) = 0;
    virtual void SelectRow(uint32_t row) = 0;
    virtual void ScrollToRow(uint32_t row) = 0;
};

/// What a history dialog does, apart from its looks: keeps the snapshots of an instance, steps
/// through them, and keeps four of them in slots.
///
/// The list outlives the dialog; it is read from its file when an editor opens, or when the user
/// first changes something, and written back a while after its last change and by Flush(). All
/// calls: [ui], under the UI lock.
class HistoryLogic final : public HistoryManager {
public:
    /// Place in the list of depths that the user wants: 50, 100, 500, no limit.
    using DepthIndexSource = std::function<uint32_t()>;

    /// The file lies beside the instance's own, named by the product's short name. `newDelegate`
    /// must outlive this object; `newDepthIndex` is asked before each snapshot.
    HistoryLogic(Util::HistoryDelegate& newDelegate,
                 const String& shortName,
                 DepthIndexSource newDepthIndex);

    // HistoryManager
    bool AddSnapshot(const String& label) override;
    void Flush() override;
    void onUserBegins() override { EnsureLoaded(); }
    void onStateChanged() override;
    void onIdle() override;
    const HistoryModel& GetModel() const override { return model; }
    std::optional<uint32_t> GetSelectedRow() const override { return selectedRow; }
    bool SelectRow(uint32_t row) override;
    bool StepBack() override;
    bool StepForward() override;
    Util::Expected<HistoryModel> ReadFile(const String& path) const override;

    /// Fills a list and keeps it filled; null when it goes. The view must outlive its stay here.
    void SetView(HistoryView* newView);
    /// Whether the list scrolls to a new snapshot; it does at first.
    void SetFollow(bool newFollow) { follow = newFollow; }

    /// Gives the instance the state that a slot refers to. False when there is none, or it is no
    /// state. The list stays as it is.
    bool Restore(const std::optional<uint32_t>& slotRef);
    /// Slots are numbered from 0; false for one that there isn't, or with nothing to store or
    /// recall.
    bool StoreSlot(uint32_t slot);
    bool RecallSlot(uint32_t slot);

    /// Deletes the file and begins anew with the present state, whether or not the file could be
    /// deleted.
    Util::Expected<void> Reset();

    /// Writes the file. One that couldn't be read is kept under its name with ".bak" at the end, or
    /// ".bak-2" and so on; a sound one, which only is of another state, in the place of the last
    /// such.
    Util::Expected<void> Save();

private:
    String GetPath() const;
    void EnsureLoaded();
    void DropLaterSnapshots();
    void DropOldestSnapshots();
    void Rebuild();
    void FillView();
    void MarkUnsaved();
    Util::Expected<void> SetAside(const String& path) const;
    bool IsFileStale();

    Util::HistoryDelegate& delegate;
    const String fileName;
    const HistoryFile file;
    const DepthIndexSource depthIndex;
    HistoryModel model;
    HistoryView* view = nullptr;
    std::optional<uint32_t> selectedRow; // empty while there are no rows
    bool follow = true;
    bool loaded = false;
    bool fileIsUnreadable = false;
    bool unsaved = false;
    uint32_t quietTicks = 0;      // idle calls since the last change; counts while unsaved
    uint32_t unsavedTicks = 0;    // idle calls since the first change that isn't saved
    Util::FileIdentity knownFile; // that was loaded or saved here last, or that couldn't be read
    uint32_t savedStateSize = 0;
};

} // namespace UI::Dialog
