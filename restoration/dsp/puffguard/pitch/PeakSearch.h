// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <span>

namespace DSP::Synapse {

/// What the lag tracker does to an autocorrelation: plain functions on its values by lag.
/// `correlation` has one value more than the longest lag searched, and that one reads 0.
/// All are [process].

/// From lag `start` up the slope to the top of the correlation, at most `reach` lags away.
int ClimbToPeak(std::span<const float> correlation, int start, int reach, int maxLag) noexcept
    UTIL_NONBLOCKING;

/// Lag of the parabola's top through `peak` and its neighbours, in fractions of a sample;
/// `fallback` where the correlation is flat or hollow there.
float RefineLag(std::span<const float> correlation, int peak, int fallback) noexcept
    UTIL_NONBLOCKING;

/// How periodic a frame with this value of the correlation is, 0 to 1; `atZero` is its value at
/// lag 0.
float GetClarity(float value, float atZero) noexcept UTIL_NONBLOCKING;

} // namespace DSP::Synapse
