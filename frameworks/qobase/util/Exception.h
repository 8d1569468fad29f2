// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <cstdint>

namespace Exception {

/// Base of the few faults that are thrown: logic errors, and stream faults on their way to the
/// layer that began the operation. Remembers where it was made and `errno` at that moment.
class Base {
public:
    /// The place is that of the caller: leave both arguments out. (The compilers' built-ins serve
    /// all of them; std::source_location doesn't yet.)
    explicit Base(String newMessage,
                  const char* newFile = __builtin_FILE(),
                  uint32_t newLine = __builtin_LINE());
    Base(const Base&) = default;
    Base(Base&&) = default;
    Base& operator=(const Base&) = default;
    Base& operator=(Base&&) = default;
    virtual ~Base() = default;

    /// Message, place and last error, for a log. A derived class adds its own name at the end.
    [[nodiscard]] virtual String Describe() const;

    [[nodiscard]] const String& GetMessage() const noexcept { return message; }
    [[nodiscard]] const String& GetFile() const noexcept { return file; }
    [[nodiscard]] uint32_t GetLine() const noexcept { return line; }
    [[nodiscard]] int32_t GetLastError() const noexcept { return lastError; }

private:
    int32_t lastError; // first: taken before the texts allocate, which may change errno
    String message;
    String file;
    uint32_t line;
};

} // namespace Exception
