// LZW where strips, lines and strings do not end together, and what the predictor makes of lines cut short.
#include "support/byte_coders.h"
#include "support/coded_tiff.h"
#include "support/decode_lines.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

struct StripRun {
    Outcome outcome;
    Bytes lines;
    DWORD lineCount = 0;
};

StripRun decodeStrips(const CodedPage &page, const std::vector<Bytes> &strips) {
    const OpenedTiff tiff(codedTiff(page, strips));
    EXPECT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    const Outcome outcome = decodeInto(log, tiff.get(), 0);
    EXPECT_TRUE(log.inOrder);
    return {outcome, log.data, log.lines};
}

LzwCodes fromClear() {
    return LzwCodes().code(kLzwClear, 9);
}

TEST(LzwStrips, WhatAStringHasLeftOverAtTheStripsEndIsDropped) {
    const CodedPage page{.width = 2, .height = 4, .bits = 8, .key = VELLUM_KEY_LZW, .rowsPerStrip = 2};
    // 7, 77, 777, 7777: ten bytes for a strip of four.
    const Bytes tooLong = fromClear().code(7, 9).code(258, 9).code(259, 9).code(260, 9).code(kLzwEnd, 9).bytes();
    const Bytes next = fromClear().code(1, 9).code(2, 9).code(3, 9).code(4, 9).code(kLzwEnd, 9).bytes();
    const auto run = decodeStrips(page, {tooLong, next});
    EXPECT_EQ(run.outcome, kDecoded);
    EXPECT_EQ(run.lines, (Bytes{7, 7, 7, 7, 1, 2, 3, 4}));
}

TEST(LzwStrips, TheTableStartsAfreshWithEveryStripAlsoWithoutAClear) {
    const CodedPage page{.width = 3, .height = 2, .bits = 8, .key = VELLUM_KEY_LZW, .rowsPerStrip = 1};
    const Bytes first = fromClear().code(7, 9).code(258, 9).bytes();
    const Bytes second = LzwCodes().code(5, 9).code(258, 9).bytes();
    const auto run = decodeStrips(page, {first, second});
    EXPECT_EQ(run.outcome, kDecoded);
    EXPECT_EQ(run.lines, (Bytes{7, 7, 7, 5, 5, 5}));
    const auto bad = decodeStrips(page, {first, LzwCodes().code(258, 9).code(0, 9).bytes()});
    EXPECT_EQ(bad.outcome, failedWith(VELLUM_CODE_ERROR)) << "the first strip's string is forgotten";
    EXPECT_EQ(bad.lineCount, 1U);
}

TEST(LzwStrips, AnEndOfInformationBehindAWholeLineDeliversAnEmptyOneAndFails) {
    const CodedPage page{.width = 2, .height = 3, .bits = 8, .key = VELLUM_KEY_LZW};
    const auto run = decodeStrips(page, {fromClear().code(1, 9).code(2, 9).code(kLzwEnd, 9).bytes()});
    EXPECT_EQ(run.outcome, failedWith(VELLUM_CODE_ERROR));
    EXPECT_EQ(run.lines, (Bytes{1, 2, 0, 0}));
}

TEST(LzwStrips, ALineCutShortIsUndifferencedToo) {
    const CodedPage page{.width = 4, .height = 1, .bits = 8, .key = VELLUM_KEY_LZW_DIFFERENCING};
    const auto run = decodeStrips(page, {fromClear().code(10, 9).code(2, 9).code(255, 9).code(kLzwEnd, 9).bytes()});
    EXPECT_EQ(run.outcome, kDecoded);
    EXPECT_EQ(run.lines, (Bytes{10, 12, 11, 11}));
}

TEST(LzwStrips, DifferencingOfOneImageDoesNotReachTheNext) {
    const CodedPage with{.width = 3, .height = 1, .bits = 8, .key = VELLUM_KEY_LZW_DIFFERENCING};
    const CodedPage without{.width = 3, .height = 1, .bits = 8, .key = VELLUM_KEY_LZW};
    const Bytes code = fromClear().code(10, 9).code(2, 9).code(255, 9).bytes();
    EXPECT_EQ(decodeStrips(with, {code}).lines, (Bytes{10, 12, 11}));
    EXPECT_EQ(decodeStrips(without, {code}).lines, (Bytes{10, 2, 255}));
    EXPECT_EQ(decodeStrips(with, {code}).lines, (Bytes{10, 12, 11}));
}

TEST(LzwStrips, OfOtherDepthsDifferencingChangesNothing) {
    const CodedPage page{.width = 24, .height = 1, .bits = 1, .key = VELLUM_KEY_LZW_DIFFERENCING};
    EXPECT_EQ(decodeStrips(page, {fromClear().code(10, 9).code(2, 9).code(255, 9).bytes()}).lines, (Bytes{10, 2, 255}));
}

TEST(LzwStrips, ALineFunctionEndsTheRunInTheMiddleOfAString) {
    const CodedPage page{.width = 1, .height = 6, .bits = 8, .key = VELLUM_KEY_LZW};
    const OpenedTiff tiff(codedTiff(page, {fromClear().code(7, 9).code(258, 9).code(259, 9).bytes()}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    log.answer = 44;
    log.answerAt = 4;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), failedWith(44));
    EXPECT_EQ(log.lines, 5U);
    LineLog stopping;
    stopping.answer = 3;
    stopping.answerAt = 4;
    EXPECT_EQ(decodeInto(stopping, tiff.get(), 0), kDecoded);
    EXPECT_EQ(stopping.lines, 5U);
}

} // namespace
} // namespace vellum::test
