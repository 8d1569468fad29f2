// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Module.h"
#include "wrappers/common/Parameter.h"
#include "wrappers/lv2/Variants.h"

#include <optional>
#include <string>
#include <vector>

namespace Lv2 {

/// The module's description of itself, as far as the documents hold it.
struct Description {
    Wrapper::Product product;
    std::vector<Wrapper::Parameter> parameters;
    std::optional<size_t> bypassIndex;
};

/// Symbol of a parameter's port.
std::string PortSymbol(const Description& description, size_t index);

/// The whole description of one plug-in.
std::string PluginDocument(const Description& description, const Variant& variant);

} // namespace Lv2
