// SPDX-License-Identifier: ISC
// Controllers of an element's parameters: what a change passes on its way, what the process side
// changes, and how they are found.
#include "frameworks/plugincore/controller/ElementDispatcherControllerSet.h"
#include "frameworks/plugincore/controller/KeyValueRoot.h"
#include "frameworks/plugincore/dsp/path/DSPSet.h"
#include "tests/support/SavedElement.h"
#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace Controller;
using Log = std::vector<std::string>;
using Support::SavedElement;
using Side = DSP::Context;

class TestSet final : public DSP::DSPSetImpl {
public:
    using DSPSetImpl::DSPSetImpl;
    void BuildElements(float sampleRate, uint32_t channelConfig) override
    {
        AddElement("Shown Name", sampleRate, channelConfig, [this] {
            return std::make_shared<SavedElement>(GetHost(), "Test");
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
        element = static_cast<SavedElement*>(set.GetElement("Shown Name"));
    }

    ControllerSet& Controllers() { return *element->GetControllerSet(); }
    FloatParam& Amount() { return *Controllers().GetFloatController("Amount"); }

    Support::TestElementHost host;
    TestSet set{host};
    SavedElement* element;
};

TEST_F(ElementControllersTest, AChangePassesObserversCommandListenersAndCallbackInThisOrder)
{
    Log log;
    element->onChange = [&](float value) {
        log.push_back("ui " + std::to_string(std::lround(value)));
    };
    element->GetDispatchInfo<float>(SavedElement::Amount)
        ->AddObserver([&](Side side, float, DSP::ValueSource source) {
            EXPECT_EQ(source, DSP::SourceController);
            log.emplace_back(side == Side::UI ? "observer" : "arrived");
        });
    const Connection connection =
        Amount().ValueChanged().Connect([&](float) { log.emplace_back("signal"); });
    Amount().SetValue(3.0F); // nothing is processing, so that the command arrives at once
    EXPECT_EQ(log, (Log{"observer", "arrived", "signal", "ui 3"}));
    EXPECT_EQ(host.gestures, (Log{"grab Amount", "release Amount"}));
    EXPECT_EQ(element->GetFloatValue(SavedElement::Amount, Side::Process), 3.0F);
    Amount().SetValue(99.0F);
    EXPECT_EQ(Amount().GetValue(), 10.0F); // the element limits
}

TEST_F(ElementControllersTest, WhatTheProcessSideChangesReachesTheListenersByThePoll)
{
    std::vector<float> heard;
    const Connection connection =
        Amount().ValueChanged().Connect([&](float value) { heard.push_back(value); });
    element->SetFloatValue(SavedElement::Amount, 4.0F, Side::Process, DSP::SourceHost);
    EXPECT_TRUE(heard.empty());
    element->SyncParams();
    EXPECT_EQ(heard, std::vector<float>{4.0F});
    // The process side moves on, and the controller is set to what it still shows.
    element->SetFloatValue(SavedElement::Amount, 8.0F, Side::Process, DSP::SourceHost);
    Amount().SetValue(4.0F);
    EXPECT_EQ(element->GetFloatValue(SavedElement::Amount, Side::Process), 4.0F);
    EXPECT_EQ(heard, (std::vector<float>{4.0F, 8.0F, 4.0F}));
}

TEST_F(ElementControllersTest, TakesTextsRangeAndDefaultFromTheElement)
{
    EXPECT_EQ(Amount().GetUnits(), "dB");
    EXPECT_TRUE(Amount().IsLogarithmic());
    EXPECT_EQ(Amount().GetRange().max, 10.0F);
    Amount().SetValue(2.0F);
    Amount().ResetToDefault();
    EXPECT_EQ(Amount().GetValue(), 5.0F);
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
        EXPECT_EQ(controllers.GetBoolController("Amount"), nullptr);
        EXPECT_EQ(controllers.GetEnumController("Amount"), nullptr);
        EXPECT_EQ(controllers.GetFloatController("Mode"), nullptr);
        EXPECT_EQ(controllers.GetFloatController("amount"), nullptr);
        EXPECT_EQ(controllers.GetFloatController("Amount"), &Amount());
        EXPECT_NE(controllers.GetEnumController("Mode"), nullptr);
        EXPECT_NE(controllers.GetBoolController("On"), nullptr);
    }
}

TEST_F(ElementControllersTest, KeyPathsLeadFromTheRootToAParameter)
{
    KeyValueRoot root;
    root.Add("dsp", set);
    EXPECT_EQ(std::any_cast<FloatParam*>(root.ValueForKeyPath("dsp.Shown Name.Amount")), &Amount());
    // The element's own name finds it as well.
    EXPECT_EQ(std::any_cast<FloatParam*>(root.ValueForKeyPath("dsp.Test.Amount")), &Amount());
    EXPECT_EQ(std::any_cast<EnumParam*>(root.ValueForKeyPath("dsp.Test.Mode")),
              Controllers().GetEnumController("Mode"));
    EXPECT_EQ(std::any_cast<BoolParam*>(root.ValueForKeyPath("dsp.Test.On")),
              Controllers().GetBoolController("On"));
    for (const String& path :
         String("|.|dsp.|dsp..Amount|other.Test.Amount|dsp.Test.Nothing|dsp.Nothing.Amount|"
                "dsp.Test.Amount.More|dsp.Test.Amount.")
             .Split('|')) {
        EXPECT_FALSE(root.ValueForKeyPath(path).has_value()) << path.c_str();
    }
    EXPECT_EQ(set.AllKeys(), std::set<String>{"Shown Name"});
    EXPECT_EQ(Controllers().AllKeys().count("Colour"), 1U);
    root.Remove("dsp");
    EXPECT_FALSE(root.ValueForKeyPath("dsp.Test.Amount").has_value());
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
