// CALS files in vellum.exe: read and written by convert, told of by info.
#include "cals/cals_pictures.h"
#include "cli/bitmaps.h"
#include "cli/small_tiffs.h"
#include "cli/vellum_process.h"
#include "support/coded_tiff.h"
#include "support/json.h"
#include "support/sample_manifest.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

Records withTexts(const std::string &counts) {
    return {"srcdocid: DRAWING 4711", "dstdocis: NONE", "txtfileid: \"A\" \x01", "figid: NONE",        "scrgph: NONE",
            "doccls: NONE",           "rtype: 1",       "rorient: 000,270",      "rpelcnt: " + counts, "rdensty: 0300",
            "notes: SHEET 1"};
}

// Every record of a file as it stands there, without the blanks behind it.
Records recordsIn(const std::optional<Bytes> &file) {
    Records records = recordsOf(file.value_or(Bytes()));
    for (std::string &record : records) {
        record.resize(record.find_last_not_of(' ') + 1);
    }
    while (!records.empty() && records.back().empty()) {
        records.pop_back();
    }
    return records;
}

Bytes codeIn(const std::optional<Bytes> &file) {
    return file && file->size() > 2048 ? Bytes(file->begin() + 2048, file->end()) : Bytes();
}

void expectFails(const Outcome &outcome, const std::string &message) {
    EXPECT_EQ(outcome.err, "vellum: " + message + "\n");
    EXPECT_EQ(outcome.status, 1U);
}

// ---------------------------------------------------------------- convert

TEST(ConvertCals, ToTiffAndBackIsTheSameCode) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    const WorkFolder folder;
    folder.put("in.cal", calsFile(withTexts(picture.counts()), picture.code()));
    EXPECT_EQ(folder.run({"convert", "in.cal", "page.tif"}).out, "page.tif: page 1: 45 x 23, 1 bit, g4\n");
    const std::string told = folder.run({"info", "page.tif"}).out;
    EXPECT_NE(told.find("WhiteIsZero  Group 4      1       300 x 300 dpi"), std::string::npos) << told;
    EXPECT_EQ(folder.run({"convert", "page.tif", "back.cals"}).out, "back.cals: 45 x 23, 1 bit\n");
    EXPECT_EQ(codeIn(folder.get("back.cals")), picture.code());
    EXPECT_EQ(
        recordsIn(folder.get("back.cals")),
        (Records{"srcdocid: NONE", "dstdocis: NONE", "txtfileid: NONE", "figid: NONE", "scrgph: NONE", "doccls: NONE",
                 "rtype: 1", "rorient: 090,270", "rpelcnt: 000045,000023", "rdensty: 0300", "notes: NONE"}));
}

TEST(ConvertCals, ToABitmapIsBlackAndWhite) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    const WorkFolder folder;
    folder.put("in.cal", calsFile(withTexts(picture.counts()), picture.code()));
    EXPECT_EQ(folder.run({"convert", "in.cal", "out.bmp"}).out, "out.bmp: 45 x 23, 1 bit\n");
    BitmapSpec spec;
    spec.width = 45;
    spec.height = 23;
    spec.colors = {color(255, 255, 255), color(0, 0, 0)};
    spec.rows = picture.dibRows();
    spec.pixelsPerMeter = 11811;
    EXPECT_EQ(folder.get("out.bmp"), bitmapFile(spec));
    EXPECT_EQ(folder.run({"convert", "out.bmp", "back.cal"}).status, 0U);
    EXPECT_EQ(codeIn(folder.get("back.cal")), picture.code());
    EXPECT_EQ(recordsIn(folder.get("back.cal")).at(9), "rdensty: 0300");
}

TEST(ConvertCals, WhatIsBlackInATiffIsBlackWhateverItsZeroMeans) {
    const WorkFolder folder;
    folder.put("in.tif", smallPage()); // black is zero
    EXPECT_EQ(folder.run({"convert", "in.tif", "out.cal"}).status, 0U);
    EXPECT_EQ(codeIn(folder.get("out.cal")),
              encodeGroup4({rowFromRuns({1, 1, 1, 2, 1, 1, 1}), rowFromRuns({0, 4, 4})}));
}

TEST(ConvertCals, KeepsTextsAndOrientationOfACalsFile) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    const Records records = withTexts(picture.counts());
    const WorkFolder folder;
    folder.put("in.cal", calsFile(records, picture.code()));
    EXPECT_EQ(folder.run({"convert", "in.cal", "out.cal"}).status, 0U);
    EXPECT_EQ(recordsIn(folder.get("out.cal")), records);
    EXPECT_EQ(folder
                  .run({"convert", "--note", "notes=SHEET 2", "--note=figid=", "--orientation", "-90,-270", "in.cal",
                        "out.cal"})
                  .status,
              0U);
    const Records changed = recordsIn(folder.get("out.cal"));
    ASSERT_EQ(changed.size(), 11U);
    EXPECT_EQ(changed[0], records[0]);
    EXPECT_EQ(changed[3], "figid:");
    EXPECT_EQ(changed[7], "rorient: -90,-270");
    EXPECT_EQ(changed[10], "notes: SHEET 2");
}

TEST(ConvertCals, TakesTextsFromRecordsAsOtherProgramsSpellThem) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    const WorkFolder folder;
    Records records = with(with(pictureRecords(picture.counts()), "dstdocid: PLANT 7"), "srcdocid: DRAWING 4711");
    records = with(with(records, "txtfilid: SPEC-12 \r\n"), "srcgph: FIG 3");
    folder.put("in.cal", calsFile(records, picture.code()));
    EXPECT_EQ(folder.run({"convert", "in.cal", "out.cal"}).status, 0U);
    EXPECT_EQ(recordsIn(folder.get("out.cal")),
              (Records{"srcdocid: DRAWING 4711", "dstdocis: PLANT 7", "txtfileid: SPEC-12", "figid: NONE",
                       "scrgph: FIG 3", "doccls: NONE", "rtype: 1", "rorient: 090,270", "rpelcnt: 000045,000023",
                       "rdensty: 0200", "notes: NONE"}));
}

TEST(ConvertCals, ATextThatFillsTheRecordOfAShorterNameLosesItsLastCharacter) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    const WorkFolder folder;
    const Records records = with(pictureRecords(picture.counts()), "txtfilid: " + std::string(116, 'x') + "y");
    folder.put("in.cal", calsFile(with(records, "dstdocid: " + std::string(117, 'z')), picture.code()));
    EXPECT_EQ(folder.run({"convert", "in.cal", "out.cal"}).status, 0U);
    const Records written = recordsIn(folder.get("out.cal"));
    ASSERT_EQ(written.size(), 11U);
    EXPECT_EQ(written[1], "dstdocis: " + std::string(117, 'z'));
    EXPECT_EQ(written[2], "txtfileid: " + std::string(116, 'x'));
    EXPECT_EQ(folder.run({"info", "out.cal"}).status, 0U);
}

TEST(ConvertCals, TheUsualSpellingAndTheCommandLineGoBeforeTheOtherSpelling) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    const WorkFolder folder;
    Records records = with(with(pictureRecords(picture.counts()), "dstdocid: OTHER"), "dstdocis: USUAL");
    records = with(with(records, "srcgph: OTHER"), "txtfilid:");
    folder.put("in.cal", calsFile(records, picture.code()));
    EXPECT_EQ(folder.run({"convert", "--note", "scrgph=GIVEN", "in.cal", "out.cal"}).status, 0U);
    const Records written = recordsIn(folder.get("out.cal"));
    ASSERT_EQ(written.size(), 11U);
    EXPECT_EQ(written[1], "dstdocis: USUAL");
    EXPECT_EQ(written[2], "txtfileid: NONE");
    EXPECT_EQ(written[4], "scrgph: GIVEN");
}

TEST(ConvertCals, WarnsWhenTheResolutionsDiffer) {
    const auto converted = [](std::uint32_t horizontal, std::uint32_t vertical) {
        const WorkFolder folder;
        tiff::Builder file;
        std::vector<tiff::Entry> entries = entriesOf({.width = 8, .height = 1, .key = VELLUM_KEY_NONE});
        entries.push_back(tiff::rationals(282, {horizontal, 1}));
        entries.push_back(tiff::rationals(283, {vertical, 1}));
        file.page(entries, {{0x0F}});
        folder.put("in.tif", file.bytes());
        const Outcome outcome = folder.run({"convert", "in.tif", "out.cal"});
        EXPECT_EQ(outcome.out, "out.cal: 8 x 1, 1 bit\n");
        EXPECT_EQ(outcome.status, 0U);
        return outcome.err + recordsIn(folder.get("out.cal")).at(9);
    };
    EXPECT_EQ(converted(204, 196), "vellum: in.tif: page 1: warning: CALS files hold one resolution: 204 dpi in place "
                                   "of 196 vertically.\nrdensty: 0204");
    EXPECT_EQ(converted(300, 300), "rdensty: 0300");
    EXPECT_EQ(converted(300, 0), "rdensty: 0300");
}

TEST(ConvertCals, IsKnownByItsContentToo) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    const WorkFolder folder;
    folder.put("drawing", picture.file());
    EXPECT_EQ(folder.run({"convert", "drawing", "out.tif"}).status, 0U);
    EXPECT_EQ(folder.run({"info", "drawing"}).out.substr(0, 37), "drawing: CALS raster file, 45 x 23, 2");
}

TEST(ConvertCals, AllPagesAreFilesOfTheirOwn) {
    const WorkFolder folder;
    folder.put("in.tif", threePagesWithABadOne());
    const Outcome outcome = folder.run({"convert", "--all", "in.tif", "out.cal"});
    EXPECT_EQ(outcome.out, "out-001.cal: 8 x 1, 1 bit\nout-003.cal: 8 x 1, 1 bit\n");
    expectFails(outcome, "in.tif: page 2: Image compression type is not known.");
    EXPECT_EQ(codeIn(folder.get("out-003.cal")), encodeGroup4({rowFromRuns({0, 2, 2, 2, 2})}));
}

TEST(ConvertCals, APartIsWrittenWithAWarning) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    const WorkFolder folder;
    Bytes cut = picture.file();
    cut.resize(2048 + picture.code().size() / 2);
    folder.put("cut.cal", cut);
    folder.put("bare.cal", calsHeader(pictureRecords()));
    for (const char *output : {"out.tif", "out.bmp", "out.cal"}) {
        expectFails(folder.run({"convert", "cut.cal", output}),
                    "cut.cal: page 1: warning: only a part was there: Unexpected end of file in reading data.");
        EXPECT_TRUE(folder.get(output));
    }
    expectFails(folder.run({"convert", "bare.cal", "bare.bmp"}),
                "bare.cal: page 1: warning: only a part was there: Unexpected end of file in reading data.");
    EXPECT_TRUE(folder.get("bare.bmp"));
}

TEST(ConvertCals, WhatIsNoCalsFileIsSaidSo) {
    const WorkFolder folder;
    folder.put("short.cal", Bytes(100, BYTE{' '}));
    folder.put("type.cal", calsFile(without(pictureRecords(), "rtype"), {0x80}));
    folder.put("negative.cal", calsFile(pictureRecords("-5,4"), {0x80}));
    folder.put("huge.cal", calsFile(pictureRecords("100000,100000"), Bytes(900, BYTE{0x55})));
    folder.put("damaged.cal", calsFile(pictureRecords(), {1, 0, 0, 0x55, 0x55}));
    const auto failure = [&folder](const char *name) { return folder.run({"convert", name, "out.tif"}); };
    expectFails(failure("short.cal"), "short.cal: page 1: File has not a valid CALS format.");
    expectFails(failure("type.cal"), "type.cal: page 1: File has not a valid CALS format.");
    expectFails(failure("negative.cal"), "negative.cal: page 1: the header claims a picture of -5 x 4 pixels.");
    expectFails(failure("damaged.cal"), "damaged.cal: page 1: Error during compression or decompression.");
    expectFails(failure("missing.cal"), "missing.cal: there is no such file.");
    EXPECT_EQ(failure("huge.cal").status, 1U);
    EXPECT_FALSE(folder.get("out.tif"));
}

TEST(ConvertCals, HoldsBilevelPagesOnly) {
    const WorkFolder folder;
    folder.put("grey.bmp", bitmapFile(patternBitmap(8)));
    expectFails(folder.run({"convert", "grey.bmp", "out.cal"}),
                "grey.bmp: page 1: CALS files hold bilevel pages only; the page has 8 bits per pixel.");
    const BilevelPicture wide{Rows(1, Row(33281))};
    folder.put("wide.tif", codedTiff({.width = 33281, .height = 1}, {wide.code()}));
    expectFails(folder.run({"convert", "wide.tif", "out.cal"}),
                "wide.tif: page 1: the page is wider than 33280 pixels.");
    EXPECT_FALSE(folder.get("out.cal"));
}

// Two gigabytes of blank lines, of which each is one bit.
TEST(ConvertCals, APictureBeyondAllDrawingsIsRefusedAtOnce) {
    const WorkFolder folder;
    folder.put("huge.cal", calsFile(pictureRecords("8000000,2100"), Bytes(952, BYTE{0xFF})));
    const ULONGLONG begin = GetTickCount64();
    const Outcome outcome = folder.run({"convert", "huge.cal", "out.tif"});
    EXPECT_LT(GetTickCount64() - begin, 2000U);
    EXPECT_NE(outcome.err.find("Not enough memory."), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.files(), std::vector<std::string>{"huge.cal"});
}

TEST(ConvertCals, OptionsThatMakeNoSenseAreRefused) {
    const WorkFolder folder;
    folder.put("in.cal", bilevelPicture(9, 4).file());
    const auto refused = [&folder](std::vector<std::string> words, const std::string &why) {
        words.insert(words.begin(), "convert");
        const Outcome outcome = folder.run(words);
        EXPECT_EQ(outcome.status, 2U);
        EXPECT_NE(outcome.err.find(why), std::string::npos) << outcome.err;
    };
    refused({"--note", "notes=x", "in.cal", "out.tif"}, "'--note' is for CALS output only");
    refused({"--orientation", "0,90", "in.cal", "out.bmp"}, "'--orientation' is for CALS output only");
    refused({"--compression", "g4", "in.cal", "out.cal"}, "'--compression' is for TIFF output only");
    refused({"--append", "in.cal", "out.cal"}, "'--append' is for TIFF output only");
    refused({"--note", "rtype=2", "in.cal", "out.cal"}, "wants KEY=TEXT with one of srcdocid, dstdocis, txtfileid");
    refused({"--note", "notes", "in.cal", "out.cal"}, "wants KEY=TEXT");
    refused({"--note", "notes=a", "--note", "notes=b", "in.cal", "out.cal"}, "has 'notes' twice");
    refused({"--note", "notes=" + std::string(121, 'x'), "in.cal", "out.cal"},
            "the text of 'notes' is longer than 120 bytes");
    for (const char *angles : {"90", "90,", ",90", "a,b", "90,270,0", "90, 270", ""}) {
        refused({"--orientation", angles, "in.cal", "out.cal"}, "wants two angles like 90,270");
    }
    refused({"in.cal", "out.txt"}, "must end in .bmp, .tif, .tiff, .cal or .cals");
    refused({"in.cal", "in.cal"}, "the output would replace the input");
    EXPECT_EQ(folder.files(), std::vector<std::string>{"in.cal"});
}

TEST(ConvertCals, TheLongestTextFits) {
    const WorkFolder folder;
    folder.put("in.cal", bilevelPicture(9, 4).file());
    const std::string text(120, 'x');
    EXPECT_EQ(folder.run({"convert", "--note", "notes=" + text, "in.cal", "out.cal"}).status, 0U);
    EXPECT_EQ(recordsIn(folder.get("out.cal")).at(10), "notes: " + text);
}

// ---------------------------------------------------------------- info

TEST(InfoCals, TellsTheRecords) {
    const WorkFolder folder;
    folder.put("in.cal", calsFile(with(withTexts("000009,000004"), "no keyword"), {0x80}));
    const Outcome outcome = folder.run({"info", "in.cal"});
    EXPECT_EQ(outcome.out, "in.cal: CALS raster file, 9 x 4, 300 dpi, orientation 0,270, 2049 bytes\n"
                           "  record  keyword    value\n"
                           "       0  srcdocid   \"DRAWING 4711\"\n"
                           "       1  dstdocis   \"NONE\"\n"
                           "       2  txtfileid  \"\\\"A\\\" \\x01\"\n"
                           "       3  figid      \"NONE\"\n"
                           "       4  scrgph     \"NONE\"\n"
                           "       5  doccls     \"NONE\"\n"
                           "       6  rtype      \"1\"\n"
                           "       7  rorient    \"000,270\"\n"
                           "       8  rpelcnt    \"000009,000004\"\n"
                           "       9  rdensty    \"0300\"\n"
                           "      10  notes      \"SHEET 1\"\n"
                           "      11  -          \"no keyword\"\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
}

TEST(InfoCals, TellsTheRecordsOfAHeaderThatDescribesNoPicture) {
    const WorkFolder folder;
    folder.put("in.cal", calsHeader({"notes: lonely"}));
    const Outcome outcome = folder.run({"info", "in.cal"});
    EXPECT_EQ(outcome.out, "in.cal: CALS raster file, 2048 bytes\n  record  keyword  value\n       0  notes    "
                           "\"lonely\"\n");
    expectFails(outcome, "in.cal: File has not a valid CALS format.");
}

TEST(InfoCals, TellsOfCountsBelow0) {
    const WorkFolder folder;
    folder.put("in.cal", calsFile(pictureRecords("-00001,000004"), {0x80}));
    const Outcome outcome = folder.run({"info", "in.cal"});
    EXPECT_EQ(outcome.out, "in.cal: CALS raster file, 2049 bytes\n"
                           "  record  keyword  value\n"
                           "       0  rtype    \"1\"\n"
                           "       1  rorient  \"090,270\"\n"
                           "       2  rpelcnt  \"-00001,000004\"\n"
                           "       3  rdensty  \"0200\"\n");
    expectFails(outcome, "in.cal: the header claims a picture of -1 x 4 pixels.");
    folder.put("in.cal", calsFile(pictureRecords("5,-2147483648"), {0x80}));
    const Outcome told = folder.run({"info", "--json", "in.cal"});
    const Json document = JsonReader::read(told.out);
    const Json &file = document["files"].items.at(0);
    EXPECT_EQ(file["error"].whole(), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(file["message"].text, "the header claims a picture of 5 x -2147483648 pixels.");
    EXPECT_EQ(file["records"].items.size(), 4U);
    expectFails(told, "in.cal: the header claims a picture of 5 x -2147483648 pixels.");
}

TEST(InfoCals, JsonHasTheNumbersAndTheRecords) {
    const WorkFolder folder;
    folder.put("in.cal", calsFile(withTexts("000009,000004"), {0x80}));
    folder.put("bad.cal", Bytes(10));
    const Outcome outcome = folder.run({"info", "--json", "in.cal", "bad.cal", "none.cal"});
    EXPECT_EQ(outcome.status, 1U);
    const Json document = JsonReader::read(outcome.out);
    const std::vector<Json> &files = document["files"].items;
    ASSERT_EQ(files.size(), 3U);
    EXPECT_EQ(files[0]["file"].text, "in.cal");
    EXPECT_EQ(files[0]["format"].text, "CALS");
    EXPECT_EQ(files[0]["bytes"].whole(), 2049U);
    EXPECT_EQ(files[0]["width"].whole(), 9U);
    EXPECT_EQ(files[0]["height"].whole(), 4U);
    EXPECT_EQ(files[0]["dpi"].items.at(1).whole(), 300U);
    EXPECT_EQ(files[0]["orientation"].items.at(1).whole(), 270U);
    ASSERT_EQ(files[0]["records"].items.size(), 11U);
    EXPECT_EQ(files[0]["records"].items[10]["record"].whole(), 10U);
    EXPECT_EQ(files[0]["records"].items[10]["keyword"].text, "notes");
    EXPECT_EQ(files[0]["records"].items[10]["value"].text, "SHEET 1");
    EXPECT_EQ(files[1]["error"].whole(), DWORD{18});
    EXPECT_EQ(files[1]["message"].text, "File has not a valid CALS format.");
    EXPECT_EQ(files[2]["message"].text, "there is no such file.");
    EXPECT_TRUE(files[2]["records"].items.empty());
}

TEST(InfoCals, TellsEveryRealFile) {
    SKIP_WITHOUT_SAMPLES();
    const WorkFolder folder;
    for (const Sample &sample : samplesOfKind({"cals"})) {
        SCOPED_TRACE(sample.file);
        const bool good = sample.entry["expected"]["info"].text == "ok";
        folder.put("real.cal", readFile(sample.path()).value_or(Bytes()));
        const Outcome outcome = folder.run({"info", "real.cal"});
        EXPECT_EQ(outcome.status, good ? 0U : 1U);
        EXPECT_EQ(outcome.err.empty(), good) << outcome.err;
    }
}

} // namespace
} // namespace vellum::test
