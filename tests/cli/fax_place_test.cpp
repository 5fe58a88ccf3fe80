// vellum fax: where its options put the text. Whatever font the system has, a letter's ink begins at the same distance
// from where the letter is put, so that the distances between letters are known to the pixel.
#include "cli/page_pixels.h"
#include "cli/tiff_look.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using Words = std::vector<std::string>;

// Millimetres in pixels at 100 dots per inch, rounded.
constexpr LONG kFive = 20;
constexpr LONG kTen = 39;
constexpr LONG kTwenty = 79;
constexpr LONG kThirty = 118;
constexpr LONG kForty = 157;
constexpr LONG kFifty = 197;
constexpr LONG kSixty = 236;

struct Ink {
    LONG width = 0;
    LONG height = 0;
    std::vector<LONG> columns; // where each group of neighbouring columns with ink begins
    std::vector<LONG> rows;
    LONG lastColumn = -1;
    LONG lastRow = -1;
};

std::vector<LONG> beginnings(const std::vector<bool> &inked) {
    std::vector<LONG> starts;
    for (std::size_t i = 0; i < inked.size(); ++i) {
        if (inked[i] && (i == 0 || !inked[i - 1])) {
            starts.push_back(static_cast<LONG>(i));
        }
    }
    return starts;
}

LONG last(const std::vector<bool> &inked) {
    for (std::size_t i = inked.size(); i > 0; --i) {
        if (inked[i - 1]) {
            return static_cast<LONG>(i - 1);
        }
    }
    return -1;
}

Ink inkOf(const PagePixels &page) {
    const auto width = static_cast<std::size_t>(page.width);
    std::vector<bool> columns(width);
    std::vector<bool> rows(page.values.size() / width);
    for (std::size_t i = 0; i < page.values.size(); ++i) {
        if (page.values[i] == 0) {
            columns[i % width] = true;
            rows[i / width] = true;
        }
    }
    return {page.width, static_cast<LONG>(rows.size()), beginnings(columns), beginnings(rows), last(columns),
            last(rows)};
}

// The first page that a text becomes.
Ink drawnOn(const std::string &dpi, const std::string &text, const Words &options) {
    const WorkFolder folder;
    folder.put("a.txt", Bytes(text.begin(), text.end()));
    Words words = {"fax", "a.txt", "a.tif", "--dpi", dpi};
    words.insert(words.end(), options.begin(), options.end());
    const Outcome outcome = folder.run(words);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    return inkOf(pagePixels(folder, "a.tif"));
}

// The same at 100 dots per inch.
Ink drawn(const std::string &text, const Words &options) {
    return drawnOn("100", text, options);
}

std::string repeated(const std::string &text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

TEST(FaxPlace, TheMarginIsWhereTheTextBegins) {
    const Ink none = drawn("H", {"--margin=0"});
    ASSERT_EQ(none.columns.size(), 1U);
    ASSERT_EQ(none.rows.size(), 1U);
    EXPECT_LT(none.columns[0], 20);
    EXPECT_LT(none.rows[0], 20);
    struct Case {
        const char *margin;
        LONG left;
        LONG top;
    };
    for (const Case &entry : {Case{"10", kTen, kTen}, Case{"50x30", kFifty, kThirty}, Case{"5x60", kFive, kSixty}}) {
        const Ink ink = drawn("H", {"--margin", entry.margin});
        EXPECT_EQ(ink.columns, std::vector<LONG>{none.columns[0] + entry.left}) << entry.margin;
        EXPECT_EQ(ink.rows, std::vector<LONG>{none.rows[0] + entry.top}) << entry.margin;
    }
    EXPECT_EQ(drawn("H", {}).columns, std::vector<LONG>{none.columns[0] + kTwenty}) << "the default";
}

TEST(FaxPlace, TabsLeadToTheirStops) {
    struct Case {
        Words options;
        LONG first;
        LONG second;
    };
    for (const Case &entry : {Case{{}, kTwenty, kForty}, Case{{"--tabs=30,60"}, kThirty, kSixty},
                              Case{{"--tabs=10,50", "--margin=40x10"}, kTen, kFifty}}) {
        const Ink ink = drawn("H\tH\tH", entry.options);
        ASSERT_EQ(ink.columns.size(), 3U);
        EXPECT_EQ(ink.columns[1] - ink.columns[0], entry.first);
        EXPECT_EQ(ink.columns[2] - ink.columns[0], entry.second);
    }
}

// Behind the last stop the text goes on where it is.
TEST(FaxPlace, OtherStopsThanThoseGivenAreNone) {
    const Ink one = drawn("H\tH", {"--tabs=30"});
    EXPECT_EQ(one.columns.size(), 2U);
    EXPECT_EQ(drawn("H\t\t\tH", {"--tabs=30"}).columns, one.columns);
}

TEST(FaxPlace, SpacingComesOnTopOfTheLineHeight) {
    const auto pitch = [](const Words &options) {
        const Ink ink = drawn("H\nH\nH", options);
        EXPECT_EQ(ink.rows.size(), 3U);
        if (ink.rows.size() != 3) {
            return LONG{0};
        }
        EXPECT_EQ(ink.rows[2] - ink.rows[1], ink.rows[1] - ink.rows[0]);
        return ink.rows[1] - ink.rows[0];
    };
    const LONG plain = pitch({});
    EXPECT_GT(plain, 0);
    EXPECT_EQ(pitch({"--spacing=0"}), plain);
    EXPECT_EQ(pitch({"--spacing=5"}), plain + kFive);
    EXPECT_EQ(pitch({"--spacing=40"}), plain + kForty);
}

// Lines fill the paper from margin to margin: another word would have reached into the right one, and another line
// would have begun in the lower one.
TEST(FaxPlace, ThePaperIsUsedFromMarginToMargin) {
    struct Case {
        const char *paper;
        LONG width;
        LONG height;
    };
    for (const Case &entry : {Case{"a4", 827, 1169}, Case{"letter", 850, 1100}, Case{"legal", 850, 1400}}) {
        const Ink ink = drawn(repeated("H ", 1500), {"--paper", entry.paper, "--size=20", "--margin=20x30"});
        EXPECT_EQ(ink.width, entry.width) << entry.paper;
        EXPECT_EQ(ink.height, entry.height) << entry.paper;
        ASSERT_GT(ink.columns.size(), 5U);
        ASSERT_GT(ink.rows.size(), 5U);
        const LONG word = ink.columns[1] - ink.columns[0];
        const LONG line = ink.rows[1] - ink.rows[0];
        const LONG right = entry.width - kTwenty;
        const LONG bottom = entry.height - kThirty;
        EXPECT_LT(ink.lastColumn, right) << entry.paper;
        EXPECT_GE(ink.lastColumn + 2 * word, right) << entry.paper;
        EXPECT_LT(ink.rows.back() - ink.rows[0] + kThirty, bottom) << entry.paper;
        EXPECT_GE(ink.rows.back() - ink.rows[0] + kThirty + line, bottom) << entry.paper;
    }
}

constexpr LONG kFaxWidth = 1728; // pixels that fax machines have across

// Where the text of a page of 204 dots per inch and a width in pixels begins, at a margin in millimetres.
constexpr LONG columnsAt204(LONG millimetres) {
    return (millimetres * 1000 + 127) / 254 * 204 / 100;
}

TEST(FaxPlace, EveryPageHasTheWidthInPixels) {
    const WorkFolder folder;
    const std::string words = repeated("H ", 1000);
    folder.put("a.txt", Bytes(words.begin(), words.end()));
    EXPECT_EQ(folder.run({"fax", "a.txt", "a.tif", "--width=1728", "--size=20"}).out,
              "a.tif: page 1: 1728 x 2291, 1 bit, g4\na.tif: page 2: 1728 x 2291, 1 bit, g4\n");
    const auto pages = pagesIn(folder.get("a.tif"));
    ASSERT_EQ(pages.size(), 2U);
    for (int page = 1; page <= 2; ++page) {
        EXPECT_EQ(pages[static_cast<std::size_t>(page) - 1].tag(256).numbers, std::vector<std::uint32_t>{1728});
        const Ink ink = inkOf(pagePixels(folder, "a.tif", page));
        EXPECT_EQ(ink.width, kFaxWidth);
        EXPECT_EQ(ink.height, 2291);
        ASSERT_GT(ink.columns.size(), 5U);
        const LONG word = ink.columns[1] - ink.columns[0];
        const LONG right = kFaxWidth - columnsAt204(20);
        EXPECT_GE(ink.columns[0], columnsAt204(20));
        EXPECT_LT(ink.columns[0], columnsAt204(20) + word / 2);
        EXPECT_LT(ink.lastColumn, right);
        EXPECT_GE(ink.lastColumn + 2 * word, right);
    }
}

// A letter that begins before the right margin may end in it when there is no blank to wrap at, so the width at which
// two letters just stand on one line tells where that margin is.
TEST(FaxPlace, BothMarginsOfAWidthInPixelsAreAlike) {
    const auto drawnAt = [](LONG width, const char *margin) {
        return drawnOn("204x196", "HH", {"--size=20", "--margin", margin, "--width", std::to_string(width)});
    };
    const auto leastWidth = [&drawnAt](const char *margin, LONG margins) {
        LONG tooNarrow = margins + 10;
        LONG wide = margins + 138;
        while (wide - tooNarrow > 1) {
            const LONG middle = (tooNarrow + wide) / 2;
            (drawnAt(middle, margin).rows.size() == 1 ? wide : tooNarrow) = middle;
        }
        return wide;
    };
    const Ink letters = drawnAt(kFaxWidth, "0");
    ASSERT_EQ(letters.columns.size(), 2U);
    const LONG letter = letters.columns[1] - letters.columns[0];
    const LONG atTwenty = leastWidth("20", 2 * columnsAt204(20));
    EXPECT_NEAR(atTwenty, 2 * columnsAt204(20) + letter, 6);
    EXPECT_NEAR(leastWidth("60", 2 * columnsAt204(60)) - atTwenty, 2 * (columnsAt204(60) - columnsAt204(20)), 2);
}

TEST(FaxPlace, AWidthThatThePaperHasChangesNothing) {
    const WorkFolder folder;
    const std::string words = repeated("Some words\tand more of them. ", 400);
    folder.put("a.txt", Bytes(words.begin(), words.end()));
    EXPECT_EQ(folder.run({"fax", "a.txt", "paper.tif", "--dpi=100"}).err, "");
    EXPECT_EQ(folder.run({"fax", "a.txt", "width.tif", "--dpi=100", "--width=827"}).err, "");
    EXPECT_GT(pagesIn(folder.get("paper.tif")).size(), 1U);
    EXPECT_TRUE(folder.get("paper.tif") == folder.get("width.tif"));
}

// Text on a form in colours: the form's pixels, and black ones.
TEST(FaxPlace, AFormInColourKeepsItsColours) {
    const WorkFolder folder;
    folder.put("form.tif", bundled("buoy.tif"));
    folder.put("a.txt", {'H', '\n', 'H'});
    const Outcome outcome = folder.run({"fax", "a.txt", "out.tif", "--form", "form.tif", "--margin=10x20"});
    EXPECT_EQ(outcome.out, "out.tif: page 1: 240 x 160, 24 bits, lzw\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    const auto pages = pagesIn(folder.get("out.tif"));
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(pages[0].tag(258).numbers, (std::vector<std::uint32_t>{8, 8, 8}));
    EXPECT_EQ(pages[0].tag(282).numbers, (std::vector<std::uint32_t>{72, 1}));
    EXPECT_EQ(pages[0].tag(283).numbers, (std::vector<std::uint32_t>{72, 1}));
    const PagePixels form = pagePixels(folder, "form.tif");
    const PagePixels printed = pagePixels(folder, "out.tif");
    ASSERT_EQ(printed.values.size(), form.values.size());
    PagePixels added{form.width, std::vector<DWORD>(form.values.size(), 0xFFFFFF)};
    for (std::size_t i = 0; i < form.values.size(); ++i) {
        if (printed.values[i] != form.values[i]) {
            EXPECT_EQ(printed.values[i], 0U);
            added.values[i] = 0;
        }
    }
    const Ink ink = inkOf(added);
    ASSERT_EQ(ink.rows.size(), 2U) << "two lines";
    // 10 mm are 28 pixels, 20 mm 56.
    EXPECT_GE(ink.columns.at(0), 28);
    EXPECT_LT(ink.lastColumn, 28 + 12);
    EXPECT_GE(ink.rows[0], 56);
    EXPECT_LT(ink.rows[0], 56 + 12);
}

LONG blackPixels(const WorkFolder &folder, int page) {
    const PagePixels pixels = pagePixels(folder, "a.tif", page);
    return static_cast<LONG>(std::ranges::count(pixels.values, DWORD{0}));
}

// The library leaves out what it would move from the end of a page to the next one.
TEST(FaxPlace, OfALineThatIsBrokenAtTheEndOfAPageNothingIsLost) {
    const WorkFolder folder;
    const Words options = {"fax", "a.txt", "a.tif", "--dpi", "100", "--margin", "60x135"};
    folder.put("a.txt", {'m', 'm', 'm', 'm'});
    EXPECT_EQ(folder.run(options).err, "");
    const LONG ofAWord = blackPixels(folder, 1);
    ASSERT_GT(ofAWord, 0);
    Bytes text;
    for (int i = 0; i < 240; ++i) {
        text.insert(text.end(), {'m', 'm', 'm', 'm', ' '});
    }
    folder.put("a.txt", text);
    EXPECT_EQ(folder.run(options).err, "");
    const auto pages = static_cast<int>(TiffLook(folder.get("a.tif")).pages().size());
    ASSERT_GE(pages, 4);
    LONG ofAll = 0;
    for (int page = 1; page <= pages; ++page) {
        ofAll += blackPixels(folder, page);
    }
    // Less than half a word a page.
    EXPECT_NEAR(ofAll, 240 * ofAWord, pages * ofAWord / 2);
}

} // namespace
} // namespace vellum::test
