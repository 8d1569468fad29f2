// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Exception.h"

namespace Exception {

/// The file is no undo history, or not one of this instance.
class InvalidHistoryFile final : public Base {
public:
    using Base::Base;

    [[nodiscard]] String Describe() const override;
};

} // namespace Exception
