// Text in aligned columns. Cells are counted in bytes: what stands in front of the last column is ASCII.
#include "tools/table.h"

#include <algorithm>

namespace tool {

std::string Table::text(std::size_t indent) const {
    std::vector<std::vector<std::string>> lines;
    if (std::ranges::any_of(columns_, [](const Column &column) { return !column.heading.empty(); })) {
        std::vector<std::string> &headings = lines.emplace_back();
        std::ranges::transform(columns_, std::back_inserter(headings), &Column::heading);
    }
    lines.insert(lines.end(), rows_.begin(), rows_.end());

    std::vector<std::size_t> widths(columns_.size(), 0);
    for (const auto &line : lines) {
        for (std::size_t i = 0; i < widths.size(); ++i) {
            widths[i] = std::max(widths[i], line[i].size());
        }
    }
    std::string result;
    for (const auto &line : lines) {
        std::string out(indent, ' ');
        for (std::size_t i = 0; i < widths.size(); ++i) {
            const std::string blanks(widths[i] - line[i].size(), ' ');
            out += i == 0 ? "" : "  ";
            out += columns_[i].align == Align::Right ? blanks + line[i] : line[i] + blanks;
        }
        out.erase(out.find_last_not_of(' ') + 1);
        result += out + "\n";
    }
    return result;
}

} // namespace tool
