// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/DictionaryWriter.h"

#include <vector>

namespace Util {

/// Gathers what is written as a tree and keeps the stack of open dictionaries; what derives from it
/// makes the text. A dictionary that is begun under a key of a former one goes on with that one.
/// [ui]
class SerializableDictionaryWriter : public DictionaryWriter {
public:
    SerializableDictionaryWriter();

    void WriteUInt(const String& key, uint32_t value) override;
    void WriteFloat(const String& key, double value) override;
    void WriteBool(const String& key, bool value) override;
    void WriteInt(const String& key, int32_t value) override;
    void WriteString(const String& key, const String& value) override;
    void WriteBytes(const String& key, ByteSpan value) override;
    void BeginDictionary(const String& key) override;
    /// Does nothing when only the root is open.
    void EndDictionary() override;
    void WriteArray(const String& key, const DictionaryValue::Array& value) override;

protected:
    /// Closes what is open and gives the whole tree; a fresh root is open afterwards.
    Dictionary TakeRoot();

private:
    struct Level {
        String key;
        Dictionary dictionary;
    };

    std::vector<Level> open; // root first, never empty
};

} // namespace Util
