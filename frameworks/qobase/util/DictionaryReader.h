// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Dictionary.h"

#include <optional>

namespace Util {

/// Told of each value of a tree, in order: one operation a type, in the order of their tags, and
/// the begin and end of what nests. Values inside an array come with an empty key. [ui]
class DictionaryActions {
public:
    virtual ~DictionaryActions() = default;
    virtual void OnUInt(const String& key, uint32_t value) = 0;
    virtual void OnInt(const String& key, int32_t value) = 0;
    virtual void OnFloat(const String& key, double value) = 0;
    virtual void OnBool(const String& key, bool value) = 0;
    virtual void OnString(const String& key, const String& value) = 0;
    virtual void OnBytes(const String& key, Bytes value) = 0;
    virtual void BeginDictionary(const String& key) = 0;
    virtual void EndDictionary() = 0;
    virtual void BeginArray(const String& key) = 0;
    virtual void EndArray() = 0;
};

/// Builds a tree of typed values back from text. One object belongs to one instance, under its UI
/// lock. [ui]
class DictionaryReader {
public:
    virtual ~DictionaryReader() = default;
    /// False when the text is not of this form; what the visitor received until then is to be
    /// dropped.
    virtual bool Read(ByteSpan text, DictionaryActions& actions) = 0;
    virtual void Reset() = 0;
};

/// The tree in `text`; empty when it can't be read, and then nothing of it.
std::optional<Dictionary> ReadDictionary(DictionaryReader& reader, ByteSpan text);

} // namespace Util
