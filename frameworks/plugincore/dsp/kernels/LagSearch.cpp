// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/LagSearch.h"

#include "frameworks/plugincore/dsp/kernels/LaneMask.h"
#include "frameworks/plugincore/dsp/kernels/LevelSets.h"
#include "frameworks/plugincore/dsp/kernels/Vector.h"

#include <utility>

namespace DSP::Kernels::PUFFGUARD_LEVEL {

namespace {

constexpr int L = LevelLanes < 8 ? LevelLanes : 8; // stretches are too short for more
using V = Vector<float, L>;
using Ints = Vector<int, L>;

template <int... Lane>
constexpr Ints CountLanes(std::integer_sequence<int, Lane...> /*all*/) noexcept
{
    return Ints{Lane...};
}

/// The index of each lane.
constexpr Ints Lanes = CountLanes(std::make_integer_sequence<int, L>{});

V GetLarger(V a, V b) noexcept
{
    return a > b ? a : b;
}

/// The largest lane, in all lanes.
template <int... Lane>
V SpreadLargest(V lanes, std::integer_sequence<int, Lane...> /*all*/) noexcept
{
    if constexpr (L == 8) {
        lanes = GetLarger(lanes, __builtin_shufflevector(lanes, lanes, (Lane ^ 4)...));
    }
    lanes = GetLarger(lanes, __builtin_shufflevector(lanes, lanes, (Lane ^ 2)...));
    return GetLarger(lanes, __builtin_shufflevector(lanes, lanes, (Lane ^ 1)...));
}

/// Renews the maxima of what lies between these indices: one vector for four of values, lane by
/// lane.
void Renew(LagScores scores, int first, int last) noexcept
{
    for (int i = first / (4 * L) * (4 * L); i <= last; i += 4 * L) {
        const float* const at = scores.values + i;
        const V left = GetLarger(Load<L>(at), Load<L>(at + L));
        const V right = GetLarger(Load<L>(at + 2 * L), Load<L>(at + 3 * L));
        Store(scores.maxima + i / 4, GetLarger(left, right));
    }
}

/// Zeroes so many values, up to L.
void ZeroFew(float* values, int count) noexcept
{
    Store(values, Lanes < count ? V{} : Load<L>(values));
}

/// Zeroes up to `last`, and renews the maxima.
void Exclude(LagScores scores, int last) noexcept
{
    for (int i = 0; i <= last; i += L) {
        ZeroFew(scores.values + i, last + 1 - i);
    }
    Renew(scores, 0, last);
}

void Score(const ScoreTimes& times,
           const float* values,
           LagState state,
           int firstLag,
           LagScores scores) noexcept
{
    const V rise = Broadcast<L>(times.rise);
    const V fall = Broadcast<L>(times.fall);
    const V relaxation = Broadcast<L>(times.relaxation);
    for (std::ptrdiff_t i = 0; i < scores.count; i += 4 * L) {
        V largest{};
        for (std::ptrdiff_t at = i; at < i + 4 * L; at += L) {
            const V value = Load<L>(values + at);
            const V from = Load<L>(state.smoothed + at);
            const V next = from + (value - from) * (value <= from ? fall : rise);
            const V smoothed = next < LeastSmoothed ? V{} : next;
            const V weight = Load<L>(state.weights + at);
            const V score = weight * smoothed;
            Store(state.smoothed + at, smoothed);
            Store(scores.values + at, score);
            Store(state.weights + at, weight + (1.0F - weight) * relaxation);
            largest = GetLarger(score, largest);
        }
        Store(scores.maxima + i / 4, largest);
    }
    Exclude(scores, firstLag - 1);
}

int FindFirstLargest(LagScores scores) noexcept
{
    const std::ptrdiff_t parts = scores.count / 4;
    V lanes{};
    for (std::ptrdiff_t i = 0; i < parts; i += L) {
        lanes = GetLarger(Load<L>(scores.maxima + i), lanes);
    }
    const V largest = SpreadLargest(lanes, std::make_integer_sequence<int, L>{});
    std::ptrdiff_t part = 0;
    while (part < parts && GetMask<L>(Load<L>(scores.maxima + part) == largest) == 0) {
        part += L;
    }
    for (std::ptrdiff_t i = 4 * part; i < scores.count; i += L) {
        const unsigned found = GetMask<L>(Load<L>(scores.values + i) == largest);
        if (found != 0) {
            return static_cast<int>(i) + __builtin_ctz(found);
        }
    }
    return 0; // only values that are no numbers come here
}

/// Zeroes from `start` down to where the next value is above the one before; answers the lowest
/// index zeroed.
int EraseDown(float* values, int start) noexcept
{
    int end = start;
    for (; end >= L; end -= L) {
        float* const at = values + end - L;
        const unsigned rises = GetMask<L>(Load<L>(at) > Load<L>(at + 1));
        if (rises != 0) {
            const int lowest = end - L + 32 - __builtin_clz(rises);
            ZeroFew(values + lowest, end + 1 - lowest);
            return lowest;
        }
        Store(at + 1, V{});
    }
    int lowest = end;
    while (lowest > 0 && !(values[lowest - 1] > values[lowest])) {
        --lowest;
    }
    ZeroFew(values + lowest, end + 1 - lowest);
    return lowest;
}

/// Zeroes from `start` up to where the next value is above the one before, but no further than
/// `last`, behind which all is 0; answers the highest index zeroed.
int EraseUp(float* values, int start, int last) noexcept
{
    int i = start;
    for (; i < last; i += L) {
        const unsigned rises = GetMask<L>(Load<L>(values + i + 1) > Load<L>(values + i));
        if (rises != 0) {
            const int count = 1 + __builtin_ctz(rises);
            ZeroFew(values + i, count);
            return i + count - 1;
        }
        Store(values + i, V{});
    }
    values[i] = 0;
    return last;
}

struct Range {
    int first;
    int last;
};

Range EraseAround(float* values, int centre, int last) noexcept
{
    constexpr int Reach = 4; // what is erased anyway
    const int end = EraseUp(values, centre + Reach, last);
    if (centre < Reach) {
        for (int i = 0; i < centre + Reach; ++i) {
            values[i] = 0;
        }
        return {0, end};
    }
    const int first = EraseDown(values, centre - Reach);
    for (int i = 1; i < 2 * Reach; i += L) {
        Store(values + centre - Reach + i, V{}); // the last of these is zero already
    }
    return {first, end};
}

void ErasePeak(float* values, int centre, int last) noexcept
{
    EraseAround(values, centre, last);
}

void EraseScore(LagScores scores, int centre, int last) noexcept
{
    const Range erased = EraseAround(scores.values, centre, last);
    Renew(scores, erased.first, erased.last);
}

/// Calls change(weight, bell) for the lags of the bell and writes what it answers.
template <typename Change>
void ForBell(const BellTable& table, const Bell& bell, float* weights, Change change) noexcept
{
    const int count = 2 * table.margin + 1;
    float* const start = weights + bell.index - table.margin;
    const V cosine = Broadcast<L>(bell.cosine * 0.5F); // exact: halves of sums are sums of halves
    const V sine = Broadcast<L>(bell.sine * 0.5F);
    const auto apply = [&](int i, V weight) noexcept {
        const V half = Load<L>(table.cosines + i) * cosine + Load<L>(table.sines + i) * sine;
        return change(weight, half + 0.5F);
    };
    int i = 0;
    for (; i + L <= count; i += L) {
        Store(start + i, apply(i, Load<L>(start + i)));
    }
    const V weight = Load<L>(start + i);
    Store(start + i, Lanes < count - i ? apply(i, weight) : weight);
}

void Raise(const BellTable& table, const Bell& bell, float slope, float* weights) noexcept
{
    ForBell(table, bell, weights, [slope](V weight, V height) noexcept {
        const V raised = height * slope + 1.0F;
        return raised > weight ? raised : weight;
    });
}

void Lower(const BellTable& table, const Bell& bell, float depth, float* weights) noexcept
{
    ForBell(table, bell, weights, [depth](V weight, V height) noexcept {
        const V lowered = 1.0F - height * depth;
        return lowered < weight ? lowered : weight;
    });
}

} // namespace

constinit const LagSearchKernels LagSearches = {.score = Score,
                                                .findFirstLargest = FindFirstLargest,
                                                .erasePeak = ErasePeak,
                                                .eraseScore = EraseScore,
                                                .raise = Raise,
                                                .lower = Lower};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
