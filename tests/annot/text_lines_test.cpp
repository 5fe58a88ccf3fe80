// Texts of several lines, taken apart.
#include "annot/text_lines.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace vellum {

bool operator==(const TextLine &a, const TextLine &b) {
    return a.text == b.text && a.lineFeedsBefore == b.lineFeedsBefore;
}
std::ostream &operator<<(std::ostream &out, const TextLine &line) {
    return out << line.lineFeedsBefore << " \"" << line.text << '"';
}

namespace test {
namespace {

using Lines = std::vector<TextLine>;

Lines linesOf(std::string_view text) {
    Lines lines;
    TextLines walk(text);
    for (TextLine line; walk.next(line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(TextLines, ALineWithoutAnEndIsOne) {
    EXPECT_EQ(linesOf("Hello"), (Lines{{"Hello", 0}}));
    EXPECT_EQ(linesOf(""), Lines());
}

TEST(TextLines, LineFeedsBeforeALineAreCountedAndCarriageReturnsAreNot) {
    EXPECT_EQ(linesOf("A\r\nB"), (Lines{{"A", 0}, {"B", 1}}));
    EXPECT_EQ(linesOf("A\rB"), (Lines{{"A", 0}, {"B", 0}}));
    EXPECT_EQ(linesOf("A\nB"), (Lines{{"A", 0}, {"B", 1}}));
    EXPECT_EQ(linesOf("A\r\n\r\n\r\nB"), (Lines{{"A", 0}, {"B", 3}}));
    EXPECT_EQ(linesOf("\n\n\rA"), (Lines{{"A", 2}}));
}

TEST(TextLines, LineEndsAtTheEndMakeAnEmptyLine) {
    EXPECT_EQ(linesOf("A\r\n"), (Lines{{"A", 0}, {"", 1}}));
    EXPECT_EQ(linesOf("\r"), (Lines{{"", 0}}));
}

TEST(TextLines, OtherControlCharactersBelongToALine) {
    EXPECT_EQ(linesOf("A\tB\fC"), (Lines{{"A\tB\fC", 0}}));
}

} // namespace
} // namespace test
} // namespace vellum
