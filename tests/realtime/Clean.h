// SPDX-License-Identifier: ISC
#pragma once

#include "tests/realtime/Probe.h"

#include <string>
#include <string_view>

/// What the audio side may do: no heap, no system, and no lock but the stated ones.
namespace Realtime {

/// The name of the critical section whose lock this is.
std::string NameOf(const void* lock);
/// Whether docs/threads.md lets the audio thread take the lock of this name.
bool IsStated(std::string_view name);
/// Only critical sections are recursive; the plain locks of queues and timers have no name.
bool IsRecursive(const void* lock);

/// A failure of the running test for each thing in the report that isn't clean.
void ExpectClean(const Probe::Report& report, const std::string& where);

} // namespace Realtime
