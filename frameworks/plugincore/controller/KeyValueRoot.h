// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/KeyValueCoding.h"

#include <map>

namespace Controller {

/// Where key paths start: objects under keys that the owner chooses, such as the set of elements
/// under "dsp" for "dsp.PuffGuard.Sensitivity". [ui]
class KeyValueRoot final : public KeyValueCoding {
public:
    /// The object outlives the root, or goes with Remove(). Takes the place of a former one.
    void Add(const String& key, KeyValueCoding& object) { objects[key] = &object; }
    void Remove(const String& key) { objects.erase(key); }

    std::any ValueForKey(const String& key) override;
    std::set<String> AllKeys() override;

private:
    std::map<String, KeyValueCoding*> objects; // not owned
};

} // namespace Controller
