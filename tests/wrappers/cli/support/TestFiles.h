// SPDX-License-Identifier: ISC
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <sndfile.h>

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

/// Samples of a file with what they mean; interleaved, full scale 1.0.
struct Audio {
    int sampleRate = 48000;
    int channels = 1;
    int format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    std::vector<double> samples;

    size_t GetFrames() const { return samples.size() / static_cast<size_t>(channels); }
};

/// Something like speech with bursts of air: a buzz with pauses, noise, and in each second a strong
/// 40 Hz burst at 0.6 s and a faint one at 0.3 s. The same numbers every time.
Audio MakeSpeech(int sampleRate = 48000, int channels = 1, double seconds = 3.0);

void WriteAudio(const std::string& path, const Audio& audio);

Audio ReadAudio(const std::string& path);

std::string ReadBytes(const std::string& path);

void WriteBytes(const std::string& path, const std::string& bytes);

} // namespace CliTest
