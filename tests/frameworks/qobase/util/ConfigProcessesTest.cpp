// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/ConfigFile.h"
#include "frameworks/qobase/util/FileLock.h"

#include "tests/support/Child.h"
#include "tests/support/FlushHook.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <deque>
#include <thread>

namespace {

using Util::ConfigFile;

constexpr const char* Key = "SOFTWARE/Norvane/LM6Pfgd";

using Support::Child;

String Name(const char* prefix, int32_t number)
{
    return String(prefix).arg(number, 10, 3);
}

void WriteMany(const char* prefix, int32_t count)
{
    ConfigFile config(Key);
    for (int32_t i = 0; i < count; ++i) {
        config.WriteInt(Name(prefix, i), i);
    }
}

TEST(ConfigProcesses, AndTheirThreadsLoseNoWriteOfEachOther)
{
    const Support::UserFolders folders;
    constexpr int32_t Count = 100;
    const auto writeTwice = [](const char* one, const char* other) {
        std::thread thread([&] { WriteMany(one, Count); });
        WriteMany(other, Count);
        thread.join();
    };
    Child first([&] { writeTwice("a", "b"); });
    Child second([&] { writeTwice("c", "d"); });
    EXPECT_EQ(first.Wait(), 0);
    EXPECT_EQ(second.Wait(), 0);
    const ConfigFile config(Key);
    for (const char* const prefix : {"a", "b", "c", "d"}) {
        for (int32_t i = 0; i < Count; ++i) {
            EXPECT_EQ(config.ReadInt(Name(prefix, i), -1), i);
        }
    }
}

// The lock is held for so long in each of them that some wait in vain, over and over.
TEST(ConfigProcesses, ManyOnASlowDiskLoseNothing)
{
    const Support::UserFolders folders;
    constexpr int32_t Processes = 20;
    constexpr int32_t Count = 5;
    Support::onFlush = [](int) { std::this_thread::sleep_for(std::chrono::milliseconds(20)); };
    std::deque<Child> children;
    for (int32_t i = 0; i < Processes; ++i) {
        children.emplace_back([i] { WriteMany((String("p%1").arg(i) + " %1").c_str(), Count); });
    }
    for (Child& child : children) {
        EXPECT_EQ(child.Wait(), 0);
    }
    Support::onFlush = nullptr;
    std::set<String> names;
    ConfigFile(Key).GetValueNames(names, "");
    EXPECT_EQ(names.size(), std::size_t{Processes * Count});
}

TEST(ConfigProcesses, OneThatHangsWithTheLockHangsNoOther)
{
    const Support::UserFolders folders;
    ConfigFile config(Key);
    config.WriteInt("x", 1);
    const auto folder = folders.Home().Path() / "config/Norvane";
    const String lockPath((folder / ".LM6Pfgd.json.lock").string());
    ASSERT_TRUE(std::filesystem::exists(folder / ".LM6Pfgd.json.lock"));

    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    Child holder([&] {
        const Util::FileLock lock(lockPath, std::chrono::seconds(60));
        const char mark = lock.IsHeld() ? 'y' : 'n';
        if (write(ready[1], &mark, 1) == 1) {
            pause();
        }
    });
    char mark = 0;
    ASSERT_EQ(read(ready[0], &mark, 1), 1);
    close(ready[0]);
    close(ready[1]);
    ASSERT_EQ(mark, 'y');
    const auto start = std::chrono::steady_clock::now();
    config.WriteInt("x", 2);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::seconds(1)) << "the other one may be about to finish";
    EXPECT_LT(waited, std::chrono::seconds(10)) << "a second, on a machine that is busy";
    EXPECT_EQ(config.ReadInt("x", 0), 2) << "done as far as this process goes";
    config.WriteInt("y", 2);
    config.WriteWaiting();
    EXPECT_LT(std::chrono::steady_clock::now() - start - waited, std::chrono::milliseconds(900))
        << "who waited in vain doesn't wait again";
    holder.Kill();
    config.WriteWaiting();
    const std::string text = Support::ReadText(folder / "LM6Pfgd.json");
    EXPECT_NE(text.find("\"y\""), std::string::npos) << text;
}

TEST(ConfigProcesses, WriteAlsoWhereTheFileSystemHasNoLocks)
{
    const Support::UserFolders folders;
    for (const int error : {ENOLCK, EINVAL, ENOSYS, EOPNOTSUPP}) {
        Child writer([error] {
            // A sandbox that doesn't allow it leaves the plain case.
            static_cast<void>(Support::RefuseCall(SYS_fcntl, error, F_OFD_SETLK));
            ConfigFile(Key).WriteInt("x", error);
        });
        EXPECT_EQ(writer.Wait(), 0);
        EXPECT_EQ(ConfigFile(Key).ReadInt("x", 0), error);
    }
}

TEST(FileLock, GivesBackItsTurnAlsoWhenItWaitedInVain)
{
    const Support::TemporaryFolder folder;
    const String path(folder / "lock");
    auto first = std::make_unique<Util::FileLock>(path, std::chrono::milliseconds(0));
    ASSERT_TRUE(first->IsHeld());
    std::atomic<bool> isOver = false;
    std::thread waiter([&] {
        EXPECT_FALSE(Util::FileLock(path, std::chrono::milliseconds(300)).IsHeld());
        isOver = true;
    });
    const int probe = open(path.c_str(), O_RDWR | O_CLOEXEC);
    struct flock turn {};
    do {
        turn = {.l_type = F_WRLCK, .l_whence = SEEK_SET, .l_start = 1, .l_len = 1, .l_pid = 0};
    } while (!isOver && fcntl(probe, F_OFD_GETLK, &turn) == 0 && turn.l_type == F_UNLCK);
    // A copy of the process keeps all that isn't given back outright.
    const Child copy([] { pause(); });
    waiter.join();
    close(probe);
    first.reset();
    EXPECT_TRUE(Util::FileLock(path, std::chrono::milliseconds(0)).IsHeld());
}

TEST(FileLock, OfARemovedFileKeepsNobodyOut)
{
    const Support::TemporaryFolder folder;
    const String path(folder / "lock");
    const Util::FileLock first(path, std::chrono::milliseconds(0));
    EXPECT_TRUE(first.IsHeld());
    EXPECT_FALSE(Util::FileLock(path, std::chrono::milliseconds(0)).IsHeld());
    std::filesystem::remove(folder / "lock");
    EXPECT_TRUE(Util::FileLock(path, std::chrono::milliseconds(0)).IsHeld());
    EXPECT_FALSE(Util::FileLock(String(folder / "none/lock"), std::chrono::seconds(60)).IsHeld());
}

TEST(FileLock, OfAFileRemovedWhileItIsWaitedForIsNoLock)
{
    const Support::TemporaryFolder folder;
    const String path(folder / "lock");
    // The waiting thread may come too late to see the first file, so that it takes some rounds.
    for (int round = 0; round < 50; ++round) {
        const bool isTakenAnew = round % 2 == 0;
        auto former = std::make_unique<Util::FileLock>(path, std::chrono::seconds(1));
        ASSERT_TRUE(former->IsHeld());
        std::atomic<bool> isWaiting = false;
        bool isTaken = true;
        std::thread waiter([&] {
            isWaiting = true;
            const std::chrono::milliseconds longestWait(isTakenAnew ? 20 : 10000);
            isTaken = Util::FileLock(path, longestWait).IsHeld();
        });
        while (!isWaiting) {
        }
        std::filesystem::remove(folder / "lock");
        std::optional<Util::FileLock> present;
        if (isTakenAnew) {
            present.emplace(path, std::chrono::milliseconds(0));
        }
        former.reset();
        waiter.join();
        if (isTakenAnew) {
            EXPECT_FALSE(isTaken && present->IsHeld());
        } else {
            EXPECT_TRUE(isTaken);
        }
    }
}

} // namespace
