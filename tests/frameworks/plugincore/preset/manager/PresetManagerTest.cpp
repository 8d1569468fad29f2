// SPDX-License-Identifier: ISC
// What the preset dialog does: folders, list, names, applying, removing, importing.
#include "frameworks/plugincore/preset/manager/PresetManager.h"
#include "tests/frameworks/plugincore/preset/file/PresetFixture.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

using namespace Preset;
using namespace PresetTests;

namespace {

namespace fs = std::filesystem;

struct Manager : testing::Test, Fixture {
    Support::UserFolders user; // before the settings
    Util::ConfigFile settings{"SOFTWARE/Test/Presets"};
    PresetMetadata metadata;
    std::vector<std::string> loaded;
    bool keepsSettings = true;
    std::unique_ptr<PresetManager> manager = Make();

    std::unique_ptr<PresetManager> Make()
    {
        return std::make_unique<PresetManager>(PresetManager::Setup{
            identity,
            folder / "user",
            folder / "factory",
            settings,
            keepsSettings,
            dsp,
            metadata,
            [this](const String& name) { loaded.emplace_back(name.c_str()); }});
    }
    // A file in one of the two folders; "Amount" is 9 in it.
    std::string
    Put(const std::string& name, const std::string& from = "", const std::string& to = "")
    {
        return Write(name,
                     Replaced(Replaced(DefaultFile, "Amount\" Value=\"5\"", "Amount\" Value=\"9\""),
                              from,
                              to));
    }
    std::string Names()
    {
        manager->Refresh();
        std::string result;
        for (const PresetEntry& entry : manager->GetEntries()) {
            result += entry.name.ToStdString() + (entry.fault.IsEmpty() ? "|" : "!|");
        }
        return result;
    }
    PresetEntry Find(const std::string& name)
    {
        manager->Refresh();
        const auto entry = manager->Find(name);
        EXPECT_TRUE(entry) << name;
        return entry.value_or(PresetEntry());
    }
};

template <typename T>
std::string Text(const Util::Expected<T>& result)
{
    return result ? "" : result.GetDescription().ToStdString();
}

constexpr const char* Newer = "Preset was created in a newer, incompatible version";
constexpr const char* Earlier = "Preset was created in an earlier, incompatible version";
constexpr const char* Invalid = "Error: invalid preset, please select another.";

} // namespace

TEST_F(Manager, ListsWhatIsThereAndWhatIsWrongWithIt)
{
    EXPECT_EQ(Names(), "Factory settings|");
    EXPECT_FALSE(fs::exists(folder / "user")); // looking makes no folder
    manager->Open();
    Put("factory/Strong.xml",
        "PluginBuild",
        "ReadOnly=\"1\" Comments=\"Lots &amp; lots\" PluginBuild");
    Put("user/beta.xml");
    Put("user/Alpha.XML");
    Put("user/gamma.xml", "</Puffguard>", "<cut"); // its head is whole, as in the next
    Put("user/delta.xml", "</LM6Pfgd>", "<Sliders><Slider/></Sliders></LM6Pfgd>");
    Put("user/no preset.txt");
    Put("user/far.xml", "PluginVer=\"6000\"", "PluginVer=\"7000\"");
    Put("user/old.xml", "PresetVer=\"1\"", "PresetVer=\"0\"");
    Put("user/other.xml", "<LM6Pfgd", "<LM6Other");
    Put("user/bad.xml", "PresetVer=\"1\"", "PresetVer=1");
    Put("user/long.xml",
        "PluginBuild",
        "Comments=\"" + std::string(10'000, 'c') + " > ' <\" PluginBuild");
    fs::create_directory(folder / "user/folder.xml");
    fs::create_symlink(folder / "nowhere", folder / "user/gone.xml");
    EXPECT_EQ(Names(),
              "Factory settings|Settings before you opened the preset manager|Strong|"
              "Alpha|bad!|beta|delta!|far!|gamma!|long|old!|other!|");
    EXPECT_EQ(Find("bad").fault, Invalid);
    EXPECT_EQ(Find("far").fault, Newer);
    EXPECT_EQ(Find("old").fault, Earlier);
    EXPECT_EQ(Find("other").fault, Invalid);
    EXPECT_EQ(Find("Strong").GetComment(), "Lots & lots");
    EXPECT_EQ(Find("long").GetComment().Length(), 10'006U);
}

TEST_F(Manager, FindsAName)
{
    Put("factory/Strong.xml");
    Put("factory/Soft.xml");
    Put("user/strong.xml");
    Put("user/Soft.xml");
    EXPECT_EQ(Find("Strong").group, PresetGroup::Factory);
    EXPECT_EQ(Find("Soft").group, PresetGroup::User);
    EXPECT_EQ(Find("Strong").note, "");
    std::string notes;
    for (const PresetEntry& entry : manager->GetEntries()) {
        notes += entry.note.ToStdString() + "|";
    }
    EXPECT_EQ(notes, "|Hidden by your preset of the same name.||||"); // the factory's "Soft"
    EXPECT_EQ(Find("STRONG").group, PresetGroup::User);
    EXPECT_EQ(Find("factory settings").group, PresetGroup::BuiltIn);
    EXPECT_FALSE(manager->Find("Stron"));
    EXPECT_FALSE(manager->Find(""));
}

TEST_F(Manager, TakesAFolderThatCanBeOne)
{
    const std::string usual = folder / "user/";
    EXPECT_EQ(manager->GetFolder().Get(), usual);
    ASSERT_TRUE(manager->GetFolder().Set(folder / "mine/deep"));
    EXPECT_EQ(manager->GetFolder().Get(), folder / "mine/deep/"); // ends in a separator
    EXPECT_EQ(settings.ReadString("PresetFolder", ""), folder / "mine/deep");
    ASSERT_TRUE(manager->Save("one", "", Existing::Replace));
    EXPECT_TRUE(fs::exists(folder / "mine/deep/one.xml"));

    ASSERT_TRUE(manager->GetFolder().Set(""));
    EXPECT_EQ(manager->GetFolder().Get(), usual);

    const std::string home = user.Home() / "";
    const std::pair<const char*, const char*> expanded[] = {
        {"~/p", "p/"}, {"~", ""}, {"%USERDOCS%\\foo", "Documents/foo/"}};
    for (const auto& [chosen, path] : expanded) {
        ASSERT_TRUE(manager->GetFolder().Set(chosen));
        EXPECT_EQ(manager->GetFolder().Get(), home + path);
        EXPECT_EQ(Names(), "Factory settings|");
    }
}

// Each host has another working directory.
TEST_F(Manager, RefusesAFolderThatIsRelative)
{
    const fs::path former = fs::current_path();
    fs::create_directory(folder / "host");
    fs::current_path(folder / "host");
    for (const std::string chosen : {"presets", "./p", "~x/p", "C:\\Users\\x", "a%USERDOCS%"}) {
        EXPECT_EQ(Text(manager->GetFolder().Set(chosen)),
                  "The preset folder " + chosen + " is no full path.");
        EXPECT_EQ(Names(), "Factory settings|");
        settings.WriteString("PresetFolder", chosen); // by hand
        EXPECT_EQ(Names(), "Factory settings|" + chosen + "!|");
        EXPECT_EQ(Find(chosen).fault, "The preset folder " + String(chosen) + " is no full path.");
        EXPECT_FALSE(manager->Apply(Find(chosen)));
        EXPECT_FALSE(manager->Remove(Find(chosen)));
        settings.DeleteValue("PresetFolder");
    }
    EXPECT_TRUE(fs::is_empty(folder / "host"));
    fs::current_path(former);
}

// A user who may not write everywhere, as an administrator may.
class PlainUser {
public:
    PlainUser()
    {
        if (formerUser == 0) {
            EXPECT_EQ(seteuid(65534), 0);
        }
    }
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;
    ~PlainUser() { EXPECT_EQ(seteuid(formerUser), 0); }

private:
    const uid_t formerUser = geteuid();
};

struct PlainManager : PlainUser, Manager {};

TEST_F(PlainManager, ListsAndAppliesFromAFolderThatCannotBeWritten)
{
    Put("team/nine.xml");
    const std::string source = Put("from/eight.xml", "Value=\"9\"", "Value=\"8\"");
    const std::string team = folder / "team/";
    ASSERT_TRUE(manager->GetFolder().Set(team));
    fs::permissions(team, fs::perms(0555));
    EXPECT_EQ(Names(), "Factory settings|nine|");
    EXPECT_EQ(Text(manager->Apply(Find("nine"))), "");
    EXPECT_EQ(Amount(), 9.0F);
    for (const char* const name : {"new", ""}) {
        const auto saved = manager->Save(name, "", Existing::Replace);
        EXPECT_EQ(Text(saved), "The preset folder " + team + " cannot be written.");
    }
    const auto imported = manager->Import(source);
    EXPECT_EQ(Text(imported), "The file " + team + "eight.xml cannot be written.");
    EXPECT_EQ(imported.GetError().GetDetail(), "Permission denied");
    EXPECT_EQ(Text(manager->Remove(Find("nine"))), "Error removing preset nine: Permission denied");
    EXPECT_EQ(Names(), "Factory settings|nine|");
    fs::permissions(team, fs::perms(0755));
    EXPECT_FALSE(fs::exists(folder / "user"));
}

// Whoever opened one would wait for somebody to write to it, with the lock of the UI in hand.
TEST_F(Manager, RefusesPipesAtOnce)
{
    const std::string pipe = folder / "pipe.xml";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto applied = manager->ApplyFile(pipe);
    EXPECT_EQ(Text(applied), "The file " + pipe + " cannot be read.");
    EXPECT_EQ(applied.GetError().GetDetail(), "Could not open file: is no regular file");
    EXPECT_EQ(Text(manager->Import(pipe)), "The file " + pipe + " cannot be read.");
    EXPECT_FALSE(manager->SaveFile(pipe, "", Existing::Replace));
    EXPECT_TRUE(fs::is_fifo(pipe));
}

// Where the chosen folder can't be, what is saved and imported is listed and found again.
TEST_F(Manager, KeepsToOneFolder)
{
    const std::string source = Put("from/came.xml");
    Write("file", "in the way");
    const std::string unusable[] = {folder / "file",
                                    folder / "file/below/deep",
                                    "/proc/self/nothing can be made here",
                                    folder / std::string(300, 'n')};
    for (const std::string& chosen : unusable) {
        ASSERT_TRUE(manager->GetFolder().Set(chosen));
        EXPECT_EQ(manager->GetFolder().Get(), folder / "user/") << chosen;
        fs::remove_all(folder / "user");
        EXPECT_EQ(Names(), "Factory settings|");
        EXPECT_EQ(Text(manager->Save("saved", "", Existing::Keep)), "");
        EXPECT_EQ(Text(manager->Import(source)), "");
        EXPECT_EQ(Text(manager->Import(source)), "");
        EXPECT_EQ(Names(), "Factory settings|came|came 2|saved|") << chosen;
        EXPECT_TRUE(fs::exists(folder / "user/came 2.xml"));
    }
}

TEST_F(Manager, TellsOfAFolderThatCannotBeListed)
{
    Write("user", "a file in the way");
    const PresetEntry row = Find(folder / "user/");
    EXPECT_EQ(row.fault.ToStdString(),
              "The folder " + folder / "user/" + " cannot be read. (Not a directory)");
    EXPECT_FALSE(manager->Apply(row));
    EXPECT_FALSE(manager->Save("one", "", Existing::Replace));
    fs::remove(folder / "user");
    EXPECT_EQ(Names(), "Factory settings|");
}

TEST_F(Manager, ReplacesOnlyWhenTold)
{
    const std::string path = Put("user/Mine.xml");
    const std::string before = Read(path);
    EXPECT_EQ(Text(manager->Save("Mine", "", Existing::Keep)),
              "The preset " + path + " exists already.");
    EXPECT_EQ(Text(manager->Save("MINE", "", Existing::Keep)),
              "The preset " + path + " exists already.");
    EXPECT_EQ(Text(manager->SaveFile(path, "", Existing::Keep)),
              "The preset " + path + " exists already.");
    EXPECT_EQ(Read(path), before);
    EXPECT_TRUE(metadata.GetType().IsEmpty());
    const auto saved = manager->Save("MINE", "", Existing::Replace);
    ASSERT_TRUE(saved) << Text(saved);
    EXPECT_EQ(*saved, path); // not a second file beside it
    EXPECT_NE(Read(path), before);
    EXPECT_EQ(Names(), "Factory settings|Mine|");
    // What no list shows is as much in the way.
    fs::create_symlink(folder / "nowhere", folder / "user/link.xml");
    EXPECT_EQ(Text(manager->Save("link", "", Existing::Keep)),
              "The preset " + (folder / "user/link.xml") + " exists already.");
    fs::create_directory(folder / "user/New Preset.xml");
    const auto unnamed = manager->Save("", "", Existing::Replace);
    ASSERT_TRUE(unnamed) << Text(unnamed);
    EXPECT_EQ(*unnamed, folder / "user/New Preset 2.xml");
}

TEST_F(Manager, NamesAndComments)
{
    Put("user/New Preset.xml");
    Put("user/Voice.xml");
    Put("user/Voice 2.xml");
    Put("factory/Only here.xml");
    manager->Refresh();
    EXPECT_EQ(manager->MakeFreeName(""), "New Preset 2");
    EXPECT_EQ(manager->MakeFreeName("VOICE"), "VOICE 3");
    EXPECT_EQ(manager->MakeFreeName("Only here"), "Only here");
    EXPECT_EQ(manager->MakeFreeName("factory SETTINGS"), "factory SETTINGS 2");
    std::vector<std::string> refused{
        " ", "   ", ".hidden", "..", "a\nb", "\x7F", "Factory Settings", Texts::FormerSettings};
    for (const char forbidden : std::string("/\\:*?\"<>|")) {
        refused.push_back(std::string("a") + forbidden + "b");
    }
    for (const std::string& name : refused) {
        EXPECT_FALSE(manager->Save(name, "", Existing::Replace)) << name;
    }
    EXPECT_FALSE(manager->Import(Put("from/.hidden.xml")));
    EXPECT_EQ(Names(), "Factory settings|Only here|New Preset|Voice|Voice 2|");
    EXPECT_TRUE(CheckName("50 % %1 & 'more'.xml \xC3\xA4"));

    const char* prompt = "[Click here to enter a comment]";
    EXPECT_EQ(PresetManager::GetShownComment(""), prompt);
    ASSERT_TRUE(manager->Save("shown", prompt, Existing::Replace));
    EXPECT_EQ(Read(folder / "user/shown.xml").find("Comments"), std::string::npos);
    ASSERT_TRUE(manager->Save("said", "%1 said", Existing::Replace));
    EXPECT_EQ(Find("said").GetComment(), "%1 said");
    EXPECT_EQ(metadata.GetComment(), "%1 said");
}

TEST_F(Manager, MakesNamesGoodForEveryFileSystem)
{
    const std::pair<const char*, const char*> saved[] = {{"CON", "CON_"},
                                                         {"aux.loud", "aux_.loud"},
                                                         {"Lpt1 ", "Lpt1_"},
                                                         {"Mine. .", "Mine"},
                                                         {"COM10", "COM10"},
                                                         {"Console", "Console"}};
    for (const auto& [wanted, name] : saved) {
        EXPECT_EQ(manager->Save(wanted, "", Existing::Keep).Value(),
                  (folder / "user/") + name + ".xml");
    }
    const std::pair<const char*, const char*> imported[] = {
        {"from/Factory settings.xml", "Factory settings 2"},
        {"from/Settings before you opened the preset manager.xml",
         "Settings before you opened the preset manager 2"},
        {"from/nul.xml", "nul_"},
        {"from/Live: \"low\".xml", "Live- -low-"},
        {"from/end. .xml", "end"}};
    for (const auto& [file, name] : imported) {
        EXPECT_EQ(manager->Import(Put(file)).Value(), name);
    }
}

TEST_F(Manager, KeepsItsListTrue)
{
    manager->Refresh();
    ASSERT_TRUE(manager->Save("new", "", Existing::Keep));
    ASSERT_TRUE(manager->SaveFile(folder / "user/path.xml", "", Existing::Keep));
    EXPECT_TRUE(manager->Find("new"));
    EXPECT_TRUE(manager->Find("path"));
    // One that turns bad while it is listed.
    const PresetEntry entry = *manager->Find("new");
    Put("user/new.xml", "</Puffguard>", "");
    ASSERT_FALSE(manager->Apply(entry));
    EXPECT_EQ(manager->Find("new")->fault, Invalid);
}

TEST_F(Manager, AppliesAPresetAndRemembersItAndWhetherItIsShown)
{
    EXPECT_EQ(manager->GetLastActive(), "Default");
    Put("user/nine.xml");
    host.gestures.clear();
    ASSERT_EQ(Text(manager->Apply(Find("nine"))), "");
    EXPECT_EQ(Amount(), 9.0F);
    EXPECT_EQ(manager->GetLastActive(), "nine");
    EXPECT_EQ(settings.ReadString("PresetLastActive", ""), "nine");
    EXPECT_EQ(loaded, std::vector<std::string>{"nine"});
    EXPECT_EQ(metadata.GetType(), "LM6Pfgd");

    SetAmount(2.0F);
    manager->Open();
    ASSERT_TRUE(manager->Apply(Find("nine")));
    ASSERT_TRUE(manager->Apply(Find("Settings before you opened the preset manager")));
    EXPECT_EQ(Amount(), 2.0F);
    ASSERT_TRUE(manager->Apply(Find("Factory settings")));
    EXPECT_EQ(Amount(), 5.0F);

    EXPECT_FALSE(manager->IsShownAtStartup());
    manager->SetShownAtStartup(true);
    EXPECT_TRUE(settings.ReadBool("PresetShowAtStartup", false));
    keepsSettings = false;
    manager = Make();
    EXPECT_TRUE(manager->IsShownAtStartup());
    ASSERT_TRUE(manager->Apply(Find("nine")));
    EXPECT_EQ(manager->GetLastActive(), "Factory settings");
}

// The value that audio has moved to since is what an application is measured against.
TEST_F(Manager, SetsAValueThatIsStaleHere)
{
    const std::string path = Put("user/nine.xml");
    SetAmount(9.0F);
    Element().SetFloatValue(0, 1.0F, DSP::Context::Process, {});
    ASSERT_TRUE(manager->ApplyFile(path));
    EXPECT_EQ(Element().GetFloatValue(0, DSP::Context::Process), 9.0F);
}

TEST_F(Manager, SaysWhyAPresetCannotBeApplied)
{
    Put("user/far.xml", "PluginVer=\"6000\"", "PluginVer=\"7000\"");
    Put("user/old.xml", "PresetVer=\"1\"", "PresetVer=\"0\"");
    Put("user/cut.xml", "</Puffguard>", "");
    Put("user/gone.xml");
    Put("user/next.xml");
    SetAmount(3.0F);
    const PresetEntry gone = Find("gone");
    fs::remove(gone.path.c_str());
    const std::tuple<PresetEntry, const char*, const char*> cases[] = {
        {gone, Invalid, "Could not open file: No such file or directory"},
        {Find("far"), Newer, "written by 7.0, this is 6.0"},
        {Find("old"), Earlier, "its parameters are of version 0, these of 1"},
    };
    for (const auto& [entry, message, detail] : cases) {
        const auto applied = manager->Apply(entry);
        EXPECT_EQ(Text(applied), message);
        EXPECT_EQ(applied.GetError().GetDetail(), detail);
    }
    EXPECT_EQ(Text(manager->Apply(Find("cut"))), Invalid);
    EXPECT_EQ(Amount(), 3.0F);
    EXPECT_TRUE(loaded.empty());
    EXPECT_EQ(manager->GetLastActive(), "Default");
    ASSERT_TRUE(manager->Apply(Find("next")));
    EXPECT_EQ(Amount(), 9.0F);
}

TEST_F(Manager, KeepsReadOnlyPresets)
{
    const std::string path = Put("user/kept.xml", "PluginBuild", "ReadOnly=\"1\" PluginBuild");
    const std::string before = Read(path);
    EXPECT_FALSE(manager->Save("kept", "", Existing::Replace));
    EXPECT_FALSE(manager->SaveFile(path, "", Existing::Replace));
    EXPECT_FALSE(manager->Remove(Find("kept")));
    EXPECT_FALSE(manager->Remove(Find("Factory settings")));
    EXPECT_EQ(Read(path), before);

    Put("user/%1.xml", "PluginBuild", "ReadOnly=\"0\" PluginBuild");
    const PresetEntry entry = Find("%1");
    EXPECT_EQ(Texts::RemoveQuestion(entry.name), "Are you sure you want to remove '%1'?");
    ASSERT_TRUE(manager->Remove(entry));
    EXPECT_FALSE(manager->Find("%1"));
    EXPECT_EQ(Text(manager->Remove(entry)), "Error removing preset %1: No such file or directory");
}

TEST_F(Manager, SaysWhyAFileCannotBeImported)
{
    const std::string at = folder / "from/";
    const std::tuple<const char*, const char*, const std::string> cases[] = {
        {"</Puffguard>", "", "The file " + at + "bad.xml is not a valid preset file."},
        {"</LM6Pfgd>",
         "<Sliders><Slider/></Sliders></LM6Pfgd>",
         "The file " + at + "bad.xml is not a valid preset file."},
        {"PresetVer=\"1\"", "", "The file " + at + "bad.xml is not a valid preset file."},
        {"PluginVer=\"6000\"", "PluginVer=\"7000\"", Newer},
        {"PluginVer=\"6000\"", "PluginVer=\"2000\"", Earlier},
    };
    for (const auto& [from, to, message] : cases) {
        EXPECT_EQ(Text(manager->Import(Put("from/bad.xml", from, to))), message);
    }
    std::string other = Replaced(Replaced(DefaultFile, "<LM6Pfgd", "<%1"), "</LM6Pfgd", "</%1");
    other = Replaced(Replaced(other, "<%1", "<LMOther"), "</%1", "</LMOther");
    EXPECT_EQ(Text(manager->Import(Write("from/other %2.xml", other))),
              "The file \"" + at +
                  "other %2.xml\" is a preset for LMOther, and cannot be used in this plugin.");
    EXPECT_EQ(Text(manager->Import(Write("from/page.xml", "<?xml version='1.0'?><html/>"))),
              "The file " + at + "page.xml is not a preset for this plug-in.");
    EXPECT_EQ(Text(manager->Import(at + "missing.xml")),
              "The file " + at + "missing.xml cannot be read.");

    Write("user", "a file where the folder should be");
    EXPECT_EQ(Text(manager->Import(Put("from/good.xml"))),
              "The file " + (folder / "user/good.xml") + " cannot be written.");
    EXPECT_EQ(Amount(), 5.0F);
}

TEST_F(Manager, ImportsUnderAFreeName)
{
    Put("user/Voice.xml");
    const std::string source = Put("from/voice.xml", "Value=\"9\"", "Value=\"8\"");
    const auto imported = manager->Import(source);
    ASSERT_TRUE(imported) << Text(imported);
    EXPECT_EQ(*imported, "voice 2");
    fs::create_symlink(folder / "nowhere", folder / "user/voice 3.xml");
    EXPECT_EQ(manager->Import(source).Value(), "voice 4");
    EXPECT_FALSE(fs::exists(folder / "nowhere"));
    EXPECT_EQ(Read(folder / "user/voice 2.xml"), Read(source));
    EXPECT_TRUE(manager->Find("voice 2"));
    EXPECT_EQ(manager->GetImportFolder(), folder / "from");
    EXPECT_EQ(settings.ReadString("PluginPresets/LastFolder", ""), folder / "from");
    EXPECT_EQ(Amount(), 5.0F); // it is chosen by the user, not by its coming
}

TEST(PresetNames, AreGuessedFromWhatIsNearIt)
{
    const std::vector<String> names{"Gentle", "Strong", "Low voice", "Live - low latency"};
    const std::pair<std::string, std::string> cases[] = {{"Stron", "Strong"},
                                                         {"STORNG", "Strong"},
                                                         {"low-voice", "Low voice"},
                                                         {"Live/low latency", "Live - low latency"},
                                                         {"my own Strong", ""},
                                                         {"Mine", ""},
                                                         {"", ""},
                                                         {std::string(5000, 'x'), ""}};
    for (const auto& [wanted, nearest] : cases) {
        EXPECT_EQ(FindNearestName(wanted, names).ToStdString(), nearest) << wanted;
    }
    EXPECT_EQ(JoinNames(names, 45), "Gentle, Strong, Low voice, Live - low latency");
    EXPECT_EQ(JoinNames(names, 44), "Gentle, Strong, Low voice, ...");
    EXPECT_EQ(JoinNames(names, 29), "Gentle, Strong, ...");
    EXPECT_EQ(JoinNames(names, 7), "...");
    EXPECT_EQ(JoinNames({}, 7), "");
}
