// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Exception.h"

namespace Util::Exception {

/// A typed stream can't read or write what it was asked for, or can't believe what it read.
class DataStreamIO final : public ::Exception::Base {
public:
    using Base::Base;

    [[nodiscard]] String Describe() const override;
};

} // namespace Util::Exception
