// SPDX-License-Identifier: ISC
// Sessions of every format: what was saved comes back, here and elsewhere, and what is none is
// refused.
#include "tests/contract/support/FormatTest.h"

#include <random>

namespace {

using namespace Contract;
using Bytes = std::vector<uint8_t>;
using Values = std::vector<float>;

class FormatState : public FormatTest {
protected:
    static void SetAll(FormatHost& host, const Values& values)
    {
        for (uint32_t index = 0; index < values.size(); ++index) {
            host.SetParameter(index, values[index]);
        }
        PlaySilence(host, 2, 64);
    }

    static void ExpectAll(FormatHost& host, uint32_t channels, const Values& values)
    {
        PlaySilence(host, channels, 64);
        ASSERT_EQ(host.CountParameters(), values.size());
        for (uint32_t index = 0; index < values.size(); ++index) {
            EXPECT_EQ(host.GetParameter(index).value_or(values[index]), values[index]) << index;
        }
    }

    Values MakeValues()
    {
        const auto eighths = [this] { return static_cast<float>(engine() % 9) / 8; };
        return {eighths(), eighths(), eighths(), static_cast<float>(engine() % 2)};
    }

    Bytes MakeNoise(size_t size)
    {
        Bytes noise(size);
        for (uint8_t& byte : noise) {
            byte = static_cast<uint8_t>(engine());
        }
        return noise;
    }

    std::mt19937 engine{1};
};

/// Takes what is no session, and looks whether something has come of it.
class Refusal {
public:
    explicit Refusal(FormatHost& newHost)
        : host(newHost)
        , before(newHost.Save())
    {
    }

    bool IsRefused(const Bytes& bytes) { return !host.Load(bytes) && host.Save() == before; }

private:
    FormatHost& host;
    const Bytes before;
};

} // namespace

TEST_P(FormatState, BringsBackAllValuesHereAndElsewhereAndSavesTheSame)
{
    auto host = Make();
    auto other = Make(96000.0, 6);
    for (uint32_t round = 0; round < Rounds(50); ++round) {
        const uint32_t pieces[] = {1, 7, 23, 1'000'003};
        host->LimitStreams(pieces[round % 4]);
        other->LimitStreams(pieces[round / 4 % 4]);
        const Values values = MakeValues();
        SetAll(*host, values);
        const Bytes saved = host->Save();
        ASSERT_FALSE(saved.empty());
        SetAll(*host, MakeValues());
        ASSERT_TRUE(host->Load(saved));
        ExpectAll(*host, 2, values);
        EXPECT_EQ(host->Save(), saved);

        ASSERT_TRUE(other->Load(saved));
        ExpectAll(*other, 6, values);
        EXPECT_EQ(other->Save(), saved);
    }
}

TEST_P(FormatState, OfAnotherInstanceSoundsTheSameFromItsFirstBlockOn)
{
    auto first = Make();
    SetAll(*first, {0.875F, 0.25F, 0.5F, 0.0F});
    const Bytes saved = first->Save();
    auto second = GetParam().make(Rate, 2);
    ASSERT_NE(second, nullptr);
    ASSERT_TRUE(second->Load(saved)) << "before it is active";
    ASSERT_TRUE(second->Activate(Rate, LongestBlock));
    const Audio speech = MakeSpeech(Rate, 2);
    const Audio expected = Expected(speech, Rate, {0.875F, 0.25F, 0.5F});
    EXPECT_EQ(Difference(Play(*second, speech, 512), expected), "");
}

TEST_P(FormatState, ActsFromTheNextBlockOnAndLaterValuesHaveTheLastWord)
{
    const Audio speech = MakeSpeech(Rate, 2);
    auto donor = Make();
    donor->SetParameter(TestHost::Strength, 1.0F);
    PlaySilence(*donor, 2, 64);
    const Bytes session = donor->Save();
    for (const std::optional<float> later : {std::optional<float>(), std::optional(0.25F)}) {
        for (const bool isFlushed : {false, true}) {
            SCOPED_TRACE(testing::Message() << later.value_or(-1) << ", flushed: " << isFlushed);
            auto host = Make();
            host->SetParameter(TestHost::Strength, 0.75F);
            uint32_t number = 0;
            const Audio output = Play(*host, speech, [&]() -> uint32_t {
                if (number++ != 1) {
                    return number == 1 ? 64 : LongestBlock;
                }
                EXPECT_TRUE(host->Load(session));
                if (later) {
                    host->SetParameter(TestHost::Strength, *later);
                }
                if (isFlushed) {
                    host->Process(nullptr, nullptr, 0);
                }
                return 1; // what waits comes with it
            });
            const float strength = later.value_or(1.0F);
            EXPECT_EQ(Difference(output, Expected(speech, Rate, {.strength = strength})), "");
            EXPECT_EQ(host->GetParameter(TestHost::Strength), strength);
        }
    }
}

TEST_P(FormatState, ThatIsThereAlreadyLeavesTheSoundAlone)
{
    auto host = Make();
    const Bytes saved = host->Save();
    const Audio speech = MakeSpeech(Rate, 2);
    uint32_t number = 0;
    const Audio output = Play(*host, speech, [&] {
        EXPECT_TRUE(++number % 10 > 0 || host->Load(saved));
        return 512U;
    });
    EXPECT_EQ(Difference(output, Expected(speech, Rate)), "");
}

TEST_P(FormatState, ThatIsNoneIsRefusedAndChangesNothing)
{
    auto host = Make();
    SetAll(*host, {0.125F, 0.875F, 0.25F, 0.0F});
    const Bytes good = host->Save();
    Refusal refusal(*host);
    EXPECT_TRUE(refusal.IsRefused({}));
    EXPECT_TRUE(refusal.IsRefused({0}));
    for (size_t length = 0; length < good.size(); ++length) {
        const Bytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_TRUE(refusal.IsRefused(cut)) << length;
    }
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(refusal.IsRefused(MakeNoise(1U << 20U))) << round;
    }
    const Bytes state = MakeState([](TestHost::Instance&) {});
    Bytes claim = state;
    std::fill_n(claim.begin(), 4, uint8_t{0xFF}); // 4 GiB of text
    EXPECT_TRUE(refusal.IsRefused(host->MakeSession(claim)));

    const Audio speech = MakeSpeech(Rate, 2);
    host->Reset();
    const Audio expected = Expected(speech, Rate, {0.125F, 0.875F, 0.25F});
    EXPECT_EQ(Difference(Play(*host, speech, 512), expected), "");
}

// A changed bit may be one of a value, and then this is another session.
TEST_P(FormatState, WithAChangedBitIsRefusedOrASessionOfItsOwn)
{
    auto host = Make();
    SetAll(*host, {0.125F, 0.875F, 0.25F, 0.0F});
    const Bytes good = host->Save();
    for (uint32_t round = 0; round < Rounds(1000); ++round) {
        SCOPED_TRACE(round);
        Bytes damaged = good;
        damaged[engine() % damaged.size()] ^= static_cast<uint8_t>(1U << engine() % 8);
        const Bytes before = host->Save();
        if (!host->Load(damaged)) {
            EXPECT_EQ(host->Save(), before);
            continue;
        }
        EXPECT_EQ(BadSample(Play(*host, MakeSpeech(Rate, 2, 0.05), 480)), "");
        const Bytes saved = host->Save();
        ASSERT_TRUE(host->Load(saved));
        EXPECT_EQ(host->Save(), saved);
        ASSERT_TRUE(host->Load(good));
        EXPECT_EQ(host->Save(), good);
    }
}

CONTRACT_FORMATS(FormatState);
