// Text in aligned columns.
#pragma once

#include <string>
#include <vector>

namespace tool {

class Table {
public:
    enum class Align { Left, Right };
    struct Column {
        std::string heading;
        Align align = Align::Left;
    };

    // Without any heading there is no heading line.
    explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

    // As many cells as there are columns.
    void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

    // The lines, each indented and without blanks at its end; columns are two blanks apart.
    [[nodiscard]] std::string text(std::size_t indent) const;

private:
    std::vector<Column> columns_;
    std::vector<std::vector<std::string>> rows_;
};

} // namespace tool
