// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Path.h"
#include "frameworks/qobase/util/File.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>
#include <utility>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
namespace Path = Util::Path;

TEST(Path, JoinsWithOneSeparator)
{
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"a", "b", "a/b"},
        {"a/", "b", "a/b"},
        {"a//", "//b/c", "a/b/c"},
        {"/", "b", "/b"},
        {"", "b", "b"},
        {"", "/b", "/b"},
        {"a", "", "a/"},
    };
    for (const auto& [folder, file, joined] : rows) {
        EXPECT_EQ(Path::Join(folder, file), joined);
    }
}

TEST(Path, TakesPathsApart)
{
    const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
        {"a/b.c.xml", "a", "b.c.xml", "b.c"},
        {"/b", "/", "b", "b"},
        {"/a.b/c", "/a.b", "c", "c"},
        {"b.xml", "", "b.xml", "b"},
        {"a/", "a", "", ""},
        {"a/.hidden", "a", ".hidden", ".hidden"},
        {"a/b.", "a", "b.", "b"},
        {"", "", "", ""},
    };
    for (const auto& [path, folder, name, stem] : rows) {
        EXPECT_EQ(Path::GetFolder(path), folder) << path;
        EXPECT_EQ(Path::GetFileName(path), name) << path;
        EXPECT_EQ(Path::GetStem(path), stem) << path;
    }
    EXPECT_EQ(Path::ToNative("a\\b/c"), "a/b/c");
}

std::string MakeText(const std::string& path, Path::Recursive recursive)
{
    const auto result = Path::MakeDirectory(path, recursive);
    if (!result && result.GetError().As<Util::File::Error>() == nullptr) {
        return "not a file's error";
    }
    return result ? "success" : result.GetDescription().ToStdString();
}

TEST(Path, MakesFoldersOrTellsWhyNot)
{
    using enum Path::Recursive;
    const Support::TemporaryFolder folder;
    const std::string place = folder.Path().string();
    std::ofstream(folder / "file") << "in the way";
    const std::string malformed = "Create(true) failed.  Input looks like a malformed UNC path";
    const std::tuple<std::string, Path::Recursive, std::string> rows[] = {
        {folder / "a/b", No, "_wmkdir() failed"},
        {folder / "a/b/c", Yes, "success"},
        {folder / "a/b/c", Yes, "success"},
        {folder / "a/b/d", No, "success"},
        {folder / "a/b/d/", No, "success"},
        {folder / "s//t///u/", Yes, "success"},
        {folder / "file", No, "_wmkdir() failed"},
        {folder / "file/below", Yes, "_wmkdir() failed"},
        {folder / std::string("cut\0off", 7), Yes, "_wmkdir() failed"},
        {"", Yes, "path parsing failed"},
        {"", No, "path parsing failed"},
        {"//", Yes, malformed},
        {"//server", Yes, malformed},
        {"//server/", Yes, malformed},
        {"\\\\server", Yes, malformed},
        {"/", Yes, "success"},
        {"///", Yes, "success"},
        {"/tmp", No, "success"},
        {"//" + place, Yes, "success"}, // three separators
        {"/" + place + "/e", Yes, "success"},
    };
    for (const auto& [path, recursive, text] : rows) {
        EXPECT_EQ(MakeText(path, recursive), text) << path;
    }
    for (const char* const made : {"a/b/c", "a/b/d", "s/t/u", "e"}) {
        EXPECT_TRUE(Path::IsDirectory(folder / made)) << made;
    }
    EXPECT_FALSE(Path::IsDirectory(folder / "file"));
    EXPECT_FALSE(Path::IsDirectory(folder / "cut"));
}

TEST(Path, ListsFilesOfOneExtensionInByteOrder)
{
    const Support::TemporaryFolder folder;
    for (const char* const name : {"b.xml", "B.XML", "a.Xml", "\xc3\xa4.xml", "c.txt", "xml"}) {
        std::ofstream(folder / name) << "x";
    }
    fs::create_directory(folder / "folder.xml");
    fs::create_symlink("b.xml", folder / "link.xml");
    fs::create_symlink("none", folder / "dangling.xml");
    std::vector<String> expected;
    for (const char* const name : {"B.XML", "a.Xml", "b.xml", "link.xml", "\xc3\xa4.xml"}) {
        expected.emplace_back(folder / name);
    }
    EXPECT_EQ(Path::ListFiles(folder.Path().string(), ".xml"), expected);
    EXPECT_TRUE(Path::ListFiles(folder / "none", ".xml").empty());
    EXPECT_TRUE(Path::ListFiles(folder / "b.xml", ".xml").empty());
}

TEST(UserFolders, FollowTheEnvironment)
{
    const Support::UserFolders user;
    setenv("HOME", "/home/x//", 1);
    setenv("XDG_DATA_HOME", "/data/", 1);
    setenv("XDG_CONFIG_HOME", "relative", 1);
    EXPECT_EQ(Path::GetHomeFolder(), "/home/x");
    EXPECT_EQ(Path::GetApplicationDataFolder(), "/data");
    EXPECT_EQ(Path::GetConfigurationFolder(), "/home/x/.config");
    unsetenv("XDG_DATA_HOME");
    setenv("HOME", "/", 1);
    EXPECT_EQ(Path::GetHomeFolder(), "/");
    EXPECT_EQ(Path::GetApplicationDataFolder(), "/.local/share");
    const passwd* const record = getpwuid(geteuid());
    unsetenv("HOME");
    EXPECT_EQ(Path::GetHomeFolder(), record != nullptr ? record->pw_dir : "/");
}

TEST(UserFolders, ReadDocumentsAsTheDesktopSetsThem)
{
    const Support::UserFolders user;
    setenv("HOME", "/home/x", 1);
    const Support::TemporaryFolder config;
    setenv("XDG_CONFIG_HOME", config.Path().c_str(), 1);
    EXPECT_EQ(Path::GetDocumentsFolder(), "/home/x/Documents");
    const std::pair<const char*, const char*> rows[] = {
        {"XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n", "/home/x/Dokumente"},
        {"# comment\n \tXDG_DOCUMENTS_DIR = \"/srv/my docs/\"", "/srv/my docs"},
        {"XDG_DOCUMENTS_DIR=\"$HOME/\"\n", "/home/x"},
        {"XDG_DOCUMENTS_DIR=\"$HOME\"\n", "/home/x"},
        {"XDG_DOCUMENTS_DIR=\"$HOME/a\\\"b\\\\c\" # rest\n", "/home/x/a\"b\\c"},
        {"XDG_DOCUMENTS_DIR=\"/a\"\nXDG_DOCUMENTS_DIR=\"/b\"\nXDG_MUSIC_DIR=\"/c\"", "/b"},
        {"XDG_DOCUMENTS_DIR=\"/a\"\nXDG_DOCUMENTS_DIR=\"relative\"\n", "/a"},
        {"#XDG_DOCUMENTS_DIR=\"/a\"\n", "/home/x/Documents"},
        {"XDG_DOCUMENTS_DIR=/a\nXDG_DOCUMENTS_DIR\nXDG_DOCUMENTS_DIR=", "/home/x/Documents"},
        {"XDG_DOCUMENTS_DIR=\"$HOMER/a\"\n", "/home/x/Documents"},
    };
    for (const auto& [lines, folder] : rows) {
        std::ofstream(config / "user-dirs.dirs") << lines;
        EXPECT_EQ(Path::GetDocumentsFolder(), folder) << lines;
    }
    std::ofstream(config / "user-dirs.dirs") << "XDG_DOCUMENTS_DIR=\"/d\\\\e\"\n";
    EXPECT_EQ(Path::ExpandUserFolders("%USERDOCS%\\a/b"), "/d\\e/a/b");
    const std::pair<const char*, const char*> expanded[] = {{"a\\%USERDOCS%", "a/%USERDOCS%"},
                                                            {"~", "/home/x"},
                                                            {"~/a", "/home/x/a"},
                                                            {"~\\a", "/home/x/a"},
                                                            {"~other/a", "~other/a"},
                                                            {"/~", "/~"}};
    for (const auto& [pattern, path] : expanded) {
        EXPECT_EQ(Path::ExpandUserFolders(pattern), path);
    }
    // Nobody writes to it.
    std::filesystem::remove(config / "user-dirs.dirs");
    ASSERT_EQ(mkfifo((config / "user-dirs.dirs").c_str(), 0600), 0);
    EXPECT_EQ(Path::GetDocumentsFolder(), "/home/x/Documents");
}

} // namespace
