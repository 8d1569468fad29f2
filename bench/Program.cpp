// SPDX-License-Identifier: ISC
#include "bench/Program.h"

#include <array>
#include <chrono>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Bench {

namespace {

double ToSeconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// Starts `words` with standard error going to `errors`; 0 when that fails.
pid_t Start(const std::vector<std::string>& words, int errors)
{
    std::vector<char*> arguments;
    for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t streams;
    posix_spawn_file_actions_init(&streams);
    posix_spawn_file_actions_addopen(&streams, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&streams, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&streams, errors, STDERR_FILENO);
    pid_t child = 0;
    if (posix_spawnp(&child, arguments[0], &streams, nullptr, arguments.data(), environ) != 0) {
        child = 0;
    }
    posix_spawn_file_actions_destroy(&streams);
    return child;
}

std::string ReadAll(int file)
{
    std::string text;
    std::array<char, 4096> part;
    ssize_t count = 0;
    while ((count = read(file, part.data(), part.size())) > 0) {
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    return text;
}

} // namespace

ProgramRun RunProgram(const std::vector<std::string>& words)
{
    std::vector<std::string> limited = {"timeout", "--kill-after=5", "600"};
    limited.insert(limited.end(), words.begin(), words.end());
    ProgramRun run;
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return run;
    }
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = Start(limited, ends[1]);
    close(ends[1]);
    run.errors = ReadAll(ends[0]);
    close(ends[0]);
    int status = 0;
    rusage usage{};
    if (child == 0 || wait4(child, &status, 0, &usage) != child) {
        return run;
    }
    run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    run.computingSeconds = ToSeconds(usage.ru_utime) + ToSeconds(usage.ru_stime);
    run.succeeded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return run;
}

} // namespace Bench
