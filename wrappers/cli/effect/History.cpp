// SPDX-License-Identifier: ISC
#include "wrappers/cli/effect/History.h"

#include "wrappers/cli/text/Text.h"
#include "wrappers/cli/text/TextTable.h"
#include "wrappers/cli/text/Version.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

namespace Cli {

namespace {

// "PuffGuard.Sensitivity" as "SENSITIVITY".
std::string HeadingOf(const Control& control)
{
    std::string heading = control.parameter;
    heading.erase(0, heading.find('.') + 1);
    for (char& letter : heading) {
        letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    }
    return heading;
}

// As a user counts them, from 1.
std::vector<int> SlotsOf(const HistoryStep& step)
{
    std::vector<int> slots;
    for (int slot = 0; slot < 8; ++slot) {
        if ((step.step.slots >> slot & 1) != 0) {
            slots.push_back(slot + 1);
        }
    }
    return slots;
}

std::string OrDash(const std::string& text)
{
    return text.empty() ? "-" : text;
}

nlohmann::ordered_json ValuesOf(const HistoryStep& step)
{
    nlohmann::ordered_json values;
    for (size_t i = 0; step.values && i < ControlTable.size(); ++i) {
        values[ControlTable[i].member] = (*step.values)[i];
    }
    return values; // null without any
}

} // namespace

std::string HistoryTable(const std::vector<HistoryStep>& steps)
{
    TextTable::Row head = {"TIME", "TEXT", "SLOTS"};
    for (const Control& control : ControlTable) {
        head.push_back(HeadingOf(control));
    }
    TextTable table(head);
    for (const HistoryStep& step : steps) {
        TextTable::Row row = {OrDash(step.step.time),
                              step.step.text,
                              OrDash(fmt::format("{}", fmt::join(SlotsOf(step), " ")))};
        for (size_t i = 0; i < ControlTable.size(); ++i) {
            row.push_back(step.values ? fmt::format("{}", (*step.values)[i]) : "-");
        }
        table.Add(row);
    }
    return table.Format();
}

std::string HistoryJson(const std::vector<HistoryStep>& steps)
{
    nlohmann::ordered_json json;
    json["version"] = GetVersion();
    json["history"] = nlohmann::ordered_json::array();
    for (const HistoryStep& step : steps) {
        const auto time = step.step.time.empty() ? nlohmann::ordered_json()
                                                 : nlohmann::ordered_json(ToUtf8(step.step.time));
        json["history"].push_back({{"time", time},
                                   {"text", ToUtf8(step.step.text)},
                                   {"slots", SlotsOf(step)},
                                   {"values", ValuesOf(step)}});
    }
    return json.dump(2) + "\n";
}

} // namespace Cli
