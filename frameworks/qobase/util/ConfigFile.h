// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"
#include "frameworks/qobase/util/String.h"

#include <cstdint>
#include <map>
#include <memory>
#include <set>

namespace Util {

struct DictionaryValue;

/// Settings of a user under one key path, such as "SOFTWARE/Vendor/Product".
///
/// Kept in one JSON file a key path, `<configuration folder>/Vendor/Product.json`; child keys are
/// files in the folder of that name. Three kinds of value exist (text, 32-bit number, binary) and
/// are kept apart; names are flat, whatever they hold. A read that finds nothing, or another kind,
/// gives the default. A write is on the disk when it returns, merged with what other processes
/// wrote meanwhile. One that can't be, because others keep the file busy or the disk is full,
/// counts as done in this process, and is written with the next one, by WriteWaiting(), or at the
/// latest when the last object of the path ends, which then waits for the others for up to 10 s. A
/// file that is no settings file is set aside under a new name by the first write. No operation
/// raises.
///
/// Threads: [any]; objects of one path share their contents within the process.
class ConfigFile {
public:
    /// While one of these lives, what is written to the path counts as done in this process, and is
    /// written by its end, all at once: for what the user does in one go. [any]
    class Collection;

    explicit ConfigFile(const String& keyPath);
    ConfigFile(const ConfigFile&) = delete;
    ConfigFile& operator=(const ConfigFile&) = delete;
    virtual ~ConfigFile();

    /// Of this key, or of the child key `subPath` when that isn't empty.
    virtual void GetValueNames(std::set<String>& names, const String& subPath) const;
    virtual void GetSubKeys(std::set<String>& names, const String& subPath) const;

    virtual String ReadString(const String& name, const String& defaultValue) const;
    virtual void WriteString(const String& name, const String& text);
    virtual float ReadFloat(const String& name, float defaultValue) const;
    virtual void WriteFloat(const String& name, float value);
    virtual bool ReadBool(const String& name, bool defaultValue) const;
    virtual void WriteBool(const String& name, bool value);
    virtual int32_t ReadInt(const String& name, int32_t defaultValue) const;
    virtual void WriteInt(const String& name, int32_t value);
    virtual uint32_t ReadUInt(const String& name, uint32_t defaultValue) const;
    virtual void WriteUInt(const String& name, uint32_t value);
    virtual Bytes ReadBinary(const String& name, const Bytes& defaultValue) const;
    virtual void WriteBinary(const String& name, ByteSpan bytes);
    virtual bool HasValue(const String& name) const;
    virtual void DeleteValue(const String& name);
    /// The child key with everything below it, or this key's values when `subPath` is empty.
    virtual void DeleteKey(const String& subPath);
    /// Takes settings from text in one write, one setting a line: `name=kind:value`, kind one of
    /// "text", "number" and "binary" (hexadecimal). Lines that are empty or start with "#" or ";"
    /// are passed over. True when every other line could be read, and all is on the disk.
    virtual bool Import(const String& text);

    /// Tries once more to write what could not be written, without waiting for other processes. For
    /// a tick: costs next to nothing while there is none.
    void WriteWaiting();
    /// Another number than before when values may have changed since, by whomever; costs a look at
    /// the file.
    uint64_t GetRevision() const;

    /// With "\" between the parts.
    const String& GetKeyPath() const { return keyPath; }

private:
    class Store;

    std::shared_ptr<Store> GetStore(const String& subPath) const;
    void Set(const String& name, DictionaryValue value);

    const String keyPath;
    const std::shared_ptr<Store> store; // one a path and process
};

class ConfigFile::Collection {
public:
    /// The file outlives the collection.
    explicit Collection(ConfigFile& newFile);
    Collection(const Collection&) = delete;
    Collection& operator=(const Collection&) = delete;
    ~Collection();

private:
    ConfigFile& file;
};

} // namespace Util
