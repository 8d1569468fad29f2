// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Dictionary.h"

#include <utility>

namespace Util {

// Here, and not in the header, since a value holds dictionaries in turn.
Dictionary::Dictionary() = default;
Dictionary::Dictionary(const Dictionary& other) = default;
Dictionary::Dictionary(Dictionary&& other) noexcept = default;
Dictionary& Dictionary::operator=(const Dictionary& other) = default;
Dictionary& Dictionary::operator=(Dictionary&& other) noexcept = default;
Dictionary::~Dictionary() = default;

void Dictionary::Set(const String& key, DictionaryValue value)
{
    values.insert_or_assign(key, std::move(value));
}

bool Dictionary::IsEmpty() const
{
    return values.empty();
}

bool Dictionary::Has(const String& key) const
{
    return values.contains(key);
}

void Dictionary::Remove(const String& key)
{
    values.erase(key);
}

Dictionary::Map::const_iterator Dictionary::begin() const
{
    return values.begin();
}

Dictionary::Map::const_iterator Dictionary::end() const
{
    return values.end();
}

bool operator==(const Dictionary& left, const Dictionary& right)
{
    return left.values == right.values;
}

} // namespace Util
