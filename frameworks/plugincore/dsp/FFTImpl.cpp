// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/FFTImpl.h"

#include "frameworks/plugincore/dsp/FFTStages.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <stdexcept>

namespace DSP {

namespace {

using namespace FFTStages;

constexpr float Half = 0.5F;
constexpr Index Padding = 4; // the element after the last one mirrors the first, see Separate()

std::size_t At(Index position)
{
    return static_cast<std::size_t>(position);
}

SplitAccess GetArray(std::vector<float>& work, Index length, Index number)
{
    const std::ptrdiff_t part = length + Padding;
    float* const start = work.data() + 2 * part * number;
    return {start, start + part};
}

/// From the transform Z of even + i odd samples to the spectrum X: with A = Z[k], B = conj Z[M - k]
/// and w = exp(-2 pi i k / F), X[k] = (A + B) / 2 - i w (A - B) / 2, and the conjugate of the sum
/// with the other sign is X[M - k]. The table has w / 2.
void Separate(SplitAccess halves, Index length, const float* table, float* spectrum)
{
    halves.re[length] = halves.re[0];
    halves.im[length] = halves.im[0];
    for (Index k = 0; k < length / 2; k += LaneCount, table += 2 * LaneCount) {
        const Index mirrored = length - k - (LaneCount - 1);
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
void JoinExchanged(const float* spectrum, Index length, const float* table, SplitAccess halves)
{
    const float scale = 1.0F / static_cast<float>(length);
    const Lanes scaleLanes = Broadcast(scale);
    for (Index k = 0; k < length / 2; k += LaneCount, table += 2 * LaneCount) {
        const Index mirrored = length - k - (LaneCount - 1);
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

double Turn(Index part, Index whole)
{
    return 2.0 * std::numbers::pi * static_cast<double>(part) / static_cast<double>(whole);
}

int CheckOrder(int order)
{
    if (!FFTImpl<float>::IsSupported(order)) {
        throw std::invalid_argument("No transform of this size");
    }
    return order;
}

/// Steps of a turn after which the cosine's table reads as sine.
Index SineShift(Index size)
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
    work.resize(4 * At(half + Padding));
}

void FFTImpl<float>::MakeStageTables()
{
    for (Index p = 0; p < half / 4; p += LaneCount) {
        for (Index factor = 1; factor < 4; ++factor) {
            for (Index lane = 0; lane < LaneCount; ++lane) {
                first.push_back(static_cast<float>(std::cos(Turn(factor * (p + lane), half))));
            }
            for (Index lane = 0; lane < LaneCount; ++lane) {
                first.push_back(static_cast<float>(-std::sin(Turn(factor * (p + lane), half))));
            }
        }
    }
    for (Index length = half / 4; length > 8; length /= 4) {
        for (Index p = 0; p < length / 4; ++p) {
            for (Index factor = 1; factor < 4; ++factor) {
                middle.push_back(static_cast<float>(std::cos(Turn(factor * p, length))));
                middle.push_back(static_cast<float>(-std::sin(Turn(factor * p, length))));
            }
        }
    }
}

void FFTImpl<float>::MakeSeparationTable()
{
    for (Index k = 0; k < half / 2; k += LaneCount) {
        for (Index lane = 0; lane < LaneCount; ++lane) {
            separation.push_back(static_cast<float>(0.5 * std::cos(Turn(k + lane, GetSize()))));
        }
        for (Index lane = 0; lane < LaneCount; ++lane) {
            separation.push_back(static_cast<float>(0.5 * std::sin(Turn(k + lane, GetSize()))));
        }
    }
}

void FFTImpl<float>::MakeDirectTable()
{
    const int size = GetSize();
    for (int n = 0; n < size; ++n) {
        direct.push_back(static_cast<float>(std::cos(Turn(n, size))));
    }
    work.resize(At(size) + 2);
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
    const Index rest = RunMiddleStages(a, b, half, middle.data());
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
    const Index rest = RunMiddleStages(a, b, half, middle.data());
    RunLastStage(a, ExchangedPairTarget{samples}, half, rest);
}

void FFTImpl<float>::ForwardDirect(const float* samples, float* spectrum) noexcept UTIL_NONBLOCKING
{
    const Index size = GetSize();
    std::copy_n(samples, size, work.data());
    for (Index k = 0; k <= half; ++k) {
        float re = 0;
        float im = 0;
        for (Index n = 0; n < size; ++n) {
            re += work[At(n)] * direct[At(k * n % size)];
            im -= work[At(n)] * direct[At((k * n + SineShift(size)) % size)];
        }
        spectrum[2 * k] = re;
        // The table's sine isn't quite 0 at a half turn, but the ends of a real signal's spectrum
        // are.
        spectrum[2 * k + 1] = k == 0 || k == half ? 0.0F : im;
    }
}

void FFTImpl<float>::InverseDirect(const float* spectrum, float* samples) noexcept UTIL_NONBLOCKING
{
    const Index size = GetSize();
    std::copy_n(spectrum, size + 2, work.data());
    for (Index n = 0; n < size; ++n) {
        float sum = 0;
        for (Index k = 1; k < half; ++k) {
            sum += work[At(2 * k)] * direct[At(k * n % size)];
            sum -= work[At(2 * k + 1)] * direct[At((k * n + SineShift(size)) % size)];
        }
        const float ends = work[0] + (n % 2 == 0 ? work[At(size)] : -work[At(size)]);
        samples[n] = (2 * sum + ends) / static_cast<float>(size);
    }
}

} // namespace DSP
