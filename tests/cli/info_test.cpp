// vellum info, for people and for programs.
#include "cli/small_tiffs.h"
#include "cli/vellum_process.h"
#include "support/json.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

TEST(Info, DescribesEveryPageOfTheBundledFax) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    const Outcome outcome = folder.run({"info", "fax.tif"});
    EXPECT_EQ(outcome.out, R"(fax.tif: 3 pages, byte order II, 83420 bytes
  page  pixels       bits  photometric  compression            strips  resolution     offset
     1  1728 x 2287  1     WhiteIsZero  Group 4                1       204 x 196 dpi   13308
     2  1728 x 2287  1     WhiteIsZero  Group 3 2D, fill bits  1       204 x 196 dpi   42976
     3  1728 x 2287  1     WhiteIsZero  modified Huffman       1       204 x 196 dpi   83146
)");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
}

TEST(Info, ListsEveryTagWithNumberNameTypeCountAndValues) {
    const WorkFolder folder;
    folder.put("buoy.tif", bundled("buoy.tif"));
    const Outcome outcome = folder.run({"info", "--tags", "buoy.tif"});
    EXPECT_EQ(outcome.out, R"(buoy.tif: 1 page, byte order II, 10752 bytes
  page  pixels     bits   photometric  compression        strips         resolution   offset
     1  240 x 160  3 x 8  RGB          LZW, differencing  4 of 40 lines  72 x 72 dpi   10458

  page 1
    256  ImageWidth                 SHORT      1  240
    257  ImageLength                SHORT      1  160
    258  BitsPerSample              SHORT      3  8, 8, 8
    259  Compression                SHORT      1  5
    262  PhotometricInterpretation  SHORT      1  2
    270  ImageDescription           ASCII     22  "A buoy in the evening"
    273  StripOffsets               LONG       4  8, 489, 2434, 6803
    277  SamplesPerPixel            SHORT      1  3
    278  RowsPerStrip               SHORT      1  40
    279  StripByteCounts            LONG       4  481, 1945, 4369, 3655
    282  XResolution                RATIONAL   1  72/1
    283  YResolution                RATIONAL   1  72/1
    284  PlanarConfiguration        SHORT      1  1
    296  ResolutionUnit             SHORT      1  2
    306  DateTime                   ASCII     20  "1996:04:19 09:30:00"
    317  Predictor                  SHORT      1  2
)");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
}

TEST(Info, ShowsMotorolaOrderTilesCentimetresAndUnknownValues) {
    tiff::Builder file(tiff::kMM);
    file.directory({tiff::shorts(256, {100}), tiff::shorts(257, {50}), tiff::shorts(258, {16, 16, 16}),
                    tiff::shorts(259, {50000}), tiff::shorts(262, {999}), tiff::shorts(266, {2}),
                    tiff::shorts(277, {3}), tiff::rationals(282, {11811, 100}), tiff::rationals(283, {118, 1}),
                    tiff::shorts(296, {3}), tiff::shorts(322, {64}), tiff::shorts(323, {32})});
    file.directory(
        {tiff::shorts(259, {1}), tiff::rationals(282, {1, 0}), tiff::rationals(283, {2, 1}), tiff::shorts(296, {1})});
    const WorkFolder folder;
    folder.put("odd.tif", file.bytes());
    const Outcome outcome = folder.run({"info", "odd.tif"});
    const std::string size = std::to_string(file.bytes().size());
    EXPECT_EQ(outcome.out, "odd.tif: 2 pages, byte order MM, " + size + R"( bytes
  page  pixels    bits    photometric      compression                      strips         resolution        offset
     1  100 x 50  3 x 16  photometric 999  compression 50000, fill order 2  tiles 64 x 32  118.11 x 118 /cm       8
     2  ? x ?     1       -                none                             0              1 x 2, no unit       180
)");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
}

// A directory of eight tags of every look.
tiff::Bytes manyTags() {
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t i = 0; i < 20; ++i) {
        numbers.push_back(i * 1000);
    }
    tiff::Builder file;
    file.directory({tiff::shorts(256, {8}), tiff::shorts(257, {1}),
                    tiff::ascii(270, "two\nlines, \"quoted\" \\ \x01 and \xE9"), tiff::longs(273, numbers),
                    tiff::ascii(305, std::string(150, 'x')), tiff::typed(40000, 6, 2, 1, {0xFF, 5}),
                    tiff::typed(40001, 9, 2, 4, {0xFFFFFFFE, 7}), tiff::typed(40002, 12, 3, 1, {1, 2, 3}),
                    tiff::typed(40002, 1, 1, 1, {4}), tiff::rationals(40003, {1, 2, 3, 4})});
    return file.bytes();
}

std::string tagLines(const std::string &output) {
    return output.substr(output.find("  page 1\n"));
}

TEST(Info, CutsLongLists) {
    const WorkFolder folder;
    folder.put("tags.tif", manyTags());
    const Outcome outcome = folder.run({"info", "--tags", "tags.tif"});
    EXPECT_EQ(tagLines(outcome.out), R"(  page 1
      256  ImageWidth        SHORT       1  8
      257  ImageLength       SHORT       1  1
      270  ImageDescription  ASCII      30  "two\nlines, \"quoted\" \\ \x01 and )"
                                     "\xC3\xA9"
                                     R"("
      273  StripOffsets      LONG       20  0, 1000, 2000, 3000, 4000, 5000, 6000, 7000, ...
      305  Software          ASCII     151  ")" +
                                         std::string(100, 'x') + R"("...
    40000  -                 SBYTE       2  -1, 5
    40001  -                 SLONG       2  -2, 7
    40002  -                 DOUBLE      3  1, 2, 3
    40002  -                                (again; the first entry counts)
    40003  -                 RATIONAL    2  1/2, 3/4
)");
    EXPECT_EQ(outcome.status, 0U);
}

TEST(Info, ShowsLongListsInFullWhenAsked) {
    const WorkFolder folder;
    folder.put("tags.tif", manyTags());
    const std::string out = folder.run({"info", "--all-values", "tags.tif"}).out;
    EXPECT_NE(out.find("LONG       20  0, 1000, 2000, 3000, 4000, 5000, 6000, 7000, 8000, 9000, 10000, 11000, 12000, "
                       "13000, 14000, 15000, 16000, 17000, 18000, 19000\n"),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("\"" + std::string(150, 'x') + "\"\n"), std::string::npos) << out;
}

TEST(Info, JsonIsOneDocumentWithAllMembers) {
    const WorkFolder folder;
    folder.put("small.tif", smallPage(tiff::kMM));
    const Outcome outcome = folder.run({"info", "--json", "small.tif"});
    EXPECT_EQ(outcome.out, R"({
  "files": [
    {
      "file": "small.tif",
      "bytes": 176,
      "byteOrder": "MM",
      "pages": [
        {
          "page": 1,
          "directoryOffset": 10,
          "width": 8,
          "height": 2,
          "bitsPerSample": 1,
          "samplesPerPixel": 1,
          "photometric": 1,
          "photometricName": "BlackIsZero",
          "compression": 1,
          "compressionOption": 1,
          "compressionName": "none",
          "fillOrder": 1,
          "subfileType": 0,
          "strips": 1,
          "rowsPerStrip": 2,
          "tileWidth": null,
          "tileLength": null,
          "resolution": {"x": 300, "y": 300, "unit": 2},
          "dpi": [300, 300]
        }
      ]
    }
  ]
}
)");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
}

TEST(Info, JsonHoldsTagsInFull) {
    const WorkFolder folder;
    folder.put("tags.tif", manyTags());
    const std::string out = folder.run({"info", "--json", "--tags", "tags.tif"}).out;
    const Json document = JsonReader::read(out);
    const auto &tags = document["files"].items.at(0)["pages"].items.at(0)["tags"].items;
    ASSERT_EQ(tags.size(), 10U);
    EXPECT_EQ(tags[3]["name"].text, "StripOffsets");
    EXPECT_EQ(tags[3]["values"].items.size(), 20U);
    EXPECT_EQ(tags[3]["values"].items.at(19).whole(), 19000U);
    EXPECT_TRUE(tags[5]["name"].isNull());
    for (const char *line :
         {R"({"tag": 270, "name": "ImageDescription", "type": "ASCII", "count": 30, )"
          R"("values": ["two\nlines, \"quoted\" \\ \u0001 and )"
          "\xC3\xA9\"]}",
          R"({"tag": 40000, "name": null, "type": "SBYTE", "count": 2, "values": [-1, 5]})",
          R"({"tag": 40002, "name": null, "type": "DOUBLE", "count": 3, "bytes": [1, 2, 3]})",
          R"({"tag": 40003, "name": null, "type": "RATIONAL", "count": 2, "values": [[1, 2], [3, 4]]})",
          R"({"tag": 40002, "name": null, "repeated": true})"}) {
        EXPECT_NE(out.find(line), std::string::npos) << line << "\n" << out;
    }
}

TEST(Info, JsonStaysOneDocumentWhenFilesFail) {
    const WorkFolder folder;
    folder.put("small.tif", smallPage());
    folder.put("text.tif", {'t', 'e', 'x', 't', ' ', ' ', ' ', ' '});
    const Outcome outcome = folder.run({"info", "--json", "text.tif", "nosuch.tif", "small.tif"});
    const Json document = JsonReader::read(outcome.out);
    const auto &files = document["files"].items;
    ASSERT_EQ(files.size(), 3U);
    EXPECT_EQ(files[0]["error"].whole(), 14U);
    EXPECT_EQ(files[0]["message"].text, "Invalid byte order.");
    EXPECT_EQ(files[1]["file"].text, "nosuch.tif");
    EXPECT_EQ(files[1]["error"].whole(), 6U);
    EXPECT_EQ(files[2]["pages"].items.size(), 1U);
    EXPECT_EQ(outcome.err, "vellum: text.tif: Invalid byte order.\n"
                           "vellum: nosuch.tif: General I/O error in reading or writting. (no such file)\n");
    EXPECT_EQ(outcome.status, 1U);
}

TEST(Info, GoesOnAfterFilesThatFailAndEndsWithStatus1) {
    const WorkFolder folder;
    folder.put("a.tif", smallPage());
    folder.put("empty.tif", {});
    folder.put("magic.tif", {'I', 'I', 43, 0, 8, 0, 0, 0});
    folder.makeFolder("folder");
    const Outcome outcome = folder.run({"info", "missing.tif", "empty.tif", "magic.tif", "folder", "a.tif"});
    EXPECT_EQ(outcome.out.rfind("a.tif: 1 page, byte order II, 176 bytes\n", 0), 0U) << outcome.out;
    EXPECT_EQ(outcome.err, R"(vellum: missing.tif: General I/O error in reading or writting. (no such file)
vellum: empty.tif: General I/O error in reading or writting.
vellum: magic.tif: File has not a valid TIFF format.
vellum: folder: General I/O error in reading or writting. (a folder)
)");
    EXPECT_EQ(outcome.status, 1U);
}

TEST(Info, TellsThePagesInFrontOfABrokenLink) {
    tiff::Builder file;
    addPage(file, {0}, 1, 1);
    addPage(file, {0}, 1, 1);
    file.linkTo(0x00FFFFFF);
    const WorkFolder folder;
    folder.put("cut.tif", file.bytes());
    const Outcome outcome = folder.run({"info", "cut.tif"});
    EXPECT_EQ(outcome.out.rfind("cut.tif: 2 pages, ", 0), 0U) << outcome.out;
    EXPECT_EQ(outcome.err, "vellum: cut.tif: the chain of pages breaks behind page 2: "
                           "General I/O error in reading or writting.\n");
    EXPECT_EQ(outcome.status, 1U);
}

TEST(Info, TellsEachPageOfALoopOnce) {
    tiff::Builder file;
    addPage(file, {0}, 1, 1);
    const std::uint32_t second = file.position();
    addPage(file, {0}, 1, 1);
    addPage(file, {0}, 1, 1);
    file.linkTo(second + 2); // the directory behind the page's one byte of data, on an even offset
    const WorkFolder folder;
    folder.put("loop.tif", file.bytes());
    const Outcome outcome = folder.run({"info", "loop.tif"});
    EXPECT_EQ(outcome.out.rfind("loop.tif: 3 pages, ", 0), 0U) << outcome.out;
    EXPECT_EQ(outcome.err, "vellum: loop.tif: the chain of pages leads back from page 3 to page 2.\n");
    EXPECT_EQ(outcome.status, 1U);
}

TEST(Info, TellsThatAPageCannotBeLoaded) {
    tiff::Builder file;
    addPage(file, {0}, 1, 1);
    file.directory({tiff::shorts(256, {8}), tiff::field(270, 2, 1000, 0x7000)});
    const WorkFolder folder;
    folder.put("half.tif", file.bytes());
    const Outcome outcome = folder.run({"info", "half.tif"});
    EXPECT_NE(outcome.out.find("\n     2  -      "), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.err, "vellum: half.tif: page 2: General I/O error in reading or writting.\n");
    EXPECT_EQ(outcome.status, 1U);
}

TEST(Info, AFileWithoutPagesIsNoFailure) {
    const WorkFolder folder;
    folder.put("none.tif", tiff::Builder().bytes());
    const Outcome outcome = folder.run({"info", "none.tif"});
    EXPECT_EQ(outcome.out, "none.tif: no pages, byte order II, 8 bytes\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
}

} // namespace
} // namespace vellum::test
