// SPDX-License-Identifier: ISC
#include "wrappers/common/ElementParameters.h"
#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "tests/wrappers/common/support/ModuleTest.h"

using Wrapper::ElementParameters;

namespace {

struct ElementParametersTest : ModuleTest {
    const std::unique_ptr<Wrapper::Instance> instance = Create(FAKE_MODULE);
};

} // namespace

TEST_F(ElementParametersTest, NamesAreFoundInWhateverCaseAndFieldsEndWithTheirField)
{
    const auto all = ElementParameters::Read(*instance);
    ASSERT_TRUE(all);
    EXPECT_EQ(all->Find("fake.SECOND"), 1U);
    EXPECT_FALSE(all->Find("Fake.Secon"));
    EXPECT_FALSE(all->Find(""));
    EXPECT_EQ(all->GetList()[0].unit, std::string(1024, 'x'));
}

TEST_F(ElementParametersTest, WhatTheModuleRefusesIsToldAndChangesNothing)
{
    auto all = ElementParameters::Read(*instance);
    ASSERT_TRUE(all);
    EXPECT_FALSE(all->Set(2, 0.5F));
    EXPECT_FALSE(all->Get(2));
    EXPECT_EQ(logged,
              (std::vector<std::string>{"the module refuses to take a parameter (answer 6)",
                                        "the module refuses to tell a parameter (answer 6)"}));
    for (const uint32_t selector : {SelectorGetElementParamCount, SelectorGetElementParamList}) {
        Refuse(selector);
        EXPECT_FALSE(ElementParameters::Read(*instance));
        EXPECT_EQ(logged.size(), 1U);
    }
}
