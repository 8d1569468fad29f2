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

// A write that can't have the lock by then is dropped.
constexpr std::chrono::milliseconds LongestWait(1000);

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

void ConfigFile::Store::Refresh()
{
    if (path.IsEmpty() || (isSettled && GetFileIdentity(path) == identity)) {
        return;
    }
    Load();
}

void ConfigFile::Store::Load()
{
    values = {};
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

bool ConfigFile::Store::Change(const std::function<void(Dictionary&)>& change)
{
    const CriticalSectionGuard guard(section);
    if (path.IsEmpty() || !MakeFolder()) {
        return false;
    }
    const FileLock lock = Lock();
    if (!lock.IsHeld()) {
        return false;
    }
    Load();
    if (state == State::Unreadable) {
        return false;
    }
    Dictionary changed = values;
    change(changed);
    if (changed == values) {
        return true;
    }
    if (state == State::Damaged && !SetAside()) {
        return false;
    }
    return Replace(changed);
}

void ConfigFile::Store::Remove()
{
    const CriticalSectionGuard guard(section);
    if (path.IsEmpty() || !GetFileIdentity(path).exists) {
        return;
    }
    const FileLock lock = Lock();
    if (!lock.IsHeld()) {
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

FileLock ConfigFile::Store::Lock() const
{
    return {lockPath, LongestWait};
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
