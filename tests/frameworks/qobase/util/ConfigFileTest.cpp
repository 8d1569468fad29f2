// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/ConfigFile.h"

#include "tests/support/FlushHook.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <bit>
#include <chrono>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Support::ReadText;
using Support::WriteText;
using Util::Bytes;
using Util::ConfigFile;

constexpr const char* ProductKey = "SOFTWARE/Norvane/LM6Pfgd";

class ConfigFileTest : public testing::Test {
protected:
    fs::path Configuration() const { return folders.Home().Path() / "config"; }
    fs::path ProductFile() const { return Configuration() / "Norvane/LM6Pfgd.json"; }
    /// All files of the vendor that were set aside.
    std::vector<fs::path> SetAside() const
    {
        std::vector<fs::path> paths;
        for (const auto& entry : fs::directory_iterator(Configuration() / "Norvane")) {
            if (entry.path().filename().string().starts_with("LM6Pfgd.json.corrupt-")) {
                paths.push_back(entry.path());
            }
        }
        return paths;
    }

    Support::UserFolders folders;
};

std::set<String> ValueNames(const ConfigFile& config, const String& subPath = {})
{
    std::set<String> names;
    config.GetValueNames(names, subPath);
    return names;
}

std::set<String> SubKeys(const ConfigFile& config, const String& subPath = {})
{
    std::set<String> names;
    config.GetSubKeys(names, subPath);
    return names;
}

TEST_F(ConfigFileTest, KeyPathsNameOneFileEachInsideTheConfigurationFolder)
{
    const std::pair<const char*, const char*> cases[] = {
        {ProductKey, "Norvane/LM6Pfgd.json"},
        {"SOFTWARE\\Norvane\\Other", "Norvane/Other.json"},
        {"Norvane/Headless", "Norvane/Headless.json"},
        {"SOFTWARE/../../../up/./../x", "up/x.json"},
        {"//A//B/", "A/B.json"},
        {"A/B:*?\n..", "A/B____.json"},
        {"..hidden/1.2", "..hidden/1.2.json"}};
    for (const auto& [keyPath, file] : cases) {
        ConfigFile(keyPath).WriteBool("x", true);
        EXPECT_TRUE(fs::is_regular_file(Configuration() / file)) << keyPath;
    }
    EXPECT_EQ(ConfigFile("SOFTWARE/A/B").GetKeyPath(), "SOFTWARE\\A\\B");
    for (const char* nowhere : {"", "SOFTWARE", "..", "/"}) {
        ConfigFile config(nowhere);
        config.WriteBool("x", true);
        config.DeleteKey("");
        config.DeleteKey("Norvane");
        EXPECT_FALSE(config.HasValue("x"));
    }
    EXPECT_TRUE(ConfigFile(ProductKey).HasValue("x"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folders.Home().Path()), {}), 1);
}

TEST_F(ConfigFileTest, FoldersThatAreMadeAreForTheUserAlone)
{
    fs::create_directory(folders.Home().Path() / "config");
    fs::permissions(Configuration(), fs::perms(0755));
    const mode_t former = umask(0);
    ConfigFile("SOFTWARE/Norvane/Deep/Key").WriteBool("x", true);
    umask(former);
    EXPECT_EQ(fs::status(Configuration() / "Norvane").permissions(), fs::perms(0700));
    EXPECT_EQ(fs::status(Configuration() / "Norvane/Deep").permissions(), fs::perms(0700));
    EXPECT_EQ(fs::status(Configuration()).permissions(), fs::perms(0755));
}

TEST_F(ConfigFileTest, ValuesComeBackToAnotherObjectAndFromTheDisk)
{
    const auto writeAll = [] {
        ConfigFile config(ProductKey);
        config.WriteString("a/b.c=\"\xc3\xa4\"", "line\nline");
        config.WriteString("", String());
        config.WriteFloat("float", std::bit_cast<float>(0x7fc12345U)); // a NaN with a payload
        config.WriteInt("int", INT32_MIN);
        config.WriteUInt("uint", UINT32_MAX);
        config.WriteBinary("binary", Bytes{0, 255, 10});
        config.WriteBool("bool", true);
    };
    WriteText(ProductFile(), "{}");
    fs::create_hard_link(ProductFile(), Configuration() / "former");
    writeAll(); // the object is gone afterwards, and with it what was kept in memory
    EXPECT_EQ(ReadText(Configuration() / "former"), "{}")
        << "a file is replaced, never written into";
    const ConfigFile config(ProductKey);
    EXPECT_EQ(config.ReadString("a/b.c=\"\xc3\xa4\"", ""), "line\nline");
    EXPECT_EQ(config.ReadString("", "default"), "");
    EXPECT_EQ(std::bit_cast<uint32_t>(config.ReadFloat("float", 0)), 0x7fc12345U);
    EXPECT_EQ(config.ReadInt("int", 0), INT32_MIN);
    EXPECT_EQ(config.ReadUInt("uint", 0), UINT32_MAX);
    EXPECT_EQ(config.ReadBinary("binary", {}), (Bytes{0, 255, 10}));
    EXPECT_TRUE(config.ReadBool("bool", false));
    EXPECT_EQ(ValueNames(config).size(), 7U);
}

TEST_F(ConfigFileTest, AnotherKindGivesTheDefaultAndNumbersAreOneKind)
{
    ConfigFile config(ProductKey);
    config.WriteString("text", "1");
    config.WriteInt("number", -1);
    config.WriteBinary("three", Bytes(3));
    config.WriteBinary("four", Bytes{0, 0, 0xc0, 0x3f}); // 1.5, lowest byte first
    config.WriteBinary("five", Bytes(5));
    EXPECT_EQ(config.ReadUInt("number", 0), 4294967295U);
    config.WriteUInt("number", 2);
    EXPECT_EQ(config.ReadInt("number", 0), 2);
    EXPECT_TRUE(config.ReadBool("number", false));
    EXPECT_EQ(config.ReadFloat("four", 0), 1.5F);
    for (const char* name : {"text", "number", "three", "five", "none"}) {
        EXPECT_EQ(config.ReadFloat(name, -7.5F), -7.5F) << name;
    }
    for (const char* name : {"text", "four", "none"}) {
        EXPECT_EQ(config.ReadInt(name, -7), -7) << name;
        EXPECT_TRUE(config.ReadBool(name, true)) << name;
    }
    EXPECT_EQ(config.ReadString("number", "default"), "default");
    EXPECT_EQ(config.ReadBinary("text", Bytes{9}), Bytes{9});
    EXPECT_TRUE(config.HasValue("text"));
    config.DeleteValue("text");
    config.DeleteValue("none");
    EXPECT_FALSE(config.HasValue("text"));
    EXPECT_EQ(ValueNames(config), (std::set<String>{"five", "four", "number", "three"}));
}

// A clock of coarse steps gives two changes one time: a file that is hardly older than the reading
// is read again. Whoever is kept waiting for too long in between tries once more.
TEST_F(ConfigFileTest, ReadsSeeASecondChangeWithinAStepOfTheClock)
{
    using Clock = fs::file_time_type::clock;
    const ConfigFile config(ProductKey);
    for (auto time = Clock::now() - 1h; Clock::now() - time > 50ms;) {
        time = Clock::now();
        WriteText(ProductFile(), R"({"x":{"Type":"Int","Value":1}})");
        fs::last_write_time(ProductFile(), time);
        EXPECT_EQ(config.ReadInt("x", 0), 1);
    }
    const auto time = fs::last_write_time(ProductFile());
    WriteText(ProductFile(), R"({"x":{"Type":"Int","Value":2}})");
    fs::last_write_time(ProductFile(), time);
    EXPECT_EQ(config.ReadInt("x", 0), 2);
}

TEST_F(ConfigFileTest, ChildKeysAreListedAndDeletedWithEverythingBelow)
{
    ConfigFile config(ProductKey);
    EXPECT_EQ(SubKeys(config), std::set<String>());
    config.WriteBool("own", true);
    ConfigFile("SOFTWARE/Norvane/LM6Pfgd/Child").WriteBool("x", true);
    ConfigFile deep("SOFTWARE/Norvane/LM6Pfgd/Empty/Deep");
    deep.WriteBool("y", true);
    ConfigFile("SOFTWARE/Norvane/LM6PfgdOther").WriteBool("z", true);
    EXPECT_EQ(SubKeys(config), (std::set<String>{"Child", "Empty"}));
    EXPECT_EQ(SubKeys(config, "Empty"), std::set<String>{"Deep"});
    EXPECT_EQ(ValueNames(config, "Empty/Deep"), std::set<String>{"y"});
    for (const char* noChild : {"..", "/", ".", "../LM6Pfgd"}) {
        config.DeleteKey(noChild);
    }
    EXPECT_EQ(SubKeys(config).size(), 2U);
    config.DeleteKey("Empty");
    config.DeleteKey("Child");
    EXPECT_EQ(SubKeys(config), std::set<String>());
    EXPECT_FALSE(deep.HasValue("y"));
    deep.WriteBool("y", true);
    config.DeleteKey("");
    EXPECT_EQ(ValueNames(config), std::set<String>());
    EXPECT_TRUE(deep.HasValue("y"));
    EXPECT_TRUE(ConfigFile("SOFTWARE/Norvane/LM6PfgdOther").HasValue("z"));
}

TEST_F(ConfigFileTest, DamagedFilesAreSetAsideByTheFirstWriteAndNeverLost)
{
    const std::string badEnd = R"({"x":{"Type":"Bool","Value":true}} )";
    const std::vector<std::string> contents{
        "", "{", "[]", R"({"x":1})", badEnd + "\xff", std::string("\x7f") + "ELF"};
    for (const std::string& content : contents) {
        WriteText(ProductFile(), content);
        ConfigFile config(ProductKey);
        EXPECT_FALSE(config.ReadBool("x", false)) << content;
        EXPECT_EQ(ReadText(ProductFile()), content) << "a read changes nothing";
        config.WriteString("y", content.substr(0, 1));
        EXPECT_EQ(config.ReadString("y", "none"), content.substr(0, 1).c_str());
    }
    std::multiset<std::string> kept;
    for (const fs::path& path : SetAside()) {
        kept.insert(ReadText(path));
    }
    EXPECT_EQ(kept, std::multiset<std::string>(contents.begin(), contents.end()));
}

TEST_F(ConfigFileTest, AHugeFileGivesDefaultsAndIsSetAside)
{
    WriteText(ProductFile(), "{");
    fs::resize_file(ProductFile(), (64U << 20) + 1);
    ConfigFile config(ProductKey);
    EXPECT_FALSE(config.HasValue("x"));
    config.WriteBool("x", true);
    EXPECT_TRUE(config.HasValue("x"));
    ASSERT_EQ(SetAside().size(), 1U);
    EXPECT_EQ(fs::file_size(SetAside()[0]), (64U << 20) + 1);
}

// Files of this process can have no more than 10 bytes, as on a disk without room.
class FullDisk {
public:
    FullDisk()
    {
        getrlimit(RLIMIT_FSIZE, &former);
        const rlimit small{10, former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &former); }

private:
    rlimit former{};
};

TEST_F(ConfigFileTest, WhatCannotBeWrittenIsKeptAndWrittenLater)
{
    for (const int32_t number : {2, 3}) {
        std::optional<ConfigFile> config(ProductKey);
        config->WriteInt("gone", 1);
        const std::string before = ReadText(ProductFile());
        {
            const FullDisk full;
            config->WriteInt("kept", number);
            config->DeleteValue("gone");
            config->WriteWaiting();
        }
        EXPECT_EQ(ReadText(ProductFile()), before);
        EXPECT_EQ(ConfigFile(ProductKey).ReadInt("kept", 0), number);
        EXPECT_FALSE(config->HasValue("gone"));
        // What another process writes meanwhile stays.
        WriteText(ProductFile(),
                  R"({"gone":{"Type":"Int","Value":1},"other":{"Type":"Int","Value":4}})");
        if (number == 2) {
            config->WriteWaiting();
            EXPECT_NE(ReadText(ProductFile()).find("kept"), std::string::npos);
        }
        config.reset(); // the end, at the latest
        EXPECT_EQ(ConfigFile(ProductKey).ReadInt("kept", 0), number);
        EXPECT_EQ(ValueNames(ConfigFile(ProductKey)), (std::set<String>{"kept", "other"}));
    }
}

TEST_F(ConfigFileTest, ACollectionIsWrittenOnceAtItsEnd)
{
    ConfigFile config(ProductKey);
    {
        const ConfigFile::Collection outer(config);
        const ConfigFile::Collection inner(config);
        const int before = Support::flushCount;
        for (int32_t i = 0; i < 9; ++i) {
            config.WriteInt("x", i);
            config.WriteWaiting();
            EXPECT_EQ(ConfigFile(ProductKey).ReadInt("x", -1), i);
        }
        config.DeleteKey("");
        config.WriteInt("y", 9);
        EXPECT_EQ(Support::flushCount, before);
        EXPECT_FALSE(fs::exists(ProductFile()));
    }
    EXPECT_NE(ReadText(ProductFile()).find("\"y\""), std::string::npos);
    EXPECT_EQ(ValueNames(config), std::set<String>{"y"});
}

TEST_F(ConfigFileTest, WhatCanNeverBeWrittenHarmsNobody)
{
    fs::create_directories(ProductFile()); // a folder where the file should be
    WriteText(Configuration() / "Plain", "");
    for (const char* keyPath : {ProductKey, "Plain/File", "Plain/Folder/File"}) {
        ConfigFile config(keyPath);
        config.WriteBool("x", true);
        config.DeleteKey("");
        EXPECT_FALSE(config.HasValue("x")) << keyPath;
        EXPECT_FALSE(config.Import("x=number:1")) << keyPath;
        EXPECT_EQ(SubKeys(config), std::set<String>());
    }
    EXPECT_TRUE(fs::is_directory(ProductFile()));
    EXPECT_TRUE(SetAside().empty());
}

TEST_F(ConfigFileTest, ImportTakesEachLineThatItCanRead)
{
    ConfigFile config(ProductKey);
    EXPECT_TRUE(config.Import("# comment=text:no\r\n;\n\na b=text: t=number:1 \r\n"
                              "n=number:4294967295\nm=number:-2147483648\nb=binary:00fFa1\n"
                              "e=binary:\n=text:"));
    EXPECT_EQ(config.ReadString("a b", ""), " t=number:1 ");
    EXPECT_EQ(config.ReadUInt("n", 0), UINT32_MAX);
    EXPECT_EQ(config.ReadInt("m", 0), INT32_MIN);
    EXPECT_EQ(config.ReadBinary("b", {}), (Bytes{0x00, 0xff, 0xa1}));
    EXPECT_TRUE(config.HasValue("e") && config.HasValue(""));
    const String badLines(
        "x|x=|x=1|x=float:1|x=number:|x=number:4294967296|x=number:1 |x=number:0x1|"
        "x=binary:0|x=binary:0g|x=binary:+1|x=Text:a");
    for (const String& bad : badLines.Split('|')) {
        EXPECT_FALSE(config.Import(bad + "\ny=text:" + bad)) << bad.c_str();
        EXPECT_FALSE(config.HasValue("x")) << bad.c_str();
        EXPECT_EQ(config.ReadString("y", ""), bad) << "the other lines are taken";
    }
}

} // namespace
