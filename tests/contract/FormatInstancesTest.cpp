// SPDX-License-Identifier: ISC
// Instances that come and go, and several formats in one process.
#include "tests/contract/support/FormatTest.h"
#include "tests/contract/support/Holdings.h"
#include "tests/support/TemporaryFolder.h"

#include <cmath>
#include <cstdlib>
#include <map>

namespace {

using namespace Contract;

/// By name, what lies in the folder Presets beside a binary.
std::map<std::string, std::string> PresetsBeside(const std::string& binary)
{
    std::map<std::string, std::string> presets;
    const auto folder = std::filesystem::path(binary).parent_path() / "Presets";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        presets[entry.path().filename()] = Support::ReadText(entry.path());
    }
    return presets;
}

class FormatInstances : public FormatTest {
protected:
    // Some do more than others before they end.
    static void Live(uint32_t number)
    {
        constexpr uint32_t Layouts[] = {1, 2, 6, 8};
        const uint32_t channels = Layouts[number % 4];
        const uint32_t stage = number % 5;
        auto host = GetParam().make(Rate, channels);
        ASSERT_NE(host, nullptr) << number;
        if (stage > 0) {
            ASSERT_TRUE(host->Activate(Rate, LongestBlock));
        }
        if (stage > 1) {
            PlaySilence(*host, channels, 600);
        }
        if (stage > 2) {
            EXPECT_TRUE(host->Load(host->Save()));
            host->SetParameter(TestHost::Strength, 0.25F); // and no block follows
        }
        if (stage > 3) {
            host->Deactivate();
        }
    }
};

} // namespace

TEST_P(FormatInstances, ComeAndGoAtAnyPointOfTheirLifeAndLeaveNothingBehind)
{
    uint32_t number = 0;
    while (number < 5) {
        Live(number++);
    }
    const Holdings before;
    // A format's module lies beside its binary.
    const auto folder = std::filesystem::path(GetParam().binary).parent_path().string() + "/";
    while (number < Rounds(300)) {
        Live(number++);
        // Of the entry's, other tests may keep it.
        ASSERT_TRUE(CountMappings(folder) == 0 || GetParam().make == MakeEntryHost) << number;
    }
    EXPECT_EQ(Holdings(), before);
    auto host = Make();
    const Audio speech = MakeSpeech(Rate, 2);
    EXPECT_EQ(Difference(Play(*host, speech, 512), Expected(speech, Rate)), "");
}

TEST_P(FormatInstances, OfRatesThatAreNoneDoNoHarm)
{
    for (const double rate : {0.0, -1.0, 1e300, std::nan("")}) {
        SCOPED_TRACE(rate);
        auto host = GetParam().make(rate, 1);
        ASSERT_NE(host, nullptr);
        host->Activate(rate, LongestBlock);
        EXPECT_EQ(BadSample(Play(*host, MakeSpeech(Rate, 1), 4096)), "");
    }
}

// Each bundle has a module of its own, which looks for them there.
TEST_P(FormatInstances, HaveTheFactoryPresetsBesideTheirModule)
{
    const auto presets = PresetsBeside(PUFFGUARD_MODULE);
    EXPECT_GE(presets.size(), 6U);
    EXPECT_EQ(PresetsBeside(GetParam().binary), presets);
}

CONTRACT_FORMATS(FormatInstances);

TEST(Formats, WithoutTheirModuleMakeNoInstanceAndALineSaysWhy)
{
    for (const char* const module : {"/nowhere/module.so", OTHER_MODULE}) {
        for (const Format& format : GetFormats()) {
            if (format.make == MakeEntryHost) {
                continue; // this is the module
            }
            SCOPED_TRACE(testing::Message() << format.name << ", " << module);
            setenv("PUFFGUARD_MODULE", module, 1);
            testing::internal::CaptureStderr();
            EXPECT_EQ(format.make(48000, 2), nullptr);
            const std::string log = testing::internal::GetCapturedStderr();
            unsetenv("PUFFGUARD_MODULE");
            EXPECT_NE(log.find(module), std::string::npos) << log;
        }
    }
}

// Two of each format, one of them at another rate.
TEST(Formats, SideBySideInOneProcessDoNotHearEachOther)
{
    constexpr uint32_t Block = 480;
    const Audio speech = MakeSpeech(48000, 2);
    struct Member {
        std::unique_ptr<FormatHost> host;
        double rate;
        Controls controls;
        Audio output;
    };
    std::vector<Member> members;
    for (const Format& format : GetFormats()) {
        for (const double rate : {48000.0, 44100.0}) {
            const auto number = static_cast<float>(members.size());
            Member member{
                format.make(rate, 2), rate, {1 - number / 8, number / 8, number / 8}, speech};
            ASSERT_NE(member.host, nullptr) << format.name;
            ASSERT_TRUE(member.host->Activate(rate, Block));
            member.host->SetParameter(TestHost::Sensitivity, member.controls.sensitivity);
            member.host->SetParameter(TestHost::Strength, member.controls.strength);
            member.host->SetParameter(TestHost::UpperFrequency, member.controls.upperFrequency);
            members.push_back(std::move(member));
        }
    }
    for (uint32_t done = 0; done < speech[0].size(); done += Block) {
        for (Member& member : members) {
            float* pointers[2] = {member.output[0].data() + done, member.output[1].data() + done};
            member.host->Process(pointers, pointers, Block);
        }
    }
    for (size_t i = 0; i < members.size(); ++i) {
        const Audio expected = Expected(speech, members[i].rate, members[i].controls);
        EXPECT_EQ(Difference(members[i].output, expected), "") << GetFormats()[i / 2].name;
    }
}
