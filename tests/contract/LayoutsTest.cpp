// SPDX-License-Identifier: ISC
// Every layout that the protocol numbers, and those that it doesn't.
#include "tests/contract/support/Takes.h"

#include <gtest/gtest.h>

namespace {

using namespace TestHost;
using namespace Contract;

// Channels by number; 13 to 34 count from 3 up, and 35 has none.
constexpr uint32_t Named[] = {1, 2, 2, 3, 3, 4, 4, 5, 6, 7, 7, 8, 8};
constexpr uint32_t Late[] = {3, 6, 6, 6, 8}; // from 36 on

uint32_t CountChannels(uint32_t layout)
{
    if (layout < std::size(Named)) {
        return Named[layout];
    }
    return layout < 35 ? layout - 10 : layout == 35 ? 0 : Late[layout - 36];
}

} // namespace

TEST(Layouts, AllTakeAudioInAnyBlocks)
{
    for (uint32_t layout = 0; layout <= 40; layout += IsSanitized ? 13 : 1) {
        SCOPED_TRACE(layout);
        const uint32_t channels = CountChannels(layout);
        if (channels == 0) {
            continue;
        }
        const Audio speech = MakeSpeech(32000, channels, 0.8);
        Instance instance(44100.0F, 1);
        instance.SetFormat(32000.0F, layout);
        Audio whole = speech;
        instance.Run(whole, 2027);
        EXPECT_EQ(BadSample(whole), "");
        EXPECT_GT(LargestError(whole, Delayed(speech, instance.Latency())), 0.01F);
        instance.Settle();
        Audio cut = speech;
        instance.Run(cut, 8193);
        EXPECT_EQ(Difference(cut, whole), "");
    }
}
