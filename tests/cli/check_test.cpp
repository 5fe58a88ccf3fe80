// vellum check: a verdict for every page, whatever the files hold.
#include "cals/cals_pictures.h"
#include "cli/small_tiffs.h"
#include "cli/vellum_process.h"
#include "support/sample_manifest.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

TEST(Check, GivesAVerdictForEveryPage) {
    const WorkFolder folder;
    folder.put("buoy.tif", bundled("buoy.tif"));
    folder.put("fax.tif", bundled("fax.tif"));
    const Outcome outcome = folder.run({"check", "fax.tif", "buoy.tif"});
    EXPECT_EQ(outcome.out, R"(ok      fax.tif: page 1 of 3
ok      fax.tif: page 2 of 3
ok      fax.tif: page 3 of 3
ok      buoy.tif: page 1 of 1
4 pages in 2 files checked, no failure
)");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
}

TEST(Check, GoesOnAfterEveryKindOfFailure) {
    tiff::Builder cut;
    addPage(cut, {0xFF}, 60000, 1);
    tiff::Builder pages;
    addPage(pages, {0}, 1, 50000);
    addPage(pages, {0}, 1, 1);
    addPage(pages, {0}, 1, 6);
    pages.directory({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::shorts(258, {2})});
    pages.directory({tiff::shorts(256, {8})});
    pages.directory({tiff::shorts(256, {0}), tiff::longs(257, {0xFFFFFFFF}), tiff::longs(273, {8})});
    pages.directory({tiff::shorts(256, {8}), tiff::field(270, 2, 1000, 0x7000)});
    const WorkFolder folder;
    folder.put("cut.tif", cut.bytes());
    folder.put("text.tif", {'t', 'e', 'x', 't'});
    folder.put("pages.tif", pages.bytes());
    folder.put("none.tif", tiff::Builder().bytes());
    folder.put("good.tif", smallPage());
    const Outcome outcome =
        folder.run({"check", "cut.tif", "text.tif", "missing.tif", "pages.tif", "none.tif", "good.tif"});
    const std::string lines = std::to_string(cut.bytes().size() - 8);
    EXPECT_EQ(outcome.out, "FAILED  cut.tif: page 1 of 1: after line " + lines +
                               R"( of 60000: Unexpected end of file in reading data.
FAILED  text.tif: Invalid byte order.
FAILED  missing.tif: General I/O error in reading or writting. (no such file)
FAILED  pages.tif: page 1 of 7: Image compression type is not known.
ok      pages.tif: page 2 of 7
FAILED  pages.tif: page 3 of 7: JPEG data need the companion module DCTLIB32.DLL, which is not there.
FAILED  pages.tif: page 4 of 7: Color format is not supported.
FAILED  pages.tif: page 5 of 7: Indispensable tags are missing.
FAILED  pages.tif: page 6 of 7: the page is 0 pixels wide.
FAILED  pages.tif: page 7 of 7: General I/O error in reading or writting.
FAILED  none.tif: there is no page in the file.
ok      good.tif: page 1 of 1
9 pages in 6 files checked, 10 failures
)");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 1U);
}

TEST(Check, WalksFoldersForTiffFiles) {
    const WorkFolder folder;
    folder.makeFolder("archive");
    folder.makeFolder("archive/b");
    folder.makeFolder("archive/a");
    folder.makeFolder("archive/a/deep");
    folder.put("archive/z.tif", smallPage());
    folder.put("archive/notes.txt", {'x'});
    folder.put("archive/x.tif.bak", {'x'});
    folder.put("archive/tif", {'x'});
    folder.put("archive/b/UPPER.TIFF", smallPage());
    folder.put("archive/a/deep/one.Tif", smallPage());
    const Outcome outcome = folder.run({"check", "archive"});
    EXPECT_EQ(outcome.out, R"(ok      archive/z.tif: page 1 of 1
ok      archive/a/deep/one.Tif: page 1 of 1
ok      archive/b/UPPER.TIFF: page 1 of 1
3 pages in 3 files checked, no failure
)");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_EQ(folder.run({"check", "archive\\b"}).out.rfind("ok      archive\\b\\UPPER.TIFF: page 1 of 1\n", 0), 0U);
}

TEST(Check, DecodesCalsFiles) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    const WorkFolder folder;
    folder.put("plate.cal", picture.file());
    folder.put("drawing", picture.file()); // known by its content
    folder.put("large.cals", bilevelPicture(2000, 700).file());
    const Outcome outcome = folder.run({"check", "plate.cal", "drawing", "large.cals"});
    EXPECT_EQ(outcome.out, R"(ok      plate.cal: page 1 of 1
ok      drawing: page 1 of 1
ok      large.cals: page 1 of 1
3 pages in 3 files checked, no failure
)");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
}

// Blank lines of which each is a bit, so that it is known where a failure comes.
TEST(Check, GoesOnAfterEveryKindOfFailureOfCalsFiles) {
    const WorkFolder folder;
    const auto put = [&folder](const std::string &name, const std::string &counts, const Bytes &code) {
        folder.put(name, calsFile(pictureRecords(counts), code));
    };
    put("good.cal", "000009,000008", {0xFF});
    put("cut.cal", "000009,000020", {0xFF, 0xFF});
    put("ended.cal", "000009,000020", {0xFF, 0x00, 0x10, 0x01});
    put("damaged.cal", "000009,000004", {1, 0, 0, 0x55, 0x55});
    put("damaged later.cal", "000009,000020", {0xFF, 0xFF, 1, 0, 0, 0x55, 0x55});
    put("bare.cal", "000009,000004", {});
    put("negative.cal", "-5,4", {0xFF});
    put("zero.cal", "000000,000004", {0xFF});
    put("beyond.cal", "8000000,2100", Bytes(952, BYTE{0xFF}));
    folder.put("type.cal", calsFile(without(pictureRecords(), "rtype"), {0xFF}));
    folder.put("short.cal", Bytes(100, BYTE{' '}));
    folder.put("tiff.cal", smallPage());
    const Outcome outcome =
        folder.run({"check", "cut.cal", "ended.cal", "damaged.cal", "damaged later.cal", "bare.cal", "negative.cal",
                    "zero.cal", "beyond.cal", "type.cal", "short.cal", "tiff.cal", "missing.cal", "good.cal"});
    EXPECT_EQ(outcome.out,
              R"(FAILED  cut.cal: page 1 of 1: after line 16 of 20: Unexpected end of file in reading data.
FAILED  ended.cal: page 1 of 1: after line 8 of 20: Unexpected End of Facsimile Block (EOFB)
FAILED  damaged.cal: page 1 of 1: Error during compression or decompression.
FAILED  damaged later.cal: page 1 of 1: after line 16 of 20: Error during compression or decompression.
FAILED  bare.cal: page 1 of 1: Unexpected end of file in reading data.
FAILED  negative.cal: the header claims a picture of -5 x 4 pixels.
FAILED  zero.cal: File has not a valid CALS format.
FAILED  beyond.cal: page 1 of 1: Not enough memory.
FAILED  type.cal: File has not a valid CALS format.
FAILED  short.cal: File has not a valid CALS format.
FAILED  tiff.cal: File has not a valid CALS format.
FAILED  missing.cal: there is no such file.
ok      good.cal: page 1 of 1
7 pages in 13 files checked, 12 failures
)");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 1U);
}

TEST(Check, WalksFoldersOfBothKindsOfFiles) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    Bytes cut = picture.file();
    cut.resize(2050);
    const WorkFolder folder;
    folder.makeFolder("archive");
    folder.makeFolder("archive/plates");
    folder.put("archive/b.CAL", picture.file());
    folder.put("archive/a.tif", smallPage());
    folder.put("archive/c.tiff", picture.file()); // whatever its name is
    folder.put("archive/calendar.txt", {'x'});
    folder.put("archive/plates/d.Cals", picture.file());
    folder.put("archive/plates/e.cal", {'t', 'e', 'x', 't'});
    folder.put("archive/plates/drawing", picture.file()); // whose name does not tell
    const Outcome outcome = folder.run({"check", "archive"});
    EXPECT_EQ(outcome.out, R"(ok      archive/a.tif: page 1 of 1
ok      archive/b.CAL: page 1 of 1
ok      archive/c.tiff: page 1 of 1
ok      archive/plates/d.Cals: page 1 of 1
FAILED  archive/plates/e.cal: File has not a valid CALS format.
4 pages in 5 files checked, 1 failure
)");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 1U);
    const Outcome quiet = folder.run({"check", "--quiet", "archive"});
    EXPECT_EQ(quiet.out, "FAILED  archive/plates/e.cal: File has not a valid CALS format.\n");
    EXPECT_EQ(quiet.status, 1U);
}

TEST(Check, KnowsWhichRealCalsFilesAreWhole) {
    SKIP_WITHOUT_SAMPLES();
    const WorkFolder folder;
    for (const Sample &sample : samplesOfKind({"cals"})) {
        SCOPED_TRACE(sample.file);
        folder.put("real.cal", readFile(sample.path()).value_or(Bytes()));
        const Outcome outcome = folder.run({"check", "-q", "real.cal"});
        const bool good = !sample.pages().empty() && sample.pages().front()["clean"].isTrue();
        EXPECT_EQ(outcome.status, good ? 0U : 1U) << outcome.out;
        EXPECT_EQ(outcome.out.empty(), good);
        EXPECT_EQ(outcome.err, "");
    }
}

TEST(Check, TakesAFileThatIsNamedWhateverItsName) {
    const WorkFolder folder;
    folder.put("scan.0001", smallPage());
    const Outcome outcome = folder.run({"check", "scan.0001"});
    EXPECT_EQ(outcome.out, "ok      scan.0001: page 1 of 1\n1 page in 1 file checked, no failure\n");
    EXPECT_EQ(outcome.status, 0U);
}

TEST(Check, AFolderWithoutTiffAndCalsFilesFails) {
    const WorkFolder folder;
    folder.makeFolder("empty");
    const Outcome outcome = folder.run({"check", "empty"});
    EXPECT_EQ(outcome.out, "FAILED  empty: there is no .tif, .tiff, .cal or .cals file in the folder.\n"
                           "0 pages in 0 files checked, 1 failure\n");
    EXPECT_EQ(outcome.status, 1U);
}

TEST(Check, QuietTellsOfFailuresOnly) {
    const WorkFolder folder;
    folder.put("good.tif", smallPage());
    folder.put("text.tif", {'t', 'e', 'x', 't'});
    const Outcome failing = folder.run({"check", "-q", "good.tif", "text.tif"});
    EXPECT_EQ(failing.out, "FAILED  text.tif: Invalid byte order.\n");
    EXPECT_EQ(failing.status, 1U);
    const Outcome passing = folder.run({"check", "--quiet", "good.tif"});
    EXPECT_EQ(passing.out, "");
    EXPECT_EQ(passing.err, "");
    EXPECT_EQ(passing.status, 0U);
}

TEST(Check, ChecksThePagesInFrontOfABrokenLink) {
    tiff::Builder file;
    addPage(file, {0}, 1, 1);
    file.linkTo(0x00FFFFFF);
    const WorkFolder folder;
    folder.put("cut.tif", file.bytes());
    const Outcome outcome = folder.run({"check", "cut.tif"});
    EXPECT_EQ(outcome.out, R"(ok      cut.tif: page 1 of 1
FAILED  cut.tif: the chain of pages breaks behind page 1: General I/O error in reading or writting.
1 page in 1 file checked, 1 failure
)");
    EXPECT_EQ(outcome.status, 1U);
}

TEST(Check, ChecksThePagesOfALoopOnce) {
    tiff::Builder file;
    addPage(file, {0}, 1, 1);
    addPage(file, {0}, 1, 1);
    file.linkTo(10); // the first directory
    const WorkFolder folder;
    folder.put("loop.tif", file.bytes());
    const Outcome outcome = folder.run({"check", "loop.tif"});
    EXPECT_EQ(outcome.out, R"(ok      loop.tif: page 1 of 2
ok      loop.tif: page 2 of 2
FAILED  loop.tif: the chain of pages leads back from page 2 to page 1.
2 pages in 1 file checked, 1 failure
)");
    EXPECT_EQ(outcome.status, 1U);
}

TEST(Check, SaysWhenAFileHasMoreThanAThousandPages) {
    tiff::Builder thousand;
    tiff::Builder more;
    for (int i = 0; i < 1000; ++i) {
        addPage(thousand, {0}, 1, 1);
        addPage(more, {0}, 1, 1);
    }
    addPage(more, {0}, 1, 1);
    const WorkFolder folder;
    folder.put("thousand.tif", thousand.bytes());
    folder.put("more.tif", more.bytes());
    EXPECT_EQ(folder.run({"check", "-q", "thousand.tif"}).out, "");
    const Outcome outcome = folder.run({"check", "more.tif"});
    EXPECT_NE(outcome.out.find("ok      more.tif: page 1000 of 1000\n"
                               "FAILED  more.tif: there are more than 1000 pages; the others are out of reach.\n"
                               "1000 pages in 1 file checked, 1 failure\n"),
              std::string::npos)
        << outcome.out.substr(outcome.out.size() - 300);
    EXPECT_EQ(outcome.status, 1U);
}

} // namespace
} // namespace vellum::test
