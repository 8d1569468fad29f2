// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Realtime.h"

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace Util {
namespace {

#if defined(__SSE2__)

constexpr uint64_t FlushMode = 0x8040; // MXCSR: flush-to-zero is bit 15, denormals-are-zero bit 6

uint64_t ReadMode() noexcept
{
    return _mm_getcsr();
}

void WriteMode(uint64_t mode) noexcept
{
    _mm_setcsr(static_cast<unsigned>(mode));
}

#elif defined(__aarch64__)

constexpr uint64_t FlushMode = uint64_t{1} << 24; // FPCR.FZ covers both directions

uint64_t ReadMode() noexcept
{
    uint64_t mode = 0;
    asm volatile("mrs %0, fpcr" : "=r"(mode));
    return mode;
}

void WriteMode(uint64_t mode) noexcept
{
    asm volatile("msr fpcr, %0" : : "r"(mode));
}

#else

constexpr uint64_t FlushMode = 0;

uint64_t ReadMode() noexcept
{
    return 0;
}

void WriteMode(uint64_t) noexcept {}

#endif

} // namespace

ScopedDenormalGuard::ScopedDenormalGuard() noexcept UTIL_NONBLOCKING : savedMode(ReadMode())
{
    WriteMode(savedMode | FlushMode);
}

ScopedDenormalGuard::~ScopedDenormalGuard()
{
    WriteMode(savedMode);
}

} // namespace Util
