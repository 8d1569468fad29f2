// SPDX-License-Identifier: ISC
// Runs the effect over so many hops of speech and does nothing else, for a tool that counts
// instructions: the difference between two numbers of hops is the work of the hops between them.
#include "bench/Signal.h"
#include "tests/support/ModuleHost.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

int main(int count, char** arguments)
{
    constexpr float SampleRate = 44100;
    constexpr uint32_t HostBlock = 512; // a hop at this rate
    constexpr double MostSeconds = 6;
    if (count != 2 || TestHost::Entry() == nullptr) {
        return EXIT_FAILURE;
    }
    // Of the same length for any number of hops, so that making it costs the same.
    TestHost::Audio speech = Bench::MakeSpeech(1, SampleRate, MostSeconds);
    const auto frames = static_cast<std::size_t>(std::atoi(arguments[1])) * HostBlock;
    if (frames > speech[0].size()) {
        return EXIT_FAILURE;
    }
    speech[0].resize(frames);
    TestHost::Instance instance(SampleRate, 1);
    instance.Run(speech, HostBlock);
    return EXIT_SUCCESS;
}
