// SPDX-License-Identifier: ISC
#include "wrappers/common/SessionBytes.h"

#include "tests/wrappers/common/support/ModuleTest.h"

using Wrapper::Side;
using SessionBytesTest = ModuleTest;

TEST_F(SessionBytesTest, AStateAloneLeavesTheBypassAlone)
{
    const auto instance = Create(PUFFGUARD_MODULE);
    ASSERT_NE(instance, nullptr);
    const uint32_t bypass = instance->GetBypassIndex().value_or(99);
    instance->SetParameter(Side::UI, 0, 0.75F);
    const std::vector<uint8_t> state = instance->SaveState();
    for (const float set : {0.0F, 1.0F}) {
        instance->SetParameter(Side::UI, bypass, set);
        instance->SetParameter(Side::UI, 0, 0.0F);
        ASSERT_TRUE(Wrapper::LoadSession(*instance, state));
        EXPECT_EQ(instance->GetParameter(Side::UI, bypass), set);
        EXPECT_FLOAT_EQ(instance->GetParameter(Side::UI, 0), 0.75F);
    }
    EXPECT_TRUE(Wrapper::EncodeSession(true, {}).empty());
}

TEST_F(SessionBytesTest, AHeadThatIsDamagedChangesNothing)
{
    const auto instance = Create(PUFFGUARD_MODULE);
    ASSERT_NE(instance, nullptr);
    const std::vector<uint8_t> state = instance->SaveState();
    const std::vector<uint8_t> session = Wrapper::EncodeSession(false, state);
    instance->SetParameter(Side::UI, 0, 0.75F);
    for (size_t at = 0; at < session.size() - state.size(); ++at) {
        std::vector<uint8_t> damaged = session;
        damaged[at] ^= 0x80U; // of the magic word, the version or the bypass
        EXPECT_FALSE(Wrapper::LoadSession(*instance, damaged)) << at;
    }
    EXPECT_FLOAT_EQ(instance->GetParameter(Side::UI, 0), 0.75F);
}
