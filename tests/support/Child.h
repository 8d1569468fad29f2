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
        alarm(120); // ends it should the work hang
        work();
        _exit(0);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() { Kill(); }

    /// What the work gave to _exit(), 0 when it came to its end; -1 when it ended otherwise.
    int Wait()
    {
        int status = -1;
        waitpid(process, &status, 0);
        process = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void Kill()
    {
        if (process <= 0) {
            return;
        }
        kill(process, SIGKILL);
        Wait();
    }

private:
    pid_t process;
};

} // namespace Support
