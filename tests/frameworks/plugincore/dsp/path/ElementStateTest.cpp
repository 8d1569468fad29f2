// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/path/ElementState.h"

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

namespace {

using DSP::Context;
using DSP::Persistence;
using Util::Dictionary;
using Util::DictionaryValue;

// A parameter of each type that is saved, one that isn't, and three bytes.
class Box final : public DSP::ElementDispatcher {
public:
    enum : uint32_t { Gain, Mode, Mute, Elsewhere };

    explicit Box(DSP::ElementHost& owner, const char* ownName = "Box")
        : ElementDispatcher({owner, ownName, 48000.0F, 0})
    {
        RegisterNumber(Gain, "Gain", gain, Persistence::Session);
        RegisterNumber(Elsewhere, "Elsewhere", elsewhere, Persistence::Persistent);
        RegisterEnumParam(
            Mode, {{.name = "Mode", .range = {0, 3}, .defaultValue = 1, .target = &mode}, {}});
        RegisterBoolParam(Mute, {.name = "Mute", .target = &mute});
        FinaliseParams();
    }

    uint32_t GetParamVersion() const override { return 7; }
    bool HasExtraBytes() const override { return !bytes.empty(); }
    uint32_t GetExtraBytesCount() const override { return static_cast<uint32_t>(bytes.size()); }
    void WriteExtraBytes(std::span<uint8_t> target) const override
    {
        ASSERT_EQ(target.size(), bytes.size());
        std::copy(bytes.begin(), bytes.end(), target.begin());
    }
    void ReadExtraBytes(std::span<const uint8_t> source) override
    {
        bytes.assign(source.begin(), source.end());
    }
    void ClearExtraBytes() override { bytes.clear(); }

    Util::Bytes bytes{1, 2, 255};
    int changes = 0; // that onUIChange heard

private:
    void RegisterNumber(uint32_t index, const char* paramName, float& target, Persistence kept)
    {
        RegisterFloatParam(index,
                           {.name = paramName,
                            .range = {-10.0F, 10.0F},
                            .defaultValue = 1.0F,
                            .target = &target,
                            .onUIChange = [this](float) { ++changes; },
                            .info = {kept, "", false}});
    }

    float gain = 0;
    float elsewhere = 0;
    uint32_t mode = 0;
    bool mute = false;
};

class BoxSet final : public DSP::DSPSetImpl {
public:
    using DSPSetImpl::DSPSetImpl;
    void BuildElements(float rate, uint32_t config) override
    {
        AddElement("BOX", rate, config, [this] { return std::make_shared<Box>(GetHost()); });
        AddElement(
            "Other", rate, config, [this] { return std::make_shared<Box>(GetHost(), "Other"); });
    }
};

struct ElementStateTest : testing::Test {
    Support::TestElementHost host;
    BoxSet set{host};
    Box* box = nullptr;

    ElementStateTest()
    {
        set.BuildElements(48000.0F, 0);
        box = dynamic_cast<Box*>(set.GetElement("BOX"));
        box->SetFloatValue(Box::Gain, 2.5F, Context::UI, DSP::SourceHost);
        box->SetEnumValue(Box::Mode, 2, Context::UI, DSP::SourceHost);
        box->SetBoolValue(Box::Mute, true, Context::UI, DSP::SourceHost);
    }

    // What stands there once all is on the process side.
    std::string Values()
    {
        box->ProcessCommands();
        char text[64];
        std::snprintf(text,
                      sizeof text,
                      "%.1f %u %s",
                      static_cast<double>(box->GetFloatValue(Box::Gain, Context::Process)),
                      box->GetEnumValue(Box::Mode, Context::Process),
                      box->GetBoolValue(Box::Mute, Context::Process) ? "muted" : "loud");
        return text;
    }

    void Apply(const Dictionary& element, const char* key = "Box")
    {
        Dictionary elements;
        elements.Set(key, {element});
        Dictionary saved;
        saved.Set("DSP Elements", {elements});
        DSP::ApplyElements(set, DSP::ReadElements(saved), DSP::SourceHost);
    }

    void Apply(const char* name, DictionaryValue value)
    {
        Dictionary element;
        element.Set(name, std::move(value));
        Apply(element);
    }
};

Dictionary BoxDictionary(const char* name, double gain, uint32_t mode, bool mute)
{
    Dictionary result;
    result.Set("Element Name", {String(name)});
    result.Set("Param Version", {int32_t{7}});
    result.Set("Gain", {gain});
    result.Set("Mode", {mode});
    result.Set("Mute", {mute});
    result.Set("Extra Bytes", {Util::Bytes{1, 2, 255}});
    return result;
}

} // namespace

TEST_F(ElementStateTest, SavesEachSessionParameterByItsTypeUnderTheElementsOwnName)
{
    Dictionary elements;
    elements.Set("Box", {BoxDictionary("Box", 2.5, 2, true)});
    elements.Set("Other", {BoxDictionary("Other", 1.0, 1, false)});
    Dictionary expected;
    expected.Set("DSP Elements", {elements});
    EXPECT_EQ(DSP::BuildElements(set), expected);

    box->bytes.clear(); // the key stays, so that loading clears them
    const Dictionary saved = DSP::BuildElementDictionary(*box);
    ASSERT_NE(saved.Find<Util::Bytes>("Extra Bytes"), nullptr);
    EXPECT_TRUE(saved.Find<Util::Bytes>("Extra Bytes")->empty());
}

TEST_F(ElementStateTest, SavesWhatWasAskedForLastNotWhatHasArrived)
{
    const auto savedGain = [this] {
        return *DSP::BuildElementDictionary(*box).Find<double>("Gain");
    };
    host.processing = true;
    box->SetFloatValue(Box::Gain, 4.0F, Context::UI, {});
    EXPECT_EQ(savedGain(), 4.0); // still in the ring
    box->ProcessCommands();
    box->SetFloatValue(Box::Gain, 5.0F, Context::Process, {});
    EXPECT_EQ(savedGain(), 5.0); // automation since; the UI side hasn't polled
}

TEST_F(ElementStateTest, TakesOverWhatFitsAndKeepsTheRest)
{
    struct Row {
        const char* name;
        DictionaryValue value;
        const char* expected;
    };
    const Row rows[] = {
        {"Gain", {3.5}, "3.5 2 muted"},
        {"Gain", {1e300}, "10.0 2 muted"},
        {"Gain", {-std::numeric_limits<double>::infinity()}, "-10.0 2 muted"},
        {"Gain", {std::nan("")}, "2.5 2 muted"},
        {"Gain", {uint32_t{3}}, "2.5 2 muted"},
        {"Gain", {String("3")}, "2.5 2 muted"},
        {"Mode", {uint32_t{0}}, "2.5 0 muted"},
        {"Mode", {int32_t{3}}, "2.5 3 muted"},
        {"Mode", {int32_t{-1}}, "2.5 0 muted"},
        {"Mode", {UINT32_MAX}, "2.5 3 muted"},
        {"Mode", {1.0}, "2.5 2 muted"},
        {"Mute", {false}, "2.5 2 loud"},
        {"Mute", {int32_t{0}}, "2.5 2 muted"},
        {"Mute", {DictionaryValue::Array{{false}}}, "2.5 2 muted"},
        {"gain", {3.5}, "2.5 2 muted"},
        {"Element Name", {1.0}, "2.5 2 muted"},
    };
    const Dictionary before = DSP::BuildElementDictionary(*box);
    for (const Row& row : rows) {
        Apply(before);
        Apply(row.name, row.value);
        EXPECT_EQ(Values(), row.expected) << row.name << " " << row.value.value.index();
    }
    Apply("Elsewhere", {9.0});
    EXPECT_EQ(box->GetFloatValue(Box::Elsewhere, Context::Process), 1.0F);
    EXPECT_EQ(box->changes, 0) << "the host is not told of its own change";
    EXPECT_TRUE(box->bytes.empty()) << "none were saved";
    Apply("Extra Bytes", {Util::Bytes{9}});
    EXPECT_EQ(box->bytes, Util::Bytes{9});
}

TEST_F(ElementStateTest, FindsTheElementByEitherName)
{
    Apply(BoxDictionary("Box", 3.0, 2, true), "anything");
    EXPECT_EQ(Values(), "3.0 2 muted");
    Apply(BoxDictionary("BOX", 4.0, 2, true));
    EXPECT_EQ(Values(), "4.0 2 muted");
    Apply("Gain", {5.0}); // no name in it: the key counts
    EXPECT_EQ(Values(), "5.0 2 muted");
    Apply(BoxDictionary("box", 6.0, 2, true));
    EXPECT_EQ(Values(), "5.0 2 muted");
}

TEST_F(ElementStateTest, LeavesOutWhatIsNoElement)
{
    Dictionary saved;
    EXPECT_TRUE(DSP::ReadElements(saved).empty());
    saved.Set("DSP Elements", {String("Box")});
    EXPECT_TRUE(DSP::ReadElements(saved).empty());
    Dictionary elements;
    elements.Set("Box", {1.0});
    elements.Set("Other", {Dictionary()});
    saved.Set("DSP Elements", {elements});
    ASSERT_EQ(DSP::ReadElements(saved).size(), 1U);
    EXPECT_EQ(DSP::ReadElements(saved)[0].GetElementName(), String("Other"));
}

TEST_F(ElementStateTest, AnEqualButStaleValueStillArrives)
{
    box->SetFloatValue(Box::Gain, 0.5F, Context::Process, {}); // the UI side still has 2.5
    Apply("Gain", {2.5});
    EXPECT_EQ(Values(), "2.5 2 muted");
}

TEST_F(ElementStateTest, ComparesWhatIsThereUnlessTheTablesDiffer)
{
    DSP::ElementParamData data("Box");
    EXPECT_EQ(DSP::IsSameState(*box, data), true);
    data.SetFloat("Gain", 2.5F);
    data.SetEnum("Mode", 2);
    data.SetFloat("Elsewhere", 8.0F);
    EXPECT_EQ(DSP::IsSameState(*box, data), true);
    data.SetBool("Mute", false);
    EXPECT_EQ(DSP::IsSameState(*box, data), false);
    data.SetParamVersion(6);
    EXPECT_EQ(DSP::IsSameState(*box, data), std::nullopt);
}

TEST(ElementParamData, KeepsTypesApartAndCopiesOverWhatIsThere)
{
    DSP::ElementParamData data("A");
    data.SetFloat("x", 1.0F);
    data.SetEnum("x", 2);
    data.SetBool("y", true);
    EXPECT_EQ(data.GetFloat("x", 9.0F), 1.0F);
    EXPECT_EQ(data.GetEnum("x", 9), 2U);
    EXPECT_EQ(data.GetFloat("y", 9.0F), 9.0F);

    DSP::ElementParamData other("B");
    other.SetFloat("x", 5.0F);
    other.SetFloat("z", 6.0F);
    data.CopyTo(other);
    EXPECT_EQ(other.GetFloat("x", 0.0F), 1.0F);
    EXPECT_EQ(other.GetFloat("z", 0.0F), 6.0F);
    EXPECT_TRUE(other.GetBool("y", false));
    EXPECT_EQ(other.GetElementName(), String("B"));

    data.RemoveParam("x");
    EXPECT_EQ(data.GetFloat("x", 9.0F), 9.0F);
    EXPECT_EQ(data.GetEnum("x", 9), 9U);
}
