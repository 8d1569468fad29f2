// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/AnalysisSizes.h"

#include <gtest/gtest.h>

namespace {

using DSP::Synapse::AnalysisSizes;

TEST(AnalysisSizes, AreTheWorkedOnesAt44100)
{
    const AnalysisSizes sizes = AnalysisSizes::ForRate(44100);
    EXPECT_EQ(sizes.decimation, 4);
    EXPECT_EQ(sizes.analysisHop, 32); // 24.7 samples, rounded up to a power of two
    EXPECT_EQ(sizes.minLag, 17);      // (67 + 3) / 4
    EXPECT_EQ(sizes.maxLag, 245);     // 980 / 4
    EXPECT_FLOAT_EQ(sizes.decimatedRate, 11025.0F);
    EXPECT_FLOAT_EQ(sizes.trackerRate, 11025.0F / 32.0F);
}

TEST(AnalysisSizes, DecimateOnlyAbove22050)
{
    EXPECT_EQ(AnalysisSizes::ForRate(22050).decimation, 1);
    EXPECT_EQ(AnalysisSizes::ForRate(22051).decimation, 4);
    EXPECT_EQ(AnalysisSizes::ForRate(8000).analysisHop, 8); // 4.5, but at least 8
    EXPECT_EQ(AnalysisSizes::ForRate(192000).analysisHop, 128);
}

TEST(AnalysisSizes, StayUsableAtAbsurdRates)
{
    for (const double rate : {1.0, 100.0, 3999.0, 768000.0}) {
        const AnalysisSizes sizes = AnalysisSizes::ForRate(rate);
        EXPECT_GT(sizes.maxLag, sizes.minLag) << rate;
        EXPECT_EQ(sizes.analysisHop % sizes.decimation, 0) << rate;
    }
}

} // namespace
