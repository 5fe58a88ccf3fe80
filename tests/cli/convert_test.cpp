// vellum convert: the bitmaps it writes, and what is left on the disk when it cannot.
#include "cli/small_tiffs.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;

template <class T>
T load(const Bytes &bytes, std::size_t at) {
    T value{};
    if (at + sizeof value <= bytes.size()) {
        std::memcpy(&value, bytes.data() + at, sizeof value);
    }
    return value;
}

TEST(Convert, WritesTheFirstPageAsAWholeBitmapFile) {
    const WorkFolder folder;
    folder.put("small.tif", smallPage());
    const Outcome outcome = folder.run({"convert", "small.tif", "small.bmp"});
    EXPECT_EQ(outcome.out, "small.bmp: 8 x 2, 1 bit\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    const Bytes expected = {
        'B',  'M',  70, 0, 0,    0,    0,   0, 0, 0, 62, 0, 0, 0,       // file header: 70 bytes, rows at 62
        40,   0,    0,  0, 8,    0,    0,   0, 2, 0, 0,  0, 1, 0, 1, 0, // 8 x 2, 1 plane, 1 bit
        0,    0,    0,  0, 8,    0,    0,   0,                          // not compressed, 8 bytes of rows
        0x23, 0x2E, 0,  0, 0x23, 0x2E, 0,   0,                          // 11811 pixels a metre
        2,    0,    0,  0, 2,    0,    0,   0,                          // 2 colours
        0,    0,    0,  0, 255,  255,  255, 0,                          // black, white
        0x0F, 0,    0,  0, 0xA5, 0,    0,   0};                         // the lower row first
    EXPECT_EQ(folder.get("small.bmp"), expected);
    EXPECT_EQ(folder.files(), (Names{"small.bmp", "small.tif"}));
}

TEST(Convert, WritesColourPicturesWithBlueFirst) {
    const WorkFolder folder;
    folder.put("buoy.tif", bundled("buoy.tif"));
    const Outcome outcome = folder.run({"convert", "buoy.tif", "Buoy.BMP"});
    EXPECT_EQ(outcome.out, "Buoy.BMP: 240 x 160, 24 bits\n");
    EXPECT_EQ(outcome.status, 0U);
    const Bytes bitmap = folder.get("Buoy.BMP").value_or(Bytes());
    ASSERT_EQ(bitmap.size(), 14U + 40U + 160U * 720U);
    EXPECT_EQ(load<DWORD>(bitmap, 10), 54U);
    // The top left pixel stands at the start of the last row: the evening sky, more blue than red.
    const std::size_t sky = 54 + 159 * 720;
    EXPECT_EQ(bitmap[sky], 148);
    EXPECT_EQ(bitmap[sky + 1], 88);
    EXPECT_EQ(bitmap[sky + 2], 60);
}

TEST(Convert, WritesThePageThatIsAskedFor) {
    tiff::Builder file;
    addPage(file, {0x11}, 1, 1);
    addPage(file, {0x22}, 1, 1);
    addPage(file, {0x33}, 1, 1);
    const WorkFolder folder;
    folder.put("three.tif", file.bytes());
    const Outcome outcome = folder.run({"convert", "--page", "2", "three.tif", "two.bmp"});
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_EQ(load<DWORD>(folder.get("two.bmp").value_or(Bytes()), 62), 0x22U);
    EXPECT_EQ(folder.run({"convert", "three.tif", "one.bmp"}).status, 0U);
    EXPECT_EQ(load<DWORD>(folder.get("one.bmp").value_or(Bytes()), 62), 0x11U);
    EXPECT_EQ(folder.files(), (Names{"one.bmp", "three.tif", "two.bmp"}));

    const Outcome beyond = folder.run({"convert", "three.tif", "four.bmp", "--page=4"});
    EXPECT_EQ(beyond.err, "vellum: three.tif: there is no page 4; the file has 3.\n");
    EXPECT_EQ(beyond.status, 1U);
    EXPECT_FALSE(folder.get("four.bmp"));
}

TEST(Convert, NumbersTheFilesOfAllPages) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    folder.makeFolder("out.d");
    const Outcome outcome = folder.run({"convert", "--all", "fax.tif", "out.d/fax.bmp"});
    EXPECT_EQ(outcome.out, "out.d/fax-001.bmp: 1728 x 2287, 1 bit\n"
                           "out.d/fax-002.bmp: 1728 x 2287, 1 bit\n"
                           "out.d/fax-003.bmp: 1728 x 2287, 1 bit\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    for (const char *name : {"out.d/fax-001.bmp", "out.d/fax-002.bmp", "out.d/fax-003.bmp"}) {
        EXPECT_EQ(folder.get(name).value_or(Bytes()).size(), 62U + 2287U * 216U) << name;
    }
}

TEST(Convert, ReplacesAnExistingBitmap) {
    const WorkFolder folder;
    folder.put("small.tif", smallPage());
    folder.put("small.bmp", Bytes(100000, 1));
    EXPECT_EQ(folder.run({"convert", "small.tif", "small.bmp"}).status, 0U);
    EXPECT_EQ(folder.get("small.bmp").value_or(Bytes()).size(), 70U);
    EXPECT_EQ(folder.files(), (Names{"small.bmp", "small.tif"}));
}

TEST(Convert, WritesWhatThereIsOfACutPageAndWarns) {
    tiff::Builder file;
    addPage(file, {0xFF, 0xFF}, 1000, 1); // 2 of 1000 lines; the rest of the file is read as lines, too
    Bytes bytes = file.bytes();
    const WorkFolder folder;
    folder.put("cut.tif", bytes);
    const Outcome outcome = folder.run({"convert", "cut.tif", "cut.bmp"});
    EXPECT_EQ(outcome.out, "cut.bmp: 8 x 1000, 1 bit\n");
    EXPECT_EQ(outcome.err, "vellum: cut.tif: page 1: warning: only a part was there: "
                           "Unexpected end of file in reading data.\n");
    EXPECT_EQ(outcome.status, 1U);
    const Bytes bitmap = folder.get("cut.bmp").value_or(Bytes());
    ASSERT_EQ(bitmap.size(), 62U + 4000U);
    EXPECT_EQ(load<DWORD>(bitmap, 62 + 999 * 4), 0xFFU);
    EXPECT_EQ(load<DWORD>(bitmap, 62), 0U);
}

TEST(Convert, LeavesAnOldBitmapAloneWhenThePageCannotBeRead) {
    tiff::Builder file;
    addPage(file, {0xFF}, 1, 50000);
    const WorkFolder folder;
    folder.put("odd.tif", file.bytes());
    folder.put("old.bmp", {1, 2, 3});
    const Outcome outcome = folder.run({"convert", "odd.tif", "old.bmp"});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vellum: odd.tif: page 1: Image compression type is not known.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.get("old.bmp"), (Bytes{1, 2, 3}));
    EXPECT_EQ(folder.files(), (Names{"odd.tif", "old.bmp"}));
}

TEST(Convert, AllGoesOnAfterAPageThatFails) {
    const WorkFolder folder;
    folder.put("three.tif", threePagesWithABadOne());
    const Outcome outcome = folder.run({"convert", "three.tif", "p.bmp", "--all"});
    EXPECT_EQ(outcome.out, "p-001.bmp: 8 x 1, 1 bit\np-003.bmp: 8 x 1, 1 bit\n");
    EXPECT_EQ(outcome.err, "vellum: three.tif: page 2: Image compression type is not known.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.files(), (Names{"p-001.bmp", "p-003.bmp", "three.tif"}));
}

TEST(Convert, AllTellsThatTheChainBreaks) {
    tiff::Builder file;
    addPage(file, {0x11}, 1, 1);
    file.linkTo(0x00FFFFFF);
    const WorkFolder folder;
    folder.put("cut.tif", file.bytes());
    const Outcome outcome = folder.run({"convert", "cut.tif", "p.bmp", "--all"});
    EXPECT_EQ(outcome.out, "p-001.bmp: 8 x 1, 1 bit\n");
    EXPECT_EQ(outcome.err, "vellum: cut.tif: the chain of pages breaks behind page 1: "
                           "General I/O error in reading or writting.\n");
    EXPECT_EQ(outcome.status, 1U);
    // The page itself is whole.
    EXPECT_EQ(folder.run({"convert", "cut.tif", "one.bmp"}).status, 0U);
}

TEST(Convert, JpegWithoutTheCompanionModuleIsRefusedWithoutAMessageBox) {
    tiff::Builder file;
    addPage(file, {0xFF}, 1, 6);
    const WorkFolder folder;
    folder.put("jpeg.tif", file.bytes());
    const Outcome outcome = folder.run({"convert", "jpeg.tif", "jpeg.bmp"});
    EXPECT_EQ(outcome.err,
              "vellum: jpeg.tif: page 1: JPEG data need the companion module DCTLIB32.DLL, which is not there.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_FALSE(folder.get("jpeg.bmp"));
}

TEST(Convert, TellsWhyTheInputCannotBeRead) {
    const WorkFolder folder;
    const Outcome outcome = folder.run({"convert", "missing.tif", "small.bmp"});
    EXPECT_EQ(outcome.err, "vellum: missing.tif: General I/O error in reading or writting. (no such file)\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_TRUE(folder.files().empty());
}

} // namespace
} // namespace vellum::test
