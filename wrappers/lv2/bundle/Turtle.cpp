// SPDX-License-Identifier: ISC
#include "wrappers/lv2/bundle/Turtle.h"

#include <array>
#include <charconv>

namespace Lv2 {

namespace {

bool IsLetter(char letter)
{
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
}

bool IsDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}

} // namespace

std::string TurtlePrefixes()
{
    return R"(@prefix atom: <http://lv2plug.in/ns/ext/atom#> .
@prefix doap: <http://usefulinc.com/ns/doap#> .
@prefix foaf: <http://xmlns.com/foaf/0.1/> .
@prefix log: <http://lv2plug.in/ns/ext/log#> .
@prefix lv2: <http://lv2plug.in/ns/lv2core#> .
@prefix pg: <http://lv2plug.in/ns/ext/port-groups#> .
@prefix pprops: <http://lv2plug.in/ns/ext/port-props#> .
@prefix pset: <http://lv2plug.in/ns/ext/presets#> .
@prefix rdf: <http://www.w3.org/1999/02/22-rdf-syntax-ns#> .
@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .
@prefix state: <http://lv2plug.in/ns/ext/state#> .
@prefix units: <http://lv2plug.in/ns/extensions/units#> .
@prefix urid: <http://lv2plug.in/ns/ext/urid#> .
@prefix xsd: <http://www.w3.org/2001/XMLSchema#> .

)";
}

std::string TurtleUri(std::string_view uri)
{
    std::string text = "<";
    text += uri;
    return text += '>';
}

std::string TurtleText(std::string_view text)
{
    std::string quoted = "\"";
    for (const char letter : text) {
        if (letter == '"' || letter == '\\') {
            quoted += '\\';
        }
        if (letter == '\n') {
            quoted += "\\n";
        } else if (letter != '\r') {
            quoted += letter;
        }
    }
    return quoted + '"';
}

std::string TurtleNumber(double value)
{
    std::array<char, 64> text{};
    // A port is a float: its shortest text holds all of it.
    const auto end = std::to_chars(text.data(),
                                   text.data() + text.size(),
                                   static_cast<float>(value),
                                   std::chars_format::fixed);
    const std::string number(text.data(), end.ptr);
    return number.find('.') == std::string::npos ? number + ".0" : number;
}

std::string TurtleBytes(std::span<const uint8_t> bytes)
{
    constexpr std::string_view Digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text = "\"";
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const auto byte = [&](size_t at) { return at < bytes.size() ? bytes[at] : 0U; };
        const uint32_t word = byte(i) << 16U | byte(i + 1) << 8U | byte(i + 2);
        for (uint32_t digit = 0; digit < 4; ++digit) {
            text += i + digit <= bytes.size() ? Digits[word >> (18U - 6U * digit) & 63U] : '=';
        }
    }
    return text + "\"^^xsd:base64Binary";
}

std::string TurtleSymbol(std::string_view name)
{
    std::string symbol;
    for (const char letter : name) {
        const bool isPlain = IsLetter(letter) || (IsDigit(letter) && !symbol.empty());
        symbol += isPlain ? static_cast<char>(letter | (IsLetter(letter) ? 0x20 : 0)) : '_';
    }
    return symbol;
}

} // namespace Lv2
