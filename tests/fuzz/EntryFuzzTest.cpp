// SPDX-License-Identifier: ISC
// Random calls of the built module's entry, with every record filled at random as far as it holds
// no pointer. The seed stands in a failing test's output and gives the same calls again.
#include "tests/support/FuzzRounds.h"
#include "tests/support/ModuleHost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace {

using namespace TestHost;

constexpr uint32_t MostFrames = 9000; // more than a chunk
constexpr int CallsPerRound = 400;

class Caller {
public:
    explicit Caller(unsigned seed)
        : random(seed)
        , instance(48000.0F, 2)
        , audio(MakeSpeechLike(PLUGIN_CORE_MAX_CHANNELS, MostFrames, 8000.0F))
    {
    }

    void CallOnce()
    {
        if (random() % 3 == 0) {
            Process();
            return;
        }
        const auto selector = static_cast<uint32_t>(2 + random() % 39);
        if (selector == SelectorDestroyPlugin) {
            return;
        }
        const std::array<uint32_t, 4> contexts{
            ProcessSide, UI, 2, std::numeric_limits<uint32_t>::max()};
        void* const data = FillRecord(selector);
        const uint32_t code = Call(selector, contexts[random() % 4], instance.Get(), data);
        EXPECT_LE(code, 7U) << selector;
    }

    void ExpectWorkingOrder()
    {
        instance.SetFormat(44100.0F, 0);
        Instance fresh(44100.0F, 1);
        for (uint32_t index = 0; index < 11; ++index) {
            ParamValueRecord value{index, 0.0F};
            Call(SelectorGetElementParamValue, UI, fresh.Get(), &value);
            instance.SetElement(index, value.value);
        }
        instance.Settle();
        Audio expected = MakeSpeechLike(1, 30'000, 44100.0F);
        Audio heard = expected;
        fresh.Run(expected, 700);
        instance.Run(heard, 700);
        EXPECT_EQ(heard, expected);
    }

private:
    static constexpr uint32_t ProcessSide = TestHost::Process;

    // What audio holds is the formats' soak's affair.
    void Process()
    {
        const auto frames = static_cast<uint32_t>(random() % MostFrames);
        ASSERT_EQ(instance.RunBlock(audio, 0, frames), PluginCoreSuccess);
        for (uint32_t i = 0; i < frames; ++i) { // the channel that every layout has
            ASSERT_TRUE(std::isfinite(audio[0][i]));
        }
    }

    // Random bytes, but with pointers that are null or lead somewhere.
    void* FillRecord(uint32_t selector)
    {
        if (random() % 16 == 0 && selector != SelectorTransformNotify) {
            return nullptr;
        }
        for (unsigned char& byte : record) {
            byte = static_cast<unsigned char>(random());
        }
        switch (selector) {
        case SelectorGetAllocationTrace:
            std::memset(record.data(), 0, sizeof(AllocationTraceRecord));
            break;
        case SelectorGetAutomatableParamList:
        case SelectorGetElementParamList:
            As<ParamListRecord>().params = random() % 2 == 0 ? nullptr : list.data();
            As<ParamListRecord>().count %= 16;
            break;
        case SelectorSetStreamFormat:
            FillFormat(As<StreamFormatRecord>());
            break;
        case SelectorProcess:
            As<ProcessRecord>().channels = nullptr; // Process() has the other cases
            break;
        case SelectorTransformRead:
            As<TransformReadRecord>().request %= 4;
            As<TransformReadRecord>().capacity %= 9;
            As<TransformReadRecord>().recordBytes = random() % 2 == 0 ? 80 : 24;
            As<TransformReadRecord>().buffer = random() % 4 == 0 ? nullptr : list.data();
            break;
        case SelectorStateCommand:
            As<StateRecord>().op %= 7;
            As<StateRecord>().size %= static_cast<uint32_t>(list.size());
            As<StateRecord>().buffer = random() % 4 == 0 ? nullptr : list.data();
            break;
        case SelectorModuleListQuery:
            As<ModuleListRecord>().op %= 8;
            As<ModuleListRecord>().text = random() % 2 == 0 ? nullptr : list.data();
            As<ModuleListRecord>().data = random() % 2 == 0 ? nullptr : list.data();
            break;
        case SelectorElementCommand:
            As<ElementRecord>().op %= 8;
            As<ElementRecord>().observer = nullptr;
            break;
        default:
            break;
        }
        return record.data();
    }

    void FillFormat(StreamFormatRecord& format)
    {
        const std::array<float, 8> rates{
            8000, 16000, 22050, 44100, 48000, 96000, std::nanf(""), -1.0F};
        format.sampleRate = rates[random() % rates.size()];
        format.channelConfig = static_cast<uint32_t>(random() % 42);
    }

    template <typename Record>
    Record& As()
    {
        return *reinterpret_cast<Record*>(record.data());
    }

    std::mt19937 random;
    Instance instance;
    Audio audio;
    alignas(16) std::array<unsigned char, 512> record{};
    std::vector<char> list = std::vector<char>(16 * sizeof(ElementParamInfoRecord));
};

} // namespace

TEST(EntryFuzz, AnyCallsLeaveAnInstanceInWorkingOrder)
{
    for (int round = 0; round < Fuzz::GetRounds(); ++round) {
        SCOPED_TRACE(round);
        Caller caller(static_cast<unsigned>(round));
        for (int i = 0; i < CallsPerRound; ++i) {
            caller.CallOnce();
        }
        caller.ExpectWorkingOrder();
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}
