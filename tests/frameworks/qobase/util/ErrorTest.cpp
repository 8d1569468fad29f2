// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Error.h"
#include "frameworks/qobase/util/Exception.h"
#include "frameworks/qobase/util/Expected.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

struct FileKind;
struct ParseKind;
using FileError = Util::BasicError<FileKind>;
using ParseError = Util::BasicError<ParseKind>;

Util::Expected<int> ReadDigit(char character)
{
    if (character < '0' || character > '9') {
        return ParseError(String("\"%1\" is no digit").arg(String(std::string(1, character))));
    }
    return character - '0';
}

Util::Expected<std::unique_ptr<int>> MakeOwned(bool succeeds)
{
    if (!succeeds) {
        return FileError("no memory");
    }
    return std::make_unique<int>(7);
}

TEST(ErrorVariant, CopiesAreIndependentAndKeepTheKind)
{
    Util::ErrorVariant first = FileError("first", "more", std::vector<String>{"one"});
    Util::ErrorVariant second = first;
    EXPECT_NE(&first.Get(), &second.Get());
    first = Util::ErrorVariant(ParseError("other"));
    EXPECT_NE(first.As<ParseError>(), nullptr);
    EXPECT_EQ(second.As<ParseError>(), nullptr);
    EXPECT_EQ(second.GetDescription(), "first");
    EXPECT_EQ(second.Get().GetArguments()[0], "one");
    const Util::ErrorVariant& alias = second;
    second = alias; // assignment to itself
    EXPECT_EQ(second.GetDescription(), "first");
}

TEST(Expected, IsTrueWithAResultAndFalseWithAnError)
{
    EXPECT_EQ(*ReadDigit('7'), 7);
    EXPECT_TRUE(ReadDigit('0')); // a result that counts as false is a success all the same
    const auto bad = ReadDigit('x');
    ASSERT_FALSE(bad);
    EXPECT_EQ(bad.GetDescription(), "\"x\" is no digit");
    EXPECT_NE(bad.GetError().As<ParseError>(), nullptr);

    std::unique_ptr<int> owned = *MakeOwned(true); // what can't be copied is given away
    EXPECT_EQ(*owned, 7);
    EXPECT_EQ(MakeOwned(false).GetDescription(), "no memory");
    EXPECT_TRUE(Util::Expected<void>());
    EXPECT_EQ(Util::Expected<void>(FileError("refused")).GetDescription(), "refused");
}

TEST(Exception, DescribesMessagePlaceAndLastError)
{
    errno = ENOENT; // 2
    const Exception::Base fault("broken");
    const int line = __LINE__ - 1;
    errno = EINVAL;
    const std::string expected = std::string("Base:\nbroken\n") + __FILE__ + " (" +
                                 std::to_string(line) + "): Thrown, GetLastError(): 2\n";
    EXPECT_EQ(fault.Describe().ToStdString(), expected);
}

} // namespace
