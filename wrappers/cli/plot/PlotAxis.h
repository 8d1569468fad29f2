// SPDX-License-Identifier: ISC
#pragma once

#include <string>

namespace Cli {

/// A round distance between marks of an axis: 1, 2 or 5 times a power of ten, or whole parts of a
/// minute or an hour when `isTime`, so that at most `most` marks fit into `range`.
double NiceStep(double range, int most, bool isTime);

/// The text of a mark at `seconds` on a time axis whose marks are `step` seconds apart: "0.25",
/// "3", "2:10" or "1:02:10".
std::string FormatMark(double seconds, double step);

} // namespace Cli
