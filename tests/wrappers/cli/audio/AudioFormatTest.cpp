// SPDX-License-Identifier: ISC
#include "wrappers/cli/audio/AudioFormat.h"

#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/run/OutputFormat.h"

#include <gtest/gtest.h>

#include <sndfile.h>

namespace {

using Cli::ChangeFormat;

TEST(AudioFormatTest, ReplacesOnlyASubtypeThatTheContainerLacks)
{
    const int own = SF_FORMAT_AIFF | SF_FORMAT_PCM_24 | SF_ENDIAN_LITTLE;
    for (const auto& [format, container, expected] :
         {std::tuple(own, std::optional<int>(), own),
          {SF_FORMAT_WAV | SF_FORMAT_FLOAT, SF_FORMAT_FLAC, SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
          {SF_FORMAT_CAF | SF_FORMAT_ALAC_16, SF_FORMAT_WAV, SF_FORMAT_WAV | SF_FORMAT_PCM_16},
          {SF_FORMAT_AIFF | SF_FORMAT_PCM_S8, SF_FORMAT_WAV, SF_FORMAT_WAV | SF_FORMAT_PCM_U8},
          {SF_FORMAT_OGG | SF_FORMAT_VORBIS, SF_FORMAT_WAV, SF_FORMAT_WAV | SF_FORMAT_PCM_24},
          {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_OGG, SF_FORMAT_OGG | SF_FORMAT_VORBIS}}) {
        EXPECT_EQ(ChangeFormat(format, container, std::nullopt, 48000, 1), expected);
    }
    const int plain = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    EXPECT_THROW(ChangeFormat(plain, SF_FORMAT_FLAC, SF_FORMAT_FLOAT, 48000, 1), Cli::FileError);
    EXPECT_THROW(ChangeFormat(plain, SF_FORMAT_FLAC, {}, 48000, 24), Cli::FileError);
}

TEST(AudioFormatTest, NamesLeadToTheirFormatsAndBack)
{
    EXPECT_EQ(Cli::FindSubtype("PCM16"), SF_FORMAT_PCM_16);
    EXPECT_EQ(Cli::FindSubtype("pcm_24"), SF_FORMAT_PCM_24);
    EXPECT_EQ(Cli::FindSubtype("pcm_25"), std::nullopt);
    EXPECT_EQ(Cli::ContainerOfExtension("WAV"), SF_FORMAT_WAV);
    EXPECT_EQ(Cli::ContainerOfExtension("aif"), SF_FORMAT_AIFF);
    EXPECT_EQ(Cli::ContainerOfExtension(""), std::nullopt);
    EXPECT_EQ(Cli::ContainerOfExtension("wa"), std::nullopt);
    for (const std::string& name : Cli::ContainerNames()) {
        EXPECT_TRUE(Cli::FindContainer(name)) << name;
    }
    EXPECT_EQ(Cli::ExtensionOf(SF_FORMAT_OGG | SF_FORMAT_OPUS), "opus");
    EXPECT_EQ(Cli::ExtensionOf(SF_FORMAT_OGG | SF_FORMAT_VORBIS), "ogg");
}

TEST(OutputFormatTest, FollowsTheNameThatTheUserChose)
{
    Cli::Options options;
    const int wavex = SF_FORMAT_WAVEX | SF_FORMAT_PCM_16;
    const auto choose = [&](const std::string& output, int format) {
        options.output = Cli::FileName(output);
        return Cli::ChooseOutputFormat({Cli::FileName("in.wav"), options.output, format, 48000, 1},
                                       options);
    };
    EXPECT_EQ(choose("out.flac", wavex), SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    EXPECT_EQ(choose("out.wav", wavex), wavex);
    EXPECT_EQ(choose("out", wavex), wavex);
    EXPECT_EQ(choose("out.opus", wavex), SF_FORMAT_OGG | SF_FORMAT_OPUS);
    EXPECT_EQ(choose("-", wavex), wavex);
    EXPECT_EQ(choose("-", SF_FORMAT_FLAC | SF_FORMAT_PCM_24), SF_FORMAT_WAV | SF_FORMAT_PCM_24);
    options.raw = Cli::RawFormat{SF_FORMAT_RAW | SF_FORMAT_FLOAT, 48000, 1};
    EXPECT_EQ(choose("-", wavex), SF_FORMAT_RAW | SF_FORMAT_FLOAT);
    options.raw->channels = 2;
    EXPECT_THROW(choose("-", wavex), Cli::FileError);
}

} // namespace
