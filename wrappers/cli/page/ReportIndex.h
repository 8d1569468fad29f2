// SPDX-License-Identifier: ISC
#pragma once

#include <string>
#include <vector>

namespace Cli {

/// A recording of a run; texts are UTF-8.
struct IndexRow {
    std::string name;
    std::string link;               ///< from the index to its page; empty: it has none
    std::string failure;            ///< not empty: why it failed, and then there are no cells
    std::vector<std::string> cells; ///< as many as the index has columns
};

/// All recordings of a run.
struct ReportIndex {
    std::vector<std::string> columns;
    std::vector<IndexRow> rows;
    std::vector<std::string> totals; ///< as many as there are columns
    std::string subtitle;
};

/// Writes the page that leads to the pages of all recordings. Throws FileError.
void WriteReportIndex(int descriptor, const ReportIndex& index);

} // namespace Cli
