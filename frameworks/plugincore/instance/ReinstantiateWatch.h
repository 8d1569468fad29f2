// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <filesystem>
#include <optional>

/// Watches the file "reinstantiate.txt" in a folder of layouts that are being worked on: whoever
/// touches it wants the instance to be built anew. Threads: one at a time. [ui]
class ReinstantiateWatch {
public:
    /// An empty folder is none, and nothing is watched.
    explicit ReinstantiateWatch(const String& folder);

    /// True once for each change since the last call, or since construction. That the file has gone
    /// is no change.
    bool TakeChange();

private:
    using Time = std::filesystem::file_time_type;

    std::optional<Time> ReadTime() const;

    const std::filesystem::path file; // empty: none
    std::optional<Time> known;
};
