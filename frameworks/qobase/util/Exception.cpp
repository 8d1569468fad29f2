// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Exception.h"

#include <cerrno>
#include <utility>

namespace Exception {

Base::Base(String newMessage, const char* newFile, uint32_t newLine)
    : lastError(errno)
    , message(std::move(newMessage))
    , file(newFile)
    , line(newLine)
{
}

String Base::Describe() const
{
    const String place =
        String("%1 (%2): Thrown, GetLastError(): %3\n").arg(file).arg(line).arg(lastError);
    return String("Base:\n") + message + "\n" + place;
}

} // namespace Exception
