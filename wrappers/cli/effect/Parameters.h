// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Parameter.h"

#include <string>
#include <vector>

namespace Cli {

/// A parameter with the value, in its own unit, that it had when it was read.
struct ParameterValue {
    Wrapper::Parameter parameter;
    double value = 0;
    bool isChanged = false; ///< a session keeps it, and it isn't the default
};

/// The value that the module means by `normalised`, without the digits that come from its being a
/// binary float: 200 and not 200.00000596.
double TidyValue(const Wrapper::Parameter& parameter, float normalised);

/// `value` of the parameter for a reader: "200", "on", or an enumeration's label.
std::string FormatValue(const Wrapper::Parameter& parameter, double value);

/// All parameters for a reader, one a line in columns; changed ones have a mark.
std::string ParameterTable(const std::vector<ParameterValue>& parameters);

} // namespace Cli
