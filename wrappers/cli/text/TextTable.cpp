// SPDX-License-Identifier: ISC
#include "wrappers/cli/text/TextTable.h"

#include "wrappers/cli/text/Text.h"
#include "wrappers/common/Utf8.h"

#include <algorithm>

namespace Cli {

namespace {

using Wrapper::Utf8::CountCharacters;

constexpr size_t Gap = 2;

} // namespace

void TextTable::Add(const Row& row)
{
    Row& cells = rows.emplace_back();
    for (const std::string& cell : row) {
        cells.push_back(Printable(cell));
    }
}

std::string TextTable::Format() const
{
    std::vector<size_t> widths(rows.front().size());
    for (const Row& row : rows) {
        for (size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], CountCharacters(row[i]));
        }
    }
    std::string text;
    for (const Row& row : rows) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i) {
            line += row[i] + std::string(widths[i] - CountCharacters(row[i]) + Gap, ' ');
        }
        line.resize(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

} // namespace Cli
