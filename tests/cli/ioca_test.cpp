// vellum ioca: pictures that are wrapped, told of and unwrapped.
#include "cli/copied_files.h"
#include "cli/tiff_look.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;

// The page, wrapped and unwrapped, is the same bitmap, resolution included.
void expectSamePicture(const WorkFolder &folder, const std::string &source, const std::string &unwrapped) {
    EXPECT_EQ(folder.run({"convert", source, "one.bmp"}).status, 0U);
    EXPECT_EQ(folder.run({"convert", unwrapped, "two.bmp"}).status, 0U);
    EXPECT_TRUE(folder.get("one.bmp").has_value());
    EXPECT_TRUE(folder.get("one.bmp") == folder.get("two.bmp"));
}

TEST(Ioca, APageComesBackAsItWas) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    EXPECT_EQ(folder.run({"copy", "fax.tif:2", "page.tif"}).status, 0U);
    struct Kind {
        std::vector<std::string> wrap;
        std::string name;
    };
    const Kind kinds[] = {{{"ioca", "wrap", "fax.tif:2", "out.img"}, "IOCA"},
                          {{"ioca", "wrap", "--modca", "fax.tif:2", "out.img"}, "MO:DCA"}};
    for (const Kind &kind : kinds) {
        const Outcome wrapped = folder.run(kind.wrap);
        EXPECT_EQ(wrapped.out, "out.img: 1728 x 2287, 1 bit, " + kind.name + "\n");
        EXPECT_EQ(wrapped.err, "");
        EXPECT_EQ(wrapped.status, 0U);
        const std::string told = folder.run({"ioca", "info", "out.img"}).out;
        const std::string size = std::to_string(folder.get("out.img").value_or(Bytes()).size());
        EXPECT_EQ(told.rfind("out.img: " + kind.name + ", " + size +
                                 " bytes\n"
                                 "  pixels       1728 x 2287\n"
                                 "  resolution   204 x 196 dpi\n"
                                 "  compression  MMR\n"
                                 "  first block  ",
                             0),
                  0U)
            << told;
        const Outcome unwrapped = folder.run({"ioca", "unwrap", "out.img", "back.tif"});
        EXPECT_EQ(unwrapped.out, "back.tif: 1728 x 2287, 1 bit, g4\n");
        EXPECT_EQ(unwrapped.err, "");
        EXPECT_EQ(unwrapped.status, 0U);
        expectSamePicture(folder, "page.tif", "back.tif");
    }
    EXPECT_EQ(folder.run({"check", "-q", "back.tif"}).status, 0U);
}

// 8 x 2 pixels, 0xA5 and 0x0F with 1 for white: the code has 1 for black, and so has the TIFF that is written of it.
TEST(Ioca, BlackStaysBlackInEitherByteOrder) {
    for (const unsigned order : {unsigned{tiff::kII}, unsigned{tiff::kMM}}) {
        const WorkFolder folder;
        folder.put("in.tif", smallPage(order));
        EXPECT_EQ(folder.run({"ioca", "wrap", "in.tif", "out.img"}).err, "");
        EXPECT_EQ(folder.run({"ioca", "unwrap", "out.img", "back.tif"}).err, "");
        EXPECT_EQ(folder.run({"convert", "--compression=none", "back.tif", "plain.tif"}).err, "");
        const SeenPage page = pagesIn(folder.get("plain.tif")).at(0);
        EXPECT_EQ(page.tag(262).numbers, (std::vector<std::uint32_t>{0}));
        EXPECT_EQ(page.tag(282).numbers, (std::vector<std::uint32_t>{300, 1}));
        ASSERT_EQ(page.pieces.size(), 1U);
        EXPECT_EQ(page.pieces[0], (Bytes{0x5A, 0xF0}));
    }
}

TEST(Ioca, TheHeadersHoldWhatTheyAreToHold) {
    const WorkFolder folder;
    folder.put("in.tif", smallPage());
    EXPECT_EQ(folder.run({"ioca", "wrap", "in.tif", "out.img"}).err, "");
    EXPECT_EQ(folder.run({"ioca", "wrap", "in.tif", "out.mod", "--modca"}).err, "");
    const Bytes plain = folder.get("out.img").value_or(Bytes());
    const Bytes modca = folder.get("out.mod").value_or(Bytes());
    const Bytes start = {0x70, 0x00, 0x91, 0x01, 0xFF, 0x94, 0x09, 0x00,
                         0x0B, 0xB8, 0x0B, 0xB8, 0x00, 0x08, 0x00, 0x02};
    const Bytes end = {0x93, 0x00, 0x71, 0x00};
    ASSERT_GT(plain.size(), start.size() + end.size());
    EXPECT_TRUE(std::equal(start.begin(), start.end(), plain.begin()));
    EXPECT_TRUE(std::equal(end.begin(), end.end(), plain.end() - 4));
    // Structured fields: each begins with 5A and a length that counts itself but not the 5A.
    ASSERT_GT(modca.size(), 33U);
    EXPECT_EQ(modca[0], 0x5A);
    EXPECT_EQ(Bytes(modca.begin() + 3, modca.begin() + 6), (Bytes{0xD3, 0xA8, 0xA8}));
    const std::size_t second = 1 + (std::size_t{modca[1]} << 8 | modca[2]);
    EXPECT_EQ(second, 27U);
    EXPECT_EQ(modca[second], 0x5A);
    EXPECT_EQ(Bytes(modca.begin() + 30, modca.begin() + 33), (Bytes{0xD3, 0xEE, 0xFB}));
    // The field ends with the code; behind it, the tail and D3 A9 C7.
    const std::size_t fieldEnd = 28 + (std::size_t{modca[28]} << 8 | modca[29]);
    EXPECT_EQ(fieldEnd, modca.size() - 7);
    EXPECT_TRUE(std::equal(plain.begin(), plain.end(), modca.begin() + 33));
    EXPECT_EQ(Bytes(modca.end() - 3, modca.end()), (Bytes{0xD3, 0xA9, 0xC7}));
}

TEST(Ioca, AResolutionThatIsNotToldStaysSo) {
    const WorkFolder folder;
    folder.put("in.tif", pagesOf({0x11}));
    EXPECT_EQ(folder.run({"ioca", "wrap", "in.tif", "out.img"}).err, "");
    EXPECT_NE(folder.run({"ioca", "info", "out.img"}).out.find("\n  resolution   -\n"), std::string::npos);
    EXPECT_EQ(folder.run({"ioca", "unwrap", "out.img", "back.tif"}).err, "");
    EXPECT_EQ(pagesIn(folder.get("back.tif")).at(0).tag(282).type, 0U);
}

// Dots per centimetre, and a resolution that is no whole number of dots per inch.
TEST(Ioca, ResolutionsBecomeDotsPerTenInches) {
    tiff::Builder file;
    file.page({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::shorts(262, {0}), tiff::rationals(282, {80, 1}),
               tiff::rationals(283, {1181, 10}), tiff::shorts(296, {3})},
              {{0x11}});
    const WorkFolder folder;
    folder.put("in.tif", file.bytes());
    EXPECT_EQ(folder.run({"ioca", "wrap", "in.tif", "out.img"}).err, "");
    const std::string told = folder.run({"ioca", "info", "out.img"}).out;
    EXPECT_NE(told.find("\n  resolution   203.2 x 300 dpi\n"), std::string::npos) << told;
    EXPECT_EQ(folder.run({"ioca", "unwrap", "out.img", "back.tif"}).err, "");
    EXPECT_EQ(pagesIn(folder.get("back.tif")).at(0).tag(282).numbers, (std::vector<std::uint32_t>{1016, 5}));
}

TEST(Ioca, WhatIsNotBilevelOrNotWholeIsNotWrapped) {
    tiff::Builder cut;
    addPage(cut, {0x11}, 5000, 1);
    const WorkFolder folder;
    folder.put("buoy.tif", bundled("buoy.tif"));
    folder.put("cut.tif", cut.bytes());
    folder.put("broken.tif", brokenFile());
    folder.put("old.img", {1, 2, 3});
    struct Case {
        const char *input;
        const char *message;
    };
    const Case cases[] = {
        {"buoy.tif", "buoy.tif: page 1: only bilevel pages can be wrapped."},
        {"cut.tif", "cut.tif: page 1: only a part was there: Unexpected end of file in reading data."},
        {"broken.tif:3", "broken.tif: there is no page 3; the file has 2."},
        {"none.tif", "none.tif: General I/O error in reading or writting. (no such file)"},
    };
    for (const Case &entry : cases) {
        const Outcome outcome = folder.run({"ioca", "wrap", entry.input, "old.img"});
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, std::string("vellum: ") + entry.message + "\n");
        EXPECT_EQ(outcome.status, 1U);
    }
    EXPECT_EQ(folder.get("old.img"), (Bytes{1, 2, 3}));
    EXPECT_EQ(folder.files(), (Names{"broken.tif", "buoy.tif", "cut.tif", "old.img"}));
    EXPECT_EQ(folder.run({"ioca", "wrap", "broken.tif:2", "old.img"}).status, 0U);
}

// Noise that takes more code than a structured field holds.
TEST(Ioca, CodeThatIsTooLongForOneFieldIsRefusedWithModcaOnly) {
    constexpr unsigned kLines = 400;
    Bytes noise(std::size_t{128} * kLines);
    unsigned state = 1;
    for (BYTE &byte : noise) {
        state = state * 1103515245U + 12345U;
        byte = static_cast<BYTE>(state >> 16);
    }
    tiff::Builder file;
    file.page({tiff::shorts(256, {1024}), tiff::shorts(257, {kLines}), tiff::shorts(262, {0})}, {noise});
    const WorkFolder folder;
    folder.put("in.tif", file.bytes());
    const Outcome outcome = folder.run({"ioca", "wrap", "--modca", "in.tif", "out.img"});
    EXPECT_EQ(outcome.err, "vellum: out.img: cannot be written: the code is too long for one structured field.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.files(), Names{"in.tif"});
    EXPECT_EQ(folder.run({"ioca", "wrap", "in.tif", "out.img"}).err, "");
    EXPECT_GT(folder.get("out.img").value_or(Bytes()).size(), 65520U);
    EXPECT_EQ(folder.run({"ioca", "unwrap", "out.img", "back.tif"}).err, "");
    expectSamePicture(folder, "in.tif", "back.tif");
}

TEST(Ioca, WhatHoldsNoWholeImageIsNotUnwrapped) {
    const WorkFolder folder;
    folder.put("in.tif", smallPage());
    EXPECT_EQ(folder.run({"ioca", "wrap", "in.tif", "good.img"}).err, "");
    const Bytes good = folder.get("good.img").value_or(Bytes(64));
    Bytes cut(good.begin(), good.begin() + 31);
    Bytes otherCode = good;
    otherCode.at(18) = 3; // the compression identifier
    Bytes noData(good.begin(), good.begin() + 26);
    noData.insert(noData.end(), {0x93, 0x00, 0x71, 0x00});
    Bytes noPixels = good;
    noPixels.at(13) = 0;
    struct Case {
        Bytes file;
        const char *message;
    };
    const Case cases[] = {
        {cut, "after line 0 of 2: Unexpected end of file in reading data."},
        {otherCode, "the image code is not MMR but of compression 3."},
        {noData, "there is no MMR block behind the headers."},
        {noPixels, "the image has no pixels."},
        {{'n', 'o', 'n', 'e'}, "there is no IOCA image in the file."},
        {{0x70}, "there is no IOCA image in the file."},
        {{}, "there is no IOCA image in the file."},
        {smallPage(), "there is no IOCA image in the file."},
    };
    folder.put("old.tif", {1, 2, 3});
    for (const Case &entry : cases) {
        folder.put("bad.img", entry.file);
        const Outcome outcome = folder.run({"ioca", "unwrap", "bad.img", "old.tif"});
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, std::string("vellum: bad.img: ") + entry.message + "\n");
        EXPECT_EQ(outcome.status, 1U);
        EXPECT_EQ(folder.get("old.tif"), (Bytes{1, 2, 3}));
    }
    EXPECT_EQ(folder.run({"ioca", "info", "none.img"}).err, "vellum: none.img: there is no such file.\n");
    EXPECT_EQ(folder.files(), (Names{"bad.img", "good.img", "in.tif", "old.tif"}));
}

TEST(Ioca, ASegmentBehindOtherBytesIsFound) {
    const WorkFolder folder;
    folder.put("in.tif", smallPage());
    EXPECT_EQ(folder.run({"ioca", "wrap", "in.tif", "good.img"}).err, "");
    Bytes later = {0x00, 0xD3, 0xEE, 0x00};
    const Bytes good = folder.get("good.img").value_or(Bytes());
    later.insert(later.end(), good.begin(), good.end());
    folder.put("later.img", later);
    EXPECT_EQ(folder.run({"ioca", "info", "later.img"}).out.rfind("later.img: IOCA, ", 0), 0U);
    EXPECT_EQ(folder.run({"ioca", "unwrap", "later.img", "a b.tif"}).out, "a b.tif: 8 x 2, 1 bit, g4\n");
}

} // namespace
} // namespace vellum::test
