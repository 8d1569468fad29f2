// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/DictionaryReaderJSON.h"

#include "frameworks/qobase/util/Base64.h"

#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Util {

namespace {

// Each dictionary or array nests two JSON values: its pair and what the pair holds. So does the
// root with a value of its own.
constexpr unsigned MostJsonLevels = 2 * DictionaryReaderJSON::MostNesting + 2;
constexpr std::size_t MostParts = 1'000'000;

Json::CharReader* MakeReader()
{
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["rejectDupKeys"] = false;
    builder["stackLimit"] = MostJsonLevels;
    return builder.newCharReader();
}

constexpr std::string_view Digits = "0123456789";

bool IsDigits(std::string_view text)
{
    return !text.empty() && text.find_first_not_of(Digits) == std::string_view::npos;
}

/// A number without its sign, in the parts that JSON knows: 12.5e-3 has 12, 5 and -3.
struct NumberParts {
    explicit NumberParts(std::string_view text)
    {
        const auto mark = std::min(text.find_first_of("eE"), text.size());
        const auto point = std::min(text.find('.'), mark);
        whole = text.substr(0, point);
        hasFraction = point < mark;
        if (hasFraction) {
            fraction = text.substr(point + 1, mark - point - 1);
        }
        hasExponent = mark < text.size();
        if (hasExponent) {
            exponent = text.substr(mark + 1);
        }
    }

    bool IsGood() const
    {
        const bool isSigned = exponent.starts_with('+') || exponent.starts_with('-');
        return IsDigits(whole) && (whole.size() == 1 || whole.front() != '0') &&
               (!hasFraction || IsDigits(fraction)) &&
               (!hasExponent || IsDigits(exponent.substr(isSigned ? 1 : 0)));
    }

    /// Whether it is below 1; for a number far from that.
    bool IsSmall() const
    {
        double power = 0;
        for (const char digit : exponent) {
            if (digit >= '0') {
                power = 10 * power + (digit - '0');
            }
        }
        if (exponent.starts_with('-')) {
            power = -power;
        }
        if (whole != "0") {
            return power + static_cast<double>(whole.size()) <= 0;
        }
        const auto zeros = std::min(fraction.find_first_not_of('0'), fraction.size());
        return power <= static_cast<double>(zeros);
    }

    std::string_view whole;
    std::string_view fraction;
    std::string_view exponent; // with its sign
    bool hasFraction = false;
    bool hasExponent = false;
};

/// Empty for what is no number in JSON and for one too large. One too small is 0.
std::optional<double> ParseNumber(std::string_view text)
{
    const bool isNegative = text.starts_with('-');
    const NumberParts parts(text.substr(isNegative ? 1 : 0));
    if (!parts.IsGood()) {
        return std::nullopt;
    }
    double number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec == std::errc()) {
        return number;
    }
    return parts.IsSmall() ? std::optional(isNegative ? -0.0 : 0.0) : std::nullopt;
}

/// The text with each number replaced by its index in `numbers`.
///
/// The library reads numbers by the process's locale, and a host may have set any; so it gets
/// to see whole numbers only, which it reads alike everywhere.
class NumberTable {
public:
    /// False when a number is none, or when there are too many parts. A "+" ahead of a number is no
    /// JSON, which the library overlooks.
    bool Take(std::string_view text)
    {
        indexed.clear();
        indexed.reserve(text.size());
        numbers.clear();
        std::size_t parts = 0;
        while (!text.empty()) {
            const char first = text.front();
            std::size_t length = 1;
            if (first == '+' || (first == ',' && ++parts > MostParts)) {
                return false;
            }
            if (first == '"') {
                length = QuotedLength(text);
            }
            const bool isNumber = first == '-' || (first >= '0' && first <= '9');
            if (isNumber) {
                length = std::min(text.find_first_not_of("0123456789+-.eE"), text.size());
                if (!Add(text.substr(0, length))) {
                    return false;
                }
            } else {
                indexed += text.substr(0, length);
            }
            text.remove_prefix(length);
        }
        return true;
    }

    const std::string& GetIndexed() const { return indexed; }
    std::optional<double> Find(const Json::Value& value) const
    {
        if (!value.isUInt() || value.asUInt() >= numbers.size()) {
            return std::nullopt;
        }
        return numbers[value.asUInt()];
    }

private:
    static std::size_t QuotedLength(std::string_view text)
    {
        for (std::size_t i = 1; i < text.size(); ++i) {
            if (text[i] == '\\') {
                ++i;
            } else if (text[i] == '"') {
                return i + 1;
            }
        }
        return text.size();
    }
    bool Add(std::string_view digits)
    {
        const auto number = ParseNumber(digits);
        if (!number) {
            return false;
        }
        indexed += std::to_string(numbers.size());
        numbers.push_back(*number);
        return true;
    }

    std::string indexed;
    std::vector<double> numbers;
};

String TextOf(const Json::Value& value)
{
    return {value.asString()};
}

/// Tells one text's values to a visitor; each function is false at the first bad one.
class Walker {
public:
    Walker(const NumberTable& newNumbers, DictionaryActions& newActions)
        : numbers(newNumbers)
        , actions(newActions)
    {
    }

    bool WalkDictionary(const Json::Value& object)
    {
        if (!object.isObject()) {
            return false;
        }
        for (auto member = object.begin(); member != object.end(); ++member) {
            if (!WalkPair(String(member.name()), *member)) {
                return false;
            }
        }
        return true;
    }

private:
    bool WalkPair(const String& key, const Json::Value& pair)
    {
        if (!pair.isObject() || !pair.isMember("Type") || !pair.isMember("Value")) {
            return false;
        }
        const Json::Value& type = pair["Type"];
        return type.isString() && WalkValue(key, type.asString(), pair["Value"]);
    }

    bool WalkValue(const String& key, const std::string& type, const Json::Value& value)
    {
        using Visit = bool (Walker::*)(const String&, const Json::Value&);
        static constexpr std::pair<std::string_view, Visit> Types[] = {
            {"UInt", &Walker::VisitWhole<uint32_t, &DictionaryActions::OnUInt>},
            {"Int", &Walker::VisitWhole<int32_t, &DictionaryActions::OnInt>},
            {"Float", &Walker::VisitFloat},
            {"Bool", &Walker::VisitBool},
            {"String", &Walker::VisitString},
            {"Base64", &Walker::VisitBytes},
            {"Dictionary", &Walker::VisitDictionary},
            {"Array", &Walker::VisitArray}};
        for (const auto& [word, visit] : Types) {
            if (word == type) {
                return (this->*visit)(key, value);
            }
        }
        return false;
    }

    template <typename Whole, void (DictionaryActions::*Action)(const String&, Whole)>
    bool VisitWhole(const String& key, const Json::Value& value)
    {
        using Limits = std::numeric_limits<Whole>;
        const auto number = numbers.Find(value);
        if (!number || *number != std::trunc(*number) || *number < Limits::min() ||
            *number > Limits::max()) {
            return false;
        }
        (actions.*Action)(key, static_cast<Whole>(*number));
        return true;
    }
    bool VisitFloat(const String& key, const Json::Value& value)
    {
        const auto number = numbers.Find(value);
        if (number) {
            actions.OnFloat(key, *number);
        }
        return number.has_value();
    }
    bool VisitBool(const String& key, const Json::Value& value)
    {
        if (value.isBool()) {
            actions.OnBool(key, value.asBool());
        }
        return value.isBool();
    }
    bool VisitString(const String& key, const Json::Value& value)
    {
        if (value.isString()) {
            actions.OnString(key, TextOf(value));
        }
        return value.isString();
    }
    bool VisitBytes(const String& key, const Json::Value& value)
    {
        auto bytes = value.isString() ? DecodeBase64(TextOf(value)) : std::nullopt;
        if (!bytes) {
            return false;
        }
        actions.OnBytes(key, std::move(*bytes));
        return true;
    }
    bool VisitDictionary(const String& key, const Json::Value& value)
    {
        actions.BeginDictionary(key);
        const bool isGood = WalkDictionary(value);
        actions.EndDictionary();
        return isGood;
    }
    bool VisitArray(const String& key, const Json::Value& value)
    {
        if (!value.isArray()) {
            return false;
        }
        actions.BeginArray(key);
        bool isGood = true;
        for (auto element = value.begin(); isGood && element != value.end(); ++element) {
            isGood = WalkPair("", *element);
        }
        actions.EndArray();
        return isGood;
    }

    const NumberTable& numbers;
    DictionaryActions& actions;
};

} // namespace

struct DictionaryReaderJSON::Parser {
    std::unique_ptr<Json::CharReader> reader{MakeReader()};
    NumberTable numbers;

    /// False also for what the library raises: it does so on deep nesting.
    bool Parse(ByteSpan text, Json::Value& root)
    {
        const std::string_view characters(reinterpret_cast<const char*>(text.data()), text.size());
        // The library takes a NUL byte for the end of the text, whatever stands behind it.
        if (characters.find('\0') != std::string_view::npos || !numbers.Take(characters)) {
            return false;
        }
        const std::string& indexed = numbers.GetIndexed();
        try {
            return reader->parse(indexed.data(), indexed.data() + indexed.size(), &root, nullptr);
        } catch (const Json::Exception&) {
            return false;
        }
    }
};

DictionaryReaderJSON::DictionaryReaderJSON()
    : parser(std::make_unique<Parser>())
{
}

DictionaryReaderJSON::~DictionaryReaderJSON() = default;

bool DictionaryReaderJSON::Read(ByteSpan text, DictionaryActions& actions)
{
    Json::Value root;
    return parser->Parse(text, root) && Walker(parser->numbers, actions).WalkDictionary(root);
}

void DictionaryReaderJSON::Reset()
{
    *parser = {};
}

} // namespace Util
