// SPDX-License-Identifier: ISC
// make_release_files FOLDER: what this version writes, once for each release.
#include "frameworks/qobase/util/ConfigFile.h"
#include "restoration/ui/dialog/historyfile/HistoryLogic.h"
#include "tests/data/ReleaseFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestHistoryDelegate.h"

#include <cstdio>

namespace {

using namespace ReleaseFiles;
namespace fs = std::filesystem;

bool MakeHistory(const fs::path& path,
                 const std::vector<uint8_t>& first,
                 const std::vector<uint8_t>& second)
{
    Support::TestHistoryDelegate delegate;
    delegate.state = first;
    const HistoryFile file(UI::Dialog::DialogHistoryForm, delegate);
    HistoryModel model;
    model.snapshots = {{first, Labels[0]}, {second, Labels[1]}};
    model.slots[2] = 1;
    return static_cast<bool>(file.Save(path.string(), model));
}

void MakeSettings(const fs::path& path, const Support::UserFolders& folders)
{
    Util::ConfigFile settings("SOFTWARE/Norvane/LM6Pfgd");
    settings.WriteString("PresetLastActive", Comment);
    settings.WriteString("PluginPresets/LastFolder", "/home/anna/presets");
    settings.WriteInt("FrozenSystemDelay", -1);
    settings.WriteFloat("Real", 0.1F);
    settings.WriteBinary("Bytes", Util::Bytes{0, 255, 7});
    fs::copy_file(folders.Home().Path() / "config/Norvane/LM6Pfgd.json",
                  path,
                  fs::copy_options::overwrite_existing);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: make_release_files FOLDER\n", stderr);
        return 2;
    }
    const fs::path folder = argv[1];
    fs::create_directories(folder);
    const Support::UserFolders folders;
    MakeSettings(folder / SettingsName, folders);
    TestHost::Instance instance(48000, 1);
    const std::vector<uint8_t> first = instance.SaveState();
    for (const auto& [index, value] : Values) {
        instance.Set(index, value);
    }
    const std::vector<uint8_t> session = instance.SaveState();
    Support::WriteText(folder / SessionName,
                       {reinterpret_cast<const char*>(session.data()), session.size()});
    const PresetRecord saved =
        instance.RunPreset(PresetOpSave, (folder / PresetName).string(), 0, Comment);
    return saved.failed == 0 && MakeHistory(folder / HistoryName, first, session) ? 0 : 1;
}
