// SPDX-License-Identifier: ISC
// Labels of an enumeration as the host is given them: all of them or none.
#include "frameworks/plugincore/instance/ParamRecords.h"

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "frameworks/qobase/util/DebugTrace.h"
#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

namespace {

class Element final : public DSP::ElementDispatcher {
public:
    Element(DSP::ElementHost& owner, DSP::ValueRange<uint32_t> range, std::vector<String> labels)
        : ElementDispatcher({owner, "Element", 48000.0F, 0})
    {
        RegisterEnumParam(
            0,
            {{.name = "Name", .range = range, .defaultValue = range.min, .target = &value},
             labels});
        FinaliseParams();
    }

private:
    uint32_t value = 0;
};

// Knows two texts.
class TestTranslator final : public Translator {
public:
    String Translate(const String& text) const override
    {
        return text == "Name" ? "Nom" : text == "two" ? "deux" : text;
    }
};

TEST(ParamRecordsTest, WhatHasATranslationIsTranslatedAndTheIdentifierIsNot)
{
    Support::TestElementHost host;
    const Element element(host, {1, 2}, {"one", "two"});
    ParamInfoRecord record{};
    FillParamInfo(element.GetParamMap().at("Name"), "Element", "Name", TestTranslator(), record);
    EXPECT_STREQ(record.displayName, "Nom");
    EXPECT_STREQ(record.labels, "one\tdeux");
    EXPECT_STREQ(record.identifier, "Element.Name");
}

TEST(ParamRecordsTest, LabelsAreJoinedByTabsOrLeftOutTogether)
{
    struct Case {
        DSP::ValueRange<uint32_t> range;
        std::vector<String> labels;
        std::string expected;
        std::string trace;
    };
    const String longest(std::string(1023, 'x'));
    const std::vector<Case> cases{
        {{1, 3}, {"one", "two", "three"}, "one\ttwo\tthree", ""},
        {{0, 1}, {"", "on"}, "\ton", ""}, // an empty label is a label
        {{1, 3}, {"one", "two"}, "", "Enum size mismatch 2 != 3"},
        {{0, 2}, {}, "", ""},
        {{0, 1}, {longest, longest}, (longest + "\t" + longest).ToStdString(), ""},
        {{0, 1}, {longest, longest + "x"}, "", ""}, // a text cut short would be a wrong label
    };
    for (const Case& entry : cases) {
        Support::TestElementHost host;
        const Element element(host, entry.range, entry.labels);
        std::string trace;
        Util::SetDebugTraceSink([&](const String& text) { trace = text.ToStdString(); });
        ParamInfoRecord record{};
        const DSP::ParamObject& param = element.GetParamMap().at("Name");
        FillParamInfo(param, "Element", "Name", Translator(), record);
        Util::SetDebugTraceSink(nullptr);
        EXPECT_EQ(record.labels, entry.expected);
        EXPECT_EQ(trace, entry.trace);
        EXPECT_EQ(record.steps, entry.range.max - entry.range.min + 1);
    }
}

} // namespace
