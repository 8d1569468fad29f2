// SPDX-License-Identifier: ISC
#pragma once

namespace Util {

/// Sets a flag, bool or atomic, from here to the end of the scope, also when an exception ends it.
template <typename Flag>
class ScopedFlag {
public:
    explicit ScopedFlag(Flag& newFlag)
        : flag(newFlag)
    {
        flag = true;
    }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;
    ~ScopedFlag() { flag = false; }

private:
    Flag& flag;
};

} // namespace Util
