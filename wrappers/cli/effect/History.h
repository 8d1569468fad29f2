// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/effect/Controls.h"
#include "wrappers/common/History.h"

#include <optional>
#include <string>
#include <vector>

namespace Cli {

/// A step of an undo history with what the controls stood at; without values where it holds none.
struct HistoryStep {
    Wrapper::HistoryStep step;
    std::optional<ForEachControl<double>> values;
};

/// The steps for a reader, one a line: time, text, slots, a column for each control.
std::string HistoryTable(const std::vector<HistoryStep>& steps);

/// The steps as a JSON document.
std::string HistoryJson(const std::vector<HistoryStep>& steps);

} // namespace Cli
