// SPDX-License-Identifier: ISC
#include "wrappers/common/SessionBytes.h"

#include "tests/wrappers/common/support/ModuleTest.h"

#include <algorithm>

using Wrapper::Side;

namespace {

using Bytes = std::vector<uint8_t>;

class SessionBytesTest : public ModuleTest {
protected:
    void SetUp() override
    {
        instance = Create(PUFFGUARD_MODULE);
        ASSERT_NE(instance, nullptr);
        bypass = instance->GetBypassIndex().value_or(99);
    }

    bool IsBypassed() const { return instance->GetParameter(Side::UI, bypass) >= 0.5F; }
    Bytes Save() const { return Wrapper::EncodeSession(IsBypassed(), instance->SaveState()); }

    std::unique_ptr<Wrapper::Instance> instance;
    uint32_t bypass = 0;
};

} // namespace

TEST_F(SessionBytesTest, AStateAloneLeavesTheBypassAlone)
{
    instance->SetParameter(Side::UI, 0, 0.75F);
    const Bytes state = instance->SaveState();
    for (const float set : {0.0F, 1.0F}) {
        instance->SetParameter(Side::UI, bypass, set);
        instance->SetParameter(Side::UI, 0, 0.0F);
        ASSERT_TRUE(Wrapper::LoadSession(*instance, state));
        EXPECT_EQ(IsBypassed(), set == 1.0F);
        EXPECT_FLOAT_EQ(instance->GetParameter(Side::UI, 0), 0.75F);
    }
}

TEST_F(SessionBytesTest, AHeadThatIsDamagedOrStandsBeforeNoiseChangesNothing)
{
    instance->SetParameter(Side::UI, bypass, 1.0F);
    const Bytes other = Save();
    instance->SetParameter(Side::UI, bypass, 0.0F);
    instance->SetParameter(Side::UI, 0, 0.75F);
    const Bytes before = Save();
    ASSERT_NE(before, other);

    for (size_t at = 0; at < 6; ++at) {
        Bytes damaged = other;
        damaged[at] ^= 0x80U; // of the magic word, the version or the bypass
        EXPECT_FALSE(Wrapper::LoadSession(*instance, damaged)) << at;
    }
    Bytes noise(1U << 16U, 0xA5);
    std::copy_n(other.begin(), 6, noise.begin());
    EXPECT_FALSE(Wrapper::LoadSession(*instance, noise));
    EXPECT_EQ(Save(), before);
    EXPECT_TRUE(Wrapper::LoadSession(*instance, other)) << "undamaged it is one";
    EXPECT_EQ(Save(), other);
    EXPECT_TRUE(Wrapper::EncodeSession(true, {}).empty());
}
