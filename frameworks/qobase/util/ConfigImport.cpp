// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/ConfigImport.h"

#include "frameworks/qobase/util/NumberText.h"

#include <charconv>
#include <cstddef>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace Util {

namespace {

std::optional<DictionaryValue> ParseText(std::string_view text)
{
    return DictionaryValue{String(text)};
}

std::optional<DictionaryValue> ParseNumber(std::string_view text)
{
    if (const auto number = ParseUInt(String(text))) {
        return DictionaryValue{*number};
    }
    if (const auto number = ParseInt(String(text))) {
        return DictionaryValue{*number};
    }
    return std::nullopt;
}

std::optional<DictionaryValue> ParseBinary(std::string_view text)
{
    if (text.size() % 2 != 0) {
        return std::nullopt;
    }
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        uint8_t byte = 0;
        const char* end = text.data() + i + 2;
        const auto result = std::from_chars(text.data() + i, end, byte, 16);
        if (result.ec != std::errc() || result.ptr != end) {
            return std::nullopt;
        }
        bytes.push_back(byte);
    }
    return DictionaryValue{std::move(bytes)};
}

struct Kind {
    std::string_view mark;
    std::optional<DictionaryValue> (*parse)(std::string_view text);
};
constexpr Kind Kinds[] = {
    {"=text:", ParseText}, {"=number:", ParseNumber}, {"=binary:", ParseBinary}};

/// The first mark ends the name, so that names may hold "=" and texts may hold anything.
bool ReadLine(std::string_view line, Dictionary& values)
{
    const Kind* kind = nullptr;
    std::size_t nameLength = std::string_view::npos;
    for (const Kind& candidate : Kinds) {
        if (const std::size_t position = line.find(candidate.mark); position < nameLength) {
            kind = &candidate;
            nameLength = position;
        }
    }
    if (kind == nullptr) {
        return false;
    }
    auto value = kind->parse(line.substr(nameLength + kind->mark.size()));
    if (!value) {
        return false;
    }
    values.Set(String(line.substr(0, nameLength)), std::move(*value));
    return true;
}

} // namespace

ImportedSettings ParseSettings(const String& text)
{
    ImportedSettings settings;
    for (const String& part : text.Split('\n')) {
        std::string_view line = part.View();
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        const bool isPassedOver = line.empty() || line.front() == '#' || line.front() == ';';
        if (!isPassedOver && !ReadLine(line, settings.values)) {
            settings.isComplete = false;
        }
    }
    return settings;
}

} // namespace Util
