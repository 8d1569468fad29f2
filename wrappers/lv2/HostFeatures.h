// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Log.h"

#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/urid/urid.h>

namespace Lv2 {

/// What a host offers. Nothing of it is required: without a map of URIs there is no saved state,
/// without a log messages go to standard error.
struct HostFeatures {
    const LV2_URID_Map* map = nullptr;
    const LV2_Log_Log* log = nullptr;
};

/// `features` ends with a null pointer, or is one.
HostFeatures ReadFeatures(const LV2_Feature* const* features);

/// The number of a URI; 0 when the host maps none.
LV2_URID Map(const HostFeatures& host, const char* uri);

/// Writes into the host's log, as errors of the plug-in.
Wrapper::LogFunction MakeLog(const HostFeatures& host);

} // namespace Lv2
