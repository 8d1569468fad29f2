// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/Correlation.h"
#include "frameworks/plugincore/dsp/kernels/Vector.h"

#include <cstddef>

/// Complex transforms side by side, one a lane, in place. An array holds for each element the real
/// parts of all lanes and then the imaginary ones. A lane goes through the same steps as it would
/// alone.
namespace DSP::Kernels::PUFFGUARD_LEVEL {

using Index = std::ptrdiff_t;

template <int L>
struct LaneComplex {
    using V = Vector<float, L>;
    V re;
    V im;

    static LaneComplex Get(const float* array, Index element)
    {
        const float* const at = array + 2 * L * element;
        return {Load<L>(at), Load<L>(at + L)};
    }

    void Put(float* array, Index element) const
    {
        float* const at = array + 2 * L * element;
        Store(at, re);
        Store(at + L, im);
    }

    LaneComplex operator+(LaneComplex b) const { return {re + b.re, im + b.im}; }
    LaneComplex operator-(LaneComplex b) const { return {re - b.re, im - b.im}; }

    /// By the factor whose parts lie at `factor`.
    LaneComplex Times(const float* factor) const
    {
        const V c = Broadcast<L>(factor[0]);
        const V s = Broadcast<L>(factor[1]);
        return {re * c - im * s, re * s + im * c};
    }

    LaneComplex TimesMinusI() const { return {im, -re}; }
};

template <int L>
struct LaneTransform {
    using Complex = LaneComplex<L>;
    using V = Vector<float, L>;

    /// Writes the sums of a butterfly, turned by three factors, to every `step`th element.
    static void PutTurned(
        float* array, Index step, Complex a, Complex b, Complex c, Complex d, const float* factors)
    {
        const Complex evenSum = a + c;
        const Complex evenDifference = a - c;
        const Complex oddSum = b + d;
        const Complex oddDifference = (b - d).TimesMinusI();
        (evenSum + oddSum).Put(array, 0);
        (evenDifference + oddDifference).Times(factors).Put(array, step);
        (evenSum - oddSum).Times(factors + 2).Put(array, 2 * step);
        (evenDifference - oddDifference).Times(factors + 4).Put(array, 3 * step);
    }

    /// One stage on one stretch of `length` elements.
    static void RunStage(float* array, Index length, const float* factors)
    {
        const Index step = length / 4;
        for (Index p = 0; p < step; ++p, array += 2 * L, factors += 6) {
            PutTurned(array,
                      step,
                      Complex::Get(array, 0),
                      Complex::Get(array, step),
                      Complex::Get(array, 2 * step),
                      Complex::Get(array, 3 * step),
                      factors);
        }
    }

    static void RunLast4(float* array)
    {
        const Complex a = Complex::Get(array, 0);
        const Complex b = Complex::Get(array, 1);
        const Complex c = Complex::Get(array, 2);
        const Complex d = Complex::Get(array, 3);
        const Complex evenSum = a + c;
        const Complex evenDifference = a - c;
        const Complex oddSum = b + d;
        const Complex oddDifference = (b - d).TimesMinusI();
        (evenSum + oddSum).Put(array, 0);
        (evenDifference + oddDifference).Put(array, 1);
        (evenSum - oddSum).Put(array, 2);
        (evenDifference - oddDifference).Put(array, 3);
    }

    /// The odd elements of eight: a butterfly, and the turns by eighths.
    static void RunOddOf8(float* array, Complex (&turned)[4])
    {
        const V diagonal = Broadcast<L>(0.70710678118654752F);
        const Complex a = Complex::Get(array, 1);
        const Complex b = Complex::Get(array, 3);
        const Complex c = Complex::Get(array, 5);
        const Complex d = Complex::Get(array, 7);
        const Complex evenSum = a + c;
        const Complex evenDifference = a - c;
        const Complex oddSum = b + d;
        const Complex oddDifference = (b - d).TimesMinusI();
        const Complex o1 = evenDifference + oddDifference;
        const Complex o3 = evenDifference - oddDifference;
        turned[0] = evenSum + oddSum;
        turned[1] = {(o1.re + o1.im) * diagonal, (o1.im - o1.re) * diagonal};
        turned[2] = (evenSum - oddSum).TimesMinusI();
        turned[3] = {(o3.im - o3.re) * diagonal, -(o3.re + o3.im) * diagonal};
    }

    static void RunLast8(float* array)
    {
        Complex turned[4];
        RunOddOf8(array, turned);
        const Complex a = Complex::Get(array, 0);
        const Complex b = Complex::Get(array, 2);
        const Complex c = Complex::Get(array, 4);
        const Complex d = Complex::Get(array, 6);
        const Complex evenSum = a + c;
        const Complex evenDifference = a - c;
        const Complex oddSum = b + d;
        const Complex oddDifference = (b - d).TimesMinusI();
        const Complex even[4] = {evenSum + oddSum,
                                 evenDifference + oddDifference,
                                 evenSum - oddSum,
                                 evenDifference - oddDifference};
        for (Index k = 0; k < 4; ++k) {
            (even[k] + turned[k]).Put(array, k);
            (even[k] - turned[k]).Put(array, k + 4);
        }
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
    static BinPair Separate(const float* array, const TransformPlan& plan, Index k)
    {
        const Complex a = Complex::Get(array, plan.order[k]);
        const Complex m = Complex::Get(array, plan.order[plan.length - k]);
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
