// SPDX-License-Identifier: ISC
#pragma once

#include "tests/support/AudioFile.h"
#include "tests/support/TemporaryFolder.h"

#include <string>
#include <vector>

namespace CliTest {

/// A folder of the test's own that goes away with it. Runs without root's rights work in it too.
class TemporaryFolder : public Support::TemporaryFolder {
public:
    TemporaryFolder();

    std::string GetPath() const { return Path().string(); }

    /// Names of everything in it, hidden files too, sorted.
    std::vector<std::string> List() const;
};

using Audio = Support::AudioFile;
using Support::ReadAudio;
constexpr auto WriteBytes = Support::WriteText;

/// Something like speech with bursts of air: a buzz with pauses, noise, and in each second a strong
/// 40 Hz burst at 0.6 s and a faint one at 0.3 s. The same numbers every time.
Audio MakeSpeech(int sampleRate = 48000, int channels = 1, double seconds = 3.0);

void WriteAudio(const std::string& path, const Audio& audio);

/// The file must be there.
std::string ReadBytes(const std::string& path);

} // namespace CliTest
