// SPDX-License-Identifier: ISC
#include "wrappers/cli/files/OutputFile.h"

#include "tests/support/Child.h"
#include "tests/support/RefusedCall.h"
#include "tests/wrappers/cli/support/TestFiles.h"
#include "wrappers/cli/files/FileError.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <utility>

namespace {

using Cli::FileError;
using Cli::FileName;
using Cli::OutputFile;
using Cli::Overwrite;
using CliTest::ReadBytes;
using CliTest::TemporaryFolder;
using CliTest::WriteBytes;
using Names = std::vector<std::string>;

TEST(OutputFileTest, AppearsOnlyWhenItIsCommitted)
{
    const TemporaryFolder folder;
    const std::string name(255, 'n'); // the longest that there can be
    WriteBytes(folder / name, "old");
    for (const bool commits : {false, true}) {
        {
            OutputFile file(FileName(folder / name), Overwrite::Allow);
            EXPECT_EQ(Cli::WriteFully(file.GetDescriptor(), "new"), 0);
            EXPECT_EQ(ReadBytes(folder / name), "old");
            if (commits) {
                file.Commit();
            }
        }
        EXPECT_EQ(folder.List(), Names{name});
        EXPECT_EQ(ReadBytes(folder / name), commits ? "new" : "old");
    }
}

TEST(OutputFileTest, NeverReplacesUnasked)
{
    const TemporaryFolder folder;
    WriteBytes(folder / "a", "old");
    EXPECT_THROW(OutputFile(FileName(folder / "a"), Overwrite::Refuse), FileError);
    // Also when the file came while the new one was being written.
    OutputFile file(FileName(folder / "b"), Overwrite::Refuse);
    WriteBytes(folder / "b", "meanwhile");
    EXPECT_THROW(file.Commit(), FileError);
    EXPECT_EQ(ReadBytes(folder / "a"), "old");
    EXPECT_EQ(ReadBytes(folder / "b"), "meanwhile");
}

// Nor on a file system that neither knows the system's own call nor second names of a file.
TEST(OutputFileTest, NeverReplacesUnaskedByAPlaceholder)
{
    const TemporaryFolder folder;
    Support::Child child([&] {
        for (const long call : {SYS_renameat2, SYS_linkat}) {
            static_cast<void>(Support::RefuseCall(call, EINVAL));
        }
#ifdef SYS_link
        static_cast<void>(Support::RefuseCall(SYS_link, EPERM));
#endif
        OutputFile(FileName(folder / "a"), Overwrite::Refuse).WriteWhole("new");
        OutputFile file(FileName(folder / "b"), Overwrite::Refuse);
        WriteBytes(folder / "b", "meanwhile");
        bool isRefused = false;
        try {
            file.Commit();
        } catch (const FileError&) {
            isRefused = true;
        }
        if (!isRefused) {
            _exit(1);
        }
    });
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(ReadBytes(folder / "a"), "new");
    EXPECT_EQ(ReadBytes(folder / "b"), "meanwhile");
}

TEST(OutputFileTest, ClearsAwayWhatKilledCommandsLeft)
{
    const TemporaryFolder folder;
    for (const auto& [name, hours] : {std::pair(".puffguard-0123456789abcdef.tmp", 25),
                                      std::pair(".puffguard-0123456789abcde0.tmp", 23),
                                      std::pair(".puffguard-notes.tmp", 25),
                                      std::pair("puffguard-0123456789abcdef.tmp", 25)}) {
        WriteBytes(folder / name, "x");
        std::filesystem::last_write_time(folder / name,
                                         std::filesystem::file_time_type::clock::now() -
                                             std::chrono::hours(hours));
    }
    OutputFile(FileName(folder / "a"), Overwrite::Refuse).WriteWhole("new");
    EXPECT_EQ(folder.List(),
              (Names{".puffguard-0123456789abcde0.tmp",
                     ".puffguard-notes.tmp",
                     "a",
                     "puffguard-0123456789abcdef.tmp"}));
}

TEST(OutputFileTest, FollowsALinkAndKeepsPermissions)
{
    const TemporaryFolder folder;
    WriteBytes(folder / "real", "old");
    ASSERT_EQ(::chmod((folder / "real").c_str(), 0640), 0);
    std::filesystem::create_symlink("real", folder / "link");
    OutputFile(FileName(folder / "link"), Overwrite::Allow).WriteWhole("new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(ReadBytes(folder / "real"), "new");
    struct stat status = {};
    ASSERT_EQ(::stat((folder / "real").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
    EXPECT_EQ(folder.List(), (Names{"link", "real"}));
}

} // namespace
