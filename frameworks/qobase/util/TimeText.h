// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

namespace Util {

/// The present time in UTC as "YYYY-MM-DDTHH:MM:SSZ". [any]
String GetPresentTimeText();

} // namespace Util
