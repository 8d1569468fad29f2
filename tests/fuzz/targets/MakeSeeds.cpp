// SPDX-License-Identifier: ISC
// make_seeds FOLDER: what our own writers make, a folder for each target, as its first inputs.
#include "frameworks/plugincore/instance/StateChunk.h"
#include "frameworks/qobase/util/Compression.h"
#include "frameworks/qobase/util/ConfigFile.h"
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/JSONDictionaryWriter.h"
#include "restoration/ui/dialog/historyfile/HistoryLogic.h"
#include "tests/fuzz/targets/HistoryTarget.h"
#include "tests/fuzz/targets/LiveInstance.h"
#include "tests/fuzz/targets/PresetTarget.h"
#include "tests/fuzz/targets/TargetFolder.h"

#include <cstdio>
#include <cstring>

namespace {

std::filesystem::path seeds;

void Put(const char* target, const char* name, Util::ByteSpan bytes)
{
    std::filesystem::create_directories(seeds / target);
    std::ofstream(seeds / target / name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

void Put(const char* target, const char* name, const String& text)
{
    const std::string_view view = text.View();
    Put(target, name, {reinterpret_cast<const uint8_t*>(view.data()), view.size()});
}

void MakeDictionarySeeds()
{
    Util::Dictionary inner;
    inner.Set("text", {String("\"\\ \xc3\xa4")});
    inner.Set("bytes", {Util::Bytes{0, 255, 7}});
    Util::Dictionary dictionary;
    dictionary.Set("unsigned", {4294967295U});
    dictionary.Set("signed", {-2147483647 - 1});
    dictionary.Set("real", {0.1});
    dictionary.Set("truth", {true});
    dictionary.Set("inner", {inner});
    dictionary.Set("array", {Util::DictionaryValue::Array{{1U}, {inner}}});
    Util::JSONDictionaryWriter writer;
    Put("dictionary", "empty", writer.GetText());
    Util::WriteDictionary(writer, dictionary);
    Put("dictionary", "all", writer.GetText());
}

void MakeChunkSeeds()
{
    Fuzz::LiveInstance instance;
    const std::vector<uint8_t> chunk = instance.Save();
    Put("chunk", "raw", chunk);
    Put("chunk", "text", *StateChunk::ReadText(chunk));
}

void MakeHistorySeeds(const HistoryFileForm& form, const char* target, const String& path)
{
    Support::TestHistoryDelegate state;
    const HistoryFile file(form, state);
    HistoryModel model;
    file.MakeInitialState(model);
    model.snapshots.push_back({{1, 2, 3}, "Second"});
    model.slots = {0, 1, std::nullopt, 0};
    if (!file.Save(path, model)) {
        std::abort();
    }
    Put(target, "two", *Util::ReadWholeFile(path));
}

void MakePresetSeeds(const String& path)
{
    Fuzz::FixedElements elements;
    Preset::LmPresetFile file(Fuzz::GetIdentity(), elements, nullptr);
    Preset::Snapshot snapshot = elements.TakeSnapshot();
    snapshot.sliders.push_back({.name = "Slider", .sliderId = 0, .max = 1});
    snapshot.checkBoxes.push_back({.name = "Box", .checkboxId = 0, .value = true});
    file.SetMetadata({{Preset::MetadataName::Comments, "<Some> \"text\""}});
    if (!file.Save(path, snapshot, Preset::TouchModified::Yes)) {
        std::abort();
    }
    const Util::Bytes text = *Util::ReadWholeFile(path);
    Put("preset", "plain", text);
    Util::Bytes compressed(4);
    const auto length = static_cast<uint32_t>(text.size());
    std::memcpy(compressed.data(), &length, sizeof length);
    const Util::Bytes stream = Util::Deflate(text);
    compressed.insert(compressed.end(), stream.begin(), stream.end());
    Put("preset", "compressed", compressed);
    Put("compressed_preset", "compressed", compressed);
}

void MakeSettingsSeeds(const Fuzz::TargetFolder& folder)
{
    Util::ConfigFile settings("SOFTWARE/Vendor/Product");
    settings.WriteString("Text", "some");
    settings.WriteFloat("PluginPresets/Real", 1.5F);
    settings.WriteInt("Number", -1);
    Put("settings",
        "three",
        *Util::ReadWholeFile(String((folder.GetPath() / "config/Vendor/Product.json").string())));
    Put("settings", "import", "# comment\nName=number:3\nOther=text:some\nThird=binary:00ff\n");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: make_seeds FOLDER\n", stderr);
        return 2;
    }
    seeds = argv[1];
    const Fuzz::TargetFolder folder;
    const String scratch = (folder.GetPath() / "scratch").string();
    MakeDictionarySeeds();
    MakeChunkSeeds();
    MakeHistorySeeds(FrameworkHistoryForm, "history", scratch);
    MakeHistorySeeds(UI::Dialog::DialogHistoryForm, "dialog_history", scratch);
    MakePresetSeeds(scratch);
    MakeSettingsSeeds(folder);
    return 0;
}
