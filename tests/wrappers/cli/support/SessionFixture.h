// SPDX-License-Identifier: ISC
#pragma once

#include "tests/support/TemporaryFolder.h"
#include "tests/wrappers/cli/support/CommandRunner.h"
#include "tests/wrappers/cli/support/TestFiles.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <ostream>
#include <string>
#include <vector>

namespace CliTest {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

/// Content of a file that a failed comparison doesn't print.
struct Bytes {
    std::string all;

    bool operator==(const Bytes& other) const = default;
    friend void PrintTo(const Bytes& bytes, std::ostream* out)
    {
        *out << bytes.all.size() << " bytes";
    }
};

/// A recording, and a user who has no settings and no presets yet.
class SessionFixture : public testing::Test {
protected:
    SessionFixture() { WriteAudio(input, MakeSpeech()); }

    static Words Join(Words words, const Words& more)
    {
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    /// Runs the command, which must come to a good end, and returns what it says on standard
    /// output.
    static std::string Say(const Words& words, const RunSetup& setup = {})
    {
        const Outcome outcome = RunPuffguard(words, setup);
        EXPECT_EQ(outcome.exitCode, 0) << testing::PrintToString(words) << outcome.err;
        return outcome.out;
    }

    /// The bytes of what comes of the recording.
    Bytes Repair(const Words& words)
    {
        Say(Join({input, "-fo", folder / "result.wav"}, words));
        return {ReadBytes(folder / "result.wav")};
    }

    /// The value of the parameter `name` that --print-params tells under `words`.
    static Json Value(const Words& words, const std::string& name)
    {
        const Json all = Json::parse(Say(Join({"--print-params", "--json"}, words)));
        for (const Json& parameter : all["parameters"]) {
            if (parameter["name"] == name)
                return parameter["value"];
        }
        return {};
    }

    const Support::UserFolders user;
    const TemporaryFolder folder;
    const std::string input = folder / "talk.wav";
    const std::string preset = folder / "my.xml";
    const std::string state = folder / "session.bin";
};

inline constexpr const char* sensitivity = "PuffGuard.Sensitivity";
inline constexpr const char* strength = "PuffGuard.Strength";
inline constexpr const char* upperFrequency = "PuffGuard.Upper Repair Frequency";
inline constexpr const char* latencyScaling = "PuffGuard.Latency Scaling";

} // namespace CliTest
