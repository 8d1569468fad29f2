// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/DataStreamIO.h"
#include "frameworks/qobase/util/FileStream.h"
#include "frameworks/qobase/util/MemoryStream.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <random>
#include <vector>

namespace {

using Util::Bytes;
using Util::DataStream;
using Util::File;
using Util::FileStream;
using Util::MemoryStream;

template <typename Action>
std::string Raised(const Action& action)
{
    try {
        action();
    } catch (const Util::Exception::DataStreamIO& fault) {
        return fault.GetMessage().ToStdString();
    }
    return "nothing";
}

/// Every kind of value once, the widths told apart by their bytes.
void WriteAll(DataStream& stream)
{
    stream.WriteInt8(-2);
    stream.WriteUInt8(0xFE);
    stream.WriteInt16(-2);
    stream.WriteUInt16(0x0102);
    stream.WriteInt32(-2);
    stream.WriteUInt32(0x01020304);
    stream.WriteInt64(-2);
    stream.WriteUInt64(0x0102030405060708);
    stream.WriteFloat(-1.5F);
    stream.WriteDouble(-1.5);
    stream.WriteBool(true);
    stream.WriteString("ab");
    stream.WriteBytes("raw", 3);
    stream.WriteUInt8Vector(Bytes{7, 8});
    stream.WriteInt16Vector(std::vector<int16_t>{-1});
    stream.WriteDoubleVector(std::vector<double>{2.0});
    stream.WriteStringVector(std::vector<String>{"x", ""});
}

// By hand from the rule: little-endian, two's complement, binary32 and binary64.
const Bytes AllWritten{0xFE, 0xFE,                                                             //
                       0xFE, 0xFF, 0x02, 0x01,                                                 //
                       0xFE, 0xFF, 0xFF, 0xFF, 0x04, 0x03, 0x02, 0x01,                         //
                       0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,                         //
                       0x08, 0x07, 0x06, 0x05, 0x04, 0x03, 0x02, 0x01,                         //
                       0x00, 0x00, 0xC0, 0xBF, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF8, 0xBF, //
                       0x01, 0x02, 0x00, 0x00, 0x00, 'a',  'b',                                //
                       'r',  'a',  'w',  0x02, 0x00, 0x00, 0x00, 0x07, 0x08,                   //
                       0x01, 0x00, 0x00, 0x00, 0xFF, 0xFF,                                     //
                       0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40, //
                       0x02, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 'x',  0x00, 0x00, 0x00,
                       0x00};

void ReadAll(DataStream& stream)
{
    EXPECT_EQ(stream.ReadInt8(), -2);
    EXPECT_EQ(stream.ReadUInt8(), 0xFE);
    EXPECT_EQ(stream.ReadInt16(), -2);
    EXPECT_EQ(stream.ReadUInt16(), 0x0102);
    EXPECT_EQ(stream.ReadInt32(), -2);
    EXPECT_EQ(stream.ReadUInt32(), 0x01020304U);
    EXPECT_EQ(stream.ReadInt64(), -2);
    EXPECT_EQ(stream.ReadUInt64(), 0x0102030405060708U);
    EXPECT_EQ(stream.ReadFloat(), -1.5F);
    EXPECT_EQ(stream.ReadDouble(), -1.5);
    EXPECT_TRUE(stream.ReadBool());
    EXPECT_EQ(stream.ReadString(), "ab");
    EXPECT_EQ(stream.ReadBytes(3), (Bytes{'r', 'a', 'w'}));
    EXPECT_EQ(stream.ReadUInt8Vector(), (Bytes{7, 8}));
    EXPECT_EQ(stream.ReadInt16Vector(), std::vector<int16_t>{-1});
    EXPECT_EQ(stream.ReadDoubleVector(), std::vector<double>{2.0});
    EXPECT_EQ(stream.ReadStringVector(), (std::vector<String>{"x", ""}));
}

TEST(DataStream, HasOneLayoutInMemoryAndInFiles)
{
    const Support::TemporaryFolder folder;
    MemoryStream written;
    WriteAll(written);
    EXPECT_EQ(written.GetBytes(), AllWritten);
    {
        FileStream file(folder / "file", File::Mode::Write);
        WriteAll(file);
        EXPECT_EQ(file.GetPosition(), AllWritten.size());
        file.Flush();
    }
    EXPECT_EQ(*Util::ReadWholeFile(folder / "file"), AllWritten);
    MemoryStream memory(AllWritten);
    FileStream file(folder / "file", File::Mode::Read);
    for (DataStream* const stream : std::initializer_list<DataStream*>{&memory, &file}) {
        ReadAll(*stream);
        EXPECT_TRUE(stream->IsAtEnd());
        stream->SetPosition(1);
        EXPECT_EQ(stream->GetRemaining(), AllWritten.size() - 1);
        EXPECT_EQ(stream->ReadUInt8(), 0xFE);
        EXPECT_EQ(stream->GetPosition(), 2U);
    }
}

TEST(DataStream, EveryTruncationRaises)
{
    const Support::TemporaryFolder folder;
    for (std::size_t size = 0; size < AllWritten.size(); ++size) {
        const Bytes cut(AllWritten.begin(), AllWritten.begin() + static_cast<std::ptrdiff_t>(size));
        MemoryStream memory(cut);
        EXPECT_THROW(ReadAll(memory), Util::Exception::DataStreamIO) << size;
        ASSERT_TRUE(Util::ReplaceWholeFile(folder / "file", cut));
        FileStream file(folder / "file", File::Mode::Read);
        EXPECT_THROW(ReadAll(file), Util::Exception::DataStreamIO) << size;
    }
}

TEST(DataStream, FaultsNameTheValueAndTheReason)
{
    const Bytes threeBytes{1, 0, 0};
    const Bytes twoClaimed{2, 0, 0, 0, 'x'};
    const std::string three = ": Attempt to read 4 bytes, only read 3 bytes";
    const struct {
        const Bytes& bytes;
        std::function<void(DataStream&)> read;
        std::string text;
    } rows[] = {
        {threeBytes, [](auto& s) { s.ReadInt32(); }, "Can't extract int32" + three},
        {threeBytes, [](auto& s) { s.ReadUInt32(); }, "Can't extract uint32" + three},
        {threeBytes, [](auto& s) { s.ReadFloat(); }, "Can't extract float" + three},
        {threeBytes, [](auto& s) { s.ReadString(); }, "Can't extract uint32" + three},
        {threeBytes, [](auto& s) { s.ReadBytes(4); }, "Can't extract 4 bytes" + three},
        {twoClaimed,
         [](auto& s) { s.ReadString(); },
         "Can't extract string: Attempt to read 2 bytes, only read 1 bytes"},
        {twoClaimed,
         [](auto& s) { s.ReadInt16Vector(); },
         "Can't extract 4 bytes: Attempt to read 4 bytes, only read 1 bytes"},
        {threeBytes, [](auto& s) { s.SetPosition(4); }, "Seek to 4 failed"},
    };
    for (const auto& row : rows) {
        MemoryStream stream(row.bytes);
        EXPECT_EQ(Raised([&] { row.read(stream); }), row.text);
    }
    MemoryStream empty;
    const auto raise = [&] { empty.ReadBool(); };
    EXPECT_EQ(Raised(raise), "Can't extract bool: Attempt to read 1 bytes, only read 0 bytes");
    EXPECT_EQ(Raised([] { FileStream("/none/file", File::Mode::Read); }),
              "Can't open file: /none/file");
    // A disk that is always full.
    FileStream full("/dev/full", File::Mode::Write);
    const std::string reason = ": Attempt to write 4 bytes, only wrote 0 bytes";
    EXPECT_EQ(Raised([&] { full.WriteUInt32(1); }), "Can't insert uint32" + reason);
    EXPECT_EQ(Raised([&] { full.WriteBytes("four", 4); }), "Can't insert 4 bytes" + reason);
    full.SetWritesLengthPrefix(false);
    EXPECT_EQ(Raised([&] { full.WriteString("four"); }), "Can't insert string" + reason);
    EXPECT_EQ(full.GetPosition(), 0U);
    const auto text = Util::Exception::DataStreamIO("Improbable").Describe().ToStdString();
    EXPECT_TRUE(text.starts_with("Base:\nImprobable\n")) << text;
    EXPECT_TRUE(text.ends_with("\nDataStreamIO\n")) << text;
    EXPECT_NE(text.find("DataStreamTest.cpp ("), std::string::npos) << text;
}

TEST(DataStream, ImprobableLengthsRaiseBeforeAnythingIsRead)
{
    MemoryStream stream;
    stream.WriteString(std::string(200000, 's'));
    const uint64_t second = stream.GetPosition();
    stream.WriteString(std::string(200001, 's'));
    stream.SetPosition(0);
    EXPECT_EQ(stream.ReadString().Length(), 200000U);
    EXPECT_EQ(Raised([&] { stream.ReadString(); }), "Improbable string length 200001");
    EXPECT_EQ(stream.GetPosition(), second + 4);

    const auto claim = [](uint32_t count) {
        MemoryStream claims;
        claims.WriteUInt32(count);
        claims.SetPosition(0);
        return Bytes(claims.GetBytes());
    };
    constexpr uint32_t Most = 64U << 20;
    MemoryStream bytes(claim(Most + 1));
    EXPECT_EQ(Raised([&] { bytes.ReadUInt8Vector(); }), "Improbable vector length 67108865");
    MemoryStream doubles(claim(Most / 8 + 1));
    EXPECT_EQ(Raised([&] { doubles.ReadDoubleVector(); }), "Improbable vector length 8388609");
    MemoryStream texts(claim(0xFFFFFFFF));
    EXPECT_EQ(Raised([&] { texts.ReadStringVector(); }), "Improbable vector length 4294967295");
    // A length that can be believed, and no data: no more is made room for than one step.
    MemoryStream none(claim(Most));
    EXPECT_EQ(Raised([&] { none.ReadUInt8Vector(); }),
              "Can't extract 1048576 bytes: Attempt to read 1048576 bytes, only read 0 bytes");
    EXPECT_EQ(Raised([&] { none.ReadBytes(~uint64_t{0}); }),
              "Improbable vector length 18446744073709551615");
}

TEST(DataStream, WritesInTheMiddleAndTextsWithoutTheirLengthWhenAsked)
{
    MemoryStream stream(Bytes{1, 2, 3});
    stream.SetPosition(2);
    stream.WriteUInt16(0x0B0A);
    EXPECT_EQ(stream.GetBytes(), (Bytes{1, 2, 0x0A, 0x0B}));
    EXPECT_TRUE(stream.IsAtEnd());
    stream.SetWritesLengthPrefix(false);
    stream.WriteString("ab");
    stream.WriteUInt8Vector(Bytes{9}); // vectors keep theirs
    EXPECT_EQ(stream.GetBytes(), (Bytes{1, 2, 0x0A, 0x0B, 'a', 'b', 1, 0, 0, 0, 9}));
}

TEST(DataStream, LongVectorsAndOddNumbersComeBackBitByBit)
{
    std::mt19937 random(2);
    std::vector<float> numbers(700000); // more than two steps
    for (float& number : numbers) {
        number = std::bit_cast<float>(static_cast<uint32_t>(random())); // also not-a-numbers
    }
    MemoryStream stream;
    stream.WriteFloatVector(numbers);
    stream.SetPosition(0);
    const auto back = stream.ReadFloatVector();
    ASSERT_EQ(back.size(), numbers.size());
    EXPECT_EQ(std::memcmp(back.data(), numbers.data(), numbers.size() * sizeof(float)), 0);
}

} // namespace
