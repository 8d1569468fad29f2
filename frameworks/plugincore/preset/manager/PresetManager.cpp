// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/manager/PresetManager.h"

#include "frameworks/plugincore/preset/file/PresetBytes.h"
#include "frameworks/plugincore/preset/file/PresetErrors.h"
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/Path.h"

#include <utility>

namespace Preset {
namespace {

constexpr const char* FolderKey = "PresetFolder";
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

// Why a file that Classify() has judged can't be used.
String DescribeCause(FileFault fault, const LmPresetFile& file, const Util::ErrorVariant& error)
{
    const bool isOfAnotherVersion = fault == FileFault::Newer || fault == FileFault::Earlier;
    return isOfAnotherVersion ? file.DescribeVersions(file.GetHeadRead()) : GetFullText(error);
}

// The file of a preset of this name; one that differs in case only, when there is no other. Empty
// without either.
String FindFile(const String& userFolder, const String& name)
{
    String similar;
    for (const String& path : Util::Path::ListFiles(userFolder, ".xml")) {
        const String stem = Util::Path::GetStem(path);
        if (stem == name) {
            return path;
        }
        if (stem.ToLower() == name.ToLower()) {
            similar = path;
        }
    }
    return similar;
}

// Empty for a file that can't be read, or isn't there.
String ReadComment(const String& path)
{
    PresetMetadata metadata;
    return metadata.ReadFromFile(path) ? metadata.GetComment() : String("");
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
    return ManagerError(text, DescribeCause(fault, file, loaded.GetError()));
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
    auto applied = ApplyValues(entry);
    if (!applied && !entry.path.IsEmpty()) {
        for (PresetEntry& listed : entries) {
            if (listed.path == entry.path) {
                listed.fault = applied.GetDescription();
            }
        }
    }
    return applied;
}

Util::Expected<void> PresetManager::ApplyValues(const PresetEntry& entry)
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

template <typename Create>
Util::Expected<String>
PresetManager::CreateUnderFreeName(const String& userFolder, const String& wanted, Create create)
{
    ListAll(userFolder);
    std::vector<String> refused; // taken by what no list shows, or by somebody else just now
    for (;;) {
        const String name = MakeFreeName(wanted, refused);
        const String path = userFolder + name + ".xml";
        const auto created = create(path);
        if (!created) {
            return created.GetError();
        }
        if (*created) {
            ListAll(userFolder);
            return path;
        }
        refused.push_back(name);
    }
}

Util::Expected<String>
PresetManager::Save(const String& name, const std::optional<String>& comment, Existing existing)
{
    if (!name.IsEmpty()) {
        if (auto allowed = CheckName(name); !allowed) {
            return allowed.GetError();
        }
    }
    const auto prepared = folder.Prepare();
    if (!prepared) {
        return prepared.GetError();
    }
    if (name.IsEmpty()) {
        return CreateUnderFreeName(*prepared, name, [&](const String& path) {
            return Write(path, comment, Existing::Keep);
        });
    }
    const String goodName = MakeGoodName(name);
    const String found = FindFile(*prepared, goodName);
    const String path = found.IsEmpty() ? *prepared + goodName + ".xml" : found;
    if (auto saved = SaveFile(path, comment, existing); !saved) {
        return saved.GetError();
    }
    return path;
}

Util::Expected<void>
PresetManager::SaveFile(const String& path, const std::optional<String>& comment, Existing existing)
{
    if (IsFileReadOnly(path)) {
        return ManagerError("The preset " + path + " is read-only.");
    }
    const auto written = Write(path, comment, existing);
    if (!written) {
        return written.GetError();
    }
    if (!*written) {
        return ManagerError(Texts::ExistsAlready(path));
    }
    if (!entries.empty()) {
        Refresh();
    }
    return {};
}

Util::Expected<bool>
PresetManager::Write(const String& path, const std::optional<String>& comment, Existing existing)
{
    PresetMetadata metadata;
    metadata.SetComment(comment ? GetStoredComment(*comment) : ReadComment(path));
    LmPresetFile file = MakeFile();
    file.SetMetadata(metadata.GetTexts());
    auto written = file.Write(path, setup.dsp.TakeSnapshot(), TouchModified::Yes, existing);
    if (written && *written) {
        setup.metadata.Assign(file.GetType(), file.GetMetadata());
    }
    return written;
}

Util::Expected<void> PresetManager::Remove(const PresetEntry& entry)
{
    if (entry.group == PresetGroup::BuiltIn || IsFileReadOnly(entry.path)) {
        return ManagerError(Texts::RemoveFailed(entry.name, "it is read-only."));
    }
    if (const auto removed = Util::File(entry.path).Remove(); !removed) {
        const String reason = GetReason(removed.GetError());
        return ManagerError(
            Texts::RemoveFailed(entry.name, reason.IsEmpty() ? removed.GetDescription() : reason));
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
                            GetFullText(bytes.GetError()));
    }
    const String name = MakeImportedName(file.GetName());
    if (auto allowed = CheckName(name); !allowed && !IsReserved(name)) {
        return allowed.GetError();
    }
    String target = folder.Get() + name + ".xml";
    const auto prepared = folder.Prepare();
    Util::Expected<String> made =
        !prepared ? prepared : CreateUnderFreeName(*prepared, name, [&](const String& newPath) {
            target = newPath;
            return Util::CreateWholeFile(newPath, *bytes);
        });
    if (!made) {
        return ManagerError(Texts::DescribeFileFault(FileFault::NotWritable, target, {}),
                            GetReason(made.GetError()));
    }
    return Util::Path::GetStem(*made);
}

Util::Expected<String> PresetManager::ChooseFolder(const String& path)
{
    const String former = setup.settings.ReadString(FolderKey, "");
    const String usual = Util::Path::Join(setup.defaultFolder, "");
    const String wanted = Util::Path::Join(Util::Path::ExpandUserFolders(path), "");
    if (auto set = folder.Set(path); !set) {
        return set.GetError();
    }
    auto prepared = folder.Prepare();
    if (prepared && *prepared == usual && !path.IsEmpty() && wanted != usual) {
        prepared = ManagerError(Texts::FolderUnusable(path)); // it was passed over
    }
    if (!prepared) {
        setup.settings.WriteString(FolderKey, former);
    }
    Refresh();
    return prepared;
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
