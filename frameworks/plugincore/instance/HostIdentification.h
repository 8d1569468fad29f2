// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <cstdint>

/// Which program has loaded the module. Some hosts need a difference in behaviour, which goes by
/// the number.
struct HostIdentity {
    uint32_t number = 0;
    const char* name = "";

    static constexpr uint32_t ProTools = 2;
    static constexpr uint32_t Unknown = 36;
};

/// Finds the host by the file name of its process, in any case, by parts of it; the first match
/// wins. A folder in front is left out. [any]
HostIdentity IdentifyHost(const String& processFile);
