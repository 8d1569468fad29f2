// SPDX-License-Identifier: ISC
#pragma once

#include <exception>

namespace Wrapper {

/// What `function` gives, or `onFault`: nothing may be thrown into a host. What can be is a lack of
/// memory. [any]
template <typename Result, typename Function>
Result Guarded(Result onFault, Function&& function) noexcept
{
    try {
        return function();
    } catch (const std::exception&) {
        return onFault;
    }
}

} // namespace Wrapper
