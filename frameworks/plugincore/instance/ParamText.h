// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementParam.h"

/// A parameter with its value on the UI side, for a person: "Sensitivity: 6.5". Numbers are in the
/// parameter's own units, as fine as a hand sets them: a hundred steps or more over the range. [ui]
String DescribeValue(const DSP::ParamObject& param);
