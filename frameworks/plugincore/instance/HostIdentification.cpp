// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/HostIdentification.h"

#include <array>
#include <string_view>

namespace {

// A host matches when the name holds each of `all`, or `other`. Empty texts don't count. The order
// is that of the search, which is not quite that of the numbers: "lm" is short enough to stand in
// many names and comes last.
struct HostRow {
    HostIdentity identity;
    std::array<std::string_view, 2> all;
    std::array<std::string_view, 2> others;
};

constexpr std::array<HostRow, 34> HostRows{{
    {{0, "Digital Performer"}, {"dp", ""}, {"digital performer", ""}},
    {{2, "Pro Tools"}, {"pro", "tools"}, {}},
    {{4, "Media Composer 8"}, {"dsm_server", ""}, {"mediacomposer", ""}},
    {{5, "Cubase"}, {"cubase", ""}, {}},
    {{6, "Nuendo"}, {"nuendo", ""}, {}},
    {{7, "Peak"}, {"peak", ""}, {}},
    {{8, "Sample Editor"}, {"sample", "editor"}, {}},
    {{9, "Wave Editor"}, {"wave", "editor"}, {}},
    {{10, "SONAR"}, {"sonar", ""}, {}},
    {{11, "Wavelab"}, {"wavelab", ""}, {}},
    {{12, "Sound Forge"}, {"forge", ""}, {}},
    {{13, "Vegas"}, {"vegas", ""}, {}},
    {{14, "Audition"}, {"audition", ""}, {}},
    {{15, "Premiere Pro"}, {"premiere", "pro"}, {}},
    {{16, "Soundtrack Pro"}, {"soundtrack", "pro"}, {}},
    {{17, "Logic Pro"}, {"logic", "pro"}, {}},
    {{18, "Logic Express"}, {"logic", "express"}, {}},
    {{19, "Final Cut Pro"}, {"final", "cut"}, {}},
    {{20, "Live"}, {"live", ""}, {}},
    {{21, "Tracktion"}, {"tracktion", ""}, {}},
    {{22, "Garageband"}, {"garageband", ""}, {}},
    {{23, "DSP Quattro"}, {"quattro", ""}, {}},
    {{24, "Reaper"}, {"reaper", ""}, {}},
    {{25, "Samplitude"}, {"sam", ""}, {}},
    {{26, "Sequoia"}, {"sequoia", ""}, {}},
    {{27, "Pyramix"}, {"pyramix", ""}, {}},
    {{28, "Renoise"}, {"renoise", ""}, {}},
    {{29, "DaVinci Resolve"}, {"resolve", ""}, {}},
    {{30, "auval"}, {"auval", ""}, {}},
    {{31, "SA Hook"}, {"pluginhookssa", ""}, {"sahook", ""}},
    {{32, "VST Bridge 32"}, {"vstbridge32", ""}, {}},
    {{33, "VST Bridge 64"}, {"vstbridge64", ""}, {}},
    {{34, "gtest (unit tests)"}, {"otest", ""}, {"unit tests", "xctest"}},
    {{35, "LM"}, {"lm", ""}, {}},
}};

bool Holds(std::string_view name, std::string_view part)
{
    return name.find(part) != std::string_view::npos;
}

bool Matches(const HostRow& row, std::string_view name)
{
    if (Holds(name, row.all[0]) && Holds(name, row.all[1])) {
        return true;
    }
    for (const std::string_view other : row.others) {
        if (!other.empty() && Holds(name, other)) {
            return true;
        }
    }
    return false;
}

} // namespace

HostIdentity IdentifyHost(const String& processFile)
{
    const String lowered = processFile.ToLower();
    std::string_view name = lowered.View();
    if (const auto slash = name.find_last_of("/\\"); slash != std::string_view::npos) {
        name.remove_prefix(slash + 1);
    }
    for (const HostRow& row : HostRows) {
        if (Matches(row, name)) {
            return row.identity;
        }
    }
    return {HostIdentity::Unknown, "Unknown"};
}
