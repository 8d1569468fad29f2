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

/// With the reason as its last argument, where a failure with a file has the system's.
inline ParseError MakeParseError(const String& text, const String& reason)
{
    return ParseError(text, "Preset::Parse", {reason});
}

inline ValueError MakeValueError(const String& text)
{
    return ValueError(text, "Preset::Value");
}

/// Why an operation on a file failed, such as a full disk; empty where nothing is known.
String GetReason(const Util::ErrorVariant& error);
/// What failed, and why where that is known.
String GetFullText(const Util::ErrorVariant& error);

} // namespace Preset
