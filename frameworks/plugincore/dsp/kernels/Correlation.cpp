// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/Correlation.h"

#include "frameworks/plugincore/dsp/kernels/LaneMask.h"
#include "frameworks/plugincore/dsp/kernels/LaneTransform.h"
#include "frameworks/plugincore/dsp/kernels/LaneTranspose.h"
#include "frameworks/plugincore/dsp/kernels/LevelSets.h"
#include "frameworks/plugincore/dsp/kernels/Vector.h"

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
        Vector<float, L / 2> halves[2];
        __builtin_memcpy(halves, &lanes, sizeof lanes);
        return {__builtin_convertvector(halves[0], Half), __builtin_convertvector(halves[1], Half)};
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
    using Complex = LaneComplex<L>;

    const CorrelationPlan& plan;
    const PolyphaseView source; ///< of the first of these frames
    float* const spectrum;      ///< N elements
    float* const folded;        ///< N / 2 elements: N real values
    float* const lags;          ///< correlations, a row of lanes a lag

    /// The windowed samples 2 k and 2 k + 1 of each frame as an element.
    Complex GetSamples(Index k) const
    {
        const Index i = 2 * k;
        const Index row = i & ((Index{1} << source.stepShift) - 1);
        const float* const at = source.samples + row * source.rowLength + (i >> source.stepShift);
        return {Load<L>(at) * plan.window[i], Load<L>(at + source.rowLength) * plan.window[i + 1]};
    }

    /// Butterflies of the transform's first stage from `p` to below `end`, of which the first
    /// `Legs` of four elements lie within the frame. What lies behind its end is 0 and isn't read.
    template <int Legs>
    void RunFirstStage(Index p, Index end) const
    {
        const Index step = plan.whole.length / 4;
        const float* factors = plan.whole.factors + 6 * p;
        for (; p < end; ++p, factors += 6) {
            Complex legs[4] = {GetSamples(p)};
            for (int leg = 1; leg < Legs; ++leg) {
                legs[leg] = GetSamples(p + leg * step);
            }
            Transform::PutTurned(
                spectrum + 2 * L * p, step, legs[0], legs[1], legs[2], legs[3], factors);
        }
    }

    /// The first stage, and the others on the first of the quarters that it leaves.
    void StartTransform() const
    {
        const Index step = plan.whole.length / 4;
        const Index filled = (plan.frameLength + 1) / 2; // elements, more than one leg's
        const Index three = filled > 2 * step ? filled - 2 * step : 0;
        const Index two = filled - step < step ? filled - step : step;
        RunFirstStage<3>(0, three);
        RunFirstStage<2>(three, two);
        RunFirstStage<1>(two, step);
        FinishQuarter(0);
    }

    void FinishTransform() const
    {
        for (Index quarter = 1; quarter < 4; ++quarter) {
            FinishQuarter(quarter);
        }
    }

    void FinishQuarter(Index quarter) const
    {
        const Index step = plan.whole.length / 4;
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

    /// Folds the magnitudes m so that a transform of half their number holds the even outputs of
    /// the cosine transform in its real parts and the differences of the odd ones in its imaginary
    /// parts. Output 1, from which the other odd ones are reached by steps, becomes lag 1,
    /// eightfold; its sum is in double, since its rounding would show in all of them.
    void Fold() const
    {
        constexpr int Chunk = 8; // differences wait so that the sums' registers are free meanwhile
        const Index middle = plan.whole.length / 2;
        Wide even = {};
        Wide odd = {};
        for (Index k = 0; k < middle; k += Chunk) {
            V differences[Chunk];
            for (int i = 0; i < Chunk; ++i) {
                differences[i] = FoldPair(k + i);
            }
            differences[0] *= k == 0 ? 0.5F : 1.0F;
            for (int i = 0; i < Chunk; i += 2) {
                even = even + Wide::From(differences[i]) * plan.cosines[k + i];
                odd = odd + Wide::From(differences[i + 1]) * plan.cosines[k + i + 1];
            }
        }
        const Complex centre = Complex::Get(spectrum, plan.whole.order[middle]);
        Store(folded + L * middle, Sqrt<L>(centre.re * centre.re + centre.im * centre.im) * 4.0F);
        Store(lags + L, (even + odd).Narrow());
    }

    void PutLag(Index lag, V value) const
    {
        const V compensated = value * plan.compensation[lag];
        Store(lags + L * lag, compensated > 0.0F ? compensated : V{});
    }

    /// Writes two lags from a bin of the half-size transform, twofold: odd lags are a running sum
    /// of imaginary parts, even ones are real parts.
    void PutLags(Index bin, Complex value, Wide& odd) const
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
            PutLags(bin, Transform::Separate(folded, half, bin).low, odd);
        }
        for (; bin <= last; ++bin) {
            // The middle bin comes out as its own mirror image.
            const Complex image = Transform::Separate(folded, half, half.length - bin).high;
            PutLags(bin, {image.re, -image.im}, odd);
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

    /// A lag without what it owes to a peak at half of it, from each frame's first lag on.
    V TakeGhost(int lag, V halves, Ints firstLag) const
    {
        const V value = Load<L>(lags + L * lag);
        const V own = value * 0.5F;
        const V owed = halves * 0.125F;
        const V reduced = value - (own < owed ? own : owed);
        return firstLag > lag ? value : reduced;
    }

    void PutResult(int frames, const CorrelationResult& result) const
    {
        const Index stride = GetCorrelationStride(plan.maxLag);
        const Ints firstLag = FindEndOfFall();
        for (int frame = 0; frame < frames; ++frame) {
            result.firstLags[frame] = firstLag[frame];
        }
        const auto count = static_cast<int>(GetLagCount(plan.maxLag));
        for (int lag = 0; lag < count; lag += L) {
            V rows[L];
            V half = Load<L>(lags + L * (lag / 2));
            for (int i = 0; i < L; i += 2) {
                const V next = Load<L>(lags + L * ((lag + i) / 2 + 1));
                rows[i] = TakeGhost(lag + i, half + half, firstLag);
                rows[i + 1] = TakeGhost(lag + i + 1, next + half, firstLag);
                half = next;
            }
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

    /// The way in as many stages as a correlation has parts; they take about the same time.
    void RunStage(int stage, int frames, const CorrelationResult& result) const
    {
        switch (stage) {
        case 0:
            StartTransform();
            break;
        case 1:
            FinishTransform();
            break;
        case 2:
            Fold();
            break;
        case 3:
            Transform::Run(folded, plan.half.length, plan.half.factors);
            break;
        default:
            MakeLags();
            PutResult(frames, result);
        }
    }
};

/// Stages of several batches. They follow each other batch by batch, so that a batch stays near and
/// one batch's scratch is enough.
struct Batches {
    const CorrelationPlan& plan;
    const PolyphaseView& source;
    int frames;
    float* scratch;
    const CorrelationResult& result;

    int GetCount() const { return (frames + LevelLanes - 1) / LevelLanes; }

    /// Of the batch of up to L frames that begins with the frame `first`.
    template <int L>
    void RunStage(int first, int stage) const
    {
        float* const folded = scratch + 2 * L * plan.whole.length;
        float* const lags = folded + L * plan.whole.length;
        const PolyphaseView view = {source.samples + first, source.rowLength, source.stepShift};
        const Batch<L> batch = {plan, view, scratch, folded, lags};
        const Index row = GetCorrelationStride(plan.maxLag) * first;
        batch.RunStage(stage,
                       frames - first < L ? frames - first : L,
                       {result.correlation + row, result.firstLags + first});
    }

    void RunStage(int stage) const
    {
        constexpr int FewLanes = LevelLanes < 8 ? LevelLanes : LevelLanes / 2;
        const int first = stage / CorrelationParts * LevelLanes;
        if (frames - first > FewLanes) {
            RunStage<LevelLanes>(first, stage % CorrelationParts);
        } else {
            RunStage<FewLanes>(first, stage % CorrelationParts);
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
    const int stages = batches.GetCount();
    for (int stage = stages * part; stage < stages * (part + 1); ++stage) {
        batches.RunStage(stage);
    }
}

} // namespace

constinit const CorrelationKernels correlation = {.correlatePart = CorrelatePart};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
