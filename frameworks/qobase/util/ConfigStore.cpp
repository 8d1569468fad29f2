// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/ConfigStore.h"

#include "frameworks/qobase/util/DictionaryReaderJSON.h"
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/JSONDictionaryWriter.h"
#include "frameworks/qobase/util/Path.h"
#include "frameworks/qobase/util/TimeText.h"

#include <chrono>
#include <map>
#include <string>
#include <utility>

namespace Util {

namespace {

// How long a change waits for other processes to let go of the lock, and how long the store does at
// its end, when there is no later: enough for a hundred that write to a slow disk. One that hangs
// with the lock costs that much once.
constexpr std::chrono::milliseconds LongestWait(1000);
constexpr std::chrono::milliseconds LongestWaitAtEnd(10'000);
constexpr std::chrono::milliseconds NoWait(0);

String WithoutEnding(const String& path)
{
    return Path::Join(Path::GetFolder(path), Path::GetStem(path));
}

/// True when the file's time is so young that a further change could bear the same one, the
/// system's clock being coarse. Its number doesn't help then, as it may come round again.
bool MayChangeUnseen(const FileIdentity& identity)
{
    using namespace std::chrono;
    constexpr int64_t CoarsestStep = 100'000'000; // ns
    const auto now = duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count();
    return identity.exists && identity.modificationTime > now - CoarsestStep;
}

/// The present time as a part of a file name: without the colons, which some systems forbid.
String GetTimeForFileName()
{
    std::string text = GetPresentTimeText().ToStdString();
    std::erase(text, ':');
    std::erase(text, '-');
    return {std::move(text)};
}

struct Registry {
    CriticalSection section{"Settings files"};
    std::map<String, std::weak_ptr<void>> stores UTIL_GUARDED_BY(section);
};

} // namespace

std::shared_ptr<ConfigFile::Store> ConfigFile::Store::Open(const String& path)
{
    static Registry registry;
    const CriticalSectionGuard guard(registry.section);
    std::erase_if(registry.stores, [](const auto& entry) { return entry.second.expired(); });
    auto& known = registry.stores[path];
    auto store = std::static_pointer_cast<Store>(known.lock());
    if (!store) {
        store = std::make_shared<Store>(path);
        known = store;
    }
    return store;
}

ConfigFile::Store::Store(const String& newPath)
    : path(newPath)
    , childFolder(WithoutEnding(newPath))
    , lockPath(Path::Join(Path::GetFolder(newPath), "." + Path::GetFileName(newPath) + ".lock"))
    , section("Settings file")
{
}

ConfigFile::Store::~Store()
{
    const CriticalSectionGuard guard(section);
    WriteWaiting(LongestWaitAtEnd);
}

void ConfigFile::Store::Refresh()
{
    if (path.IsEmpty() || (isSettled && GetFileIdentity(path) == identity)) {
        return;
    }
    Load();
}

void ConfigFile::Store::Load()
{
    Dictionary former = std::exchange(values, {});
    ReadFile();
    revision += values == former ? 0 : 1;
}

void ConfigFile::Store::ReadFile()
{
    // Taken first: a file that is replaced from here on is found out by the next look.
    identity = GetFileIdentity(path);
    isSettled = !MayChangeUnseen(identity);
    state = identity.exists ? State::Unreadable : State::Missing;
    if (!identity.isRegular) {
        return;
    }
    if (identity.size > MaxClaimedBytes) {
        state = State::Damaged;
        return;
    }
    const auto text = ReadWholeFile(path);
    if (!text) {
        return;
    }
    DictionaryReaderJSON reader;
    auto read = ReadDictionary(reader, *text);
    state = read ? State::Good : State::Damaged;
    if (read) {
        values = std::move(*read);
    }
}

bool ConfigFile::Store::Change(const ConfigChanges& changes)
{
    const CriticalSectionGuard guard(section);
    if (path.IsEmpty()) {
        return false;
    }
    waiting.Add(changes);
    ++revision;
    return WriteSoon();
}

bool ConfigFile::Store::WriteSoon()
{
    // Who has waited in vain once doesn't again: many changes may come in a row.
    return WriteWaiting(isLockStuck ? NoWait : LongestWait);
}

void ConfigFile::Store::WriteWaiting()
{
    const CriticalSectionGuard guard(section);
    WriteWaiting(NoWait);
}

bool ConfigFile::Store::WriteWaiting(std::chrono::milliseconds longestWait)
{
    if (waiting.IsEmpty()) {
        return true;
    }
    if (collections != 0 || !MakeFolder()) {
        return false;
    }
    const FileLock lock(lockPath, longestWait);
    isLockStuck = !lock.IsHeld();
    if (isLockStuck || !WriteLocked()) {
        return false;
    }
    waiting = {};
    return true;
}

bool ConfigFile::Store::WriteLocked()
{
    Load();
    if (state == State::Unreadable) {
        return false;
    }
    const Dictionary changed = waiting.ApplyTo(values);
    if (changed == values) {
        return true;
    }
    if (state == State::Damaged && !SetAside()) {
        return false;
    }
    return Replace(changed);
}

uint64_t ConfigFile::Store::GetRevision()
{
    const CriticalSectionGuard guard(section);
    Refresh();
    return revision;
}

void ConfigFile::Store::BeginCollection()
{
    const CriticalSectionGuard guard(section);
    ++collections;
}

void ConfigFile::Store::EndCollection()
{
    const CriticalSectionGuard guard(section);
    --collections;
    WriteSoon();
}

void ConfigFile::Store::Remove()
{
    const CriticalSectionGuard guard(section);
    waiting = {};
    if (path.IsEmpty() || !GetFileIdentity(path).exists) {
        return;
    }
    const FileLock lock(lockPath, LongestWait);
    if (!lock.IsHeld()) {
        waiting.RemoveAll(); // the file stays, without values
        return;
    }
    Load();
    if (state == State::Damaged) {
        SetAside();
    } else if (state == State::Good) {
        static_cast<void>(File(path).Remove());
    }
    isSettled = false;
}

bool ConfigFile::Store::MakeFolder() const
{
    return static_cast<bool>(Path::MakeDirectory(
        Path::GetFolder(path), Path::Recursive::Yes, Path::Visibility::OwnerOnly));
}

bool ConfigFile::Store::Replace(const Dictionary& newValues)
{
    JSONDictionaryWriter writer(JSONDictionaryWriter::Layout::Lines);
    WriteDictionary(writer, newValues);
    const String text = writer.GetText();
    isSettled = false;
    return static_cast<bool>(
        ReplaceWholeFile(path, {reinterpret_cast<const uint8_t*>(text.Data()), text.Length()}));
}

bool ConfigFile::Store::SetAside()
{
    isSettled = false;
    return static_cast<bool>(SetFileAside(path, path + ".corrupt-" + GetTimeForFileName()));
}

} // namespace Util
