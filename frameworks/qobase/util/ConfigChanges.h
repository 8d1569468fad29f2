// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Dictionary.h"

#include <map>
#include <optional>

namespace Util {

/// What is to become of some values, whatever all of them are by then: later changes of a name take
/// the place of former ones. Threads: as any value.
class ConfigChanges {
public:
    void Set(const String& name, DictionaryValue value);
    void Remove(const String& name);
    void RemoveAll();
    /// Puts later changes on top of these.
    void Add(const ConfigChanges& later);

    bool IsEmpty() const { return !removesOthers && named.empty(); }
    Dictionary ApplyTo(Dictionary values) const;

private:
    bool removesOthers = false;                             // values that `named` doesn't name
    std::map<String, std::optional<DictionaryValue>> named; // empty: to be removed
};

} // namespace Util
