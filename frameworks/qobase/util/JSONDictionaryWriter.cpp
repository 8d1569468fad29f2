// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/JSONDictionaryWriter.h"

#include "frameworks/qobase/util/Base64.h"
#include "frameworks/qobase/util/DictionaryReaderJSON.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace Util {

namespace {

// Made here and not by the library that reads it: that one writes numbers as the process's locale
// says, and a host may have set any.

// `level`: dictionaries and arrays around the value, without the root.
bool IsWritable(const DictionaryValue& value, unsigned level)
{
    if (level >= DictionaryReaderJSON::MostNesting) {
        return false;
    }
    if (const auto* number = std::get_if<double>(&value.value)) {
        return std::isfinite(*number);
    }
    if (const auto* array = std::get_if<DictionaryValue::Array>(&value.value)) {
        return std::all_of(array->begin(), array->end(), [level](const DictionaryValue& element) {
            return IsWritable(element, level + 1);
        });
    }
    return true;
}

void AppendQuoted(std::string& text, std::string_view content)
{
    constexpr std::string_view Hexadecimal = "0123456789abcdef";
    text += '"';
    for (const char character : content) {
        const auto byte = static_cast<uint8_t>(character);
        if (byte < 0x20) {
            text += "\\u00";
            text += Hexadecimal[byte >> 4];
            text += Hexadecimal[byte & 15];
            continue;
        }
        if (character == '"' || character == '\\') {
            text += '\\';
        }
        text += character;
    }
    text += '"';
}

template <typename Number>
void AppendNumber(std::string& text, Number number)
{
    std::array<char, 32> digits{}; // the longest double takes 24
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text.append(digits.data(), end);
}

void AppendDictionary(std::string& text,
                      const Dictionary& dictionary,
                      unsigned level,
                      std::string_view lineBreak);
void AppendArray(std::string& text, const DictionaryValue::Array& array, unsigned level);

/// Appends the two members of one value.
struct PairAppender {
    std::string& text;
    unsigned level;

    void operator()(uint32_t value) const { AppendNumber(Open("UInt"), value); }
    void operator()(int32_t value) const { AppendNumber(Open("Int"), value); }
    void operator()(double value) const { AppendNumber(Open("Float"), value); }
    void operator()(bool value) const { Open("Bool") += value ? "true" : "false"; }
    void operator()(const String& value) const { AppendQuoted(Open("String"), value.View()); }
    void operator()(const Bytes& value) const
    {
        AppendQuoted(Open("Base64"), EncodeBase64(value).View());
    }
    void operator()(const Dictionary& value) const
    {
        AppendDictionary(Open("Dictionary"), value, level + 1, "");
    }
    void operator()(const DictionaryValue::Array& value) const
    {
        AppendArray(Open("Array"), value, level + 1);
    }

private:
    std::string& Open(std::string_view type) const
    {
        text += R"("Type":")";
        text += type;
        return text += R"(","Value":)";
    }
};

void AppendValue(std::string& text, const DictionaryValue& value, unsigned level)
{
    text += '{';
    std::visit(PairAppender{text, level}, value.value);
    text += '}';
}

void AppendArray(std::string& text, const DictionaryValue::Array& array, unsigned level)
{
    text += '[';
    std::string_view separator;
    for (const DictionaryValue& value : array) {
        text += separator;
        separator = ",";
        AppendValue(text, value, level);
    }
    text += ']';
}

void AppendDictionary(std::string& text,
                      const Dictionary& dictionary,
                      unsigned level,
                      std::string_view lineBreak)
{
    text += '{';
    std::string_view separator;
    for (const auto& [key, value] : dictionary) {
        if (!IsWritable(value, level)) {
            continue;
        }
        text += separator;
        separator = ",";
        text += lineBreak;
        AppendQuoted(text, key.View());
        text += ':';
        AppendValue(text, value, level);
    }
    text += lineBreak;
    text += '}';
    text += lineBreak;
}

} // namespace

String JSONDictionaryWriter::GetText()
{
    std::string text;
    AppendDictionary(text, TakeRoot(), 0, layout == Layout::Lines ? "\n" : "");
    return {std::move(text)};
}

} // namespace Util
