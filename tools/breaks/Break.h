// SPDX-License-Identifier: ISC
#pragma once

#include <cstdlib>

namespace Break {

/// Whether the change of this number in tools/breaks/changes.py is to be in force: as
/// PUFFGUARD_BREAK says when a program first gets here. [any]
inline bool IsChosen(int number) noexcept
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody sets it
    static const char* const text = std::getenv("PUFFGUARD_BREAK");
    static const int chosen = text != nullptr ? std::atoi(text) : 0;
    return number == chosen;
}

} // namespace Break
