// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

namespace Util {

/// The text with "?" in place of every byte that is no part of a UTF-8 character, and of every
/// character that XML 1.0 can't hold in any form: most control codes, and U+FFFE and U+FFFF. [any]
String CleanText(const String& text);

} // namespace Util
