// The rules for single records: how one becomes a string, how numbers are read out of one, how one is written.
#include "cals/cals_records.h"

#include "cals/cals_files.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

// Trims a record that fills its 128 bytes, with guard bytes around it.
std::string trimmed(std::string record, char padding = ' ') {
    record.resize(128, padding);
    std::string guarded = "<" + record + ">";
    trimCalsRecord(guarded.data() + 1);
    EXPECT_EQ(guarded.front(), '<');
    EXPECT_EQ(guarded.back(), '>');
    return std::string(guarded.c_str() + 1);
}

TEST(CalsTrimming, BlanksAndNulsBehindTheTextGo) {
    EXPECT_EQ(trimmed("notes: SHEET 1"), "notes: SHEET 1");
    EXPECT_EQ(trimmed("notes: SHEET 1", '\0'), "notes: SHEET 1");
    EXPECT_EQ(trimmed("notes: SHEET 1" + std::string("\0 \0 ", 4)), "notes: SHEET 1");
    EXPECT_EQ(trimmed("notes:   x  y"), "notes:   x  y");
}

TEST(CalsTrimming, OneLineEndBehindTheTextGoes) {
    EXPECT_EQ(trimmed("notes: A\r"), "notes: A");
    EXPECT_EQ(trimmed("notes: A\n"), "notes: A");
    EXPECT_EQ(trimmed("notes: A\r\n"), "notes: A\r");
    EXPECT_EQ(trimmed("notes: A\n   "), "notes: A");
}

TEST(CalsTrimming, ARecordWithTextInItsFirstThreeCharactersOnlyIsABlank) {
    EXPECT_EQ(trimmed(""), " ");
    EXPECT_EQ(trimmed("", '\0'), " ");
    EXPECT_EQ(trimmed("abc"), " ");
    EXPECT_EQ(trimmed("abcd"), "abcd");
    EXPECT_EQ(trimmed("   d"), "   d");
}

TEST(CalsTrimming, NeverLooksAtTheLastCharacter) {
    const std::string full = "notes: " + std::string(120, 'x');
    EXPECT_EQ(trimmed(full + "Z"), full);
    EXPECT_EQ(trimmed(full), full);
    EXPECT_EQ(trimmed(std::string(127, ' ') + "Z"), " ");
    EXPECT_EQ(trimmed(full.substr(0, 126) + "\n" + "Z"), full.substr(0, 126));
}

std::vector<LONG> numbersIn(std::string record, int count, std::string_view keyword = "rpelcnt: ") {
    record.resize(128, ' ');
    const std::vector<char> exact(record.begin(), record.end()); // a read behind it is found by the sanitizer
    CalsNumbers numbers(exact.data(), keyword);
    std::vector<LONG> read;
    for (int i = 0; i < count; ++i) {
        read.push_back(numbers.next());
    }
    return read;
}
using Numbers = std::vector<LONG>;

TEST(CalsNumberRule, AnyOneCharacterSeparatesTwoNumbers) {
    for (const char separator : {',', ' ', ';', 'x', '\0', '\t'}) {
        EXPECT_EQ(numbersIn(std::string("rpelcnt: 001728") + separator + "002200", 2), (Numbers{1728, 2200}))
            << separator;
    }
}

TEST(CalsNumberRule, BlanksInFrontOfANumberAndOneSignAreRead) {
    EXPECT_EQ(numbersIn("rpelcnt:   -17,  +22", 2), (Numbers{-17, 22}));
    EXPECT_EQ(numbersIn("rpelcnt: 17 , 22", 2), (Numbers{17, 0})) << "the comma is where a number should be";
}

TEST(CalsNumberRule, TextThatIsNoNumberIs0) {
    EXPECT_EQ(numbersIn("rpelcnt: ", 3), (Numbers{0, 0, 0}));
    EXPECT_EQ(numbersIn("rpelcnt: abc", 1), Numbers{0});
    EXPECT_EQ(numbersIn("rpelcnt: --5", 1), Numbers{0});
    EXPECT_EQ(numbersIn("rpelcnt: 12abc", 1), Numbers{12});
    EXPECT_EQ(numbersIn("rpelcnt: \t12", 1), Numbers{0});
}

TEST(CalsNumberRule, BehindTextThatIsNoNumberTheNextCharacterIsPassedOver) {
    EXPECT_EQ(numbersIn("rpelcnt: ,2200", 2), (Numbers{0, 2200}));
    EXPECT_EQ(numbersIn("rpelcnt: -,22", 3), (Numbers{0, 0, 22}));
}

TEST(CalsNumberRule, NumbersThatNoLongHoldsAreTheNearestOne) {
    EXPECT_EQ(numbersIn("rpelcnt: 2147483647,-2147483648", 2), (Numbers{0x7FFFFFFF, -0x7FFFFFFF - 1}));
    EXPECT_EQ(numbersIn("rpelcnt: 2147483648,-2147483649", 2), (Numbers{0x7FFFFFFF, -0x7FFFFFFF - 1}));
    EXPECT_EQ(numbersIn("rpelcnt: " + std::string(100, '9') + ",7", 2), (Numbers{0x7FFFFFFF, 7}));
    EXPECT_EQ(numbersIn("rpelcnt: -" + std::string(100, '9') + ",7", 2), (Numbers{-0x7FFFFFFF - 1, 7}));
}

TEST(CalsNumberRule, NumbersEndWithTheirRecord) {
    EXPECT_EQ(numbersIn("rpelcnt: " + std::string(119, '0'), 3), (Numbers{0, 0, 0}));
    EXPECT_EQ(numbersIn("rpelcnt: " + std::string(117, '0') + "12", 2), (Numbers{12, 0}));
}

std::string written(std::string_view keyword, std::string_view value) {
    std::string guarded(130, '#');
    writeCalsRecord(guarded.data() + 1, keyword, value);
    EXPECT_EQ(guarded.front(), '#');
    EXPECT_EQ(guarded.back(), '#');
    return guarded.substr(1, 128);
}

TEST(CalsRecordWriting, FillsTheRecordWithBlanks) {
    EXPECT_EQ(written("notes: ", "AB"), blankPadded("notes: AB"));
    EXPECT_EQ(written("notes: ", ""), blankPadded("notes: "));
}

TEST(CalsRecordWriting, CutsWhatWouldTakeTheLastCharacter) {
    const std::string text(200, 'x');
    EXPECT_EQ(written("notes: ", std::string(120, 'x')), "notes: " + std::string(120, 'x') + " ");
    EXPECT_EQ(written("notes: ", std::string(121, 'x')), "notes: " + std::string(120, 'x') + " ");
    EXPECT_EQ(written("txtfileid: ", text), "txtfileid: " + std::string(116, 'x') + " ");
}

} // namespace
} // namespace vellum::test
