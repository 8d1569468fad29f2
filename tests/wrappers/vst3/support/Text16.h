// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <string>

namespace Vst3Host {

/// ASCII as the format's 16-bit text.
inline std::basic_string<int16_t> Text16(const std::string& text)
{
    return {text.begin(), text.end()};
}

/// The other way; what is no ASCII becomes "?".
inline std::string TextOf(const int16_t* text)
{
    std::string result;
    for (; *text != 0; ++text) {
        result += *text > 0 && *text < 0x80 ? static_cast<char>(*text) : '?';
    }
    return result;
}

} // namespace Vst3Host
