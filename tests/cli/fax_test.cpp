// vellum fax: a text file as the pages of a fax, on paper and on a form.
#include "cli/page_pixels.h"
#include "cli/tiff_look.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;

Bytes textOf(const std::string &text) {
    return {text.begin(), text.end()};
}

std::vector<SeenPage> seenPages(const WorkFolder &folder, const std::string &name) {
    return TiffLook(folder.get(name)).pages();
}

std::vector<std::uint32_t> values(const SeenPage &page, unsigned tag) {
    return page.tag(tag).numbers;
}
using Values = std::vector<std::uint32_t>;

std::string manyLines(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += "line " + std::to_string(i) + "\r\n";
    }
    return text;
}

TEST(Fax, ATextBecomesAPageOfGroup4InFaxResolution) {
    const WorkFolder folder;
    folder.put("letter.txt", textOf("Dear colleague,\r\n\r\nall is well."));
    const Outcome outcome = folder.run({"fax", "letter.txt", "out.tif"});
    EXPECT_EQ(outcome.out, "out.tif: page 1: 1687 x 2291, 1 bit, g4\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    const auto pages = seenPages(folder, "out.tif");
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(values(pages[0], 256), Values{1687});
    EXPECT_EQ(values(pages[0], 257), Values{2291});
    EXPECT_EQ(values(pages[0], 259), Values{4});
    EXPECT_EQ(values(pages[0], 262), Values{0}) << "white is zero, as fax readers expect it";
    EXPECT_EQ(values(pages[0], 282), (Values{204, 1}));
    EXPECT_EQ(values(pages[0], 283), (Values{196, 1}));
    EXPECT_EQ(values(pages[0], 296), Values{2});
    EXPECT_EQ(folder.files(), (Names{"letter.txt", "out.tif"}));
}

TEST(Fax, ItsPixelsAreBlackTextOnWhitePaper) {
    const WorkFolder folder;
    folder.put("a.txt", textOf("text"));
    EXPECT_EQ(folder.run({"fax", "a.txt", "a.tif", "--dpi", "100", "--margin", "10x50"}).err, "");
    const PagePixels page = pagePixels(folder, "a.tif");
    const std::vector<DWORD> &pixels = page.values;
    const auto width = static_cast<std::size_t>(page.width);
    ASSERT_EQ(width, 827U);
    std::size_t black = 0;
    std::size_t atTheCorner = 0;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const bool isBlack = pixels[i] == 0;
        black += isBlack ? 1 : 0;
        // 10 mm are 39 pixels, 50 mm 197.
        atTheCorner += isBlack && i % width >= 37 && i % width < 100 && i / width >= 197 && i / width < 220 ? 1 : 0;
    }
    EXPECT_GT(black, 20U);
    EXPECT_EQ(black, atTheCorner);
    EXPECT_LT(black, 1000U);
}

TEST(Fax, PaperResolutionAndCompressionCanBeChosen) {
    struct Case {
        Names options;
        Values size;
        std::uint32_t compression;
        const char *line;
    };
    const Case cases[] = {
        {{"--paper", "letter", "--dpi", "200x100", "--compression", "g3"},
         {1700, 1100},
         3,
         "out.tif: page 1: 1700 x 1100, 1 bit, g3\n"},
        {{"--paper", "Legal", "--dpi", "100", "--compression", "G3-2d"},
         {850, 1400},
         3,
         "out.tif: page 1: 850 x 1400, 1 bit, g3-2d\n"},
        {{"--paper=A4", "--dpi=200x200", "--compression=MH"},
         {1654, 2338},
         2,
         "out.tif: page 1: 1654 x 2338, 1 bit, mh\n"},
        {{"--dpi=300", "--compression=lzw"}, {2481, 3507}, 5, "out.tif: page 1: 2481 x 3507, 1 bit, lzw\n"},
    };
    for (const Case &entry : cases) {
        const WorkFolder folder;
        folder.put("a.txt", textOf("text"));
        Names words = {"fax", "a.txt", "out.tif"};
        words.insert(words.end(), entry.options.begin(), entry.options.end());
        const Outcome outcome = folder.run(words);
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.out, entry.line);
        const auto pages = seenPages(folder, "out.tif");
        ASSERT_EQ(pages.size(), 1U);
        EXPECT_EQ(values(pages[0], 256), Values{entry.size[0]});
        EXPECT_EQ(values(pages[0], 257), Values{entry.size[1]});
        EXPECT_EQ(values(pages[0], 259), Values{entry.compression});
    }
}

TEST(Fax, ALongTextHasSeveralPagesAndALimit) {
    const WorkFolder folder;
    folder.put("long.txt", textOf(manyLines(200)));
    const Outcome all = folder.run({"fax", "long.txt", "all.tif", "--dpi", "100"});
    EXPECT_EQ(all.err, "");
    EXPECT_EQ(all.status, 0U);
    const std::size_t count = seenPages(folder, "all.tif").size();
    EXPECT_GT(count, 2U);
    const Outcome two = folder.run({"fax", "long.txt", "two.tif", "--dpi", "100", "--pages", "2"});
    EXPECT_EQ(two.out, "two.tif: page 1: 827 x 1169, 1 bit, g4\ntwo.tif: page 2: 827 x 1169, 1 bit, g4\n");
    EXPECT_EQ(two.err, "vellum: long.txt: the text goes on behind page 2; --pages allows more.\n");
    EXPECT_EQ(two.status, 1U);
    EXPECT_EQ(seenPages(folder, "two.tif").size(), 2U);
}

// The end of the last line begins no page.
TEST(Fax, ATextThatFillsItsPageHasNoOther) {
    const WorkFolder folder;
    const auto fitsOnOnePage = [&folder](const std::string &text) {
        folder.put("page.txt", textOf(text));
        return folder.run({"fax", "page.txt", "page.tif", "--pages", "1"}).status == 0;
    };
    const auto withoutLastEnd = [](int lines) {
        const std::string text = manyLines(lines);
        return text.substr(0, text.size() - 2);
    };
    int full = 40;
    while (full < 200 && fitsOnOnePage(withoutLastEnd(full + 1))) {
        ++full;
    }
    ASSERT_GT(full, 40);
    ASSERT_LT(full, 200);
    EXPECT_TRUE(fitsOnOnePage(manyLines(full)));
    EXPECT_FALSE(fitsOnOnePage(manyLines(full + 1)));
}

TEST(Fax, MarginsThatLeaveNoRoomAreWrongUsage) {
    const WorkFolder folder;
    folder.put("a.txt", textOf("text"));
    for (const char *margin : {"106x20", "20x150", "300"}) {
        EXPECT_EQ(folder.run({"fax", "a.txt", "a.tif", "--margin", margin}).status, 2U) << margin;
    }
}

TEST(Fax, EveryOptionOfTheTextCounts) {
    const WorkFolder folder;
    folder.put("a.txt", textOf("Some\ttext, with\r\nlines."));
    EXPECT_EQ(folder.run({"fax", "a.txt", "plain.tif"}).err, "");
    for (const Names &options : {Names{"--size", "14"}, Names{"--bold"}, Names{"--italic"}, Names{"--spacing", "5"},
                                 Names{"--tabs", "30,60"}, Names{"--margin", "30"}}) {
        Names words = {"fax", "a.txt", "out.tif"};
        words.insert(words.end(), options.begin(), options.end());
        EXPECT_EQ(folder.run(words).err, "") << options[0];
        EXPECT_FALSE(folder.get("out.tif") == folder.get("plain.tif")) << options[0];
    }
}

// Which fonts there are depends on the system; not all of them can look alike.
TEST(Fax, TheFontCounts) {
    const WorkFolder folder;
    folder.put("a.txt", textOf("WiWiWi"));
    EXPECT_EQ(folder.run({"fax", "a.txt", "plain.tif"}).err, "");
    bool differs = false;
    for (const char *font : {"Arial", "Times New Roman", "Tahoma", "Liberation Mono", "Marlett", "System", "Symbol"}) {
        EXPECT_EQ(folder.run({"fax", "a.txt", "out.tif", "--font", font}).err, "");
        differs = differs || folder.get("out.tif") != folder.get("plain.tif");
    }
    EXPECT_TRUE(differs);
}

// All pages are in memory before the first one is written.
TEST(Fax, ThereAreNoMorePagesThanMemoryHolds) {
    const WorkFolder folder;
    folder.put("a.txt", textOf("text"));
    EXPECT_EQ(folder.run({"fax", "a.txt", "a.tif", "--dpi=1200", "--pages=61"}).out,
              "a.tif: page 1: 9924 x 14028, 1 bit, g4\n");
    struct Case {
        Names options;
        const char *message;
    };
    const Case cases[] = {
        {{"--dpi=1200", "--pages=62"}, "61 of these pages, at 1200x1200 dpi, not '62'"},
        {{"--dpi=1200", "--paper=legal", "--pages=51"}, "50 of these pages, at 1200x1200 dpi, not '51'"},
        {{"--dpi=600x300", "--pages=1000"}, "490 of these pages, at 600x300 dpi, not '1000'"},
        // 2500 bytes a line.
        {{"--dpi=1200", "--width=20000", "--pages=31"}, "30 of these pages, at 1200x1200 dpi, not '31'"},
    };
    for (const Case &entry : cases) {
        Names words = {"fax", "a.txt", "b.tif"};
        words.insert(words.end(), entry.options.begin(), entry.options.end());
        const Outcome outcome = folder.run(words);
        EXPECT_EQ(outcome.err, std::string("vellum fax: option '--pages' wants at most ") + entry.message +
                                   ": memory holds no more\nTry 'vellum fax --help'.\n");
        EXPECT_EQ(outcome.status, 2U);
    }
    EXPECT_EQ(folder.run({"fax", "a.txt", "c.tif", "--pages=1000"}).status, 0U) << "1000 pages of fax resolution fit";
    EXPECT_EQ(folder.files(), (Names{"a.tif", "a.txt", "c.tif"}));
}

// A page of 21 MB in a process that has no piece of memory of this size.
TEST(Fax, WithoutMemoryTheMessageSaysForWhichPage) {
    const WorkFolder folder;
    folder.put("a.txt", textOf("text"));
    EXPECT_EQ(folder.runInBrokenMemory({"fax", "a.txt", "small.tif"}).status, 0U);
    const Outcome outcome = folder.runInBrokenMemory({"fax", "a.txt", "large.tif", "--paper=legal", "--dpi=1200"});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vellum: large.tif: page 1 cannot be drawn: there is not enough memory.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.files(), (Names{"a.txt", "small.tif"}));
}

TEST(Fax, AFormThatMemoryCannotHoldIsNotBlamed) {
    const WorkFolder folder;
    folder.put("a.txt", textOf("text"));
    EXPECT_EQ(folder.run({"fax", "a.txt", "form.tif", "--paper=legal", "--dpi=1200"}).status, 0U);
    const Outcome outcome = folder.runInBrokenMemory({"fax", "a.txt", "out.tif", "--form=form.tif"});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vellum: form.tif: Not enough memory.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.files(), (Names{"a.txt", "form.tif"}));
}

TEST(Fax, OnAFormTheFormIsThePage) {
    const WorkFolder folder;
    folder.put("form.tif", bundled("fax.tif"));
    folder.put("color.tif", bundled("buoy.tif"));
    folder.put("a.txt", textOf(manyLines(300)));
    folder.put("b.txt", textOf("text"));
    const Outcome outcome = folder.run({"fax", "a.txt", "out.tif", "--form", "form.tif"});
    EXPECT_EQ(outcome.out, "out.tif: page 1: 1728 x 2287, 1 bit, g4\n");
    EXPECT_EQ(outcome.err, "vellum: a.txt: the text goes on behind the form.\n");
    EXPECT_EQ(outcome.status, 1U);
    const auto pages = seenPages(folder, "out.tif");
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(values(pages[0], 282), (Values{204, 1}));
    EXPECT_EQ(values(pages[0], 283), (Values{196, 1}));
    const std::vector<DWORD> form = pagePixels(folder, "form.tif").values;
    const std::vector<DWORD> printed = pagePixels(folder, "out.tif").values;
    ASSERT_EQ(printed.size(), form.size());
    std::size_t added = 0;
    for (std::size_t i = 0; i < form.size(); ++i) {
        EXPECT_TRUE(printed[i] == form[i] || printed[i] == 0);
        added += printed[i] == form[i] ? 0 : 1;
    }
    EXPECT_GT(added, 1000U);
    EXPECT_EQ(folder.run({"fax", "a.txt", "out.tif", "--form", "color.tif", "--margin", "5"}).out,
              "out.tif: page 1: 240 x 160, 24 bits, lzw\n");
    const Outcome wrong = folder.run({"fax", "b.txt", "none.tif", "--form", "color.tif", "--compression", "g4"});
    EXPECT_EQ(wrong.err, "vellum: none.tif: g4 codes 1 bit per pixel; the page has 24 bits per pixel.\n");
    EXPECT_EQ(wrong.status, 1U);
    EXPECT_EQ(folder.files(), (Names{"a.txt", "b.txt", "color.tif", "form.tif", "out.tif"}));
}

TEST(Fax, ATextThatFitsOnItsFormIsNoFailure) {
    const WorkFolder folder;
    folder.put("form.tif", bundled("fax.tif"));
    folder.put("a.txt", textOf(manyLines(3)));
    const Outcome outcome = folder.run({"fax", "a.txt", "out.tif", "--form", "form.tif"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    folder.put("b.txt", textOf(manyLines(3) + "more"));
    EXPECT_EQ(folder.run({"fax", "b.txt", "more.tif", "--form", "form.tif"}).status, 0U);
    EXPECT_FALSE(folder.get("more.tif") == folder.get("out.tif"));
}

TEST(Fax, WhatCannotBeReadOrWrittenIsReported) {
    const WorkFolder folder;
    folder.put("a.txt", textOf("text"));
    const Outcome missing = folder.run({"fax", "none.txt", "out.tif"});
    EXPECT_EQ(missing.err, "vellum: none.txt: there is no such file.\n");
    EXPECT_EQ(missing.status, 1U);
    EXPECT_EQ(folder.run({"fax", "a.txt", "no folder\\out.tif"}).err,
              "vellum: no folder\\out.tif: cannot be written: there is no such folder.\n");
    EXPECT_EQ(folder.run({"fax", "a.txt", "out.tif", "--form", "none.tif"}).err,
              "vellum: none.tif: General I/O error in reading or writting. (no such file)\n");
    EXPECT_EQ(folder.run({"fax", "a.txt", "out.tif", "--form", "a.txt"}).status, 1U);
    EXPECT_EQ(folder.files(), Names{"a.txt"});
}

TEST(Fax, WrongUsageIsExplained) {
    const WorkFolder folder;
    folder.put("a.txt", textOf("text"));
    struct Case {
        Names words;
        const char *message;
    };
    const Case cases[] = {
        {{"a.txt"}, "a text file and an output file are needed"},
        {{"a.txt", "a.txt"}, "the output would replace the input"},
        {{"a.txt", "b.tif", "--form", "b.tif"}, "the output would replace the input"},
        {{"a.txt", "b.tif", "--paper", "a5"}, "option '--paper' wants a4, letter or legal, not 'a5'"},
        {{"a.txt", "b.tif", "--dpi", "200x"},
         "option '--dpi' wants whole dots per inch from 1 to 1200, as 200 or 204x196, not ''"},
        {{"a.txt", "b.tif", "--dpi", "1x2x3"},
         "option '--dpi' wants whole dots per inch from 1 to 1200, as 200 or 204x196, not '1x2x3'"},
        {{"a.txt", "b.tif", "--dpi", "0"},
         "option '--dpi' wants whole dots per inch from 1 to 1200, as 200 or 204x196, not '0'"},
        {{"a.txt", "b.tif", "--margin", "x"},
         "option '--margin' wants whole millimetres from 0 to 1000, as 20 or 15x20, not ''"},
        {{"a.txt", "b.tif", "--spacing", "1.5"},
         "option '--spacing' wants whole millimetres from 0 to 1000, not '1.5'"},
        {{"a.txt", "b.tif", "--size", "0"}, "option '--size' wants a whole number of points from 1 to 1000, not '0'"},
        {{"a.txt", "b.tif", "--width", "20001"},
         "option '--width' wants a whole number of pixels from 1 to 20000, not '20001'"},
        {{"a.txt", "b.tif", "--width", "0"},
         "option '--width' wants a whole number of pixels from 1 to 20000, not '0'"},
        {{"a.txt", "b.tif", "--width", "300"}, "option '--margin' leaves no room on the paper"},
        {{"a.txt", "b.tif", "--tabs", "1,2,"},
         "option '--tabs' wants whole millimetres from 0 to 1000, with commas between them, not ''"},
        {{"a.txt", "b.tif", "--tabs", "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17"},
         "option '--tabs' wants up to 16 numbers"},
        {{"a.txt", "b.tif", "--pages", "1001"}, "option '--pages' wants a number of pages from 1 to 1000, not '1001'"},
        {{"a.txt", "b.tif", "--compression", "jpeg"},
         "option '--compression' wants one of g4, g3, g3-2d, mh, lzw, packbits, none, not 'jpeg'"},
        {{"a.txt", "b.tif", "--form", "f.tif", "--dpi", "200"},
         "'--form' does not go with '--dpi': the form is the page"},
        {{"a.txt", "b.tif", "--form", "f.tif", "--paper", "a4"},
         "'--form' does not go with '--paper': the form is the page"},
        {{"a.txt", "b.tif", "--form", "f.tif", "--pages", "2"},
         "'--form' does not go with '--pages': the form is the page"},
        {{"a.txt", "b.tif", "--form", "f.tif", "--width", "1728"},
         "'--form' does not go with '--width': the form is the page"},
    };
    for (const Case &entry : cases) {
        Names words = {"fax"};
        words.insert(words.end(), entry.words.begin(), entry.words.end());
        const Outcome outcome = folder.run(words);
        EXPECT_EQ(outcome.err, std::string("vellum fax: ") + entry.message + "\nTry 'vellum fax --help'.\n");
        EXPECT_EQ(outcome.status, 2U);
    }
    EXPECT_EQ(folder.files(), Names{"a.txt"});
}

} // namespace
} // namespace vellum::test
