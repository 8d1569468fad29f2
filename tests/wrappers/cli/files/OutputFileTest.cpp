// SPDX-License-Identifier: ISC
#include "wrappers/cli/files/OutputFile.h"

#include "tests/wrappers/cli/support/TestFiles.h"
#include "wrappers/cli/files/FileError.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

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

TEST(OutputFileTest, TellsOfFoldersAndFullDevices)
{
    const TemporaryFolder folder;
    EXPECT_THROW(OutputFile(FileName(folder.GetPath()), Overwrite::Allow), FileError);
    EXPECT_THROW(OutputFile(FileName(folder / "no/such/folder"), Overwrite::Refuse), FileError);
    EXPECT_THROW(OutputFile(FileName("/dev/full"), Overwrite::Refuse).WriteWhole("x"), FileError);
    OutputFile(FileName("/dev/null"), Overwrite::Refuse).WriteWhole("x");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

} // namespace
