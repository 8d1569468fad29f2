// SPDX-License-Identifier: ISC
#pragma once

#include <string>

namespace Cli {

/// Makes SIGINT, SIGTERM, SIGHUP and SIGPIPE remove the registered files before they end the
/// process in their usual way; a signal that the parent set to be ignored stays ignored. Call once,
/// before threads are started.
void InstallCleanUpOnSignals();

/// While one of these lives, the file `path` is removed when a signal ends the process. The file is
/// to be made by Open() of this object, so that no signal falls between its making and its
/// registration.
class ScopedCleanUp {
public:
    explicit ScopedCleanUp(std::string path);
    ~ScopedCleanUp();
    ScopedCleanUp(const ScopedCleanUp&) = delete;
    ScopedCleanUp& operator=(const ScopedCleanUp&) = delete;
    ScopedCleanUp(ScopedCleanUp&&) = delete;
    ScopedCleanUp& operator=(ScopedCleanUp&&) = delete;

    /// Makes the file, which must not exist, with these permission bits less the umask. Returns the
    /// descriptor or -1 with errno set.
    int Open(unsigned mode);

private:
    std::string path;
    int slot = -1;
};

} // namespace Cli
