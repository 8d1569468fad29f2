// SPDX-License-Identifier: ISC
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <thread>

namespace Support {

/// Moves blocks on a thread of its own until the end of its life: `play` is one block, which
/// answers whether it was good.
class AudioThread {
public:
    explicit AudioThread(std::function<bool()> play)
        : thread([this, play = std::move(play)] {
            while (!ending) {
                good = play() && good;
                ++blocks;
            }
        })
    {
    }
    AudioThread(const AudioThread&) = delete;
    AudioThread& operator=(const AudioThread&) = delete;
    ~AudioThread()
    {
        ending = true;
        thread.join();
    }
    bool SawOnlyGoodAudio() const { return good; }
    uint32_t CountBlocks() const { return blocks; }
    /// Returns after so many more blocks.
    void WaitForBlocks(uint32_t count) const
    {
        const uint32_t wanted = blocks + count;
        while (blocks < wanted) {
            std::this_thread::yield();
        }
    }

private:
    std::atomic<bool> ending = false;
    std::atomic<bool> good = true;
    std::atomic<uint32_t> blocks = 0;
    std::thread thread; // last: it uses the rest
};

} // namespace Support
