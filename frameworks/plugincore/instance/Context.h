// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Dictionary.h"

namespace Context {

/// What a product saves in a session beside the values of its elements, such as what its editor
/// shows. One object belongs to one instance, under its UI lock; here there is nothing. [ui]
class ContextBase {
public:
    ContextBase() = default;
    ContextBase(const ContextBase&) = delete;
    ContextBase& operator=(const ContextBase&) = delete;
    virtual ~ContextBase() = default;

    virtual Util::Dictionary SaveContext() const { return {}; }
    /// What counts when two states are compared.
    virtual Util::Dictionary SaveCompareContext() const { return {}; }
    virtual void LoadContext(const Util::Dictionary& /*saved*/) {}
    /// In place of LoadContext() for a state that was saved by an untouched instance.
    virtual void LoadDefaultContext(const Util::Dictionary& /*saved*/) {}
};

} // namespace Context
