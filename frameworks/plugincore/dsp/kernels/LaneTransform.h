// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/Butterfly.h"
#include "frameworks/plugincore/dsp/kernels/Correlation.h"

/// Complex transforms side by side, one a lane, in place. An array holds for each element the real
/// parts of all lanes and then the imaginary ones. A lane goes through the same steps as it would
/// alone.
namespace DSP::Kernels::PUFFGUARD_LEVEL {

template <int L>
struct LaneTransform {
    using Complex = ComplexVector<L>;
    using V = Vector<float, L>;

    [[gnu::always_inline]] static Complex Get(const float* array, Index element)
    {
        const float* const at = array + 2 * L * element;
        return {Load<L>(at), Load<L>(at + L)};
    }

    [[gnu::always_inline]] static void Put(float* array, Index element, const Complex& value)
    {
        float* const at = array + 2 * L * element;
        Store(at, value.re);
        Store(at + L, value.im);
    }

    /// The same in all lanes, its parts one after the other.
    [[gnu::always_inline]] static Complex GetFactor(const float* factor)
    {
        return {Broadcast<L>(factor[0]), Broadcast<L>(factor[1])};
    }

    /// Writes the results of a butterfly, turned by three factors, to every `step`th element.
    [[gnu::always_inline]] static void
    PutTurned(float* array, Index step, const Four<L>& x, const float* factors)
    {
        Put(array, 0, x.v0);
        Put(array, step, x.v1 * GetFactor(factors));
        Put(array, 2 * step, x.v2 * GetFactor(factors + 2));
        Put(array, 3 * step, x.v3 * GetFactor(factors + 4));
    }

    /// One stage on one stretch of `length` elements.
    static void RunStage(float* array, Index length, const float* factors)
    {
        const Index step = length / 4;
        for (Index p = 0; p < step; ++p, array += 2 * L, factors += 6) {
            PutTurned(
                array,
                step,
                Butterfly(Four<L>{
                    Get(array, 0), Get(array, step), Get(array, 2 * step), Get(array, 3 * step)}),
                factors);
        }
    }

    static void RunLast4(float* array)
    {
        const Four<L> y =
            Butterfly(Four<L>{Get(array, 0), Get(array, 1), Get(array, 2), Get(array, 3)});
        Put(array, 0, y.v0);
        Put(array, 1, y.v1);
        Put(array, 2, y.v2);
        Put(array, 3, y.v3);
    }

    static void RunLast8(float* array)
    {
        const Eight<L> y = Butterfly(Eight<L>{Get(array, 0),
                                              Get(array, 1),
                                              Get(array, 2),
                                              Get(array, 3),
                                              Get(array, 4),
                                              Get(array, 5),
                                              Get(array, 6),
                                              Get(array, 7)});
        Put(array, 0, y.v0);
        Put(array, 1, y.v1);
        Put(array, 2, y.v2);
        Put(array, 3, y.v3);
        Put(array, 4, y.v4);
        Put(array, 5, y.v5);
        Put(array, 6, y.v6);
        Put(array, 7, y.v7);
    }

    /// All stages from the one on whose stretches have `length` elements, on one such stretch:
    /// stretch by stretch, so that what a stage has written is still near for the next.
    static void Run(float* array, Index length, const float* factors)
    {
        if (length == 8) {
            RunLast8(array);
            return;
        }
        if (length == 4) {
            RunLast4(array);
            return;
        }
        RunStage(array, length, factors);
        const Index quarter = length / 4;
        for (Index k = 0; k < 4; ++k) {
            Run(array + 2 * L * quarter * k, quarter, factors + 6 * quarter);
        }
    }

    /// Twice a bin of a real transform and its mirror image: halving waits for a later factor.
    struct BinPair {
        Complex low;  ///< bin k
        Complex high; ///< conjugate of bin N - k
    };

    /// Separates what the transform of even and odd samples as one complex sequence holds of the
    /// bins `k` and N - k, k below N / 2: with A = Z[k], B = conj Z[N - k] and
    /// w = exp(-pi i k / N), X[k] = (A + B) / 2 - i w (A - B) / 2, and the conjugate of the sum
    /// with the other sign is X[N - k].
    [[gnu::always_inline]] static BinPair
    Separate(const float* array, const TransformPlan& plan, Index k)
    {
        const Complex a = Get(array, plan.order[k]);
        const Complex m = Get(array, plan.order[plan.length - k]);
        const V c = Broadcast<L>(plan.separation[2 * k]);
        const V s = Broadcast<L>(plan.separation[2 * k + 1]);
        const Complex d = {a.re - m.re, a.im + m.im};
        const Complex sum = {a.re + m.re, a.im - m.im};
        const V re = d.im * c - d.re * s;
        const V im = d.im * s + d.re * c;
        return {{sum.re + re, sum.im - im}, {sum.re - re, sum.im + im}};
    }
};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
