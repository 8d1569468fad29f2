// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace DSP::Synapse {

/// Registration of a parameter that only the process side reacts to. [setup]
template <typename T>
ParamRegistration<T> MakeParam(const char* name,
                               ValueRange<T> range,
                               T defaultValue,
                               T& target,
                               std::function<void(T)> onProcessChange = {},
                               const char* units = "")
{
    ParamRegistration<T> registration;
    registration.name = name;
    registration.range = range;
    registration.defaultValue = defaultValue;
    registration.target = &target;
    registration.onProcessChange = std::move(onProcessChange);
    registration.info.units = units;
    return registration;
}

/// The same for an enumeration or whole number from `range`; a number has no labels. [setup]
inline EnumRegistration MakeEnum(const char* name,
                                 ValueRange<uint32_t> range,
                                 uint32_t defaultValue,
                                 uint32_t& target,
                                 std::vector<String> labels,
                                 std::function<void(uint32_t)> onProcessChange = {})
{
    EnumRegistration registration;
    static_cast<ParamRegistration<uint32_t>&>(registration) =
        MakeParam(name, range, defaultValue, target, std::move(onProcessChange));
    registration.labels = std::move(labels);
    return registration;
}

} // namespace DSP::Synapse
