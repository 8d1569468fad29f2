// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Dictionary.h"

namespace Util {

/// Turns a tree of typed values into text. Values go to the dictionary that was opened last; a
/// fresh writer has the root open. One object belongs to one instance, under its UI lock. [ui]
class DictionaryWriter {
public:
    virtual ~DictionaryWriter() = default;
    virtual void WriteUInt(const String& key, uint32_t value) = 0;
    virtual void WriteFloat(const String& key, double value) = 0;
    virtual void WriteBool(const String& key, bool value) = 0;
    virtual void WriteInt(const String& key, int32_t value) = 0;
    virtual void WriteString(const String& key, const String& value) = 0;
    virtual void WriteBytes(const String& key, ByteSpan value) = 0;
    virtual void BeginDictionary(const String& key) = 0;
    virtual void EndDictionary() = 0;
    /// The whole text of the root; the writer is then empty and as good as new.
    virtual String GetText() = 0;
    virtual void WriteArray(const String& key, const DictionaryValue::Array& value) = 0;
};

/// Writes every value of `dictionary` into the dictionary that the writer has open.
void WriteDictionary(DictionaryWriter& writer, const Dictionary& dictionary);

} // namespace Util
