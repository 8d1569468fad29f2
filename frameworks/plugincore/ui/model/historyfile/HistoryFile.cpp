// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/ui/model/historyfile/HistoryFile.h"

#include "frameworks/plugincore/ui/model/historyfile/InvalidHistoryFile.h"
#include "frameworks/qobase/util/DataStreamIO.h"
#include "frameworks/qobase/util/DebugTrace.h"
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/FileLock.h"
#include "frameworks/qobase/util/FileStream.h"
#include "frameworks/qobase/util/MemoryStream.h"

#include <algorithm>
#include <utility>

const HistoryFileForm FrameworkHistoryForm = {
    .magic = 0x3B605D,
    .hasTotalSize = false,
    .hasWideLength = true,
    .initialLabel = "<Initial State>",
    .badSlotText = "Encountered invalid snapshot index %1 at byte %2",
};

namespace {

constexpr uint32_t SnapshotTag = 81232;
constexpr uint32_t SlotTag = 17711;

// The process side may change a value between the question for the size and that for the bytes.
constexpr int TakeAttempts = 4;

// Empty when its length can't be meant.
std::optional<Snapshot> ReadSnapshot(const HistoryFileForm& form, Util::DataStream& stream)
{
    const uint64_t length = form.hasWideLength ? stream.ReadUInt64() : stream.ReadUInt32();
    if (length > Util::MaxClaimedBytes) {
        return std::nullopt;
    }
    Snapshot snapshot;
    snapshot.bytes = stream.ReadBytes(length);
    snapshot.label = stream.ReadString();
    return snapshot;
}

// Answers why nothing of the file is to be used; empty when all is well.
String ReadRecords(const HistoryFileForm& form, Util::DataStream& stream, HistoryModel& model)
{
    while (!stream.IsAtEnd()) {
        const uint64_t position = stream.GetPosition();
        const uint32_t tag = stream.ReadUInt32();
        if (tag == SlotTag) {
            const uint32_t slot = stream.ReadUInt32();
            const uint32_t snapshot = stream.ReadUInt32();
            if (slot >= model.slots.size()) {
                Util::DebugTrace(String(form.badSlotText).arg(slot).arg(position));
                return ""; // what came before is sound
            }
            model.slots[slot] = snapshot;
        } else if (tag == SnapshotTag) {
            auto snapshot = ReadSnapshot(form, stream);
            if (!snapshot) {
                return String("Encountered invalid length at byte %1").arg(position);
            }
            model.snapshots.push_back(std::move(*snapshot));
        } else {
            return String("Encountered unknown tag %1 at byte %2").arg(tag).arg(position);
        }
    }
    return "";
}

// Opening a pipe would wait for somebody to write to it.
void CheckIsFile(const Util::FileIdentity& identity, const String& path)
{
    if (!identity.isRegular) {
        throw Util::Exception::DataStreamIO(String("Can't open file: %1").arg(path));
    }
}

HistoryModel ListRecords(Util::DataStream& stream,
                         std::span<const HistoryFileForm* const> forms,
                         uint32_t stateVersion)
{
    const uint32_t magic = stream.ReadUInt32();
    const auto form = std::find_if(
        forms.begin(), forms.end(), [&](const auto* known) { return known->magic == magic; });
    if (form == forms.end()) {
        throw Exception::InvalidHistoryFile(String("Invalid magic number %1").arg(magic));
    }
    const uint32_t version = stream.ReadUInt32();
    if (version != stateVersion) {
        throw Exception::InvalidHistoryFile(
            String("Its states are of version %1, these of %2").arg(version).arg(stateVersion));
    }
    if ((*form)->hasTotalSize) {
        stream.ReadUInt32();
    }
    HistoryModel model;
    if (const String fault = ReadRecords(**form, stream, model); !fault.IsEmpty()) {
        throw Exception::InvalidHistoryFile(fault);
    }
    return model;
}

} // namespace

std::optional<Snapshot> TakeSnapshot(Util::HistoryDelegate& delegate, const String& label)
{
    for (int attempt = 0; attempt < TakeAttempts; ++attempt) {
        Snapshot snapshot{Util::Bytes(delegate.GetStateSize()), label};
        const auto size = static_cast<uint32_t>(snapshot.bytes.size());
        if (delegate.GetState(size, snapshot.bytes.data())) {
            delegate.AddTime(snapshot.bytes);
            return snapshot;
        }
    }
    return std::nullopt;
}

void HistoryFile::MakeInitialState(HistoryModel& model) const
{
    model.snapshots.clear();
    if (auto snapshot = TakeSnapshot(delegate, form.initialLabel)) {
        model.snapshots.push_back(std::move(*snapshot));
    }
}

void HistoryFile::Load(const String& path, HistoryModel& model) const
{
    model = {};
    const auto identity = Util::GetFileIdentity(path);
    if (!identity.exists) {
        MakeInitialState(model);
        return;
    }
    CheckIsFile(identity, path);
    Util::FileStream stream(path, Util::File::Mode::Read);
    model = Read(stream);
}

HistoryModel HistoryFile::Read(Util::DataStream& stream) const
{
    HistoryModel model;
    bool isUsable = ReadHeader(stream) == Outcome::Complete;
    if (isUsable) {
        const String fault = ReadRecords(form, stream, model);
        isUsable = fault.IsEmpty();
        if (!isUsable) {
            Util::DebugTrace(fault);
        }
    }
    if (!isUsable || model.snapshots.empty()) {
        MakeInitialState(model);
    }
    return model;
}

HistoryFile::Outcome HistoryFile::ReadHeader(Util::DataStream& stream) const
{
    const uint32_t magic = stream.ReadUInt32();
    if (magic != form.magic) {
        throw Exception::InvalidHistoryFile(String("Invalid magic number %1").arg(magic));
    }
    if (stream.ReadUInt32() != delegate.GetStateVersion()) {
        return Outcome::Dropped;
    }
    if (form.hasTotalSize) {
        const uint32_t totalSize = stream.ReadUInt32();
        if (totalSize != delegate.GetStateSize()) {
            throw Exception::InvalidHistoryFile(
                String("Invalid total param size %1").arg(totalSize));
        }
    }
    return Outcome::Complete;
}

void HistoryFile::Write(Util::DataStream& stream, const HistoryModel& model) const
{
    stream.WriteUInt32(form.magic);
    stream.WriteUInt32(delegate.GetStateVersion());
    if (form.hasTotalSize) {
        stream.WriteUInt32(delegate.GetStateSize());
    }
    for (const Snapshot& snapshot : model.snapshots) {
        stream.WriteUInt32(SnapshotTag);
        if (form.hasWideLength) {
            stream.WriteUInt64(snapshot.bytes.size());
        } else {
            stream.WriteUInt32(static_cast<uint32_t>(snapshot.bytes.size()));
        }
        stream.WriteBytes(snapshot.bytes.data(), snapshot.bytes.size());
        stream.WriteString(snapshot.label);
    }
    for (uint32_t slot = 0; slot < model.slots.size(); ++slot) {
        if (model.slots[slot]) {
            stream.WriteUInt32(SlotTag);
            stream.WriteUInt32(slot);
            stream.WriteUInt32(*model.slots[slot]);
        }
    }
}

Util::Expected<void> HistoryFile::Save(const String& path, const HistoryModel& model) const
{
    Util::MemoryStream stream;
    Write(stream, model);
    return Util::ReplaceWholeFile(path, stream.GetBytes());
}

Util::Expected<HistoryModel> ReadHistoryFile(const String& path,
                                             std::span<const HistoryFileForm* const> forms,
                                             uint32_t stateVersion)
{
    try {
        CheckIsFile(Util::GetFileIdentity(path), path);
        Util::FileStream stream(path, Util::File::Mode::Read);
        return ListRecords(stream, forms, stateVersion);
    } catch (const Exception::Base& fault) {
        return HistoryError(fault.GetMessage());
    }
}
