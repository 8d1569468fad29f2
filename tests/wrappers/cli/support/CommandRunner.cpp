// SPDX-License-Identifier: ISC
#include "tests/wrappers/cli/support/CommandRunner.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

namespace CliTest {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto Limit = std::chrono::minutes(2);
constexpr int Nobody = 65534;

struct Pipe {
    int read = -1;
    int write = -1;

    Pipe()
    {
        std::array<int, 2> ends = {};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        read = ends[0];
        write = ends[1];
    }
    ~Pipe()
    {
        Close(read);
        Close(write);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    static void Close(int& end)
    {
        if (end >= 0) {
            ::close(end);
        }
        end = -1;
    }
};

// The command finds nothing of the real user's. From the start of the program on, so that folders
// that a test makes for itself come later and count.
const Support::UserFolders folders;

/// A running child with its three streams.
class Child {
public:
    Child(const std::vector<std::string>& arguments, const RunSetup& setup)
    {
        const char* const built = PUFFGUARD_COMMAND;
        const char* const program = setup.program.empty() ? built : setup.program.c_str();
        std::vector<char*> words = {const_cast<char*>(program)};
        for (const std::string& argument : arguments) {
            words.push_back(const_cast<char*>(argument.c_str()));
        }
        words.push_back(nullptr);
        id = ::fork();
        if (id == 0) {
            Become(words.data(), setup);
        }
        Pipe::Close(in.read);
        Pipe::Close(out.write);
        Pipe::Close(err.write);
    }
    ~Child()
    {
        if (id > 0) {
            ::kill(id, SIGKILL);
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // Feeds and drains the streams until the child closes them; `keepOpen` leaves its input open.
    void Converse(std::string_view input, Outcome& outcome, bool keepOpen)
    {
        ::fcntl(in.write, F_SETFL, O_NONBLOCK);
        const auto end = Clock::now() + Limit;
        while ((out.read >= 0 || err.read >= 0) && Clock::now() < end) {
            std::array<pollfd, 3> watched = {{{input.empty() ? -1 : in.write, POLLOUT, 0},
                                              {out.read, POLLIN, 0},
                                              {err.read, POLLIN, 0}}};
            ::poll(watched.data(), watched.size(), 100);
            if (watched[0].revents != 0) {
                Feed(input);
            }
            if (input.empty() && !keepOpen) {
                Pipe::Close(in.write);
            }
            if (watched[1].revents != 0) {
                Drain(out.read, outcome.out);
            }
            if (watched[2].revents != 0) {
                Drain(err.read, outcome.err);
            }
        }
    }

    void Wait(Outcome& outcome)
    {
        const auto end = Clock::now() + Limit;
        int status = 0;
        pid_t done = 0;
        while ((done = ::waitpid(id, &status, WNOHANG)) == 0 && Clock::now() < end) {
            ::usleep(1000);
        }
        ASSERT_EQ(done, id) << "the command doesn't come to an end";
        id = -1;
        outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        outcome.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }

    void Send(int signalNumber) const { ::kill(id, signalNumber); }

    bool HasEnded() const
    {
        siginfo_t info = {};
        return ::waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
               info.si_pid == id;
    }

private:
    [[noreturn]] void Become(char** words, const RunSetup& setup)
    {
        ::dup2(in.read, STDIN_FILENO);
        ::dup2(out.write, STDOUT_FILENO);
        ::dup2(err.write, STDERR_FILENO);
        if (!setup.outTo.empty()) {
            ::dup2(::open(setup.outTo.c_str(), O_WRONLY), STDOUT_FILENO);
        }
        ::signal(SIGPIPE, SIG_DFL);
        if (!setup.folder.empty() && ::chdir(setup.folder.c_str()) != 0) {
            ::_exit(120);
        }
        // Read only by a command that is built to look for leaks.
        ::setenv(
            "LSAN_OPTIONS", "suppressions=" PUFFGUARD_LEAK_SUPPRESSIONS ":print_suppressions=0", 0);
        for (const std::string& variable : setup.environment) {
            ::putenv(const_cast<char*>(variable.c_str()));
        }
        if (setup.asNobody && (::setgid(Nobody) != 0 || ::setuid(Nobody) != 0)) {
            ::_exit(121);
        }
        ::execv(words[0], words);
        ::_exit(122);
    }

    void Feed(std::string_view& input)
    {
        const ssize_t count = ::write(in.write, input.data(), input.size());
        if (count > 0) {
            input.remove_prefix(static_cast<size_t>(count));
        } else if (errno != EAGAIN) {
            input = {}; // it reads no further
        }
    }

    static void Drain(int& end, std::string& target)
    {
        std::array<char, 65536> buffer = {};
        const ssize_t count = ::read(end, buffer.data(), buffer.size());
        if (count > 0) {
            target.append(buffer.data(), static_cast<size_t>(count));
        } else {
            Pipe::Close(end);
        }
    }

    Pipe in;
    Pipe out;
    Pipe err;
    pid_t id = -1;
};

bool HasHiddenFile(const std::string& folder)
{
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().filename().string().starts_with('.')) {
            return true;
        }
    }
    return false;
}

} // namespace

Outcome RunPuffguard(const std::vector<std::string>& arguments, const RunSetup& setup)
{
    // A child that reads no further must not end the test.
    ::signal(SIGPIPE, SIG_IGN);
    Outcome outcome;
    Child child(arguments, setup);
    child.Converse(setup.input, outcome, false);
    child.Wait(outcome);
    return outcome;
}

Outcome InterruptPuffguard(const std::vector<std::string>& arguments,
                           const std::string& folder,
                           const std::string& input,
                           int signalNumber)
{
    ::signal(SIGPIPE, SIG_IGN);
    Outcome outcome;
    Child child(arguments, {});
    const auto end = Clock::now() + Limit;
    std::thread feeder([&] { child.Converse(input, outcome, true); });
    while (!HasHiddenFile(folder) && !child.HasEnded() && Clock::now() < end) {
        ::usleep(1000);
    }
    child.Send(signalNumber);
    feeder.join();
    child.Wait(outcome);
    return outcome;
}

} // namespace CliTest
