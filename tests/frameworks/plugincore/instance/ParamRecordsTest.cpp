// SPDX-License-Identifier: ISC
// Labels of an enumeration as the host is given them: all of them or none.
#include "frameworks/plugincore/instance/ParamRecords.h"

#include "frameworks/qobase/util/DebugTrace.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class Enumeration final : public DSP::ElementParamEnumImplBase {
public:
    Enumeration(DSP::ValueRange<uint32_t> newRange, std::vector<String> newLabels)
        : range(newRange)
        , labels(std::move(newLabels))
    {
    }
    uint32_t GetValue(DSP::Context /*thread*/) const override { return range.min; }
    uint32_t GetWantedValue() const override { return range.min; }
    bool SetValue(uint32_t /*value*/, DSP::Context /*thread*/, DSP::ValueSource /*source*/) override
    {
        return false;
    }
    DSP::ValueRange<uint32_t> GetRange() const override { return range; }
    uint32_t GetDefault() const override { return range.min; }
    const DSP::ParamInfo& GetParamInfo() const override { return info; }
    void Grab() override {}
    void Release() override {}
    DSP::Element& GetElement() const override { throw std::logic_error("not asked for"); }
    String GetName() const override { return "Enumeration"; }
    String GetEnumLabel(uint32_t value) const override
    {
        return value - range.min < labels.size() ? labels[value - range.min] : String();
    }

private:
    const DSP::ValueRange<uint32_t> range;
    const std::vector<String> labels;
    const DSP::ParamInfo info;
};

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
        std::string trace;
        Util::SetDebugTraceSink([&](const String& text) { trace = text.ToStdString(); });
        ParamInfoRecord record{};
        FillParamInfo(
            std::make_shared<Enumeration>(entry.range, entry.labels), "Element", "Name", record);
        Util::SetDebugTraceSink(nullptr);
        EXPECT_EQ(record.labels, entry.expected);
        EXPECT_EQ(trace, entry.trace);
        EXPECT_EQ(record.steps, entry.range.max - entry.range.min + 1);
    }
}

} // namespace
