// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "tests/wrappers/common/support/ModuleTest.h"
#include "wrappers/common/Editor.h"

#include <algorithm>
#include <limits>

using Wrapper::Side;
using InstanceTest = ModuleTest;

TEST_F(InstanceTest, ANewFormatKeepsValuesAndReportsItsLatency)
{
    const auto instance = Create(PUFFGUARD_MODULE, 2, 44100);
    ASSERT_NE(instance, nullptr);
    instance->SetParameter(Side::UI, 1, 0.25F);
    const uint32_t former = instance->GetLatency(Side::UI);
    instance->SetFormat(96000, 8);
    const uint32_t latency = instance->GetLatency(Side::UI);
    EXPECT_GT(latency, former);
    EXPECT_EQ(instance->GetLatency(Side::Process), latency);
    EXPECT_EQ(instance->GetParameter(Side::UI, 1), 0.25F);
    EXPECT_EQ(std::count(listener.latencies.begin(), listener.latencies.end(), latency), 1);
}

TEST_F(InstanceTest, AFormatThatCannotBeServedChangesNothing)
{
    const auto instance = Create(PUFFGUARD_MODULE, 2, 44100);
    ASSERT_NE(instance, nullptr);
    const uint32_t latency = instance->GetLatency(Side::UI);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        double sampleRate;
        uint32_t channels;
    } cases[] = {
        {nan, 6}, {0, 6}, {-1, 6}, {499, 6}, {1.6e6, 6}, {1e300, 6}, {96000, 0}, {96000, 25}};
    for (const auto& [sampleRate, channels] : cases) {
        EXPECT_FALSE(instance->SetFormat(sampleRate, channels)) << sampleRate << ", " << channels;
        EXPECT_EQ(instance->GetChannels(), 2U);
        EXPECT_EQ(instance->GetLatency(Side::UI), latency);
    }
    // The ends of what the module serves, which says nothing of what it passes over.
    EXPECT_TRUE(instance->SetFormat(500, 2));
    const uint32_t shortest = instance->GetLatency(Side::UI);
    EXPECT_LT(shortest, latency);
    EXPECT_TRUE(instance->SetFormat(1.5e6, 2));
    EXPECT_GT(instance->GetLatency(Side::UI), latency);
}

TEST_F(InstanceTest, AnImpulseInEachOfManyChannelsComesOutAtTheLatencyUnderBypass)
{
    constexpr uint32_t Channels = 24;
    const auto instance = Create(PUFFGUARD_MODULE, Channels);
    ASSERT_NE(instance, nullptr);
    instance->SetParameter(Side::UI, *instance->GetBypassIndex(), 1.0F);
    instance->Activate();
    const uint32_t latency = instance->GetLatency(Side::Process);
    std::vector<std::vector<float>> audio(Channels, std::vector<float>(latency + 100));
    std::vector<float*> pointers;
    for (uint32_t c = 0; c < Channels; ++c) {
        audio[c][c] = 1.0F;
        pointers.push_back(audio[c].data());
    }
    instance->Process({pointers.data(), pointers.data(), latency + 100}, 0.0);
    for (uint32_t c = 0; c < Channels; ++c) {
        std::vector<float> expected(latency + 100);
        expected[latency + c] = 1.0F;
        EXPECT_EQ(audio[c], expected) << "channel " << c;
    }
}

TEST_F(InstanceTest, AStateThatGrowsWhileItIsSavedIsSavedWhole)
{
    const auto instance = Create(FAKE_MODULE);
    ASSERT_NE(instance, nullptr);
    EXPECT_EQ(instance->SaveState(), (std::vector<uint8_t>{'a', 'b', 'c'}));
}

TEST_F(InstanceTest, ABlockThatIsRefusedStaysAsItWas)
{
    const auto instance = Create(FAKE_MODULE);
    ASSERT_NE(instance, nullptr);
    const float input[2] = {0.25F, -0.5F};
    float output[2] = {};
    const float* inputs[2] = {input, input + 1};
    float* outputs[2] = {output, output + 1};
    EXPECT_TRUE(instance->Process({inputs, outputs, 1}, std::nullopt));
    Refuse(SelectorProcess);
    EXPECT_FALSE(instance->Process({inputs, outputs, 1}, std::nullopt));
    EXPECT_EQ(output[0], 0.25F);
    EXPECT_EQ(output[1], -0.5F);
    EXPECT_TRUE(logged.empty()); // no log on the audio thread
}

TEST_F(InstanceTest, FromARefusedPieceOnABlockStaysAsItWas)
{
    const auto instance = Create(FAKE_MODULE);
    ASSERT_NE(instance, nullptr);
    constexpr uint32_t Piece = Wrapper::BlockBuffers::PieceFrames;
    std::vector<float> input(3 * Piece, 0.25F);
    input[Piece] = 2.0F; // is refused
    std::vector<float> expected = input;
    std::fill_n(expected.begin(), Piece, -0.25F);
    std::vector<float> output(input.size());
    const float* inputs[2] = {input.data(), input.data()};
    float* outputs[2] = {output.data(), nullptr}; // so that it goes in pieces
    EXPECT_FALSE(instance->Process({inputs, outputs, 3 * Piece}, std::nullopt));
    EXPECT_EQ(output, expected);
}

TEST_F(InstanceTest, AModuleThatRefusesToBeginMakesNoInstanceAndTheLogSaysWhy)
{
    const struct {
        uint32_t selector;
        const char* line;
    } cases[] = {
        {SelectorCreatePlugin, "the module makes no instance (answer 6)"},
        {SelectorInitialize, "the module refuses to be initialised (answer 6)"},
        {SelectorGetAutomatableParamCount, "the module refuses to count its parameters (answer 6)"},
        {SelectorGetAutomatableParamList, "the module refuses to list its parameters (answer 6)"},
    };
    for (const auto& [selector, line] : cases) {
        Refuse(selector);
        EXPECT_EQ(Create(FAKE_MODULE), nullptr);
        EXPECT_EQ(logged, std::vector<std::string>{line});
    }
}

TEST_F(InstanceTest, AnEditorIsOpenedOnceAndClosedOnce)
{
    const auto instance = Create(FAKE_MODULE);
    ASSERT_NE(instance, nullptr);
    int window = 0;
    {
        Wrapper::Editor editor(*instance);
        EXPECT_FALSE(editor.Open(nullptr, 0));
    }
    {
        Wrapper::Editor editor(*instance);
        EXPECT_EQ(editor.GetNativeWindow(), 0U);
        EXPECT_TRUE(editor.Open(&window, 0));
        EXPECT_TRUE(editor.Open(&window, 0));
        EXPECT_EQ(editor.GetNativeWindow(), 1U); // the fake counts its windows
        editor.Close();
        EXPECT_EQ(editor.GetNativeWindow(), 0U);
    }
    EditorRecord record = {};
    record.op = EditorOpGetNativeWindow;
    instance->CallEditor(record);
    EXPECT_EQ(record.nativeWindow, 0U);
}
