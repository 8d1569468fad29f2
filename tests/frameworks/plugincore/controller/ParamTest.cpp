// SPDX-License-Identifier: ISC
// Parameters apart from elements: who is called in which order, what limits a value, how long a
// connection lasts, and the form that lives in the settings.
#include "frameworks/plugincore/controller/AbsoluteLinkController.h"
#include "frameworks/plugincore/controller/ConfigFileParams.h"
#include "frameworks/plugincore/controller/GrabbedParamHandle.h"
#include "frameworks/plugincore/controller/MemoryParams.h"
#include "frameworks/plugincore/controller/ParamView.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace {

using namespace Controller;
using Log = std::vector<std::string>;

// Writes down changes and gestures.
class LoggedParam final : public FloatParamMemory {
public:
    explicit LoggedParam(Log& newLog, DSP::ValueRange<float> limits = {0.0F, 10.0F})
        : MemoryParam(limits, 5.0F)
        , log(newLog)
    {
    }
    void BeginChange() override { log.emplace_back("begin"); }
    void EndChange() override { log.emplace_back("end"); }

private:
    Log& log;
};

struct Listener : Trackable {};

TEST(ParamTest, AChangeFromWithinAListenerBeginsNoSecondOne)
{
    Log log;
    LoggedParam param(log);
    const Connection connection = param.ValueChanged().Connect([&](float value) {
        log.push_back(std::to_string(static_cast<int>(value)));
        if (value < 9.0F) {
            param.SetValue(9.0F);
        }
    });
    param.SetValue(7.0F);
    EXPECT_EQ(log, (Log{"begin", "7", "9", "end"}));
    EXPECT_EQ(param.GetValue(), 9.0F);
    param.SetValue(9.0F); // no change: no signal, but a gesture all the same
    EXPECT_EQ(log, (Log{"begin", "7", "9", "end", "begin", "end"}));

    float top = 0.0F;
    const Connection limits =
        param.RangeChanged().Connect([&](const DSP::ValueRange<float>& range) { top = range.max; });
    param.SetRange({0.0F, 1.0F}); // a narrower range leaves the value alone
    EXPECT_EQ(param.GetValue(), 9.0F);
    EXPECT_EQ(top, 1.0F);
}

TEST(ParamTest, ConstraintsRunInOrderOnEveryNewValueTheDefaultIncluded)
{
    Log log;
    LoggedParam param(log);
    bool again = true;
    param.AddConstraint([](float& value) { value = std::max(value, 6.0F); });
    param.AddConstraint([](float& value) { value *= 2.0F; });
    param.AddConstraint([&](float&) {
        if (std::exchange(again, false)) {
            param.SetValue(1.0F); // must not lock up
        }
    });
    param.ResetToDefault();
    EXPECT_EQ(param.GetValue(), 12.0F); // beyond the range, which limits nothing by itself
    EXPECT_EQ(log, (Log{"begin", "end"}));

    param.AddConstraint({});
    try {
        param.SetValue(2.0F);
        ADD_FAILURE() << "nothing thrown";
    } catch (const std::bad_function_call& fault) {
        EXPECT_STREQ(fault.what(), "bad function call");
    }
    EXPECT_EQ(param.GetValue(), 12.0F);
    EXPECT_EQ(log.back(), "end"); // the failed change is over: the next one begins anew
    EXPECT_EQ(log.size(), 4U);
}

TEST(ParamTest, ConnectionsEndWithTheirOwnerAndWithTheirHandle)
{
    FloatParamMemory param({0.0F, 10.0F}, 5.0F);
    int ownerCalls = 0;
    int handleCalls = 0;
    auto owner = std::make_unique<Listener>();
    auto second = std::make_unique<Listener>();
    param.ValueChanged().Connect(*owner, [&](float) {
        ++ownerCalls;
        second.reset(); // ends a connection that this very change would have reached next
    });
    param.ValueChanged().Connect(*second, [&](float) { ownerCalls += 100; });
    Connection handle = param.ValueChanged().Connect([&](float) { ++handleCalls; });
    param.SetValue(1.0F);
    owner.reset();
    param.SetValue(2.0F);
    handle.reset();
    param.SetValue(3.0F);
    EXPECT_EQ(ownerCalls, 1);
    EXPECT_EQ(handleCalls, 2);
}

TEST(ParamTest, AParentTakesItsChildrenAlong)
{
    struct Noted : Object {
        Noted(Log& newLog, std::string newName)
            : log(newLog)
            , name(std::move(newName))
        {
        }
        ~Noted() override { log.push_back(name); }
        Log& log;
        std::string name;
    };
    Log log;
    std::unique_ptr<Object> kept;
    {
        Noted parent(log, "parent");
        Noted& first = parent.AddChild(std::make_unique<Noted>(log, "first"));
        parent.AddChild(std::make_unique<Noted>(log, "second"));
        Noted& third = first.AddChild(std::make_unique<Noted>(log, "third"));
        EXPECT_EQ(parent.RemoveChild(third), nullptr); // a child's child
        kept = first.RemoveChild(third);
        EXPECT_EQ(kept->GetParent(), nullptr);
    }
    EXPECT_EQ(log, (Log{"parent", "second", "first"}));
}

TEST(ParamTest, AViewFollowsWhatIsBoundAndSurvivesItsEnd)
{
    std::vector<float> shown;
    ParamView<float> view([&](float value) { shown.push_back(value); });
    EXPECT_EQ(view.GetController()->GetRange().max, 1.0F);
    {
        FloatParamMemory param({0.0F, 10.0F}, 5.0F);
        view.SetController(&param);
        param.SetValue(6.0F);
    }
    EXPECT_FALSE(view.IsBound());
    EXPECT_EQ(view.GetController()->GetValue(), 0.0F);
    FloatParamMemory former({0.0F, 10.0F}, 3.0F);
    view.SetController(&former);
    view.SetController(nullptr);
    former.SetValue(4.0F);
    EXPECT_EQ(shown, (std::vector<float>{5.0F, 6.0F, 3.0F, 0.0F}));
}

TEST(ParamTest, AGrabOutlivesItsParameterWithoutHarm)
{
    Log log;
    auto param = std::make_unique<LoggedParam>(log);
    {
        const GrabbedParamHandle<float> handle(*param);
        EXPECT_EQ(log, Log{"begin"});
    }
    EXPECT_EQ(log, (Log{"begin", "end"}));
    log.clear();
    {
        const GrabbedParamHandle<float> orphan(*param);
        param.reset();
    }
    EXPECT_EQ(log, Log{"begin"}); // nothing ends on what is gone
}

TEST(ParamTest, AChangeThatCannotBeginLeavesNoTrace)
{
    struct Refusing : FloatParamMemory {
        using MemoryParam::MemoryParam;
        void BeginChange() override
        {
            if (++begun == 1) {
                throw std::runtime_error("refused");
            }
        }
        void EndChange() override { ++ended; }
        int begun = 0;
        int ended = 0;
    };
    Refusing param({0.0F, 10.0F}, 5.0F);
    EXPECT_THROW(param.SetValue(7.0F), std::runtime_error);
    EXPECT_EQ(param.GetValue(), 5.0F);
    EXPECT_EQ(param.ended, 0);
    param.SetValue(8.0F);
    EXPECT_EQ(param.GetValue(), 8.0F);
    EXPECT_EQ(param.begun, 2);
    EXPECT_EQ(param.ended, 1);
}

TEST(LinkTest, SettingOneSetsTheRestWithoutEnd)
{
    Log log;
    LoggedParam wide(log);
    LoggedParam narrow(log, {0.0F, 4.0F});
    narrow.AddConstraint([](float& value) { value = std::min(value, 4.0F); });
    auto third = std::make_unique<LoggedParam>(log);
    AbsoluteLinkController<FloatParam> link;
    FloatParam& linked = link.Add(wide);
    link.Add(*third);
    link.Add(narrow);

    wide.SetValue(7.0F);
    EXPECT_EQ(wide.GetValue(), 7.0F); // what the narrow one can't take isn't sent back
    EXPECT_EQ(narrow.GetValue(), 4.0F);
    EXPECT_EQ(third->GetValue(), 7.0F);
    third->SetValue(2.0F);
    EXPECT_EQ(wide.GetValue(), 2.0F);
    EXPECT_EQ(narrow.GetValue(), 2.0F);

    third.reset(); // leaves the link by itself
    std::vector<float> heard;
    const Connection connection =
        linked.ValueChanged().Connect([&](float value) { heard.push_back(value); });
    log.clear();
    linked.SetValue(3.0F);
    EXPECT_EQ(heard, std::vector<float>{3.0F});
    EXPECT_EQ(narrow.GetValue(), 3.0F);
    // Balanced, and each of both is held for as long as the change lasts.
    EXPECT_EQ(std::count(log.begin(), log.end(), "begin"), 4);
    EXPECT_EQ((Log{log.begin(), log.begin() + 2}), (Log{"begin", "begin"}));
    EXPECT_EQ((Log{log.end() - 2, log.end()}), (Log{"end", "end"}));
}

TEST(LinkTest, KeepsTheLastValueOfATargetThatIsGone)
{
    auto target = std::make_unique<FloatParamMemory>(DSP::ValueRange<float>{0.0F, 10.0F}, 5.0F);
    FloatParamMemory other({0.0F, 10.0F}, 3.0F);
    AbsoluteLinkController<FloatParam> link;
    FloatParam& untouched = link.Add(*target);
    EXPECT_EQ(untouched.GetValue(), 5.0F);
    link.Add(other);
    untouched.SetValue(5.0F); // the value that the target has sets the rest all the same
    EXPECT_EQ(other.GetValue(), 5.0F);
    target->SetValue(6.0F);
    target.reset();
    EXPECT_EQ(untouched.GetValue(), 6.0F);
    untouched.SetValue(7.0F);
    EXPECT_EQ(untouched.GetValue(), 6.0F);
    EXPECT_EQ(other.GetValue(), 6.0F);
}

TEST(ConfigFileParamTest, StartsWithTheSettingAndWritesWhatDiffers)
{
    const Support::UserFolders folders;
    Util::ConfigFile file("SOFTWARE/Test/Params");
    FloatParamConfigFile fresh(file, "A.b/c", 0.5F);
    EXPECT_EQ(fresh.GetValue(), 0.5F);
    fresh.SetValue(0.5F);
    EXPECT_FALSE(file.HasValue("A.b/c")); // no difference, nothing written
    fresh.SetValue(0.1F);
    EXPECT_EQ(FloatParamConfigFile(file, "A.b/c", 0.5F).GetValue(), 0.1F);

    StringParamConfigFile text(file, "Text", "none");
    text.SetValue("\xC3\xA4");
    text.ResetToDefault();
    EXPECT_EQ(file.ReadString("Text", ""), "none");
    ChangeNotifier& notifier = text; // for whoever needn't know that it is a text
    int changes = 0;
    Connection connection = notifier.ConnectChange([&changes] { ++changes; });
    text.SetValue("some");
    text.SetValue("some");
    EXPECT_EQ(changes, 1);
    connection.reset();
    text.SetValue("none");
    EXPECT_EQ(changes, 1);

    BoolParamConfigFile(file, "Flag", false).SetValue(true);
    EXPECT_TRUE(BoolParamConfigFile(file, "Flag", false).GetValue());
    // Of another kind than expected: the default.
    EXPECT_EQ(EnumParamConfigFile(file, "Text", 7).GetValue(), 7U);

    ParamConfigFileStorage<uint32_t> storage(file, "Number", 3);
    storage.SetWritingSuspended(true);
    storage.Store(4);
    EXPECT_EQ(storage.Load(), 4U);
    EXPECT_FALSE(file.HasValue("Number"));
}

} // namespace
