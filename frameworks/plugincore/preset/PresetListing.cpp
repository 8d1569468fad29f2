// SPDX-License-Identifier: ISC
// The list of presets: what is in the folders, and the search by name.
#include "frameworks/plugincore/preset/PresetManager.h"
#include "frameworks/qobase/util/Path.h"

#include <algorithm>
#include <tuple>

namespace Preset {

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
    entries.clear();
    entries.push_back({Texts::FactorySettings, {}, PresetGroup::BuiltIn, {}, {}});
    if (formerSettings) {
        entries.push_back({Texts::FormerSettings, {}, PresetGroup::BuiltIn, {}, {}});
    }
    ListFolder(setup.factoryFolder, PresetGroup::Factory);
    ListFolder(folder.Get(), PresetGroup::User);
}

void PresetManager::ListFolder(const String& path, PresetGroup group)
{
    const auto first = static_cast<std::ptrdiff_t>(entries.size());
    for (const String& file : Util::Path::ListFiles(path, ".xml")) {
        PresetEntry entry{Util::Path::GetStem(file), file, group, {}, {}};
        if (auto head = ReadPresetHead(file)) {
            entry.fault = GetFaultOfHead(*head);
            entry.metadata = std::move(head->metadata);
        } else {
            entry.fault = Texts::InvalidPreset;
        }
        entries.push_back(std::move(entry));
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

String PresetManager::GetFaultOfHead(const PresetHead& head) const
{
    const LmPresetFile rules = MakeFile();
    if (!rules.IsTypeValid(head.type) || head.xmlVersion != "1.0") {
        return Texts::InvalidPreset;
    }
    const auto match = rules.CompareVersion(head);
    if (match == VersionMatch::Same) {
        return "";
    }
    if (!match) {
        return Texts::InvalidPreset;
    }
    return Texts::DescribeEntryFault(match == VersionMatch::Newer ? FileFault::Newer
                                                                  : FileFault::Earlier);
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

String PresetManager::MakeFreeName(const String& wanted) const
{
    const String base = wanted.IsEmpty() ? String(Texts::NewPreset) : wanted;
    const auto isTaken = [this](const String& name) {
        return std::any_of(entries.begin(), entries.end(), [&](const PresetEntry& entry) {
            return entry.group == PresetGroup::User && entry.name.ToLower() == name.ToLower();
        });
    };
    String name = base;
    for (uint32_t number = 2; isTaken(name); ++number) {
        name = base + String(" %1").arg(number);
    }
    return name;
}

} // namespace Preset
