// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <type_traits>

namespace DSP {

/// A plain record that one thread writes and any number of threads read, none of them waiting.
///
/// The record travels in words under a sequence number, which is odd while they are being written
/// and twice the record's tag afterwards. A reader that finds the same even number before and after
/// has read one whole record. Words are atomics of their own, so that a torn read, though thrown
/// away, is no data race.
template <typename T>
class PublishedRecord {
    static_assert(std::is_trivially_copyable_v<T> && sizeof(T) % sizeof(uint64_t) == 0);

public:
    /// A record with the tag that it was stored under.
    struct Tagged {
        T record;
        uint64_t tag;
    };

    /// Publishes a record; tags are above 0 and differ from the one before. [process]
    void Store(const T& record, uint64_t tag) noexcept UTIL_NONBLOCKING
    {
        std::array<uint64_t, WordCount> values{};
        std::memcpy(values.data(), &record, sizeof record);
        sequence.store(2 * tag - 1, std::memory_order_relaxed);
        for (std::size_t i = 0; i < WordCount; ++i) {
            // Pairs with the load of the same word: whoever sees the word sees the odd number, too.
            words[i].store(values[i], std::memory_order_release);
        }
        // Pairs with the first load of the sequence: whoever sees this number sees all words.
        sequence.store(2 * tag, std::memory_order_release);
    }

    /// The record; empty when there is none yet or when it is being replaced just now. [any]
    std::optional<Tagged> Load() const noexcept
    {
        const uint64_t before = sequence.load(std::memory_order_acquire);
        std::array<uint64_t, WordCount> values{};
        for (std::size_t i = 0; i < WordCount; ++i) {
            values[i] = words[i].load(std::memory_order_acquire);
        }
        // Ordered behind the words, each of which was an acquiring load.
        const uint64_t after = sequence.load(std::memory_order_relaxed);
        if (before != after || before % 2 != 0 || before == 0) {
            return std::nullopt;
        }
        Tagged tagged{};
        std::memcpy(&tagged.record, values.data(), sizeof tagged.record);
        tagged.tag = before / 2;
        return tagged;
    }

private:
    static constexpr std::size_t WordCount = sizeof(T) / sizeof(uint64_t);
    static_assert(std::atomic<uint64_t>::is_always_lock_free);

    std::atomic<uint64_t> sequence{0};
    std::array<std::atomic<uint64_t>, WordCount> words{};
};

} // namespace DSP
