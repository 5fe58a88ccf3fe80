// Notes in tag 316: what is written, what is read back, and what is no note.
#include "annot/notes.h"
#include "support/decode_lines.h"
#include "support/faults.h"
#include "support/read_tags.h"
#include "support/tiff_builder.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr LONG kNoteTag = 316;
constexpr DWORD kAscii = 2;

// Two images; the first one has the value in tag 316, if it has any.
Bytes pages(const std::vector<std::uint32_t> *value = nullptr, unsigned type = kAscii) {
    std::vector<tiff::Entry> entries = {tiff::shorts(256, {8}), tiff::shorts(257, {2}), tiff::shorts(258, {1}),
                                        tiff::shorts(259, {1}), tiff::shorts(262, {0}), tiff::shorts(278, {2})};
    tiff::Builder file;
    std::vector<tiff::Entry> first = entries;
    if (value != nullptr) {
        first.push_back(tiff::typed(kNoteTag, type, static_cast<std::uint32_t>(value->size()), 1, *value));
    }
    file.page(first, {{0x5A, 0xA5}});
    file.page(entries, {{0x5A, 0xA5}});
    return file.bytes();
}

// The value exactly as it is, without a terminator that it does not have.
Bytes pagesWith(const std::string &value, unsigned type = kAscii) {
    std::vector<std::uint32_t> numbers;
    for (const char c : value) {
        numbers.push_back(static_cast<std::uint8_t>(c));
    }
    return pages(&numbers, type);
}

struct Read {
    LONG result = 0;
    DWORD error = 0;
};

Read readNote(const Bytes &file, OwnedNote &note, DWORD index = 0) {
    const OpenedTiff tiff(file);
    SetTiffError(VELLUM_OK);
    const LONG result = GetNoteTagFromTiff(tiff.get(), index, &note.record);
    return {result, TiffError()};
}

void expectNoNote(const std::string &value) {
    OwnedNote note;
    note.record.left = 77;
    const Read read = readNote(pagesWith(value), note);
    EXPECT_EQ(read.result, 0) << value;
    EXPECT_EQ(note.record.text, nullptr) << value;
    EXPECT_EQ(note.record.left, 77) << value;
}

std::string storedNote(const OpenedTiff &tiff, DWORD index = 0) {
    const StoredTag stored = storedTag(tiff.get(), index, kNoteTag);
    EXPECT_EQ(stored.type, kAscii);
    return std::string(stored.bytes.begin(), stored.bytes.begin() + static_cast<std::ptrdiff_t>(stored.count));
}

// ---------------------------------------------------------------- writing

TEST(NoteTag, IsMarkOpacityRectangleBlockSizeAndText) {
    const OpenedTiff tiff(pages());
    OwnedNote note("Hello");
    note.record.opaque = 1;
    note.record.left = 10;
    note.record.top = 20;
    note.record.right = 110;
    note.record.bottom = 52;
    EXPECT_EQ(AddNoteTagToTiff(tiff.get(), 0, &note.record), 1);
    EXPECT_EQ(storedNote(tiff), std::string("~,1,O,10,20,110,52,6,Hello") + '\0');
    note.record.opaque = 0;
    EXPECT_EQ(AddNoteTagToTiff(tiff.get(), 0, &note.record), 1);
    EXPECT_EQ(storedNote(tiff), std::string("~,1,T,10,20,110,52,6,Hello") + '\0') << "in place of the first one";
    EXPECT_EQ(storedTag(tiff.get(), 1, kNoteTag).count, 0U);
}

TEST(NoteTag, OfANoteThatIsOpaqueByAnyNumberBut0SaysSo) {
    const OpenedTiff tiff(pages());
    OwnedNote note("x");
    for (const LONG opaque : {-7, 2, 0x100, -0x7FFFFFFF - 1}) {
        note.record.opaque = opaque;
        EXPECT_EQ(AddNoteTagToTiff(tiff.get(), 0, &note.record), 1) << opaque;
        EXPECT_EQ(storedNote(tiff), std::string("~,1,O,0,0,0,0,2,x") + '\0') << opaque;
    }
}

TEST(NoteTag, HasTheSizeOfTheWholeBlockAndTheTextUpToItsTerminator) {
    const OpenedTiff tiff(pages());
    OwnedNote note;
    note.record.text = textBlock("two\r\nlines", 100);
    EXPECT_EQ(AddNoteTagToTiff(tiff.get(), 1, &note.record), 1);
    EXPECT_EQ(storedNote(tiff, 1), std::string("~,1,T,0,0,0,0,111,two\r\nlines") + '\0');
}

// By design: 65536 + 10 is stored as 10. The text is whole all the same.
TEST(NoteTag, HasTheLow16BitsOfTheSize) {
    const OpenedTiff tiff(pages());
    const std::string text(65545, 'x');
    OwnedNote note(text);
    EXPECT_EQ(AddNoteTagToTiff(tiff.get(), 0, &note.record), 1);
    EXPECT_EQ(storedNote(tiff), "~,1,T,0,0,0,0,10," + text + '\0');
    OwnedNote back;
    EXPECT_EQ(GetNoteTagFromTiff(tiff.get(), 0, &back.record), 1);
    EXPECT_EQ(back.text(), text);
}

TEST(NoteTag, OfATextWithoutATerminatorHasTheWholeBlock) {
    const OpenedTiff tiff(pages());
    OwnedNote note;
    note.record.text = makeBlock(bytesOf("abc"));
    EXPECT_EQ(AddNoteTagToTiff(tiff.get(), 0, &note.record), 1);
    EXPECT_EQ(storedNote(tiff), std::string("~,1,T,0,0,0,0,3,abc") + '\0');
}

TEST(NoteTag, WithTheLargestNumbersIsWhole) {
    const OpenedTiff tiff(pages());
    OwnedNote note("x");
    constexpr LONG kLeast = -0x7FFFFFFF - 1;
    note.record.left = note.record.top = note.record.right = note.record.bottom = kLeast;
    EXPECT_EQ(AddNoteTagToTiff(tiff.get(), 0, &note.record), 1);
    EXPECT_EQ(storedNote(tiff), std::string("~,1,T,-2147483648,-2147483648,-2147483648,-2147483648,2,x") + '\0');
}

TEST(NoteTag, IsNotWrittenWithoutHandleNoteTextOrImage) {
    const OpenedTiff tiff(pages());
    OwnedNote note("x");
    const NoteRecord empty = {};
    EXPECT_EQ(AddNoteTagToTiff(nullptr, 0, &note.record), 0);
    EXPECT_EQ(AddNoteTagToTiff(tiff.get(), 0, nullptr), 0);
    EXPECT_EQ(AddNoteTagToTiff(tiff.get(), 0, &empty), 0);
    SetTiffError(VELLUM_OK);
    EXPECT_EQ(AddNoteTagToTiff(tiff.get(), 2, &note.record), 0);
    EXPECT_NE(TiffError(), static_cast<DWORD>(VELLUM_OK)) << "that of GetTiffImage";
    EXPECT_EQ(storedTag(tiff.get(), 0, kNoteTag).count, 0U);
    EXPECT_EQ(lockCount(note.record.text), 0U);
}

// ---------------------------------------------------------------- reading

TEST(NoteTag, ReadsBackInAFileOnDisk) {
    const TempFile file(pages());
    OwnedNote note("first\r\n\r\nlast ~,1,O,");
    note.record = {0, 1, note.record.text, 0, 7, 2147483647, 9, nullptr};
    {
        const OpenedTiff tiff(std::string(file.path()));
        ASSERT_EQ(AddNoteTagToTiff(tiff.get(), 1, &note.record), 1);
        const StoredTag stored = storedTag(tiff.get(), 1, kNoteTag);
        ASSERT_EQ(AddTiffTagToImage(file.path(), 1, kNoteTag, kAscii, stored.bytes.data(), stored.count), 1U);
    }
    const OpenedTiff tiff(std::string(file.path()));
    OwnedNote back;
    back.record.image = textBlock("an image");
    const HGLOBAL image = back.record.image;
    EXPECT_EQ(GetNoteTagFromTiff(tiff.get(), 1, &back.record), 1);
    EXPECT_NE(back.record.inHeader, 0);
    EXPECT_NE(back.record.opaque, 0);
    EXPECT_EQ(back.record.left, 0);
    EXPECT_EQ(back.record.top, 7);
    EXPECT_EQ(back.record.right, 2147483647);
    EXPECT_EQ(back.record.bottom, 9);
    EXPECT_EQ(back.record.image, image);
    EXPECT_EQ(back.text(), "first\r\n\r\nlast ~,1,O,");
    EXPECT_EQ(lockCount(back.record.text), 0U);
    EXPECT_EQ(GetNoteTagFromTiff(tiff.get(), 0, &note.record), 0) << "the other image has none";
    EXPECT_EQ(TiffError(), static_cast<DWORD>(VELLUM_TAG_NOT_DEFINED));
}

// By design: it is the caller's, as the header says.
TEST(NoteTag, ReadIntoARecordWithATextLeavesThatOnesBlock) {
    OwnedNote note("former");
    const HGLOBAL former = note.record.text;
    EXPECT_EQ(readNote(pagesWith("~,1,O,1,2,3,4,5,new"), note).result, 1);
    EXPECT_EQ(note.text(), "new");
    ASSERT_NE(note.record.text, former);
    EXPECT_EQ(blockBytes(former), bytesOf(std::string("former") + '\0'));
    EXPECT_EQ(lockCount(former), 0U);
    GlobalFree(former);
}

TEST(NoteTag, EmptyFieldsAreZero) {
    OwnedNote note;
    EXPECT_EQ(readNote(pagesWith(std::string("~,1,T,,,,,,x") + '\0'), note).result, 1);
    EXPECT_EQ(note.record.opaque, 0);
    EXPECT_EQ(note.record.left, 0);
    EXPECT_EQ(note.record.bottom, 0);
    EXPECT_EQ(note.text(), "x");
}

TEST(NoteTag, OfAnythingButOIsTransparent) {
    for (const char *value : {"~,1,T,1,2,3,4,5,x", "~,1,o,1,2,3,4,5,x", "~,1,,,1,2,3,4,5,x", "~    T,1,2,3,4,5,x"}) {
        OwnedNote note;
        EXPECT_EQ(readNote(pagesWith(value), note).result, 1) << value;
        EXPECT_EQ(note.record.opaque, 0) << value;
    }
    OwnedNote note;
    EXPECT_EQ(readNote(pagesWith("~???O?1,2,3,4,5,x"), note).result, 1) << "nothing else is looked at";
    EXPECT_EQ(note.record.opaque, 1);
    EXPECT_EQ(note.record.left, 1);
}

// By design: a character counts by its distance from '0'; no note lies at negative coordinates.
TEST(NoteTag, ASignCountsAsADigit) {
    OwnedNote note;
    EXPECT_EQ(readNote(pagesWith("~,1,O,-5,+1,1 2,0x,5,x"), note).result, 1);
    EXPECT_EQ(note.record.left, -3 * 10 + 5);
    EXPECT_EQ(note.record.top, -5 * 10 + 1);
    EXPECT_EQ(note.record.right, (1 * 10 - 16) * 10 + 2);
    EXPECT_EQ(note.record.bottom, 'x' - '0');
}

TEST(NoteTag, NumbersOfAHundredDigitsAreHarmless) {
    const std::string nines(100, '9');
    OwnedNote note;
    EXPECT_EQ(readNote(pagesWith("~,1,O," + nines + "," + nines + ",1,2," + nines + ",text"), note).result, 1);
    EXPECT_EQ(note.record.right, 1);
    EXPECT_EQ(note.record.bottom, 2);
    EXPECT_EQ(note.text(), "text");
    EXPECT_LE(GlobalSize(note.record.text), 65535U);
}

// ---------------------------------------------------------------- sizes

TEST(NoteTag, TheBlockHasTheSizeInTheTag) {
    OwnedNote note;
    EXPECT_EQ(readNote(pagesWith("~,1,O,1,2,3,4,1000,x"), note).result, 1);
    Bytes expected = bytesOf("x");
    expected.resize(1000);
    EXPECT_EQ(blockBytes(note.record.text), expected);
}

TEST(NoteTag, TheBlockHoldsTheWholeTextWhateverTheSizeSays) {
    for (const char *size : {"", "0", "1", "4", "65536", "65540"}) {
        OwnedNote note;
        EXPECT_EQ(readNote(pagesWith(std::string("~,1,O,1,2,3,4,") + size + ",whole"), note).result, 1) << size;
        EXPECT_EQ(blockBytes(note.record.text), bytesOf(std::string("whole") + '\0')) << size;
    }
}

TEST(NoteTag, OnlyTheLow16BitsOfASizeCount) {
    OwnedNote note;
    EXPECT_EQ(readNote(pagesWith("~,1,O,1,2,3,4,4294967295,x"), note).result, 1);
    EXPECT_EQ(GlobalSize(note.record.text), 65535U);
}

TEST(NoteTag, WithoutATextHasAnEmptyOne) {
    OwnedNote note;
    EXPECT_EQ(readNote(pagesWith("~,1,O,1,2,3,4,0,"), note).result, 1);
    EXPECT_EQ(note.text(), "");
}

TEST(NoteTag, EndsAtItsTerminator) {
    OwnedNote note;
    EXPECT_EQ(readNote(pagesWith(std::string("~,1,O,1,2,3,4,0,ab\0cd", 21)), note).result, 1);
    EXPECT_EQ(note.text(), "ab");
    EXPECT_EQ(GlobalSize(note.record.text), 3U);
}

// ---------------------------------------------------------------- what is no note

TEST(NoteTag, AHostNameIsNoNote) {
    expectNoNote(std::string("mailhost") + '\0');
    expectNoNote("1,O,1,2,3,4,5,x");
    expectNoNote(" ~,1,O,1,2,3,4,5,x");
}

TEST(NoteTag, ThatEndsBeforeItsTextIsNoNote) {
    const std::string whole = "~,1,O,1,2,3,4,5,";
    for (std::size_t length = 1; length < whole.size(); ++length) {
        expectNoNote(whole.substr(0, length));
        expectNoNote(whole.substr(0, length) + '\0');
        expectNoNote(whole.substr(0, length) + '\0' + ",,,,,,,,");
    }
    expectNoNote("~" + std::string(200, 'x'));
    expectNoNote(std::string(1, '\0'));
}

TEST(NoteTag, OfAnotherTypeIsReadForItsBytes) {
    OwnedNote note;
    EXPECT_EQ(readNote(pagesWith("~,1,O,1,2,3,4,5,x", 1), note).result, 1);
    EXPECT_EQ(note.text(), "x");
}

TEST(NoteTag, IsNotReadWithoutHandleRecordOrImage) {
    const Bytes file = pagesWith("~,1,O,1,2,3,4,5,x");
    const OpenedTiff tiff(file);
    OwnedNote note;
    EXPECT_EQ(GetNoteTagFromTiff(nullptr, 0, &note.record), 0);
    EXPECT_EQ(GetNoteTagFromTiff(tiff.get(), 0, nullptr), 0);
    const Read read = readNote(file, note, 2);
    EXPECT_EQ(read.result, 0);
    EXPECT_NE(read.error, static_cast<DWORD>(VELLUM_OK)) << "that of GetTiffImage";
}

// ---------------------------------------------------------------- want of memory

TEST(NoteTag, WithoutMemoryIsNeitherWrittenNorRead) {
    const OpenedTiff tiff(pagesWith("~,1,O,1,2,3,4,5,x"));
    OwnedNote note("other");
    ASSERT_EQ(GetTiffImage(tiff.get(), 0), 1U);
    int failures = 0;
    for (long nth = 0; nth < 20; ++nth) {
        OwnedNote read;
        LONG got = 0;
        bool happened = false;
        {
            const FailNth fault(Call::Allocate, nth);
            got = GetNoteTagFromTiff(tiff.get(), 0, &read.record);
            happened = fault.happened();
        }
        EXPECT_EQ(got, happened ? 0 : 1) << nth;
        EXPECT_EQ(read.text(), happened ? "(none)" : "x") << nth;
        failures += happened ? 1 : 0;
    }
    EXPECT_GT(failures, 1);
    LONG added = 0;
    for (long nth = 0; nth < 20 && added == 0; ++nth) {
        const FailNth fault(Call::Allocate, nth);
        added = AddNoteTagToTiff(tiff.get(), 0, &note.record);
        EXPECT_EQ(lockCount(note.record.text), 0U);
        EXPECT_TRUE(added == 1 || fault.happened());
    }
    EXPECT_EQ(storedNote(tiff), std::string("~,1,T,0,0,0,0,6,other") + '\0');
}

} // namespace
