// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "frameworks/plugincore/dsp/signal/BypassFader.h"
#include "frameworks/plugincore/dsp/signal/DelayLine.h"

#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

using DSP::Context;

// Delays by its latency, doubles the signal, and writes down what is done to it.
class Doubler final : public DSP::ElementDispatcher {
public:
    explicit Doubler(DSP::ElementHost& owner, uint32_t layout = 0)
        : ElementDispatcher({owner, "Doubler", 1000.0F, layout})
        , line(MaxLatency)
    {
        line.SetLength(latency);
        FinaliseParams();
    }

    bool IsConfigurable() const override { return true; }
    bool IsActive(uint32_t) const override { return active; }
    void Own(DSP::Element& child, const String& role = "") { AddChild(child, role); }
    void Disown(DSP::Element& child) { RemoveChild(child); }
    void SetFrameSize(uint32_t frames) { GetTail().SetFrameSize(frames); }

    static constexpr uint32_t MaxLatency = 300;
    uint32_t latency = 0;
    bool active = true;
    std::string events;
    std::vector<uint32_t> pieces;
    std::vector<uint32_t> offsets;

protected:
    uint32_t GetExtraLatencySamples() const override { return 7; }
    uint32_t GetLatencySamples(Context) const override { return GetTail().GetLatency() + latency; }
    uint32_t GetMaxLatencySamples() const override { return MaxLatency; }
    void OnReset() override { events += "reset "; }
    void OnSuspend() override { events += "suspend "; }
    void OnResume() override { events += "resume "; }
    void OnFormatChanged() override { events += "format "; }
    void ProcessAudio(uint32_t frames, float* const* channels) override
    {
        pieces.push_back(frames);
        offsets.push_back(GetBlockOffset());
        line.Process(channels[0], channels[0], frames);
        for (uint32_t i = 0; i < frames; ++i) {
            channels[0][i] *= 2;
        }
    }

private:
    DSP::DelayLine line;
};

struct ElementTest : testing::Test {
    Support::TestElementHost host;
    Doubler child{host};
    Doubler element{host};

    std::vector<float> RunThrough(std::vector<float> samples)
    {
        float* channels[] = {samples.data()};
        element.ProcessRegion(0, static_cast<uint32_t>(samples.size()), channels);
        return samples;
    }
};

} // namespace

TEST_F(ElementTest, FindsItsChildrenByTheirNamesAndByWhatTheyDo)
{
    element.Own(child, "Role");
    const DSP::Element::ChildMap before = element.CopyChildMap();
    EXPECT_EQ(before.at("Doubler"), &child);
    EXPECT_EQ(element.GetNamedChildren().at("Role"), &child);
    EXPECT_EQ(element.GetNamedChildren().size(), 1U);
    element.Disown(child);
    EXPECT_TRUE(element.CopyChildMap().empty());
    EXPECT_TRUE(element.GetNamedChildren().empty());
    EXPECT_EQ(before.size(), 1U); // a copy
    element.Own(child);
    EXPECT_TRUE(element.GetNamedChildren().empty());
    element.Disown(child);
}

TEST_F(ElementTest, CutsALongPassThroughBlockToTheHostsLargest)
{
    host.maxBlockFrames = 100;
    RunThrough(std::vector<float>(250, 1.0F));
    EXPECT_EQ(element.pieces, (std::vector<uint32_t>{100, 100, 50}));
    EXPECT_EQ(host.blockOffset, 250U);
    EXPECT_EQ(element.offsets, (std::vector<uint32_t>{0, 100, 200}));
    EXPECT_EQ(element.GetExtraLatency(), 7U);
    element.pieces.clear();
    element.SetFrameSize(64);
    RunThrough(std::vector<float>(200, 1.0F)); // frames are never cut
    EXPECT_EQ(element.pieces, (std::vector<uint32_t>{64, 64, 64}));
}

TEST_F(ElementTest, IgnoresAnUnknownRegionAndNullChannels)
{
    std::vector<float> samples(10, 1.0F);
    float* channels[] = {samples.data()};
    element.ProcessRegion(1, 10, channels);
    element.ProcessRegion(0, 10, nullptr);
    EXPECT_TRUE(element.pieces.empty());
}

TEST_F(ElementTest, ResetsOnlyWhatHasHeardSomethingUnlessTold)
{
    element.Reset();
    EXPECT_EQ(element.events, "suspend resume reset "); // the first two by construction
    element.events.clear();
    element.Reset();
    EXPECT_EQ(element.events, "");
    element.ClearState();
    EXPECT_EQ(element.events, "reset ");
    RunThrough({1, 2, 3});
    element.ResetTails();
    element.Reset();
    EXPECT_EQ(element.events, "reset reset ");
}

TEST_F(ElementTest, NestsSuspendAndReachesItsChildren)
{
    element.Own(child);
    EXPECT_EQ(element.GetChild(0), &child);
    EXPECT_EQ(element.GetChild(1), nullptr);
    EXPECT_EQ(child.GetParent(), &element);
    child.events = element.events = "";
    element.Suspend();
    element.Suspend();
    element.Resume();
    EXPECT_EQ(element.events, "suspend ");
    element.Resume();
    EXPECT_EQ(element.events, "suspend resume ");
    EXPECT_EQ(child.events, "suspend resume ");
    element.Resume(); // one too many counts as the last
    EXPECT_EQ(child.events, "suspend resume resume ");
}

TEST_F(ElementTest, TakesANewFormatOnceAndKeepsItsFrameSize)
{
    element.SetFrameSize(32);
    element.events.clear();
    element.SetFormat(1000.0F, 0);
    EXPECT_EQ(element.events, "");
    element.SetFormat(2000.0F, 1);
    EXPECT_EQ(element.events, "format ");
    EXPECT_EQ(element.GetChannelCount(), 2U);
    EXPECT_EQ(element.GetSampleRate(), 2000.0F);
    EXPECT_EQ(element.GetLatency(Context::Process), 31U);
}

// At 1000 Hz a fade takes 10 frames. The wet signal is the doubled input 4 frames late, the dry one
// the same undoubled: on the way from 2 x to x the gain falls by a tenth of x a frame.
TEST_F(ElementTest, FadesToItsInputInTimeWithTheOutput)
{
    host.positionless = false;
    element.SetFrameSize(5); // latency 4
    element.SetDryHistoryEnabled(true);
    element.Reset();
    const std::vector<float> ones(50, 1.0F);
    std::vector<float> output = RunThrough(ones);
    EXPECT_EQ(output[3], 0.0F);
    EXPECT_EQ(output[4], 2.0F);
    element.active = false;
    output = RunThrough(ones);
    for (std::size_t i = 0; i < 10; ++i) {
        EXPECT_FLOAT_EQ(output[i], 2.0F - static_cast<float>(i + 1) / 10) << i;
    }
    EXPECT_EQ(output[10], 1.0F);
    EXPECT_EQ(output[49], 1.0F);
    element.active = true;
    output = RunThrough(ones);
    EXPECT_FLOAT_EQ(output[0], 1.1F);
    EXPECT_EQ(output[20], 2.0F);
    element.active = false;
    RunThrough({1.0F});
    element.Reset(); // ends the fade that has begun
    output = RunThrough(ones);
    EXPECT_EQ(output[3], 0.0F);
    EXPECT_EQ(output[4], 1.0F);
}

TEST_F(ElementTest, KeepsDryHistoryFromThePoolAndNotOnAChild)
{
    element.Own(child);
    child.SetDryHistoryEnabled(true);
    EXPECT_EQ(child.GetProcessingMemorySize(), 0U);
    element.SetDryHistoryEnabled(true);
    EXPECT_EQ(element.GetProcessingMemorySize(), (8192U + 2) * sizeof(float));
    RunThrough(std::vector<float>(8192));
    EXPECT_EQ(host.GetProcessingMemoryMark(), 0U);
}

// Cuts and wraps fall everywhere; a plain shift of the whole signal is the truth.
TEST(DelayLine, DelaysExactlyHoweverLongTheBlocksAre)
{
    constexpr uint32_t Frames = 3000;
    DSP::DelayLine line(700);
    for (const uint32_t length : {0U, 1U, 700U, 255U, 600U}) {
        for (const uint32_t block : {1U, 64U, 257U, 1024U, Frames}) {
            line.Clear();
            line.SetLength(length);
            std::vector<float> samples(Frames);
            std::iota(samples.begin(), samples.end(), 1.0F);
            for (uint32_t begin = 0; begin < Frames; begin += block) {
                float* const part = samples.data() + begin;
                line.Process(part, part, std::min(block, Frames - begin));
            }
            std::vector<float> tail(length);
            line.Process(nullptr, tail.data(), length);
            samples.insert(samples.end(), tail.begin(), tail.end());
            for (uint32_t i = 0; i < samples.size(); ++i) {
                ASSERT_EQ(samples[i], i < length ? 0.0F : static_cast<float>(i + 1 - length))
                    << length << ", " << block << ", " << i;
            }
        }
    }
}

// A ramp delayed by d is n - d. From delay 0 to 64 the output falls behind by 64 in 128 equal
// steps; before it has run, a line changes at once.
TEST(DelayLine, FadesToANewLengthWhileItIsInUse)
{
    DSP::DelayLine line(64);
    line.FadeToLength(3);
    EXPECT_EQ(line.GetLength(), 3U);
    line.FadeToLength(0);
    std::vector<float> samples(400);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<float>(i);
    }
    line.Process(samples.data(), samples.data(), 100);
    line.FadeToLength(64);
    line.Process(samples.data() + 100, samples.data() + 100, 300);
    EXPECT_EQ(samples[99], 99.0F);
    EXPECT_FLOAT_EQ(samples[100], 100.0F - 0.5F);
    EXPECT_FLOAT_EQ(samples[163], 163.0F - 32.0F);
    EXPECT_FLOAT_EQ(samples[227], 227.0F - 64.0F);
    EXPECT_EQ(samples[399], 399.0F - 64.0F);
}

TEST(BypassFader, LeavesASettledSignalBitForBitAndGoesBackFromTheMiddle)
{
    DSP::BypassFader fader(1, 4);
    const float dry[] = {1, 1, 1, 1, 1, 1, 1, 1};
    const float* dryChannels[] = {dry};
    float wet[] = {0.1F, 0.1F, 0, 0, 0, 0, 0, 0};
    float* wetChannels[] = {wet};
    fader.Process(2, dryChannels, wetChannels);
    EXPECT_EQ(wet[0], 0.1F);
    fader.SetTarget(true);
    float rising[] = {0, 0, 0};
    wetChannels[0] = rising;
    fader.Process(3, dryChannels, wetChannels);
    EXPECT_FLOAT_EQ(rising[2], 0.75F);
    fader.SetTarget(false);
    float falling[] = {0, 0, 0, 0};
    wetChannels[0] = falling;
    fader.Process(4, dryChannels, wetChannels);
    EXPECT_FLOAT_EQ(falling[0], 0.5F);
    EXPECT_FLOAT_EQ(falling[1], 0.25F);
    EXPECT_EQ(falling[2], 0.0F);
    fader.SetTarget(true);
    fader.Snap();
    fader.SetLength(9); // all dry stays all dry
    wetChannels[0] = falling;
    fader.Process(1, dryChannels, wetChannels);
    EXPECT_EQ(falling[0], 1.0F);
}
