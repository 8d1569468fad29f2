// SPDX-License-Identifier: ISC
#pragma once

#include "tests/support/TemporaryFolder.h"
#include "tests/wrappers/cli/support/CommandFixture.h"

#include <string>

namespace CliTest {

/// A recording, and a user who has no settings and no presets yet.
class SessionFixture : public CommandFixture {
protected:
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
            if (parameter["name"] == name) {
                return parameter["value"];
            }
        }
        return {};
    }

    const Support::UserFolders user;
    const std::string preset = folder / "my.xml";
    const std::string state = folder / "session.bin";
};

inline constexpr const char* Sensitivity = "PuffGuard.Sensitivity";
inline constexpr const char* Strength = "PuffGuard.Strength";
inline constexpr const char* UpperFrequency = "PuffGuard.Upper Repair Frequency";
inline constexpr const char* LatencyScaling = "PuffGuard.Latency Scaling";

} // namespace CliTest
