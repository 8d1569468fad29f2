// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace Wrapper {

/// Reads one of the two lists of parameters. `request(selector, record, purpose)` makes a call and
/// answers whether it was taken; none when one wasn't.
template <typename Record, typename Request>
std::optional<std::vector<Record>>
ReadParameterRecords(uint32_t countSelector, uint32_t listSelector, const Request& request)
{
    uint32_t count = 0;
    if (!request(countSelector, &count, "count its parameters")) {
        return std::nullopt;
    }
    std::vector<Record> records(count);
    ParamListRecord list = {count, 0, records.data()};
    return request(listSelector, &list, "list its parameters") ? std::optional(std::move(records))
                                                               : std::nullopt;
}

} // namespace Wrapper
