// DefineCALSHead: every byte of the header it makes.
#include "cals/cals_files.h"
#include "support/faults.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr CalsInfo kPage = {1, {90, 270}, {1728, 2200}, 200};

Records defined(const CalsInfo &info, const CalsNotes *notes) {
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    const OwnedBlock block(DefineCALSHead(&info, notes));
    EXPECT_TRUE(block);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_STRIP_OUT_OF_RANGE});
    EXPECT_EQ(lockCount(block.get()), 0U);
    const Bytes bytes = block.bytes();
    EXPECT_EQ(bytes.size(), 2248U);
    EXPECT_TRUE(std::all_of(bytes.begin() + 2048, bytes.end(), [](BYTE byte) { return byte == 0; }));
    return recordsOf(bytes);
}

Records padded(Records records) {
    records.resize(16);
    for (std::string &record : records) {
        record = blankPadded(record);
    }
    return records;
}

TEST(CalsDefinition, WithoutTextsEveryOneIsNone) {
    const Records expected =
        padded({"srcdocid: NONE", "dstdocis: NONE", "txtfileid: NONE", "figid: NONE", "scrgph: NONE", "doccls: NONE",
                "rtype: 1", "rorient: 090,270", "rpelcnt: 001728,002200", "rdensty: 0200", "notes: NONE"});
    EXPECT_EQ(defined(kPage, nullptr), expected);
    const CalsNotes none{};
    EXPECT_EQ(defined(kPage, &none), expected);
}

TEST(CalsDefinition, TextsStandInTheirRecords) {
    const CalsNotes notes = {"one", "", "%s%n", "four\r\n", "five", nullptr, "se\tven"};
    EXPECT_EQ(defined(kPage, &notes), padded({"srcdocid: one", "dstdocis: ", "txtfileid: %s%n", "figid: four\r\n",
                                              "scrgph: five", "doccls: NONE", "rtype: 1", "rorient: 090,270",
                                              "rpelcnt: 001728,002200", "rdensty: 0200", "notes: se\tven"}));
}

TEST(CalsDefinition, NumbersAreFilledUpWithZerosAndNeverCut) {
    const auto numbers = [](const CalsInfo &info) {
        const Records records = defined(info, nullptr);
        return Records(records.begin() + 6, records.begin() + 10);
    };
    const auto expected = [](Records records) {
        records = padded(std::move(records));
        records.resize(4);
        return records;
    };
    EXPECT_EQ(numbers({0, {0, 0}, {0, 0}, 0}),
              expected({"rtype: 0", "rorient: 000,000", "rpelcnt: 000000,000000", "rdensty: 0000"}));
    EXPECT_EQ(numbers({12, {1234, 5}, {1234567, 7}, 12345}),
              expected({"rtype: 12", "rorient: 1234,005", "rpelcnt: 1234567,000007", "rdensty: 12345"}));
    EXPECT_EQ(numbers({-1, {-5, -500}, {-0x7FFFFFFF - 1, 0x7FFFFFFF}, -20}),
              expected({"rtype: -1", "rorient: -05,-500", "rpelcnt: -2147483648,2147483647", "rdensty: -020"}));
}

TEST(CalsDefinition, TextsThatAreTooLongEndInTheirRecord) {
    const std::string text(5000, 'x');
    const CalsNotes notes = {text.c_str(), text.c_str(), text.c_str(), text.c_str(),
                             text.c_str(), text.c_str(), text.c_str()};
    const Records records = defined(kPage, &notes);
    const Records plain = defined(kPage, nullptr);
    for (std::size_t i = 0; i < 16; ++i) {
        const std::size_t keyword = plain[i].find(": ");
        const bool isText = plain[i].find("NONE") != std::string::npos;
        EXPECT_EQ(records[i], isText ? plain[i].substr(0, keyword + 2) + text.substr(0, 125 - keyword) + " " : plain[i])
            << i;
    }
}

TEST(CalsDefinition, TheLongestTextReadsBack) {
    const std::string text(120, 'y');
    CalsNotes notes{};
    notes.notes = text.c_str();
    OwnedBlock block(DefineCALSHead(&kPage, &notes));
    Bytes header = block.bytes();
    header.resize(2048);
    const TempFile file(header);
    CalsNotes read;
    const OwnedBlock texts(ReadCALSNote(file.path(), &read));
    ASSERT_TRUE(texts);
    EXPECT_EQ(read.notes, text);
    CalsInfo info;
    EXPECT_EQ(ReadCALSInfo(file.path(), &info), 1U);
    EXPECT_EQ(std::memcmp(&info, &kPage, sizeof info), 0);
}

TEST(CalsDefinition, WithoutNumbersNothingIsDone) {
    const CalsNotes notes{};
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    EXPECT_EQ(DefineCALSHead(nullptr, &notes), nullptr);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_STRIP_OUT_OF_RANGE});
}

TEST(CalsDefinition, WithoutMemoryIsError1) {
    SetTiffError(VELLUM_OK);
    const FailNth fault(Call::Allocate, 0);
    EXPECT_EQ(DefineCALSHead(&kPage, nullptr), nullptr);
    EXPECT_TRUE(fault.happened());
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
}

} // namespace
