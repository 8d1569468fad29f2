// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/file/PresetFileBase.h"

#include "frameworks/plugincore/preset/file/LegacyPresetFileHandler.h"
#include "frameworks/plugincore/preset/file/PresetBytes.h"
#include "frameworks/plugincore/preset/file/PresetErrors.h"
#include "frameworks/qobase/util/ConfigFile.h"
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/NumberText.h"
#include "frameworks/qobase/util/Path.h"
#include "frameworks/qobase/util/TimeText.h"

namespace Preset {
namespace {

// False when there is a file that is to be kept.
Util::Expected<bool> Store(const String& path, Util::ByteSpan bytes, Existing existing)
{
    const String folder = Util::Path::GetFolder(path);
    if (!folder.IsEmpty()) {
        if (const auto made = Util::Path::MakeDirectory(folder, Util::Path::Recursive::Yes);
            !made) {
            return made.GetError();
        }
    }
    Util::Expected<bool> stored = true;
    if (existing == Existing::Keep) {
        stored = Util::CreateWholeFile(path, bytes);
    } else if (const auto replaced = Util::ReplaceWholeFile(path, bytes); !replaced) {
        stored = replaced.GetError();
    }
    if (stored) {
        return stored;
    }
    return Util::File::Error(
        "Unable to save the file to " + path, "File", {path, GetReason(stored.GetError())});
}

} // namespace

PresetFileBase::PresetFileBase(PresetDSPInterfaceBase& newDsp, const Util::ConfigFile* newSettings)
    : dsp(newDsp)
    , settings(newSettings)
{
}

PresetFileBase::~PresetFileBase() = default;

Util::Expected<void> PresetFileBase::Load(const String& newPath)
{
    const String formerPath = path;
    StorePath(newPath);
    Snapshot formerSnapshot = snapshot;
    MetadataMap formerMetadata = metadata;
    auto result = LoadBytes();
    if (result) {
        metadata[MetadataName::LastUsed] = Util::GetPresentTimeText();
    } else {
        StorePath(formerPath); // what SaveAgain() writes is still that of the former file
        snapshot = std::move(formerSnapshot);
        metadata = std::move(formerMetadata);
    }
    return result;
}

Util::Expected<void> PresetFileBase::LoadBytes()
{
    const auto bytes = ReadPresetBytes(path);
    if (!bytes) {
        return bytes.GetError();
    }
    return IsCompressedPreset(*bytes) ? ReadCompressed(*bytes) : ReadPlain(*bytes);
}

Util::Expected<void> PresetFileBase::Reload()
{
    return Load(path);
}

Util::Expected<void> PresetFileBase::ReadCompressed(Util::ByteSpan bytes)
{
    const auto text = InflatePreset(bytes);
    if (!text) {
        return text.GetError();
    }
    return ReadPlain(*text);
}

Util::Expected<void> PresetFileBase::ReadPlain(Util::ByteSpan text)
{
    Util::XmlDocument document;
    if (auto parsed = document.Parse(text, path); !parsed) {
        return MakeParseError(parsed.GetError().GetDescription());
    }
    return ReadDocument(document);
}

Util::Expected<void>
PresetFileBase::Save(const String& newPath, const Snapshot& newSnapshot, TouchModified touch)
{
    const auto written = Write(newPath, newSnapshot, touch, Existing::Replace);
    return written ? Util::Expected<void>() : written.GetError();
}

Util::Expected<bool> PresetFileBase::Write(const String& newPath,
                                           const Snapshot& newSnapshot,
                                           TouchModified touch,
                                           Existing existing)
{
    MetadataMap formerMetadata = metadata;
    if (touch == TouchModified::Yes) {
        metadata[MetadataName::LastModified] = Util::GetPresentTimeText();
    }
    Snapshot values = newSnapshot;
    Util::XmlDocument document;
    WriteDocument(document, values);
    auto stored = Store(newPath, document.GetText(), existing);
    if (!stored || !*stored) {
        metadata = std::move(formerMetadata);
        return stored;
    }
    StorePath(newPath);
    snapshot = std::move(values);
    wasWritten = true;
    wasLegacy = false;
    return true;
}

Util::Expected<void> PresetFileBase::SaveAgain()
{
    if (wasLegacy) {
        return {};
    }
    return Save(path, snapshot, TouchModified::No);
}

void PresetFileBase::TakeSnapshotFromDSP()
{
    snapshot = dsp.TakeSnapshot();
}

void PresetFileBase::StorePath(const String& newPath)
{
    path = newPath;
    name = Util::Path::GetStem(newPath);
}

bool PresetFileBase::IsVerbose()
{
    if (!verbose) {
        verbose = settings != nullptr && settings->ReadBool("VerbosePreset", false);
    }
    return *verbose;
}

namespace {

template <typename Record>
Record* FindRecord(Snapshot& snapshot, const String& element, const String& param)
{
    ParamRecord* record = snapshot.FindParam(element, param);
    return record != nullptr ? std::get_if<Record>(record) : nullptr;
}

} // namespace

void PresetFileBase::SetBoolValue(const String& element, const String& param, bool value)
{
    if (auto* record = FindRecord<BoolRecord>(snapshot, element, param)) {
        record->value = value;
    }
}

void PresetFileBase::SetEnumValue(const String& element, const String& param, uint32_t value)
{
    if (auto* record = FindRecord<EnumRecord>(snapshot, element, param)) {
        record->value = value;
    }
}

void PresetFileBase::SetFloatValue(const String& element, const String& param, float value)
{
    if (auto* record = FindRecord<FloatRecord>(snapshot, element, param)) {
        record->value = value;
    }
}

void PresetFileBase::SetTextValue(const String& element, const String& param, const String& value)
{
    // At most one of the three finds a parameter of its type.
    if (const auto number = Util::ParseFloatClamped(value)) {
        SetFloatValue(element, param, *number);
    }
    if (const auto number = Util::ParseUInt(value)) {
        SetEnumValue(element, param, *number);
    }
    if (value == "1" || value == "0") {
        SetBoolValue(element, param, value == "1");
    }
}

void PresetFileBase::SetExtraBytes(const String& element, Util::Bytes bytes)
{
    if (ElementSnapshot* values = snapshot.FindElement(element)) {
        values->extraBytes = std::move(bytes);
    }
}

} // namespace Preset
