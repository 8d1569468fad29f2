// SPDX-License-Identifier: ISC
#pragma once

#include <vector>

namespace Bench {

/// A voice that pops as often as speech at a microphone that does so: 45 pops a minute at 48 kHz,
/// of one channel, 18.7 s. Real recordings chosen for their pops have 38. It is the sample
/// recording, in which every plosive pops, followed twice by the same voice without its pops. Empty
/// when the files can't be read.
std::vector<float> ReadSampleVoice();

} // namespace Bench
