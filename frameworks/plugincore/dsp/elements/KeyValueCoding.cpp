// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/elements/KeyValueCoding.h"

namespace Controller {

std::any KeyValueCoding::ValueForKeyPath(const String& path)
{
    const auto dot = path.Find(".");
    if (!dot) {
        return ValueForKey(path);
    }
    const std::any head = ValueForKey(path.Left(*dot));
    auto* const* part = std::any_cast<KeyValueCoding*>(&head);
    return part != nullptr && *part != nullptr ? (*part)->ValueForKeyPath(path.Mid(*dot + 1))
                                               : std::any();
}

} // namespace Controller
