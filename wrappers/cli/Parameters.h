// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"

#include <string>
#include <string_view>
#include <vector>

namespace Cli {

/// One parameter of an instance in its own units.
struct Parameter {
    std::string identifier; ///< "element.parameter"
    std::string displayName;
    std::string unit;                ///< empty: none
    std::vector<std::string> labels; ///< names of an enumeration's values, from `minimum` on
    PluginCoreParamType type = ParamTypeFloat;
    double minimum = 0;
    double maximum = 0;
    double defaultValue = 0;
    double value = 0; ///< as last read
};

/// What the entry says of a parameter; `value` is the default.
Parameter MakeParameter(const ParamInfoRecord& info);

/// `value`, taken into the range, as the entry takes it: 0 to 1.
float Normalised(const Parameter& parameter, double value);

/// The value that the entry means by `normalised`, without the digits that come from its being a
/// binary float: 200 and not 200.00000596.
double FromNormalised(const Parameter& parameter, float normalised);

/// `value` of the parameter for a reader: "200", "on", or an enumeration's label.
std::string FormatValue(const Parameter& parameter, double value);

/// All parameters for a reader, one a line in columns.
std::string ParameterTable(const std::vector<Parameter>& parameters);

} // namespace Cli
