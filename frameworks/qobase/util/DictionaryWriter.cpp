// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/DictionaryWriter.h"

#include <variant>

namespace Util {

namespace {

/// Writes one value by the operation of its type.
struct ValueWriter {
    DictionaryWriter& writer;
    const String& key;

    void operator()(uint32_t value) const { writer.WriteUInt(key, value); }
    void operator()(int32_t value) const { writer.WriteInt(key, value); }
    void operator()(double value) const { writer.WriteFloat(key, value); }
    void operator()(bool value) const { writer.WriteBool(key, value); }
    void operator()(const String& value) const { writer.WriteString(key, value); }
    void operator()(const Bytes& value) const { writer.WriteBytes(key, value); }
    void operator()(const Dictionary& value) const
    {
        writer.BeginDictionary(key);
        WriteDictionary(writer, value);
        writer.EndDictionary();
    }
    void operator()(const DictionaryValue::Array& value) const { writer.WriteArray(key, value); }
};

} // namespace

void WriteDictionary(DictionaryWriter& writer, const Dictionary& dictionary)
{
    for (const auto& [key, value] : dictionary) {
        std::visit(ValueWriter{writer, key}, value.value);
    }
}

} // namespace Util
