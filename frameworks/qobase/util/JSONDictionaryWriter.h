// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/SerializableDictionaryWriter.h"

namespace Util {

/// Writes JSON in which each value carries its type: {"Gain":{"Type":"Float","Value":0.5}}.
///
/// Keys come in byte order, numbers in the fewest digits that read back as the same number, texts
/// byte by byte. JSON knows no infinities and no NaN: such a number is left out, together with the
/// array that holds it, so that a reader keeps the value that it has. So is what lies deeper than
/// DictionaryReaderJSON reads. [ui]
class JSONDictionaryWriter final : public SerializableDictionaryWriter {
public:
    /// Compact has no white space; Lines gives each value of the root a line, for a person to read.
    enum class Layout { Compact, Lines };

    explicit JSONDictionaryWriter(Layout newLayout = Layout::Compact)
        : layout(newLayout)
    {
    }

    String GetText() override;

private:
    Layout layout;
};

} // namespace Util
