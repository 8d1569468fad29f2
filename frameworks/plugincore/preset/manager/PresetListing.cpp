// SPDX-License-Identifier: ISC
// The list of presets: what is in the folders, and the search by name.
#include "frameworks/plugincore/preset/manager/PresetManager.h"
#include "frameworks/qobase/util/Path.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <tuple>

namespace Preset {
namespace {

// Why a folder that is there can't be listed; empty when it can, and when there is none.
String GetListingFault(const String& folder)
{
    std::error_code error;
    const std::filesystem::directory_iterator files(folder.ToStdString(), error);
    const bool isFault = error && error != std::errc::no_such_file_or_directory;
    return isFault ? String(error.message()) : String("");
}

} // namespace

String PresetEntry::GetComment() const
{
    const auto found = metadata.find(MetadataName::Comments);
    return found != metadata.end() ? found->second : String();
}

void PresetManager::Open()
{
    formerSettings = setup.dsp.TakeSnapshot();
    Refresh();
}

void PresetManager::Refresh()
{
    ListAll(folder.Get());
}

void PresetManager::ListAll(const String& userFolder)
{
    entries.clear();
    entries.push_back({Texts::FactorySettings, {}, PresetGroup::BuiltIn, {}, {}, {}});
    if (formerSettings) {
        entries.push_back({Texts::FormerSettings, {}, PresetGroup::BuiltIn, {}, {}, {}});
    }
    if (const String refused = folder.GetRefused(); !refused.IsEmpty()) {
        entries.push_back({refused, {}, PresetGroup::User, {}, Texts::FolderRefused(refused), {}});
    }
    ListFolder(setup.factoryFolder, PresetGroup::Factory);
    ListFolder(userFolder, PresetGroup::User);
    NoteHidden();
}

void PresetManager::NoteHidden()
{
    for (PresetEntry& entry : entries) {
        const bool isHidden =
            entry.group == PresetGroup::Factory &&
            std::any_of(entries.begin(), entries.end(), [&](const PresetEntry& other) {
                return other.group == PresetGroup::User && other.name == entry.name;
            });
        entry.note = isHidden ? Texts::Hidden : "";
    }
}

void PresetManager::ListFolder(const String& path, PresetGroup group)
{
    const auto first = static_cast<std::ptrdiff_t>(entries.size());
    if (const String reason = GetListingFault(path); !reason.IsEmpty()) {
        entries.push_back({path, path, group, {}, Texts::FolderUnreadable(path, reason), {}});
        return;
    }
    for (const String& file : Util::Path::ListFiles(path, ".xml")) {
        LmPresetFile preset = MakeFile();
        const auto loaded = Load(preset, file, Naming::Entry); // whole: a fault may be anywhere
        entries.push_back({Util::Path::GetStem(file),
                           file,
                           group,
                           preset.GetHeadRead().metadata,
                           loaded ? String("") : loaded.GetDescription(),
                           {}});
    }
    std::vector<std::pair<String, PresetEntry>> sorted;
    for (auto entry = entries.begin() + first; entry != entries.end(); ++entry) {
        sorted.emplace_back(entry->name.ToLower(), std::move(*entry));
    }
    std::sort(sorted.begin(), sorted.end(), [](const auto& left, const auto& right) {
        return std::tie(left.first, left.second.name) < std::tie(right.first, right.second.name);
    });
    std::transform(sorted.begin(), sorted.end(), entries.begin() + first, [](auto& entry) {
        return std::move(entry.second);
    });
}

std::optional<PresetEntry> PresetManager::Find(const String& name) const
{
    const auto find = [this](const auto& matches) -> const PresetEntry* {
        for (const auto group : {PresetGroup::User, PresetGroup::Factory, PresetGroup::BuiltIn}) {
            for (const PresetEntry& entry : entries) {
                if (entry.group == group && matches(entry.name)) {
                    return &entry;
                }
            }
        }
        return nullptr;
    };
    const PresetEntry* found = find([&](const String& entry) { return entry == name; });
    if (found == nullptr) {
        const String folded = name.ToLower();
        found = find([&](const String& entry) { return entry.ToLower() == folded; });
    }
    return found != nullptr ? std::optional<PresetEntry>(*found) : std::nullopt;
}

String PresetManager::MakeFreeName(const String& wanted, const std::vector<String>& others) const
{
    const String base = wanted.IsEmpty() ? String(Texts::NewPreset) : wanted;
    const auto isTaken = [&](const String& name) {
        const String folded = name.ToLower();
        return IsReserved(name) ||
               std::any_of(entries.begin(),
                           entries.end(),
                           [&](const PresetEntry& entry) {
                               return entry.group != PresetGroup::Factory &&
                                      entry.name.ToLower() == folded;
                           }) ||
               std::find(others.begin(), others.end(), name) != others.end();
    };
    String name = base;
    for (uint32_t number = 2; isTaken(name); ++number) {
        name = base + String(" %1").arg(number);
    }
    return name;
}

} // namespace Preset
