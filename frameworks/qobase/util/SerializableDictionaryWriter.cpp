// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/SerializableDictionaryWriter.h"

#include <utility>

namespace Util {

SerializableDictionaryWriter::SerializableDictionaryWriter()
    : open(1)
{
}

void SerializableDictionaryWriter::WriteUInt(const String& key, uint32_t value)
{
    open.back().dictionary.Set(key, {value});
}

void SerializableDictionaryWriter::WriteFloat(const String& key, double value)
{
    open.back().dictionary.Set(key, {value});
}

void SerializableDictionaryWriter::WriteBool(const String& key, bool value)
{
    open.back().dictionary.Set(key, {value});
}

void SerializableDictionaryWriter::WriteInt(const String& key, int32_t value)
{
    open.back().dictionary.Set(key, {value});
}

void SerializableDictionaryWriter::WriteString(const String& key, const String& value)
{
    open.back().dictionary.Set(key, {value});
}

void SerializableDictionaryWriter::WriteBytes(const String& key, ByteSpan value)
{
    open.back().dictionary.Set(key, {Bytes(value.begin(), value.end())});
}

void SerializableDictionaryWriter::BeginDictionary(const String& key)
{
    const auto* former = open.back().dictionary.Find<Dictionary>(key);
    open.push_back({key, former == nullptr ? Dictionary() : *former});
}

void SerializableDictionaryWriter::EndDictionary()
{
    if (open.size() == 1) {
        return;
    }
    Level level = std::move(open.back());
    open.pop_back();
    open.back().dictionary.Set(level.key, {std::move(level.dictionary)});
}

void SerializableDictionaryWriter::WriteArray(const String& key,
                                              const DictionaryValue::Array& value)
{
    open.back().dictionary.Set(key, {value});
}

Dictionary SerializableDictionaryWriter::TakeRoot()
{
    while (open.size() > 1) {
        EndDictionary();
    }
    return std::exchange(open.back().dictionary, {});
}

} // namespace Util
