// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/DictionaryReaderJSON.h"
#include "frameworks/qobase/util/JSONDictionaryWriter.h"
#include "tests/support/GermanNumbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string_view>

namespace {

using Util::Bytes;
using Util::Dictionary;
using Array = Util::DictionaryValue::Array;

constexpr double Infinity = std::numeric_limits<double>::infinity();

std::optional<Dictionary> Read(std::string_view text)
{
    Util::DictionaryReaderJSON reader;
    return Util::ReadDictionary(reader,
                                {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

std::string Write(const Dictionary& dictionary)
{
    Util::JSONDictionaryWriter writer;
    Util::WriteDictionary(writer, dictionary);
    return writer.GetText().ToStdString();
}

/// Every type, at its limits, plain and inside the two that nest.
Dictionary MakeTree()
{
    Dictionary leaf;
    leaf.Set("least", {std::numeric_limits<int32_t>::min()});
    leaf.Set("most", {std::numeric_limits<uint32_t>::max()});
    leaf.Set("", {Dictionary()});
    leaf.Set("none", {Array()});
    leaf.Set("bytes", {Bytes()});
    Dictionary root;
    root.Set("leaf", {leaf});
    root.Set("Leaf", {Array{{Array{{true}, {leaf}}}, {0.1}, {String("")}, {Bytes{0, 255, 1}}}});
    root.Set("text \"\\/\b\x01\x7f",
             {String(std::string_view("nul\0, \xc3\xa4, \xf0\x9f\x8e\xa4", 14))});
    root.Set("no UTF-8", {String("\xff\xc3(\xed\xa0\x80")});
    root.Set("smallest", {std::numeric_limits<double>::denorm_min()});
    root.Set("largest", {std::numeric_limits<double>::max()});
    root.Set("minus zero", {-0.0});
    return root;
}

TEST(Dictionary, TextIsTheWrittenFormWhateverTheLocaleOfTheHost)
{
    const Support::GermanNumbers german;
    Dictionary inner;
    inner.Set("b", {uint32_t{7}});
    Dictionary root;
    root.Set("Gain", {0.5});
    EXPECT_EQ(Write(root), R"({"Gain":{"Type":"Float","Value":0.5}})");
    EXPECT_EQ(Write({}), "{}");
    root.Set("D", {inner});
    root.Set("a\n",
             {Array{{int32_t{-1}},
                    {String(std::string_view("\"\0\x1f\x7f", 4))},
                    {Bytes{'M', 'a', 'n'}},
                    {false}}});
    EXPECT_EQ(Write(root),
              R"({"D":{"Type":"Dictionary","Value":{"b":{"Type":"UInt","Value":7}}},)"
              R"("Gain":{"Type":"Float","Value":0.5},)"
              R"("a\u000a":{"Type":"Array","Value":[{"Type":"Int","Value":-1},)"
              R"({"Type":"String","Value":"\"\u0000\u001f"},{"Type":"Base64","Value":"TWFu"},)"
              R"({"Type":"Bool","Value":false}]}})");
}

TEST(Dictionary, EveryValueGoesThroughTextUnchanged)
{
    const Dictionary tree = MakeTree();
    const std::string text = Write(tree);
    {
        const Support::GermanNumbers german;
        EXPECT_EQ(Write(tree), text);
        EXPECT_TRUE(Read(text) == tree);
    }
    EXPECT_TRUE(std::signbit(*Read(Write(tree))->Find<double>("minus zero")));
    EXPECT_EQ(tree.Find<int32_t>("smallest"), nullptr) << "a value is found by its type only";

    std::mt19937 random(1);
    Array floats;
    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<float>(static_cast<uint32_t>(random()));
        if (std::isfinite(value)) {
            floats.push_back({static_cast<double>(value)});
        }
    }
    Dictionary numbers;
    numbers.Set("floats", {floats});
    EXPECT_TRUE(Read(Write(numbers)) == numbers);
}

TEST(Dictionary, WhatJsonCannotHoldIsLeftOut)
{
    Dictionary inner;
    inner.Set("nan", {std::nan("")});
    Dictionary root;
    root.Set("array", {Array{{1.0}, {Array{{-Infinity}}}}});
    root.Set("inner", {inner});
    root.Set("number", {Infinity});
    root.Set("rest", {1.0});
    Dictionary expected;
    expected.Set("inner", {Dictionary()});
    expected.Set("rest", {1.0});
    EXPECT_TRUE(Read(Write(root)) == expected);
}

TEST(Dictionary, OneBadMemberFailsTheWholeText)
{
    const struct {
        const char* type;
        const char* good; // values, between bars
        const char* bad;
    } types[] = {
        {"UInt", "4294967295", "4294967296|-1|0.5|\"1\""},
        {"Int", "-2147483648", "2147483648|99999999999999999999999999|true"},
        {"Float", "3|-1.5e+3|-0.50E-01", "1e999|NaN|1.2.3|-|+9|01|-00.5|1.|1.e5|-.5|1e+|null"},
        {"Bool", "true", "1"},
        {"String", R"("\ud83c\udfa4"|"+9")", R"(false|"\ud83c")"},
        {"Base64", R"("QQ==")", R"("QQ"|7)"},
        {"Dictionary", "{}", R"([]|{"x":1})"},
        {"Array", "[]", R"({}|[1]|[{"Type":"Bool","Value":true},])"},
    };
    std::vector<std::pair<std::string, bool>> members = {
        {R"({"Type":"uint","Value":1})", false},
        {R"({"Type":0,"Value":1})", false},
        {R"({"Type":"UInt"})", false},
        {R"({"Value":1})", false},
        {R"({"Type":"UInt","Value":1,"More":[2.5]})", true},
        {R"({"Type":"UInt","Value":0.5,"Value":1})", true},
        {R"({'Type':'UInt','Value':1})", false},
        {R"({"Type":"UInt","Value":/**/1})", false},
        {"1", false},
        {"null", false},
        {"[]", false},
    };
    for (const auto& [type, good, bad] : types) {
        for (const char* const values : {good, bad}) {
            for (const String& value : String(values).Split('|')) {
                const String member = String(R"({"Type":"%1","Value":%2})").arg(type).arg(value);
                members.emplace_back(member.ToStdString(), values == good);
            }
        }
    }
    for (const auto& [member, isGood] : members) {
        const std::string text = R"({"a":{"Type":"Bool","Value":true},"b":)" + member + "}";
        EXPECT_EQ(Read(text).has_value(), isGood) << text;
    }
    for (const char* text : {"", " ", "null", "7", "[]", "\"{}\"", "{}x", "{} 1", "{a}", "\xff"}) {
        EXPECT_FALSE(Read(text)) << text;
    }
    EXPECT_TRUE(Read(" {\r\n\t} \n"));
    using namespace std::string_view_literals;
    for (const auto text :
         {"{}\0"sv, "{}\0x"sv, "\0{}"sv, "{\"a\0\":{\"Type\":\"UInt\",\"Value\":1}}"sv}) {
        EXPECT_FALSE(Read(text)) << text;
    }
}

TEST(Dictionary, ANumberTooSmallForItsTypeIsZeroAndOneTooLargeIsRefused)
{
    const std::string zeros(400, '0');
    const std::pair<std::string, std::optional<double>> cases[] = {
        {"1e-400", 0.0},
        {"-123.4e-999", -0.0},
        {"0." + zeros + "1", 0.0},
        {"1" + zeros + "e-800", 0.0},
        {"1e-99999999999999999999", 0.0},
        {"0e99999999999999999999", 0.0},
        {"0." + zeros + "1e402", 10.0},
        {"1" + zeros + "e-399", 10.0},
        {"1" + zeros, std::nullopt},
        {"0." + zeros + "1e800", std::nullopt},
        {"-1e99999999999999999999", std::nullopt},
    };
    for (const auto& [text, value] : cases) {
        const auto tree = Read(R"({"a":{"Type":"Float","Value":)" + text + "}}");
        EXPECT_EQ(tree.has_value(), value.has_value()) << text;
        if (tree && value) {
            EXPECT_EQ(*tree->Find<double>("a"), *value) << text;
            EXPECT_EQ(std::signbit(*tree->Find<double>("a")), std::signbit(*value)) << text;
        }
    }
}

TEST(Dictionary, TextThatIsCutOffIsRefused)
{
    const std::string text = Write(MakeTree());
    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_FALSE(Read(std::string_view(text).substr(0, length))) << length;
    }
}

TEST(Dictionary, DepthAndNumberOfPartsAreBounded)
{
    Util::DictionaryReaderJSON reader;
    for (const auto& [depth, isGood] : {std::pair(119, true), {130, false}, {100000, false}}) {
        std::string text;
        for (int i = 0; i < depth; ++i) {
            text += R"({"a":{"Type":"Dictionary","Value":)";
        }
        text += "{}";
        for (int i = 0; i < depth; ++i) {
            text += "}}";
        }
        const Util::ByteSpan bytes(reinterpret_cast<const uint8_t*>(text.data()), text.size());
        EXPECT_EQ(Util::ReadDictionary(reader, bytes).has_value(), isGood) << depth;
    }
    // What is written can be read, to the level where it ends.
    Dictionary deep;
    Array row{{true}};
    for (int i = 0; i < 150; ++i) {
        Dictionary around;
        around.Set("a", {std::move(deep)});
        around.Set("b", {true});
        deep = std::move(around);
        row = Array{{std::move(row)}};
    }
    deep.Set("row", {row});
    const auto back = Read(Write(deep));
    ASSERT_TRUE(back);
    EXPECT_FALSE(back->Has("row"));
    int levels = 0;
    for (const Dictionary* at = &*back; at != nullptr; at = at->Find<Dictionary>("a")) {
        levels += at->Has("b") ? 1 : 0;
    }
    EXPECT_EQ(levels, 120);
    EXPECT_FALSE(Read(std::string(1000000, '[')));
    std::string many = R"({"a":{"Type":"Bool","Value":true,"More":[0)";
    for (int i = 0; i < 1100000; ++i) {
        many += ",0";
    }
    EXPECT_FALSE(Read(many + "]}}"));
}

TEST(Dictionary, WriterKeepsItsPlace)
{
    Util::JSONDictionaryWriter writer;
    writer.EndDictionary(); // there is nothing but the root
    writer.BeginDictionary("a");
    writer.BeginDictionary("b");
    writer.WriteBool("x", true);
    writer.EndDictionary();
    writer.EndDictionary();
    writer.WriteBool("y", true);
    writer.BeginDictionary("a");
    writer.BeginDictionary("b");
    writer.WriteBool("z", false); // joins "x"; both dictionaries are still open
    Dictionary b;
    b.Set("x", {true});
    b.Set("z", {false});
    Dictionary a;
    a.Set("b", {b});
    Dictionary root;
    root.Set("a", {a});
    root.Set("y", {true});
    EXPECT_EQ(writer.GetText().ToStdString(), Write(root));
    EXPECT_EQ(writer.GetText().ToStdString(), "{}");
}

} // namespace
