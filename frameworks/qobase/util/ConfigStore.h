// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/ConfigChanges.h"
#include "frameworks/qobase/util/ConfigFile.h"
#include "frameworks/qobase/util/CriticalSection.h"
#include "frameworks/qobase/util/Dictionary.h"
#include "frameworks/qobase/util/FileLock.h"

#include <chrono>
#include <cstdint>

namespace Util {

/// The values of one settings file, shared by all objects of its path in this process.
///
/// Reading takes no lock between processes, because files are only ever replaced whole. A change
/// that can't be written waits in memory, where this process sees it as done, and is written with
/// the next one, by WriteWaiting(), or at the end of the store. Threads: [any]; the section is held
/// while the file is read or written.
class ConfigFile::Store {
public:
    /// The one store of this path. An empty path gives one that holds nothing.
    static std::shared_ptr<Store> Open(const String& path);

    explicit Store(const String& newPath);
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    /// Writes what still waits; what can't be written now is lost.
    ~Store();

    const String& GetPath() const { return path; }
    /// Where the files of the child keys lie.
    const String& GetChildFolder() const { return childFolder; }

    /// The answer of `ask` to the values as they are on the disk now, changed by what waits.
    template <typename Ask>
    auto Read(const Ask& ask)
    {
        const CriticalSectionGuard guard(section);
        Refresh();
        return waiting.IsEmpty() ? ask(values) : ask(waiting.ApplyTo(values));
    }
    /// Changes the values as they are on the disk now, and writes what comes out. False when that
    /// can't be yet: the file then stays as it was, and the change waits.
    bool Change(const ConfigChanges& changes);
    /// Tries once more to write what waits, without waiting for anybody.
    void WriteWaiting();
    /// Removes the file, and sets it aside when it is no settings file.
    void Remove();
    /// Another number whenever the values may have changed since the last call.
    uint64_t GetRevision();
    /// From here to an equal number of ends, changes wait.
    void BeginCollection();
    void EndCollection();

private:
    enum class State {
        Missing,
        Good,
        Damaged,   // no settings file: may be set aside
        Unreadable // to be left alone
    };

    void Refresh() UTIL_REQUIRES(section);
    void Load() UTIL_REQUIRES(section);
    void ReadFile() UTIL_REQUIRES(section);
    bool WriteSoon() UTIL_REQUIRES(section);
    bool WriteWaiting(std::chrono::milliseconds longestWait) UTIL_REQUIRES(section);
    bool WriteLocked() UTIL_REQUIRES(section);
    bool Replace(const Dictionary& newValues) UTIL_REQUIRES(section);
    bool SetAside() UTIL_REQUIRES(section);
    bool MakeFolder() const;

    const String path;
    const String childFolder;
    const String lockPath;
    CriticalSection section;
    Dictionary values UTIL_GUARDED_BY(section); // as they were on the disk
    ConfigChanges waiting UTIL_GUARDED_BY(section);
    uint32_t collections UTIL_GUARDED_BY(section) = 0; // under way
    bool isLockStuck UTIL_GUARDED_BY(section) = false; // the last time
    uint64_t revision UTIL_GUARDED_BY(section) = 0;
    State state UTIL_GUARDED_BY(section) = State::Missing;
    FileIdentity identity UTIL_GUARDED_BY(section); // what `values` came from
    // False when the file may have changed once more without a new time.
    bool isSettled UTIL_GUARDED_BY(section) = false;
};

} // namespace Util
