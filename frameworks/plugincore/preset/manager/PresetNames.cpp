// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/manager/PresetNames.h"

#include "frameworks/plugincore/preset/manager/PresetTexts.h"
#include "frameworks/qobase/util/EditDistance.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace Preset {
namespace {

bool IsControl(char c)
{
    const auto code = static_cast<uint8_t>(c);
    return code < 0x20 || code == 0x7F;
}

constexpr std::string_view ForbiddenCharacters = "/\\:*?\"<>|";

bool IsForbidden(char c)
{
    return ForbiddenCharacters.find(c) != std::string_view::npos;
}

// What another system keeps for its devices, whatever stands behind a dot.
bool IsDevice(std::string_view stem)
{
    const String folded = String(stem).ToLower();
    const std::string_view text = folded.View();
    if (text.size() == 4 && (text.starts_with("com") || text.starts_with("lpt"))) {
        return text[3] >= '0' && text[3] <= '9';
    }
    constexpr std::array<std::string_view, 6> Names = {
        "con", "prn", "aux", "nul", "conin$", "conout$"};
    return std::find(Names.begin(), Names.end(), text) != Names.end();
}

std::string_view WithoutEnd(std::string_view text, const char* characters)
{
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

} // namespace

bool IsReserved(const String& name)
{
    const String folded = name.ToLower();
    return folded == String(Texts::FactorySettings).ToLower() ||
           folded == String(Texts::FormerSettings).ToLower();
}

String MakeGoodName(const String& name)
{
    std::string good(WithoutEnd(name.View(), ". "));
    const std::size_t dot = std::min(good.find('.'), good.size());
    const std::string_view stem = WithoutEnd(std::string_view(good).substr(0, dot), " ");
    if (IsDevice(stem)) {
        good.insert(stem.size(), "_");
    }
    return good;
}

String MakeImportedName(const String& name)
{
    std::string text = name.ToStdString();
    std::replace_if(
        text.begin(), text.end(), [](char c) { return IsForbidden(c) || IsControl(c); }, '-');
    return MakeGoodName(text);
}

Util::Expected<void> CheckName(const String& name)
{
    const std::string_view text = name.View();
    if (text.find_first_not_of(' ') == std::string_view::npos) {
        return ManagerError("A preset needs a name.");
    }
    if (std::any_of(text.begin(), text.end(), IsForbidden)) {
        return ManagerError("A preset's name can't hold any of / \\ : * ? \" < > |");
    }
    if (std::any_of(text.begin(), text.end(), IsControl)) {
        return ManagerError("A preset's name can't hold control codes.");
    }
    if (text.front() == '.') {
        return ManagerError("A preset's name can't start with a dot.");
    }
    if (IsReserved(name)) {
        return ManagerError("A preset can't be named \"" + name + "\", which is always there.");
    }
    return {};
}

String FindNearestName(const String& wanted, const std::vector<String>& names)
{
    // A third of the letters wrong is a slip, more is another name. No name is as long as a text
    // that isn't compared at all.
    constexpr std::size_t MostBytes = 256;
    const String folded = wanted.ToLower();
    String nearest;
    std::size_t fewest = std::min<std::size_t>(folded.Length(), MostBytes) / 3 + 1;
    for (const String& name : names) {
        if (folded.Length() > MostBytes || name.Length() > MostBytes) {
            continue;
        }
        const std::size_t edits = Util::CountEdits(folded.View(), name.ToLower().View());
        if (edits < fewest) {
            fewest = edits;
            nearest = name;
        }
    }
    return nearest;
}

String JoinNames(const std::vector<String>& names, std::size_t mostBytes)
{
    constexpr std::string_view Others = ", ...";
    std::string joined;
    for (const String& name : names) {
        const std::string_view comma = joined.empty() ? "" : ", ";
        const bool isLast = &name == &names.back();
        const std::size_t reserved = isLast ? 0 : Others.size();
        if (joined.size() + comma.size() + name.Length() + reserved > mostBytes) {
            return joined.append(joined.empty() ? Others.substr(2) : Others);
        }
        joined.append(comma).append(name.View());
    }
    return joined;
}

} // namespace Preset
