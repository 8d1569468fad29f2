// SPDX-License-Identifier: ISC
#include "restoration/ui/dialog/historyfile/HistoryLogic.h"
#include "tests/fuzz/targets/HistoryTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Fuzz::ReadHistory(UI::Dialog::DialogHistoryForm, data, size);
    return 0;
}
