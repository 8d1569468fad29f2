// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

/// The texts of a product in the language of an instance. This one has a text for nothing, so that
/// all stay as they are. [any]
class Translator {
public:
    Translator() = default;
    Translator(const Translator&) = delete;
    Translator& operator=(const Translator&) = delete;
    virtual ~Translator() = default;

    /// `text` itself where there is no translation.
    virtual String Translate(const String& text) const { return text; }
};
