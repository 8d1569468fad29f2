// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/HistoryMessages.h"

#include "frameworks/plugincore/preset/file/PresetDSPInterface.h"
#include "frameworks/plugincore/product/PluginInfo.h"
#include "frameworks/qobase/util/Realtime.h"

#include <utility>

namespace {

void Fail(const String& message, HistoryRecord& record)
{
    record.failed = 1;
    CopyText(record.message, message);
}

void CountIn(const HistoryModel& model, HistoryRecord& record)
{
    record.count = static_cast<uint32_t>(model.snapshots.size());
}

uint8_t GetSlots(const HistoryModel& model, uint32_t index)
{
    uint32_t slots = 0;
    for (uint32_t slot = 0; slot < model.slots.size(); ++slot) {
        slots |= model.slots[slot] == index ? 1U << slot : 0U;
    }
    return static_cast<uint8_t>(slots);
}

// The one that the instance is at, after a step was to be made.
void ShowStep(const HistoryManager& history, bool isDone, const char* fault, HistoryRecord& record)
{
    if (!isDone) {
        Fail(fault, record);
    } else if (const auto row = history.GetSelectedRow()) {
        record.index = *row;
        CopyText(record.text, history.GetModel().snapshots[*row].label);
    }
}

} // namespace

HistoryMessages::HistoryMessages(Setup newSetup)
    : setup(std::move(newSetup))
{
}

const HistoryModel& HistoryMessages::GetListed(const HistoryManager& history) const
{
    return opened ? *opened : history.GetModel();
}

void HistoryMessages::List(HistoryManager& history, HistoryRecord& record)
{
    opened.reset();
    history.onUserBegins();
    CountIn(history.GetModel(), record);
}

void HistoryMessages::Open(const HistoryManager& history, HistoryRecord& record)
{
    const String path = record.path;
    auto model = history.ReadFile(path);
    if (!model) {
        Fail("The file " + path + " is not a history that can be read. (" + model.GetDescription() +
                 ")",
             record);
        return;
    }
    opened = std::move(*model);
    CountIn(*opened, record);
}

uint32_t HistoryMessages::Describe(const HistoryManager& history, HistoryRecord& record) const
{
    const HistoryModel& model = GetListed(history);
    if (record.index >= model.snapshots.size()) {
        return PluginCoreUnsupported;
    }
    const Snapshot& snapshot = model.snapshots[record.index];
    CopyText(record.time, setup.state.ReadTime(snapshot.bytes));
    CopyText(record.text, snapshot.label);
    record.isSelected = !opened && history.GetSelectedRow() == record.index ? 1 : 0;
    record.slots = GetSlots(model, record.index);
    return PluginCoreSuccess;
}

uint32_t HistoryMessages::GoTo(HistoryManager& history, HistoryRecord& record)
{
    const HistoryModel& model = GetListed(history);
    if (record.index >= model.snapshots.size()) {
        return PluginCoreUnsupported;
    }
    const Snapshot& snapshot = model.snapshots[record.index];
    CopyText(record.text, snapshot.label);
    const auto size = static_cast<uint32_t>(snapshot.bytes.size());
    const bool isDone =
        opened
            ? setup.instance.SetState(size, snapshot.bytes.data(), setup.instance.GetStateVersion())
            : history.SelectRow(record.index);
    if (!isDone) {
        Fail("This step holds no state.", record);
    }
    return PluginCoreSuccess;
}

void HistoryMessages::ResetAll(HistoryRecord& record)
{
    auto* values = setup.set.GetPresetInterface();
    if (values == nullptr) {
        Fail("There is nothing to reset.", record);
        return;
    }
    const Util::ScopedDenormalGuard denormalGuard;
    setup.state.LoadPending();
    const GestureReport::UserAction action(setup.gestures, "Reset All");
    if (const auto set = values->Apply(values->TakeDefaults()); !set) {
        Fail(set.GetDescription(), record);
    }
    setup.onChanged();
}

uint32_t HistoryMessages::Answer(HistoryRecord& record)
{
    HistoryManager* history = setup.history.Get();
    if (history == nullptr) {
        return PluginCoreUnsupported;
    }
    record.failed = 0;
    CopyText(record.message, {});
    switch (record.op) {
    case HistoryOpList:
        List(*history, record);
        return PluginCoreSuccess;
    case HistoryOpOpen:
        Open(*history, record);
        return PluginCoreSuccess;
    case HistoryOpDescribe:
        return Describe(*history, record);
    case HistoryOpGoTo:
        return GoTo(*history, record);
    case HistoryOpUndo:
        ShowStep(*history, history->StepBack(), "There is nothing to undo.", record);
        return PluginCoreSuccess;
    case HistoryOpRedo:
        ShowStep(*history, history->StepForward(), "There is nothing to redo.", record);
        return PluginCoreSuccess;
    case HistoryOpResetAll:
        ResetAll(record);
        return PluginCoreSuccess;
    default:
        return PluginCoreUnsupported;
    }
}
