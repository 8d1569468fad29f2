// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"
#include "frameworks/qobase/util/String.h"

#include <array>
#include <optional>
#include <vector>

/// One state of an instance, as a whole, and what a person did to reach it.
struct Snapshot {
    Util::Bytes bytes; ///< a state chunk
    String label;
};

/// The states that a user can go back to.
struct HistoryModel {
    /// Oldest first.
    std::vector<Snapshot> snapshots;
    /// Places for comparison: each refers to a snapshot by its index. An index past the end is one
    /// whose snapshot is gone.
    std::array<std::optional<uint32_t>, 4> slots;
};
