// Takes a text of several lines apart, for all that draw it line by line. Carriage returns and line feeds stand between
// lines and are no part of them.
#pragma once

#include <cstddef>
#include <string_view>

namespace vellum {

struct TextLine {
    std::string_view text;
    // In the run of line ends before the line: a carriage return is none.
    std::size_t lineFeedsBefore = 0;
};

class TextLines {
public:
    explicit TextLines(std::string_view text) : rest_(text) {}

    // The next line; false behind the last one. Line ends behind the last line make an empty one.
    bool next(TextLine &line) {
        if (rest_.empty()) {
            return false;
        }
        line.lineFeedsBefore = 0;
        while (!rest_.empty() && isLineEnd(rest_.front())) {
            line.lineFeedsBefore += rest_.front() == '\n' ? 1 : 0;
            rest_.remove_prefix(1);
        }
        const std::size_t end = rest_.find_first_of("\r\n");
        line.text = rest_.substr(0, end);
        rest_.remove_prefix(line.text.size());
        return true;
    }

private:
    static constexpr bool isLineEnd(char character) { return character == '\r' || character == '\n'; }

    std::string_view rest_;
};

} // namespace vellum
