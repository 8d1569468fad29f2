// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/KeyValueRoot.h"

namespace Controller {

std::any KeyValueRoot::ValueForKey(const String& key)
{
    const auto found = objects.find(key);
    return found != objects.end() ? std::any(found->second) : std::any();
}

std::set<String> KeyValueRoot::AllKeys()
{
    std::set<String> keys;
    for (const auto& [key, object] : objects) {
        keys.insert(key);
    }
    return keys;
}

} // namespace Controller
