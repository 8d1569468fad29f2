// SPDX-License-Identifier: ISC
#include "wrappers/common/ElementParameters.h"

#include "wrappers/common/ParameterRecords.h"
#include "wrappers/common/Text.h"

#include <algorithm>
#include <sstream>

namespace Wrapper {

std::optional<ElementParameters> ElementParameters::Read(Instance& instance)
{
    const auto records = ReadParameterRecords<ElementParamInfoRecord>(
        SelectorGetElementParamCount,
        SelectorGetElementParamList,
        [&](uint32_t selector, void* data, const char* purpose) {
            return instance.Request({}, selector, data, purpose);
        });
    if (!records) {
        return std::nullopt;
    }
    ElementParameters parameters(instance);
    for (const ElementParamInfoRecord& record : *records) {
        parameters.list.push_back(MakeParameter(record.info));
    }
    return parameters;
}

std::optional<uint32_t> ElementParameters::Find(std::string_view identifier) const
{
    const auto found = std::find_if(list.begin(), list.end(), [&](const Parameter& parameter) {
        return IsSameText(parameter.identifier, identifier);
    });
    return found != list.end() ? std::optional(static_cast<uint32_t>(found - list.begin()))
                               : std::nullopt;
}

bool ElementParameters::Set(uint32_t index, float normalised)
{
    ParamValueRecord record = {index, normalised};
    return instance->Request({}, SelectorSetElementParamValue, &record, "take a parameter");
}

std::optional<float> ElementParameters::Get(uint32_t index) const
{
    ParamValueRecord record = {index, 0.0F};
    return instance->Request({}, SelectorGetElementParamValue, &record, "tell a parameter")
               ? std::optional(record.value)
               : std::nullopt;
}

std::optional<std::vector<ElementParameters::Changed>> ElementParameters::ReadChanged() const
{
    // Values may change between asking for the size and for the text: the text asks again then.
    std::string text;
    for (;;) {
        ChangedParamsRecord record = {};
        record.size = static_cast<uint32_t>(text.size());
        record.text = text.data();
        HostMessageRecord message = {PLUGIN_CORE_MESSAGE_CHANGED_PARAMS, sizeof record, &record};
        if (!instance->Request({}, SelectorHostMessage, &message, "list what has changed")) {
            return std::nullopt;
        }
        const bool hadRoom = record.size <= text.size();
        text.resize(record.size);
        if (hadRoom) {
            break;
        }
    }
    std::vector<Changed> changed;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const size_t tab = line.find('\t');
        if (tab != std::string::npos) {
            changed.push_back({line.substr(0, tab), line.substr(tab + 1)});
        }
    }
    return changed;
}

} // namespace Wrapper
