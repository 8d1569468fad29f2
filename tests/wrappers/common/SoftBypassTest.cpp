// SPDX-License-Identifier: ISC
// What of the soft bypass hosts can't bring about; the rest is seen in every format.
#include "tests/wrappers/common/support/ModuleTest.h"
#include "wrappers/common/ElementParameters.h"

#include <algorithm>
#include <random>

using Wrapper::Side;
using SoftBypassTest = ModuleTest;

// As an editor does it: the module's own parameter, from the UI side, between the blocks.
TEST_F(SoftBypassTest, FollowsWhoeverSwitchesItWithinTheModuleAndANewLatency)
{
    constexpr uint32_t Block = 500;
    const auto instance = Create(PUFFGUARD_MODULE, 1);
    ASSERT_NE(instance, nullptr);
    auto parameters = Wrapper::ElementParameters::Read(*instance);
    const uint32_t bypass = *parameters->Find(Wrapper::BypassIdentifier);
    const uint32_t scaling = *parameters->Find("PuffGuard.Latency Scaling");
    parameters->Set(*parameters->Find("PuffGuard.Strength"), 0.0F); // both ways sound the same
    instance->Activate();
    std::vector<float> input(400 * Block);
    std::mt19937 engine(1);
    std::generate(input.begin(), input.end(), [&] {
        return static_cast<float>(engine() % 1000) * 1e-3F - 0.5F;
    });
    std::vector<float> output = input;
    uint32_t begin = 0; // of the audio at the latency that there is
    for (uint32_t block = 0; block < 400; ++block) {
        if (block % 40 % 7 == 0) { // on the way in, while the repair is silent, on the way out
            parameters->Set(bypass, parameters->Get(bypass).value() < 0.5F ? 1.0F : 0.0F);
        }
        if (block % 100 == 57) {
            parameters->Set(scaling, block % 200 == 57 ? 0.0F : 1.0F);
            begin = block * Block;
        }
        float* const samples = output.data() + block * Block;
        ASSERT_TRUE(instance->Process({&samples, &samples, Block}, std::nullopt));
        const uint32_t latency = instance->GetLatency(Side::Process);
        for (uint32_t i = block * Block; i < (block + 1) * Block; ++i) {
            const float late = i < begin + latency ? 0.0F : input[i - latency];
            ASSERT_NEAR(output[i], late, 1e-5F) << "block " << block << ", frame " << i;
        }
    }
}
