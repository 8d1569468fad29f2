// SPDX-License-Identifier: ISC
#include "restoration/ui/dialog/historyfile/HistoryLogic.h"

#include "frameworks/plugincore/ui/model/historyfile/InvalidHistoryFile.h"
#include "frameworks/qobase/util/DataStreamIO.h"
#include "frameworks/qobase/util/DebugTrace.h"
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/Path.h"

#include <algorithm>
#include <array>
#include <utility>

namespace UI::Dialog {

const HistoryFileForm DialogHistoryForm = {
    .magic = 0x3A2B11,
    .hasTotalSize = true,
    .hasWideLength = false,
    .initialLabel = "Initial State",
    .badSlotText = "Encountered invalid preset index %1 at byte %2",
};

namespace {

// Snapshots by place in the user's setting; 0 is no limit.
constexpr std::array<uint32_t, 4> Depths = {50, 100, 500, 0};

// A row of gestures makes one write of the file.
constexpr uint32_t QuietTicksBeforeSaving = 20;
// Where automation never lets the state rest.
constexpr uint32_t LongestTicksBeforeSaving = 300;

// A longer text couldn't be read back from the file.
constexpr uint32_t LongestLabel = 200000; // bytes

} // namespace

HistoryLogic::HistoryLogic(Util::HistoryDelegate& newDelegate,
                           const String& shortName,
                           DepthIndexSource newDepthIndex)
    : delegate(newDelegate)
    , fileName(String("Qo%1.hst").arg(shortName))
    , file(DialogHistoryForm, newDelegate)
    , depthIndex(std::move(newDepthIndex))
{
}

String HistoryLogic::GetPath() const
{
    String path;
    delegate.GetHistoryFilePath(path);
    return path.IsEmpty() ? path : Util::Path::Join(Util::Path::GetFolder(path), fileName);
}

void HistoryLogic::EnsureLoaded()
{
    if (loaded) {
        return;
    }
    loaded = true;
    const String path = GetPath();
    knownFile = Util::GetFileIdentity(path);
    fileIsUnreadable = true; // also when memory runs out below, and nothing here catches that
    try {
        if (path.IsEmpty()) {
            file.MakeInitialState(model);
        } else {
            file.Load(path, model);
        }
        fileIsUnreadable = false;
    } catch (const ::Exception::Base& fault) { // no history of ours, or unreadable
        Util::DebugTrace(fault.Describe());
        file.MakeInitialState(model);
    }
    savedStateSize = delegate.GetStateSize();
    Rebuild();
}

bool HistoryLogic::AddSnapshot(const String& label)
{
    EnsureLoaded();
    // Ahead of all changes, so that a failure leaves the list as it was.
    auto snapshot = TakeSnapshot(delegate, label.Left(LongestLabel));
    if (!snapshot) {
        return false;
    }
    DropLaterSnapshots();
    DropOldestSnapshots();
    model.snapshots.push_back(std::move(*snapshot));
    MarkUnsaved();
    Rebuild();
    return true;
}

void HistoryLogic::DropLaterSnapshots()
{
    const uint32_t kept = selectedRow ? *selectedRow + 1 : 0;
    model.snapshots.resize(kept);
    // Also those that a damaged file or a reset left without a snapshot: what comes now would fall
    // into their place, and they would recall a state that nobody stored there.
    for (auto& slot : model.slots) {
        if (slot && *slot >= kept) {
            slot.reset();
        }
    }
}

void HistoryLogic::DropOldestSnapshots()
{
    const uint32_t limit = Depths[std::min<size_t>(depthIndex(), Depths.size() - 1)];
    while (limit > 1 && model.snapshots.size() >= limit) {
        model.snapshots.erase(model.snapshots.begin());
        for (auto& slot : model.slots) {
            if (slot) {
                slot = *slot == 0 ? std::nullopt : std::optional(*slot - 1);
            }
        }
    }
}

void HistoryLogic::Rebuild()
{
    selectedRow.reset();
    if (!model.snapshots.empty()) {
        selectedRow = static_cast<uint32_t>(model.snapshots.size() - 1);
    }
    FillView();
}

void HistoryLogic::FillView()
{
    if (view == nullptr) {
        return;
    }
    std::vector<String> labels;
    labels.reserve(model.snapshots.size());
    for (const Snapshot& snapshot : model.snapshots) {
        labels.push_back(snapshot.label);
    }
    view->SetRows(labels);
    if (selectedRow) {
        view->SelectRow(*selectedRow);
        if (follow) {
            view->ScrollToRow(*selectedRow);
        }
    }
}

void HistoryLogic::SetView(HistoryView* newView)
{
    EnsureLoaded();
    view = newView;
    // The selected row stays: the instance may stand at an earlier state since the last time.
    FillView();
}

bool HistoryLogic::Restore(const std::optional<uint32_t>& slotRef)
{
    if (!slotRef || *slotRef >= model.snapshots.size()) {
        return false;
    }
    const Util::Bytes& bytes = model.snapshots[*slotRef].bytes;
    const auto size = static_cast<uint32_t>(bytes.size());
    const bool restored = delegate.SetState(size, bytes.data(), delegate.GetStateVersion());
    delegate.StateChanged();
    return restored;
}

bool HistoryLogic::SelectRow(uint32_t row)
{
    const bool restored = Restore(row);
    if (restored) {
        selectedRow = row;
    }
    if (view != nullptr && selectedRow) {
        view->SelectRow(*selectedRow); // also when the row of the user's choice can't be had
    }
    return restored;
}

bool HistoryLogic::StepBack()
{
    EnsureLoaded();
    return selectedRow && *selectedRow > 0 && SelectRow(*selectedRow - 1);
}

bool HistoryLogic::StepForward()
{
    EnsureLoaded();
    return selectedRow && SelectRow(*selectedRow + 1);
}

Util::Expected<HistoryModel> HistoryLogic::ReadFile(const String& path) const
{
    const std::array forms = {&DialogHistoryForm, &FrameworkHistoryForm};
    return ReadHistoryFile(path, forms, delegate.GetStateVersion());
}

bool HistoryLogic::StoreSlot(uint32_t slot)
{
    EnsureLoaded();
    if (slot >= model.slots.size() || !selectedRow) {
        return false;
    }
    model.slots[slot] = selectedRow;
    MarkUnsaved();
    return true;
}

bool HistoryLogic::RecallSlot(uint32_t slot)
{
    EnsureLoaded();
    return slot < model.slots.size() && Restore(model.slots[slot]);
}

Util::Expected<void> HistoryLogic::Reset()
{
    loaded = true;
    unsaved = false;
    fileIsUnreadable = false;
    knownFile = {};
    file.MakeInitialState(model);
    savedStateSize = delegate.GetStateSize();
    Rebuild();
    Util::File stored(GetPath());
    return stored.GetPath().IsEmpty() || !stored.Exists() ? Util::Expected<void>()
                                                          : stored.Remove();
}

Util::Expected<void> HistoryLogic::SetAside(const String& path) const
{
    const String aside = path + ".bak";
    // Every instance that begins in a state of its own finds the file of another one, so that these
    // would be more and more. A damaged file is rare, and may be all that somebody has.
    if (ReadFile(path) && ReadFile(aside)) {
        if (auto removed = Util::File(aside).Remove(); !removed) {
            return removed;
        }
    }
    return Util::SetFileAside(path, aside);
}

Util::Expected<void> HistoryLogic::Save()
{
    const String path = GetPath();
    if (path.IsEmpty()) {
        unsaved = false;
        return {};
    }
    // Another instance may have put a good file in the place of the one that couldn't be read.
    // Where not even the look at it succeeded, nobody knows.
    const auto present = Util::GetFileIdentity(path);
    const bool mayBeTheOne = present == knownFile || !knownFile.isRegular;
    if (fileIsUnreadable && present.exists && mayBeTheOne) {
        if (auto moved = SetAside(path); !moved) {
            return moved;
        }
    }
    fileIsUnreadable = false;
    const uint32_t stateSize = delegate.GetStateSize();
    auto saved = file.Save(path, model);
    if (saved) {
        knownFile = Util::GetFileIdentity(path);
        savedStateSize = stateSize;
        unsaved = false;
    }
    return saved;
}

bool HistoryLogic::IsFileStale()
{
    // The file names the size of the state beside which it was written, and is good for that one
    // only. All instances share it, so that one without a change of its own may write no other
    // one's file anew.
    return !fileIsUnreadable && knownFile.isRegular && delegate.GetStateSize() != savedStateSize &&
           Util::GetFileIdentity(GetPath()) == knownFile;
}

void HistoryLogic::Flush()
{
    if (!loaded || (!unsaved && !IsFileStale())) {
        return;
    }
    quietTicks = 0; // after a failure, the next try comes when a first one would
    unsavedTicks = 0;
    if (const auto saved = Save(); !saved) {
        Util::DebugTrace(String("Saving the history failed: %1").arg(saved.GetDescription()));
    }
}

void HistoryLogic::MarkUnsaved()
{
    if (!unsaved) {
        unsavedTicks = 0;
    }
    unsaved = true;
    quietTicks = 0;
}

void HistoryLogic::onStateChanged()
{
    quietTicks = 0; // a state that moves would be another when the file is read
}

void HistoryLogic::onIdle()
{
    if (!unsaved) {
        return;
    }
    ++quietTicks;
    ++unsavedTicks;
    if (quietTicks >= QuietTicksBeforeSaving || unsavedTicks >= LongestTicksBeforeSaving) {
        Flush();
    }
}

} // namespace UI::Dialog
