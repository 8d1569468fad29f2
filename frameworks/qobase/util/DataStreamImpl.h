// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/ByteStream.h"
#include "frameworks/qobase/util/DataStream.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>
#include <vector>

namespace Util {

static_assert(std::endian::native == std::endian::little, "values are stored as they lie here");

/// Typed values over a byte source; the derived class owns the source.
class DataStreamImpl : public DataStream {
public:
    uint64_t GetPosition() const final { return position; }
    void SetPosition(uint64_t newPosition) final;
    uint64_t GetSize() const final;
    uint64_t GetRemaining() const final;
    bool IsAtEnd() const final;
    void Flush() final;
    bool GetWritesLengthPrefix() const final { return writeLengthPrefix; }
    void SetWritesLengthPrefix(bool newWriteLengthPrefix) final
    {
        writeLengthPrefix = newWriteLengthPrefix;
    }

    void ReadBytes(void* buffer, uint64_t count) final { Extract(buffer, count); }
    Bytes ReadBytes(uint64_t count) final { return ReadElements<uint8_t>(count); }
    String ReadString() final;
    bool ReadBool() final;
    int8_t ReadInt8() final { return ReadScalar<int8_t>(); }
    int16_t ReadInt16() final { return ReadScalar<int16_t>(); }
    int32_t ReadInt32() final { return ReadScalar<int32_t>(); }
    int64_t ReadInt64() final { return ReadScalar<int64_t>(); }
    uint8_t ReadUInt8() final { return ReadScalar<uint8_t>(); }
    uint16_t ReadUInt16() final { return ReadScalar<uint16_t>(); }
    uint32_t ReadUInt32() final { return ReadScalar<uint32_t>(); }
    uint64_t ReadUInt64() final { return ReadScalar<uint64_t>(); }
    float ReadFloat() final { return ReadScalar<float>(); }
    double ReadDouble() final { return ReadScalar<double>(); }
    std::vector<int8_t> ReadInt8Vector() final { return ReadElements<int8_t>(ReadUInt32()); }
    std::vector<int16_t> ReadInt16Vector() final { return ReadElements<int16_t>(ReadUInt32()); }
    std::vector<int32_t> ReadInt32Vector() final { return ReadElements<int32_t>(ReadUInt32()); }
    std::vector<int64_t> ReadInt64Vector() final { return ReadElements<int64_t>(ReadUInt32()); }
    std::vector<uint8_t> ReadUInt8Vector() final { return ReadElements<uint8_t>(ReadUInt32()); }
    std::vector<uint16_t> ReadUInt16Vector() final { return ReadElements<uint16_t>(ReadUInt32()); }
    std::vector<uint32_t> ReadUInt32Vector() final { return ReadElements<uint32_t>(ReadUInt32()); }
    std::vector<uint64_t> ReadUInt64Vector() final { return ReadElements<uint64_t>(ReadUInt32()); }
    std::vector<float> ReadFloatVector() final { return ReadElements<float>(ReadUInt32()); }
    std::vector<double> ReadDoubleVector() final { return ReadElements<double>(ReadUInt32()); }
    std::vector<String> ReadStringVector() final;

    void WriteBytes(const void* buffer, uint64_t count) final { Insert(buffer, count); }
    void WriteBytes(ByteSpan bytes) final { Insert(bytes.data(), bytes.size()); }
    void WriteString(const String& text) final;
    void WriteBool(bool value) final;
    void WriteInt8(int8_t value) final { WriteScalar(value); }
    void WriteInt16(int16_t value) final { WriteScalar(value); }
    void WriteInt32(int32_t value) final { WriteScalar(value); }
    void WriteInt64(int64_t value) final { WriteScalar(value); }
    void WriteUInt8(uint8_t value) final { WriteScalar(value); }
    void WriteUInt16(uint16_t value) final { WriteScalar(value); }
    void WriteUInt32(uint32_t value) final { WriteScalar(value); }
    void WriteUInt64(uint64_t value) final { WriteScalar(value); }
    void WriteFloat(float value) final { WriteScalar(value); }
    void WriteDouble(double value) final { WriteScalar(value); }
    void WriteInt8Vector(std::span<const int8_t> values) final { WriteVector(values); }
    void WriteInt16Vector(std::span<const int16_t> values) final { WriteVector(values); }
    void WriteInt32Vector(std::span<const int32_t> values) final { WriteVector(values); }
    void WriteInt64Vector(std::span<const int64_t> values) final { WriteVector(values); }
    void WriteUInt8Vector(std::span<const uint8_t> values) final { WriteVector(values); }
    void WriteUInt16Vector(std::span<const uint16_t> values) final { WriteVector(values); }
    void WriteUInt32Vector(std::span<const uint32_t> values) final { WriteVector(values); }
    void WriteUInt64Vector(std::span<const uint64_t> values) final { WriteVector(values); }
    void WriteFloatVector(std::span<const float> values) final { WriteVector(values); }
    void WriteDoubleVector(std::span<const double> values) final { WriteVector(values); }
    void WriteStringVector(std::span<const String> texts) final;

protected:
    /// `newSource` stands at 0 and lives as long as the stream; it may be a member of the derived
    /// class, since nothing is asked of it here.
    explicit DataStreamImpl(ByteStream& newSource)
        : source(newSource)
    {
    }

private:
    static constexpr uint64_t StepBytes = 1ULL << 20; // a vector grows so far ahead of its data

    // The one way to read and to write. The name of the value is for the text of a failure; without
    // one it is a run of bytes.
    void Extract(void* buffer, uint64_t count, const char* name = nullptr);
    void Insert(const void* buffer, uint64_t count, const char* name = nullptr);
    void WriteCount(uint64_t count);
    static void RefuseLength(uint64_t count, uint64_t most);

    template <typename T>
    static constexpr const char* NameOf();
    template <typename T>
    T ReadScalar();
    template <typename T>
    std::vector<T> ReadElements(uint64_t count);
    template <typename T>
    void WriteScalar(T value);
    template <typename T>
    void WriteVector(std::span<const T> values);

    ByteStream& source;
    uint64_t position = 0; // bytes from the start
    bool writeLengthPrefix = true;
};

template <typename T>
constexpr const char* DataStreamImpl::NameOf()
{
    constexpr std::array SignedNames{"int8", "int16", "int32", "int64"};
    constexpr std::array UnsignedNames{"uint8", "uint16", "uint32", "uint64"};
    constexpr auto Place = static_cast<std::size_t>(std::countr_zero(sizeof(T)));
    if constexpr (std::is_floating_point_v<T>) {
        return sizeof(T) == sizeof(float) ? "float" : "double";
    } else {
        return std::is_signed_v<T> ? SignedNames[Place] : UnsignedNames[Place];
    }
}

template <typename T>
T DataStreamImpl::ReadScalar()
{
    T value{};
    Extract(&value, sizeof value, NameOf<T>());
    return value;
}

template <typename T>
std::vector<T> DataStreamImpl::ReadElements(uint64_t count)
{
    RefuseLength(count, MaxClaimedBytes / sizeof(T));
    std::vector<T> values;
    while (values.size() < count) {
        const std::size_t before = values.size();
        const uint64_t step = std::min(count - before, StepBytes / sizeof(T));
        values.resize(before + step);
        Extract(values.data() + before, step * sizeof(T));
    }
    return values;
}

template <typename T>
void DataStreamImpl::WriteScalar(T value)
{
    Insert(&value, sizeof value, NameOf<T>());
}

template <typename T>
void DataStreamImpl::WriteVector(std::span<const T> values)
{
    WriteCount(values.size());
    Insert(values.data(), values.size_bytes());
}

} // namespace Util
