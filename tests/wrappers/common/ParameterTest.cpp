// SPDX-License-Identifier: ISC
#include "wrappers/common/Parameter.h"

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "wrappers/common/Text.h"

#include <gtest/gtest.h>

#include <limits>

using Wrapper::MakeParameter;
using Wrapper::Parameter;

namespace {

ParamInfoRecord MakeRecord(const char* name, const char* unit, uint32_t type, float low, float high)
{
    ParamInfoRecord record = {};
    Wrapper::CopyText("Element.Name", record.identifier);
    Wrapper::CopyText(name, record.displayName);
    Wrapper::CopyText(unit, record.units);
    record.type = type;
    record.minimum = low;
    record.maximum = high;
    return record;
}

Parameter Frequency()
{
    return MakeParameter(MakeRecord("Limit [Hz]", "Hz", ParamTypeFloat, 50, 500));
}

Parameter Switch()
{
    return MakeParameter(MakeRecord("Bypass", "", ParamTypeBool, 0, 1));
}

Parameter Choice()
{
    ParamInfoRecord record = MakeRecord("Mode", "", ParamTypeEnum, 2, 4);
    Wrapper::CopyText("Low\tMid way\tHigh", record.labels);
    return MakeParameter(record);
}

} // namespace

TEST(ParameterTest, NamesLoseTheUnitThatHostsShowElsewhere)
{
    EXPECT_EQ(Frequency().name, "Limit");
    EXPECT_EQ(MakeParameter(MakeRecord("Limit [Hz]", "s", ParamTypeFloat, 0, 1)).name,
              "Limit [Hz]");
}

TEST(ParameterTest, ValuesReadAsPeopleWriteThem)
{
    const std::tuple<Parameter, float, const char*> cases[] = {
        {Frequency(), 0.0F, "50.0 Hz"},
        {Frequency(), 1.0F, "500.0 Hz"},
        {Frequency(), 1.0F / 3, "200.0 Hz"},
        {MakeParameter(MakeRecord("Strength", "", ParamTypeFloat, 0, 10)), 0.5F, "5.00"},
        {MakeParameter(MakeRecord("Fine", "s", ParamTypeFloat, 0, 0.02F)), 0.5F, "0.01000 s"},
        {Switch(), 1.0F, "on"},
        {Switch(), 0.49F, "off"},
        {Choice(), 0.5F, "Mid way"},
        {Choice(), 1.0F, "High"},
        // What lies outside, as hosts ask for it, too.
        {Frequency(), -1e30F, "50.0 Hz"},
        {Choice(), std::numeric_limits<float>::infinity(), "High"},
    };
    for (const auto& [parameter, normalised, text] : cases) {
        EXPECT_EQ(parameter.Format(normalised), text);
        const auto back = parameter.Parse(text);
        ASSERT_TRUE(back) << text;
        EXPECT_EQ(parameter.Format(*back), text);
    }
}

TEST(ParameterTest, TextIsTakenInTheFormsThatPeopleType)
{
    const std::tuple<Parameter, const char*, double> cases[] = {
        {Frequency(), "120", 120},
        {Frequency(), " 120.5hz ", 120.5},
        {Frequency(), "+1.2e2 HZ", 120},
        {Frequency(), "-5", 50}, // into the range
        {Frequency(), "9999", 500},
        {Switch(), "YES", 1},
        {Switch(), "0", 0},
        {Choice(), "high", 4},
        {Choice(), "3", 3},
    };
    for (const auto& [parameter, text, value] : cases) {
        const auto normalised = parameter.Parse(text);
        ASSERT_TRUE(normalised) << text;
        EXPECT_NEAR(parameter.FromNormalised(*normalised), value, 1e-4) << text;
    }
    for (const char* text : {"", " ", "Hz", "abc", "nan", "inf", "1e999", "12,5", "5 dB", "1 2"}) {
        EXPECT_FALSE(Frequency().Parse(text)) << text;
    }
    EXPECT_FALSE(Switch().Parse("0.7"));
}
