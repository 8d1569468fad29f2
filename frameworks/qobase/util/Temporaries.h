// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <cstdint>

/// The hidden files that whole files are written to before they take their place. Nothing throws.
namespace Util::Temporaries {

/// A new name, unlike that of any other process. It is hidden, and short, so that no name is too
/// long only because of it. [any]
String MakeName();

/// Removes those that lie in the folder for more than a day: their processes were killed while they
/// wrote. `now` is the time of the folder's own clock, which may be another machine's, in seconds
/// since 1970. [ui]
void RemoveOld(const String& folder, int64_t now);

} // namespace Util::Temporaries
