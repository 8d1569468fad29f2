// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/DebugTrace.h"

#include <cstdio>
#include <mutex>
#include <utility>

namespace Util {
namespace {

struct Trace {
    std::mutex mutex; // guards the sink, and keeps lines whole
    DebugTraceSink sink;
};

Trace& GetTrace()
{
    static Trace trace;
    return trace;
}

#ifdef NDEBUG
constexpr bool WritesByDefault = false;
#else
constexpr bool WritesByDefault = true;
#endif

} // namespace

void DebugTrace(const String& text) noexcept
{
    try {
        Trace& trace = GetTrace();
        const std::scoped_lock lock(trace.mutex);
        if (trace.sink) {
            trace.sink(text);
        } else if (WritesByDefault) {
            std::fprintf(stderr, "%s\n", text.c_str());
        }
    } catch (...) {
        // A diagnostic that can't be written must not stop the program, and there is nobody to
        // tell.
        return;
    }
}

void SetDebugTraceSink(DebugTraceSink sink)
{
    Trace& trace = GetTrace();
    const std::scoped_lock lock(trace.mutex);
    trace.sink = std::move(sink);
}

} // namespace Util
