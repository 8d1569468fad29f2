// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/path/ParamSet.h"
#include "frameworks/plugincore/dsp/signal/ChannelConfig.h"

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "frameworks/qobase/util/DebugTrace.h"
#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

namespace {

class Element final : public DSP::ElementDispatcher {
public:
    Element(DSP::ElementHost& owner, float rate, uint32_t layout, bool configurable)
        : ElementDispatcher({owner, "Own name", rate, layout})
        , isConfigurable(configurable)
    {
        RegisterFloatParam(0, {.name = "Amount", .range = {0.0F, 1.0F}, .target = &amount});
        FinaliseParams();
    }
    bool IsConfigurable() const override { return isConfigurable; }

private:
    float amount = 0;
    const bool isConfigurable;
};

class Set final : public DSP::DSPSetImpl {
public:
    using DSPSetImpl::DSPSetImpl;
    void BuildElements(float rate, uint32_t layout) override
    {
        AddElement("Zoe", rate, layout, [&] {
            return std::make_shared<Element>(GetHost(), rate, layout, true);
        });
        AddElement("Abe", rate, layout, [&] {
            return std::make_shared<Element>(GetHost(), rate, layout, false);
        });
    }
};

struct DSPSetTest : testing::Test {
    Support::TestElementHost host;
    Set set{host};
    void SetUp() override { set.BuildElements(48000.0F, 0); }
};

} // namespace

TEST_F(DSPSetTest, BringsConfigurableElementsToANewFormatAndReplacesOthers)
{
    const DSP::Element* const zoe = set.GetElement("Zoe");
    const std::weak_ptr<DSP::Element> abe = set.GetElements().at("Abe");
    set.BuildElements(48000.0F, 1);
    EXPECT_EQ(set.GetElement("Zoe"), zoe);
    EXPECT_EQ(zoe->GetChannelCount(), 2U);
    EXPECT_TRUE(abe.expired());
    EXPECT_EQ(set.GetElement("Abe")->GetChannelCount(), 2U);
    EXPECT_EQ(set.GetElement("Own name"), nullptr);
    ASSERT_EQ(set.GetOrder().size(), 2U);
    EXPECT_EQ(set.GetOrder()[0].first, String("Zoe")); // as made, while the map goes by name
    EXPECT_EQ(set.GetElements().begin()->first, String("Abe"));
}

TEST_F(DSPSetTest, AutomatableListSkipsAndReportsWhatTheSetDoesNotHave)
{
    std::vector<std::string> traces;
    Util::SetDebugTraceSink([&](const String& text) { traces.push_back(text.ToStdString()); });
    const DSP::ParamSetImpl params(set,
                                   "First\tZoe\tAmount\r\n"
                                   "\tZoe\tAmount\r\n"
                                   "Title\t\t\r\n"
                                   "Wrong\tZoe \tAmount\r\n"
                                   "Wrong\tZoe\tamount\r\n"
                                   "Wrong\tZoe\tAmount \r\n"
                                   "Last\tAbe\tAmount\r\n");
    Util::SetDebugTraceSink(nullptr);
    ASSERT_EQ(params.GetParams().size(), 2U);
    EXPECT_EQ(params.GetParams()[0].displayName, String("First"));
    EXPECT_EQ(params.GetParams()[1].elementName, String("Abe"));
    EXPECT_EQ(params.FindIndex(*set.GetElement("Abe"), "Amount"), 1U);
    EXPECT_EQ(params.FindIndex(*set.GetElement("Abe"), "Size"), std::nullopt);
    ASSERT_EQ(traces.size(), 3U);
    EXPECT_EQ(traces[0],
              "Could not find element \"Zoe \" while building param set, skipping this entry.  "
              "(Hint - trailing space after element name)");
    EXPECT_EQ(traces[1],
              "Could not find parameter \"amount\" for element \"Zoe\" while building param set, "
              "skipping this entry. ");
    EXPECT_EQ(traces[2],
              "Could not find parameter \"Amount \" for element \"Zoe\" while building param set, "
              "skipping this entry.  (Hint - trailing space after param name)");
}

TEST(ChannelConfig, NamesAndCountsEveryCode)
{
    const auto names =
        String("Mono|Stereo|Mid-Side|LRC|LRS|LCRS|Quad|5.0|5.1|7.0|7.0 SDDS|7.1|7.1 SDDS")
            .Split('|');
    const uint32_t counts[] = {1, 2, 2, 3, 3, 4, 4, 5, 6, 7, 7, 8, 8};
    for (uint32_t code = 0; code < std::size(counts); ++code) {
        EXPECT_EQ(DSP::GetChannelCount(code), counts[code]) << code;
        EXPECT_EQ(DSP::GetChannelConfigName(code), names[code]) << code;
    }
    EXPECT_EQ(DSP::GetChannelConfigName(13), String("3->3"));
    EXPECT_EQ(DSP::GetChannelCount(34), 24U);
    EXPECT_EQ(DSP::GetChannelConfigName(34), String("24->24"));
    EXPECT_EQ(DSP::GetChannelCount(35), 0U);
    EXPECT_EQ(DSP::GetChannelConfigName(35), String("?"));
    EXPECT_EQ(DSP::GetChannelConfigName(36), String("LCR"));
    EXPECT_EQ(DSP::GetChannelConfigName(37), DSP::GetChannelConfigName(8));
    EXPECT_EQ(DSP::GetChannelConfigName(38), String("5.1 DTS"));
    EXPECT_EQ(DSP::GetChannelConfigName(39), String("5.1 FILM"));
    EXPECT_EQ(DSP::GetChannelCount(40), 8U);
    EXPECT_EQ(DSP::GetChannelCount(UINT32_MAX), 0U);
}
