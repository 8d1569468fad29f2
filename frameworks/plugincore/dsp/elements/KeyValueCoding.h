// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <any>
#include <set>

// The two abstract classes of this namespace that stand in this folder, and not with the
// controllers, are those through which the set of elements shows its parameters: this folder
// doesn't know the other one.
namespace Controller {

/// An object whose parts are reached by name, so that a layout or a command can name a parameter by
/// a dotted path. A part that has parts itself is held as a `KeyValueCoding*`. [ui]
class KeyValueCoding {
public:
    KeyValueCoding() = default;
    KeyValueCoding(const KeyValueCoding&) = delete;
    KeyValueCoding& operator=(const KeyValueCoding&) = delete;
    virtual ~KeyValueCoding() = default;

    /// Empty for an unknown key. What a pointer points to stays this object's.
    virtual std::any ValueForKey(const String& /*key*/) { return {}; }
    /// Follows the parts of `path`, separated by ".". Empty when a part but the last is no object
    /// with parts of its own.
    virtual std::any ValueForKeyPath(const String& path);
    virtual std::set<String> AllKeys() { return {}; }
};

} // namespace Controller
