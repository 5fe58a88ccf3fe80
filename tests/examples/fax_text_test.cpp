// examples/fax_text.c: a text as the pages of a fax, and on a form.
#include "cli/page_pixels.h"
#include "cli/tiff_look.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;
using Values = std::vector<std::uint32_t>;

Bytes textOf(const std::string &text) {
    return {text.begin(), text.end()};
}

std::string manyLines(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += "line\r\n";
    }
    return text;
}

Values sizeOf(const SeenPage &page) {
    return {page.tag(256).numbers.at(0), page.tag(257).numbers.at(0)};
}

// Where the page is not white.
RECT inkOn(const WorkFolder &folder, const std::string &name) {
    const PagePixels page = pagePixels(folder, name);
    PagePixels white = page;
    std::fill(white.values.begin(), white.values.end(), 0xFFFFFFU);
    return difference(page, white);
}

TEST(FaxTextExample, DrawsPagesOfGroup4InFaxResolutionWhiteAsZero) {
    const WorkFolder folder;
    folder.put("letter.txt", textOf("Dear colleague,\r\n\r\nall is well.\r\n"));
    const Outcome outcome = folder.runExample("fax_text", {"letter.txt", "out.tif"});
    EXPECT_EQ(outcome.out, "pages: 1 of 204 x 196 dpi; the whole text is on the pages\r\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    const auto pages = pagesIn(folder.get("out.tif"));
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(sizeOf(pages[0]), (Values{1687, 2291}));
    EXPECT_EQ(pages[0].tag(259).numbers, Values{4});
    EXPECT_EQ(pages[0].tag(262).numbers, Values{0});
    EXPECT_EQ(pages[0].tag(282).numbers, (Values{204, 1}));
    EXPECT_EQ(pages[0].tag(283).numbers, (Values{196, 1}));
    EXPECT_EQ(pages[0].tag(296).numbers, Values{2});
    EXPECT_EQ(folder.files(), (Names{"letter.txt", "out.tif"}));
}

TEST(FaxTextExample, ThePaperCanBeChosenAndPagesAreAdded) {
    const WorkFolder folder;
    folder.put("a.txt", textOf("text"));
    for (const char *paper : {"a4", "letter", "legal"}) {
        EXPECT_EQ(folder.runExample("fax_text", {"a.txt", "out.tif", paper}).status, 0U) << paper;
    }
    const auto pages = pagesIn(folder.get("out.tif"));
    ASSERT_EQ(pages.size(), 3U);
    EXPECT_EQ(sizeOf(pages[0]), (Values{1687, 2291}));
    EXPECT_EQ(sizeOf(pages[1]), (Values{1734, 2156}));
    EXPECT_EQ(sizeOf(pages[2]), (Values{1734, 2744}));
}

// 0.8 inches are 163 pixels across and 156 down.
TEST(FaxTextExample, TheTextBeginsAtTheMarginsAndTabsLeadToTheStops) {
    const WorkFolder folder;
    folder.put("plain.txt", textOf("HHH"));
    folder.put("tab.txt", textOf("\t\tHHH"));
    folder.put("wide.txt", textOf(std::string(400, 'H')));
    for (const char *name : {"plain", "tab", "wide"}) {
        EXPECT_EQ(folder.runExample("fax_text", {std::string(name) + ".txt", std::string(name) + ".tif"}).err, "");
    }
    const RECT plain = inkOn(folder, "plain.tif");
    EXPECT_GE(plain.left, 163);
    EXPECT_LT(plain.left, 175);
    EXPECT_GE(plain.top, 156);
    EXPECT_LT(plain.bottom, 156 + 36) << "10 points are 27 pixels";
    EXPECT_EQ(inkOn(folder, "tab.tif").left, plain.left + 2 * 163);
    const RECT wide = inkOn(folder, "wide.tif");
    EXPECT_EQ(wide.left, plain.left);
    EXPECT_GT(wide.right, 1687 - 163 - 100);
    EXPECT_LT(wide.right, 1687 - 163 + 30) << "the letter that reaches the margin is still on the line";
    EXPECT_GT(wide.bottom, plain.bottom) << "it goes on below";
}

TEST(FaxTextExample, ALineFeedAloneIsDropped) {
    const WorkFolder folder;
    folder.put("lf.txt", textOf("one\ntwo"));
    folder.put("joined.txt", textOf("onetwo"));
    folder.put("crlf.txt", textOf("one\r\ntwo"));
    for (const char *name : {"lf", "joined", "crlf"}) {
        EXPECT_EQ(folder.runExample("fax_text", {std::string(name) + ".txt", std::string(name) + ".tif"}).err, "");
    }
    EXPECT_TRUE(folder.get("lf.tif") == folder.get("joined.tif"));
    EXPECT_FALSE(folder.get("crlf.tif") == folder.get("joined.tif"));
}

TEST(FaxTextExample, ATextThatIsTooLongIsCutWithAWord) {
    const WorkFolder folder;
    folder.put("long.txt", textOf(manyLines(150)));
    EXPECT_EQ(folder.runExample("fax_text", {"long.txt", "long.tif"}).status, 0U);
    const std::size_t pages = pagesIn(folder.get("long.tif")).size();
    EXPECT_GE(pages, 2U);
    EXPECT_LE(pages, 4U);
    folder.put("endless.txt", textOf(manyLines(9000)));
    const Outcome outcome = folder.runExample("fax_text", {"endless.txt", "endless.tif"});
    EXPECT_EQ(outcome.out, "pages: 100 of 204 x 196 dpi; the text has more pages\r\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(pagesIn(folder.get("endless.tif")).size(), 100U);
}

TEST(FaxTextExample, AFormIsPrintedOnInItsOwnSizeAndResolution) {
    const WorkFolder folder;
    folder.put("form.tif", bundled("fax.tif"));
    folder.put("a.txt", textOf(manyLines(300)));
    const Outcome outcome = folder.runExample("fax_text", {"a.txt", "out.tif", "form.tif"});
    EXPECT_EQ(outcome.out, "pages: 1 of 204 x 196 dpi; what fits of the text is on the form\r\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    const auto pages = pagesIn(folder.get("out.tif"));
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(sizeOf(pages[0]), (Values{1728, 2287}));
    EXPECT_EQ(pages[0].tag(282).numbers, (Values{204, 1}));
    EXPECT_EQ(pages[0].tag(283).numbers, (Values{196, 1}));
    const PagePixels form = pagePixels(folder, "form.tif");
    const PagePixels printed = pagePixels(folder, "out.tif");
    ASSERT_EQ(printed.values.size(), form.values.size());
    std::size_t added = 0;
    for (std::size_t i = 0; i < form.values.size(); ++i) {
        EXPECT_TRUE(printed.values[i] == form.values[i] || printed.values[i] == 0);
        added += printed.values[i] == form.values[i] ? 0 : 1;
    }
    EXPECT_GT(added, 1000U);
    EXPECT_GT(difference(form, printed).bottom, 2287 - 156 - 60) << "down to the form's own lower margin";
    EXPECT_TRUE(folder.get("form.tif") == bundled("fax.tif"));
}

TEST(FaxTextExample, AFormInColourKeepsItsColours) {
    const WorkFolder folder;
    folder.put("form.tif", bundled("buoy.tif"));
    folder.put("a.txt", textOf("x"));
    EXPECT_EQ(folder.runExample("fax_text", {"a.txt", "out.tif", "form.tif"}).out,
              "pages: 1 of 72 x 72 dpi; what fits of the text is on the form\r\n");
    const auto pages = pagesIn(folder.get("out.tif"));
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(sizeOf(pages[0]), (Values{240, 160}));
    EXPECT_EQ(pages[0].tag(258).numbers, (Values{8, 8, 8}));
    EXPECT_EQ(pages[0].tag(282).numbers, (Values{72, 1}));
    // 0.8 inches are 57 pixels; 10 points are 10.
    const RECT box = difference(pagePixels(folder, "form.tif"), pagePixels(folder, "out.tif"));
    EXPECT_NEAR(box.left, 58, 3);
    EXPECT_NEAR(box.bottom, 64, 6);
    EXPECT_LT(box.right, 70);
}

TEST(FaxTextExample, WhatGoesWrongIsToldInWords) {
    const WorkFolder folder;
    folder.put("a.txt", textOf("text"));
    folder.put("form.tif", bundled("buoy.tif"));
    const Outcome noText = folder.runExample("fax_text", {"none.txt", "out.tif"});
    EXPECT_EQ(noText.out, "pages: 0 of 204 x 196 dpi; the text file cannot be opened\r\n");
    EXPECT_EQ(noText.status, 1U);
    const Outcome noTextForForm = folder.runExample("fax_text", {"none.txt", "out.tif", "form.tif"});
    EXPECT_EQ(noTextForForm.out, "pages: 0 of 72 x 72 dpi; the text file cannot be opened\r\n");
    EXPECT_EQ(noTextForForm.status, 1U);
    const Outcome noForm = folder.runExample("fax_text", {"a.txt", "out.tif", "none.tif"});
    EXPECT_EQ(noForm.err, "none.tif: General I/O error in reading or writting.\r\n");
    EXPECT_EQ(noForm.status, 1U);
    const Outcome badForm = folder.runExample("fax_text", {"a.txt", "out.tif", "a.txt"});
    EXPECT_EQ(badForm.err, "a.txt: Invalid byte order.\r\n");
    EXPECT_EQ(badForm.status, 1U);
    const Outcome noFolder = folder.runExample("fax_text", {"a.txt", "none\\out.tif"});
    EXPECT_EQ(noFolder.err.substr(0, 14), "none\\out.tif: ");
    EXPECT_EQ(noFolder.status, 1U);
    const Outcome noTiff = folder.runExample("fax_text", {"a.txt", "a.txt"});
    EXPECT_EQ(noTiff.err.substr(0, 7), "a.txt: ");
    EXPECT_EQ(noTiff.status, 1U);
    EXPECT_TRUE(folder.get("a.txt") == textOf("text")) << "what is no TIFF is not written over";
    EXPECT_EQ(folder.runExample("fax_text", {"a.txt"}).status, 2U);
    EXPECT_EQ(folder.files(), (Names{"a.txt", "form.tif"}));
}

} // namespace
} // namespace vellum::test
