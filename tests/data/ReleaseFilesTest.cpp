// SPDX-License-Identifier: ISC
// What every release has written still reads, with every value that was put in.
#include "tests/data/ReleaseFiles.h"

#include "frameworks/qobase/util/ConfigFile.h"
#include "frameworks/qobase/util/File.h"
#include "restoration/ui/dialog/historyfile/HistoryLogic.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestHistoryDelegate.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace ReleaseFiles;
namespace fs = std::filesystem;

std::vector<fs::path> Releases()
{
    std::vector<fs::path> folders;
    for (const auto& entry : fs::directory_iterator(PUFFGUARD_RELEASES)) {
        if (entry.is_directory()) {
            folders.push_back(entry.path());
        }
    }
    return folders;
}

void ExpectValues(TestHost::Instance& instance)
{
    for (const auto& [index, value] : Values) {
        EXPECT_FLOAT_EQ(instance.Value(index), value) << "parameter " << index;
    }
}

Util::Bytes ReadBytes(const fs::path& path)
{
    const auto bytes = Util::ReadWholeFile(path.string());
    EXPECT_TRUE(bytes) << path;
    return bytes ? *bytes : Util::Bytes();
}

class ReleaseFilesTest : public testing::TestWithParam<fs::path> {
protected:
    Support::UserFolders folders;
};

TEST_P(ReleaseFilesTest, PresetAndSessionSetTheirValues)
{
    TestHost::Instance byPreset(48000, 1);
    TestHost::Instance bySession(44100, 2);
    const PresetRecord applied =
        byPreset.RunPreset(PresetOpApply, (GetParam() / PresetName).string());
    EXPECT_EQ(applied.failed, 0) << applied.message;
    ExpectValues(byPreset);
    EXPECT_TRUE(bySession.LoadState(ReadBytes(GetParam() / SessionName)));
    ExpectValues(bySession);
}

TEST_P(ReleaseFilesTest, HistoryHasItsStepsAndSlots)
{
    TestHost::Instance instance(48000, 1);
    Support::TestHistoryDelegate delegate;
    delegate.state = instance.SaveState();
    HistoryModel model;
    HistoryFile(UI::Dialog::DialogHistoryForm, delegate)
        .Load((GetParam() / HistoryName).string(), model);
    ASSERT_EQ(model.snapshots.size(), Labels.size());
    for (size_t i = 0; i < Labels.size(); ++i) {
        EXPECT_EQ(model.snapshots[i].label, Labels[i]);
    }
    EXPECT_EQ(model.slots[2], 1U);
    EXPECT_TRUE(instance.LoadState(model.snapshots[1].bytes));
    ExpectValues(instance);
}

TEST_P(ReleaseFilesTest, SettingsKeepEveryKindOfValue)
{
    const fs::path place = folders.Home().Path() / "config/Norvane";
    fs::create_directories(place);
    fs::copy_file(GetParam() / SettingsName, place / "LM6Pfgd.json");
    const Util::ConfigFile settings("SOFTWARE/Norvane/LM6Pfgd");
    EXPECT_EQ(settings.ReadString("PresetLastActive", ""), Comment);
    EXPECT_EQ(settings.ReadString("PluginPresets/LastFolder", ""), "/home/anna/presets");
    EXPECT_EQ(settings.ReadInt("FrozenSystemDelay", 0), -1);
    EXPECT_EQ(settings.ReadFloat("Real", 0), 0.1F);
    EXPECT_EQ(settings.ReadBinary("Bytes", {}), (Util::Bytes{0, 255, 7}));
}

INSTANTIATE_TEST_SUITE_P(Each,
                         ReleaseFilesTest,
                         testing::ValuesIn(Releases()),
                         [](const auto& release) {
                             std::string name = release.param.filename().string();
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

} // namespace
