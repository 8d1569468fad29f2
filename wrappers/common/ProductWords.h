// SPDX-License-Identifier: ISC
#pragma once

namespace Wrapper {

// What hosts show their users of the plug-in, in every format; its names are the module's.
inline constexpr const char* ShortDescription = "Takes plosives out of speech";
inline constexpr const char* LongDescription =
    "Finds the bursts of air of \"p\" and \"b\" sounds in speech and takes them down to what the "
    "sound around them suggests; everything else passes unchanged.";

} // namespace Wrapper
