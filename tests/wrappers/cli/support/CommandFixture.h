// SPDX-License-Identifier: ISC
#pragma once

#include "tests/wrappers/cli/support/CommandRunner.h"
#include "tests/wrappers/cli/support/TestFiles.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

namespace CliTest {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

inline Words Join(Words words, const Words& more)
{
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

/// Content of a file that a failed comparison doesn't print.
struct Bytes {
    std::string all;

    bool operator==(const Bytes& other) const = default;
    friend void PrintTo(const Bytes& bytes, std::ostream* out)
    {
        *out << bytes.all.size() << " bytes";
    }
};

/// A folder with one recording.
class CommandFixture : public testing::Test {
protected:
    explicit CommandFixture(const Audio& audio = MakeSpeech()) { WriteAudio(input, audio); }

    /// Runs the command, which must come to a good end.
    static Outcome Succeed(const Words& words, const RunSetup& setup = {})
    {
        Outcome outcome = RunPuffguard(words, setup);
        EXPECT_EQ(outcome.exitCode, 0) << testing::PrintToString(words) << outcome.err;
        return outcome;
    }

    /// The same; what the command says on standard output.
    static std::string Say(const Words& words, const RunSetup& setup = {})
    {
        return Succeed(words, setup).out;
    }

    /// The run ends with this code and one line that holds `reason`, says nothing on standard
    /// output and leaves the folder's list of files as it was.
    void ExpectRefusal(const Words& words,
                       int exitCode,
                       const std::string& reason,
                       const RunSetup& setup = {})
    {
        SCOPED_TRACE(testing::PrintToString(words));
        const auto before = folder.List();
        const Outcome outcome = RunPuffguard(words, setup);
        EXPECT_EQ(outcome.exitCode, exitCode);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
        EXPECT_EQ(folder.List(), before);
    }

    /// A recording that is found to be damaged when half of its output is written.
    std::string MakeCutRecording()
    {
        Audio audio = MakeSpeech(48000, 1, 20.0);
        audio.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
        const std::string path = folder / "cut.flac";
        WriteAudio(path, audio);
        WriteBytes(path, ReadBytes(path).substr(0, 300'000));
        return path;
    }

    const TemporaryFolder folder;
    const std::string input = folder / "talk.wav";
};

} // namespace CliTest
