// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Error.h"

namespace Preset {

struct ParseErrorKind;
struct ValueErrorKind;

/// The form of a file is wrong; the detail is "Preset::Parse".
using ParseError = Util::BasicError<ParseErrorKind>;
/// A number in a file is wrong; the detail is "Preset::Value".
using ValueError = Util::BasicError<ValueErrorKind>;

inline ParseError MakeParseError(const String& text)
{
    return ParseError(text, "Preset::Parse");
}

inline ValueError MakeValueError(const String& text)
{
    return ValueError(text, "Preset::Value");
}

} // namespace Preset
