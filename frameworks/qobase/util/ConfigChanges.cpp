// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/ConfigChanges.h"

#include <utility>

namespace Util {

void ConfigChanges::Set(const String& name, DictionaryValue value)
{
    named[name] = std::move(value);
}

void ConfigChanges::Remove(const String& name)
{
    named[name].reset();
}

void ConfigChanges::RemoveAll()
{
    removesOthers = true;
    named.clear();
}

void ConfigChanges::Add(const ConfigChanges& later)
{
    if (later.removesOthers) {
        RemoveAll();
    }
    for (const auto& [name, value] : later.named) {
        named[name] = value;
    }
}

Dictionary ConfigChanges::ApplyTo(Dictionary values) const
{
    if (removesOthers) {
        values = {};
    }
    for (const auto& [name, value] : named) {
        if (value) {
            values.Set(name, *value);
        } else {
            values.Remove(name);
        }
    }
    return values;
}

} // namespace Util
