// The error number, its messages and the version text.
#include "support/faults.h"
#include "vellum32.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace vellum::test;

namespace {

const char *const kMessages[] = {
    "Operation was successful.",
    "Not enough memory.",
    "Not T_READ or T_CREAT in OpenTiffFile().",
    "Image or tag data index is out of range.",
    "Strip index is out of range.",
    "Unexpected end of file in reading data.",
    "General I/O error in reading or writting.",
    "Pathname is longer than MAXPATH.",
    "File has not a valid TIFF format.",
    "Invalid TIFF directory tag.",
    "Indispensable tags are missing.",
    "Image compression type is not known.",
    "Error during compression or decompression.",
    "Such tag is not defined.",
    "Invalid byte order.",
    "Invalid bit order.",
    "Color format is not supported.",
    "Too few color info.",
    "File has not a valid CALS format.",
    "End of Facsimile Block is missing (EOFB)",
    "Unexpected End of Facsimile Block (EOFB)",
};

// The message, and a proof that nothing behind the 43 bytes a caller must have was touched.
std::string messageOf(DWORD code) {
    char buffer[44];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(TiffErrorString(buffer, code), buffer);
    EXPECT_EQ(buffer[43], '#');
    return buffer;
}

class ErrorNumber : public ::testing::Test {
protected:
    void SetUp() override { SetTiffError(VELLUM_OK); }
    void TearDown() override { SetTiffError(VELLUM_OK); }
};

TEST_F(ErrorNumber, EveryErrorHasItsMessage) {
    for (DWORD code = 0; code <= 20; ++code) {
        EXPECT_EQ(messageOf(code), kMessages[code]) << code;
    }
}

TEST_F(ErrorNumber, Code21HasAFixedText) {
    EXPECT_EQ(messageOf(21), "Unknown error.");
    SetTiffError(21);
    EXPECT_EQ(messageOf(99), "Unknown error.");
}

TEST_F(ErrorNumber, ACodeOutsideTheTableMeansTheCurrentError) {
    SetTiffError(VELLUM_NOT_CALS);
    EXPECT_EQ(messageOf(22), kMessages[18]);
    EXPECT_EQ(messageOf(99), kMessages[18]);
    EXPECT_EQ(messageOf(0xFFFFFFFF), kMessages[18]);
    EXPECT_EQ(messageOf(0x80000000), kMessages[18]);
}

TEST_F(ErrorNumber, WithoutABufferTheMessageIsShownInABox) {
    const MessageBoxes boxes;
    EXPECT_EQ(TiffErrorString(nullptr, VELLUM_IO_ERROR), nullptr);
    EXPECT_EQ(boxes.count(), 1);
    EXPECT_EQ(boxes.text(), "General I/O error in reading or writting.");
    EXPECT_EQ(boxes.caption(), "TIFF error");
    EXPECT_EQ(boxes.style(), 0x30u);
}

TEST_F(ErrorNumber, ABoxShowsTheCurrentErrorForACodeOutsideTheTable) {
    SetTiffError(VELLUM_NO_MEMORY);
    const MessageBoxes boxes;
    EXPECT_EQ(TiffErrorString(nullptr, 99), nullptr);
    EXPECT_EQ(boxes.text(), kMessages[1]);
}

TEST_F(ErrorNumber, SettingItGivesTheOneBefore) {
    EXPECT_EQ(SetTiffError(6), 0u);
    EXPECT_EQ(TiffError(), 6u);
    EXPECT_EQ(SetTiffError(21), 6u);
    EXPECT_EQ(TiffError(), 21u);
}

TEST_F(ErrorNumber, CodesAbove21AreNotTaken) {
    SetTiffError(5);
    EXPECT_EQ(SetTiffError(22), 5u);
    EXPECT_EQ(SetTiffError(0xFFFFFFFF), 5u);
    EXPECT_EQ(TiffError(), 5u);
}

TEST_F(ErrorNumber, AskingForMessagesDoesNotChangeIt) {
    SetTiffError(5);
    messageOf(7);
    EXPECT_EQ(TiffError(), 5u);
}

// The first bytes of a buffer of 20 '#' after the version was written into it.
std::string version(LONG length) {
    char buffer[20];
    std::memset(buffer, '#', sizeof buffer);
    GetTiffVersion(buffer, length);
    return {buffer, sizeof buffer};
}

TEST(Version, IsWrittenWithItsTerminatorWhenThereIsRoom) {
    const std::string whole = std::string("Version 7.00") + '\0' + "#######";
    EXPECT_EQ(version(64), whole);
    EXPECT_EQ(version(14), whole);
    EXPECT_EQ(version(13), whole);
}

TEST(Version, IsCutWithoutATerminatorWhenThereIsNot) {
    EXPECT_EQ(version(12), "Version 7.00########");
    EXPECT_EQ(version(7), "Version#############");
    EXPECT_EQ(version(1), "V###################");
}

TEST(Version, IsNotWrittenForALengthOf0OrLess) {
    EXPECT_EQ(version(0), std::string(20, '#'));
    EXPECT_EQ(version(-1), std::string(20, '#'));
    EXPECT_EQ(version(-2147483647 - 1), std::string(20, '#'));
    GetTiffVersion(nullptr, 64);
}

} // namespace
