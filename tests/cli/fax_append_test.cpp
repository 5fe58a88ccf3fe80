// vellum fax-append: the code of a page behind the end of a file.
#include "cli/copied_files.h"
#include "cli/tiff_look.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;

const Bytes kTarget = {1, 2, 3, 4, 5};

// Modified Huffman code in three strips; what is in it does not matter.
Bytes faxOf(unsigned byteOrder, unsigned compression = 2, const Bytes &last = {0x55}) {
    tiff::Builder file(static_cast<std::uint16_t>(byteOrder));
    addPage(file, {0x77}, 1, 4);
    file.page({tiff::shorts(256, {8}), tiff::shorts(257, {5}), tiff::shorts(259, {compression}), tiff::shorts(262, {0}),
               tiff::shorts(278, {2})},
              {{0x11, 0x22}, {0x33, 0x44}, last});
    return file.bytes();
}

TEST(FaxAppend, AddsTheCodeOfAPageAsItLiesInTheFile) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    folder.put("target.bin", kTarget);
    const Bytes code = pagesIn(bundled("fax.tif")).at(2).pieces.at(0);
    const Outcome outcome = folder.run({"fax-append", "target.bin", "fax.tif:3"});
    EXPECT_EQ(outcome.out,
              "target.bin: fax.tif: page 3, now " + std::to_string(kTarget.size() + code.size()) + " bytes\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    Bytes expected = kTarget;
    expected.insert(expected.end(), code.begin(), code.end());
    EXPECT_TRUE(folder.get("target.bin") == expected);
    EXPECT_EQ(folder.files(), (Names{"fax.tif", "target.bin"}));
}

TEST(FaxAppend, AddsStripAfterStripInEitherByteOrder) {
    for (const unsigned order : {unsigned{tiff::kII}, unsigned{tiff::kMM}}) {
        const WorkFolder folder;
        folder.put("in.tif", faxOf(order));
        folder.put("target.bin", {});
        EXPECT_EQ(folder.run({"fax-append", "target.bin", "in.tif:2"}).err, "");
        EXPECT_EQ(folder.get("target.bin"), (Bytes{0x11, 0x22, 0x33, 0x44, 0x55}));
        EXPECT_EQ(folder.run({"fax-append", "target.bin", "in.tif"}).err, "");
        EXPECT_EQ(folder.get("target.bin"), (Bytes{0x11, 0x22, 0x33, 0x44, 0x55, 0x77}));
    }
}

TEST(FaxAppend, TheOffsetCountsFromTheEnd) {
    const WorkFolder folder;
    folder.put("in.tif", faxOf(tiff::kII));
    folder.put("target.bin", kTarget);
    EXPECT_EQ(folder.run({"fax-append", "target.bin", "in.tif", "--offset=-3"}).err, "");
    EXPECT_EQ(folder.get("target.bin"), (Bytes{1, 2, 0x77, 4, 5}));
    EXPECT_EQ(folder.run({"fax-append", "--offset", "2", "target.bin", "in.tif"}).err, "");
    EXPECT_EQ(folder.get("target.bin"), (Bytes{1, 2, 0x77, 4, 5, 0, 0, 0x77}));
    EXPECT_EQ(folder.run({"fax-append", "--offset=-9", "target.bin", "in.tif"}).err,
              "vellum: target.bin: --offset leads before the file's start.\n");
    EXPECT_EQ(folder.run({"fax-append", "--offset=2147483647", "target.bin", "in.tif"}).err,
              "vellum: target.bin: --offset leads too far.\n");
    EXPECT_EQ(folder.get("target.bin"), (Bytes{1, 2, 0x77, 4, 5, 0, 0, 0x77}));
}

TEST(FaxAppend, WhenThePageCannotBeAddedTheTargetStaysAsItWas) {
    tiff::Builder shorts;
    shorts.directory({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::shorts(259, {4}), tiff::shorts(273, {8}),
                      tiff::shorts(279, {1})});
    tiff::Builder damaged;
    damaged.directory({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::shorts(259, {4}), tiff::longs(273, {8}),
                       tiff::longs(279, {5000})});
    struct Case {
        Bytes file;
        const char *page;
        const char *message;
    };
    const Case cases[] = {
        {faxOf(tiff::kII, 1), ":2", "in.tif: page 2: the page is not coded with modified Huffman, Group 3 or Group 4."},
        {faxOf(tiff::kII), ":3", "in.tif: there is no page 3; the file has 2."},
        {brokenFile(), ":3", "in.tif: there is no page 3; the file has 2."},
        {shorts.bytes(), "",
         "in.tif: page 1: the places of its strips are not told as LONG values; 'vellum convert' makes a page that has "
         "them."},
        {damaged.bytes(), "", "in.tif: page 1: Unexpected end of file in reading data."},
        {{'x'}, "", "in.tif: Invalid byte order."},
    };
    for (const Case &entry : cases) {
        const WorkFolder folder;
        folder.put("in.tif", entry.file);
        folder.put("target.bin", kTarget);
        const Outcome outcome = folder.run({"fax-append", "target.bin", std::string("in.tif") + entry.page});
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, std::string("vellum: ") + entry.message + "\n");
        EXPECT_EQ(outcome.status, 1U);
        EXPECT_EQ(folder.get("target.bin"), kTarget);
        EXPECT_EQ(folder.files(), (Names{"in.tif", "target.bin"}));
    }
}

TEST(FaxAppend, ATargetThatIsMissingOrCannotBeWrittenIsReported) {
    const WorkFolder folder;
    folder.put("in.tif", faxOf(tiff::kII));
    EXPECT_EQ(folder.run({"fax-append", "none.bin", "in.tif"}).err, "vellum: none.bin: there is no such file.\n");
    EXPECT_EQ(folder.files(), Names{"in.tif"});
    folder.put("kept.bin", kTarget);
    SetFileAttributesA(folder.path("kept.bin").c_str(), FILE_ATTRIBUTE_READONLY);
    const Outcome denied = folder.run({"fax-append", "kept.bin", "in.tif"});
    SetFileAttributesA(folder.path("kept.bin").c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(denied.err, "vellum: kept.bin: cannot be written: access is denied.\n");
    EXPECT_EQ(denied.status, 1U);
    EXPECT_EQ(folder.get("kept.bin"), kTarget);
    EXPECT_EQ(folder.files(), (Names{"in.tif", "kept.bin"}));
}

} // namespace
} // namespace vellum::test
