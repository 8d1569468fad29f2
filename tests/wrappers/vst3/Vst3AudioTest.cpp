// SPDX-License-Identifier: ISC
// Audio where this format has rules of its own. What comes out is what the module gives when it is
// driven directly.
#include "tests/contract/support/Takes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/wrappers/vst3/support/Vst3Host.h"

#include <gtest/gtest.h>

#include <cmath>

using Contract::Audio;
using Vst3Host::Changes;
using Vst3Host::Plugin;
using Vst3Host::Point;
using Vst3Host::Id::Bypass;
using Vst3Host::Id::Strength;

namespace {

constexpr uint32_t Rate = 48000;

Audio Speech()
{
    return Contract::MakeSpeech(Rate, 2, 1.0);
}

/// What the module makes of speech. Changes happen where the points are, at the ends of blocks.
Audio Expected(const std::vector<Point>& strengths = {}, float sampleRate = Rate)
{
    Audio audio = Speech();
    TestHost::Instance direct(sampleRate, 2);
    uint32_t done = 0;
    const auto run = [&](uint32_t end) {
        if (end > done) {
            direct.RunBlock(audio, done, end - done);
        }
        done = end;
    };
    for (const Point& point : strengths) {
        run(static_cast<uint32_t>(point.offset));
        direct.Set(TestHost::Strength, static_cast<float>(point.value), TestHost::Process);
    }
    run(Rate);
    return audio;
}

/// A value that changes all the time.
std::vector<Point> Ramp()
{
    std::vector<Point> ramp;
    for (int32_t i = 0; i < 100; ++i) {
        ramp.push_back({i * 441, (i % 9) / 8.0});
    }
    return ramp;
}

class Vst3AudioTest : public testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_NE(TestHost::Entry(), nullptr); }

    Support::UserFolders folders;
};

} // namespace

TEST_F(Vst3AudioTest, WhileActiveFormatsAreRefusedAndTheAudioGoesOn)
{
    Plugin plugin;
    plugin.Start();
    uint32_t number = 0;
    const Audio output = Contract::Play(plugin, Speech(), [&] {
        if (++number == 40) {
            EXPECT_NE(plugin.Setup(96000), V3_OK);
            EXPECT_NE(plugin.Arrange(Vst3Host::Mono, Vst3Host::Mono), V3_OK);
            EXPECT_EQ(plugin.Setup(Rate), V3_OK);
            EXPECT_EQ(plugin.Arrange(Vst3Host::Stereo, Vst3Host::Stereo), V3_OK);
            EXPECT_EQ(plugin.component->SetActive(1), V3_OK);
        }
        return 512U;
    });
    EXPECT_EQ(output, Expected());
}

TEST_F(Vst3AudioTest, AHostThatSetsUpAndActivatesNothingIsServed)
{
    const auto component = Vst3Host::Create(*Vst3Host::GetFactory());
    ASSERT_EQ(component->Initialize(nullptr), V3_OK);
    Audio audio = Speech();
    float* pointers[2] = {audio[0].data(), audio[1].data()};
    v3_audio_bus_buffers bus = {2, 0, {pointers}};
    v3_process_data data = {};
    data.nframes = Rate;
    data.num_input_buses = data.num_output_buses = 1;
    data.inputs = data.outputs = &bus;
    const auto processor =
        Vst3Host::Query<Vst3Host::IAudioProcessor>(*component, v3_audio_processor_iid);
    EXPECT_EQ(processor->Process(&data), V3_OK);
    EXPECT_EQ(audio, Expected({}, 44100));
    EXPECT_EQ(component->Terminate(), V3_OK);
}

TEST_F(Vst3AudioTest, PointsCutTheBlockAtTheirSampleWhateverTheirQueuesHold)
{
    const std::vector<Point> ramp = Ramp();
    std::vector<std::vector<Point>> halves(2);
    for (size_t i = 0; i < ramp.size(); ++i) {
        halves[i % 2].push_back(ramp[i]);
    }
    const struct {
        const char* name;
        std::vector<std::vector<Point>> queues;
        std::vector<Point> heard; // what they amount to
    } cases[] = {
        {"at the begin", {{{0, 1.0}}}, {{0, 1.0}}},
        {"behind it", {{{1, 0.25}}}, {{1, 0.25}}},
        {"up to the end", {{{100, 1.0}, {47999, 0.5}}}, {{100, 1.0}, {47999, 0.5}}},
        {"many", {ramp}, ramp},
        {"many in two queues", halves, ramp},
        {"before the block", {{{-100, 1.0}}}, {{0, 1.0}}},
        {"not in order", {{{30000, 1.0}, {10, 0.0}}}, {{30000, 1.0}, {30000, 0.0}}},
        {"no numbers", {{{5, std::nan("")}, {6, -1e300}, {7, 1e300}}}, {{6, 0.0}, {7, 1.0}}},
    };
    for (const auto& [name, queues, heard] : cases) {
        SCOPED_TRACE(name);
        Plugin plugin;
        plugin.Start();
        Changes changes;
        changes.missing = 2;
        changes.Add(12345, {{0, 1.0}});
        changes.Add(Bypass, {});
        for (const std::vector<Point>& points : queues) {
            changes.Add(Strength, points);
        }
        Audio audio = Speech();
        float* pointers[2] = {audio[0].data(), audio[1].data()};
        EXPECT_EQ(plugin.Send(pointers, pointers, Rate, {&changes}), V3_OK);
        EXPECT_EQ(audio, Expected(heard));
    }
    for (const std::vector<Point>& half : halves) {
        ASSERT_NE(Expected(half), Expected(ramp)) << "all need to be heard";
    }
}

TEST_F(Vst3AudioTest, ABlockOfNoFramesTakesTheLastPointWithOrWithoutMemory)
{
    for (const bool hasMemory : {false, true}) {
        Plugin plugin;
        plugin.Start();
        Changes changes;
        changes.Add(Strength, {{0, 0.25}, {100, 1.0}});
        float sample = 0.5F;
        float* pointers[2] = {&sample, &sample};
        float** bus = hasMemory ? pointers : nullptr;
        EXPECT_EQ(plugin.Send(bus, bus, 0, {&changes}), V3_OK);
        EXPECT_EQ(sample, 0.5F);
        EXPECT_EQ(Contract::Play(plugin, Speech(), 512), Expected({{0, 1.0}}));
    }
    // Behind the end of a block: with the next one.
    Plugin plugin;
    plugin.Start();
    Changes changes;
    changes.Add(Strength, {{999, 1.0}});
    Audio audio = Speech();
    float* pointers[2] = {audio[0].data(), audio[1].data()};
    plugin.Send(pointers, pointers, 100, {&changes});
    float* rest[2] = {audio[0].data() + 100, audio[1].data() + 100};
    plugin.Send(rest, rest, Rate - 100);
    EXPECT_EQ(audio, Expected({{100, 1.0}}));
}

TEST_F(Vst3AudioTest, BlocksThatCannotBeAreRefusedAndLeaveTheMemoryAlone)
{
    Plugin plugin;
    plugin.Start();
    Audio audio = Speech();
    float* pointers[2] = {audio[0].data(), audio[1].data()};
    v3_audio_bus_buffers bus = {2, 0, {pointers}};
    v3_process_data data = {};
    data.num_input_buses = data.num_output_buses = 1;
    data.inputs = data.outputs = &bus;
    data.nframes = -50000;
    EXPECT_NE(plugin.processor->Process(&data), V3_OK);
    data.nframes = 100;
    data.symbolic_sample_size = V3_SAMPLE_64;
    EXPECT_NE(plugin.processor->Process(&data), V3_OK);
    EXPECT_EQ(audio, Speech());
    v3_process_setup doubles = {V3_REALTIME, V3_SAMPLE_64, 64, Rate};
    EXPECT_NE(plugin.processor->SetupProcessing(&doubles), V3_OK);
}

TEST_F(Vst3AudioTest, BusesMayBeMissingAndNoInputIsSilence)
{
    const Audio speech = Speech();
    const float* inputs[2] = {speech[0].data(), speech[1].data()};
    Plugin plugin;
    plugin.Start();
    EXPECT_EQ(plugin.Send(inputs, nullptr, Rate), V3_OK);
    EXPECT_EQ(plugin.Send(nullptr, nullptr, Rate), V3_OK);
    plugin.processor->SetProcessing(1);
    std::vector<float> output(Rate, 1.0F);
    float* outputs[2] = {output.data(), nullptr};
    EXPECT_EQ(plugin.Send(nullptr, outputs, Rate), V3_OK);
    EXPECT_EQ(output, std::vector<float>(Rate));
}

TEST_F(Vst3AudioTest, SilentOutputsAreMarkedAndOthersAreNot)
{
    Plugin plugin;
    plugin.controller->SetValue(Bypass, 1.0); // so that silence comes out exactly
    plugin.Start();
    const uint32_t latency = plugin.processor->GetLatencySamples();
    EXPECT_GE(plugin.processor->GetTailSamples(), latency);
    const uint32_t frames = latency + 100;
    // Three channels and a second bus are more than was arranged.
    std::vector<float> memory[4];
    float* channels[4];
    for (size_t i = 0; i < 4; ++i) {
        memory[i].assign(frames, i < 2 ? 0.0F : 0.5F);
        channels[i] = memory[i].data();
    }
    memory[1][50] = 1.0F;
    v3_audio_bus_buffers inputs[1] = {{2, 1, {channels}}};
    v3_audio_bus_buffers outputs[2] = {{3, ~uint64_t{0}, {channels}}, {1, 0, {channels + 3}}};
    v3_process_data data = {};
    data.nframes = static_cast<int32_t>(latency);
    data.num_input_buses = 1;
    data.num_output_buses = 2;
    data.inputs = inputs;
    data.outputs = outputs;
    EXPECT_EQ(plugin.processor->Process(&data), V3_OK);
    EXPECT_EQ(outputs[0].channel_silence_bitset, 7U);
    EXPECT_EQ(outputs[1].channel_silence_bitset, 1U);
    EXPECT_EQ(memory[2][0], 0.0F);
    EXPECT_EQ(memory[3][latency - 1], 0.0F);
    EXPECT_EQ(memory[3][latency], 0.5F);

    std::fill(memory[1].begin(), memory[1].end(), 0.0F);
    data.nframes = 100;
    EXPECT_EQ(plugin.processor->Process(&data), V3_OK);
    EXPECT_EQ(outputs[0].channel_silence_bitset, 5U);
    EXPECT_EQ(memory[1][50], 1.0F);
}
