// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"

#include <algorithm>
#include <cmath>
#include <span>

/// Puts 0 in the place of samples that are no finite numbers, or beyond PLUGIN_CORE_LARGEST_SAMPLE:
/// their power would overflow. [process]
inline void ReplaceUnusable(std::span<float> samples) noexcept
{
    const auto isUnusable = [](float sample) {
        return !(std::abs(sample) <= PLUGIN_CORE_LARGEST_SAMPLE); // also a NaN
    };
    std::replace_if(samples.begin(), samples.end(), isUnusable, 0.0F);
}
