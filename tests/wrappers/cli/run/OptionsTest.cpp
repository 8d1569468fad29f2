// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/Options.h"
#include "wrappers/cli/files/FileError.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <sndfile.h>

#include <sstream>

namespace {

using Cli::Options;

Options Parse(std::vector<std::string> words)
{
    words.insert(words.begin(), "puffguard");
    std::vector<const char*> pointers;
    for (const std::string& word : words) {
        pointers.push_back(word.c_str());
    }
    return std::get<Options>(Cli::ParseOptions(static_cast<int>(words.size()), pointers.data()));
}

std::string Complaint(const std::vector<std::string>& words)
{
    try {
        Parse(words);
    } catch (const Cli::UsageError& error) {
        return error.what();
    }
    return "";
}

std::vector<std::string> Split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

TEST(OptionsTest, TakesEachControlUpToTheEndsOfItsRange)
{
    for (size_t i = 0; i < Cli::ControlTable.size(); ++i) {
        const Cli::Control& control = Cli::ControlTable[i];
        for (const double end : {control.least, control.most}) {
            const auto chosen = Parse({"a.wav", control.option, fmt::format("{}", end)}).controls;
            for (size_t other = 0; other < Cli::ControlTable.size(); ++other) {
                EXPECT_EQ(chosen.values[other], other == i ? std::optional(end) : std::nullopt);
            }
        }
    }
    EXPECT_EQ(Parse({"a.wav", "--block", "65536"}).block, 65536);
}

TEST(OptionsTest, NamesTheRangeThatAValueLeaves)
{
    for (const auto& [option, value, range] : {std::tuple("--sensitivity", "10.01", "0 to 10"),
                                               {"--strength", "-1", "0 to 10"},
                                               {"--upper-frequency", "49", "50 to 500"},
                                               {"--latency-scaling", "nan", "0 to 1"},
                                               {"--strength", "5x", "0 to 10"},
                                               {"--block", "0", "1 to 65536"},
                                               {"--jobs", "0", "1 to 256"}}) {
        EXPECT_EQ(Complaint({"a.wav", option, value}),
                  fmt::format("{} {} is outside {}", option, value, range));
    }
}

TEST(OptionsTest, SuggestsWhatAMisspeltWordMayMean)
{
    EXPECT_EQ(Complaint({"a.wav", "--sensitvity", "3"}),
              "unknown option --sensitvity; did you mean --sensitivity?");
    EXPECT_EQ(Complaint({"a.wav", "--xyzzy"}), "unknown option --xyzzy");
    EXPECT_NE(Complaint({"a.wav", "--format", "falc"}).find("did you mean flac?"),
              std::string::npos);
}

TEST(OptionsTest, RefusesAnEmptyValueAndTakesNamesBehindTwoDashes)
{
    EXPECT_EQ(Complaint({"a.wav", "--sensitivity", ""}), "--sensitivity: the value is empty");
    EXPECT_EQ(Complaint({"a.wav", "-o", ""}), "--output: the value is empty");
    EXPECT_EQ(Complaint({"--preset=", "a.wav"}), "--preset: the value is empty");
    EXPECT_EQ(Complaint({"a.wav", "--state-in=", "--json"}), "--state-in: the value is empty");
    EXPECT_EQ(Complaint({"a.wav", "--prest="}), "unknown option --prest; did you mean --preset?");
    const Options options = Parse({"-f", "--", "-a.wav", "--b.wav", "--preset="});
    ASSERT_EQ(options.inputs.size(), 3U);
    EXPECT_EQ(options.inputs[0].Get(), "-a.wav");
    EXPECT_EQ(options.inputs[1].Get(), "--b.wav");
    EXPECT_EQ(options.inputs[2].Get(), "--preset=");
}

TEST(OptionsTest, RefusesWhatContradictsItself)
{
    const char* const bad =
        "|a.wav -o b.wav --in-place|a.wav -o b.wav --output-dir d|a.wav b.wav -o c.wav|- -|"
        "- --in-place|- a.wav|- --output-dir d|- -o - --json|a.wav --events - --json|"
        "a.wav --in-place --format flac|a.wav --in-place --difference|a.wav --quiet --verbose|"
        "a.wav b.wav --plot p.png|a.wav b.wav --labels l.txt|a.wav b.wav --plot -|"
        "a.wav b.wav --labels -|a.wav b.wav --report r.html|a.wav --report - --json|"
        "a.wav --comment text|a.wav --save-preset -|"
        "a.wav --save-preset b.wav|a.wav --save-preset d/b.FLAC|a.wav --state-out - --json|"
        "- --state-in -|a.wav --list-presets|--list-presets --preset p|"
        "--import-preset p.xml --list-presets|--import-preset p.xml --json|"
        "a.wav --remove-preset p|--preset-folder d --save-preset p|--history h.hst -o b.wav|"
        "--preset p|--state-in s|"
        "--print-params -o a.wav|--print-params --dry-run|--save-preset p.xml --plot p.png|"
        "a.wav --sensitivity";
    for (const std::string& words : Split(bad, '|')) {
        EXPECT_NE(Complaint(Split(words, ' ')), "") << words;
    }
    EXPECT_NE(Complaint({""}), "");
    const char* const good =
        "a.wav b.wav --plot {name}.png|a.wav b.wav --plot folder/|--list-presets --json|"
        "--history h.hst --json|--remove-preset p --force|--state-in - --state-out -|--preset p "
        "--save-preset q --comment text";
    for (const std::string& words : Split(good, '|')) {
        EXPECT_EQ(Complaint(Split(words, ' ')), "") << words;
    }
}

TEST(OptionsTest, ReadsRawFormats)
{
    const Cli::RawFormat raw = Cli::ParseRawFormat("s24be,44100,2");
    EXPECT_EQ(raw.format, SF_FORMAT_RAW | SF_FORMAT_PCM_24 | SF_ENDIAN_BIG);
    EXPECT_EQ(raw.sampleRate, 44100);
    EXPECT_EQ(raw.channels, 2);
    EXPECT_EQ(Cli::ParseRawFormat("f32,8000,24").format,
              SF_FORMAT_RAW | SF_FORMAT_FLOAT | SF_ENDIAN_LITTLE);
    const char* const refused = "|s16|s16,48000|s17,48000,1|s16,7999,1|s16,192001,1|s16,48000,0|"
                                "s16,48000,25|s16,48000,1,1|s16,48k,1";
    for (const std::string& bad : Split(refused, '|')) {
        EXPECT_THROW(Cli::ParseRawFormat(bad), Cli::UsageError) << bad;
    }
}

} // namespace
