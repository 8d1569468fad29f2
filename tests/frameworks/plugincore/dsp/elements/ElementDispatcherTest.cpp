// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"

#include "frameworks/qobase/util/DebugTrace.h"
#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>

namespace {

using DSP::Context;

class Element final : public DSP::ElementDispatcher {
public:
    enum : uint32_t { Gain = 0, Mode = 1, Mute = 2 };

    explicit Element(DSP::ElementHost& owner, bool withDuplicate = false)
        : ElementDispatcher({owner, "Test", 48000.0F, 0})
    {
        RegisterBoolParam(Mute, {.name = "Mute", .target = &mute}); // in any order
        DSP::ParamRegistration<float> gaining{
            .name = "Gain",
            .range = {-1.0F, 1.0F},
            .defaultValue = 0.25F,
            .target = &gain,
            .onProcessChange = [this](float value) { Note("p", value); },
            .onUIChange = [this](float value) { Note("u", value); },
            .info = {.units = "dB"}};
        gainHandle = RegisterFloatParam(Gain, gaining);
        modeHandle = RegisterEnumParam(
            Mode,
            {{.name = "Mode", .range = {2, 4}, .defaultValue = 3, .target = &mode},
             {"two", "three", "four"}});
        earlyDefault = gainHandle.GetDefault();
        if (withDuplicate) {
            gaining.target = &other;
            RegisterFloatParam(4, gaining); // leaves a gap at 3, too
        }
        FinaliseParams();
    }

    static std::string Number(float value)
    {
        return std::to_string(static_cast<int>(std::lround(value * 100))) + " ";
    }

    void Note(const char* sender, float value)
    {
        events += sender;
        events += Number(value);
    }

    DSP::ElementParam<float> gainHandle;
    DSP::ElementParamEnum modeHandle;
    float earlyDefault = 9;
    float gain = 0;
    float other = 0;
    uint32_t mode = 0;
    bool mute = true;
    std::string events;
};

struct ElementDispatcherTest : testing::Test {
    Support::TestElementHost host;
    Element element{host};

    void RunAudio() { element.ProcessRegion(0, 0, nullptr); }
};

} // namespace

TEST_F(ElementDispatcherTest, StartsWithDefaultsThatTheProcessSideHasSeenOnce)
{
    EXPECT_EQ(element.gain, 0.25F);
    EXPECT_EQ(element.mode, 3U);
    EXPECT_FALSE(element.mute);
    EXPECT_EQ(element.events, "p25 ");
    EXPECT_EQ(element.GetParamCount(), 3U);
    EXPECT_EQ(element.FindParamIndex("Mode"), Element::Mode);
    EXPECT_EQ(element.FindParamIndex("mode"), std::nullopt);
    EXPECT_EQ(element.GetParamInfoByName("Gain").units, String("dB"));
    EXPECT_TRUE(element.GetParamInfoByName("None").units.IsEmpty());
    EXPECT_EQ(element.GetFloatValue(Element::Mode, Context::UI), 0.0F); // of another type
    EXPECT_FALSE(element.SetFloatValue(17, 1.0F, Context::Process, {}));
}

TEST_F(ElementDispatcherTest, ClampsBeforeItComparesSoThatOneCommandGoesOut)
{
    host.processing = true;
    EXPECT_TRUE(element.SetFloatValue(Element::Gain, 5.0F, Context::UI, 0));
    EXPECT_FALSE(element.SetFloatValue(Element::Gain, 7.0F, Context::UI, 0));
    EXPECT_EQ(host.commandsUnderWay, 1);
    RunAudio();
    EXPECT_EQ(element.gain, 1.0F);
    EXPECT_TRUE(element.SetEnumValue(Element::Mode, 99, Context::Process, {}));
    EXPECT_EQ(element.mode, 4U);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(element.SetFloatValue(Element::Gain, nan, Context::UI, 0));
    EXPECT_EQ(element.GetFloatValue(Element::Gain, Context::UI), 1.0F);
}

TEST_F(ElementDispatcherTest, DoesNotOverwriteAValueThatIsOnItsWay)
{
    host.processing = true;
    element.SetFloatValue(Element::Gain, 0.5F, Context::UI, 0);
    element.SetFloatValue(Element::Gain, -0.5F, Context::Process, {}); // automation meanwhile
    element.SyncParams();
    EXPECT_EQ(element.GetFloatValue(Element::Gain, Context::UI), 0.5F);
    EXPECT_EQ(element.GetDispatchInfo<float>(Element::Gain)->GetWantedValue(), 0.5F);
    RunAudio();
    EXPECT_EQ(element.gain, 0.5F);
    element.SetFloatValue(Element::Gain, -0.5F, Context::Process, {});
    element.SyncParams(); // nothing under way: the process side's value counts
    EXPECT_EQ(element.GetFloatValue(Element::Gain, Context::UI), -0.5F);
    EXPECT_EQ(element.GetDispatchInfo<float>(Element::Gain)->GetWantedValue(), -0.5F);
}

TEST_F(ElementDispatcherTest, AValueThatFailsToArriveIsNotOnItsWayForEver)
{
    bool fails = true;
    element.GetDispatchInfo<float>(Element::Gain)
        ->AddObserver([&fails](Context thread, float /*value*/, DSP::ValueSource /*source*/) {
            if (fails && thread == Context::Process) {
                throw std::bad_alloc();
            }
        });
    EXPECT_THROW(element.SetFloatValue(Element::Gain, 0.5F, Context::UI, 0), std::bad_alloc);
    fails = false;
    EXPECT_EQ(host.commandsUnderWay, 0);
    element.SyncParams();
    EXPECT_EQ(element.GetFloatValue(Element::Gain, Context::UI), 0.25F);
}

TEST_F(ElementDispatcherTest, TellsTheHostOfItsOwnChangesOnly)
{
    element.events.clear();
    element.SetFloatValue(Element::Gain, 0.5F, Context::UI, DSP::SourceController);
    EXPECT_EQ(element.events, "p50 u50 ");
    element.events.clear();
    element.SetFloatValue(Element::Gain, 0.1F, Context::UI, DSP::SourceHost);
    EXPECT_EQ(element.events, "p10 ");
    element.events.clear();
    element.SetFloatValue(Element::Gain, 0.2F, Context::Process, DSP::SourceHost);
    element.SyncParams();
    EXPECT_EQ(element.events, "p20 ");
    element.SetFloatValue(Element::Gain, 0.3F, Context::Process, {});
    element.SyncParams();
    EXPECT_EQ(element.events, "p20 p30 u30 ");
    element.SyncParams(); // told once
    EXPECT_EQ(element.events, "p20 p30 u30 ");
}

TEST_F(ElementDispatcherTest, ObserversHearFirstAndAlsoWithoutAChangeListenersOnlyChanges)
{
    auto* info = element.GetDispatchInfo<float>(Element::Gain);
    info->AddObserver([this](Context thread, float value, DSP::ValueSource) {
        element.Note(thread == Context::UI ? "U" : "P", value);
    });
    auto connection = info->Connect([this](float) { element.events += "s "; });
    element.events.clear();
    element.SetFloatValue(Element::Gain, 0.5F, Context::UI, 0);
    EXPECT_EQ(element.events, "U50 P50 p50 s u50 ");
    element.events.clear();
    element.SetFloatValue(Element::Gain, 0.5F, Context::UI, 0);
    EXPECT_EQ(element.events, "U50 ");
    connection.reset();
    element.events.clear();
    element.SetFloatValue(Element::Gain, 0.6F, Context::UI, 1);
    EXPECT_EQ(element.events, "U60 P60 p60 ");
}

TEST_F(ElementDispatcherTest, AReplacementForSendingKeepsValuesOnTheUISide)
{
    std::string sent;
    auto* info = element.GetDispatchInfo<float>(Element::Gain);
    info->SetUIDispatch([&](float value, DSP::ValueSource) { sent += Element::Number(value); });
    element.SetFloatValue(Element::Gain, 0.75F, Context::UI, 0);
    EXPECT_EQ(sent, "75 ");
    EXPECT_EQ(element.gain, 0.25F);
    EXPECT_EQ(element.GetFloatValue(Element::Gain, Context::UI), 0.75F);
}

TEST_F(ElementDispatcherTest, HandlesForwardAndAnswerNeutrallyWhenEmpty)
{
    EXPECT_EQ(element.earlyDefault, 0.0F); // the table wasn't built yet
    EXPECT_EQ(element.gainHandle.GetDefault(), 0.25F);
    EXPECT_TRUE(element.gainHandle.SetValue(0.5F, Context::UI, 0));
    EXPECT_EQ(element.gain, 0.5F);
    EXPECT_EQ(element.gainHandle.GetRange().min, -1.0F);
    EXPECT_EQ(element.gainHandle.GetName(), String("Gain"));
    EXPECT_EQ(element.modeHandle.GetElement(), &element);
    const std::pair<uint32_t, const char*> labels[] = {
        {1, ""}, {2, "two"}, {3, "three"}, {4, "four"}, {5, ""}};
    for (const auto& [value, label] : labels) {
        EXPECT_EQ(element.modeHandle.GetEnumLabel(value).ToStdString(), label);
    }

    const DSP::ElementParamEnum empty;
    EXPECT_EQ(empty.GetValue(Context::UI), 0U);
    EXPECT_FALSE(empty.SetValue(1, Context::UI, 0));
    EXPECT_TRUE(empty.GetName().IsEmpty());
    EXPECT_TRUE(empty.GetEnumLabel(0).IsEmpty());
    const DSP::ElementParam<bool> ofAnotherType(element, Element::Gain);
    EXPECT_FALSE(ofAnotherType.GetValue(Context::UI));
}

TEST_F(ElementDispatcherTest, CollectsWhatDiffersFromItsDefault)
{
    element.SetEnumValue(Element::Mode, 4, Context::UI, 0);
    element.SetBoolValue(Element::Mute, true, Context::UI, 0);
    const DSP::ChangedParams changed = element.CollectChangedParams();
    EXPECT_TRUE(changed.floats.empty());
    ASSERT_EQ(changed.enums.size(), 1U);
    EXPECT_EQ(changed.enums[0].second, String("four"));
    ASSERT_EQ(changed.bools.size(), 1U);
    EXPECT_TRUE(changed.bools[0].second);
}

TEST(ElementDispatcher, ReportsAGapAndASecondRegistrationAndWorksWithTheFirst)
{
    std::vector<std::string> traces;
    Util::SetDebugTraceSink([&](const String& text) { traces.push_back(text.ToStdString()); });
    Support::TestElementHost host;
    Element element(host, true);
    Util::SetDebugTraceSink(nullptr);
    EXPECT_EQ(traces,
              (std::vector<std::string>{
                  "Parameter index 3 has not been registered",
                  "Parameter \"Gain\" has already been registered",
                  "Parameter registration for parameter index 4 failed. Was there already a "
                  "parameter with the same ID?"}));
    EXPECT_EQ(element.FindParamIndex("Gain"), Element::Gain);
    element.SetFloatValue(Element::Gain, 0.5F, Context::UI, 0);
    EXPECT_EQ(element.gain, 0.5F);
    EXPECT_EQ(element.other, 0.25F);
}
