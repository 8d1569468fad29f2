// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileError.h"

#include <unistd.h>

#include <cstddef>
#include <span>
#include <string_view>
#include <type_traits>

namespace Cli {

/// Writes objects behind those that `file` holds already. Throws FileError.
template <typename Object>
void AppendObjects(const FileDescriptor& file, std::span<const Object> objects)
{
    static_assert(std::is_trivially_copyable_v<Object>);
    const auto bytes = std::as_bytes(objects);
    const int failure =
        WriteFully(file.Get(), {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    if (failure != 0) {
        throw FileError("temporary file: " + std::string(FileError::FromErrno(failure).what()));
    }
}

/// Reads those from number `first` on back. Throws FileError.
template <typename Object>
void ReadObjects(const FileDescriptor& file, std::size_t first, std::span<Object> objects)
{
    const auto offset = static_cast<off_t>(first * sizeof(Object));
    if (::pread(file.Get(), objects.data(), objects.size_bytes(), offset) !=
        static_cast<ssize_t>(objects.size_bytes())) {
        throw FileError("a temporary file can't be read back");
    }
}

} // namespace Cli
