// SPDX-License-Identifier: ISC
#include "wrappers/common/History.h"

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "wrappers/common/Instance.h"
#include "wrappers/common/Text.h"

namespace Wrapper {

namespace {

bool Request(const Instance& instance, EntryKey key, HistoryRecord& record, const char* purpose)
{
    HostMessageRecord message = {PLUGIN_CORE_MESSAGE_HISTORY, sizeof record, &record};
    return instance.Request(key, SelectorHostMessage, &message, purpose);
}

} // namespace

std::optional<History::File> History::Open(const std::string& path)
{
    HistoryRecord opened = {};
    opened.op = HistoryOpOpen;
    opened.path = path.c_str();
    if (!Request(instance, {}, opened, "read a history")) {
        return std::nullopt;
    }
    File file;
    if (opened.failed != 0) {
        file.problem = TextOf(opened.message);
        return file;
    }
    for (uint32_t index = 0; index < opened.count; ++index) {
        HistoryRecord record = {};
        record.op = HistoryOpDescribe;
        record.index = index;
        if (!Request(instance, {}, record, "describe a step of a history")) {
            return std::nullopt;
        }
        file.steps.push_back({TextOf(record.time), TextOf(record.text), record.slots});
    }
    return file;
}

std::optional<bool> History::GoTo(uint32_t step)
{
    HistoryRecord record = {};
    record.op = HistoryOpGoTo;
    record.index = step;
    return Request(instance, {}, record, "go to a step of a history")
               ? std::optional(record.failed == 0)
               : std::nullopt;
}

} // namespace Wrapper
