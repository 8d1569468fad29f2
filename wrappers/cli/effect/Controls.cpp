// SPDX-License-Identifier: ISC
#include "wrappers/cli/effect/Controls.h"

#include <fmt/format.h>

#include <string_view>

namespace Cli {

namespace {

std::string Describe(const Controls& controls, const char* valueFormat, bool isForPicture)
{
    std::string text;
    for (size_t i = 0; i < ControlTable.size(); ++i) {
        const Control& control = ControlTable[i];
        if (control.showsInPictures || !isForPicture) {
            const std::string value = fmt::format(fmt::runtime(valueFormat), controls.values[i]);
            text += text.empty() ? "" : ", ";
            text += fmt::format(fmt::runtime(control.words), value);
        }
    }
    return text + (controls.bypass ? ", bypassed" : "");
}

constexpr size_t IndexOf(std::string_view parameter)
{
    size_t index = 0;
    while (ControlTable.at(index).parameter != parameter) {
        ++index;
    }
    return index;
}

} // namespace

double Controls::GetRepairLimit() const
{
    constexpr size_t UpperFrequency = IndexOf(UpperFrequencyParameter);
    return bypass ? 0.0 : values[UpperFrequency];
}

std::string DescribeControls(const Controls& controls)
{
    return Describe(controls, "{}", false);
}

std::string ControlCaption(const Controls& controls)
{
    return Describe(controls, "{:g}", true);
}

} // namespace Cli
