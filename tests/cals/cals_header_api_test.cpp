// Reading CALS headers: what counts as one, how records are found, and what the numbers and texts come out as.
#include "cals/cals_files.h"
#include "support/faults.h"
#include "support/sample_manifest.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

// The result of ReadCALSHead with an error pending before, so that a call that leaves it alone is found out.
struct HeadResult {
    bool read;
    DWORD error;
    bool operator==(const HeadResult &) const = default;
};
HeadResult readHead(const char *path) {
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    const OwnedBlock block(ReadCALSHead(path));
    return {static_cast<bool>(block), TiffError()};
}
HeadResult readHead(const Bytes &content) {
    const TempFile file(content);
    return readHead(file.path());
}
constexpr HeadResult kRead = {true, VELLUM_STRIP_OUT_OF_RANGE};
constexpr HeadResult kNoHeader = {false, VELLUM_NOT_CALS};

TEST(CalsHead, ComesInABlockWithSpareBytesBehindIt) {
    Bytes file = calsHeader(pictureRecords());
    for (std::size_t i = 0; i < 16; ++i) {
        file[i * 128 + 100] = static_cast<BYTE>('a' + i);
    }
    Bytes expected = file;
    expected.resize(2248);
    file.insert(file.end(), 300, BYTE{0x99});
    const TempFile onDisk(file);
    const OwnedBlock block(ReadCALSHead(onDisk.path()));
    ASSERT_TRUE(block);
    EXPECT_EQ(block.bytes(), expected);
    EXPECT_EQ(lockCount(block.get()), 0U);
}

TEST(CalsHead, WithoutAPathLeavesTheErrorAlone) {
    EXPECT_EQ(readHead(nullptr), (HeadResult{false, VELLUM_STRIP_OUT_OF_RANGE}));
    EXPECT_EQ(readHead(""), (HeadResult{false, VELLUM_STRIP_OUT_OF_RANGE}));
}

TEST(CalsHead, AFileThatDoesNotOpenIsAnIoError) {
    EXPECT_EQ(readHead(TempFile().path()), (HeadResult{false, VELLUM_IO_ERROR}));
    EXPECT_EQ(readHead(tempFolder().c_str()), (HeadResult{false, VELLUM_IO_ERROR}));
}

TEST(CalsHead, AFileOf2048BytesIsOneAndAShorterOneIsNot) {
    const Bytes header = calsHeader(pictureRecords());
    EXPECT_EQ(readHead(header), kRead);
    for (const std::size_t size : {0U, 1U, 127U, 128U, 2046U, 2047U}) {
        EXPECT_EQ(readHead(Bytes(header.begin(), header.begin() + static_cast<std::ptrdiff_t>(size))), kNoHeader)
            << size;
    }
}

TEST(CalsHead, EveryRecordMustEndWithABlankOrANul) {
    for (std::size_t record = 0; record < 16; ++record) {
        Bytes header = calsHeader(pictureRecords());
        for (const BYTE wrong : {BYTE{'X'}, BYTE{'\n'}, BYTE{0xFF}, BYTE{'\t'}}) {
            header[record * 128 + 127] = wrong;
            EXPECT_EQ(readHead(header), kNoHeader) << record;
        }
        header[record * 128 + 127] = 0;
        EXPECT_EQ(readHead(header), kRead) << record;
    }
}

TEST(CalsHead, NothingElseIsChecked) {
    EXPECT_EQ(readHead(Bytes(2048, BYTE{' '})), kRead);
    EXPECT_EQ(readHead(Bytes(2048)), kRead);
    EXPECT_EQ(readHead(calsHeader({"no keyword at all", "rtype: 77"})), kRead);
}

// ---------------------------------------------------------------- records

std::ptrdiff_t find(const LockedHeader &header, const char *keyword) {
    const char *found = FindCALSRecord(header.get(), keyword);
    return found == nullptr ? -1 : (found - header.get()) / 128;
}

TEST(CalsRecords, TheFirstOneThatBeginsWithTheKeywordIsFound) {
    const LockedHeader header(calsHeader({"notes: 1", "figid: 2", "", "notes: 4"}));
    EXPECT_EQ(find(header, "notes: "), 0);
    EXPECT_EQ(find(header, "figid: "), 1);
    EXPECT_EQ(find(header, "notes: 4"), 3);
    EXPECT_EQ(find(header, "n"), 0);
    EXPECT_EQ(find(header, ""), 0);
    EXPECT_EQ(find(header, "doccls: "), -1);
}

TEST(CalsRecords, AreFoundUpToTheLastOne) {
    Records records(15);
    const LockedHeader header(calsHeader(with(records, "notes: last")));
    EXPECT_EQ(find(header, "notes: "), 15);
    EXPECT_EQ(find(header, "rtype: "), -1);
}

TEST(CalsRecords, KeywordsCountByteForByteTheBlankBehindTheColonToo) {
    const LockedHeader header(calsHeader({"rtype:1", "Rorient: 1,2", "rpelcnt : 1,1", "rdensty: 200"}));
    EXPECT_EQ(find(header, "rtype: "), -1);
    EXPECT_EQ(find(header, "rtype:"), 0);
    EXPECT_EQ(find(header, "rorient: "), -1);
    EXPECT_EQ(find(header, "rpelcnt: "), -1);
    EXPECT_EQ(find(header, "rdensty: "), 3);
}

TEST(CalsRecords, OnesThatBeginWithABlankOrANulAreUnused) {
    Bytes bytes = calsHeader({" notes: 1", "?notes: 2", "notes: 3"});
    bytes[128] = 0;
    const LockedHeader header(bytes);
    EXPECT_EQ(find(header, "notes: "), 2);
    EXPECT_EQ(find(header, " "), -1);
    EXPECT_EQ(find(header, " notes: "), -1);
}

TEST(CalsRecords, AKeywordIsNotLookedForBeyondItsRecord) {
    const std::string first(128, 'a');
    const LockedHeader header(calsHeader({first, "b"}));
    EXPECT_EQ(find(header, first.c_str()), 0);
    EXPECT_EQ(find(header, (first + "b").c_str()), -1);
    const LockedHeader last(calsHeader(with(Records(15), first)));
    EXPECT_EQ(find(last, (first + "bbbbbbbb").c_str()), -1);
}

TEST(CalsRecords, WithoutAHeaderOrAKeywordThereIsNone) {
    const LockedHeader header(calsHeader({"notes: 1"}));
    EXPECT_EQ(FindCALSRecord(nullptr, "notes: "), nullptr);
    EXPECT_EQ(FindCALSRecord(header.get(), nullptr), nullptr);
}

// ---------------------------------------------------------------- numbers

// Comparable; spoilt beforehand so that fields which are not set are found out.
struct InfoResult {
    DWORD result;
    DWORD error;
    std::vector<LONG> numbers;
    bool operator==(const InfoResult &) const = default;
};
InfoResult readInfo(const char *path) {
    CalsInfo info = {-7, {-7, -7}, {-7, -7}, -7};
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    const DWORD result = ReadCALSInfo(path, &info);
    return {result,
            TiffError(),
            {info.rtype, info.rorient[0], info.rorient[1], info.rpelcnt[0], info.rpelcnt[1], info.rdensty}};
}
InfoResult readInfo(const Records &records) {
    const TempFile file(calsHeader(records));
    return readInfo(file.path());
}
InfoResult good(std::vector<LONG> numbers) {
    return {1, VELLUM_STRIP_OUT_OF_RANGE, std::move(numbers)};
}
InfoResult refused(std::vector<LONG> numbers) {
    return {0, VELLUM_NOT_CALS, std::move(numbers)};
}

TEST(CalsNumbers, OfAPictureAreRead) {
    EXPECT_EQ(readInfo(pictureRecords("001728,002200")), good({1, 90, 270, 1728, 2200, 200}));
    EXPECT_EQ(readInfo(pictureRecords("001728 002200")), good({1, 90, 270, 1728, 2200, 200}));
}

TEST(CalsNumbers, AreFoundInAnyOrderOfTheRecords) {
    Records records = pictureRecords();
    std::reverse(records.begin(), records.end());
    records.insert(records.begin(), 12, std::string());
    EXPECT_EQ(readInfo(records), good({1, 90, 270, 9, 4, 200}));
}

TEST(CalsNumbers, OtherProgramsKeywordsServeWhereOursAreAbsent) {
    const Records others = {"dtype: 1", "rorient: 000,270", "rpelcnt: 9,4", "rdensity: 0300"};
    EXPECT_EQ(readInfo(others), good({1, 0, 270, 9, 4, 300}));
    EXPECT_EQ(readInfo(with(others, "rtype: 1")), good({1, 0, 270, 9, 4, 300}));
    EXPECT_EQ(readInfo(with(others, "rdensty: 0200")), good({1, 0, 270, 9, 4, 200}));
    // The record that is tried first counts, also when its value is no good.
    EXPECT_EQ(readInfo(with(others, "rtype: 2")), refused({2, 0, 270, 9, 4, 300}));
}

TEST(CalsNumbers, EachOfTheFourRecordsIsNeeded) {
    EXPECT_EQ(readInfo(without(pictureRecords(), "rtype")), refused({0, 90, 270, 9, 4, 200}));
    EXPECT_EQ(readInfo(without(pictureRecords(), "rorient")), refused({1, 0, 0, 9, 4, 200}));
    EXPECT_EQ(readInfo(without(pictureRecords(), "rpelcnt")), refused({1, 90, 270, 0, 0, 200}));
    EXPECT_EQ(readInfo(without(pictureRecords(), "rdensty")), refused({1, 90, 270, 9, 4, 0}));
    EXPECT_EQ(readInfo(Records()), refused({0, 0, 0, 0, 0, 0}));
}

TEST(CalsNumbers, TheRasterTypeMustBe1AndThereMustBePixels) {
    const auto typed = [](const char *type) { return with(without(pictureRecords(), "rtype"), type); };
    EXPECT_EQ(readInfo(typed("rtype: 2")).error, DWORD{VELLUM_NOT_CALS});
    EXPECT_EQ(readInfo(typed("rtype: 0")).error, DWORD{VELLUM_NOT_CALS});
    EXPECT_EQ(readInfo(typed("rtype: -1")).error, DWORD{VELLUM_NOT_CALS});
    EXPECT_EQ(readInfo(typed("rtype:1")).error, DWORD{VELLUM_NOT_CALS});
    EXPECT_EQ(readInfo(typed("rtype: 0001 and more")).result, 1U);
    EXPECT_EQ(readInfo(pictureRecords("001728,000000")), refused({1, 90, 270, 1728, 0, 200}));
    EXPECT_EQ(readInfo(pictureRecords("000000,002200")), refused({1, 90, 270, 0, 2200, 200}));
    EXPECT_EQ(readInfo(pictureRecords("001728")), refused({1, 90, 270, 1728, 0, 200}));
}

TEST(CalsNumbers, OrientationDensityAndSignsAreNotChecked) {
    Records records = pictureRecords("-5,-6", "0000");
    records[1] = "rorient: none";
    EXPECT_EQ(readInfo(records), good({1, 0, 0, -5, -6, 0}));
    EXPECT_EQ(readInfo(pictureRecords("9,4", "-200")), good({1, 90, 270, 9, 4, -200}));
}

TEST(CalsNumbers, HundredDigitsAreTheLargestNumber) {
    EXPECT_EQ(readInfo(pictureRecords(std::string(100, '9') + ",4")), good({1, 90, 270, 0x7FFFFFFF, 4, 200}));
    EXPECT_EQ(readInfo(pictureRecords(std::string(118, '9'))), refused({1, 90, 270, 0x7FFFFFFF, 0, 200}));
}

TEST(CalsNumbers, WithoutARecordToFillNothingIsDone) {
    const TempFile file(calsHeader({}));
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    EXPECT_EQ(ReadCALSInfo(file.path(), nullptr), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_STRIP_OUT_OF_RANGE});
}

TEST(CalsNumbers, AHeaderThatCannotBeReadLeavesTheRecordAlone) {
    const std::vector<LONG> spoilt(6, -7);
    EXPECT_EQ(readInfo(static_cast<const char *>(nullptr)), (InfoResult{0, VELLUM_STRIP_OUT_OF_RANGE, spoilt}));
    EXPECT_EQ(readInfo(TempFile().path()), (InfoResult{0, VELLUM_IO_ERROR, spoilt}));
    EXPECT_EQ(readInfo(TempFile(Bytes(2047)).path()), refused(spoilt));
}

// ---------------------------------------------------------------- texts

// The seven texts as their pointers read; "-" for NULL.
struct Texts {
    std::vector<std::string> read;
    std::vector<std::ptrdiff_t> starts;
};
Texts textsOf(const Records &records, char padding = ' ') {
    const TempFile file(calsHeader(records, padding));
    CalsNotes notes;
    std::memset(static_cast<void *>(&notes), 0x5A, sizeof notes);
    const OwnedBlock block(ReadCALSNote(file.path(), &notes));
    EXPECT_TRUE(block);
    EXPECT_EQ(lockCount(block.get()), 0U);
    EXPECT_EQ(block.bytes().size(), 2248U);
    Texts texts;
    const char *start = static_cast<const char *>(GlobalLock(block.get()));
    for (const char *text :
         {notes.srcdocid, notes.dstdocis, notes.txtfileid, notes.figid, notes.scrgph, notes.doccls, notes.notes}) {
        texts.read.emplace_back(text == nullptr ? "-" : text);
        if (text != nullptr) {
            texts.starts.push_back(text - start);
        }
    }
    GlobalUnlock(block.get());
    return texts;
}
using Read = std::vector<std::string>;

// By design: no terminator stands between the texts.
TEST(CalsTexts, EachIsFollowedByThoseBehindIt) {
    EXPECT_EQ(textsOf({"srcdocid: AB", "dstdocis: CD"}).read, (Read{"ABCD", "CD", "-", "-", "-", "-", "-"}));
    const Texts all =
        textsOf({"srcdocid: 1", "dstdocis: 22", "txtfileid: 333", "figid: 4", "scrgph: 5", "doccls: 6", "notes: 7"});
    EXPECT_EQ(all.read, (Read{"1223334567", "223334567", "3334567", "4567", "567", "67", "7"}));
    EXPECT_EQ(all.starts, (std::vector<std::ptrdiff_t>{0, 1, 3, 6, 7, 8, 9}));
}

TEST(CalsTexts, ComeInTheirOwnOrderWhateverTheRecords) {
    EXPECT_EQ(textsOf({"notes: N", "srcdocid: S"}).read, (Read{"SN", "-", "-", "-", "-", "-", "N"}));
}

TEST(CalsTexts, NoneIsAText) {
    EXPECT_EQ(textsOf({"notes: NONE"}).read.back(), "NONE");
}

TEST(CalsTexts, ThatAreAbsentOrEmptyAreNull) {
    const Read none(7, "-");
    EXPECT_EQ(textsOf({}).read, none);
    EXPECT_EQ(textsOf({"notes: ", "figid: "}).read, none);
    EXPECT_EQ(textsOf({"notes:", "figid:x"}).read, none);
    EXPECT_EQ(textsOf({"notes: \r"}).read, none);
    EXPECT_EQ(textsOf({"dstdocid: x", "txtfilid: y", "srcgph: z"}).read, none) << "other spellings are other records";
}

TEST(CalsTexts, EndBeforeTheirPaddingAndAtTheirFirstNul) {
    EXPECT_EQ(textsOf({"notes: A B  "}).read.back(), "A B");
    EXPECT_EQ(textsOf({"notes: AB"}, '\0').read.back(), "AB");
    EXPECT_EQ(textsOf({"notes: AB\n"}).read.back(), "AB");
    EXPECT_EQ(textsOf({"notes:  AB"}).read.back(), " AB");
    EXPECT_EQ(textsOf({std::string("notes: AB\0CD", 12)}).read.back(), "AB");
    EXPECT_EQ(textsOf({std::string("notes: \0CD", 10)}).read.back(), "-");
}

TEST(CalsTexts, FullRecordsFitAllTogether) {
    Records records;
    std::string all;
    char letter = 'a';
    for (const char *keyword :
         {"srcdocid: ", "dstdocis: ", "txtfileid: ", "figid: ", "scrgph: ", "doccls: ", "notes: "}) {
        std::string record = keyword;
        const std::string text(127 - record.size(), letter++);
        records.push_back(record + text);
        all += text;
    }
    const Texts texts = textsOf(records);
    EXPECT_EQ(texts.read.front(), all);
    EXPECT_EQ(texts.read.back(), std::string(120, 'g'));
}

TEST(CalsTexts, WithoutARecordToFillNothingIsDone) {
    const TempFile file(calsHeader({}));
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    EXPECT_EQ(ReadCALSNote(file.path(), nullptr), nullptr);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_STRIP_OUT_OF_RANGE});
}

TEST(CalsTexts, OfAHeaderThatCannotBeReadAreNone) {
    CalsNotes notes{};
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    EXPECT_EQ(ReadCALSNote("", &notes), nullptr);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_STRIP_OUT_OF_RANGE});
    EXPECT_EQ(ReadCALSNote(TempFile().path(), &notes), nullptr);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(ReadCALSNote(TempFile(Bytes(100)).path(), &notes), nullptr);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NOT_CALS});
}

// ---------------------------------------------------------------- faults

// Fails every call of a kind in turn until one succeeds. Natively every test fails that leaves something behind.
template <class Run>
long failEach(Call call, DWORD expected, Run run) {
    for (long n = 0; n < 100; ++n) {
        SCOPED_TRACE(n);
        SetTiffError(VELLUM_OK);
        const FailNth fault(call, n);
        const bool done = run();
        const DWORD error = TiffError();
        if (!fault.happened()) {
            EXPECT_TRUE(done);
            return n;
        }
        EXPECT_FALSE(done);
        EXPECT_EQ(error, expected);
    }
    ADD_FAILURE() << "never ends";
    return 100;
}

TEST(CalsHeaderFaults, MemoryFilesAndReadsThatFailHaveTheirErrors) {
    const TempFile file(calsHeader(with(pictureRecords(), "notes: N")));
    const auto head = [&] { return static_cast<bool>(OwnedBlock(ReadCALSHead(file.path()))); };
    const auto info = [&] {
        CalsInfo read;
        return ReadCALSInfo(file.path(), &read) == 1;
    };
    const auto texts = [&] {
        CalsNotes read;
        return static_cast<bool>(OwnedBlock(ReadCALSNote(file.path(), &read)));
    };
    EXPECT_EQ(failEach(Call::Allocate, VELLUM_NO_MEMORY, head), 1);
    EXPECT_EQ(failEach(Call::Allocate, VELLUM_NO_MEMORY, info), 1);
    EXPECT_EQ(failEach(Call::Allocate, VELLUM_NO_MEMORY, texts), 2);
    EXPECT_EQ(failEach(Call::Open, VELLUM_IO_ERROR, head), 1);
    EXPECT_EQ(failEach(Call::Open, VELLUM_IO_ERROR, info), 1);
    EXPECT_EQ(failEach(Call::Open, VELLUM_IO_ERROR, texts), 1);
    EXPECT_EQ(failEach(Call::Read, VELLUM_NOT_CALS, head), 1);
    EXPECT_EQ(failEach(Call::Read, VELLUM_NOT_CALS, info), 1);
    EXPECT_EQ(failEach(Call::Read, VELLUM_NOT_CALS, texts), 1);
}

TEST(CalsHeaderFaults, AFailureMidwayLeavesTheTextsNull) {
    const TempFile file(calsHeader({"notes: N"}));
    CalsNotes notes;
    std::memset(static_cast<void *>(&notes), 0x5A, sizeof notes);
    const FailNth fault(Call::Allocate, 1);
    EXPECT_EQ(ReadCALSNote(file.path(), &notes), nullptr);
    EXPECT_EQ(notes.srcdocid, nullptr);
    EXPECT_EQ(notes.notes, nullptr);
}

// ---------------------------------------------------------------- real files

TEST(CalsSamples, HeadersReadAsTheManifestStates) {
    SKIP_WITHOUT_SAMPLES();
    const std::vector<Sample> samples = samplesOfKind({"cals"});
    EXPECT_GE(samples.size(), 15U);
    for (const Sample &sample : samples) {
        SCOPED_TRACE(sample.file);
        const Json &expected = sample.entry["expected"];
        const bool isHeader = expected["header"].text == "ok";
        EXPECT_EQ(readHead(sample.path().c_str()), isHeader ? kRead : kNoHeader);
        const InfoResult info = readInfo(sample.path().c_str());
        if (!isHeader || expected["info"].text != "ok") {
            EXPECT_EQ(info.result, 0U);
            EXPECT_EQ(info.error, expected["error"].whole());
            continue;
        }
        const auto number = [](const Json &json) { return static_cast<LONG>(json.whole()); };
        EXPECT_EQ(info, good({number(expected["rtype"]), number(expected["rorient"].items.at(0)),
                              number(expected["rorient"].items.at(1)), number(expected["rpelcnt"].items.at(0)),
                              number(expected["rpelcnt"].items.at(1)), number(expected["rdensty"])}));
    }
}

TEST(CalsSamples, TextsAreThoseOfTheRecords) {
    SKIP_WITHOUT_SAMPLES();
    CalsNotes notes;
    const OwnedBlock block(ReadCALSNote(sample("cals/edit-texts.cal").c_str(), &notes));
    ASSERT_TRUE(block);
    EXPECT_STREQ(notes.notes, "SHEET 1 OF 2");
    ASSERT_NE(notes.figid, nullptr);
    EXPECT_EQ(std::string(notes.srcdocid, notes.figid), "DRAWING 4711-A");
    EXPECT_EQ(notes.dstdocis, nullptr) << "these files spell it otherwise";
}

} // namespace
