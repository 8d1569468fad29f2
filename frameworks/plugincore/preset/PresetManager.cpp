// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/PresetManager.h"

#include "frameworks/plugincore/preset/PresetBytes.h"
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/Path.h"

#include <string_view>
#include <utility>

namespace Preset {
namespace {

constexpr const char* LastActiveKey = "PresetLastActive";
constexpr const char* LastFolderKey = "PluginPresets/LastFolder";
constexpr const char* ShowAtStartupKey = "PresetShowAtStartup";

// Reading fails with an error of the file itself, or with what is wrong inside.
FileFault Classify(const LmPresetFile& file, const Util::ErrorVariant& error)
{
    if (error.As<Util::File::Error>() != nullptr) {
        return FileFault::Unreadable;
    }
    const PresetHead& head = file.GetHeadRead();
    if (file.IsTypeWrong()) {
        const bool isPreset = head.paramsVersion && head.pluginVersion;
        return isPreset ? FileFault::OtherProduct : FileFault::NotForUs;
    }
    switch (file.CompareVersion(head).value_or(VersionMatch::Same)) {
    case VersionMatch::Newer:
        return FileFault::Newer;
    case VersionMatch::Earlier:
        return FileFault::Earlier;
    default:
        return FileFault::NotValid;
    }
}

// The system's reason for a failure with a file, or else what failed.
String GetReason(const Util::ErrorVariant& error)
{
    const auto arguments = error.Get().GetArguments();
    return arguments.size() > 1 ? arguments[1] : error.GetDescription();
}

bool IsFileReadOnly(const String& path)
{
    PresetMetadata metadata;
    return metadata.ReadFromFile(path) && IsReadOnly(metadata.GetTexts());
}

} // namespace

PresetManager::PresetManager(Setup newSetup)
    : setup(std::move(newSetup))
    , folder(setup.settings, setup.defaultFolder)
{
}

LmPresetFile PresetManager::MakeFile() const
{
    return LmPresetFile(setup.identity, setup.dsp, &setup.settings);
}

Util::Expected<void>
PresetManager::Load(LmPresetFile& file, const String& path, Naming naming) const
{
    file.TakeSnapshotFromDSP(); // what the file lacks stays as it is
    const auto loaded = file.Load(path);
    if (loaded) {
        return {};
    }
    const FileFault fault = Classify(file, loaded.GetError());
    const String text = naming == Naming::Entry
                            ? Texts::DescribeEntryFault(fault)
                            : Texts::DescribeFileFault(fault, path, file.GetHeadRead().type);
    return ManagerError(text, loaded.GetDescription());
}

Util::Expected<void> PresetManager::LoadAndSet(const String& path, Naming naming)
{
    LmPresetFile file = MakeFile();
    if (auto loaded = Load(file, path, naming); !loaded) {
        return loaded;
    }
    if (const auto set = setup.dsp.Apply(file.GetSnapshot()); !set) {
        return ManagerError(Texts::DescribeFileFault(FileFault::NotSet, path, {}),
                            set.GetDescription());
    }
    setup.metadata.Assign(file.GetType(), file.GetMetadata());
    NoteApplied(file.GetName());
    return {};
}

Util::Expected<void> PresetManager::Apply(const PresetEntry& entry)
{
    if (entry.group != PresetGroup::BuiltIn) {
        return LoadAndSet(entry.path, Naming::Entry);
    }
    const bool isFormer = entry.name == Texts::FormerSettings && formerSettings;
    const auto set = setup.dsp.Apply(isFormer ? *formerSettings : setup.dsp.TakeDefaults());
    if (!set) {
        return set.GetError();
    }
    NoteApplied(entry.name);
    return {};
}

Util::Expected<void> PresetManager::ApplyFile(const String& path)
{
    return LoadAndSet(path, Naming::File);
}

void PresetManager::NoteApplied(const String& name)
{
    if (setup.keepsSettings) {
        setup.settings.WriteString(LastActiveKey, name);
    }
    if (setup.onLoaded) {
        setup.onLoaded(name);
    }
}

Util::Expected<String> PresetManager::Save(const String& name, const String& comment)
{
    if (!IsNameAllowed(name)) {
        return ManagerError("A preset's name can't be empty or hold any of / \\ : * ? \" < > |");
    }
    const auto prepared = folder.Prepare();
    if (!prepared) {
        return prepared.GetError();
    }
    const String path = *prepared + name + ".xml";
    if (auto saved = SaveFile(path, comment); !saved) {
        return saved.GetError();
    }
    return path;
}

Util::Expected<void> PresetManager::SaveFile(const String& path, const String& comment)
{
    if (IsFileReadOnly(path)) {
        return ManagerError("The preset " + path + " is read-only.");
    }
    PresetMetadata metadata;
    metadata.SetComment(GetStoredComment(comment));
    LmPresetFile file = MakeFile();
    file.SetMetadata(metadata.GetTexts());
    auto saved = file.Save(path, setup.dsp.TakeSnapshot(), TouchModified::Yes);
    if (saved) {
        setup.metadata.Assign(file.GetType(), file.GetMetadata());
    }
    return saved;
}

Util::Expected<void> PresetManager::Remove(const PresetEntry& entry)
{
    if (entry.group == PresetGroup::BuiltIn || IsFileReadOnly(entry.path)) {
        return ManagerError(Texts::RemoveFailed(entry.name, "it is read-only."));
    }
    if (const auto removed = Util::File(entry.path).Remove(); !removed) {
        return ManagerError(Texts::RemoveFailed(entry.name, GetReason(removed.GetError())));
    }
    Refresh();
    return {};
}

Util::Expected<String> PresetManager::Import(const String& path)
{
    if (setup.keepsSettings) {
        setup.settings.WriteString(LastFolderKey, Util::Path::GetFolder(path));
    }
    LmPresetFile file = MakeFile();
    if (auto loaded = Load(file, path, Naming::File); !loaded) {
        return loaded.GetError();
    }
    const auto bytes = ReadPresetBytes(path);
    if (!bytes) {
        return ManagerError(Texts::DescribeFileFault(FileFault::Unreadable, path, {}),
                            bytes.GetDescription());
    }
    const auto prepared = folder.Prepare();
    const String target = prepared ? *prepared : folder.Get();
    Refresh();
    const String name = MakeFreeName(file.GetName());
    const String targetPath = target + name + ".xml";
    if (const auto written = Util::ReplaceWholeFile(targetPath, *bytes); !written) {
        return ManagerError(Texts::DescribeFileFault(FileFault::NotWritable, targetPath, {}),
                            GetReason(written.GetError()));
    }
    Refresh();
    return name;
}

bool PresetManager::IsNameAllowed(const String& name)
{
    return !name.IsEmpty() && name.View().find_first_of("/\\:*?\"<>|") == std::string_view::npos;
}

String PresetManager::GetShownComment(const String& comment)
{
    return comment.IsEmpty() ? String(Texts::CommentPrompt) : comment;
}

String PresetManager::GetStoredComment(const String& shown)
{
    return shown == Texts::CommentPrompt ? String() : shown;
}

String PresetManager::GetLastActive() const
{
    return setup.settings.ReadString(LastActiveKey, "Default");
}

String PresetManager::GetImportFolder() const
{
    return setup.settings.ReadString(LastFolderKey, "");
}

bool PresetManager::IsShownAtStartup() const
{
    return setup.settings.ReadBool(ShowAtStartupKey, false);
}

void PresetManager::SetShownAtStartup(bool isShown)
{
    setup.settings.WriteBool(ShowAtStartupKey, isShown);
}

} // namespace Preset
