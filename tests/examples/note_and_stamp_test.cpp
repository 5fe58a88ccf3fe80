// examples/note_and_stamp.c: a note that no user wrote, and a stamp.
#include "cli/page_pixels.h"
#include "cli/tiff_look.h"
#include "cli/vellum_process.h"
#include "support/tiff_builder.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;
using Values = std::vector<std::uint32_t>;

// A white page of 800 x 300 pixels, with further tags.
Bytes whitePage(const std::vector<tiff::Entry> &more = {}, std::size_t lines = 300) {
    std::vector<tiff::Entry> entries = {tiff::shorts(256, {800}), tiff::shorts(257, {300}), tiff::shorts(258, {1}),
                                        tiff::shorts(259, {1}),   tiff::shorts(262, {1}),   tiff::shorts(278, {300})};
    entries.insert(entries.end(), more.begin(), more.end());
    tiff::Builder file;
    file.page(entries, {Bytes(100 * lines, BYTE{0xFF})});
    return file.bytes();
}

Bytes whitePageOf(unsigned xDots, unsigned yDots) {
    return whitePage({tiff::rationals(282, {xDots, 1}), tiff::rationals(283, {yDots, 1}), tiff::shorts(296, {2})});
}

SIZE extentOnScreen(const std::string &text) {
    const HDC screen = GetDC(nullptr);
    SIZE size{};
    GetTextExtentPoint32A(screen, text.c_str(), static_cast<int>(text.size()), &size);
    ReleaseDC(nullptr, screen);
    return size;
}

std::string rest(const SeenTag &tag) {
    std::string text;
    for (const std::uint32_t number : tag.numbers) {
        text += static_cast<char>(number);
    }
    return text;
}

TEST(NoteExample, TheNoteIsInTheTagAndThePixelsStay) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    const auto before = pagesIn(folder.get("fax.tif"));
    const Outcome outcome =
        folder.runExample("note_and_stamp", {"note", "fax.tif", "300", "400", "Received today", "", "by us"});
    const SIZE first = extentOnScreen("Received today");
    const std::string right = std::to_string(300 + first.cx);
    const std::string bottom = std::to_string(400 + 3 * first.cy);
    EXPECT_EQ(outcome.out, "note from 300,400 to " + right + "," + bottom + "\r\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    const auto after = pagesIn(folder.get("fax.tif"));
    ASSERT_EQ(after.size(), before.size());
    EXPECT_EQ(after[0].pieces, before[0].pieces);
    EXPECT_TRUE(after[1] == before[1]);
    EXPECT_TRUE(after[2] == before[2]);
    const std::string value = rest(after[0].tag(316));
    const std::string start = "~,1,O,300,400," + right + "," + bottom + ",";
    EXPECT_EQ(value.substr(0, start.size()), start);
    EXPECT_EQ(value.substr(value.find(',', start.size()) + 1), std::string("Received today\r\n\r\nby us\0", 24));
    EXPECT_GE(std::stoi(value.substr(start.size())), 24) << "the block has room for the text";
    EXPECT_EQ(folder.run({"note", "list", "fax.tif"}).out, "fax.tif: page 1: opaque note from 300,400 to " + right +
                                                               "," + bottom + "\n    Received today\n\n    by us\n");
    EXPECT_EQ(folder.files(), Names{"fax.tif"});
}

TEST(NoteExample, ANewNoteTakesTheOldOnesPlace) {
    const WorkFolder folder;
    folder.put("in.tif", whitePage());
    EXPECT_EQ(folder.runExample("note_and_stamp", {"note", "in.tif", "1", "2", "first"}).status, 0U);
    EXPECT_EQ(folder.runExample("note_and_stamp", {"note", "in.tif", "3", "4", "other"}).status, 0U);
    const std::string list = folder.run({"note", "list", "in.tif"}).out;
    EXPECT_NE(list.find("from 3,4 to "), std::string::npos);
    EXPECT_NE(list.find("    other\n"), std::string::npos);
    EXPECT_EQ(list.find("first"), std::string::npos);
}

TEST(NoteExample, AHostNameIsLeftAlone) {
    const WorkFolder folder;
    const Bytes file = whitePage({tiff::ascii(316, "mailhost")});
    folder.put("in.tif", file);
    const Outcome outcome = folder.runExample("note_and_stamp", {"note", "in.tif", "1", "2", "x"});
    EXPECT_EQ(outcome.err.substr(0, 8), "in.tif: ");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_TRUE(folder.get("in.tif") == file);
}

TEST(StampExample, StandsAtItsMillimetresAndKeepsTheResolution) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    const Outcome outcome = folder.runExample("note_and_stamp", {"stamp", "fax.tif", "out.tif", "100", "250"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    const auto pages = pagesIn(folder.get("out.tif"));
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(pages[0].tag(256).numbers, Values{1728});
    EXPECT_EQ(pages[0].tag(257).numbers, Values{2287});
    EXPECT_EQ(pages[0].tag(259).numbers, Values{4});
    EXPECT_EQ(pages[0].tag(282).numbers, (Values{204, 1}));
    EXPECT_EQ(pages[0].tag(283).numbers, (Values{196, 1}));
    // 100 mm are 803 pixels, 250 mm 1929; 16 points are 44.
    const RECT box = difference(pagePixels(folder, "fax.tif"), pagePixels(folder, "out.tif"));
    EXPECT_NEAR(box.left, 803, 12);
    EXPECT_GE(box.top, 1925);
    EXPECT_LT(box.bottom, 1929 + 60);
    EXPECT_GT(box.bottom - box.top, 20);
    EXPECT_GT(box.right - box.left, 100);
    EXPECT_TRUE(folder.get("fax.tif") == bundled("fax.tif"));
    EXPECT_EQ(folder.files(), (Names{"fax.tif", "out.tif"}));
}

// The same place and size in millimetres, whether the picture is finer or coarser than the screen of 96 dots per inch.
TEST(StampExample, IsAsLargeOnPagesOfEveryResolution) {
    struct Case {
        unsigned x;
        unsigned y;
    };
    for (const Case dots : {Case{200, 200}, Case{72, 72}, Case{60, 120}, Case{127, 80}, Case{96, 96}}) {
        const WorkFolder folder;
        folder.put("in.tif", whitePageOf(dots.x, dots.y));
        EXPECT_EQ(folder.runExample("note_and_stamp", {"stamp", "in.tif", "out.tif", "25", "15"}).err, "");
        const auto pages = pagesIn(folder.get("out.tif"));
        ASSERT_EQ(pages.size(), 1U);
        EXPECT_EQ(pages[0].tag(282).numbers, (Values{dots.x, 1}));
        EXPECT_EQ(pages[0].tag(283).numbers, (Values{dots.y, 1}));
        const RECT box = difference(pagePixels(folder, "in.tif"), pagePixels(folder, "out.tif"));
        const double pixelsPerMillimetreX = dots.x / 25.4;
        const double pixelsPerMillimetreY = dots.y / 25.4;
        EXPECT_NEAR(box.left / pixelsPerMillimetreX, 25.5, 1.0) << dots.x << " x " << dots.y;
        EXPECT_NEAR(box.top / pixelsPerMillimetreY, 16.0, 1.2) << dots.x << " x " << dots.y;
        EXPECT_NEAR((box.bottom - box.top) / pixelsPerMillimetreY, 4.0, 1.0) << "a capital of 16 points";
    }
}

TEST(StampExample, APageWithoutAResolutionHasTheScreens) {
    const WorkFolder folder;
    folder.put("in.tif", whitePage());
    EXPECT_EQ(folder.runExample("note_and_stamp", {"stamp", "in.tif", "out.tif", "25", "15"}).err, "");
    const RECT box = difference(pagePixels(folder, "in.tif"), pagePixels(folder, "out.tif"));
    // 96 dots per inch: 94 and 57 pixels.
    EXPECT_NEAR(box.left, 96, 4);
    EXPECT_NEAR(box.top, 61, 5);
    EXPECT_EQ(pagesIn(folder.get("out.tif")).at(0).tag(282).numbers, (Values{96, 1}));
}

TEST(StampExample, KeepsColoursAndAddsPages) {
    const WorkFolder folder;
    folder.put("buoy.tif", bundled("buoy.tif"));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(folder.runExample("note_and_stamp", {"stamp", "buoy.tif", "out.tif", "10", "10"}).err, "");
    }
    const auto pages = pagesIn(folder.get("out.tif"));
    ASSERT_EQ(pages.size(), 2U);
    EXPECT_EQ(pages[1].tag(258).numbers, (Values{8, 8, 8}));
    EXPECT_EQ(pages[1].tag(282).numbers, (Values{72, 1}));
    // 10 mm are 28 pixels.
    const RECT box = difference(pagePixels(folder, "buoy.tif"), pagePixels(folder, "out.tif", 2));
    EXPECT_NEAR(box.left, 30, 3);
    EXPECT_NEAR(box.top, 32, 4);
}

TEST(NoteAndStampExample, WhatGoesWrongIsTold) {
    const WorkFolder folder;
    folder.put("short.tif", whitePage({}, 200));
    folder.put("x.txt", {'x', 'x'});
    const auto run = [&folder](const Names &words) { return folder.runExample("note_and_stamp", words); };
    const Outcome damaged = run({"stamp", "short.tif", "out.tif", "1", "1"});
    EXPECT_EQ(damaged.err.substr(0, 11), "short.tif: ");
    EXPECT_EQ(damaged.status, 1U);
    EXPECT_EQ(run({"stamp", "none.tif", "out.tif", "1", "1"}).err,
              "none.tif: General I/O error in reading or writting.\r\n");
    EXPECT_EQ(run({"note", "none.tif", "1", "1", "x"}).err, "none.tif: General I/O error in reading or writting.\r\n");
    EXPECT_EQ(run({"note", "x.txt", "1", "1", "x"}).status, 1U);
    EXPECT_EQ(run({"note", "short.tif", "-1", "1", "x"}).status, 2U);
    EXPECT_EQ(run({"note", "short.tif", "1", "1"}).status, 2U);
    EXPECT_EQ(run({"stamp", "short.tif", "out.tif", "1"}).status, 2U);
    EXPECT_EQ(folder.files(), (Names{"short.tif", "x.txt"}));
}

} // namespace
} // namespace vellum::test
