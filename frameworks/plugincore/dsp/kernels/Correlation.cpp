// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/Correlation.h"

#include "frameworks/plugincore/dsp/kernels/LaneMask.h"
#include "frameworks/plugincore/dsp/kernels/LaneTransform.h"
#include "frameworks/plugincore/dsp/kernels/LaneTranspose.h"
#include "frameworks/plugincore/dsp/kernels/LevelSets.h"
#include "frameworks/plugincore/dsp/kernels/Vector.h"

#include <utility>

namespace DSP::Kernels::PUFFGUARD_LEVEL {

namespace {

template <int L>
Vector<float, L> Sqrt(Vector<float, L> values)
{
    Vector<float, L> roots;
    for (int lane = 0; lane < L; ++lane) {
        roots[lane] = __builtin_sqrtf(values[lane]);
    }
    return roots;
}

/// Doubles, two vectors of half as many lanes each: the compiler has no good way with one that is
/// wider than a register.
template <int L>
struct WideLanes {
    using Half = Vector<double, L / 2>;
    Half low;
    Half high;

    static WideLanes From(Vector<float, L> lanes)
    {
        constexpr auto Indices = std::make_integer_sequence<int, L / 2>{};
        Vector<float, L / 2> halves[2];
        __builtin_memcpy(halves, &lanes, sizeof lanes);
        return {Widen(halves[0], Indices), Widen(halves[1], Indices)};
    }

    // Lane by lane: g++ makes one instruction of this, but five of its conversion of vectors.
    template <int... i>
    static Half Widen(Vector<float, L / 2> lanes, std::integer_sequence<int, i...> /*indices*/)
    {
        return Half{static_cast<double>(lanes[i])...};
    }

    Vector<float, L> Narrow() const
    {
        const Vector<float, L / 2> halves[2] = {
            __builtin_convertvector(low, Vector<float, L / 2>),
            __builtin_convertvector(high, Vector<float, L / 2>)};
        Vector<float, L> lanes;
        __builtin_memcpy(&lanes, halves, sizeof lanes);
        return lanes;
    }

    WideLanes operator+(WideLanes b) const { return {low + b.low, high + b.high}; }
    WideLanes operator-(WideLanes b) const { return {low - b.low, high - b.high}; }
    WideLanes operator*(double b) const { return {low * b, high * b}; }
};

/// L frames on their way from samples to correlations.
template <int L>
struct Batch {
    using V = Vector<float, L>;
    using Wide = WideLanes<L>;
    using Ints = Vector<int, L>;
    using Transform = LaneTransform<L>;
    using Complex = ComplexVector<L>;

    /// Differences wait in chunks so that the sums' registers are free meanwhile.
    static constexpr int FoldChunk = 8;

    const CorrelationPlan& plan;
    const PolyphaseView source;      ///< of the first of these frames
    float* const spectrum = nullptr; ///< N elements
    float* const folded = nullptr;   ///< N / 2 elements: N real values
    float* const lags = nullptr;     ///< correlations, a row of lanes a lag

    /// Elements between the legs of the first stage's butterflies.
    Index GetFirstStep() const { return plan.whole.length / 4; }

    /// The windowed samples 2 k and 2 k + 1 of each frame as an element, k = p + leg * step. Legs
    /// lie whole rows of phases apart.
    [[gnu::always_inline]] Complex GetSamples(Index p, int leg) const
    {
        const Index i = 2 * p;
        const Index legSamples = 2 * GetFirstStep() * leg;
        const Index row = i & ((Index{1} << source.stepShift) - 1);
        const float* const at = source.samples + row * source.rowLength + (i >> source.stepShift) +
                                (legSamples >> source.stepShift);
        const float* const window = plan.window + i + legSamples;
        return {Load<L>(at) * window[0], Load<L>(at + source.rowLength) * window[1]};
    }

    /// Butterfly of the transform's first stage of which the first `Legs` of four elements lie
    /// within the frame. What lies behind its end is 0, so it is neither read nor added.
    template <int Legs>
    [[gnu::always_inline]] Four<L> GetFirstButterfly(Index p) const
    {
        const Complex a = GetSamples(p, 0);
        if constexpr (Legs == 1) {
            return {a, a, a, a};
        } else {
            const Complex b = GetSamples(p, 1);
            const Complex turned = TimesMinusI(b);
            if constexpr (Legs == 2) {
                return {a + b, a + turned, a - b, a - turned};
            } else {
                const Complex c = GetSamples(p, 2);
                return {(a + c) + b, (a - c) + turned, (a + c) - b, (a - c) - turned};
            }
        }
    }

    template <int Legs>
    void RunFirstButterflies(Index p, Index end) const
    {
        for (; p < end; ++p) {
            Transform::PutTurned(spectrum + 2 * L * p,
                                 GetFirstStep(),
                                 GetFirstButterfly<Legs>(p),
                                 plan.whole.factors + 6 * p);
        }
    }

    /// The first stage's butterflies from `begin` to below `end`.
    void RunFirstStage(Index begin, Index end) const
    {
        const Index step = GetFirstStep();
        const Index filled = (plan.frameLength + 1) / 2; // elements, more than one leg's
        const Index three = filled > 2 * step ? filled - 2 * step : 0;
        const Index two = filled - step < step ? filled - step : step;
        RunFirstButterflies<3>(begin, three < end ? three : end);
        RunFirstButterflies<2>(three > begin ? three : begin, two < end ? two : end);
        RunFirstButterflies<1>(two > begin ? two : begin, end);
    }

    /// The other stages on one of the quarters that the first one leaves.
    void FinishQuarter(Index quarter) const
    {
        const Index step = GetFirstStep();
        Transform::Run(spectrum + 2 * L * step * quarter, step, plan.whole.factors + 6 * step);
    }

    /// Folds the magnitudes of bins k and N - k for the cosine transform, fourfold; answers twice
    /// their difference. What k = 0 writes to row N is no part of the result.
    V FoldPair(Index k) const
    {
        const auto bins = Transform::Separate(spectrum, plan.whole, k);
        const V low = Sqrt<L>(bins.low.re * bins.low.re + bins.low.im * bins.low.im);
        const V high = Sqrt<L>(bins.high.re * bins.high.re + bins.high.im * bins.high.im);
        const V sum = low + high;
        const V difference = low - high;
        const V turned = Broadcast<L>(plan.sines[k]) * difference;
        Store(folded + L * k, sum - turned);
        Store(folded + L * (plan.whole.length - k), sum + turned);
        return difference;
    }

    /// What the fold adds up besides, in double; see Fold().
    struct FoldSums {
        Wide even;
        Wide odd;
    };

    /// Folds the magnitudes m so that a transform of half their number holds the even outputs of
    /// the cosine transform in its real parts and the differences of the odd ones in its imaginary
    /// parts. Output 1, from which the other odd ones are reached by steps, becomes lag 1,
    /// eightfold; its sum is in double, since its rounding would show in all of them.
    ///
    /// Here the pairs from `k` to below `end`, whole chunks.
    [[gnu::always_inline]] FoldSums FoldPairs(Index k, Index end, FoldSums sums) const
    {
        for (; k < end; k += FoldChunk) {
            V differences[FoldChunk];
#pragma GCC unroll 8
            for (int i = 0; i < FoldChunk; ++i) {
                differences[i] = FoldPair(k + i);
            }
            differences[0] *= k == 0 ? 0.5F : 1.0F;
            for (int i = 0; i < FoldChunk; i += 2) {
                sums.even = sums.even + Wide::From(differences[i]) * plan.cosines[k + i];
                sums.odd = sums.odd + Wide::From(differences[i + 1]) * plan.cosines[k + i + 1];
            }
        }
        return sums;
    }

    /// Pairs that the first half of the fold takes; the middle one comes by itself.
    Index GetHalfOfPairs() const
    {
        return plan.whole.length / 4;
    }

    /// Where the sums wait: lags are made later.
    float* GetFoldSums() const
    {
        return lags + 2 * L;
    }

    void StartFold() const
    {
        const FoldSums sums = FoldPairs(0, GetHalfOfPairs(), FoldSums{});
        __builtin_memcpy(GetFoldSums(), &sums, sizeof sums);
    }

    void FinishFold() const
    {
        const Index middle = 2 * GetHalfOfPairs();
        FoldSums sums{};
        __builtin_memcpy(&sums, GetFoldSums(), sizeof sums);
        sums = FoldPairs(GetHalfOfPairs(), middle, sums);
        const Complex centre = Transform::Get(spectrum, plan.whole.order[middle]);
        Store(folded + L * middle, Sqrt<L>(centre.re * centre.re + centre.im * centre.im) * 4.0F);
        Store(lags + L, (sums.even + sums.odd).Narrow());
    }

    void PutLag(Index lag, V value) const
    {
        const V compensated = value * plan.compensation[lag];
        Store(lags + L * lag, compensated > 0.0F ? compensated : V{});
    }

    /// Writes two lags from a bin of the half-size transform, twofold: odd lags are a running sum
    /// of imaginary parts, even ones are real parts.
    void PutLagPair(Index bin, Complex value, Wide& odd) const
    {
        PutLag(2 * bin - 1, odd.Narrow());
        PutLag(2 * bin, value.re);
        odd = odd - Wide::From(value.im);
    }

    void MakeLags() const
    {
        const TransformPlan& half = plan.half;
        const Index middle = half.length / 2;
        const Index last = (plan.maxLag + 1) / 2;
        Wide odd = Wide::From(Load<L>(lags + L));
        PutLag(0, Transform::Separate(folded, half, 0).low.re);
        Index bin = 1;
        for (; bin <= last && bin < middle; ++bin) {
            PutLagPair(bin, Transform::Separate(folded, half, bin).low, odd);
        }
        for (; bin <= last; ++bin) {
            // The middle bin comes out as its own mirror image.
            const Complex image = Transform::Separate(folded, half, half.length - bin).high;
            PutLagPair(bin, {image.re, -image.im}, odd);
        }
        for (Index lag = plan.maxLag + 1; lag < GetLagCount(plan.maxLag); ++lag) {
            Store(lags + L * lag, V{});
        }
    }

    /// Last lag up to which the correlation falls from lag 0 on, but at least `minLag`.
    Ints FindEndOfFall() const
    {
        const auto limit = static_cast<int>((plan.minLag + plan.maxLag) / 2);
        Ints falling = Ints{} == 0;
        Ints end = {};
        V former = Load<L>(lags);
        for (int lag = 1; lag < limit && GetMask<L>(falling) != 0; ++lag) {
            const V value = Load<L>(lags + L * lag);
            falling &= former > value;
            end = falling ? Broadcast<L>(lag) : end;
            former = value;
        }
        const Ints least = Broadcast<L>(static_cast<int>(plan.minLag));
        return end > least ? end : least;
    }

    /// The value at the lag `i` without what it may owe to a peak at half of it; as it is up to
    /// each frame's first lag.
    [[gnu::always_inline]] static V TakeGhost(V value, V owed, Ints firstLag, int i)
    {
        const V own = value * 0.5F;
        const V reduced = value - (own < owed ? own : owed);
        return firstLag > i ? value : reduced;
    }

    /// L lags from an even one on, without ghosts.
    [[gnu::always_inline]] void TakeGhosts(Index lag, Ints firstLag, V (&rows)[L]) const
    {
        const float* const values = lags + L * lag;
        const float* const halves = lags + L * (lag / 2);
        const Ints first = firstLag - static_cast<int>(lag);
        V half = Load<L>(halves);
        for (int i = 0; i < L; i += 2) {
            const V next = Load<L>(halves + L * (i / 2 + 1));
            rows[i] = TakeGhost(Load<L>(values + L * i), half * 0.25F, first, i);
            rows[i + 1] =
                TakeGhost(Load<L>(values + L * (i + 1)), (next + half) * 0.125F, first, i + 1);
            half = next;
        }
    }

    void PutFirstLags(int frames, const CorrelationResult& result) const
    {
        const Ints firstLag = FindEndOfFall();
        for (int frame = 0; frame < frames; ++frame) {
            result.firstLags[frame] = firstLag[frame];
        }
    }

    /// The lags from `lag` to below `end`, after the first lags.
    void PutLags(Index lag, Index end, int frames, const CorrelationResult& result) const
    {
        const Index stride = GetCorrelationStride(plan.maxLag);
        Ints firstLag = {};
        for (int frame = 0; frame < frames; ++frame) {
            firstLag[frame] = result.firstLags[frame];
        }
        for (; lag < end; lag += L) {
            V rows[L];
            TakeGhosts(lag, firstLag, rows);
            Transpose<L>(rows);
            float* target = result.correlation + lag;
            if (frames == L) {
#pragma GCC unroll 16
                for (int frame = 0; frame < L; ++frame, target += stride) {
                    Store(target, rows[frame]);
                }
            } else {
                for (int frame = 0; frame < frames; ++frame, target += stride) {
                    Store(target, rows[frame]);
                }
            }
        }
    }

    /// The way in as many stages as a correlation has parts, such that none takes much longer than
    /// the others.
    void RunStage(int stage, int frames, const CorrelationResult& result) const
    {
        const Index firstStep = GetFirstStep();
        const Index allLags = GetLagCount(plan.maxLag);
        const Index middleLag = allLags / (2 * MaxFrames) * MaxFrames;
        switch (stage) {
        case 0:
            RunFirstStage(0, firstStep / 2);
            break;
        case 1:
            RunFirstStage(firstStep / 2, firstStep);
            break;
        case 2:
        case 3:
        case 4:
        case 5:
            FinishQuarter(stage - 2);
            break;
        case 6:
            StartFold();
            break;
        case 7:
            FinishFold();
            break;
        case 8:
            Transform::Run(folded, plan.half.length, plan.half.factors);
            break;
        case 9:
            MakeLags();
            break;
        case 10:
            PutFirstLags(frames, result);
            PutLags(0, middleLag, frames, result);
            break;
        default:
            PutLags(middleLag, allLags, frames, result);
        }
    }
};

/// Stages of several batches, each with a scratch of its own: a part has the same stage of all, so
/// that at each level parts have the same share of the work.
struct Batches {
    const CorrelationPlan& plan;
    const PolyphaseView& source;
    int frames;
    float* scratch;
    const CorrelationResult& result;

    /// Of the batch of up to L frames that begins with the frame `first`.
    template <int L>
    void RunStage(int first, int stage) const
    {
        float* const spectrum =
            scratch + first * (3 * plan.whole.length + GetLagCount(plan.maxLag));
        float* const folded = spectrum + 2 * L * plan.whole.length;
        float* const lags = folded + L * plan.whole.length;
        const PolyphaseView view = {source.samples + first, source.rowLength, source.stepShift};
        const Batch<L> batch = {plan, view, spectrum, folded, lags};
        const Index row = GetCorrelationStride(plan.maxLag) * first;
        batch.RunStage(stage,
                       frames - first < L ? frames - first : L,
                       {result.correlation + row, result.firstLags + first});
    }

    void RunStage(int stage) const
    {
        constexpr int FewLanes = LevelLanes < 8 ? LevelLanes : LevelLanes / 2;
        for (int first = 0; first < frames; first += LevelLanes) {
            // NOLINTNEXTLINE(bugprone-branch-clone): at levels of 4 lanes both are the same
            if (frames - first > FewLanes) {
                RunStage<LevelLanes>(first, stage);
            } else {
                RunStage<FewLanes>(first, stage);
            }
        }
    }
};

void CorrelatePart(int part,
                   const CorrelationPlan& plan,
                   const PolyphaseView& source,
                   int frames,
                   float* scratch,
                   const CorrelationResult& result) noexcept
{
    const Batches batches = {plan, source, frames, scratch, result};
    batches.RunStage(part);
}

} // namespace

constinit const CorrelationKernels Correlations = {.correlatePart = CorrelatePart};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
