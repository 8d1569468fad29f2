// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/TimeText.h"

#include <chrono>

namespace Util {

String GetPresentTimeText()
{
    using namespace std::chrono;
    const auto now = floor<seconds>(system_clock::now());
    const auto today = floor<days>(now);
    const year_month_day date(today);
    const hh_mm_ss time(now - today);
    const auto number = [](auto value) { return static_cast<uint32_t>(value); };
    return String("%1-%2-%3T%4:%5:%6Z")
        .arg(number(static_cast<int>(date.year())), 10, 4)
        .arg(number(static_cast<unsigned>(date.month())), 10, 2)
        .arg(number(static_cast<unsigned>(date.day())), 10, 2)
        .arg(number(time.hours().count()), 10, 2)
        .arg(number(time.minutes().count()), 10, 2)
        .arg(number(time.seconds().count()), 10, 2);
}

} // namespace Util
