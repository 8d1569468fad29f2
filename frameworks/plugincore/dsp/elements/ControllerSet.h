// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/KeyValueCoding.h"

namespace Controller {

class BoolParam;
class EnumParam;
class FloatParam;

/// The parameters of one element as the user interface binds to them, made when they are first
/// asked for. Asked for by key, a parameter is a `FloatParam*`, `EnumParam*` or `BoolParam*`. [ui]
class ControllerSet : public KeyValueCoding {
public:
    /// Null for an unknown name and for a parameter of another type. The set owns what it answers,
    /// and answers the same object each time.
    virtual EnumParam* GetEnumController(const String& name) = 0;
    virtual BoolParam* GetBoolController(const String& name) = 0;
    virtual FloatParam* GetFloatController(const String& name) = 0;
};

} // namespace Controller
