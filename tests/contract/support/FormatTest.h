// SPDX-License-Identifier: ISC
#pragma once

#include "tests/contract/support/Formats.h"
#include "tests/contract/support/Takes.h"

#include <gtest/gtest.h>

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
};

#define CONTRACT_FORMATS(Suite)                                                                    \
    INSTANTIATE_TEST_SUITE_P(Formats,                                                              \
                             Suite,                                                                \
                             testing::ValuesIn(Contract::GetFormats()),                            \
                             Contract::NameOf<testing::TestParamInfo<Contract::Format>>)

} // namespace Contract
