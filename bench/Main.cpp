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
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // a run takes minutes: each line as it comes
    Bench::TargetTable table;
    Bench::PrintMemory(table); // first, while the heap holds nothing else
    Bench::PrintEffectRatios(table);
    Bench::PrintLongestCalls(table);
    Bench::PrintInstructions(table);
    Bench::PrintCommandRatios(table);
    Bench::PrintAutoFigures(table);
    Bench::PrintRegionFigures(table);
    Bench::PrintStateTimes();
    Bench::PrintPresetListing();
    Bench::PrintKernelRatios();
    table.Print();
    return 0;
}
