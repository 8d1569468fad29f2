// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/DataStreamImpl.h"

#include "frameworks/qobase/util/DataStreamIO.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace Util {
namespace {

constexpr uint32_t LongestString = 200000; // bytes

template <typename Result>
void RaiseFailure(const Result& result)
{
    if (!result) {
        throw Exception::DataStreamIO(result.GetDescription());
    }
}

void RaiseFailure(const Expected<void>& result,
                  const char* pattern,
                  uint64_t count,
                  const char* name)
{
    if (result) {
        return;
    }
    const String what = name == nullptr ? String("%1 bytes").arg(count) : String(name);
    throw Exception::DataStreamIO(String(pattern).arg(what).arg(result.GetDescription()));
}

} // namespace

void DataStreamImpl::SetPosition(uint64_t newPosition)
{
    RaiseFailure(source.Seek(newPosition));
    position = newPosition;
}

uint64_t DataStreamImpl::GetSize() const
{
    const auto size = source.GetSize();
    RaiseFailure(size);
    return *size;
}

uint64_t DataStreamImpl::GetRemaining() const
{
    const uint64_t size = GetSize();
    return size - std::min(position, size);
}

bool DataStreamImpl::IsAtEnd() const
{
    return GetRemaining() == 0;
}

void DataStreamImpl::Flush()
{
    RaiseFailure(source.Flush());
}

void DataStreamImpl::Extract(void* buffer, uint64_t count, const char* name)
{
    RaiseFailure(source.Read(buffer, count), "Can't extract %1: %2", count, name);
    position += count;
}

void DataStreamImpl::Insert(const void* buffer, uint64_t count, const char* name)
{
    RaiseFailure(source.Write(buffer, count), "Can't insert %1: %2", count, name);
    position += count;
}

void DataStreamImpl::RefuseLength(uint64_t count, uint64_t most)
{
    if (count > most) {
        throw Exception::DataStreamIO(String("Improbable vector length %1").arg(count));
    }
}

void DataStreamImpl::WriteCount(uint64_t count)
{
    RefuseLength(count, std::numeric_limits<uint32_t>::max());
    WriteUInt32(static_cast<uint32_t>(count));
}

String DataStreamImpl::ReadString()
{
    const uint32_t count = ReadUInt32();
    if (count > LongestString) {
        throw Exception::DataStreamIO(String("Improbable string length %1").arg(count));
    }
    std::string text(count, '\0');
    Extract(text.data(), count, "string");
    return {std::move(text)};
}

bool DataStreamImpl::ReadBool()
{
    uint8_t byte = 0;
    Extract(&byte, sizeof byte, "bool");
    return byte != 0;
}

std::vector<String> DataStreamImpl::ReadStringVector()
{
    const uint32_t count = ReadUInt32();
    RefuseLength(count, MaxClaimedBytes / sizeof(String));
    std::vector<String> texts;
    while (texts.size() < count) {
        texts.push_back(ReadString());
    }
    return texts;
}

void DataStreamImpl::WriteString(const String& text)
{
    if (writeLengthPrefix) {
        WriteUInt32(text.Length());
    }
    Insert(text.Data(), text.Length(), "string");
}

void DataStreamImpl::WriteBool(bool value)
{
    const uint8_t byte = value ? 1 : 0;
    Insert(&byte, sizeof byte, "bool");
}

void DataStreamImpl::WriteStringVector(std::span<const String> texts)
{
    WriteCount(texts.size());
    for (const String& text : texts) {
        WriteString(text);
    }
}

} // namespace Util
