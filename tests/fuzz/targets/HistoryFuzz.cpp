// SPDX-License-Identifier: ISC
#include "tests/fuzz/targets/HistoryTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Fuzz::ReadHistory(FrameworkHistoryForm, data, size);
    return 0;
}
