// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/DictionaryReader.h"

#include <memory>

namespace Util {

/// Reads what JSONDictionaryWriter writes, as strictly: one member without "Type" and "Value", of
/// an unknown type, or with a value that its type can't hold fails the whole text. Further members
/// beside those two are passed over, and of two members with one key the later counts.
///
/// Any text is safe: no exception, and neither depth nor size of what it claims exhausts stack or
/// memory; text nested deeper than 120 dictionaries, or of more than a million parts, is refused.
/// [ui]
class DictionaryReaderJSON final : public DictionaryReader {
public:
    /// Dictionaries and arrays, one inside the other, that the root may hold.
    static constexpr unsigned MostNesting = 120;

    DictionaryReaderJSON();
    ~DictionaryReaderJSON() override;

    bool Read(ByteSpan text, DictionaryActions& actions) override;
    /// Gives memory of the last text back.
    void Reset() override;

private:
    struct Parser;

    std::unique_ptr<Parser> parser; // costs more to make than a small text to read
};

} // namespace Util
