// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <functional>

namespace Util {

/// Where trace texts go; called by whichever thread traces, one at a time.
using DebugTraceSink = std::function<void(const String&)>;

/// A diagnostic for developers: one line on standard error in debug builds, nothing in release
/// builds, or to the sink when there is one. Never fails. [any], but not on the processing side.
void DebugTrace(const String& text) noexcept;

/// Sends all texts to `sink` from now on, in every build; null gives the default back. The sink
/// must not trace. [any]
void SetDebugTraceSink(DebugTraceSink sink);

} // namespace Util
