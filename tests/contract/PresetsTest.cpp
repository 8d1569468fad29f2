// SPDX-License-Identifier: ISC
// Presets through the entry, with those that are built beside the module.
#include "tests/support/AudioThread.h"
#include "tests/support/ModuleHost.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using namespace TestHost;

/// What the module says against it, empty when it is done.
std::string Apply(Instance& instance, const std::string& name, int32_t op = PresetOpApply)
{
    const PresetRecord record = instance.RunPreset(op, name);
    EXPECT_EQ(record.failed != 0, record.message[0] != 0) << name;
    return static_cast<const char*>(record.message);
}

constexpr std::array<uint32_t, 3> Saved{Sensitivity, Strength, UpperFrequency};

std::array<float, 3> ValuesOf(Instance& instance)
{
    return {instance.Value(Sensitivity), instance.Value(Strength), instance.Value(UpperFrequency)};
}

void SetAll(Instance& instance, float value)
{
    for (const uint32_t index : Saved) {
        instance.Set(index, value);
    }
}

uint32_t CountCalls(Instance& instance, uint32_t opcode, uint32_t word = 0)
{
    const auto calls = instance.Calls();
    return static_cast<uint32_t>(
        std::count_if(calls.begin(), calls.end(), [&](const HostCall& call) {
            return call.opcode == opcode && call.context == UI && call.word == word;
        }));
}

} // namespace

TEST(Presets, OfTheFactoryAreThereAndStay)
{
    Instance instance(44100.0F, 1);
    std::vector<std::string> names;
    const uint32_t count = instance.RunPreset(PresetOpList).count;
    std::vector<std::array<float, 3>> values;
    for (uint32_t index = 0; index < count; ++index) {
        const PresetRecord entry = instance.RunPreset(PresetOpDescribe, "", index);
        EXPECT_EQ(entry.isReadOnly, 1);
        EXPECT_EQ(entry.message[0], 0);
        if (entry.group == PresetGroupFactory) {
            names.emplace_back(static_cast<const char*>(entry.presetName));
            EXPECT_NE(entry.presetComment[0], 0);
            EXPECT_EQ(Apply(instance, names.back()), "");
            values.push_back(ValuesOf(instance));
            const std::string before = Support::ReadText(&entry.path[0]);
            EXPECT_EQ(instance.RunPreset(PresetOpSave, &entry.path[0]).failed, 1);
            EXPECT_EQ(Support::ReadText(&entry.path[0]), before);
        }
    }
    EXPECT_EQ(
        names,
        (std::vector<std::string>{
            "Close microphone", "Default", "Gentle", "Live - low latency", "Low voice", "Strong"}));
    std::sort(values.begin(), values.end());
    EXPECT_EQ(std::adjacent_find(values.begin(), values.end()), values.end());
}

TEST(Presets, AreOneActionOfTheUser)
{
    Instance instance(44100.0F, 1);
    SetAll(instance, 0.9F);
    ASSERT_EQ(CountCalls(instance, HostOpcodeDirtyState), 0U); // the host's own doing
    const PresetRecord applied = instance.RunPreset(PresetOpApply, "factory SETTINGS");
    EXPECT_EQ(applied.failed, 0);
    EXPECT_STREQ(&applied.presetName[0], "Factory settings");
    EXPECT_EQ(CountCalls(instance, HostOpcodeDirtyState), 1U);
    EXPECT_EQ(CountCalls(instance, HostOpcodeParamEvent, 1), 3U);
    EXPECT_EQ(Apply(instance, "Default"), ""); // the same values: an action all the same
    EXPECT_EQ(CountCalls(instance, HostOpcodeDirtyState), 2U);
    EXPECT_EQ(CountCalls(instance, HostOpcodeParamEvent, 1), 3U);
    const uint32_t latency = instance.Latency();
    EXPECT_EQ(Apply(instance, "Live / low latency"), ""); // as its comment may write it
    EXPECT_LT(instance.Latency(), latency);
}

TEST(Presets, BringValuesToAnotherInstanceWhileAudioRuns)
{
    const Support::TemporaryFolder folder;
    const std::string path = folder / "deep/mine.xml";
    Instance first(44100.0F, 1);
    first.Set(Sensitivity, 0.123456789F);
    first.Set(Strength, 1.0F / 3.0F);
    first.Set(UpperFrequency, 0.1415926F);
    const PresetRecord saved = first.RunPreset(PresetOpSave, path);
    ASSERT_EQ(saved.failed, 0) << &saved.message[0];
    EXPECT_EQ(&saved.path[0], path);

    Instance second(96000.0F, 2);
    {
        const Support::AudioThread audio([&, block = MakeSpeechLike(2, 500, 96000)]() mutable {
            return second.RunBlock(block, 0, 500) == PluginCoreSuccess;
        });
        audio.WaitForBlocks(3);
        EXPECT_EQ(Apply(second, path), "");
    }
    EXPECT_EQ(ValuesOf(second), ValuesOf(first));
}

TEST(Presets, ThatCannotBeUsedChangeNothing)
{
    const Support::TemporaryFolder folder;
    Instance instance(44100.0F, 1);
    const std::string whole = folder / "whole.xml";
    ASSERT_EQ(instance.RunPreset(PresetOpSave, whole).failed, 0);
    SetAll(instance, 0.75F);
    const auto before = ValuesOf(instance);
    const std::string text = Support::ReadText(whole);
    const std::string cut = folder / "cut.xml";
    Support::WriteText(cut, text.substr(0, text.size() / 2));
    EXPECT_EQ(Apply(instance, cut).find("The file " + cut + " is not a valid preset file. ("), 0U);
    const std::string gone = folder / "gone.xml";
    EXPECT_EQ(Apply(instance, gone).find("No such file or preset: \"" + gone + "\". There are: "),
              0U);
    EXPECT_EQ(Apply(instance, "Stron"),
              "There is no preset \"Stron\". Did you mean \"Strong\"? There are: Factory settings, "
              "Close microphone, Default, Gentle, Live - low latency, Low voice, Strong");
    EXPECT_NE(Apply(instance, ""), "");
    EXPECT_EQ(instance.RunPreset(PresetOpSave, "what?").failed, 1);
    EXPECT_NE(
        Apply(instance, whole + "/below.xml", PresetOpSave).find("(" + whole + ": File exists)"),
        std::string::npos);
    const std::string tooLong = folder / (std::string(300, 'n') + ".xml");
    EXPECT_EQ(Apply(instance, tooLong, PresetOpSave),
              "Unable to save the file to " + tooLong + " (File name too long)");
    EXPECT_EQ(Apply(instance, whole, PresetOpSave), "The preset " + whole + " exists already.");
    EXPECT_EQ(ValuesOf(instance), before);
    EXPECT_EQ(CountCalls(instance, HostOpcodeDirtyState), 0U);
    EXPECT_EQ(Support::ReadText(whole), text);
}

TEST(Presets, AreForTheUISideAndWholeRecords)
{
    Instance instance(44100.0F, 1);
    PresetRecord record{};
    record.op = PresetOpApply;
    record.name = "Strong";
    const auto before = ValuesOf(instance);
    const auto send = [&](uint32_t context, uint32_t length, void* data) {
        HostMessageRecord message{PLUGIN_CORE_MESSAGE_PRESET, length, data};
        return Call(SelectorHostMessage, context, instance.Get(), &message);
    };
    EXPECT_EQ(send(Process, sizeof record, &record), PluginCoreUnsupported);
    EXPECT_EQ(send(UI, sizeof record - 1, &record), PluginCoreUnsupported);
    EXPECT_EQ(send(UI, sizeof record, nullptr), PluginCoreUnsupported);
    record.op = 8;
    EXPECT_EQ(send(UI, sizeof record, &record), PluginCoreUnsupported);
    record.op = PresetOpDescribe; // of a list that nobody asked for
    EXPECT_EQ(send(UI, sizeof record, &record), PluginCoreUnsupported);
    record.op = PresetOpApply;
    record.name = nullptr;
    EXPECT_EQ(send(UI, sizeof record, &record), PluginCoreSuccess);
    EXPECT_EQ(record.failed, 1);
    EXPECT_EQ(ValuesOf(instance), before);
}
