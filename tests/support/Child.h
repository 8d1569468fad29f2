// SPDX-License-Identifier: ISC
#pragma once

#include <csignal>
#include <functional>

#include <sys/wait.h>
#include <unistd.h>

namespace Support {

/// Work in a process of its own, which ends with the object at the latest.
class Child {
public:
    explicit Child(const std::function<void()>& work)
        : process(fork())
    {
        if (process != 0) {
            return;
        }
        // As one starts from a terminal: in the background or without one, these are ignored.
        std::signal(SIGHUP, SIG_DFL);
        std::signal(SIGINT, SIG_DFL);
        alarm(120); // ends it should the work hang
        work();
        _exit(0);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() { Kill(); }

    /// What the work gave to _exit(), 0 when it came to its end; minus the signal that ended it.
    int Wait()
    {
        int status = -1;
        waitpid(process, &status, 0);
        process = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    void Send(int number) const { kill(process, number); }
    void Kill()
    {
        if (process <= 0) {
            return;
        }
        Send(SIGKILL);
        Wait();
    }

private:
    pid_t process;
};

} // namespace Support
