// SPDX-License-Identifier: ISC
// What a format reports of its delay is what an impulse takes, and hosts hear of a change once.
#include "tests/contract/support/FormatTest.h"

#include <thread>

namespace {

using namespace Contract;
using TestHost::GlobalBypass;
using TestHost::Strength;

class FormatLatency : public FormatTest {
protected:
    // An impulse in each channel, at a place of its own.
    static Audio MakeImpulses(uint32_t latency)
    {
        Audio input(2, std::vector<float>(latency + 2000));
        input[0][100] = 1.0F;
        input[1][107] = -0.75F;
        return input;
    }

    static void ExpectReported(FormatHost& host)
    {
        const uint32_t latency = host.GetLatency();
        const Audio input = MakeImpulses(latency);
        host.SetParameter(GlobalBypass, 1.0F);
        Settle(host, 2);
        EXPECT_EQ(host.GetLatency(), latency) << "a bypass changes nothing about it";
        EXPECT_EQ(Difference(Play(host, input, 480), Delayed(input, latency)), "");

        host.SetParameter(GlobalBypass, 0.0F);
        host.SetParameter(Strength, 0.0F);
        Settle(host, 2);
        EXPECT_EQ(Difference(Play(host, input, 480), Delayed(input, latency)), "");
    }
};

} // namespace

TEST_P(FormatLatency, IsThatOfAnImpulseAtAnyRate)
{
    for (const double rate : {8000.0, 44100.0, 45678.901, 96000.0, 192000.0, 1234.5678}) {
        SCOPED_TRACE(rate);
        auto host = Make(rate);
        ExpectReported(*host);
    }
}

TEST_P(FormatLatency, ReachesTheHostOnceWhenAStateChangesIt)
{
    auto host = Make();
    PlaySilence(*host, 2, 2000);
    const uint32_t before = host->GetLatency();
    const auto reports = host->CountLatencyReports();
    ASSERT_TRUE(host->Load(host->MakeSession(MakeShortestState())));
    const auto isTold = [&] {
        return reports ? host->CountLatencyReports() != reports : host->GetLatency() != before;
    };
    while (!isTold()) { // ends by the test's time limit when no word ever comes
        PlaySilence(*host, 2, 64);
        host->Idle();
        std::this_thread::yield();
    }
    host->Deactivate();
    ASSERT_TRUE(host->Activate(Rate, LongestBlock));
    EXPECT_LT(host->GetLatency(), before);
    ExpectReported(*host);
    host->Idle();
    if (reports) {
        EXPECT_EQ(*host->CountLatencyReports(), *reports + 1);
    }
}

TEST_P(FormatLatency, IsThatOfAStateThatCameAfterTheLastBlockBeforeARestart)
{
    auto host = Make();
    const uint32_t before = host->GetLatency();
    PlaySilence(*host, 2, 64);
    ASSERT_TRUE(host->Load(host->MakeSession(MakeShortestState())));
    host->Deactivate();
    ASSERT_TRUE(host->Activate(Rate, LongestBlock));
    EXPECT_LT(host->GetLatency(), before);
    ExpectReported(*host);
}

CONTRACT_FORMATS(FormatLatency);
