// SPDX-License-Identifier: ISC
#include "wrappers/common/Detections.h"
#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "tests/wrappers/common/support/ModuleTest.h"

using Wrapper::Detection;

namespace {

struct DetectionsTest : ModuleTest {
    const std::unique_ptr<Wrapper::Instance> instance = Create(FAKE_MODULE);
};

} // namespace

TEST_F(DetectionsTest, AllRepairsComeInOrderOnceAndLostOnesAreCounted)
{
    Wrapper::Detections reader(*instance); // the fake's first is number 10, its last 199
    std::vector<Detection> found(1);
    ASSERT_TRUE(reader.Read(found));
    ASSERT_EQ(found.size(), 1U + 185U);
    uint32_t expected = 10;
    for (size_t i = 1; i < found.size(); ++i) {
        expected = expected == 100 ? 105 : expected;
        EXPECT_EQ(found[i].number, expected);
        EXPECT_EQ(found[i].centre, 1000 * int64_t{expected});
        EXPECT_EQ(found[i].frames, expected == 150 ? 0U : 3U);
        ++expected;
    }
    EXPECT_EQ(reader.GetLost(), 5U);
    ASSERT_TRUE(reader.Read(found));
    EXPECT_EQ(found.size(), 186U);
}

TEST_F(DetectionsTest, ARefusalIsNoEndOfTheList)
{
    Wrapper::Detections reader(*instance);
    Refuse(SelectorTransformRead);
    std::vector<Detection> found;
    EXPECT_FALSE(reader.Read(found));
    EXPECT_FALSE(reader.ReadTotals());
    EXPECT_TRUE(found.empty());
    EXPECT_EQ(logged,
              (std::vector<std::string>{"the module doesn't tell its repairs",
                                        "the module doesn't tell its sums"}));
}
