// SPDX-License-Identifier: ISC
#pragma once

#include "tests/support/ModuleHost.h"

#include <atomic>
#include <cmath>
#include <random>
#include <thread>
#include <vector>

namespace TestHost {

/// Runs blocks of changing length on a thread of its own until the end of its life.
class AudioThread {
public:
    explicit AudioThread(Instance& newInstance)
        : instance(newInstance)
    {
    }
    AudioThread(const AudioThread&) = delete;
    AudioThread(AudioThread&&) = delete;
    AudioThread& operator=(const AudioThread&) = delete;
    AudioThread& operator=(AudioThread&&) = delete;
    ~AudioThread()
    {
        ending = true;
        thread.join();
    }
    bool SawOnlyGoodAudio() const { return good; }
    /// Returns after so many more blocks.
    void WaitForBlocks(uint32_t count) const
    {
        const uint32_t wanted = blocks + count;
        while (blocks < wanted) {
            std::this_thread::yield();
        }
    }

private:
    void Run()
    {
        // Buffers for the largest layout, since the other thread may change it before any block.
        Audio audio(PLUGIN_CORE_MAX_CHANNELS, std::vector<float>(3000));
        std::mt19937 engine(3);
        while (!ending) {
            for (auto& channel : audio) {
                for (float& sample : channel) {
                    sample = static_cast<float>(engine() % 1000) / 1000.0F - 0.5F;
                }
            }
            const auto frames = static_cast<uint32_t>(1 + engine() % 3000);
            if (instance.RunBlock(audio, 0, frames) != PluginCoreSuccess) {
                good = false;
            }
            for (const auto& channel : audio) {
                for (const float sample : channel) {
                    if (!std::isfinite(sample) || std::abs(sample) > 8.0F) {
                        good = false;
                    }
                }
            }
            ++blocks;
        }
    }

    Instance& instance;
    std::atomic<bool> ending = false;
    std::atomic<bool> good = true;
    std::atomic<uint32_t> blocks = 0;
    std::thread thread = std::thread([this] { Run(); });
};

} // namespace TestHost
