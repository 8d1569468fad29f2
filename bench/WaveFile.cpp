// SPDX-License-Identifier: ISC
#include "bench/WaveFile.h"

#include <algorithm>
#include <cstddef>
#include <fstream>

namespace Bench {

namespace {

void Append(std::string& bytes, uint32_t value, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i) {
        bytes += static_cast<char>(value >> (8 * i) & 0xFFU);
    }
}

} // namespace

void WriteWave(const std::string& path,
               const std::vector<std::vector<float>>& channels,
               uint32_t sampleRate,
               int times)
{
    std::string data;
    for (std::size_t frame = 0; frame < channels.front().size(); ++frame) {
        for (const std::vector<float>& channel : channels) {
            const float sample = std::clamp(channel[frame], -1.0F, 1.0F);
            Append(data, static_cast<uint32_t>(static_cast<int>(sample * 32767.0F)), 2);
        }
    }
    const auto count = static_cast<uint32_t>(channels.size());
    const auto size = static_cast<uint32_t>(data.size()) * static_cast<uint32_t>(times);
    std::string header = "RIFF";
    Append(header, size + 36, 4);
    header += "WAVEfmt ";
    Append(header, 16, 4); // size of this part
    Append(header, 1, 2);  // integers
    Append(header, count, 2);
    Append(header, sampleRate, 4);             // frames a second
    Append(header, 2 * count * sampleRate, 4); // bytes a second
    Append(header, 2 * count, 2);              // bytes a frame
    Append(header, 16, 2);                     // bits
    header += "data";
    Append(header, size, 4);
    std::ofstream file(path, std::ios::binary);
    file << header;
    for (int i = 0; i < times; ++i) {
        file << data;
    }
}

} // namespace Bench
