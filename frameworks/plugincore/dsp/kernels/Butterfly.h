// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/ComplexVector.h"

/// Transforms of four and of eight elements, each lane one of its own.
namespace DSP::Kernels::PUFFGUARD_LEVEL {

template <int N>
struct Four {
    ComplexVector<N> v0, v1, v2, v3;
};

template <int N>
struct Eight {
    ComplexVector<N> v0, v1, v2, v3, v4, v5, v6, v7;
};

template <int N>
[[gnu::always_inline]] inline Four<N> Butterfly(const Four<N>& x) noexcept
{
    const ComplexVector<N> evenSum = x.v0 + x.v2;
    const ComplexVector<N> evenDifference = x.v0 - x.v2;
    const ComplexVector<N> oddSum = x.v1 + x.v3;
    const ComplexVector<N> oddDifference = TimesMinusI(x.v1 - x.v3);
    return {evenSum + oddSum,
            evenDifference + oddDifference,
            evenSum - oddSum,
            evenDifference - oddDifference};
}

template <int N>
[[gnu::always_inline]] inline Eight<N> Butterfly(const Eight<N>& x) noexcept
{
    const Four<N> even = Butterfly(Four<N>{x.v0, x.v2, x.v4, x.v6});
    const Four<N> odd = Butterfly(Four<N>{x.v1, x.v3, x.v5, x.v7});
    const Vector<float, N> diagonal = Broadcast<N>(0.707106781186547524F);
    const ComplexVector<N>& o1 = odd.v1;
    const ComplexVector<N>& o3 = odd.v3;
    const ComplexVector<N> t1 = {(o1.re + o1.im) * diagonal, (o1.im - o1.re) * diagonal};
    const ComplexVector<N> t2 = TimesMinusI(odd.v2);
    const ComplexVector<N> t3 = {(o3.im - o3.re) * diagonal, -(o3.re + o3.im) * diagonal};
    return {even.v0 + odd.v0,
            even.v1 + t1,
            even.v2 + t2,
            even.v3 + t3,
            even.v0 - odd.v0,
            even.v1 - t1,
            even.v2 - t2,
            even.v3 - t3};
}

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
