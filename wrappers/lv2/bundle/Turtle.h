// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Lv2 {

/// The first lines of every file: short names for the vocabularies.
std::string TurtlePrefixes();

/// An address in its brackets.
std::string TurtleUri(std::string_view uri);

/// A text in quotes.
std::string TurtleText(std::string_view text);

/// A number that every reader takes for a decimal.
std::string TurtleNumber(double value);

/// Bytes as a typed literal.
std::string TurtleBytes(std::span<const uint8_t> bytes);

/// A name made of lower-case letters, digits and "_" that begins with no digit.
std::string TurtleSymbol(std::string_view name);

} // namespace Lv2
