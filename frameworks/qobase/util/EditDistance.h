// SPDX-License-Identifier: ISC
#pragma once

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string_view>
#include <utility>
#include <vector>

namespace Util {

/// Least number of bytes to put in, take out, change, or swap with their neighbour to make one text
/// of the other. Takes time in proportion to the product of both lengths. [any]
///
/// Method: the optimal string alignment of F. J. Damerau, "A technique for computer detection and
/// correction of spelling errors", CACM 7(3), 1964. Wholly in this header, so that what stands
/// outside of the module can use it without linking any of it.
inline std::size_t CountEdits(std::string_view from, std::string_view to)
{
    // Edits between a beginning of `from` and each beginning of `to`: for the one that grows, the
    // one a byte shorter, and the one two bytes shorter.
    std::vector<std::size_t> row(to.size() + 1);
    std::vector<std::size_t> last(to.size() + 1);
    std::vector<std::size_t> beforeLast(to.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        row[0] = i + 1;
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t changed = last[j] + (from[i] == to[j] ? 0 : 1);
            row[j + 1] = std::min({changed, row[j] + 1, last[j + 1] + 1});
            if (i > 0 && j > 0 && from[i] == to[j - 1] && from[i - 1] == to[j]) {
                row[j + 1] = std::min(row[j + 1], beforeLast[j - 1] + 1);
            }
        }
        std::swap(beforeLast, last);
        std::swap(last, row);
    }
    return last.back();
}

} // namespace Util
