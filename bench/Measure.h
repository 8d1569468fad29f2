// SPDX-License-Identifier: ISC
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <ctime>
#include <vector>

namespace Bench {

/// Seconds that one call of `work` takes, with what other programs make it wait.
template <typename Work>
double Time(Work&& work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Seconds that this thread has spent computing.
inline double GetThreadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Seconds that one call of `work` computes on this thread, without the waiting. Reading this clock
/// takes a good microsecond, so `work` is to take some hundred.
template <typename Work>
double TimeComputing(Work&& work)
{
    const double begin = GetThreadSeconds();
    work();
    return GetThreadSeconds() - begin;
}

/// Middle one of an odd number of values.
inline double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Two kinds of work measured by turns, so that what disturbs the machine meets both.
struct Comparison {
    double seconds = 0;   ///< of one call of the first
    double reference = 0; ///< of one call of the second
    double ratio = 0;     ///< first to second
};

/// Medians over `rounds` turns, an odd number; the ratio is the median of each turn's own.
/// `prepare` comes before each turn and isn't measured.
template <typename Prepare, typename Work, typename Reference>
Comparison Compare(int rounds, Prepare&& prepare, Work&& work, Reference&& reference)
{
    std::vector<double> seconds;
    std::vector<double> references;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        prepare();
        seconds.push_back(TimeComputing(work));
        references.push_back(TimeComputing(reference));
        ratios.push_back(seconds.back() / references.back());
    }
    return {Median(seconds), Median(references), Median(ratios)};
}

} // namespace Bench
