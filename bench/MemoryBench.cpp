// SPDX-License-Identifier: ISC
#include "bench/Benches.h"
#include "bench/Heap.h"
#include "tests/support/ModuleHost.h"

#include <cstddef>
#include <cstdio>

namespace Bench {

void PrintMemory(TargetTable& table)
{
    constexpr float SampleRate = 44100;
    // What the module takes once, whatever the number of instances, is taken before.
    TestHost::Instance first(SampleRate, 1);
    TestHost::Audio audio = TestHost::MakeSpeechLike(1, 44100, SampleRate);
    first.Run(audio, 512);
    const std::size_t before = GetHeapBytes();
    TestHost::Instance second(SampleRate, 1);
    second.Run(audio, 512);
    const double mebibytes =
        static_cast<double>(GetHeapBytes() - before) / static_cast<double>(1024 * 1024);
    std::printf("Heap memory of a mono instance at 44100 Hz: %.2f MiB\n", mebibytes);
    table.Add({"Memory of a mono instance at 44100 Hz (MiB)", 4, 2}, mebibytes);
}

} // namespace Bench
