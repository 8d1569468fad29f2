// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/ConfigFile.h"
#include "frameworks/qobase/util/CriticalSection.h"
#include "frameworks/qobase/util/Dictionary.h"
#include "frameworks/qobase/util/FileLock.h"

#include <functional>

namespace Util {

/// The values of one settings file, shared by all objects of its path in this process.
///
/// Reading takes no lock between processes, because files are only ever replaced whole. Threads:
/// [any]; the section is held while the file is read or written.
class ConfigFile::Store {
public:
    /// The one store of this path. An empty path gives one that holds nothing.
    static std::shared_ptr<Store> Open(const String& path);

    explicit Store(const String& newPath);

    const String& GetPath() const { return path; }
    /// Where the files of the child keys lie.
    const String& GetChildFolder() const { return childFolder; }

    /// The answer of `ask` to the values as they are on the disk now.
    template <typename Ask>
    auto Read(const Ask& ask)
    {
        const CriticalSectionGuard guard(section);
        Refresh();
        return ask(values);
    }
    /// Lets `change` work on the values as they are on the disk now, and writes what comes out.
    /// False when that can't be; the file then stays as it was.
    bool Change(const std::function<void(Dictionary&)>& change);
    /// Removes the file, and sets it aside when it is no settings file.
    void Remove();

private:
    enum class State {
        Missing,
        Good,
        Damaged,   // no settings file: may be set aside
        Unreadable // to be left alone
    };

    void Refresh() UTIL_REQUIRES(section);
    void Load() UTIL_REQUIRES(section);
    bool Replace(const Dictionary& newValues) UTIL_REQUIRES(section);
    bool SetAside() UTIL_REQUIRES(section);
    bool MakeFolder() const;
    FileLock Lock() const;

    const String path;
    const String childFolder;
    const String lockPath;
    CriticalSection section;
    Dictionary values UTIL_GUARDED_BY(section);
    State state UTIL_GUARDED_BY(section) = State::Missing;
    FileIdentity identity UTIL_GUARDED_BY(section); // what `values` came from
    // False when the file may have changed once more without a new time.
    bool isSettled UTIL_GUARDED_BY(section) = false;
};

} // namespace Util
