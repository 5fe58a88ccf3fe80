// Where the characters of a text land: lines, tabs, wrapping and page breaks, with a font of known measures.
#include "annot/fax_text.h"
#include "support/faults.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

TEST(FaxLayout, TextBeginsInTheCornerOfTheFrame) {
    EXPECT_EQ(laidOut("Hello"), (DrawnTexts{{0, 5, 7, "Hello"}}));
}

TEST(FaxLayout, AnEmptyTextDrawsNothingAndTurnsNoPage) {
    NotedPages pages;
    EXPECT_EQ(layOut("", pages), FaxTextEnd::Reached);
    EXPECT_EQ(pages.drawing, DrawnTexts());
    EXPECT_EQ(pages.page, 0U);
}

TEST(FaxLayout, ACarriageReturnWithItsLineFeedEndsALine) {
    EXPECT_EQ(laidOut("one\r\ntwo\r\n\r\n"), (DrawnTexts{{0, 5, 7, "one"}, {0, 5, 27, "two"}}));
}

TEST(FaxLayout, LineSpacingComesOnTopOfTheFontsHeight) {
    FaxFrame frame = smallFrame();
    frame.lineSpacing = 6;
    EXPECT_EQ(laidOut("one\r\ntwo", frame), (DrawnTexts{{0, 5, 7, "one"}, {0, 5, 33, "two"}}));
}

TEST(FaxLayout, TheByteBehindACarriageReturnIsDroppedWhateverItIs) {
    EXPECT_EQ(laidOut("one\rtwo"), (DrawnTexts{{0, 5, 7, "one"}, {0, 5, 27, "wo"}}));
    EXPECT_EQ(laidOut("a\r\r\nb"), (DrawnTexts{{0, 5, 7, "a"}, {0, 5, 27, "b"}}));
}

TEST(FaxLayout, ACarriageReturnAtTheEndHasNothingToDrop) {
    NotedPages pages;
    EXPECT_EQ(layOut("one\r", pages), FaxTextEnd::Reached);
    EXPECT_EQ(pages.drawing, (DrawnTexts{{0, 5, 7, "one"}}));
    EXPECT_EQ(pages.page, 0U);
}

TEST(FaxLayout, OtherControlBytesAreLeftOut) {
    std::string controls;
    for (char byte = 0; byte < 32; ++byte) {
        if (byte != '\t' && byte != '\r') {
            controls += byte;
        }
    }
    EXPECT_EQ(laidOut("a" + controls + "b"), (DrawnTexts{{0, 5, 7, "ab"}}));
    EXPECT_EQ(laidOut("one\ntwo"), (DrawnTexts{{0, 5, 7, "onetwo"}})) << "a line feed alone is no line end";
    EXPECT_EQ(laidOut("one\ftwo"), (DrawnTexts{{0, 5, 7, "onetwo"}})) << "a form feed begins no page";
    EXPECT_EQ(laidOut(controls), DrawnTexts());
}

TEST(FaxLayout, BytesFrom32OnAreCharacters) {
    EXPECT_EQ(laidOut(" \x7F\x80\xFF"), (DrawnTexts{{0, 5, 7, " \x7F\x80\xFF"}}));
}

TEST(FaxLayout, ATabLeadsToItsStop) {
    EXPECT_EQ(laidOut("a\tb\tc"), (DrawnTexts{{0, 5, 7, "a"}, {0, 35, 7, "b"}, {0, 65, 7, "c"}}));
}

TEST(FaxLayout, ATabStopThatHasBeenPassedDoesNotLeadBack) {
    // "aaaa" ends at 45, behind the first stop (35). The second tab is the second stop's (65), not the third's.
    EXPECT_EQ(laidOut("aaaa\tb\tc"), (DrawnTexts{{0, 5, 7, "aaaa"}, {0, 45, 7, "b"}, {0, 65, 7, "c"}}));
}

TEST(FaxLayout, EveryLineBeginsWithTheFirstTabStop) {
    EXPECT_EQ(laidOut("\t\ta\r\n\tb"), (DrawnTexts{{0, 65, 7, "a"}, {0, 35, 27, "b"}}));
    EXPECT_EQ(laidOut("\t\taaa bbbb\tc"), (DrawnTexts{{0, 65, 7, "aaa "}, {0, 5, 27, "bbbb"}, {0, 45, 27, "c"}}))
        << "a wrapped one, too";
}

TEST(FaxLayout, BehindTheSixteenthTabStopATabOnlyEndsAPiece) {
    FaxFrame frame = smallFrame();
    for (std::size_t i = 0; i < kTabStops; ++i) {
        frame.tabStops[i] = frame.left + static_cast<Pixels>(i + 1);
    }
    const std::string tabs(16, '\t');
    EXPECT_EQ(laidOut(tabs + "a", frame), (DrawnTexts{{0, 21, 7, "a"}}));
    EXPECT_EQ(laidOut(tabs + "a\tb\t\tc", frame), (DrawnTexts{{0, 21, 7, "a"}, {0, 31, 7, "b"}, {0, 41, 7, "c"}}));
}

TEST(FaxLayout, ATabBeyondTheRightLimitLeadsToTheNextLine) {
    EXPECT_EQ(laidOut("\t\t\t\tx"), (DrawnTexts{{0, 5, 27, "x"}})) << "the fourth stop is at 125";
}

TEST(FaxLayout, ALineIsWrappedBehindItsLastBreakCharacter) {
    for (const char character : std::string(" !,-.:;?")) {
        const std::string kept = std::string("aa bb") + character;
        EXPECT_EQ(laidOut(kept + "cccccc"), (DrawnTexts{{0, 5, 7, kept}, {0, 5, 27, "cccccc"}})) << character;
    }
    for (const char character : std::string("_/()'\"+*")) {
        const std::string rest = std::string("bb") + character + "ccccccc";
        EXPECT_EQ(laidOut("aa " + rest), (DrawnTexts{{0, 5, 7, "aa "}, {0, 5, 27, rest}})) << character;
    }
}

TEST(FaxLayout, ALineIsWrappedWhenItReachesTheRightLimit) {
    // 5 + 9 * 10 is 95, one more character makes 105.
    EXPECT_EQ(laidOut("aaaa bbbb"), (DrawnTexts{{0, 5, 7, "aaaa bbbb"}}));
    EXPECT_EQ(laidOut("aaaa bbbbb"), (DrawnTexts{{0, 5, 7, "aaaa "}, {0, 5, 27, "bbbbb"}}));
    EXPECT_EQ(laidOut("aaaa bbbbi"), (DrawnTexts{{0, 5, 7, "aaaa bbbbi"}})) << "99 is not enough";
}

TEST(FaxLayout, ABreakCharacterThatReachesTheLimitStaysOnTheLine) {
    EXPECT_EQ(laidOut("aaaaaaaaa bb"), (DrawnTexts{{0, 5, 7, "aaaaaaaaa "}, {0, 5, 27, "bb"}}));
}

TEST(FaxLayout, WithoutABreakCharacterTheLineIsDrawnIntoTheMargin) {
    EXPECT_EQ(laidOut("iaaaaaaaaaabb"), (DrawnTexts{{0, 5, 7, "iaaaaaaaaaa"}, {0, 5, 27, "bb"}}))
        << "it ends at 109, and the limit is 105";
}

TEST(FaxLayout, BreakCharactersBeforeATabDoNotCount) {
    EXPECT_EQ(laidOut("a b\tccccccccc"), (DrawnTexts{{0, 5, 7, "a b"}, {0, 35, 7, "ccccccc"}, {0, 5, 27, "cc"}}));
}

TEST(FaxLayout, WhatAFontOverhangsCountsOncePerText) {
    FontMeasures font = plainFont();
    font.overhang = 3;
    EXPECT_EQ(laidOut("aa\t\tb\tc", smallFrame(), font),
              (DrawnTexts{{0, 5, 7, "aa"}, {0, 65, 7, "b"}, {0, 95, 7, "c"}}));
    EXPECT_EQ(laidOut("aaaaaa\tb", smallFrame(), font), (DrawnTexts{{0, 5, 7, "aaaaaa"}, {0, 68, 7, "b"}}));
    EXPECT_EQ(laidOut("aaaaa bbii", smallFrame(), font), (DrawnTexts{{0, 5, 7, "aaaaa bbii"}})) << "up to 96";
    EXPECT_EQ(laidOut("aaaaa bbbi", smallFrame(), font), (DrawnTexts{{0, 5, 7, "aaaaa bbbi"}})) << "up to 102";
    EXPECT_EQ(laidOut("aaaaa bbbii", smallFrame(), font), (DrawnTexts{{0, 5, 7, "aaaaa "}, {0, 5, 27, "bbbii"}}));
}

TEST(FaxLayout, NoTextHasNoOverhang) {
    FontMeasures font = plainFont();
    font.overhang = 3;
    EXPECT_EQ(laidOut(std::string(18, '\t') + "a", FaxFrame{.right = 100, .bottom = 100}, font),
              (DrawnTexts{{0, 0, 0, "a"}}))
        << "tabs whose stops are all at the left side";
}

TEST(FaxLayout, APageIsFullWhenTheNextLineWouldBeginInTheMargin) {
    EXPECT_EQ(laidOut("1\r\n2\r\n3\r\n4"),
              (DrawnTexts{{0, 5, 7, "1"}, {0, 5, 27, "2"}, {0, 5, 47, "3"}, {1, 5, 7, "4"}}));
    FaxFrame frame = smallFrame();
    frame.bottom = 68;
    EXPECT_EQ(laidOut("1\r\n2\r\n3\r\n4\r\n5", frame),
              (DrawnTexts{{0, 5, 7, "1"}, {0, 5, 27, "2"}, {0, 5, 47, "3"}, {0, 5, 67, "4"}, {1, 5, 7, "5"}}))
        << "a line that begins above the margin may reach into it";
}

TEST(FaxLayout, ALineEndBehindAFullPageTurnsIt) {
    NotedPages full;
    EXPECT_EQ(layOut("1\r\n2\r\n3", full), FaxTextEnd::Reached);
    EXPECT_EQ(full.page, 0U);
    NotedPages ended;
    EXPECT_EQ(layOut("1\r\n2\r\n3\r\n", ended), FaxTextEnd::Reached);
    EXPECT_EQ(ended.page, 1U);
}

TEST(FaxLayout, WhatAWrapMovesDownIsDroppedWhenThePageIsFull) {
    EXPECT_EQ(laidOut("1\r\n2\r\naaaa bbbbbcc"),
              (DrawnTexts{{0, 5, 7, "1"}, {0, 5, 27, "2"}, {0, 5, 47, "aaaa "}, {1, 5, 7, "cc"}}));
}

TEST(FaxLayout, APageBeginsWithTheFirstTabStop) {
    EXPECT_EQ(laidOut("\r\n\r\n\t\ta aac\tb"), (DrawnTexts{{0, 65, 47, "a "}, {1, 5, 7, "c"}, {1, 35, 7, "b"}}))
        << "the page turns in the middle of a line";
}

TEST(FaxLayout, EndsWhenTheCanvasTakesNoMorePages) {
    NotedPages pages(1);
    EXPECT_EQ(layOut("1\r\n2\r\n3\r\n4\r\n", pages), FaxTextEnd::CanvasIsFull);
    EXPECT_EQ(pages.drawing, (DrawnTexts{{0, 5, 7, "1"}, {0, 5, 27, "2"}, {0, 5, 47, "3"}}));
}

TEST(FaxLayout, WithoutRoomForALineEveryByteHasALineOfItsOwn) {
    FaxFrame frame = smallFrame();
    frame.right = frame.left - 50;
    frame.bottom = 1000;
    EXPECT_EQ(laidOut("ab", frame), (DrawnTexts{{0, 5, 7, "a"}, {0, 5, 27, "b"}}));
    EXPECT_EQ(laidOut("a\r\nb", frame), (DrawnTexts{{0, 5, 7, "a"}, {0, 5, 67, "b"}}));
}

TEST(FaxLayout, WithoutRoomForAPageEveryByteHasAPageOfItsOwn) {
    FaxFrame frame = smallFrame();
    frame.bottom = frame.top;
    NotedPages pages(5);
    EXPECT_EQ(layOut("abcdefgh", pages, frame), FaxTextEnd::CanvasIsFull);
    EXPECT_EQ(pages.page, 5U);
    EXPECT_EQ(pages.drawing, DrawnTexts()) << "the page is turned before the character is drawn";
}

TEST(FaxLayout, ALineThatNothingLimitsMayHaveAMillionCharacters) {
    FaxFrame frame = smallFrame();
    frame.right = 0x7FFFFFFF;
    std::string text = "begin ";
    text.append(1000000, 'x');
    EXPECT_EQ(laidOut(text, frame), (DrawnTexts{{0, 5, 7, text}}));
    frame.right = 5 + 10 * 1000000;
    EXPECT_EQ(laidOut(text, frame), (DrawnTexts{{0, 5, 7, "begin "}, {0, 5, 27, std::string(1000000, 'x')}}))
        << "moved down by one wrap";
}

TEST(FaxLayout, CharactersWithoutWidthDoNotFillALine) {
    const std::string marks(20000, '|');
    EXPECT_EQ(laidOut(marks + "aaaa bbbbb"), (DrawnTexts{{0, 5, 7, marks + "aaaa "}, {0, 5, 27, "bbbbb"}}));
}

// Every wrap moves only what has not been moved before.
TEST(FaxLayout, ALongTextTakesOneStepAByte) {
    std::string text;
    while (text.size() < 3000000) {
        text += "lorem ipsum, dolor sit amet. ";
    }
    NotedPages pages(10000000);
    FaxFrame frame = smallFrame();
    frame.bottom = 0x7FFFFFFF;
    EXPECT_EQ(layOut(text, pages, frame), FaxTextEnd::Reached);
    std::string drawn;
    for (const DrawnText &line : pages.drawing) {
        EXPECT_LE(line.text.size(), 10U);
        drawn += line.text;
    }
    EXPECT_TRUE(drawn == text) << "nothing is lost between lines";
}

TEST(FaxLayout, EndsWithoutMemoryForALine) {
    const std::string text(5000, '|');
    long allocations = 0;
    {
        const FailNth none(Call::Allocate, FailNth::kNever);
        NotedPages pages;
        EXPECT_EQ(layOut(text, pages), FaxTextEnd::Reached);
        allocations = static_cast<long>(none.calls());
    }
    EXPECT_EQ(allocations, 5) << "512, 1024, 2048, 4096, 8192";
    for (long nth = 0; nth < allocations; ++nth) {
        const FailNth fault(Call::Allocate, nth);
        NotedPages pages;
        EXPECT_EQ(layOut(text, pages), FaxTextEnd::NoMemory);
        EXPECT_TRUE(fault.happened());
        EXPECT_EQ(pages.drawing, DrawnTexts());
    }
}

} // namespace
} // namespace vellum::test
