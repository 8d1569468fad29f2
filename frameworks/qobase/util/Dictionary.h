// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"
#include "frameworks/qobase/util/String.h"

#include <cstdint>
#include <map>
#include <variant>
#include <vector>

namespace Util {

struct DictionaryValue;

/// Typed values by key, in byte order of the keys; the tree that saved state is made of. One object
/// is not changed while another thread reads it.
class Dictionary {
public:
    using Map = std::map<String, DictionaryValue>;

    Dictionary();
    Dictionary(const Dictionary& other);
    Dictionary(Dictionary&& other) noexcept;
    Dictionary& operator=(const Dictionary& other);
    Dictionary& operator=(Dictionary&& other) noexcept;
    ~Dictionary();

    /// Replaces a value of this key.
    void Set(const String& key, DictionaryValue value);
    /// Null when there is no value of this key, or one of another type.
    template <typename T>
    const T* Find(const String& key) const;
    bool IsEmpty() const;
    bool Has(const String& key) const;
    /// Nothing happens when there is no value of this key.
    void Remove(const String& key);

    Map::const_iterator begin() const;
    Map::const_iterator end() const;

    friend bool operator==(const Dictionary& left, const Dictionary& right);

private:
    Map values;
};

/// One value; the order of the alternatives is that of the types' tags.
struct DictionaryValue {
    using Array = std::vector<DictionaryValue>;
    using Variant = std::variant<uint32_t, int32_t, double, bool, String, Bytes, Dictionary, Array>;

    Variant value;

    bool operator==(const DictionaryValue& other) const = default;
};

template <typename T>
const T* Dictionary::Find(const String& key) const
{
    const auto found = values.find(key);
    return found == values.end() ? nullptr : std::get_if<T>(&found->second.value);
}

} // namespace Util
