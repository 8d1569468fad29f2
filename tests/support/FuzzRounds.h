// SPDX-License-Identifier: ISC
#pragma once

#include <cstdlib>

namespace Fuzz {

/// How many seeds a test goes through: a few by default, PUFFGUARD_FUZZ_ROUNDS for a long run.
inline int GetRounds()
{
    const char* const wanted = std::getenv("PUFFGUARD_FUZZ_ROUNDS");
    return wanted != nullptr ? static_cast<int>(std::strtol(wanted, nullptr, 10)) : 3;
}

} // namespace Fuzz
