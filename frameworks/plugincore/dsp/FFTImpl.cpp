// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/FFTImpl.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <stdexcept>
#include <utility>

namespace DSP {

namespace {

// Four floats that go through the same operations; the compiler maps them to the machine's own.
using Lanes = float __attribute__((vector_size(16)));

constexpr int LaneCount = 4;
constexpr float Half = 0.5F;
constexpr int Padding = 4; // the element after the last one mirrors the first, see Separate()

struct ComplexLanes {
    Lanes re;
    Lanes im;
};

inline Lanes Load(const float* source)
{
    Lanes lanes;
    std::memcpy(&lanes, source, sizeof lanes);
    return lanes;
}

inline void Store(float* target, Lanes lanes)
{
    std::memcpy(target, &lanes, sizeof lanes);
}

inline Lanes Broadcast(float value)
{
    return Lanes{value, value, value, value};
}

inline Lanes Mirror(Lanes lanes)
{
    return __builtin_shufflevector(lanes, lanes, 3, 2, 1, 0);
}

inline ComplexLanes operator+(ComplexLanes a, ComplexLanes b)
{
    return {a.re + b.re, a.im + b.im};
}

inline ComplexLanes operator-(ComplexLanes a, ComplexLanes b)
{
    return {a.re - b.re, a.im - b.im};
}

inline ComplexLanes operator*(ComplexLanes a, ComplexLanes b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

inline ComplexLanes TimesMinusI(ComplexLanes a)
{
    return {a.im, -a.re};
}

inline ComplexLanes Exchange(ComplexLanes a)
{
    return {a.im, a.re};
}

inline ComplexLanes MirrorConjugate(ComplexLanes a)
{
    return {Mirror(a.re), -Mirror(a.im)};
}

inline ComplexLanes GetPairs(const float* source)
{
    const Lanes low = Load(source);
    const Lanes high = Load(source + LaneCount);
    return {__builtin_shufflevector(low, high, 0, 2, 4, 6),
            __builtin_shufflevector(low, high, 1, 3, 5, 7)};
}

inline void PutPairs(float* target, ComplexLanes value)
{
    Store(target, __builtin_shufflevector(value.re, value.im, 0, 4, 1, 5));
    Store(target + LaneCount, __builtin_shufflevector(value.re, value.im, 2, 6, 3, 7));
}

/// Where a stage reads or writes: parts in arrays of their own.
struct SplitAccess {
    float* re;
    float* im;

    ComplexLanes Get(int index) const { return {Load(re + index), Load(im + index)}; }
    void Put(int index, ComplexLanes value) const
    {
        Store(re + index, value.re);
        Store(im + index, value.im);
    }
};

/// Source of the forward transform's first stage: samples 2n and 2n + 1 are the parts of element n.
struct PairSource {
    const float* samples;

    ComplexLanes Get(int index) const { return GetPairs(samples + 2 * index); }
};

/// Target of the inverse transform's last stage, whose parts arrive exchanged.
struct ExchangedPairTarget {
    float* samples;

    void Put(int index, ComplexLanes value) const
    {
        PutPairs(samples + 2 * index, Exchange(value));
    }
};

struct Quad {
    ComplexLanes values[4];
};

inline Quad Butterfly4(ComplexLanes a, ComplexLanes b, ComplexLanes c, ComplexLanes d)
{
    const ComplexLanes evenSum = a + c;
    const ComplexLanes evenDifference = a - c;
    const ComplexLanes oddSum = b + d;
    const ComplexLanes oddDifference = TimesMinusI(b - d);
    return {{evenSum + oddSum,
             evenDifference + oddDifference,
             evenSum - oddSum,
             evenDifference - oddDifference}};
}

/// Writes element i of lane j to position 4 j + i.
inline void StoreTransposed(float* target, Lanes v0, Lanes v1, Lanes v2, Lanes v3)
{
    const Lanes low01 = __builtin_shufflevector(v0, v1, 0, 4, 1, 5);
    const Lanes high01 = __builtin_shufflevector(v0, v1, 2, 6, 3, 7);
    const Lanes low23 = __builtin_shufflevector(v2, v3, 0, 4, 1, 5);
    const Lanes high23 = __builtin_shufflevector(v2, v3, 2, 6, 3, 7);
    Store(target, __builtin_shufflevector(low01, low23, 0, 1, 4, 5));
    Store(target + 4, __builtin_shufflevector(low01, low23, 2, 3, 6, 7));
    Store(target + 8, __builtin_shufflevector(high01, high23, 0, 1, 4, 5));
    Store(target + 12, __builtin_shufflevector(high01, high23, 2, 3, 6, 7));
}

/// First stage: butterflies lie side by side, so that four of them share the lanes.
template <typename Source>
void RunFirstStage(Source source, SplitAccess target, int length, const float* factors)
{
    const int quarter = length / 4;
    for (int p = 0; p < quarter; p += LaneCount, factors += 6 * LaneCount) {
        const Quad quad = Butterfly4(source.Get(p),
                                     source.Get(p + quarter),
                                     source.Get(p + 2 * quarter),
                                     source.Get(p + 3 * quarter));
        const ComplexLanes y1 = quad.values[1] * ComplexLanes{Load(factors), Load(factors + 4)};
        const ComplexLanes y2 =
            quad.values[2] * ComplexLanes{Load(factors + 8), Load(factors + 12)};
        const ComplexLanes y3 =
            quad.values[3] * ComplexLanes{Load(factors + 16), Load(factors + 20)};
        StoreTransposed(target.re + 4 * p, quad.values[0].re, y1.re, y2.re, y3.re);
        StoreTransposed(target.im + 4 * p, quad.values[0].im, y1.im, y2.im, y3.im);
    }
}

/// Stage of `length` with `stride` interleaved transforms, which share the lanes.
void RunMiddleStage(
    SplitAccess source, SplitAccess target, int length, int stride, const float* factors)
{
    const int quarter = length / 4;
    const int step = stride * quarter;
    for (int p = 0; p < quarter; ++p, factors += 6) {
        const ComplexLanes w1 = {Broadcast(factors[0]), Broadcast(factors[1])};
        const ComplexLanes w2 = {Broadcast(factors[2]), Broadcast(factors[3])};
        const ComplexLanes w3 = {Broadcast(factors[4]), Broadcast(factors[5])};
        for (int q = 0; q < stride; q += LaneCount) {
            const int from = q + stride * p;
            const int to = q + stride * 4 * p;
            const Quad quad = Butterfly4(source.Get(from),
                                         source.Get(from + step),
                                         source.Get(from + 2 * step),
                                         source.Get(from + 3 * step));
            target.Put(to, quad.values[0]);
            target.Put(to + stride, quad.values[1] * w1);
            target.Put(to + 2 * stride, quad.values[2] * w2);
            target.Put(to + 3 * stride, quad.values[3] * w3);
        }
    }
}

template <typename Target>
void RunLastStage4(SplitAccess source, Target target, int stride)
{
    for (int q = 0; q < stride; q += LaneCount) {
        const Quad quad = Butterfly4(source.Get(q),
                                     source.Get(q + stride),
                                     source.Get(q + 2 * stride),
                                     source.Get(q + 3 * stride));
        for (int k = 0; k < 4; ++k) {
            target.Put(q + k * stride, quad.values[k]);
        }
    }
}

template <typename Target>
void RunLastStage8(SplitAccess source, Target target, int stride)
{
    const Lanes diagonal = Broadcast(static_cast<float>(std::numbers::sqrt2 / 2));
    for (int q = 0; q < stride; q += LaneCount) {
        const Quad even = Butterfly4(source.Get(q),
                                     source.Get(q + 2 * stride),
                                     source.Get(q + 4 * stride),
                                     source.Get(q + 6 * stride));
        const Quad odd = Butterfly4(source.Get(q + stride),
                                    source.Get(q + 3 * stride),
                                    source.Get(q + 5 * stride),
                                    source.Get(q + 7 * stride));
        const ComplexLanes& o1 = odd.values[1];
        const ComplexLanes& o3 = odd.values[3];
        const ComplexLanes turned[4] = {
            odd.values[0],
            {(o1.re + o1.im) * diagonal, (o1.im - o1.re) * diagonal},
            TimesMinusI(odd.values[2]),
            {(o3.im - o3.re) * diagonal, -(o3.re + o3.im) * diagonal},
        };
        for (int k = 0; k < 4; ++k) {
            target.Put(q + k * stride, even.values[k] + turned[k]);
            target.Put(q + (k + 4) * stride, even.values[k] - turned[k]);
        }
    }
}

/// Everything between the first stage, which has written to `a`, and the last. Returns the length
/// that is left, 4 or 8; `a` is then what the last stage reads, and `b` is free.
int RunMiddleStages(SplitAccess& a, SplitAccess& b, int length, const float* factors)
{
    int rest = length / 4;
    for (int stride = 4; rest > 8; stride *= 4) {
        RunMiddleStage(a, b, rest, stride, factors);
        factors += rest / 4 * 6;
        std::swap(a, b);
        rest /= 4;
    }
    return rest;
}

template <typename Target>
void RunLastStage(SplitAccess source, Target target, int length, int rest)
{
    if (rest == 8) {
        RunLastStage8(source, target, length / 8);
    } else {
        RunLastStage4(source, target, length / 4);
    }
}

SplitAccess GetArray(std::vector<float>& work, int length, int number)
{
    const std::ptrdiff_t part = length + Padding;
    float* const start = work.data() + 2 * part * number;
    return {start, start + part};
}

/// From the transform Z of even + i odd samples to the spectrum X: with A = Z[k], B = conj Z[M - k]
/// and w = exp(-2 pi i k / F), X[k] = (A + B) / 2 - i w (A - B) / 2, and the conjugate of the sum
/// with the other sign is X[M - k]. The table has w / 2.
void Separate(SplitAccess halves, int length, const float* table, float* spectrum)
{
    halves.re[length] = halves.re[0];
    halves.im[length] = halves.im[0];
    for (int k = 0; k < length / 2; k += LaneCount, table += 2 * LaneCount) {
        const int mirrored = length - k - (LaneCount - 1);
        const ComplexLanes a = halves.Get(k);
        const ComplexLanes b = MirrorConjugate(halves.Get(mirrored));
        const Lanes c = Load(table);
        const Lanes s = Load(table + LaneCount);
        const ComplexLanes d = a - b;
        const ComplexLanes mean = {(a.re + b.re) * Half, (a.im + b.im) * Half};
        const ComplexLanes turned = {d.im * c - d.re * s, -(d.im * s + d.re * c)};
        PutPairs(spectrum + 2 * k, mean + turned);
        PutPairs(spectrum + 2 * mirrored, MirrorConjugate(mean - turned));
    }
    spectrum[length] = halves.re[length / 2];
    spectrum[length + 1] = -halves.im[length / 2];
}

/// Counterpart of Separate(), scaled by 2 / F, with the real and imaginary parts exchanged: the
/// forward stages then give the inverse transform, parts exchanged again.
void JoinExchanged(const float* spectrum, int length, const float* table, SplitAccess halves)
{
    const float scale = 1.0F / static_cast<float>(length);
    const Lanes scaleLanes = Broadcast(scale);
    for (int k = 0; k < length / 2; k += LaneCount, table += 2 * LaneCount) {
        const int mirrored = length - k - (LaneCount - 1);
        const ComplexLanes a = GetPairs(spectrum + 2 * k);
        const ComplexLanes b = MirrorConjugate(GetPairs(spectrum + 2 * mirrored));
        const Lanes c = Load(table) * scaleLanes;
        const Lanes s = Load(table + LaneCount) * scaleLanes;
        const ComplexLanes d = a - b;
        const Lanes meanScale = scaleLanes * Half;
        const ComplexLanes mean = {(a.re + b.re) * meanScale, (a.im + b.im) * meanScale};
        const ComplexLanes turned = {-(c * d.im + s * d.re), c * d.re - s * d.im};
        halves.Put(k, Exchange(mean + turned));
        halves.Put(mirrored, Exchange(MirrorConjugate(mean - turned)));
    }
    halves.re[0] = (spectrum[0] - spectrum[2 * length]) * scale * 0.5F;
    halves.im[0] = (spectrum[0] + spectrum[2 * length]) * scale * 0.5F;
    halves.re[length / 2] = -spectrum[length + 1] * scale;
    halves.im[length / 2] = spectrum[length] * scale;
}

double Turn(int part, int whole)
{
    return 2.0 * std::numbers::pi * part / whole;
}

int CheckOrder(int order)
{
    if (!FFTImpl<float>::IsSupported(order)) {
        throw std::invalid_argument("No transform of this size");
    }
    return order;
}

std::size_t Index(int position)
{
    return static_cast<std::size_t>(position);
}

/// Steps of a turn after which the cosine's table reads as sine.
int SineShift(int size)
{
    return 3 * size / 4;
}

} // namespace

FFTImpl<float>::FFTImpl(int newOrder)
    : order(CheckOrder(newOrder))
    , half(1 << (order - 1))
{
    if (IsDirect()) {
        MakeDirectTable();
        return;
    }
    MakeStageTables();
    MakeSeparationTable();
    work.resize(static_cast<std::size_t>(4 * (half + Padding)));
}

void FFTImpl<float>::MakeStageTables()
{
    for (int p = 0; p < half / 4; p += LaneCount) {
        for (int factor = 1; factor < 4; ++factor) {
            for (int lane = 0; lane < LaneCount; ++lane) {
                first.push_back(static_cast<float>(std::cos(Turn(factor * (p + lane), half))));
            }
            for (int lane = 0; lane < LaneCount; ++lane) {
                first.push_back(static_cast<float>(-std::sin(Turn(factor * (p + lane), half))));
            }
        }
    }
    for (int length = half / 4; length > 8; length /= 4) {
        for (int p = 0; p < length / 4; ++p) {
            for (int factor = 1; factor < 4; ++factor) {
                middle.push_back(static_cast<float>(std::cos(Turn(factor * p, length))));
                middle.push_back(static_cast<float>(-std::sin(Turn(factor * p, length))));
            }
        }
    }
}

void FFTImpl<float>::MakeSeparationTable()
{
    for (int k = 0; k < half / 2; k += LaneCount) {
        for (int lane = 0; lane < LaneCount; ++lane) {
            separation.push_back(static_cast<float>(0.5 * std::cos(Turn(k + lane, 2 * half))));
        }
        for (int lane = 0; lane < LaneCount; ++lane) {
            separation.push_back(static_cast<float>(0.5 * std::sin(Turn(k + lane, 2 * half))));
        }
    }
}

void FFTImpl<float>::MakeDirectTable()
{
    const int size = GetSize();
    for (int n = 0; n < size; ++n) {
        direct.push_back(static_cast<float>(std::cos(Turn(n, size))));
    }
    work.resize(static_cast<std::size_t>(size + 2));
}

void FFTImpl<float>::Forward(const float* samples, float* spectrum) noexcept UTIL_NONBLOCKING
{
    if (IsDirect()) {
        ForwardDirect(samples, spectrum);
        return;
    }
    SplitAccess a = GetArray(work, half, 0);
    SplitAccess b = GetArray(work, half, 1);
    RunFirstStage(PairSource{samples}, a, half, first.data());
    const int rest = RunMiddleStages(a, b, half, middle.data());
    RunLastStage(a, b, half, rest);
    Separate(b, half, separation.data(), spectrum);
}

void FFTImpl<float>::Inverse(const float* spectrum, float* samples) noexcept UTIL_NONBLOCKING
{
    if (IsDirect()) {
        InverseDirect(spectrum, samples);
        return;
    }
    SplitAccess a = GetArray(work, half, 0);
    SplitAccess b = GetArray(work, half, 1);
    JoinExchanged(spectrum, half, separation.data(), b);
    RunFirstStage(b, a, half, first.data());
    const int rest = RunMiddleStages(a, b, half, middle.data());
    RunLastStage(a, ExchangedPairTarget{samples}, half, rest);
}

void FFTImpl<float>::ForwardDirect(const float* samples, float* spectrum) noexcept UTIL_NONBLOCKING
{
    const int size = GetSize();
    std::copy_n(samples, size, work.data());
    for (int k = 0; k <= half; ++k) {
        float re = 0;
        float im = 0;
        for (int n = 0; n < size; ++n) {
            re += work[Index(n)] * direct[Index(k * n % size)];
            im -= work[Index(n)] * direct[Index((k * n + SineShift(size)) % size)];
        }
        spectrum[2 * k] = re;
        // The table's sine isn't quite 0 at a half turn, but the ends of a real signal's spectrum
        // are.
        spectrum[2 * k + 1] = k == 0 || k == half ? 0.0F : im;
    }
}

void FFTImpl<float>::InverseDirect(const float* spectrum, float* samples) noexcept UTIL_NONBLOCKING
{
    const int size = GetSize();
    std::copy_n(spectrum, size + 2, work.data());
    for (int n = 0; n < size; ++n) {
        float sum = 0;
        for (int k = 1; k < half; ++k) {
            sum += work[Index(2 * k)] * direct[Index(k * n % size)];
            sum -= work[Index(2 * k + 1)] * direct[Index((k * n + SineShift(size)) % size)];
        }
        const float ends = work[0] + (n % 2 == 0 ? work[Index(size)] : -work[Index(size)]);
        samples[n] = (2 * sum + ends) / static_cast<float>(size);
    }
}

} // namespace DSP
