// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Parameter.h"

#include <travesty/base.h>

#include <cstdint>
#include <string_view>
#include <vector>

namespace Vst3 {

/// The number by which sessions know a parameter: made of its identifier, so that it stays when
/// others come and go (32-bit FNV-1a). The upper half is the host's.
constexpr v3_param_id MakeId(std::string_view identifier)
{
    uint32_t hash = 2166136261U;
    for (const char letter : identifier) {
        hash = (hash ^ static_cast<unsigned char>(letter)) * 16777619U;
    }
    return hash & 0x7FFFFFFFU;
}

inline std::vector<v3_param_id> MakeIds(const std::vector<Wrapper::Parameter>& parameters)
{
    std::vector<v3_param_id> ids;
    for (const Wrapper::Parameter& parameter : parameters) {
        ids.push_back(MakeId(parameter.identifier));
    }
    return ids;
}

} // namespace Vst3
