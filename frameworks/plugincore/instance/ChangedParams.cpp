// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/ChangedParams.h"

#include "frameworks/qobase/util/NumberText.h"

#include <algorithm>

namespace {

void AddLine(String& list, const String& element, const String& param, const String& value)
{
    list = list + element + "." + param + "\t" + value + "\n";
}

String ListChangedParams(const DSP::DSPSetBase& set)
{
    String list;
    for (const auto& [name, element] : set.GetElements()) {
        const DSP::ChangedParams changed = element->CollectChangedParams();
        for (const auto& [param, value] : changed.floats) {
            AddLine(list, name, param, Util::FormatFloat(value));
        }
        for (const auto& [param, value] : changed.bools) {
            AddLine(list, name, param, value ? "on" : "off");
        }
        for (const auto& [param, label] : changed.enums) {
            AddLine(list, name, param, label);
        }
    }
    return list;
}

} // namespace

void AnswerChangedParams(const DSP::DSPSetBase& set, ChangedParamsRecord& record)
{
    const String list = ListChangedParams(set);
    const auto wanted = static_cast<uint32_t>(list.Length() + 1);
    if (record.text != nullptr && record.size >= wanted) {
        std::copy_n(list.c_str(), wanted, record.text);
    }
    record.size = wanted;
}
