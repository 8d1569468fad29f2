// SPDX-License-Identifier: ISC
#pragma once

#include <string>
#include <vector>

namespace Cli {

/// Rows of texts for a terminal, in columns two blanks apart.
class TextTable {
public:
    using Row = std::vector<std::string>;

    explicit TextTable(const Row& head) { Add(head); }

    /// Adds a row of as many cells as the head has. Control characters come out as \xNN.
    void Add(const Row& row);

    /// All rows, each with an end of line and without blanks before that.
    std::string Format() const;

private:
    std::vector<Row> rows;
};

} // namespace Cli
