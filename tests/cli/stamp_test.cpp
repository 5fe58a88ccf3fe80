// vellum stamp: some lines of text on a page.
#include "cli/page_pixels.h"
#include "cli/tiff_look.h"
#include "cli/vellum_process.h"
#include "support/tiff_builder.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;

TEST(Stamp, PrintsOnAPageAndLeavesTheRestAsItIs) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    const Outcome outcome =
        folder.run({"stamp", "fax.tif:2", "out.tif", "--text", "RECEIVED\\n14 May", "--at", "100,250", "--size", "16"});
    EXPECT_EQ(outcome.out, "out.tif: page 1: 1728 x 2287, 1 bit, g4\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    const auto pages = TiffLook(folder.get("out.tif")).pages();
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(pages[0].tag(282).numbers, (std::vector<std::uint32_t>{204, 1}));
    EXPECT_EQ(pages[0].tag(283).numbers, (std::vector<std::uint32_t>{196, 1}));
    const PagePixels before = pagePixels(folder, "fax.tif", 2);
    const PagePixels after = pagePixels(folder, "out.tif");
    ASSERT_EQ(before.values.size(), after.values.size());
    const RECT box = difference(before, after);
    // 100 mm are 803 pixels, 250 mm 1929.
    EXPECT_NEAR(box.left, 803, 12);
    EXPECT_GE(box.top, 1925);
    EXPECT_LT(box.top, 1960);
    EXPECT_GT(box.bottom, box.top + 50) << "two lines";
    EXPECT_TRUE(folder.get("fax.tif") == bundled("fax.tif"));
    EXPECT_EQ(folder.files(), (Names{"fax.tif", "out.tif"}));
}

TEST(Stamp, APictureCoarserThanTheScreenGetsTheWholeText) {
    const WorkFolder folder;
    folder.put("buoy.tif", bundled("buoy.tif"));
    const Outcome outcome = folder.run({"stamp", "buoy.tif", "out.tif", "--text", "HHH", "--at", "10,10"});
    EXPECT_EQ(outcome.out, "out.tif: page 1: 240 x 160, 24 bits, lzw\n");
    EXPECT_EQ(outcome.err, "");
    const RECT box = difference(pagePixels(folder, "buoy.tif"), pagePixels(folder, "out.tif"));
    // 10 mm at 72 dots per inch are 28 pixels; 12 points are 12.
    EXPECT_NEAR(box.left, 29, 3);
    EXPECT_NEAR(box.top, 31, 4);
    EXPECT_GT(box.bottom - box.top, 5);
    EXPECT_EQ(TiffLook(folder.get("out.tif")).pages().at(0).tag(282).numbers, (std::vector<std::uint32_t>{72, 1}));
}

// An accented letter is one letter, no wider than a plain one.
TEST(Stamp, TheTextIsUtf8) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    const auto widthOf = [&folder](const std::string &text) {
        EXPECT_EQ(folder.run({"stamp", "fax.tif", "out.tif", "--text", text, "--at", "10,280", "--size", "20"}).err,
                  "");
        const RECT box = difference(pagePixels(folder, "fax.tif"), pagePixels(folder, "out.tif"));
        return box.right - box.left;
    };
    const LONG plain = widthOf("EEEE");
    EXPECT_GT(plain, 40);
    EXPECT_NEAR(widthOf("\xC3\x89\xC3\x89\xC3\x89\xC3\x89"), plain, 4);
    EXPECT_EQ(folder.run({"stamp", "fax.tif", "out.tif", "--text", "\xE6\x97\xA5"}).status, 2U);
}

// A backslash with anything else behind it is itself.
TEST(Stamp, TwoBackslashesAreOne) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    const auto stamped = [&folder](const std::string &text) {
        EXPECT_EQ(folder.run({"stamp", "fax.tif", "out.tif", "--text", text}).err, "");
        return folder.get("out.tif");
    };
    const auto alone = stamped("C:\\temp");
    EXPECT_TRUE(stamped("C:\\\\temp") == alone);
    EXPECT_FALSE(stamped("C:temp") == alone);
    const auto height = [&folder, &stamped](const std::string &text) {
        (void)stamped(text);
        const RECT box = difference(pagePixels(folder, "fax.tif"), pagePixels(folder, "out.tif"));
        return box.bottom - box.top;
    };
    EXPECT_LT(height("C:\\\\new"), 45) << "one line";
    EXPECT_GT(height("C:\\new"), 45) << "two lines";
}

TEST(Stamp, ACompressionMayBeInCapitals) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    EXPECT_EQ(folder.run({"stamp", "fax.tif", "out.tif", "--text", "x", "--compression", "PackBits"}).out,
              "out.tif: page 1: 1728 x 2287, 1 bit, packbits\n");
}

// 1728 x 2287 pixels at 204 x 196 dots per inch: 215.2 x 296.4 millimetres.
TEST(Stamp, APlaceOutsideThePageIsRefused) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    for (const char *place : {"216,10", "10,297"}) {
        const Outcome outcome = folder.run({"stamp", "fax.tif", "out.tif", "--text", "x", "--at", place});
        EXPECT_EQ(outcome.status, 1U);
        EXPECT_EQ(outcome.err, "vellum: fax.tif: page 1: the place " + std::string(place) +
                                   " lies outside the page of 215.2 x 296.4 millimetres.\n");
        EXPECT_FALSE(folder.get("out.tif"));
    }
    EXPECT_EQ(folder.run({"stamp", "fax.tif", "out.tif", "--text", "x", "--at", "214,295"}).err, "");
}

// 1000 x 1000 pixels at 254 dots per inch are 100 x 100 millimetres, and the last of them is the 99th.
TEST(Stamp, TheFarEdgeLiesOutsideThePage) {
    const WorkFolder folder;
    tiff::Builder file;
    file.page({tiff::longs(256, {1000}), tiff::longs(257, {1000}), tiff::shorts(258, {1}), tiff::shorts(262, {0}),
               tiff::rationals(282, {254, 1}), tiff::rationals(283, {254, 1})},
              {Bytes(125 * 1000)});
    folder.put("in.tif", file.bytes());
    for (const char *place : {"100,10", "10,100"}) {
        EXPECT_EQ(folder.run({"stamp", "in.tif", "out.tif", "--text", "HHH", "--at", place}).err,
                  "vellum: in.tif: page 1: the place " + std::string(place) +
                      " lies outside the page of 100.0 x 100.0 millimetres.\n");
        EXPECT_FALSE(folder.get("out.tif"));
    }
    EXPECT_EQ(folder.run({"stamp", "in.tif", "out.tif", "--text", "HHH", "--at", "99,10"}).err, "");
    EXPECT_GT(difference(pagePixels(folder, "in.tif"), pagePixels(folder, "out.tif")).right, 990);
}

TEST(Stamp, WhatCannotBeReadOrCodedIsReported) {
    const WorkFolder folder;
    folder.put("buoy.tif", bundled("buoy.tif"));
    folder.put("x.tif", {'x'});
    EXPECT_EQ(folder.run({"stamp", "none.tif", "out.tif", "--text", "x"}).err,
              "vellum: none.tif: General I/O error in reading or writting. (no such file)\n");
    EXPECT_EQ(folder.run({"stamp", "x.tif", "out.tif", "--text", "x"}).err, "vellum: x.tif: Invalid byte order.\n");
    EXPECT_EQ(folder.run({"stamp", "buoy.tif:2", "out.tif", "--text", "x"}).status, 1U);
    const Outcome coding = folder.run({"stamp", "buoy.tif", "out.tif", "--text", "x", "--compression", "g3"});
    EXPECT_EQ(coding.err, "vellum: out.tif: g3 codes 1 bit per pixel; the page has 24 bits per pixel.\n");
    EXPECT_EQ(coding.status, 1U);
    EXPECT_EQ(folder.files(), (Names{"buoy.tif", "x.tif"}));
}

TEST(Stamp, WrongUsageIsExplained) {
    const WorkFolder folder;
    struct Case {
        Names words;
        const char *message;
    };
    const Case cases[] = {
        {{"a.tif", "b.tif"}, "option '--text' is needed"},
        {{"a.tif", "--text", "x"}, "one input file and one output file are needed"},
        {{"a.tif", "a.tif", "--text", "x"}, "the output would replace the input"},
        {{"a.tif", "b.tif", "--text", "x", "--at", "10"},
         "option '--at' wants two whole numbers of millimetres from 0 to 10000, as 10,10, not '10'"},
        {{"a.tif", "b.tif", "--text", "x", "--at", "10,-1"},
         "option '--at' wants two whole numbers of millimetres from 0 to 10000, as 10,10, not '-1'"},
        {{"a.tif", "b.tif", "--text", "x", "--size", "1.5"},
         "option '--size' wants a whole number of points from 1 to 1000, not '1.5'"},
        {{"a.tif", "b.tif", "--text", ""}, "the text is empty"},
        {{"a.tif", "b.tif", "--text", "\\n\\n"}, "the text is empty"},
    };
    for (const Case &entry : cases) {
        Names words = {"stamp"};
        words.insert(words.end(), entry.words.begin(), entry.words.end());
        const Outcome outcome = folder.run(words);
        EXPECT_EQ(outcome.err, std::string("vellum stamp: ") + entry.message + "\nTry 'vellum stamp --help'.\n");
        EXPECT_EQ(outcome.status, 2U);
    }
}

} // namespace
} // namespace vellum::test
