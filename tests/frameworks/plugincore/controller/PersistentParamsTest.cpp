// SPDX-License-Identifier: ISC
// Preferences of the user: kept over processes, equal in all instances of one, and not written by
// those that only follow.
#include "frameworks/plugincore/controller/ElementDispatcherControllerSet.h"
#include "frameworks/plugincore/controller/PersistentParamsLink.h"
#include "frameworks/plugincore/controller/PersistentRegistrationVisitor.h"
#include "tests/support/Child.h"
#include "tests/support/SavedElement.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <utility>

namespace {

using namespace Controller;
using Support::SavedElement;
using Side = DSP::Context;

const char* const Settings = "SOFTWARE/Test/Persistent";

// What of an instance matters here.
struct Instance {
    Instance()
    {
        host.makeControllerSet = [](DSP::ElementDispatcher& made) {
            return std::make_shared<ElementDispatcherControllerSet>(made);
        };
        link.Load(element);
    }
    void Set(float value)
    {
        element.SetFloatValue(SavedElement::Size, value, Side::UI, DSP::SourceHost);
    }
    float Value(Side side = Side::UI) const
    {
        return element.GetFloatValue(SavedElement::Size, side);
    }

    Support::TestElementHost host;
    SavedElement element{host, "Test"};
    PersistentParamsLink link{PersistentParamsHolder::Share(Settings)};
};

struct PersistentParamsTest : testing::Test {
    const Support::UserFolders folders;
    Util::ConfigFile file{Settings};
};

TEST_F(PersistentParamsTest, AnotherProcessLeavesItsValuesToTheNext)
{
    Support::Child child([] {
        Instance instance;
        instance.Set(33.5F);
        instance.element.SetEnumValue(SavedElement::Colour, 3, Side::UI, {});
        instance.element.SetBoolValue(SavedElement::Shown, true, Side::UI, {});
        instance.element.SetFloatValue(SavedElement::Amount, 7.0F, Side::UI, {}); // not persistent
        instance.element.SetBoolValue(SavedElement::On, true, Side::UI, {});      // nor this one
    });
    ASSERT_EQ(child.Wait(), 0);

    std::set<String> names;
    file.GetValueNames(names, "");
    EXPECT_EQ(names,
              (std::set<String>{
                  "Params.Test.Bool.Shown", "Params.Test.Enum.Colour", "Params.Test.Float.Size"}));
    const Instance instance;
    EXPECT_EQ(instance.Value(Side::Process), 33.5F);
    EXPECT_EQ(instance.element.GetEnumValue(SavedElement::Colour, Side::Process), 3U);
    EXPECT_TRUE(instance.element.GetBoolValue(SavedElement::Shown, Side::Process));
    EXPECT_EQ(instance.element.GetFloatValue(SavedElement::Amount, Side::UI), 5.0F);
}

TEST_F(PersistentParamsTest, LiveInstancesFollowAtTheirOwnTickWithoutWritingAgain)
{
    Instance first;
    Instance second;
    first.Set(40.0F);
    EXPECT_EQ(file.ReadFloat("Params.Test.Float.Size", 0.0F), 40.0F);
    EXPECT_EQ(second.Value(), 20.0F);
    // Whoever wrote now would bring the value back.
    file.DeleteValue("Params.Test.Float.Size");
    second.link.ApplyChanges();
    first.link.ApplyChanges();
    EXPECT_EQ(second.Value(Side::Process), 40.0F);
    EXPECT_FALSE(file.HasValue("Params.Test.Float.Size"));
    // The way back, and a third that comes later.
    second.Set(50.0F);
    first.link.ApplyChanges();
    EXPECT_EQ(first.Value(), 50.0F);
    EXPECT_EQ(Instance().Value(), 50.0F);
    // What the process side changes is kept when it is polled.
    first.element.SetFloatValue(SavedElement::Size, 70.0F, Side::Process, DSP::SourceHost);
    first.element.SyncParams();
    EXPECT_EQ(file.ReadFloat("Params.Test.Float.Size", 0.0F), 70.0F);
}

// Another process, or another copy of the module in this one.
TEST_F(PersistentParamsTest, LiveInstancesFollowWhatOthersWriteToTheSettings)
{
    const auto writeElsewhere = [](float value) {
        Support::Child([&] {
            Util::ConfigFile(Settings).WriteFloat("Params.Test.Float.Size", value);
        }).Wait();
    };
    Instance first;
    writeElsewhere(40.0F);
    first.link.ApplyChanges();
    EXPECT_EQ(first.Value(Side::Process), 40.0F);
    writeElsewhere(50.0F);
    EXPECT_EQ(Instance().Value(), 50.0F) << "read when it is registered";
    first.link.ApplyChanges();
    EXPECT_EQ(first.Value(), 50.0F);
    // Nothing of this is written again, and a value that goes leaves what there is.
    file.DeleteKey("");
    first.link.ApplyChanges();
    EXPECT_EQ(first.Value(), 50.0F);
    EXPECT_FALSE(file.HasValue("Params.Test.Float.Size"));
    first.Set(50.0F);
    first.Set(60.0F);
    EXPECT_EQ(file.ReadFloat("Params.Test.Float.Size", 0.0F), 60.0F);
}

TEST_F(PersistentParamsTest, ChangesAtTheSameTimeEndInOneValueEverywhere)
{
    Instance first;
    Instance second;
    first.Set(40.0F);
    second.Set(60.0F); // before its tick has seen the 40
    first.link.ApplyChanges();
    second.link.ApplyChanges();
    EXPECT_EQ(first.Value(), 60.0F);
    EXPECT_EQ(second.Value(), 60.0F);
    EXPECT_EQ(file.ReadFloat("Params.Test.Float.Size", 0.0F), 60.0F);
    // One changes while the other is just taking over what it had before.
    bool changes = true;
    second.element.GetDispatchInfo<float>(SavedElement::Size)
        ->AddObserver([&](Side, float, DSP::ValueSource) {
            if (std::exchange(changes, false)) {
                first.Set(80.0F);
            }
        });
    first.Set(70.0F);
    second.link.ApplyChanges();
    EXPECT_EQ(second.Value(), 70.0F);
    second.link.ApplyChanges();
    first.link.ApplyChanges();
    EXPECT_EQ(first.Value(), 80.0F);
    EXPECT_EQ(second.Value(), 80.0F);
    EXPECT_EQ(file.ReadFloat("Params.Test.Float.Size", 0.0F), 80.0F);
}

TEST_F(PersistentParamsTest, AListenerThatThrowsCostsNoOtherValue)
{
    Instance first;
    Instance second;
    bool fails = true;
    const auto connection =
        second.element.GetDispatchInfo<uint32_t>(SavedElement::Colour)->Connect([&](uint32_t) {
            if (std::exchange(fails, false)) {
                throw std::runtime_error("listener");
            }
        });
    first.element.SetEnumValue(SavedElement::Colour, 3, Side::UI, DSP::SourceHost);
    first.Set(77.0F); // its key comes after the other's
    EXPECT_THROW(second.link.ApplyChanges(), std::runtime_error);
    second.link.ApplyChanges();
    EXPECT_EQ(second.element.GetEnumValue(SavedElement::Colour, Side::UI), 3U);
    EXPECT_EQ(second.Value(), 77.0F);
    // Taking over is done with: what changes here from now on is written.
    second.element.SetEnumValue(SavedElement::Colour, 1, Side::UI, DSP::SourceHost);
    EXPECT_EQ(file.ReadUInt("Params.Test.Enum.Colour", 0), 1U);
}

TEST_F(PersistentParamsTest, ASettingThatCannotBeIsLimitedAndLeftAsItIs)
{
    file.WriteUInt("Params.Test.Enum.Colour", 77);
    file.WriteString("Params.Test.Float.Size", "nonsense");
    file.WriteString("Params.Test.Bool.Shown", "nonsense");
    const Instance instance;
    EXPECT_EQ(instance.element.GetEnumValue(SavedElement::Colour, Side::UI), 3U);
    EXPECT_EQ(instance.Value(), 20.0F);
    EXPECT_FALSE(instance.element.GetBoolValue(SavedElement::Shown, Side::UI));
    EXPECT_EQ(file.ReadUInt("Params.Test.Enum.Colour", 0), 77U);
}

TEST_F(PersistentParamsTest, LetsGoOfElementsAndTakesTheNextOnesAtTheSameValues)
{
    Instance first;
    Instance second;
    second.link.Clear();
    second.Set(5.0F); // nobody follows any more
    first.Set(45.0F);
    second.link.ApplyChanges();
    EXPECT_EQ(second.Value(), 5.0F);
    second.link.Load(second.element);
    EXPECT_EQ(second.Value(), 45.0F);
    second.Set(46.0F);
    first.link.ApplyChanges();
    EXPECT_EQ(first.Value(), 46.0F);
}

TEST_F(PersistentParamsTest, RegistrationKeepsItsOrderAndCanDoWithoutControllers)
{
    Support::TestElementHost host;
    SavedElement element(host, "Test");
    PersistentParamsLink link(PersistentParamsHolder::Share(Settings));
    element.makeSet = []() -> std::shared_ptr<ControllerSet> {
        ADD_FAILURE() << "asked for controllers";
        return nullptr;
    };
    PersistentRegistrationVisitor visitor(
        link, element, PersistentRegistrationVisitor::Mode::RegisterOnly);
    DSP::VisitParams(element.GetParamMap(), visitor);
    DSP::VisitParams(element.GetParamMap(), visitor); // nothing new
    // As the element has them, by name; by key they would stand otherwise.
    EXPECT_EQ(link.GetHolder().GetKeys(),
              (std::vector<String>{
                  "Params.Test.Enum.Colour", "Params.Test.Bool.Shown", "Params.Test.Float.Size"}));
    Instance other;
    other.Set(40.0F);
    link.ApplyChanges();
    EXPECT_EQ(element.GetFloatValue(SavedElement::Size, Side::UI), 20.0F);
}

// Each thread is the UI thread of an instance that lives for a while, as in a host that has one a
// track. A thread checker sees more here than the result does.
TEST_F(PersistentParamsTest, InstancesOnSeveralThreadsAgreeInTheEnd)
{
    constexpr int Threads = 3;
    constexpr int Rounds = 10;
    const Instance keeper;
    Instance last;
    std::vector<std::thread> threads;
    for (int number = 0; number < Threads; ++number) {
        threads.emplace_back([number] {
            for (int round = 0; round < Rounds; ++round) {
                Instance instance;
                instance.Set(static_cast<float>(round * Threads + number));
                instance.link.ApplyChanges();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    last.link.ApplyChanges();
    EXPECT_EQ(last.Value(), file.ReadFloat("Params.Test.Float.Size", -1.0F));
    EXPECT_NE(last.Value(), 20.0F);
}

} // namespace
