// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/Windows.h"

#include "restoration/dsp/puffguard/Bessel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace DSP {

namespace {

constexpr double FilterBeta = 14.0;

/// Both windows before they are stored.
struct Values {
    std::vector<double> analysis;
    std::vector<double> synthesis;
};

double Kaiser(int position, int last, double beta)
{
    const double centred = 2.0 * position / last - 1.0;
    return BesselI0(beta * std::sqrt(std::max(0.0, 1.0 - centred * centred))) / BesselI0(beta);
}

std::vector<double> MakeHann(int length)
{
    std::vector<double> values;
    values.reserve(static_cast<std::size_t>(length));
    for (int i = 0; i < length; ++i) {
        values.push_back(0.5 - 0.5 * std::cos(2 * std::numbers::pi * (i + 0.5) / length));
    }
    return values;
}

std::vector<double> MakeBlackman(int length)
{
    std::vector<double> values;
    values.reserve(static_cast<std::size_t>(length));
    for (int i = 0; i < length; ++i) {
        const double turn = 2 * std::numbers::pi * (i + 0.5) / length;
        values.push_back(0.42 - 0.5 * std::cos(turn) + 0.08 * std::cos(2 * turn));
    }
    return values;
}

std::vector<double> MakeFilter(int length, int hop)
{
    std::vector<double> values = MakeHann(length);
    // The scaling of all kinds brings this factor a second time; the kind is defined so.
    const double early = hop / (length * 0.5);
    for (int i = 0; i < length; ++i) {
        const double u = (i + 0.5 - (length - 1) / 2.0) * 4 * std::numbers::pi / length;
        const double sinc = u == 0 ? 1.0 : std::sin(u) / u;
        values[static_cast<std::size_t>(i)] *= sinc * Kaiser(i, length - 1, FilterBeta) * early;
    }
    return values;
}

/// Square root of the Kaiser kernel's running sum, rising to the middle and mirrored.
std::vector<double> MakeKaiserBesselDerived(int length, int shape)
{
    const int half = length / 2;
    std::vector<double> running;
    for (int i = 0; i <= half; ++i) {
        const double before = running.empty() ? 0.0 : running.back();
        running.push_back(before + Kaiser(i, half, shape * std::numbers::pi));
    }
    std::vector<double> values;
    values.reserve(static_cast<std::size_t>(length));
    for (int i = 0; i < length; ++i) {
        const auto nearer = static_cast<std::size_t>(std::min(i, length - 1 - i));
        values.push_back(std::sqrt(running[nearer] / running.back()));
    }
    return values;
}

Values MakeValues(int kind, int length, int hop)
{
    if (kind == WindowHann) {
        return {MakeHann(length), MakeHann(length)};
    }
    if (kind == WindowBlackman) {
        return {MakeBlackman(length), MakeBlackman(length)};
    }
    if (kind < 0) {
        const std::vector<double> flat(static_cast<std::size_t>(length), 1.0);
        return {flat, MakeFilter(length, hop)};
    }
    return {MakeKaiserBesselDerived(length, kind), MakeKaiserBesselDerived(length, kind)};
}

} // namespace

WindowPair MakeWindows(int kind, int length, int hop)
{
    const Values values = MakeValues(kind, length, hop);
    double sum = 0;
    for (std::size_t i = 0; i < values.analysis.size(); ++i) {
        sum += values.analysis[i] * values.synthesis[i];
    }
    const double half = length * 0.5;
    WindowPair pair;
    for (std::size_t i = 0; i < values.analysis.size(); ++i) {
        pair.analysis.push_back(static_cast<float>(values.analysis[i] * half / sum));
        pair.synthesis.push_back(static_cast<float>(values.synthesis[i] * hop / half));
    }
    return pair;
}

} // namespace DSP
