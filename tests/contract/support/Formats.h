// SPDX-License-Identifier: ISC
#pragma once

#include "tests/contract/support/FormatHost.h"

#include <string>
#include <vector>

namespace Contract {

/// The entry first, then the formats that this build has. The first call moves the user's folders
/// into a temporary one for the rest of the process.
const std::vector<Format>& GetFormats();

/// For parameters of tests: how they are shown, and named.
void PrintTo(const Format& format, std::ostream* stream);
template <typename Info>
std::string NameOf(const Info& info)
{
    return info.param.name;
}

} // namespace Contract
