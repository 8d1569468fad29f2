// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/ConfigFile.h"

#include "frameworks/qobase/util/ConfigImport.h"
#include "frameworks/qobase/util/ConfigStore.h"
#include "frameworks/qobase/util/Path.h"

#include <algorithm>
#include <bit>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace Util {

namespace {

String WithBackslashes(const String& keyPath)
{
    std::string text = keyPath.ToStdString();
    std::replace(text.begin(), text.end(), '/', '\\');
    return {std::move(text)};
}

/// The part as a file name on any system; empty when nothing of it can be one.
String CleanPart(const String& part)
{
    constexpr std::string_view Forbidden = "<>:\"|?*\x7f";
    std::string name = part.ToStdString();
    for (char& character : name) {
        if (static_cast<unsigned char>(character) < ' ' ||
            Forbidden.find(character) != std::string_view::npos) {
            character = '_';
        }
    }
    // Covers "." and ".." as well.
    name.erase(name.find_last_not_of(". ") + 1);
    return {std::move(name)};
}

/// The file of a key; empty for a path that names none.
String FileOf(const String& keyPath)
{
    std::vector<String> names;
    for (const String& part : keyPath.Split('\\')) {
        if (const String name = CleanPart(part); !name.IsEmpty()) {
            names.push_back(name);
        }
    }
    // The head of every path where settings are kept in a registry; means nothing here.
    if (!names.empty() && names.front() == "SOFTWARE") {
        names.erase(names.begin());
    }
    if (names.empty()) {
        return {};
    }
    String path = Path::GetConfigurationFolder();
    for (const String& name : names) {
        path = Path::Join(path, name);
    }
    return path + ".json";
}

/// Never null, as null and empty are two keys in memory, but one on the disk.
String NotNull(const String& text)
{
    return text.IsNull() ? String("") : text;
}

template <typename Kind>
std::optional<Kind> Get(const Dictionary& values, const String& name)
{
    const Kind* value = values.Find<Kind>(NotNull(name));
    return value == nullptr ? std::nullopt : std::optional<Kind>(*value);
}

/// Both number types are one kind of 32 bits.
std::optional<uint32_t> GetNumber(const Dictionary& values, const String& name)
{
    if (const auto number = Get<int32_t>(values, name)) {
        return static_cast<uint32_t>(*number);
    }
    return Get<uint32_t>(values, name);
}

} // namespace

ConfigFile::ConfigFile(const String& newKeyPath)
    : keyPath(WithBackslashes(newKeyPath))
    , store(Store::Open(FileOf(keyPath)))
{
}

ConfigFile::~ConfigFile() = default;

std::shared_ptr<ConfigFile::Store> ConfigFile::GetStore(const String& subPath) const
{
    return subPath.IsEmpty() ? store
                             : Store::Open(FileOf(keyPath + "\\" + WithBackslashes(subPath)));
}

void ConfigFile::Set(const String& name, DictionaryValue value)
{
    ConfigChanges changes;
    changes.Set(NotNull(name), std::move(value));
    store->Change(changes);
}

void ConfigFile::GetValueNames(std::set<String>& names, const String& subPath) const
{
    names = GetStore(subPath)->Read([](const Dictionary& values) {
        std::set<String> found;
        for (const auto& [name, value] : values) {
            found.insert(name);
        }
        return found;
    });
}

void ConfigFile::GetSubKeys(std::set<String>& names, const String& subPath) const
{
    names.clear();
    const String folder = GetStore(subPath)->GetChildFolder();
    if (folder.IsEmpty()) {
        return;
    }
    for (const String& path : Path::ListFiles(folder, ".json")) {
        names.insert(Path::GetStem(path));
    }
    // A key may have nothing but children.
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder.ToStdString(), error), end;
         !error && entry != end;
         entry.increment(error)) {
        if (std::error_code ignored; entry->is_directory(ignored)) {
            names.insert(String(entry->path().filename().string()));
        }
    }
}

String ConfigFile::ReadString(const String& name, const String& defaultValue) const
{
    return store->Read([&](const auto& values) { return Get<String>(values, name); })
        .value_or(defaultValue);
}

void ConfigFile::WriteString(const String& name, const String& text)
{
    Set(name, {NotNull(text)});
}

float ConfigFile::ReadFloat(const String& name, float defaultValue) const
{
    const auto bytes = store->Read([&](const auto& values) { return Get<Bytes>(values, name); });
    if (!bytes || bytes->size() != sizeof(float)) {
        return defaultValue;
    }
    uint32_t bits = 0;
    for (std::size_t i = 0; i < sizeof(float); ++i) {
        bits |= uint32_t{(*bytes)[i]} << 8 * i;
    }
    return std::bit_cast<float>(bits);
}

void ConfigFile::WriteFloat(const String& name, float value)
{
    const auto bits = std::bit_cast<uint32_t>(value);
    Bytes bytes;
    for (std::size_t i = 0; i < sizeof(float); ++i) {
        bytes.push_back(static_cast<uint8_t>(bits >> 8 * i)); // lowest first on every machine
    }
    Set(name, {std::move(bytes)});
}

bool ConfigFile::ReadBool(const String& name, bool defaultValue) const
{
    return ReadUInt(name, defaultValue ? 1 : 0) != 0;
}

void ConfigFile::WriteBool(const String& name, bool value)
{
    WriteUInt(name, value ? 1 : 0);
}

int32_t ConfigFile::ReadInt(const String& name, int32_t defaultValue) const
{
    return static_cast<int32_t>(ReadUInt(name, static_cast<uint32_t>(defaultValue)));
}

void ConfigFile::WriteInt(const String& name, int32_t value)
{
    Set(name, {value});
}

uint32_t ConfigFile::ReadUInt(const String& name, uint32_t defaultValue) const
{
    return store->Read([&](const auto& values) { return GetNumber(values, name); })
        .value_or(defaultValue);
}

void ConfigFile::WriteUInt(const String& name, uint32_t value)
{
    Set(name, {value});
}

Bytes ConfigFile::ReadBinary(const String& name, const Bytes& defaultValue) const
{
    return store->Read([&](const auto& values) { return Get<Bytes>(values, name); })
        .value_or(defaultValue);
}

void ConfigFile::WriteBinary(const String& name, ByteSpan bytes)
{
    Set(name, {Bytes(bytes.begin(), bytes.end())});
}

bool ConfigFile::HasValue(const String& name) const
{
    return store->Read([&](const auto& values) { return values.Has(NotNull(name)); });
}

void ConfigFile::DeleteValue(const String& name)
{
    ConfigChanges changes;
    changes.Remove(NotNull(name));
    store->Change(changes);
}

void ConfigFile::DeleteKey(const String& subPath)
{
    if (subPath.IsEmpty()) {
        ConfigChanges changes;
        changes.RemoveAll();
        store->Change(changes);
        return;
    }
    if (store->GetPath().IsEmpty()) {
        return; // where this key is none, what is below it is others'
    }
    const auto child = GetStore(subPath);
    // A path that names no child, such as "..", is no order to delete this key.
    if (child == store || child->GetChildFolder().IsEmpty()) {
        return;
    }
    child->Remove();
    std::error_code ignored;
    std::filesystem::remove_all(child->GetChildFolder().ToStdString(), ignored);
}

bool ConfigFile::Import(const String& text)
{
    const ImportedSettings imported = ParseSettings(text);
    ConfigChanges changes;
    for (const auto& [name, value] : imported.values) {
        changes.Set(name, value);
    }
    return store->Change(changes) && imported.isComplete;
}

void ConfigFile::WriteWaiting()
{
    store->WriteWaiting();
}

uint64_t ConfigFile::GetRevision() const
{
    return store->GetRevision();
}

ConfigFile::Collection::Collection(ConfigFile& newFile)
    : file(newFile)
{
    file.store->BeginCollection();
}

ConfigFile::Collection::~Collection()
{
    file.store->EndCollection();
}

} // namespace Util
