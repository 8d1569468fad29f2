// SPDX-License-Identifier: ISC
#include "bench/Benches.h"
#include "tests/support/ModuleHost.h"

#include <cstdio>

int main()
{
    if (TestHost::Entry() == nullptr) {
        std::fputs("The module could not be loaded.\n", stderr);
        return 1;
    }
    Bench::PrintMemory(); // first, while the heap holds nothing else
    Bench::PrintEffectRatios();
    Bench::PrintLongestCalls();
    Bench::PrintStateTimes();
    Bench::PrintPresetListing();
    Bench::PrintKernelRatios();
    return 0;
}
