// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Expected.h"

#include <vector>

namespace Preset {

/// Whether a preset of the user's can be named so, beside the entries that lists always have, and
/// without hiding. The failure is a ManagerError. [any]
Util::Expected<void> CheckName(const String& name);

/// Whether it is the name of an entry that lists always have, in any case. [any]
bool IsReserved(const String& name);

/// The name, changed where some file system would refuse it or give it to something else: without
/// dots and blanks at its end, and with a "_" behind the name of a device, such as "CON". [any]
String MakeGoodName(const String& name);

/// The same for the name of a file that comes from elsewhere: "-" stands for each character that
/// CheckName() refuses anywhere. [any]
String MakeImportedName(const String& name);

/// The name that is most likely meant by one that isn't there; empty when none is close. [any]
String FindNearestName(const String& wanted, const std::vector<String>& names);

/// The names with commas between them, as many as go into `mostBytes`; "..." stands for the others.
/// [any]
String JoinNames(const std::vector<String>& names, std::size_t mostBytes);

} // namespace Preset
