// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/LagSearch.h"

#include "frameworks/plugincore/dsp/kernels/LaneMask.h"
#include "frameworks/plugincore/dsp/kernels/LevelSets.h"
#include "frameworks/plugincore/dsp/kernels/Vector.h"

namespace DSP::Kernels::PUFFGUARD_LEVEL {

namespace {

constexpr int L = LevelLanes < 8 ? LevelLanes : 8; // stretches are too short for more
using V = Vector<float, L>;
using Ints = Vector<int, L>;

constexpr int ErasedAnyway = 5;

void Score(const ScoreTimes& times,
           const float* values,
           float* smoothed,
           float* weights,
           float* scores,
           std::ptrdiff_t count) noexcept
{
    const V rise = Broadcast<L>(times.rise);
    const V fall = Broadcast<L>(times.fall);
    const V relaxation = Broadcast<L>(times.relaxation);
    for (std::ptrdiff_t i = 0; i < count; i += L) {
        const V value = Load<L>(values + i);
        const V from = Load<L>(smoothed + i);
        const V next = from + (value - from) * (value <= from ? fall : rise);
        const V state = next < LeastSmoothed ? V{} : next;
        const V weight = Load<L>(weights + i);
        Store(smoothed + i, state);
        Store(scores + i, weight * state);
        Store(weights + i, weight + (1.0F - weight) * relaxation);
    }
}

V GetLarger(V a, V b) noexcept
{
    return a > b ? a : b;
}

float GetLargest(V lanes) noexcept
{
    float values[L];
    Store(values, lanes);
    for (int width = L / 2; width > 0; width /= 2) {
        for (int i = 0; i < width; ++i) {
            values[i] = values[i + width] > values[i] ? values[i + width] : values[i];
        }
    }
    return values[0];
}

/// What lies behind `last` is 0 and loses against any other value, and against an equal one since
/// it comes later.
int FindFirstLargest(const float* values, int first, int last) noexcept
{
    V even = Load<L>(values + first);
    V odd = even;
    int i = first + L;
    for (; i + L <= last; i += 2 * L) {
        even = GetLarger(Load<L>(values + i), even);
        odd = GetLarger(Load<L>(values + i + L), odd);
    }
    if (i <= last) {
        even = GetLarger(Load<L>(values + i), even);
    }
    const V largest = Broadcast<L>(GetLargest(GetLarger(odd, even)));
    for (i = first; i <= last; i += L) {
        const unsigned found = GetMask<L>(Load<L>(values + i) == largest);
        if (found != 0) {
            return i + __builtin_ctz(found);
        }
    }
    return first; // only values that are no numbers come here
}

/// First index from `start` to `last` whose value is above the one before, or last + 1.
int FindRise(const float* values, int start, int last) noexcept
{
    for (int i = start; i <= last; i += L) {
        const unsigned rises = GetMask<L>(Load<L>(values + i) > Load<L>(values + i - 1));
        if (rises != 0) {
            const int found = i + __builtin_ctz(rises);
            return found <= last ? found : last + 1;
        }
    }
    return last + 1;
}

/// Largest index up to `start` whose value is above the one behind, or -1.
int FindRiseBefore(const float* values, int start) noexcept
{
    int end = start + 1;
    for (; end >= L; end -= L) {
        const float* const at = values + end - L;
        const unsigned rises = GetMask<L>(Load<L>(at) > Load<L>(at + 1));
        if (rises != 0) {
            return end - L + 31 - __builtin_clz(rises);
        }
    }
    while (end > 0 && !(values[end - 1] > values[end])) {
        --end;
    }
    return end - 1;
}

void Zero(float* values, int first, int last) noexcept
{
    int i = first;
    for (; i + L <= last + 1; i += L) {
        Store(values + i, V{});
    }
    if (i <= last && last + 1 - L >= first) {
        Store(values + last + 1 - L, V{}); // some of it for the second time
        return;
    }
    for (; i <= last; ++i) {
        values[i] = 0;
    }
}

void ErasePeak(float* values, int centre, int last) noexcept
{
    const int before = FindRiseBefore(values, centre - ErasedAnyway);
    const int behind = FindRise(values, centre + ErasedAnyway, last);
    Zero(values, before < 0 ? 0 : before + 1, behind - 1 < last ? behind - 1 : last);
}

/// Calls change(weight, bell) for the lags of the bell and writes what it answers.
template <typename Change>
void ForBell(const BellTable& table, const Bell& bell, float* weights, Change change) noexcept
{
    const int count = 2 * table.margin + 1;
    float* const start = weights + bell.index - table.margin;
    const V cosine = Broadcast<L>(bell.cosine);
    const V sine = Broadcast<L>(bell.sine);
    Ints lane;
    for (int i = 0; i < L; ++i) {
        lane[i] = i;
    }
    for (int i = 0; i < count; i += L) {
        const V value = Load<L>(table.cosines + i) * cosine + Load<L>(table.sines + i) * sine;
        const V weight = Load<L>(start + i);
        const V changed = change(weight, value * 0.5F + 0.5F);
        Store(start + i, lane < count - i ? changed : weight);
    }
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

constinit const LagSearchKernels lagSearch = {.score = Score,
                                              .findFirstLargest = FindFirstLargest,
                                              .erasePeak = ErasePeak,
                                              .raise = Raise,
                                              .lower = Lower};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
