// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/SpectrumRing.h"

#include <gtest/gtest.h>

namespace {

constexpr uint32_t Bins = 4;

/// What the slot's second channel would add to the output; -1 where nothing was written.
std::vector<float> GetChange(const DSP::SpectrumRing& ring, uint32_t slot)
{
    std::vector<float> change(2 * Bins, -1.0F);
    EXPECT_TRUE(ring.GetChange(slot, 1, change.data()));
    return change;
}

/// Adds `amount` to the lowest bins of the slot's second channel, as a repair does.
void Change(DSP::SpectrumRing& ring, uint32_t slot, uint32_t bins, float amount)
{
    ring.KeepOriginal(slot, bins);
    for (std::size_t i = 0; i < std::size_t{2} * bins; ++i) {
        ring.GetSpectrum(slot, 1)[i] += amount;
    }
}

TEST(SpectrumRing, ChangesOfOneFrameAddUpUntilItIsRenewed)
{
    DSP::SpectrumRing ring;
    ring.Configure(3, 2, Bins);
    for (std::size_t i = 0; i < 2 * Bins; ++i) {
        ring.GetSpectrum(1, 1)[i] = static_cast<float>(10 + i);
    }
    EXPECT_EQ(ring.GetChangedBins(1), 0U);
    Change(ring, 1, 2, 1);
    Change(ring, 1, 3, 4); // wider than before
    Change(ring, 1, 1, 16);
    EXPECT_EQ(ring.GetChangedBins(1), 3U);
    EXPECT_EQ(GetChange(ring, 1), (std::vector<float>{21, 21, 5, 5, 4, 4, -1, -1}));
    EXPECT_EQ(ring.GetChangedBins(0), 0U);
    EXPECT_EQ(ring.GetChangedBins(2), 0U);
    std::vector<float> none(2 * Bins);
    EXPECT_FALSE(ring.GetChange(1, 0, none.data())); // a channel that the repair has spared

    ring.Renew(1);
    EXPECT_EQ(ring.GetChangedBins(1), 0U);
    Change(ring, 1, 1, 2);
    EXPECT_EQ(GetChange(ring, 1), (std::vector<float>{2, 2, -1, -1, -1, -1, -1, -1}));
}

TEST(SpectrumRing, SilenceStandsInEverySlotAfterARestart)
{
    DSP::SpectrumRing ring;
    ring.Configure(3, 2, Bins);
    for (const bool isResized : {false, true}) {
        Change(ring, 2, Bins, 7);
        if (isResized) {
            ring.Configure(2, 2, Bins); // keeps the third slot for later
        } else {
            ring.Clear();
        }
        EXPECT_EQ(ring.GetChangedBins(2), 0U);
        EXPECT_EQ(ring.GetSpectrum(2, 1)[1], 0.0F);
    }
}

} // namespace
