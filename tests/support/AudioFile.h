// SPDX-License-Identifier: ISC
#pragma once

#include <sndfile.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace Support {

/// Samples of a file with what they mean; interleaved, full scale 1.0.
struct AudioFile {
    int sampleRate = 48000;
    int channels = 1;
    int format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    std::vector<double> samples;

    std::size_t GetFrames() const { return samples.size() / static_cast<std::size_t>(channels); }
};

/// Throws when it can't be read.
inline AudioFile ReadAudio(const std::string& path)
{
    SF_INFO info{};
    SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr) {
        throw std::runtime_error(path + ": " + sf_strerror(nullptr));
    }
    AudioFile audio{info.samplerate, info.channels, info.format, {}};
    audio.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
    const sf_count_t frames = sf_readf_double(file, audio.samples.data(), info.frames);
    sf_close(file);
    if (frames != info.frames) {
        throw std::runtime_error(path + " ends early");
    }
    return audio;
}

} // namespace Support
