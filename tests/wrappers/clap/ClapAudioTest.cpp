// SPDX-License-Identifier: ISC
// The ports of the plug-in, and audio where this format has rules of its own. What should come out
// is what the module gives when it is driven directly.
#include "tests/wrappers/clap/support/ClapTest.h"

#include <cmath>

using ClapHost::Plugin;
using TestHost::Audio;

using ClapAudioTest = ClapTest;

namespace {

struct Port {
    uint32_t channels;
    std::string type;
    std::vector<uint8_t> speakers;
};

Port Describe(const Plugin& plugin, bool isInput)
{
    const auto* ports = plugin.Find<clap_plugin_audio_ports_t>(CLAP_EXT_AUDIO_PORTS);
    EXPECT_EQ(ports->count(plugin.Get(), isInput), 1U);
    clap_audio_port_info_t info{};
    EXPECT_FALSE(ports->get(plugin.Get(), 1, isInput, &info));
    EXPECT_TRUE(ports->get(plugin.Get(), 0, isInput, &info));
    EXPECT_EQ(info.flags, uint32_t{CLAP_AUDIO_PORT_IS_MAIN});
    clap_audio_port_info_t other{};
    EXPECT_TRUE(ports->get(plugin.Get(), 0, !isInput, &other));
    EXPECT_EQ(info.in_place_pair, other.id);

    const auto* surround = plugin.Find<Clap::Abi::PluginSurround>(Clap::Abi::ExtSurround);
    std::vector<uint8_t> map(info.channel_count, 99);
    EXPECT_EQ(surround->getChannelMap(plugin.Get(), isInput, 0, map.data(), info.channel_count - 1),
              0U);
    EXPECT_EQ(surround->getChannelMap(plugin.Get(), isInput, 0, map.data(), info.channel_count),
              info.channel_count);
    uint64_t mask = 0;
    for (const uint8_t speaker : map) {
        mask |= uint64_t{1} << speaker;
    }
    EXPECT_TRUE(surround->isChannelMaskSupported(plugin.Get(), mask));
    EXPECT_FALSE(surround->isChannelMaskSupported(plugin.Get(), mask | 1U << 17U));
    return {info.channel_count, info.port_type, map};
}

clap_process_status ProcessInPlace(Plugin& plugin, clap_audio_buffer_t& port, uint32_t frames)
{
    clap_process_t process{};
    process.frames_count = frames;
    process.audio_inputs = &port;
    process.audio_outputs = &port;
    process.audio_inputs_count = 1;
    process.audio_outputs_count = 1;
    return plugin.Get()->process(plugin.Get(), &process);
}

} // namespace

TEST_F(ClapAudioTest, EachConfigurationGivesItsPorts)
{
    Plugin plugin(host);
    ASSERT_TRUE(plugin);
    const auto* configs = plugin.Find<Clap::Abi::PluginAudioPortsConfig>("clap.audio-ports-config");
    ASSERT_EQ(configs->count(plugin.Get()), 4U);
    EXPECT_EQ(Describe(plugin, true).channels, 2U) << "until one is selected";
    // Numbers of speakers as the format has them, in the order of wave files.
    const Port expected[] = {{1, "mono", {2}},
                             {2, "stereo", {0, 1}},
                             {6, "surround", {0, 1, 2, 3, 4, 5}},
                             {8, "surround", {0, 1, 2, 3, 4, 5, 9, 10}}};
    for (const uint32_t index : {3U, 0U, 2U, 1U}) {
        Clap::Abi::AudioPortsConfig config{};
        ASSERT_TRUE(configs->get(plugin.Get(), index, &config));
        SCOPED_TRACE(config.name);
        EXPECT_EQ(config.mainInputChannelCount, expected[index].channels);
        EXPECT_EQ(config.mainOutputPortType, expected[index].type);
        ASSERT_TRUE(plugin.SelectConfig(config.id));
        for (const bool isInput : {true, false}) {
            const Port port = Describe(plugin, isInput);
            EXPECT_EQ(port.channels, expected[index].channels);
            EXPECT_EQ(port.type, expected[index].type);
            EXPECT_EQ(port.speakers, expected[index].speakers);
        }
        ASSERT_TRUE(plugin.Activate(Rate));
        EXPECT_FALSE(plugin.SelectConfig(config.id)) << "not while active";
        plugin.Deactivate();
    }
    Clap::Abi::AudioPortsConfig config{};
    EXPECT_FALSE(configs->get(plugin.Get(), 4, &config));
    EXPECT_FALSE(plugin.SelectConfig(3));
    EXPECT_TRUE(plugin.SelectConfig(2)) << "as it is already";
    EXPECT_EQ(host->portRescans, 0U) << "the host looks by itself after its own call";
}

TEST_F(ClapAudioTest, MissingPortsAndChannelsDoNoHarm)
{
    Plugin plugin(host);
    const Audio speech = Speech();
    Audio audio = speech;
    float* channels[2] = {audio[0].data(), audio[1].data()};
    EXPECT_EQ(plugin.Send(channels, channels, 64), CLAP_PROCESS_ERROR) << "not active";
    EXPECT_EQ(audio, speech);

    ASSERT_TRUE(plugin.Activate(Rate));
    EXPECT_EQ(plugin.Send(nullptr, nullptr, 64), CLAP_PROCESS_TAIL);
    // Double precision isn't offered, nor are lists of events required.
    double samples[64] = {};
    double* doubles[2] = {samples, samples};
    clap_audio_buffer_t port{};
    port.data64 = doubles;
    port.channel_count = 2;
    EXPECT_EQ(ProcessInPlace(plugin, port, 64), CLAP_PROCESS_TAIL);

    plugin.Reset(); // all of the silence above is forgotten
    port = {channels, nullptr, 1, 0, 3};
    EXPECT_EQ(ProcessInPlace(plugin, port, Rate), CLAP_PROCESS_TAIL);
    EXPECT_EQ(audio[0], Contract::Expected({speech[0], std::vector<float>(Rate)}, Rate)[0]);
    EXPECT_EQ(audio[1], speech[1]) << "one channel of two";
    EXPECT_EQ(port.constant_mask, 0U) << "an output that is never called constant";
}

TEST_F(ClapAudioTest, AfterItsTailThePluginIsSilent)
{
    Plugin plugin(host);
    ASSERT_TRUE(plugin.Activate(Rate));
    const uint32_t length = plugin.Find<Clap::Abi::PluginTail>("clap.tail")->get(plugin.Get());
    Audio audio = Speech();
    for (auto& channel : audio) {
        channel.resize(Rate + length + Rate);
    }
    const Audio output = Contract::Play(plugin, audio, 512);
    const auto loudest = [&](uint32_t begin, uint32_t end) {
        float peak = 0;
        for (uint32_t i = begin; i < end; ++i) {
            peak = std::max(peak, std::abs(output[0][i]));
        }
        return peak;
    };
    EXPECT_GT(loudest(Rate, Rate + length), 0.0F) << "sound was still on its way";
    EXPECT_LT(loudest(Rate + length, Rate + length + Rate), 1e-6F); // -120 dB
}

TEST_F(ClapAudioTest, RenderingIsOfferedForBothModes)
{
    Plugin plugin(host);
    const auto* render = plugin.Find<Clap::Abi::PluginRender>("clap.render");
    EXPECT_FALSE(render->hasHardRealtimeRequirement(plugin.Get()));
    EXPECT_FALSE(render->set(plugin.Get(), 2));
    EXPECT_TRUE(render->set(plugin.Get(), 1));
    EXPECT_TRUE(render->set(plugin.Get(), 0));
}

TEST_F(ClapAudioTest, AHostThatOffersNothingIsServed)
{
    host->offersExtensions = false;
    Plugin plugin(host);
    ASSERT_TRUE(plugin);
    ASSERT_TRUE(plugin.SelectConfig(1));
    ASSERT_TRUE(plugin.Activate(96000));
    ASSERT_TRUE(plugin.Load(plugin.Save()));
    plugin.Deactivate();
    EXPECT_EQ(plugin.Get()->get_extension(plugin.Get(), "clap.gui"), nullptr);
    EXPECT_EQ(plugin.Get()->get_extension(plugin.Get(), ""), nullptr);
}
