// SPDX-License-Identifier: ISC
#pragma once

#include <sndfile.h>

#include <memory>
#include <string>
#include <vector>

namespace Cli {

/// What an audio file holds beside its samples: texts, the broadcast and cart chunks, cue points,
/// the instrument and the meaning of the channels.
class Metadata {
public:
    /// Takes everything that `file` has.
    static Metadata ReadFrom(SNDFILE* file, int channels);

    /// Gives everything that its container can hold to `file`, before the first sample.
    void WriteTo(SNDFILE* file) const;

private:
    struct Text {
        int kind;
        std::string text;
    };
    struct Chunk {
        int setCommand;
        std::vector<char> bytes;
    };

    void TakeChunk(SNDFILE* file, int getCommand, int setCommand, size_t size);

    std::vector<Text> texts;
    std::vector<Chunk> chunks;
};

} // namespace Cli
