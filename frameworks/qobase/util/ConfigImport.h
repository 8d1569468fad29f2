// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Dictionary.h"

namespace Util {

struct ImportedSettings {
    Dictionary values;      ///< texts, numbers (uint32 or int32) and binary runs
    bool isComplete = true; ///< false when a line could not be read
};

/// Reads settings from the form that ConfigFile::Import() states. [any]
ImportedSettings ParseSettings(const String& text);

} // namespace Util
