// SPDX-License-Identifier: ISC
#include "wrappers/lv2/HostFeatures.h"

#include <string>
#include <string_view>

namespace Lv2 {

HostFeatures ReadFeatures(const LV2_Feature* const* features)
{
    HostFeatures host;
    for (; features != nullptr && *features != nullptr; ++features) {
        const std::string_view uri = (*features)->URI;
        if (uri == LV2_URID__map) {
            host.map = static_cast<const LV2_URID_Map*>((*features)->data);
        } else if (uri == LV2_LOG__log) {
            host.log = static_cast<const LV2_Log_Log*>((*features)->data);
        }
    }
    return host;
}

LV2_URID Map(const HostFeatures& host, const char* uri)
{
    return host.map != nullptr ? host.map->map(host.map->handle, uri) : 0;
}

Wrapper::LogFunction MakeLog(const HostFeatures& host)
{
    const LV2_URID errorType = Map(host, LV2_LOG__Error);
    if (host.log == nullptr || errorType == 0) {
        return [](const std::string& text) { Wrapper::LogToStandardError("puffguard.lv2", text); };
    }
    return [log = host.log, errorType](const std::string& text) {
        log->printf(log->handle, errorType, "puffguard.lv2: %s\n", text.c_str());
    };
}

} // namespace Lv2
