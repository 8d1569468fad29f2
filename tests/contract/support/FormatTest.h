// SPDX-License-Identifier: ISC
#pragma once

#include "tests/contract/support/Formats.h"
#include "tests/contract/support/Takes.h"

#include <gtest/gtest.h>

#include <iterator>
#include <memory>

namespace Contract {

/// A check that runs through the entry and every format.
class FormatTest : public testing::TestWithParam<Format> {
protected:
    static constexpr double Rate = 48000;
    static constexpr uint32_t LongestBlock = 65536;

    /// An active instance, ready for any block.
    static std::unique_ptr<FormatHost> Make(double rate = Rate, uint32_t channels = 2)
    {
        auto host = GetParam().make(rate, channels);
        EXPECT_NE(host, nullptr);
        if (host != nullptr) {
            EXPECT_TRUE(host->Activate(rate, LongestBlock));
        }
        return host;
    }

    /// The values that are set last count, whatever has been before.
    static void ExpectControlled(FormatHost& host)
    {
        constexpr float Values[] = {0.25F, 0.875F, 0.625F, 0.0F};
        for (uint32_t index = 0; index < std::size(Values); ++index) {
            host.SetParameter(index, Values[index]);
        }
        Settle(host, 2);
        const Audio speech = MakeSpeech(Rate, 2);
        const Audio expected = Expected(speech, Rate, {Values[0], Values[1], Values[2]});
        EXPECT_EQ(Difference(Play(host, speech, 512), expected), "");
    }
};

#define CONTRACT_FORMATS(Suite)                                                                    \
    INSTANTIATE_TEST_SUITE_P(Formats,                                                              \
                             Suite,                                                                \
                             testing::ValuesIn(Contract::GetFormats()),                            \
                             Contract::NameOf<testing::TestParamInfo<Contract::Format>>)

} // namespace Contract
