// SPDX-License-Identifier: ISC
#pragma once

namespace Contract {

/// Told when the audio thread goes into a plug-in and when it is back: what happens between is the
/// plug-in's own doing, not that of the host around it.
struct AudioCallWatcher {
    void (*onBegin)();
    void (*onEnd)();
};

/// Null: nobody watches. Change it while no audio runs.
inline const AudioCallWatcher* audioCallWatcher = nullptr;

/// Stands around each call that a host makes on its audio thread.
class AudioCall {
public:
    AudioCall()
    {
        if (audioCallWatcher != nullptr) {
            audioCallWatcher->onBegin();
        }
    }
    ~AudioCall()
    {
        if (audioCallWatcher != nullptr) {
            audioCallWatcher->onEnd();
        }
    }
    AudioCall(const AudioCall&) = delete;
    AudioCall& operator=(const AudioCall&) = delete;
};

} // namespace Contract
