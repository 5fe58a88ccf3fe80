// vellum note: notes that are listed, added and burned in.
#include "cli/small_tiffs.h"
#include "cli/tiff_look.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

#include <bit>
#include <regex>

namespace vellum::test {
namespace {

// A white page of 200 x 60 pixels, and one that is as large and has a note.
Bytes twoPages(const std::string &note) {
    tiff::Builder file;
    std::vector<tiff::Entry> entries = {tiff::shorts(256, {200}), tiff::shorts(257, {60}), tiff::shorts(258, {1}),
                                        tiff::shorts(259, {1}),   tiff::shorts(262, {1}),  tiff::shorts(278, {60})};
    const Bytes white(25 * 60, BYTE{0xFF});
    file.page(entries, {white});
    if (!note.empty()) {
        entries.push_back(tiff::ascii(316, note));
    }
    file.page(entries, {white});
    return file.bytes();
}

std::string textIn(const SeenTag &tag) {
    std::string text;
    for (const std::uint32_t number : tag.numbers) {
        text += static_cast<char>(number);
    }
    return text;
}

TEST(Note, ListShowsPlaceLookAndLines) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages("~,1,O,10,20,110,52,25,first\r\n\r\n\ttab \xE9"));
    const Outcome outcome = folder.run({"note", "list", "in.tif"});
    EXPECT_EQ(outcome.out, "in.tif: page 2: opaque note from 10,20 to 110,52\n    first\n\n    tab \xC3\xA9\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_EQ(folder.run({"note", "list", "in.tif", "--page=2"}).out, outcome.out);
    const Outcome other = folder.run({"note", "list", "in.tif", "--page=1"});
    EXPECT_EQ(other.out + other.err, "");
    EXPECT_EQ(other.status, 0U);
    EXPECT_EQ(folder.run({"note", "list", "in.tif", "--page=3"}).status, 1U);
    EXPECT_EQ(folder.run({"note", "list", "none.tif"}).status, 1U);
}

TEST(Note, AddKeepsTheLinesInTheTagAndLeavesThePixels) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages(""));
    const auto before = pagesIn(folder.get("in.tif"));
    const Outcome outcome = folder.run({"note", "add", "in.tif", "--at", "7,9", "--opaque", "one", "two \xC3\xA9"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_TRUE(std::regex_match(outcome.out, std::regex("in\\.tif: page 1: opaque note from 7,9 to \\d+,\\d+\n"
                                                         "    one\n    two \xC3\xA9\n")))
        << outcome.out;
    EXPECT_EQ(folder.run({"note", "list", "in.tif"}).out, outcome.out);
    const auto after = pagesIn(folder.get("in.tif"));
    ASSERT_EQ(after.size(), 2U);
    const std::string value = textIn(after[0].tag(316));
    std::smatch numbers;
    ASSERT_TRUE(std::regex_match(value, numbers, std::regex("~,1,O,7,9,(\\d+),(\\d+),11,one\r\ntwo \xE9\\x00")))
        << value;
    EXPECT_GT(std::stoi(numbers[1]), 7 + 10) << "as wide as the text";
    EXPECT_GT(std::stoi(numbers[2]), 9 + 10) << "as high as two lines";
    EXPECT_EQ(after[0].pieces, before[0].pieces);
    EXPECT_TRUE(after[1] == before[1]);
    EXPECT_EQ(folder.run({"note", "add", "in.tif", "other"}).status, 0U) << "in place of the first note";
    EXPECT_NE(textIn(pagesIn(folder.get("in.tif"))[0].tag(316)).find(",6,other"), std::string::npos);
}

TEST(Note, AddLeavesAHostNameAlone) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages("mailhost"));
    const Outcome outcome = folder.run({"note", "add", "in.tif", "x", "--page=2"});
    EXPECT_EQ(outcome.err,
              "vellum: in.tif: page 2: HostComputer (316) is no note but \"mailhost\"; '--force' replaces it.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_TRUE(folder.get("in.tif") == twoPages("mailhost"));
    EXPECT_EQ(folder.run({"note", "add", "in.tif", "x", "--page=2", "--force"}).status, 0U);
    EXPECT_NE(folder.run({"note", "list", "in.tif"}).out.find("page 2: transparent note"), std::string::npos);
}

// The bits of a page that are not white, as told by an uncompressed copy of it.
std::size_t inkOn(const WorkFolder &folder, const std::string &name) {
    EXPECT_EQ(folder.run({"convert", name, "plain.tif", "--compression=none"}).err, "");
    std::size_t ink = 0;
    const auto pages = pagesIn(folder.get("plain.tif"));
    EXPECT_EQ(pages.size(), 1U);
    const bool whiteIsZero = !pages.empty() && pages[0].tag(262).numbers == std::vector<std::uint32_t>{0};
    for (const Bytes &piece : pages.at(0).pieces) {
        for (const BYTE byte : piece) {
            ink += static_cast<std::size_t>(std::popcount(static_cast<BYTE>(whiteIsZero ? byte : ~byte)));
        }
    }
    return ink;
}

TEST(Note, BurnWritesThePageWithItsNoteInThePixels) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages("~,1,T,10,20,110,52,6,Hello"));
    const Outcome outcome = folder.run({"note", "burn", "in.tif", "out.tif", "--page=2"});
    EXPECT_EQ(outcome.out, "in.tif: page 2 -> out.tif\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_TRUE(folder.get("in.tif") == twoPages("~,1,T,10,20,110,52,6,Hello"));
    const auto pages = pagesIn(folder.get("out.tif"));
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(pages[0].tag(256).numbers, std::vector<std::uint32_t>{200});
    EXPECT_EQ(pages[0].tag(259).numbers, std::vector<std::uint32_t>{4});
    EXPECT_TRUE(pages[0].tag(316).numbers.empty());
    EXPECT_GT(inkOn(folder, "out.tif"), 20U);
    EXPECT_EQ(folder.files(), (std::vector<std::string>{"in.tif", "out.tif", "plain.tif"}));
}

TEST(Note, BurnKeepsTheResolutionOfAFax) {
    const WorkFolder folder;
    folder.put("in.tif", bundled("fax.tif"));
    ASSERT_EQ(folder.run({"note", "add", "in.tif", "a note"}).err, "");
    ASSERT_EQ(folder.run({"note", "burn", "in.tif", "out.tif"}).err, "");
    const auto pages = pagesIn(folder.get("out.tif"));
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_EQ(pages[0].tag(282).numbers, (std::vector<std::uint32_t>{204, 1}));
    EXPECT_EQ(pages[0].tag(283).numbers, (std::vector<std::uint32_t>{196, 1}));
}

TEST(Note, LinesMayEndInAnyWay) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages("~,1,T,10,20,110,52,9,a\nb\rc\r\nd"));
    EXPECT_EQ(folder.run({"note", "list", "in.tif"}).out,
              "in.tif: page 2: transparent note from 10,20 to 110,52\n    a\n    b\n    c\n    d\n");
}

TEST(Note, ALineThatHasLineEndsInItIsSeveral) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages(""));
    const auto textOf = [&folder](const std::vector<std::string> &lines) {
        std::vector<std::string> words = {"note", "add", "in.tif"};
        words.insert(words.end(), lines.begin(), lines.end());
        EXPECT_EQ(folder.run(words).err, "");
        const std::string value = textIn(pagesIn(folder.get("in.tif"))[0].tag(316));
        std::smatch parts;
        return std::regex_match(value, parts, std::regex("~,1,T,0,0,\\d+,\\d+,\\d+,([^]*)\\x00")) ? parts[1].str()
                                                                                                  : value;
    };
    EXPECT_EQ(textOf({"a\nb", "c\rd\r\ne"}), "a\r\nb\r\nc\r\nd\r\ne");
    EXPECT_EQ(textOf({"a\n\nb"}), "a\r\n\r\nb");
    EXPECT_EQ(textOf({"", "a"}), "\r\na");
    EXPECT_EQ(textOf({"a\r\nb"}), "a\r\nb");
}

// Other programs end the lines of their notes as they like.
TEST(Note, BurnLosesNoLineWhateverItEndsWith) {
    const auto burned = [](const std::string &text) {
        const WorkFolder folder;
        folder.put("in.tif", twoPages("~,1,T,10,5,110,52,9," + text));
        EXPECT_EQ(folder.run({"note", "burn", "in.tif", "out.tif", "--page=2"}).err, "");
        return std::pair(inkOn(folder, "out.tif"), folder.get("out.tif"));
    };
    const auto [ink, page] = burned("Hello\r\nHello\r\nHello");
    const std::size_t inkOfOne = burned("Hello").first;
    EXPECT_GT(inkOfOne, 20U);
    EXPECT_EQ(ink, 3 * inkOfOne);
    EXPECT_TRUE(burned("Hello\nHello\nHello").second == page);
    EXPECT_TRUE(burned("Hello\rHello\rHello").second == page);
    EXPECT_TRUE(burned("Hello\nHello\r\nHello").second == page);
}

TEST(Note, CharactersThatTheCodePageLacksAreRefused) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages(""));
    const Outcome outcome = folder.run({"note", "add", "in.tif", "\xE6\x97\xA5"});
    EXPECT_EQ(outcome.err, "vellum note: the note has characters that the system's code page lacks: '\xE6\x97\xA5'\n"
                           "Try 'vellum note --help'.\n");
    EXPECT_EQ(outcome.status, 2U);
    EXPECT_TRUE(folder.get("in.tif") == twoPages(""));
}

TEST(Note, BurnOfAPageWithoutANoteWritesNothing) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages(""));
    const Outcome outcome = folder.run({"note", "burn", "in.tif", "out.tif"});
    EXPECT_EQ(outcome.err, "vellum: in.tif: page 1: there is no note.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.files(), std::vector<std::string>{"in.tif"});
}

TEST(Note, WhatMakesNoSenseIsSaid) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages(""));
    const std::pair<std::vector<std::string>, std::string> kWrong[] = {
        {{"note"}, "one of list, add and burn is needed"},
        {{"note", "show", "in.tif"}, "one of list, add and burn is needed, not 'show'"},
        {{"note", "list"}, "'list' needs one file"},
        {{"note", "add", "in.tif"}, "'add' needs one file and the lines of the note"},
        {{"note", "burn", "in.tif"}, "'burn' needs one file and the file to write"},
        {{"note", "burn", "in.tif", "IN.TIF"}, "the output is the input"},
        {{"note", "list", "in.tif", "--opaque"}, "'--opaque' does not go with 'list'"},
        {{"note", "add", "in.tif", "x", "--at", "1"},
         "option '--at' wants two whole numbers of pixels from 0 on, as 100,200, not '1'"},
        {{"note", "add", "in.tif", "x", "--at=-1,2"},
         "option '--at' wants two whole numbers of pixels from 0 on, as 100,200, not '-1,2'"},
        {{"note", "add", "in.tif", "x", "--at=1,2x"},
         "option '--at' wants two whole numbers of pixels from 0 on, as 100,200, not '1,2x'"}};
    for (const auto &[words, message] : kWrong) {
        const Outcome outcome = folder.run(words);
        EXPECT_EQ(outcome.err, "vellum note: " + message + "\nTry 'vellum note --help'.\n");
        EXPECT_EQ(outcome.status, 2U);
    }
    EXPECT_TRUE(folder.get("in.tif") == twoPages(""));
}

} // namespace
} // namespace vellum::test
