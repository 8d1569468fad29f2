// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/path/ParamSet.h"

#include "frameworks/qobase/util/DebugTrace.h"

namespace DSP {
namespace {

String Hint(const String& name, const char* what)
{
    const std::string_view text = name.View();
    const bool endsInBlank = !text.empty() && text.back() == ' ';
    return endsInBlank ? String(" (Hint - trailing space after %1 name)").arg(what) : String("");
}

String WithoutCarriageReturn(const String& row)
{
    const std::string_view text = row.View();
    const bool ends = !text.empty() && text.back() == '\r';
    return ends ? row.Left(row.Length() - 1) : row;
}

} // namespace

ParamSetImpl::ParamSetImpl(const DSPSetBase& set, std::string_view rows)
{
    for (const String& row : String(rows).Split('\n')) {
        AddRow(set, WithoutCarriageReturn(row));
    }
}

void ParamSetImpl::AddRow(const DSPSetBase& set, const String& row)
{
    std::vector<String> fields = row.Split('\t');
    fields.resize(3);
    const String& displayName = fields[0];
    const String& elementName = fields[1];
    const String& paramName = fields[2];
    if (displayName.IsEmpty() || (elementName.IsEmpty() && paramName.IsEmpty())) {
        return;
    }
    Element* element = set.GetElement(elementName);
    if (element == nullptr) {
        Util::DebugTrace(String("Could not find element \"%1\" while building param set, skipping "
                                "this entry. %2")
                             .arg(elementName)
                             .arg(Hint(elementName, "element")));
        return;
    }
    const auto found = element->GetParamMap().find(paramName);
    if (found == element->GetParamMap().end()) {
        Util::DebugTrace(String("Could not find parameter \"%1\" for element \"%2\" while building "
                                "param set, skipping this entry. %3")
                             .arg(paramName)
                             .arg(elementName)
                             .arg(Hint(paramName, "param")));
        return;
    }
    params.push_back({displayName, elementName, paramName, element, found->second});
}

std::optional<uint32_t> ParamSetImpl::FindIndex(const Element& element,
                                                const String& paramName) const
{
    for (uint32_t index = 0; index < params.size(); ++index) {
        if (params[index].element == &element && params[index].paramName == paramName) {
            return index;
        }
    }
    return std::nullopt;
}

} // namespace DSP
