// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/Correlation.h"

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

/// L frames on their way from samples to correlations.
template <int L>
struct Batch {
    using V = Vector<float, L>;
    using Wide = Vector<double, L>;
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

    /// First stage of the transform: what lies behind the frame's end is 0 and isn't read.
    void TransformFrames() const
    {
        const Index step = plan.whole.length / 4;
        const Index filled = (plan.frameLength + 1) / 2;
        const float* factors = plan.whole.factors;
        for (Index p = 0; p < step; ++p, factors += 6) {
            const Complex zero = {V{}, V{}};
            const Complex b = p + step < filled ? GetSamples(p + step) : zero;
            const Complex c = p + 2 * step < filled ? GetSamples(p + 2 * step) : zero;
            Transform::PutTurned(spectrum + 2 * L * p, step, GetSamples(p), b, c, zero, factors);
        }
        for (Index k = 0; k < 4; ++k) {
            Transform::Run(spectrum + 2 * L * step * k, step, factors);
        }
    }

    /// Folds the magnitudes of bins k and N - k for the cosine transform; answers their difference.
    V FoldPair(Index k) const
    {
        const auto bins = Transform::Separate(spectrum, plan.whole, k);
        const V low = Sqrt<L>(bins.low.re * bins.low.re + bins.low.im * bins.low.im);
        const V high = Sqrt<L>(bins.high.re * bins.high.re + bins.high.im * bins.high.im);
        const V difference = low - high;
        const V mean = 0.5F * (low + high);
        const V turned = Broadcast<L>(plan.sines[k]) * difference;
        Store(folded + L * k, mean - turned);
        if (k > 0) {
            Store(folded + L * (plan.whole.length - k), mean + turned);
        }
        return difference;
    }

    /// Folds the magnitudes m so that a transform of half their number holds the even outputs of
    /// the cosine transform in its real parts and the differences of the odd ones in its imaginary
    /// parts. Answers output 1, from which the other odd ones are reached by steps; its sum is in
    /// double, since its rounding would show in all of them.
    V Fold() const
    {
        const Index middle = plan.whole.length / 2;
        const auto weigh = [this](V difference, Index k) {
            return __builtin_convertvector(difference, Wide) * static_cast<double>(plan.cosines[k]);
        };
        Wide even = weigh(FoldPair(0) * 0.5F, 0);
        Wide odd = weigh(FoldPair(1), 1);
        for (Index k = 2; k < middle; k += 2) {
            even += weigh(FoldPair(k), k);
            odd += weigh(FoldPair(k + 1), k + 1);
        }
        const Complex centre = Complex::Get(spectrum, plan.whole.order[middle]);
        Store(folded + L * middle, Sqrt<L>(centre.re * centre.re + centre.im * centre.im));
        return __builtin_convertvector(even + odd, V);
    }

    /// Bin of the half-size real transform.
    Complex GetBin(Index bin) const
    {
        const Index middle = plan.half.length / 2;
        if (bin < middle) {
            return Transform::Separate(folded, plan.half, bin).low;
        }
        const Complex value =
            bin > middle ? Transform::Separate(folded, plan.half, plan.half.length - bin).high
                         : Complex::Get(folded, plan.half.order[middle]);
        return {value.re, -value.im};
    }

    void PutLag(Index lag, V value) const
    {
        const V compensated = value * plan.compensation[lag];
        Store(lags + L * lag, compensated > 0.0F ? compensated : V{});
    }

    /// Even outputs are real parts, odd ones a running sum of imaginary parts.
    void MakeLags(V first) const
    {
        const float scale = 1.0F / static_cast<float>(plan.whole.length); // exact
        Wide odd = __builtin_convertvector(first, Wide);
        PutLag(0, GetBin(0).re * scale);
        for (Index lag = 1; lag <= plan.maxLag; lag += 2) {
            PutLag(lag, __builtin_convertvector(odd, V) * scale);
            if (lag < plan.maxLag) {
                const Complex bin = GetBin((lag + 1) / 2);
                PutLag(lag + 1, bin.re * scale);
                odd -= __builtin_convertvector(bin.im, Wide);
            }
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
        for (int lag = 1; lag < limit; ++lag) {
            const V value = Load<L>(lags + L * lag);
            falling &= former > value;
            end = falling ? Broadcast<L>(lag) : end;
            former = value;
        }
        const Ints least = Broadcast<L>(static_cast<int>(plan.minLag));
        return end > least ? end : least;
    }

    /// A lag without what it owes to a peak at half of it, from each frame's first lag on.
    V TakeGhost(Index lag, Ints firstLag) const
    {
        const V value = Load<L>(lags + L * lag);
        const V own = value * 0.5F;
        const V halves = Load<L>(lags + L * ((lag + 1) / 2)) + Load<L>(lags + L * (lag / 2));
        const V owed = halves * 0.125F;
        const V reduced = value - (own < owed ? own : owed);
        return firstLag > static_cast<int>(lag) ? value : reduced;
    }

    void PutResult(int frames, const CorrelationResult& result) const
    {
        const Index stride = GetCorrelationStride(plan.maxLag);
        const Ints firstLag = FindEndOfFall();
        for (int frame = 0; frame < frames; ++frame) {
            result.firstLags[frame] = firstLag[frame];
        }
        for (Index lag = 0; lag < GetLagCount(plan.maxLag); lag += L) {
            V rows[L];
            for (int i = 0; i < L; ++i) {
                rows[i] = TakeGhost(lag + i, firstLag);
            }
            Transpose<L>(rows);
            for (int frame = 0; frame < frames; ++frame) {
                Store(result.correlation + stride * frame + lag, rows[frame]);
            }
        }
    }

    void Run(int frames, const CorrelationResult& result) const
    {
        TransformFrames();
        const V first = Fold();
        Transform::Run(folded, plan.half.length, plan.half.factors);
        MakeLags(first);
        PutResult(frames, result);
    }
};

template <int L>
void Correlate(const CorrelationPlan& plan,
               const PolyphaseView& source,
               int frames,
               float* scratch,
               const CorrelationResult& result) noexcept
{
    float* const folded = scratch + 2 * L * plan.whole.length;
    float* const lags = folded + L * plan.whole.length;
    const Index stride = GetCorrelationStride(plan.maxLag);
    for (int done = 0; done < frames; done += L) {
        const PolyphaseView view = {source.samples + done, source.rowLength, source.stepShift};
        const int count = frames - done < L ? frames - done : L;
        const Batch<L> batch = {plan, view, scratch, folded, lags};
        batch.Run(count, {result.correlation + stride * done, result.firstLags + done});
    }
}

} // namespace

constinit const CorrelationKernels correlation = {.correlate = Correlate<LevelLanes>};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
