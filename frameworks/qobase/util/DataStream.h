// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"
#include "frameworks/qobase/util/String.h"

#include <cstdint>
#include <span>
#include <vector>

namespace Util {

/// Typed values one after the other, little-endian and without padding. A text is a uint32 count of
/// bytes and the bytes in UTF-8; a vector is a uint32 count of elements and the elements. A call
/// that can't do all it was asked for raises Util::Exception::DataStreamIO; where the stream stands
/// then is undefined. One object belongs to one thread.
class DataStream {
public:
    DataStream() = default;
    DataStream(const DataStream&) = delete;
    DataStream& operator=(const DataStream&) = delete;
    virtual ~DataStream() = default;

    virtual uint64_t GetPosition() const = 0;
    /// Bytes from the start.
    virtual void SetPosition(uint64_t newPosition) = 0;
    virtual uint64_t GetSize() const = 0;
    /// Bytes from the position to the end; 0 behind the end.
    virtual uint64_t GetRemaining() const = 0;
    virtual bool IsAtEnd() const = 0;
    virtual void Flush() = 0;
    /// Whether texts are written with their length; at first they are. Reading always expects it.
    virtual bool GetWritesLengthPrefix() const = 0;
    virtual void SetWritesLengthPrefix(bool newWriteLengthPrefix) = 0;

    /// A run of bytes without its length.
    virtual void ReadBytes(void* buffer, uint64_t count) = 0;
    virtual Bytes ReadBytes(uint64_t count) = 0;
    /// At most 200000 bytes, so that a damaged length is met early.
    virtual String ReadString() = 0;
    /// Any byte but 0 is true.
    virtual bool ReadBool() = 0;
    virtual int8_t ReadInt8() = 0;
    virtual int16_t ReadInt16() = 0;
    virtual int32_t ReadInt32() = 0;
    virtual int64_t ReadInt64() = 0;
    virtual uint8_t ReadUInt8() = 0;
    virtual uint16_t ReadUInt16() = 0;
    virtual uint32_t ReadUInt32() = 0;
    virtual uint64_t ReadUInt64() = 0;
    virtual float ReadFloat() = 0;
    virtual double ReadDouble() = 0;
    /// At most 64 MiB. Memory grows as data arrives, whatever the length claims.
    virtual std::vector<int8_t> ReadInt8Vector() = 0;
    virtual std::vector<int16_t> ReadInt16Vector() = 0;
    virtual std::vector<int32_t> ReadInt32Vector() = 0;
    virtual std::vector<int64_t> ReadInt64Vector() = 0;
    virtual std::vector<uint8_t> ReadUInt8Vector() = 0;
    virtual std::vector<uint16_t> ReadUInt16Vector() = 0;
    virtual std::vector<uint32_t> ReadUInt32Vector() = 0;
    virtual std::vector<uint64_t> ReadUInt64Vector() = 0;
    virtual std::vector<float> ReadFloatVector() = 0;
    virtual std::vector<double> ReadDoubleVector() = 0;
    virtual std::vector<String> ReadStringVector() = 0;

    /// A run of bytes without its length.
    virtual void WriteBytes(const void* buffer, uint64_t count) = 0;
    virtual void WriteBytes(ByteSpan bytes) = 0;
    /// Without its length when GetWritesLengthPrefix() is false.
    virtual void WriteString(const String& text) = 0;
    virtual void WriteBool(bool value) = 0;
    virtual void WriteInt8(int8_t value) = 0;
    virtual void WriteInt16(int16_t value) = 0;
    virtual void WriteInt32(int32_t value) = 0;
    virtual void WriteInt64(int64_t value) = 0;
    virtual void WriteUInt8(uint8_t value) = 0;
    virtual void WriteUInt16(uint16_t value) = 0;
    virtual void WriteUInt32(uint32_t value) = 0;
    virtual void WriteUInt64(uint64_t value) = 0;
    virtual void WriteFloat(float value) = 0;
    virtual void WriteDouble(double value) = 0;
    virtual void WriteInt8Vector(std::span<const int8_t> values) = 0;
    virtual void WriteInt16Vector(std::span<const int16_t> values) = 0;
    virtual void WriteInt32Vector(std::span<const int32_t> values) = 0;
    virtual void WriteInt64Vector(std::span<const int64_t> values) = 0;
    virtual void WriteUInt8Vector(std::span<const uint8_t> values) = 0;
    virtual void WriteUInt16Vector(std::span<const uint16_t> values) = 0;
    virtual void WriteUInt32Vector(std::span<const uint32_t> values) = 0;
    virtual void WriteUInt64Vector(std::span<const uint64_t> values) = 0;
    virtual void WriteFloatVector(std::span<const float> values) = 0;
    virtual void WriteDoubleVector(std::span<const double> values) = 0;
    virtual void WriteStringVector(std::span<const String> texts) = 0;
};

} // namespace Util
