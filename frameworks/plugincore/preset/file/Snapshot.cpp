// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/file/Snapshot.h"

#include <algorithm>

namespace Preset {
namespace {

auto FindEntry(std::map<String, ElementSnapshot>& elements, const String& name)
{
    const auto exact = elements.find(name);
    if (exact != elements.end()) {
        return exact;
    }
    return std::find_if(elements.begin(), elements.end(), [&](const auto& entry) {
        return entry.first.ToLower() == name.ToLower();
    });
}

} // namespace

ElementSnapshot* Snapshot::FindElement(const String& name)
{
    const auto found = FindEntry(elements, name);
    return found != elements.end() ? &found->second : nullptr;
}

ParamRecord* Snapshot::FindParam(const String& element, const String& param)
{
    const auto found = FindEntry(elements, element);
    if (found == elements.end()) {
        return nullptr;
    }
    const auto record = found->second.params.find({found->first, param});
    return record != found->second.params.end() ? &record->second : nullptr;
}

} // namespace Preset
