// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Expected.h"

#include <vector>

namespace Preset {

/// Whether a preset of the user's can be named so: on every file system, beside the entries that
/// lists always have, and without hiding. The failure is a ManagerError. [any]
Util::Expected<void> CheckName(const String& name);

/// The name that is most likely meant by one that isn't there; empty when none is close. [any]
String FindNearestName(const String& wanted, const std::vector<String>& names);

/// The names with commas between them, as many as go into `mostBytes`; "..." stands for the others.
/// [any]
String JoinNames(const std::vector<String>& names, std::size_t mostBytes);

} // namespace Preset
