// SPDX-License-Identifier: ISC
#pragma once

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>

namespace Support {

/// Makes a system call of this process fail with `error` from now on, as a file system does that
/// hasn't got it; with a `command`, only where the call's second argument is that. It can't be
/// undone, so call it in a child. False where the system doesn't let a program do so.
inline bool RefuseCall(long number, int error, std::optional<int> command = std::nullopt)
{
    // Words of 32 bits: the lower half of an argument comes first on the machines of today.
    constexpr uint32_t SecondArgument = offsetof(seccomp_data, args) + sizeof(uint64_t);
    const auto wanted = static_cast<uint32_t>(command.value_or(0));
    const uint8_t otherwise = command ? 1 : 0; // without a command, any is the wanted one
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<uint32_t>(number), 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, SecondArgument),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, wanted, 0, otherwise),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<uint32_t>(error)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{static_cast<unsigned short>(std::size(steps)), steps};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

} // namespace Support
