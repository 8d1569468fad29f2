// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/path/ElementState.h"

#include "tests/support/SavedElement.h"
#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

namespace {

using DSP::Context;
using Util::Dictionary;
using Util::DictionaryValue;

using Box = Support::SavedElement;

class BoxSet final : public DSP::DSPSetImpl {
public:
    using DSPSetImpl::DSPSetImpl;
    void BuildElements(float rate, uint32_t config) override
    {
        for (const auto& [key, name] : {std::pair("BOX", "Box"), {"Other", "Other"}}) {
            AddElement(key, rate, config, [this, ownName = name] {
                auto box = std::make_shared<Box>(GetHost(), ownName);
                box->extraBytes = {1, 2, 255};
                return box;
            });
        }
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
        box->SetFloatValue(Box::Amount, 2.5F, Context::UI, DSP::SourceHost);
        box->SetEnumValue(Box::Mode, 2, Context::UI, DSP::SourceHost);
        box->SetBoolValue(Box::On, true, Context::UI, DSP::SourceHost);
    }

    // What stands there once all is on the process side.
    std::string Values()
    {
        box->ProcessCommands();
        char text[64];
        std::snprintf(text,
                      sizeof text,
                      "%.1f %u %s",
                      static_cast<double>(box->GetFloatValue(Box::Amount, Context::Process)),
                      box->GetEnumValue(Box::Mode, Context::Process),
                      box->GetBoolValue(Box::On, Context::Process) ? "on" : "off");
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

Dictionary BoxDictionary(const char* name, double amount, uint32_t mode, bool isOn)
{
    Dictionary result;
    result.Set("Element Name", {String(name)});
    result.Set("Param Version", {int32_t{7}});
    result.Set("Amount", {amount});
    result.Set("Mode", {mode});
    result.Set("On", {isOn});
    result.Set("Extra Bytes", {Util::Bytes{1, 2, 255}});
    return result;
}

} // namespace

TEST_F(ElementStateTest, SavesEachSessionParameterByItsTypeUnderTheElementsOwnName)
{
    Dictionary elements;
    elements.Set("Box", {BoxDictionary("Box", 2.5, 2, true)});
    elements.Set("Other", {BoxDictionary("Other", 5.0, 2, false)});
    Dictionary expected;
    expected.Set("DSP Elements", {elements});
    EXPECT_EQ(DSP::BuildElements(set), expected);

    box->hasExtraBytes = false;
    box->extraBytes.clear(); // the key stays, so that loading clears them
    const Dictionary saved = DSP::BuildElementDictionary(*box);
    ASSERT_NE(saved.Find<Util::Bytes>("Extra Bytes"), nullptr);
    EXPECT_TRUE(saved.Find<Util::Bytes>("Extra Bytes")->empty());
}

TEST_F(ElementStateTest, SavesWhatWasAskedForLastNotWhatHasArrived)
{
    const auto savedAmount = [this] {
        return *DSP::BuildElementDictionary(*box).Find<double>("Amount");
    };
    host.processing = true;
    box->SetFloatValue(Box::Amount, 4.0F, Context::UI, {});
    EXPECT_EQ(savedAmount(), 4.0); // still in the ring
    box->ProcessCommands();
    box->SetFloatValue(Box::Amount, 6.0F, Context::Process, {});
    EXPECT_EQ(savedAmount(), 6.0); // automation since; the UI side hasn't polled
}

TEST_F(ElementStateTest, TakesOverWhatFitsAndKeepsTheRest)
{
    const std::tuple<const char*, DictionaryValue, const char*> rows[] = {
        {"Amount", {3.5}, "3.5 2 on"},
        {"Amount", {1e300}, "10.0 2 on"},
        {"Amount", {-std::numeric_limits<double>::infinity()}, "0.0 2 on"},
        {"Amount", {std::nan("")}, "2.5 2 on"},
        {"Amount", {uint32_t{4}}, "2.5 2 on"},
        {"Amount", {String("4")}, "2.5 2 on"},
        {"Mode", {uint32_t{3}}, "2.5 3 on"},
        {"Mode", {int32_t{1}}, "2.5 1 on"},
        {"Mode", {int32_t{-1}}, "2.5 1 on"},
        {"Mode", {UINT32_MAX}, "2.5 3 on"},
        {"Mode", {1.0}, "2.5 2 on"},
        {"On", {false}, "2.5 2 off"},
        {"On", {int32_t{0}}, "2.5 2 on"},
        {"On", {DictionaryValue::Array{{false}}}, "2.5 2 on"},
        {"amount", {3.5}, "2.5 2 on"},
        {"Element Name", {1.0}, "2.5 2 on"},
    };
    const Dictionary before = DSP::BuildElementDictionary(*box);
    for (const auto& [name, value, expected] : rows) {
        Apply(before);
        Apply(name, value);
        EXPECT_EQ(Values(), expected) << name << " " << value.value.index();
    }
    Apply("Size", {9.0});
    EXPECT_EQ(box->GetFloatValue(Box::Size, Context::Process), 20.0F);
    EXPECT_EQ(box->changes, 0) << "the host is not told of its own change";
    EXPECT_TRUE(box->extraBytes.empty()) << "none were saved";
    Apply("Extra Bytes", {Util::Bytes{9}});
    EXPECT_EQ(box->extraBytes, Util::Bytes{9});
}

TEST_F(ElementStateTest, FindsTheElementByEitherName)
{
    Apply(BoxDictionary("Box", 3.0, 2, true), "anything");
    EXPECT_EQ(Values(), "3.0 2 on");
    Apply(BoxDictionary("BOX", 4.0, 2, true));
    EXPECT_EQ(Values(), "4.0 2 on");
    Apply("Amount", {7.0}); // no name in it: the key counts
    EXPECT_EQ(Values(), "7.0 2 on");
    Apply(BoxDictionary("box", 6.0, 2, true));
    EXPECT_EQ(Values(), "7.0 2 on");
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
    box->SetFloatValue(Box::Amount, 0.5F, Context::Process, {}); // the UI side still has 2.5
    Apply("Amount", {2.5});
    EXPECT_EQ(Values(), "2.5 2 on");
}

TEST_F(ElementStateTest, ComparesWhatIsThereUnlessTheTablesDiffer)
{
    DSP::ElementParamData data("Box");
    EXPECT_EQ(DSP::IsSameState(*box, data), true);
    data.SetFloat("Amount", 2.5F);
    data.SetEnum("Mode", 2);
    data.SetFloat("Size", 8.0F);
    EXPECT_EQ(DSP::IsSameState(*box, data), true);
    data.SetBool("On", false);
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
