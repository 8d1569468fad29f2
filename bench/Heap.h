// SPDX-License-Identifier: ISC
#pragma once

#include <malloc.h>

#include <cstddef>

namespace Bench {

/// Bytes that the heap has given out, in its arenas and as mappings of their own.
inline std::size_t GetHeapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace Bench
