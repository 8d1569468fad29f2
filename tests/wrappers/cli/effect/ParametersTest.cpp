// SPDX-License-Identifier: ISC
#include "wrappers/cli/effect/Parameters.h"
#include "wrappers/cli/text/TextTable.h"

#include <gtest/gtest.h>

namespace {

using namespace Cli;
using Wrapper::Parameter;

Parameter Float(double minimum, double maximum)
{
    Parameter parameter;
    parameter.minimum = minimum;
    parameter.maximum = maximum;
    return parameter;
}

// What the module holds after `value` has gone in: it works in float.
float Stored(const Parameter& parameter, double value)
{
    const auto minimum = static_cast<float>(parameter.minimum);
    return parameter.ToNormalised(value) * (static_cast<float>(parameter.maximum) - minimum) +
           minimum;
}

TEST(ParametersTest, AValueComesBackAsItWasTyped)
{
    // Every value with as many digits as a float surely holds, over three kinds of range.
    for (const auto& [minimum, maximum, perUnit] :
         {std::tuple(50.0, 500.0, 1000), {0, 10, 10000}, {0, 1, 100000}, {-1, 1, 10000}}) {
        const Parameter parameter = Float(minimum, maximum);
        const int begin = static_cast<int>(minimum) * perUnit;
        const int end = static_cast<int>(maximum) * perUnit;
        for (int i = begin; i <= end; i += 7) {
            const double value = static_cast<double>(i) / perUnit;
            const float stored = Stored(parameter, value);
            const auto span = static_cast<float>(maximum - minimum);
            const float told = (stored - static_cast<float>(minimum)) / span;
            ASSERT_EQ(TidyValue(parameter, told), value);
        }
    }
}

TEST(ParametersTest, WhatLiesOutsideTheRangeGoesToItsEnd)
{
    EXPECT_EQ(Float(50, 500).ToNormalised(1000), 1.0F);
    EXPECT_EQ(Float(50, 500).ToNormalised(-1000), 0.0F);
    EXPECT_EQ(Float(3, 3).ToNormalised(3), 0.0F);
}

TEST(ParametersTest, EachKindIsShownInItsOwnWords)
{
    Parameter depth = Float(0, 2);
    depth.identifier = "Element.Depth";
    depth.labels = {"Fifty", "Hundred", "Without end"};
    depth.kind = Parameter::Kind::Choice;
    depth.defaultValue = 1;
    Parameter strength = Float(0, 10);
    strength.identifier = "Element.Strength";
    strength.unit = "dB";
    Parameter bypass = Float(0, 1);
    bypass.identifier = "Bypass";
    bypass.kind = Parameter::Kind::Switch;
    EXPECT_EQ(ParameterTable({{depth, 1, false}, {strength, 0.125, true}, {bypass, 1, false}}),
              "NAME              VALUE    RANGE                        DEFAULT  UNIT  CHANGED\n"
              "Element.Depth     Hundred  Fifty, Hundred, Without end  Hundred\n"
              "Element.Strength  0.125    0 to 10                      0        dB    *\n"
              "Bypass            on       off, on                      off\n");
}

TEST(TextTableTest, ColumnsLineUpWhateverTheTextsHold)
{
    TextTable table({"A", "B"});
    table.Add({"\u00fcber", "1"});
    table.Add({"", "2\n\x1b[31m"});
    table.Add({"long one", ""});
    EXPECT_EQ(table.Format(),
              "A         B\n"
              "\u00fcber      1\n"
              "          2\\x0A\\x1B[31m\n"
              "long one\n");
}

} // namespace
