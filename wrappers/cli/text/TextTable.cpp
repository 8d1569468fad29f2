// SPDX-License-Identifier: ISC
#include "wrappers/cli/text/TextTable.h"

#include "wrappers/cli/text/Text.h"

#include <algorithm>

namespace Cli {

namespace {

constexpr size_t gap = 2;

// Characters of UTF-8 text: bytes that don't continue one.
size_t WidthOf(const std::string& text)
{
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    }));
}

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
            widths[i] = std::max(widths[i], WidthOf(row[i]));
        }
    }
    std::string text;
    for (const Row& row : rows) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i) {
            line += row[i] + std::string(widths[i] - WidthOf(row[i]) + gap, ' ');
        }
        line.resize(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

} // namespace Cli
