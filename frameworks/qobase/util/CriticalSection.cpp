// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/CriticalSection.h"

#include <utility>

namespace Util {

CriticalSection::CriticalSection(String newName)
    : name(std::move(newName))
{
}

} // namespace Util
