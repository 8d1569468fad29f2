// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/manager/PresetNames.h"

#include "frameworks/plugincore/preset/manager/PresetTexts.h"
#include "frameworks/qobase/util/EditDistance.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace Preset {
namespace {

bool IsControl(char c)
{
    const auto code = static_cast<uint8_t>(c);
    return code < 0x20 || code == 0x7F;
}

bool IsBuiltIn(const String& name)
{
    const String folded = name.ToLower();
    return folded == String(Texts::FactorySettings).ToLower() ||
           folded == String(Texts::FormerSettings).ToLower();
}

} // namespace

Util::Expected<void> CheckName(const String& name)
{
    const std::string_view text = name.View();
    if (text.find_first_not_of(' ') == std::string_view::npos) {
        return ManagerError("A preset needs a name.");
    }
    if (text.find_first_of("/\\:*?\"<>|") != std::string_view::npos) {
        return ManagerError("A preset's name can't hold any of / \\ : * ? \" < > |");
    }
    if (std::any_of(text.begin(), text.end(), IsControl)) {
        return ManagerError("A preset's name can't hold control codes.");
    }
    if (text.front() == '.') {
        return ManagerError("A preset's name can't start with a dot.");
    }
    if (IsBuiltIn(name)) {
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
