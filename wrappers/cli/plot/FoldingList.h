// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace Cli {

/// A list of equally long spans of time that never has more than `limit` entries: when it is full,
/// neighbours are folded into one and every further entry covers twice as long. `Column` has a
/// method Fold(const Column&) that takes another span in.
template <typename Column>
class FoldingList {
public:
    /// `limit` is even and at least 2.
    explicit FoldingList(size_t newLimit)
        : limit(newLimit)
    {
    }

    void Add(Column column)
    {
        if (pending == 0) {
            entries.push_back(std::move(column));
        } else {
            entries.back().Fold(column);
        }
        pending = (pending + 1) % span;
        if (pending == 0 && entries.size() == limit) {
            Halve();
        }
    }

    const std::vector<Column>& GetEntries() const { return entries; }

    /// Added columns that one entry stands for.
    size_t GetSpan() const { return span; }

private:
    void Halve()
    {
        for (size_t i = 0; i < entries.size() / 2; ++i) {
            Column folded = std::move(entries[2 * i]);
            folded.Fold(entries[2 * i + 1]);
            entries[i] = std::move(folded);
        }
        entries.resize(entries.size() / 2);
        span *= 2;
    }

    size_t limit;
    size_t span = 1;
    size_t pending = 0; // columns in the last entry, 0 when it is complete
    std::vector<Column> entries;
};

} // namespace Cli
