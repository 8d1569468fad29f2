// SPDX-License-Identifier: ISC
// Controllers of an element's parameters: what a change passes on its way, what the process side
// changes, and how they are found.
#include "frameworks/plugincore/controller/ElementDispatcherControllerSet.h"
#include "frameworks/plugincore/controller/GrabbedParamHandle.h"
#include "frameworks/plugincore/controller/KeyValueRoot.h"
#include "frameworks/plugincore/dsp/path/DSPSet.h"
#include "tests/frameworks/plugincore/controller/TestElement.h"
#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

namespace {

using namespace Controller;
using Log = std::vector<std::string>;
using Side = DSP::Context;

class TestSet final : public DSP::DSPSetImpl {
public:
    using DSPSetImpl::DSPSetImpl;
    void BuildElements(float sampleRate, uint32_t channelConfig) override
    {
        AddElement("Shown Name", sampleRate, channelConfig, [this] {
            return std::make_shared<TestElement>(GetHost());
        });
    }
};

struct ElementControllersTest : testing::Test {
    ElementControllersTest()
    {
        host.makeControllerSet = [](DSP::ElementDispatcher& made) {
            return std::make_shared<ElementDispatcherControllerSet>(made);
        };
        set.BuildElements(48000.0F, 0);
        element = static_cast<TestElement*>(set.GetElement("Shown Name"));
    }

    ControllerSet& Controllers() { return *element->GetControllerSet(); }
    FloatParam& Level() { return *Controllers().GetFloatController("Level"); }

    Support::TestElementHost host;
    TestSet set{host};
    TestElement* element;
};

TEST_F(ElementControllersTest, AChangePassesObserversCommandListenersAndCallbackInThisOrder)
{
    Log& log = element->log;
    element->GetDispatchInfo<float>(TestElement::Level)
        ->AddObserver([&](Side side, float, DSP::ValueSource source) {
            EXPECT_EQ(source, DSP::SourceController);
            log.emplace_back(side == Side::UI ? "observer" : "arrived");
        });
    const Connection connection =
        Level().ValueChanged().Connect([&](float) { log.emplace_back("signal"); });
    log.clear();
    Level().SetValue(3.0F); // nothing is processing, so that the command arrives at once
    EXPECT_EQ(log, (Log{"observer", "arrived", "signal", "ui 3"}));
    EXPECT_EQ(host.gestures, (Log{"grab Level", "release Level"}));
    EXPECT_EQ(element->GetFloatValue(TestElement::Level, Side::Process), 3.0F);
    Level().SetValue(99.0F);
    EXPECT_EQ(Level().GetValue(), 10.0F); // the element limits
}

TEST_F(ElementControllersTest, WhatTheProcessSideChangesReachesTheListenersByThePoll)
{
    std::vector<float> heard;
    const Connection connection =
        Level().ValueChanged().Connect([&](float value) { heard.push_back(value); });
    element->SetFloatValue(TestElement::Level, 4.0F, Side::Process, DSP::SourceHost);
    EXPECT_TRUE(heard.empty());
    element->SyncParams();
    EXPECT_EQ(heard, std::vector<float>{4.0F});
    // The process side moves on, and the controller is set to what it still shows.
    element->SetFloatValue(TestElement::Level, 8.0F, Side::Process, DSP::SourceHost);
    Level().SetValue(4.0F);
    EXPECT_EQ(element->GetFloatValue(TestElement::Level, Side::Process), 4.0F);
    EXPECT_EQ(heard, (std::vector<float>{4.0F, 8.0F, 4.0F}));
}

TEST_F(ElementControllersTest, TakesTextsRangeAndDefaultFromTheElement)
{
    EXPECT_EQ(Level().GetUnits(), "dB");
    EXPECT_TRUE(Level().IsLogarithmic());
    EXPECT_EQ(Level().GetRange().min, -10.0F);
    Level().SetValue(2.0F);
    Level().ResetToDefault();
    EXPECT_EQ(Level().GetValue(), 1.0F);
    EnumParam& mode = *Controllers().GetEnumController("Mode");
    EXPECT_EQ(mode.GetValueLabel(3), "three");
    EXPECT_TRUE(mode.GetValueLabel(4).IsEmpty());
    EXPECT_EQ(EnumParam(nullptr).GetValueLabel(4), "4"); // a plain one
    using Place = std::pair<DSP::Element*, String>;
    EXPECT_EQ(std::any_cast<Place>(mode.GetContext()), Place(element, "Mode"));
}

TEST_F(ElementControllersTest, AnswersOneObjectANameAndNullForTheWrongType)
{
    ControllerSet& controllers = Controllers();
    EXPECT_EQ(&controllers, &Controllers());
    for (int round = 0; round < 2; ++round) { // before and after it has been made
        EXPECT_EQ(controllers.GetBoolController("Level"), nullptr);
        EXPECT_EQ(controllers.GetEnumController("Level"), nullptr);
        EXPECT_EQ(controllers.GetFloatController("Mode"), nullptr);
        EXPECT_EQ(controllers.GetFloatController("level"), nullptr);
        EXPECT_EQ(controllers.GetFloatController("Level"), &Level());
        EXPECT_NE(controllers.GetEnumController("Mode"), nullptr);
        EXPECT_NE(controllers.GetBoolController("Active"), nullptr);
    }
}

TEST_F(ElementControllersTest, KeyPathsLeadFromTheRootToAParameter)
{
    KeyValueRoot root;
    root.Add("dsp", set);
    EXPECT_EQ(std::any_cast<FloatParam*>(root.ValueForKeyPath("dsp.Shown Name.Level")), &Level());
    // The element's own name finds it as well.
    EXPECT_EQ(std::any_cast<FloatParam*>(root.ValueForKeyPath("dsp.Test.Level")), &Level());
    EXPECT_EQ(std::any_cast<EnumParam*>(root.ValueForKeyPath("dsp.Test.Mode")),
              Controllers().GetEnumController("Mode"));
    EXPECT_EQ(std::any_cast<BoolParam*>(root.ValueForKeyPath("dsp.Test.Active")),
              Controllers().GetBoolController("Active"));
    for (const char* path : {"",
                             ".",
                             "dsp.",
                             "dsp..Level",
                             "other.Test.Level",
                             "dsp.Test.Nothing",
                             "dsp.Nothing.Level",
                             "dsp.Test.Level.More",
                             "dsp.Test.Level."}) {
        EXPECT_FALSE(root.ValueForKeyPath(path).has_value()) << path;
    }
    EXPECT_EQ(set.AllKeys(), std::set<String>{"Shown Name"});
    EXPECT_EQ(Controllers().AllKeys().count("Colour"), 1U);
    root.Remove("dsp");
    EXPECT_FALSE(root.ValueForKeyPath("dsp.Test.Level").has_value());
}

TEST_F(ElementControllersTest, AskingForTheSetWhileItIsBeingMadeIsALogicError)
{
    element->makeSet = [this] { return element->GetControllerSet(); };
    try {
        element->GetControllerSet();
        ADD_FAILURE() << "nothing thrown";
    } catch (const std::logic_error& fault) {
        EXPECT_STREQ(fault.what(),
                     "Calling ElementDispatcher::GetControllerSet() recursively. Make sure your "
                     "custom controller set's constructor does not call through to "
                     "GetControllerSet()!");
    }
    element->makeSet = nullptr;
    EXPECT_NE(element->GetControllerSet(), nullptr); // a later call isn't a second one
}

} // namespace
