// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Bench {

/// Writes a WAV file of 16 bits: `channels`, all of one length and full scale 1.0, so many times.
void WriteWave(const std::string& path,
               const std::vector<std::vector<float>>& channels,
               uint32_t sampleRate,
               int times);

} // namespace Bench
