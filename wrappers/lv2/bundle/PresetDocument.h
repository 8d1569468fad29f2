// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/lv2/bundle/PluginDocument.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Lv2 {

/// A preset of the product with what it sets.
struct PresetValues {
    std::string name;
    std::string comment;
    std::vector<double> values; ///< by parameter, in their own units
    std::vector<uint8_t> state; ///< holds also what has no port
};

/// What the bundle's list holds of the presets of one plug-in.
std::string PresetList(std::span<const PresetValues> presets, const Variant& variant);

/// The file that the list points to: the presets of one plug-in. A bypass belongs to no preset.
std::string PresetDocument(const Description& description,
                           std::span<const PresetValues> presets,
                           const Variant& variant);

} // namespace Lv2
