// vellum convert: the TIFFs it writes. Pixels are compared through bitmaps: the source's and the copy's must be equal,
// colours and resolution included.
#include "cli/small_tiffs.h"
#include "cli/vellum_process.h"
#include "support/jpeg_tiff.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;

std::string pageName(const std::string &base, unsigned page) {
    return base + (page < 10 ? "-00" : "-0") + std::to_string(page) + ".bmp";
}

// All pages of two TIFFs are the same pictures.
void expectEqualPages(const WorkFolder &folder, const std::string &one, const std::string &other, unsigned pages) {
    EXPECT_EQ(folder.run({"convert", "--all", one, "one.bmp"}).status, 0U);
    EXPECT_EQ(folder.run({"convert", "--all", other, "other.bmp"}).status, 0U);
    for (unsigned page = 1; page <= pages; ++page) {
        const auto expected = folder.get(pageName("one", page));
        ASSERT_TRUE(expected) << page;
        EXPECT_TRUE(folder.get(pageName("other", page)) == expected) << "page " << page;
    }
    EXPECT_FALSE(folder.get(pageName("other", pages + 1)));
}

struct Scheme {
    const char *option;
    const char *told; // by info
};

class ConvertToTiff : public testing::TestWithParam<Scheme> {};

TEST_P(ConvertToTiff, EveryCompressionKeepsAFaxAsItIs) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    const Outcome outcome = folder.run({"convert", "fax.tif", "out.tif", "--compression", GetParam().option});
    EXPECT_EQ(outcome.out, std::string("out.tif: page 1: 1728 x 2287, 1 bit, ") + GetParam().option + "\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    const std::string told = folder.run({"info", "out.tif"}).out;
    EXPECT_NE(told.find(std::string("WhiteIsZero  ") + GetParam().told + " "), std::string::npos) << told;
    EXPECT_EQ(folder.run({"convert", "fax.tif", "one.bmp"}).status, 0U);
    EXPECT_EQ(folder.run({"convert", "out.tif", "two.bmp"}).status, 0U);
    EXPECT_TRUE(folder.get("one.bmp") == folder.get("two.bmp"));
}

INSTANTIATE_TEST_SUITE_P(Bilevel, ConvertToTiff,
                         testing::Values(Scheme{"none", "none"}, Scheme{"packbits", "PackBits"}, Scheme{"lzw", "LZW"},
                                         Scheme{"mh", "modified Huffman"}, Scheme{"g3", "Group 3 1D"},
                                         Scheme{"g3-2d", "Group 3 2D"}, Scheme{"g4", "Group 4"}),
                         [](const auto &scheme) {
                             std::string name = scheme.param.option;
                             std::erase(name, '-');
                             return name;
                         });

TEST(ConvertColourToTiff, EveryCompressionKeepsThePictureAsItIs) {
    const WorkFolder folder;
    folder.put("buoy.tif", bundled("buoy.tif"));
    EXPECT_EQ(folder.run({"convert", "buoy.tif", "one.bmp"}).status, 0U);
    for (const std::string compression : {"none", "packbits", "lzw", "lzw-diff"}) {
        const Outcome outcome = folder.run({"convert", "buoy.tif", "out.tif", "--compression=" + compression});
        EXPECT_EQ(outcome.out, "out.tif: page 1: 240 x 160, 24 bits, " + compression + "\n");
        EXPECT_EQ(folder.run({"convert", "out.tif", "two.bmp"}).status, 0U);
        EXPECT_TRUE(folder.get("one.bmp") == folder.get("two.bmp")) << compression;
    }
}

// Every depth, photometric interpretation and byte order that the library knows.
TEST(ConvertAllToTiff, EveryKindOfPageComesThrough) {
    struct File {
        const char *name;
        unsigned pages;
    };
    for (const File &file :
         {File{"none-lsb-mm-r7.tif", 12}, File{"lzw2-msb-mm-r1.tif", 6}, File{"g4-msb-ii.tif", 13}}) {
        SCOPED_TRACE(file.name);
        const WorkFolder folder;
        folder.put("in.tif", readFile(fixture(file.name)).value_or(Bytes()));
        const Outcome outcome = folder.run({"convert", "--all", "in.tif", "out.tif"});
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.status, 0U);
        expectEqualPages(folder, "in.tif", "out.tif", file.pages);
    }
}

TEST(ConvertAllToTiff, WritesOneFileAndTellsOfEveryPage) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    const Outcome outcome = folder.run({"convert", "--all", "fax.tif", "out.TIFF", "--fill-order", "2"});
    EXPECT_EQ(outcome.out, "out.TIFF: page 1: 1728 x 2287, 1 bit, g4\n"
                           "out.TIFF: page 2: 1728 x 2287, 1 bit, g4\n"
                           "out.TIFF: page 3: 1728 x 2287, 1 bit, g4\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_EQ(folder.files(), (Names{"fax.tif", "out.TIFF"}));
    EXPECT_EQ(folder.run({"check", "-q", "out.TIFF"}).status, 0U);
    const std::string told = folder.run({"info", "out.TIFF"}).out;
    EXPECT_NE(told.find("3  1728 x 2287  1     WhiteIsZero  Group 4, fill order 2"), std::string::npos) << told;
    expectEqualPages(folder, "fax.tif", "out.TIFF", 3);
}

TEST(ConvertAllToTiff, LeavesOutPagesThatFail) {
    const WorkFolder folder;
    folder.put("three.tif", threePagesWithABadOne());
    const Outcome outcome = folder.run({"convert", "three.tif", "out.tif", "--all"});
    EXPECT_EQ(outcome.out, "out.tif: page 1: 8 x 1, 1 bit, g4\nout.tif: page 2: 8 x 1, 1 bit, g4\n");
    EXPECT_EQ(outcome.err, "vellum: three.tif: page 2: Image compression type is not known.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.run({"convert", "out.tif", "two.bmp", "--page=2"}).status, 0U);
    EXPECT_EQ(folder.get("two.bmp").value_or(Bytes(63)).at(62), 0x33);
}

TEST(ConvertAllToTiff, TellsThatTheChainBreaks) {
    tiff::Builder file;
    addPage(file, {0x11}, 1, 1);
    file.linkTo(0x00FFFFFF);
    const WorkFolder folder;
    folder.put("cut.tif", file.bytes());
    const Outcome outcome = folder.run({"convert", "cut.tif", "out.tif", "--all"});
    EXPECT_EQ(outcome.out, "out.tif: page 1: 8 x 1, 1 bit, g4\n");
    EXPECT_EQ(outcome.err, "vellum: cut.tif: the chain of pages breaks behind page 1: "
                           "General I/O error in reading or writting.\n");
    EXPECT_EQ(outcome.status, 1U);
}

TEST(ConvertAllToTiff, AFileWithoutPagesFails) {
    const WorkFolder folder;
    folder.put("empty.tif", {'I', 'I', 42, 0, 0, 0, 0, 0});
    for (const char *output : {"out.tif", "out.bmp"}) {
        const Outcome outcome = folder.run({"convert", "--all", "empty.tif", output});
        EXPECT_EQ(outcome.err, "vellum: empty.tif: there is no page in the file.\n");
        EXPECT_EQ(outcome.status, 1U);
    }
    EXPECT_EQ(folder.files(), Names{"empty.tif"});
}

TEST(ConvertPageToTiff, WritesThePageThatIsAskedFor) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    EXPECT_EQ(folder.run({"convert", "fax.tif", "two.tif", "--page", "2"}).status, 0U);
    EXPECT_EQ(folder.run({"convert", "fax.tif", "one.bmp", "--page", "2"}).status, 0U);
    EXPECT_EQ(folder.run({"convert", "two.tif", "two.bmp"}).status, 0U);
    EXPECT_TRUE(folder.get("one.bmp") == folder.get("two.bmp"));
    const Outcome beyond = folder.run({"convert", "fax.tif", "four.tif", "--page=4"});
    EXPECT_EQ(beyond.err, "vellum: fax.tif: there is no page 4; the file has 3.\n");
    EXPECT_EQ(beyond.status, 1U);
    EXPECT_FALSE(folder.get("four.tif"));
}

// A page with every tag that is copied, and some that are not: FillOrder, CleanFaxData, a private one.
Bytes richPage() {
    std::vector<std::uint32_t> map;
    for (std::uint32_t i = 0; i < 48; ++i) {
        map.push_back(i * 1234 + 5);
    }
    tiff::Builder file(tiff::kMM);
    file.page({tiff::longs(254, {2}),
               tiff::shorts(256, {6}),
               tiff::shorts(257, {2}),
               tiff::shorts(258, {4}),
               tiff::shorts(259, {1}),
               tiff::shorts(262, {3}),
               tiff::shorts(266, {1}),
               tiff::ascii(269, "Letters 7"),
               tiff::ascii(270, "To whom it may concern"),
               tiff::shorts(274, {6}),
               tiff::shorts(277, {1}),
               tiff::rationals(282, {1181, 10}),
               tiff::rationals(283, {1182, 10}),
               tiff::ascii(285, "front"),
               tiff::shorts(296, {3}),
               tiff::shorts(297, {0, 2}),
               tiff::ascii(305, "scanner 1.0"),
               tiff::ascii(306, "2001:02:03 04:05:06"),
               tiff::ascii(315, "A. Clerk"),
               tiff::shorts(320, map),
               tiff::shorts(327, {0}),
               tiff::ascii(33432, "(c) nobody"),
               tiff::longs(40000, {99})},
              {{0x01, 0x23, 0x45, 0xFE, 0xDC, 0xBA}});
    return file.bytes();
}

constexpr char kRichTags[] = R"(
      254  NewSubfileType             LONG       1  2
      256  ImageWidth                 SHORT      1  6
      257  ImageLength                SHORT      1  2
      258  BitsPerSample              SHORT      1  4
      259  Compression                SHORT      1  32773
      262  PhotometricInterpretation  SHORT      1  3
      269  DocumentName               ASCII     10  "Letters 7"
      270  ImageDescription           ASCII     23  "To whom it may concern"
      273  StripOffsets               LONG       1  8
      274  Orientation                SHORT      1  6
      277  SamplesPerPixel            SHORT      1  1
      278  RowsPerStrip               SHORT      1  2
      279  StripByteCounts            LONG       1  8
      282  XResolution                RATIONAL   1  1181/10
      283  YResolution                RATIONAL   1  1182/10
      285  PageName                   ASCII      6  "front"
      296  ResolutionUnit             SHORT      1  3
      297  PageNumber                 SHORT      2  0, 2
      305  Software                   ASCII     12  "scanner 1.0"
      306  DateTime                   ASCII     20  "2001:02:03 04:05:06"
      315  Artist                     ASCII      9  "A. Clerk"
      320  ColorMap                   SHORT     48  )";

TEST(ConvertTagsToTiff, WhatIsToldOfAPageIsCopied) {
    const WorkFolder folder;
    folder.put("rich.tif", richPage());
    EXPECT_EQ(folder.run({"convert", "rich.tif", "out.tif", "--compression=packbits"}).err, "");
    const std::string told = folder.run({"info", "--tags", "--all-values", "out.tif"}).out;
    std::string expected = kRichTags;
    for (unsigned i = 0; i < 48; ++i) {
        expected += (i == 0 ? "" : ", ") + std::to_string(i * 1234 + 5);
    }
    expected += "\n    33432  Copyright                  ASCII     11  \"(c) nobody\"\n";
    EXPECT_EQ(told.substr(std::min(told.size(), told.find("page 1\n") + 6)), expected);
    expectEqualPages(folder, "rich.tif", "out.tif", 1);
}

TEST(ConvertTagsToTiff, TitleAndArtistAreTheUsers) {
    const WorkFolder folder;
    folder.put("rich.tif", richPage());
    const std::string title = "Caf\xC3\xA9 \xE2\x82\xAC";
    EXPECT_EQ(folder.run({"convert", "rich.tif", "out.tif", "--title", title, "--artist=Me"}).err, "");
    const std::string told = folder.run({"info", "--tags", "out.tif"}).out;
    EXPECT_NE(told.find("\"" + title + "\""), std::string::npos) << told;
    EXPECT_NE(told.find("\"Me\""), std::string::npos) << told;
    EXPECT_EQ(told.find("A. Clerk"), std::string::npos) << told;
    EXPECT_EQ(told.find("To whom"), std::string::npos) << told;

    EXPECT_EQ(folder.run({"convert", "rich.tif", "bare.tif", "--title=", "--artist="}).err, "");
    const std::string bare = folder.run({"info", "--tags", "bare.tif"}).out;
    EXPECT_EQ(bare.find("ImageDescription"), std::string::npos) << bare;
    EXPECT_EQ(bare.find("Artist"), std::string::npos) << bare;
    EXPECT_NE(bare.find("Letters 7"), std::string::npos) << bare;
}

TEST(ConvertTagsToTiff, TagsThatAreNotWholeAreLeftBehind) {
    tiff::Builder file;
    file.page({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::ascii(270, ""), tiff::field(271, 2, 3, 0x00434241),
               tiff::field(272, 2, 3, 0x20434241), tiff::shorts(297, {1}), tiff::typed(305, 11, 2, 4, {1, 2}),
               tiff::field(315, 2, 0, 0)},
              {{0x5A}});
    const WorkFolder folder;
    folder.put("in.tif", file.bytes());
    EXPECT_EQ(folder.run({"convert", "in.tif", "out.tif"}).err, "");
    const std::string told = folder.run({"info", "--tags", "out.tif"}).out;
    EXPECT_NE(told.find("ImageDescription           ASCII  1  \"\"\n"), std::string::npos) << told;
    EXPECT_NE(told.find("Make                       ASCII  4  \"ABC\"\n"), std::string::npos) << told;
    EXPECT_NE(told.find("Model                      ASCII  4  \"ABC\"\n"), std::string::npos) << told;
    for (const char *gone : {"PageNumber", "Software", "Artist"}) {
        EXPECT_EQ(told.find(gone), std::string::npos) << told;
    }
    // Without PhotometricInterpretation a bilevel page counts as WhiteIsZero.
    EXPECT_NE(told.find("WhiteIsZero"), std::string::npos) << told;
}

TEST(ConvertTagsToTiff, SamplesOfOtherSizesStayWhatTheyAre) {
    tiff::Builder file;
    file.page({tiff::shorts(256, {3}), tiff::shorts(257, {1}), tiff::shorts(258, {4, 4}), tiff::shorts(259, {1}),
               tiff::shorts(262, {1}), tiff::shorts(277, {2}), tiff::shorts(338, {0})},
              {{0x12, 0x34, 0x56}});
    const WorkFolder folder;
    folder.put("in.tif", file.bytes());
    EXPECT_EQ(folder.run({"convert", "in.tif", "out.tif"}).out, "out.tif: page 1: 3 x 1, 8 bits, lzw\n");
    const std::string told = folder.run({"info", "--tags", "out.tif"}).out;
    EXPECT_NE(told.find("BitsPerSample              SHORT  2  4, 4\n"), std::string::npos) << told;
    EXPECT_NE(told.find("ExtraSamples"), std::string::npos) << told;
    expectEqualPages(folder, "in.tif", "out.tif", 1);
}

TEST(ConvertTagsToTiff, SizesAbove65535AreKept) {
    for (const auto &[width, height] : {std::pair{70000U, 2U}, std::pair{8U, 70000U}}) {
        tiff::Builder file;
        file.page({tiff::longs(256, {width}), tiff::longs(257, {height}), tiff::shorts(258, {1}),
                   tiff::shorts(259, {1}), tiff::shorts(262, {1}), tiff::shorts(277, {1})},
                  {Bytes((width + 7) / 8 * height, 0x5A)});
        const WorkFolder folder;
        folder.put("in.tif", file.bytes());
        // The default: Group 4, but not for lines that its encoder does not take.
        const char *compression = width > 33280 ? "lzw" : "g4";
        const Outcome outcome = folder.run({"convert", "in.tif", "out.tif"});
        EXPECT_EQ(outcome.out, "out.tif: page 1: " + std::to_string(width) + " x " + std::to_string(height) +
                                   ", 1 bit, " + compression + "\n");
        EXPECT_EQ(outcome.err, "");
        expectEqualPages(folder, "in.tif", "out.tif", 1);
    }
}

TEST(ConvertToTiffOptions, KSetsHowOftenALineStandsAlone) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    std::size_t before = 0;
    for (const std::string k : {"50", "4", "2"}) {
        EXPECT_EQ(folder.run({"convert", "fax.tif", "out.tif", "--compression=g3-2d", "--k", k}).status, 0U);
        const std::size_t size = folder.get("out.tif").value_or(Bytes()).size();
        EXPECT_GT(size, before) << k;
        before = size;
    }
    EXPECT_EQ(folder.run({"convert", "fax.tif", "two.tif", "--compression=g3-2d"}).status, 0U);
    EXPECT_TRUE(folder.get("two.tif") == folder.get("out.tif")) << "2 is the default";
}

TEST(ConvertToTiffOptions, CompressionsThatDoNotFitThePageAreRefused) {
    const WorkFolder folder;
    folder.put("buoy.tif", bundled("buoy.tif"));
    folder.put("small.tif", smallPage());
    folder.put("old.tif", {1, 2, 3});
    struct Misfit {
        const char *file;
        const char *compression;
        const char *message;
    };
    for (const Misfit &misfit : {Misfit{"buoy.tif", "g4", "g4 codes 1 bit per pixel; the page has 24 bits per pixel."},
                                 Misfit{"buoy.tif", "mh", "mh codes 1 bit per pixel; the page has 24 bits per pixel."},
                                 Misfit{"small.tif", "lzw-diff",
                                        "lzw-diff codes 4, 8 and 24 bits per pixel; the page has 1 bit per pixel."}}) {
        const Outcome outcome = folder.run({"convert", misfit.file, "old.tif", "--compression", misfit.compression});
        EXPECT_EQ(outcome.err, std::string("vellum: ") + misfit.file + ": page 1: " + misfit.message + "\n");
        EXPECT_EQ(outcome.status, 1U);
    }
    EXPECT_EQ(folder.get("old.tif"), (Bytes{1, 2, 3}));
    EXPECT_EQ(folder.files(), (Names{"buoy.tif", "old.tif", "small.tif"}));
}

TEST(ConvertToTiffJpeg, WithoutTheCompanionModuleNothingIsWritten) {
    const WorkFolder folder;
    folder.put("buoy.tif", bundled("buoy.tif"));
    const Outcome outcome = folder.run({"convert", "buoy.tif", "out.tif", "--compression", "jpeg"});
    EXPECT_EQ(outcome.err, "vellum: out.tif: JPEG data need the companion module DCTLIB32.DLL, which is not there.\n");
    EXPECT_EQ(outcome.status, 1U);
    folder.put("jpeg.tif", jpegTiff({}));
    const Outcome input = folder.run({"convert", "jpeg.tif", "out.tif"});
    EXPECT_EQ(input.err,
              "vellum: jpeg.tif: page 1: JPEG data need the companion module DCTLIB32.DLL, which is not there.\n");
    EXPECT_EQ(input.status, 1U);
    EXPECT_EQ(folder.files(), (Names{"buoy.tif", "jpeg.tif"}));
}

// The tests' companion module codes the samples as they are.
TEST(ConvertToTiffJpeg, TheCompanionModuleCodesGreyAndColour) {
    const WorkFolder folder;
    const auto module = readFile(VELLUM_COMPANION);
    ASSERT_TRUE(module);
    folder.put("DCTLIB32.DLL", *module);
    folder.put("buoy.tif", bundled("buoy.tif"));
    folder.put("small.tif", smallPage());
    const Outcome outcome = folder.run({"convert", "buoy.tif", "out.tif", "--compression", "jpeg"});
    EXPECT_EQ(outcome.out, "out.tif: page 1: 240 x 160, 24 bits, jpeg\n");
    EXPECT_EQ(outcome.err, "");
    const std::string told = folder.run({"info", "out.tif"}).out;
    EXPECT_NE(told.find("YCbCr        JPEG (TIFF 6)  tiles 240 x 160"), std::string::npos) << told;
    EXPECT_EQ(folder.run({"convert", "out.tif", "back.tif"}).out, "back.tif: page 1: 240 x 160, 24 bits, lzw-diff\n");
    expectEqualPages(folder, "buoy.tif", "back.tif", 1);

    const Outcome bilevel = folder.run({"convert", "small.tif", "fax.tif", "--compression", "jpeg"});
    EXPECT_EQ(bilevel.err, "vellum: small.tif: page 1: jpeg codes 8 bits of grey and 24 bits of colour; "
                           "the page has 1 bit per pixel.\n");
    EXPECT_FALSE(folder.get("fax.tif"));
}

TEST(ConvertCutToTiff, WritesWhatThereIsAndWarns) {
    tiff::Builder file;
    addPage(file, {0xFF, 0xFF}, 1000, 1); // 2 of 1000 lines; the rest of the file is read as lines, too
    const WorkFolder folder;
    folder.put("cut.tif", file.bytes());
    const Outcome outcome = folder.run({"convert", "cut.tif", "out.tif"});
    EXPECT_EQ(outcome.out, "out.tif: page 1: 8 x 1000, 1 bit, g4\n");
    EXPECT_EQ(outcome.err, "vellum: cut.tif: page 1: warning: only a part was there: "
                           "Unexpected end of file in reading data.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.run({"convert", "cut.tif", "one.bmp"}).status, 1U);
    EXPECT_EQ(folder.run({"convert", "out.tif", "two.bmp"}).status, 0U);
    EXPECT_TRUE(folder.get("one.bmp") == folder.get("two.bmp"));
}

TEST(ConvertCutToTiff, APictureThatItsFileCannotFillIsRefused) {
    tiff::Builder file;
    addPage(file, {0xFF, 0xFF}, 0xFFFFFFF0, 1);
    const WorkFolder folder;
    folder.put("huge.tif", file.bytes());
    const Outcome outcome = folder.run({"convert", "huge.tif", "out.tif"});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vellum: huge.tif: page 1: Unexpected end of file in reading data.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.files(), Names{"huge.tif"});
}

TEST(ConvertCutToTiff, APaletteWithoutColoursIsRefused) {
    tiff::Builder file;
    file.page({tiff::shorts(256, {1}), tiff::shorts(257, {1}), tiff::shorts(258, {8}), tiff::shorts(262, {3})}, {{7}});
    const WorkFolder folder;
    folder.put("odd.tif", file.bytes());
    const Outcome outcome = folder.run({"convert", "odd.tif", "out.tif"});
    EXPECT_EQ(outcome.err, "vellum: odd.tif: page 1: Indispensable tags are missing.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_FALSE(folder.get("out.tif"));
}

} // namespace
} // namespace vellum::test
