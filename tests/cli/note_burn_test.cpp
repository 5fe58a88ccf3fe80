// vellum note: notes in pages of all depths, and values of the tag as nobody should write them.
#include "cli/page_pixels.h"
#include "cli/tiff_look.h"
#include "cli/vellum_process.h"
#include "support/tiff_builder.h"

#include <gtest/gtest.h>

#include <regex>

namespace vellum::test {
namespace {

using Words = std::vector<std::string>;
using Numbers = std::vector<std::uint32_t>;

// A white page of 200 x 60 pixels with a tag 316.
Bytes whitePage(const tiff::Entry &tag) {
    tiff::Builder file;
    file.page({tiff::shorts(256, {200}), tiff::shorts(257, {60}), tiff::shorts(258, {1}), tiff::shorts(259, {1}),
               tiff::shorts(262, {1}), tiff::shorts(278, {60}), tag},
              {Bytes(25 * 60, BYTE{0xFF})});
    return file.bytes();
}

tiff::Entry unterminated(const std::string &text) {
    tiff::Entry entry = tiff::ascii(316, text);
    entry.numbers.pop_back();
    --entry.count;
    return entry;
}

std::size_t blackPixels(const PagePixels &page) {
    return static_cast<std::size_t>(std::count(page.values.begin(), page.values.end(), 0U));
}

const std::string kNoNote = "vellum: in.tif: page 1: there is no note.\n";

TEST(NoteTag, WhatIsNoNoteIsNeitherListedNorBurned) {
    for (const tiff::Entry &tag :
         {tiff::ascii(316, ""), tiff::ascii(316, "mailhost"), tiff::ascii(316, "~"), tiff::ascii(316, "~,1,O"),
          tiff::ascii(316, "~,1,O,"), tiff::ascii(316, "~,1,O,10,20,110,52"), tiff::ascii(316, "~,1,O,10,20,110,52,6"),
          tiff::ascii(316, "~1O10 20 110 52 6 Hello"), unterminated("~"), unterminated("~,1,O,10,20,110,52,6"),
          tiff::ascii(316, std::string(100000, '~'))}) {
        const WorkFolder folder;
        folder.put("in.tif", whitePage(tag));
        const std::string value(tag.numbers.begin(),
                                tag.numbers.begin() +
                                    static_cast<std::ptrdiff_t>(std::min<std::size_t>(tag.numbers.size(), 40)));
        const Outcome listed = folder.run({"note", "list", "in.tif"});
        EXPECT_EQ(listed.out, "") << value;
        EXPECT_EQ(listed.err, "") << value;
        EXPECT_EQ(listed.status, 0U) << value;
        const Outcome burned = folder.run({"note", "burn", "in.tif", "out.tif"});
        EXPECT_EQ(burned.out, "") << value;
        EXPECT_EQ(burned.err, kNoNote) << value;
        EXPECT_EQ(burned.status, 1U) << value;
        EXPECT_EQ(folder.files(), Words{"in.tif"}) << value;
    }
}

TEST(NoteTag, AValueThatIsNotInTheFileIsAnError) {
    const std::string message = "vellum: in.tif: page 1: General I/O error in reading or writting.\n";
    for (const tiff::Entry &tag : {tiff::field(316, 2, 0xFFFFFFFF, 8), tiff::field(316, 2, 40, 0xFFFFFFF0)}) {
        const WorkFolder folder;
        folder.put("in.tif", whitePage(tag));
        for (const Words &words : {Words{"note", "list", "in.tif"}, Words{"note", "burn", "in.tif", "out.tif"}}) {
            const Outcome outcome = folder.run(words);
            EXPECT_EQ(outcome.out, "");
            EXPECT_EQ(outcome.err, message);
            EXPECT_EQ(outcome.status, 1U);
        }
        EXPECT_EQ(folder.files(), Words{"in.tif"});
    }
}

// The size says nothing that the text does not, and numbers of any length and kind are numbers of 32 bits.
TEST(NoteTag, OddSizesAndNumbersAreTaken) {
    const std::string nines(100, '9'); // -1
    struct Case {
        tiff::Entry tag;
        const char *listed;
    };
    const Case cases[] = {
        {tiff::ascii(316, "~,1,T,10,20,110,52,60000,Hello"), "from 10,20 to 110,52\n    Hello\n"},
        {tiff::ascii(316, "~,1,T,10,20,110,52,1,Hello"), "from 10,20 to 110,52\n    Hello\n"},
        {tiff::ascii(316, "~,1,T,10,20,110,52,,Hello"), "from 10,20 to 110,52\n    Hello\n"},
        {tiff::ascii(316, "~,1,T,,,,,,Hello"), "from 0,0 to 0,0\n    Hello\n"},
        {unterminated("~,1,T,10,20,110,52,6,Hello"), "from 10,20 to 110,52\n    Hello\n"},
        {tiff::ascii(316, "~,1,T," + nines + ",20,110,52," + nines + ",Hello"), "from -1,20 to 110,52\n    Hello\n"},
        {tiff::ascii(316, "~,1,T,10,20," + nines + "," + nines + ",6,Hello"), "from 10,20 to -1,-1\n    Hello\n"},
        {tiff::ascii(316, "~,1,T,1x,20,110,52,6,Hello"), "from 82,20 to 110,52\n    Hello\n"},
        {tiff::ascii(316, "?,1,T,10,20"), ""},
        {tiff::ascii(316, "~?????10,20,110,52,6,Hello"), "from 10,20 to 110,52\n    Hello\n"},
    };
    for (const auto &[tag, listed] : cases) {
        const WorkFolder folder;
        folder.put("in.tif", whitePage(tag));
        const Outcome list = folder.run({"note", "list", "in.tif"});
        const std::string expected = *listed == '\0' ? "" : std::string("in.tif: page 1: transparent note ") + listed;
        EXPECT_EQ(list.out, expected);
        EXPECT_EQ(list.err, "");
        EXPECT_EQ(list.status, 0U);
        const Outcome burn = folder.run({"note", "burn", "in.tif", "out.tif"});
        if (*listed == '\0') {
            EXPECT_EQ(burn.err, kNoNote);
            continue;
        }
        EXPECT_EQ(burn.out, "in.tif: page 1 -> out.tif\n") << listed;
        EXPECT_EQ(burn.err, "");
        EXPECT_EQ(burn.status, 0U);
        EXPECT_GT(blackPixels(pagePixels(folder, "out.tif")), 20U) << listed;
    }
}

TEST(NoteTag, ANoteWithoutTextLeavesThePageAsItIs) {
    const WorkFolder folder;
    folder.put("in.tif", whitePage(tiff::ascii(316, "~,1,T,10,20,110,52,0,")));
    EXPECT_EQ(folder.run({"note", "list", "in.tif"}).out, "in.tif: page 1: transparent note from 10,20 to 110,52\n\n");
    const Outcome burned = folder.run({"note", "burn", "in.tif", "out.tif"});
    EXPECT_EQ(burned.out, "in.tif: page 1 -> out.tif\n");
    EXPECT_EQ(burned.err, "");
    EXPECT_EQ(blackPixels(pagePixels(folder, "out.tif")), 0U);
}

TEST(NoteBurn, ANoteOutsideItsPageIsNotBurned) {
    for (const std::string &place : {std::string("200,20"), std::string("10,60"), std::string("2147483647,2147483647"),
                                     std::string("-294967296,20"), std::string("10,-100000")}) {
        const std::string stored = std::regex_replace(place, std::regex("-294967296"), "4000000000");
        const std::string value = std::regex_replace(stored, std::regex("-100000"), "4294867296");
        const WorkFolder folder;
        folder.put("in.tif", whitePage(tiff::ascii(316, "~,1,O," + value + ",300,300,6,Hello")));
        folder.put("out.tif", {1, 2, 3});
        const Outcome outcome = folder.run({"note", "burn", "in.tif", "out.tif"});
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err,
                  "vellum: in.tif: page 1: the note at " + place + " lies outside the page of 200 x 60 pixels.\n");
        EXPECT_EQ(outcome.status, 1U);
        EXPECT_EQ(folder.get("out.tif"), (Bytes{1, 2, 3})) << "an older file stays";
    }
}

TEST(NoteBurn, ANotePartlyOutsideIsCutOff) {
    for (const char *place : {"195,20", "10,55", "4294967290,20", "10,4294967290"}) { // -6
        const WorkFolder folder;
        folder.put("in.tif", whitePage(tiff::ascii(316, std::string("~,1,T,") + place + ",300,300,9,HHHHHHHH")));
        const Outcome outcome = folder.run({"note", "burn", "in.tif", "out.tif"});
        EXPECT_EQ(outcome.out, "in.tif: page 1 -> out.tif\n") << place;
        EXPECT_EQ(outcome.err, "") << place;
        EXPECT_EQ(outcome.status, 0U) << place;
        EXPECT_GT(blackPixels(pagePixels(folder, "out.tif")), 0U) << place;
    }
}

// ---- opaque notes on pages that are not black and white

constexpr unsigned kWidth = 160;
constexpr unsigned kHeight = 50;

// Neither black nor white, and no two neighbours alike.
BYTE shade(unsigned x, unsigned y, unsigned sample) {
    return static_cast<BYTE>(20 + (x * 7 + y * 13 + sample * 50) % 200);
}

// 150 x 120 dots per inch, one strip.
Bytes shadedPage(unsigned samples) {
    Bytes pixels;
    for (unsigned y = 0; y < kHeight; ++y) {
        for (unsigned x = 0; x < kWidth; ++x) {
            for (unsigned sample = 0; sample < samples; ++sample) {
                pixels.push_back(shade(x, y, sample));
            }
        }
    }
    tiff::Builder file;
    file.page({tiff::shorts(256, {kWidth}), tiff::shorts(257, {kHeight}), tiff::shorts(258, Numbers(samples, 8)),
               tiff::shorts(259, {1}), tiff::shorts(262, {samples == 3 ? 2U : 1U}), tiff::shorts(277, {samples}),
               tiff::shorts(278, {kHeight}), tiff::rationals(282, {150, 1}), tiff::rationals(283, {120, 1}),
               tiff::shorts(296, {2})},
              {pixels});
    return file.bytes();
}

// Where the page's note lies, as 'list' tells it.
RECT notePlace(const WorkFolder &folder) {
    const std::string told = folder.run({"note", "list", "in.tif"}).out;
    std::smatch numbers;
    if (!std::regex_search(told, numbers, std::regex("from (\\d+),(\\d+) to (\\d+),(\\d+)\n"))) {
        ADD_FAILURE() << told;
        return {};
    }
    return {std::stoi(numbers[1]), std::stoi(numbers[2]), std::stoi(numbers[3]), std::stoi(numbers[4])};
}

void expectOpaqueNote(unsigned samples) {
    const WorkFolder folder;
    folder.put("in.tif", shadedPage(samples));
    EXPECT_EQ(folder.run({"note", "add", "in.tif", "--opaque", "--at=11,13", "HH"}).err, "");
    const RECT place = notePlace(folder);
    EXPECT_EQ(place.left, 11);
    EXPECT_EQ(place.top, 13);
    EXPECT_LT(place.right, static_cast<LONG>(kWidth));
    EXPECT_LT(place.bottom, static_cast<LONG>(kHeight));
    EXPECT_EQ(folder.run({"note", "burn", "in.tif", "out.tif"}).err, "");
    const auto pages = pagesIn(folder.get("out.tif"));
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(pages[0].tag(258).numbers, Numbers(samples, 8));
    EXPECT_EQ(pages[0].tag(259).numbers, Numbers{5});
    EXPECT_EQ(pages[0].tag(282).numbers, (Numbers{150, 1}));
    EXPECT_EQ(pages[0].tag(283).numbers, (Numbers{120, 1}));
    const PagePixels before = pagePixels(folder, "in.tif");
    const PagePixels after = pagePixels(folder, "out.tif");
    ASSERT_EQ(before.values.size(), std::size_t{kWidth} * kHeight);
    ASSERT_EQ(after.values.size(), before.values.size());
    constexpr DWORD kWhite = 0xFFFFFF;
    std::size_t white = 0;
    std::size_t black = 0;
    for (LONG y = 0; y < static_cast<LONG>(kHeight); ++y) {
        for (LONG x = 0; x < static_cast<LONG>(kWidth); ++x) {
            const std::size_t at = static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x);
            const bool inside = x >= place.left && x < place.right && y >= place.top && y < place.bottom;
            if (!inside) {
                EXPECT_EQ(after.values[at], before.values[at]) << x << "," << y;
                continue;
            }
            EXPECT_TRUE(after.values[at] == 0 || after.values[at] == kWhite) << x << "," << y;
            (after.values[at] == 0 ? black : white)++;
        }
    }
    EXPECT_GT(black, 10U);
    EXPECT_GT(white, black);
}

TEST(NoteBurn, AnOpaqueNoteIsWhiteOnAPageInColour) {
    expectOpaqueNote(3);
}

TEST(NoteBurn, AnOpaqueNoteIsWhiteOnAPageInGrey) {
    expectOpaqueNote(1);
}

} // namespace
} // namespace vellum::test
