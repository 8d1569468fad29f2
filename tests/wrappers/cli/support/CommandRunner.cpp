// SPDX-License-Identifier: ISC
#include "tests/wrappers/cli/support/CommandRunner.h"

#include "tests/support/Child.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <thread>

namespace CliTest {

namespace {

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
const Support::UserFolders EmptyFolders;

/// Makes the process the command.
[[noreturn]] void
Become(const std::vector<std::string>& arguments, const RunSetup& setup, int in, int out, int err)
{
    ::dup2(in, STDIN_FILENO);
    ::dup2(setup.outTo.empty() ? out : ::open(setup.outTo.c_str(), O_WRONLY), STDOUT_FILENO);
    ::dup2(err, STDERR_FILENO);
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
    const std::string program = setup.program.empty() ? PUFFGUARD_COMMAND : setup.program;
    std::vector<char*> words = {const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    ::execv(words[0], words.data());
    ::_exit(122);
}

void Write(int end, std::string_view bytes)
{
    ssize_t count = 0;
    while (!bytes.empty() && (count = ::write(end, bytes.data(), bytes.size())) > 0) {
        bytes.remove_prefix(static_cast<size_t>(count)); // until it reads no further
    }
}

std::string ReadAll(int end)
{
    std::string all;
    std::array<char, 65536> buffer = {};
    for (ssize_t count = 0; (count = ::read(end, buffer.data(), buffer.size())) > 0;) {
        all.append(buffer.data(), static_cast<size_t>(count));
    }
    return all;
}

/// Runs the command. It finds no end of its input when something is done to it `meanwhile`.
Outcome Run(const std::vector<std::string>& arguments,
            const RunSetup& setup,
            const std::function<void(const Support::Child&)>& meanwhile = {})
{
    ::signal(SIGPIPE, SIG_IGN); // a child that reads no further must not end the test
    Outcome outcome;
    Pipe in;
    Pipe out;
    Pipe err;
    Support::Child child([&] { Become(arguments, setup, in.read, out.write, err.write); });
    for (int* const end : {&in.read, &out.write, &err.write}) {
        Pipe::Close(*end);
    }
    std::thread readers[] = {std::thread([&] { outcome.out = ReadAll(out.read); }),
                             std::thread([&] { outcome.err = ReadAll(err.read); })};
    std::thread writer([&] {
        Write(in.write, setup.input);
        if (!meanwhile) {
            Pipe::Close(in.write);
        }
    });
    if (meanwhile) {
        meanwhile(child);
    }
    for (std::thread& reader : readers) {
        reader.join();
    }
    outcome.exitCode = child.Wait();
    writer.join();
    return outcome;
}

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
    return Run(arguments, setup);
}

Outcome InterruptPuffguard(const std::vector<std::string>& arguments,
                           const std::string& folder,
                           const std::string& input,
                           int signalNumber)
{
    return Run(arguments, {.input = input}, [&](const Support::Child& child) {
        for (int i = 0; i < 60'000 && !HasHiddenFile(folder); ++i) {
            ::usleep(1000);
        }
        child.Send(signalNumber);
    });
}

} // namespace CliTest
