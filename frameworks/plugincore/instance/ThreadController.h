// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/CriticalSection.h"

#include <cstdint>

/// The two locks of an instance, one for each side.
///
/// Order: who takes both takes the processing lock first. A call from the UI side that will wait
/// for the processing lock enters it before the UI lock; a try-enter is free of this rule.
class ThreadController {
public:
    explicit ThreadController(const String& name)
        : processing(String("%1 Processing CritSec").arg(name))
        , ui(String("%1 UI CritSec").arg(name))
    {
    }

    Util::CriticalSection& GetProcessLock() noexcept { return processing; }
    Util::CriticalSection& GetUILock() noexcept { return ui; }

private:
    Util::CriticalSection processing;
    Util::CriticalSection ui;
};
