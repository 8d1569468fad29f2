// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace DSP {

template <typename T>
class RunningExp;
template <typename T>
class RunningExp2;
template <typename T>
class RunningExps2;

/// How far one step of an exponential smoother goes: 1 - exp(-1 / (time * rate)), 1 for a time of 0
/// or below. `time` in seconds, `rate` in steps a second. [any]
inline float GetSmootherCoefficient(double time, double rate) noexcept UTIL_NONBLOCKING
{
    return time <= 0 ? 1.0F : static_cast<float>(1.0 - std::exp(-1.0 / (time * rate)));
}

/// States below this count as nothing, so that a fading tail doesn't end in denormal numbers.
inline constexpr float SmootherFloor = 1e-30F;

/// Exponential smoother of values that aren't negative. configure() is [setup], the rest [process].
template <>
class RunningExp<float> {
public:
    /// `time` in seconds, `rate` in steps a second; starts at `newInitial`.
    void configure(double time, double rate, float newInitial) noexcept
    {
        coefficient = GetSmootherCoefficient(time, rate);
        initial = newInitial;
        reset();
    }

    void reset() noexcept UTIL_NONBLOCKING { state = initial; }

    /// Takes the next value; answers the smoothed one.
    float process(float value) noexcept UTIL_NONBLOCKING
    {
        state += (value - state) * coefficient;
        state = state < SmootherFloor ? 0.0F : state;
        return state;
    }

private:
    float initial = 0;
    float coefficient = 1;
    float state = 0;
};

/// RunningExp with one time for rising and one for falling values.
template <>
class RunningExp2<float> {
public:
    /// Times in seconds, `rate` in steps a second; starts at `newInitial`.
    void configure(double riseTime, double fallTime, double rate, float newInitial) noexcept
    {
        riseCoefficient = GetSmootherCoefficient(riseTime, rate);
        fallCoefficient = GetSmootherCoefficient(fallTime, rate);
        initial = newInitial;
        reset();
    }

    void reset() noexcept UTIL_NONBLOCKING { state = initial; }

    /// One step of a state outside the object, by this object's times.
    float Advance(float from, float value) const noexcept UTIL_NONBLOCKING
    {
        const float coefficient = value <= from ? fallCoefficient : riseCoefficient;
        const float next = from + (value - from) * coefficient;
        return next < SmootherFloor ? 0.0F : next;
    }

    /// Takes the next value; answers the smoothed one.
    float process(float value) noexcept UTIL_NONBLOCKING
    {
        state = Advance(state, value);
        return state;
    }

    float GetInitial() const noexcept { return initial; }

private:
    float initial = 0;
    float riseCoefficient = 1;
    float fallCoefficient = 1;
    float state = 0;
};

/// A RunningExp2 for each of a number of bins, all with the same times.
template <>
class RunningExps2<float> {
public:
    /// See RunningExp2::configure(); allocates nothing where `count` doesn't grow. [setup]
    void configure(std::size_t count, double riseTime, double fallTime, double rate, float initial)
    {
        step.configure(riseTime, fallTime, rate, initial);
        states.resize(count);
        reset();
    }

    /// [process]
    void reset() noexcept UTIL_NONBLOCKING
    {
        std::fill(states.begin(), states.end(), step.GetInitial());
    }

    /// Takes one value for one bin; answers the smoothed one. [process]
    float process(std::size_t bin, float value) noexcept UTIL_NONBLOCKING
    {
        states[bin] = step.Advance(states[bin], value);
        return states[bin];
    }

    /// Takes one value for each bin and answers all states. [process]
    const float* process(const float* values) noexcept UTIL_NONBLOCKING
    {
        // A copy of the times: no write to a state could change it, so it stays in registers.
        const RunningExp2<float> times = step;
        float* const target = states.data();
        for (std::size_t bin = 0; bin < states.size(); ++bin) {
            target[bin] = times.Advance(target[bin], values[bin]);
        }
        return target;
    }

    /// Puts a bin's state where it is wanted. [process]
    void SetState(std::size_t bin, float state) noexcept UTIL_NONBLOCKING { states[bin] = state; }

private:
    RunningExp2<float> step;
    std::vector<float> states;
};

} // namespace DSP
