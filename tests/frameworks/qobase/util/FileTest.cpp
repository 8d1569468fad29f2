// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/Path.h"
#include "tests/support/Child.h"
#include "tests/support/FlushHook.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <deque>
#include <limits>
#include <set>
#include <utility>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Support::ReadText;
using Support::WriteText;
using Util::File;

constexpr unsigned ChildSeconds = 60; // a child that hangs ends itself

Util::Bytes BytesOf(std::string_view text)
{
    return {text.begin(), text.end()};
}

std::set<std::string> NamesIn(const fs::path& folder)
{
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

template <typename T>
std::string TextOf(const Util::Expected<T>& result)
{
    return result ? "success" : result.GetDescription().ToStdString();
}

/// A file of four bytes that is open for reading.
File OpenForReading(const std::string& path)
{
    WriteText(path, "four");
    File file(path);
    EXPECT_TRUE(file.Open(File::Mode::Read));
    return file;
}

TEST(File, FailuresHaveTheirTexts)
{
    const Support::TemporaryFolder folder;
    const String missing = folder / "none/file";
    File closed(missing);
    File open = OpenForReading(folder / "open");
    File aFolder(folder.Path().string());
    char buffer[10] = {};
    const std::pair<std::string, std::string> expected[] = {
        {TextOf(closed.Open(File::Mode::Read)), "Error opening file"},
        {TextOf(closed.Open(File::Mode::Write)), "Error opening file"},
        {TextOf(aFolder.Open(File::Mode::Read)), "Error opening file"},
        {TextOf(aFolder.Open(File::Mode::Write)), "Error opening file"},
        {TextOf(closed.Read(buffer, 7)), "Attempt to read 7 bytes when not open"},
        {TextOf(closed.Write(buffer, 7)), "Attempt to write 7 bytes when not open"},
        {TextOf(closed.Seek(7)), "Attempt to seek to 7 when not open"},
        {TextOf(closed.GetSize()), "Could not get the number of bytes remaining"},
        {TextOf(closed.GetPosition()), "Could not get the number of bytes remaining"},
        {TextOf(closed.GetModificationTime()), "Error getting file time"},
        {TextOf(closed.Remove()), "Remove failed"},
        {TextOf(aFolder.Remove()), "Remove failed"},
        {TextOf(closed.Move(folder / "target")), "MoveFileEx failed"},
        {TextOf(closed.Close()), "success"},
        {TextOf(open.Read(buffer, 10)), "Attempt to read 10 bytes, only read 4 bytes"},
        {TextOf(open.Write(buffer, 3)), "Attempt to write 3 bytes, only wrote 0 bytes"},
        {TextOf(open.Seek(std::numeric_limits<uint64_t>::max())),
         "Seek to 18446744073709551615 failed"},
        {TextOf(open.Move(folder / "none/target")), "MoveFileEx failed"},
    };
    for (const auto& [text, wanted] : expected) {
        EXPECT_EQ(text, wanted);
    }

    const auto failure = closed.Open(File::Mode::Read);
    const auto* const error = failure.GetError().As<File::Error>();
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->GetDetail(), "File");
    ASSERT_EQ(error->GetArguments().size(), 2U);
    EXPECT_EQ(error->GetArguments()[0], missing);
    EXPECT_EQ(error->GetArguments()[1], "No such file or directory");
}

TEST(File, IsWrittenReadAndMovedOverAnother)
{
    const Support::TemporaryFolder folder;
    File file(folder / "file");
    WriteText(folder / "file", "longer than what comes");
    ASSERT_TRUE(file.Open(File::Mode::Write));
    ASSERT_TRUE(file.Write("abcdef", 6));
    ASSERT_TRUE(file.Seek(2));
    ASSERT_TRUE(file.Write("XY", 2));
    EXPECT_EQ(*file.GetPosition(), 4U);
    EXPECT_EQ(*file.GetSize(), 6U);
    ASSERT_TRUE(file.Flush());
    File moved = std::move(file);
    ASSERT_TRUE(moved.Open(File::Mode::Read));
    ASSERT_TRUE(moved.Seek(1));
    char read[4] = {};
    ASSERT_TRUE(moved.Read(read, 4));
    EXPECT_EQ(std::string(read, 4), "bXYe");

    WriteText(folder / "target", "replaced");
    ASSERT_TRUE(File(folder / "file").Move(folder / "target"));
    EXPECT_EQ(ReadText(folder / "target"), "abXYef");
    EXPECT_EQ(NamesIn(folder.Path()), std::set<std::string>{"target"});
}

TEST(File, NoCallTouchesTheFileBeforeANulByte)
{
    const Support::TemporaryFolder folder;
    WriteText(folder / "kept", "kept");
    const String path = folder / std::string("kept\0.old", 9);
    EXPECT_FALSE(File(path).Exists());
    EXPECT_FALSE(File(path).Open(File::Mode::Write));
    EXPECT_FALSE(File(path).Remove());
    EXPECT_FALSE(File(path).Move(folder / "moved"));
    EXPECT_FALSE(Util::ReplaceWholeFile(path, {}));
    EXPECT_FALSE(Util::ReadWholeFile(path));
    EXPECT_EQ(ReadText(folder / "kept"), "kept");
}

TEST(ReadWholeFile, TakesWhatComesUpToTheLimit)
{
    const Support::TemporaryFolder folder;
    WriteText(folder / "file", std::string(100000, 'x'));
    EXPECT_EQ(Util::ReadWholeFile(folder / "file", 100000)->size(), 100000U);
    const auto larger = Util::ReadWholeFile(folder / "file", 99999);
    EXPECT_EQ(TextOf(larger), "File is larger than 99999 bytes");
    WriteText(folder / "empty", "");
    EXPECT_TRUE(Util::ReadWholeFile(folder / "empty", 0)->empty());
    // States a size of 0, and has contents.
    EXPECT_GT(Util::ReadWholeFile("/proc/self/status")->size(), 100U);
    for (const char* const refused : {"/", "/dev/zero", "/none/file", ""}) {
        EXPECT_EQ(TextOf(Util::ReadWholeFile(refused)), "Error opening file") << refused;
    }
}

// Nobody writes to it, so that who opened it would wait for ever.
TEST(ReadWholeFile, RefusesAPipeAtOnce)
{
    const Support::TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto read = Util::ReadWholeFile(pipe);
    EXPECT_EQ(TextOf(read), "Error opening file");
    EXPECT_EQ(read.GetError().Get().GetArguments().back(), "is no regular file");
    EXPECT_EQ(TextOf(File(pipe).Open(File::Mode::Read)), "Error opening file");
}

TEST(WholeFile, IsOnTheDiskBeforeItHasItsNameAndTheFolderAfterwards)
{
    const Support::TemporaryFolder folder;
    const std::string path = folder / "file";
    std::vector<std::pair<bool, std::string>> flushes; // of a folder; what the name led to by then
    Support::onFlush = [&](int descriptor) {
        struct stat status {};
        fstat(descriptor, &status);
        flushes.emplace_back(S_ISDIR(status.st_mode), ReadText(path));
    };
    const auto made = Util::CreateWholeFile(path, BytesOf("first"));
    const auto replaced = Util::ReplaceWholeFile(path, BytesOf("second"));
    Support::onFlush = nullptr;
    ASSERT_TRUE(made && *made && replaced);
    const decltype(flushes) expected{
        {false, ""}, {true, "first"}, {false, "first"}, {true, "second"}};
    EXPECT_EQ(flushes, expected);

    Support::flushError = EIO;
    EXPECT_EQ(TextOf(Util::ReplaceWholeFile(path, BytesOf("third"))), "Flush failed");
    Support::flushError = 0;
    EXPECT_EQ(ReadText(path), "second");
    EXPECT_EQ(NamesIn(folder.Path()), std::set<std::string>{"file"});
}

TEST(ReplaceWholeFile, KeepsPermissionsAndFollowsLinks)
{
    const Support::TemporaryFolder folder;
    fs::create_directory(folder / "deep");
    WriteText(folder / "deep/file", "old");
    fs::permissions(folder / "deep/file", fs::perms(0640));
    fs::create_symlink("deep/file", folder / "near");
    fs::create_symlink(folder / "near", folder / "far");
    ASSERT_TRUE(Util::ReplaceWholeFile(folder / "far", BytesOf("new")));
    EXPECT_EQ(ReadText(folder / "deep/file"), "new");
    EXPECT_EQ(fs::status(folder / "deep/file").permissions(), fs::perms(0640));
    EXPECT_TRUE(fs::is_symlink(folder / "near") && fs::is_symlink(folder / "far"));

    fs::create_symlink("deep/none", folder / "dangling");
    ASSERT_TRUE(Util::ReplaceWholeFile(folder / "dangling", BytesOf("made")));
    EXPECT_EQ(ReadText(folder / "deep/none"), "made");
    EXPECT_EQ(NamesIn(folder / "deep"), (std::set<std::string>{"file", "none"}));

    // The user's mask counts for a new file, and not for one that had its permissions already.
    fs::permissions(folder / "deep/file", fs::perms(0666));
    const mode_t former = umask(027);
    ASSERT_TRUE(Util::ReplaceWholeFile(folder / "fresh", BytesOf("new")));
    ASSERT_TRUE(Util::ReplaceWholeFile(folder / "deep/file", BytesOf("again")));
    umask(former);
    EXPECT_EQ(fs::status(folder / "fresh").permissions(), fs::perms(0640));
    EXPECT_EQ(fs::status(folder / "deep/file").permissions(), fs::perms(0666));
}

TEST(ReplaceWholeFile, LeavesTheFolderAsItWasWhenItFails)
{
    const Support::TemporaryFolder folder;
    WriteText(folder / "file", "old");
    fs::create_directory(folder / "folder");
    fs::create_symlink("loop", folder / "loop");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const auto before = NamesIn(folder.Path());
    for (const char* const path : {"file/below", "none/file", "folder", "loop", "pipe", "file/"}) {
        const auto result = Util::ReplaceWholeFile(folder / path, BytesOf("new"));
        EXPECT_EQ(TextOf(result), "Error opening file") << path;
    }
    const std::string longName(300, 'n');
    EXPECT_FALSE(Util::ReplaceWholeFile(folder / longName, BytesOf("new")));
    EXPECT_EQ(NamesIn(folder.Path()), before);
    EXPECT_EQ(ReadText(folder / "file"), "old");
    EXPECT_TRUE(fs::is_fifo(folder / "pipe"));
    if (geteuid() != 0) { // nothing is read-only for an administrator
        fs::permissions(folder / "file", fs::perms(0444));
        EXPECT_FALSE(Util::ReplaceWholeFile(folder / "file", BytesOf("new")));
        EXPECT_EQ(ReadText(folder / "file"), "old");
    }
}

/// In a child of its own: what comes of `action` when files may have 1000 bytes.
void RunWithSmallFiles(const std::function<Util::Expected<void>()>& action)
{
    alarm(ChildSeconds);
    const rlimit limit{1000, 1000};
    setrlimit(RLIMIT_FSIZE, &limit);
    const auto result = action();
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    const bool isBlocked = sigismember(&mask, SIGXFSZ) == 1;
    std::fprintf(stderr, "%s%s", TextOf(result).c_str(), isBlocked ? ", mask left behind" : "");
    _exit(0);
}

TEST(FileDeathTest, AFullDiskEndsTheWriteAndNotTheProcess)
{
    const Support::TemporaryFolder folder;
    WriteText(folder / "file", "old");
    const Util::Bytes large(5000, 'x');
    EXPECT_EXIT(RunWithSmallFiles([&] { return Util::ReplaceWholeFile(folder / "file", large); }),
                testing::ExitedWithCode(0),
                "^Attempt to write 5000 bytes, only wrote 1000 bytes$");
    EXPECT_EQ(ReadText(folder / "file"), "old");
    EXPECT_EQ(NamesIn(folder.Path()), std::set<std::string>{"file"});
    EXPECT_EXIT(RunWithSmallFiles([&] {
                    File file(folder / "other");
                    static_cast<void>(file.Open(File::Mode::Write));
                    return file.Write(large.data(), large.size());
                }),
                testing::ExitedWithCode(0),
                "^Attempt to write 5000 bytes, only wrote 1000 bytes$");
}

TEST(FileDeathTest, AFileSystemWithoutOwnersOrPermissionsIsWrittenToAllTheSame)
{
    const Support::TemporaryFolder folder;
    WriteText(folder / "file", "old");
    fs::permissions(folder / "file", fs::perms(0642));
    if (geteuid() == 0) {
        ASSERT_EQ(chown((folder / "file").c_str(), 12345, 12345), 0); // or no owner is to be kept
    }
    const auto replace = [&] {
        alarm(ChildSeconds);
        umask(0);
        const bool isRefused =
            Support::RefuseCall(SYS_fchown, EINVAL) && Support::RefuseCall(SYS_fchmod, EPERM);
        static_cast<void>(isRefused); // a sandbox that doesn't allow it leaves the plain case
        _exit(Util::ReplaceWholeFile(folder / "file", BytesOf("new")) ? 0 : 1);
    };
    EXPECT_EXIT(replace(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(ReadText(folder / "file"), "new");
    EXPECT_EQ(fs::status(folder / "file").permissions() & ~fs::perms(0642), fs::perms::none);
}

/// One version of a file: its first byte tells how many there are, all alike.
Util::Bytes Version(uint8_t number)
{
    return Util::Bytes(1000 * (1 + std::size_t{number}), number);
}

// Whoever saves anything (presets, settings, histories) saves it by this.
TEST(ReplaceWholeFile, IsOneWholeVersionWheneverTheWriterIsKilled)
{
    constexpr int Kills = 40;
    const Support::TemporaryFolder folder;
    const std::string path = folder / "file.xml";
    ASSERT_TRUE(Util::ReplaceWholeFile(path, Version(0)));
    for (int round = 0; round < Kills; ++round) {
        Support::Child child([&] {
            for (uint8_t number = 1;; ++number) {
                static_cast<void>(Util::ReplaceWholeFile(path, Version(number)));
            }
        });
        const auto readVersion = [&] {
            const auto bytes = Util::ReadWholeFile(path);
            const uint8_t number = bytes && !bytes->empty() ? bytes->front() : 0;
            EXPECT_TRUE(bytes && *bytes == Version(number));
            return number;
        };
        // Other numbers of looks end the child at other places of its loop.
        std::set<uint8_t> seen;
        for (int look = 0; look < round * 10 || seen.size() < 2; ++look) {
            seen.insert(readVersion());
        }
        child.Kill();
        readVersion();
    }
    // What was left behind is no file of the kind that is looked for.
    EXPECT_EQ(Util::Path::ListFiles(folder.Path().string(), ".xml").size(), 1U);
}

TEST(CreateWholeFile, NeverReplaces)
{
    const Support::TemporaryFolder folder;
    ASSERT_TRUE(Util::ReplaceWholeFile(folder / "file", BytesOf("old")));
    fs::create_directory(folder / "folder");
    fs::create_symlink(folder / "nowhere", folder / "link");
    for (const char* name : {"file", "folder", "link"}) {
        const auto made = Util::CreateWholeFile(folder / name, BytesOf("new"));
        EXPECT_TRUE(made && !*made) << name;
    }
    EXPECT_EQ(ReadText(folder / "file"), "old");
    EXPECT_FALSE(Util::CreateWholeFile(folder / std::string(300, 'n'), BytesOf("new")));
    EXPECT_FALSE(Util::CreateWholeFile(folder / "file/below", BytesOf("new")));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 3);
}

void RefuseLinks()
{
#ifdef SYS_link
    static_cast<void>(Support::RefuseCall(SYS_link, EPERM));
#endif
    static_cast<void>(Support::RefuseCall(SYS_linkat, EPERM));
}

// Of many that make the same file at once, one does: with the system's own call, by a second name,
// and by a placeholder.
TEST(CreateWholeFile, IsDoneByOneOfMany)
{
    const Support::TemporaryFolder folder;
    for (const std::string way : {"rename", "link", "placeholder"}) {
        for (int round = 0; round < 20; ++round) {
            const std::string path = folder / (way + std::to_string(round));
            std::deque<Support::Child> children;
            for (uint8_t number = 1; number <= 4; ++number) {
                children.emplace_back([&] {
                    if (way != "rename") {
                        static_cast<void>(Support::RefuseCall(SYS_renameat2, EINVAL));
                    }
                    if (way == "placeholder") {
                        RefuseLinks();
                    }
                    const auto made = Util::CreateWholeFile(path, Version(number));
                    _exit(!made ? 99 : *made ? number : 0);
                });
            }
            int maker = 0;
            for (Support::Child& child : children) {
                const int number = child.Wait();
                EXPECT_TRUE(maker == 0 || number == 0);
                maker += number;
            }
            ASSERT_TRUE(maker >= 1 && maker <= 4) << maker;
            EXPECT_TRUE(*Util::ReadWholeFile(path) == Version(static_cast<uint8_t>(maker)));
        }
    }
    EXPECT_EQ(NamesIn(folder.Path()).size(), 60U) << "nothing else is left";
}

TEST(WholeFile, ClearsAwayWhatKilledProcessesLeft)
{
    const Support::TemporaryFolder folder;
    const auto put = [&](const std::string& name, std::chrono::hours age) {
        WriteText(folder / name, "x");
        fs::last_write_time(folder / name, fs::file_time_type::clock::now() - age);
        return name;
    };
    using std::chrono::hours;
    put(".7-0123456789abcdef.tmp", hours(25));
    put(".4194304-ffffffffffffffff.tmp", hours(2400));
    std::set<std::string> kept{put(".7-0123456789abcde0.tmp", hours(23)),
                               put(".7-0123456789abcdef.tmp~", hours(25)),
                               put(".-0123456789abcdef.tmp", hours(25)),
                               put(".7-0123456789abcdefg.tmp", hours(25)),
                               put(".7-0123456789ABCDEF.tmp", hours(25)),
                               put("7-0123456789abcdef.tmp", hours(25)),
                               put(".puffguard-0123456789abcdef.tmp", hours(25))};
    ASSERT_TRUE(Util::ReplaceWholeFile(folder / "file", BytesOf("new")));
    kept.insert("file");
    EXPECT_EQ(NamesIn(folder.Path()), kept);
}

} // namespace
