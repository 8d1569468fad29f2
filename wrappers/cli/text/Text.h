// SPDX-License-Identifier: ISC
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Cli {

/// `name` fit for one line of a terminal: control characters and bytes that aren't UTF-8 come out
/// as \xNN, everything else as it is.
std::string Printable(std::string_view name);

/// `name` with every byte that isn't UTF-8 replaced by U+FFFD: what JSON and drawn text can hold.
std::string ToUtf8(std::string_view name);

/// A time or duration such as "3.21 s", "4:03.21" or "1:02:03.40".
std::string FormatClock(double seconds);

/// A waiting time in whole seconds such as "0:07" or "1:02:03".
std::string FormatRemaining(double seconds);

/// The entry of `candidates` that `word` is most likely a misspelling of; empty when none is near.
std::string NearestWord(std::string_view word, const std::vector<std::string>& candidates);

/// `text` with its ASCII letters in lower case.
std::string LowerCase(std::string_view text);

} // namespace Cli
