// SPDX-License-Identifier: ISC
// Values as hosts send them, and as broken hosts do.
#include "tests/contract/support/FormatTest.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using namespace Contract;

class FormatParameters : public FormatTest {
protected:
    static constexpr uint32_t Count = 4;

    // A value counts from the next block on.
    static void SetAll(FormatHost& host, float value)
    {
        for (uint32_t index = 0; index < Count; ++index) {
            host.SetParameter(index, value);
        }
        static const Audio Speech = MakeSpeech(Rate, 2, 0.02);
        EXPECT_EQ(BadSample(Play(host, Speech, 32)), "");
    }

    // What is no number is passed over, and the rest comes to the nearer end.
    static void ExpectBroughtIn(FormatHost& host, float value)
    {
        const Controls initial;
        const float former[] = {initial.sensitivity, initial.strength, initial.upperFrequency, 0};
        for (uint32_t index = 0; index < Count; ++index) {
            const float wanted = std::isnan(value) ? former[index] : std::clamp(value, 0.0F, 1.0F);
            EXPECT_NEAR(host.GetParameter(index).value_or(wanted), wanted, 1e-6F) << index;
        }
    }
};

} // namespace

TEST_P(FormatParameters, ComeBackAsTheyWereSet)
{
    auto host = Make();
    ASSERT_EQ(host->CountParameters(), Count);
    for (int eighths = 8; eighths >= 0; --eighths) {
        const float value = static_cast<float>(eighths) / 8;
        for (uint32_t index = 0; index < Count; ++index) {
            // What lies between the ends of a switch is each format's own affair.
            const bool isSwitch = index == TestHost::GlobalBypass;
            const float wanted = isSwitch ? std::round(value) : value;
            host->SetParameter(index, wanted);
            PlaySilence(*host, 2, 32);
            EXPECT_EQ(host->GetParameter(index).value_or(wanted), wanted) << index;
        }
    }
}

TEST_P(FormatParameters, ThatAreNoValuesDoNoHarm)
{
    constexpr float Inf = std::numeric_limits<float>::infinity();
    for (const float value : {std::numeric_limits<float>::quiet_NaN(),
                              Inf,
                              -Inf,
                              1e38F,
                              -1e38F,
                              -0.001F,
                              1.001F,
                              std::numeric_limits<float>::denorm_min()}) {
        SCOPED_TRACE(value);
        auto host = Make();
        for (int run = 0; run < 3; ++run) {
            SetAll(*host, value);
        }
        ExpectBroughtIn(*host, value);
        ExpectControlled(*host);
    }
}

CONTRACT_FORMATS(FormatParameters);
