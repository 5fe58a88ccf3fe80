// Annotations of the companion module: what it is asked and handed, what is stored, and that nothing happens without
// it. Functions of the test stand in for the module.
#include "support/decode_lines.h"
#include "support/faults.h"
#include "support/read_tags.h"
#include "support/tiff_builder.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr char kModule[] = "rmark32.dll";
constexpr DWORD kSet = 0x12345678;
constexpr DWORD kRecreated = 0xFEDCBA98;
constexpr DWORD kDefaultTag = 32768;

const Bytes kPixels = {0x5A, 0xA5};

// ---------------------------------------------------------------- the stand-in

struct Noted {
    Bytes saves = {1, 2, 3, 4, 5, 6, 7}; // what the set is made of
    DWORD count = 7;                     // what the module says that it needs
    DWORD filled = 1;                    // what it answers when it is to fill the buffer
    bool endsWithZero = false;

    std::vector<DWORD> sets; // in the order of the calls
    std::vector<DWORD> sizes;
    Bytes bufferBefore;
    Bytes loaded;
    int loads = 0;
} noted;

DWORD VELLUMAPI getSaveCount(DWORD annotations) {
    noted.sets.push_back(annotations);
    return noted.count;
}

DWORD VELLUMAPI getSaveData(DWORD annotations, BYTE *buffer, DWORD size) {
    noted.sets.push_back(annotations);
    noted.sizes.push_back(size);
    noted.bufferBefore.assign(buffer, buffer + size + 1);
    std::memcpy(buffer, noted.saves.data(), noted.saves.size());
    if (noted.endsWithZero) {
        buffer[size] = 0;
    }
    return noted.filled;
}

DWORD VELLUMAPI createOnLoad(BYTE *data, DWORD count) {
    ++noted.loads;
    noted.loaded.assign(data, data + count);
    return kRecreated;
}

std::vector<ModuleEntry> allEntries() {
    return {moduleEntry("RmkGetSaveCount", &getSaveCount), moduleEntry("RmkGetSaveData", &getSaveData),
            moduleEntry("RmkCreateOnLoad", &createOnLoad)};
}

std::vector<ModuleEntry> allEntriesBut(const char *missing) {
    std::vector<ModuleEntry> entries = allEntries();
    std::erase_if(entries, [missing](const ModuleEntry &entry) { return entry.name == missing; });
    return entries;
}

// ---------------------------------------------------------------- files

std::vector<tiff::Entry> pageTags() {
    return {tiff::longs(256, {8}),  tiff::longs(257, {2}),  tiff::shorts(258, {1}),
            tiff::shorts(259, {1}), tiff::shorts(262, {1}), tiff::shorts(278, {2})};
}

// An image with these tags besides.
tiff::Builder onePage(const std::vector<tiff::Entry> &more) {
    tiff::Builder file;
    std::vector<tiff::Entry> entries = pageTags();
    entries.insert(entries.end(), more.begin(), more.end());
    file.page(entries, {kPixels});
    return file;
}

// The same and a second image.
Bytes page(const std::vector<tiff::Entry> &more = {}) {
    tiff::Builder file = onePage(more);
    file.page(pageTags(), {kPixels});
    return file.bytes();
}

DWORD save(const char *path, DWORD annotations = kSet, DWORD tag = 0) {
    const TiffHandle tiff = OpenTiffFile(path, T_APPEND);
    const DWORD result = SaveAnnotationIntoTiff(tiff, annotations, tag);
    CloseTiffFile(tiff);
    return result;
}

StoredTag tagOf(const char *path, DWORD index, DWORD tag) {
    const OpenedTiff tiff{std::string(path)};
    EXPECT_TRUE(registerImage(tiff.get(), index));
    return storedTag(tiff.get(), index, static_cast<LONG>(tag));
}

// Both pages are there and whole.
void expectPages(const char *path) {
    const OpenedTiff tiff{std::string(path)};
    ASSERT_EQ(NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES), 2);
    for (const DWORD index : {DWORD{0}, DWORD{1}}) {
        ASSERT_TRUE(registerImage(tiff.get(), index));
        LineLog log;
        EXPECT_EQ(decodeInto(log, tiff.get(), index), kDecoded);
        EXPECT_EQ(log.data, kPixels);
    }
}

class Annotations : public ::testing::Test {
protected:
    Annotations() { noted = {}; }
};

// ---------------------------------------------------------------- saving

TEST_F(Annotations, AreStoredAsTheModuleGivesThem) {
    const CompanionModule module(kModule, allEntries());
    const TempFile file(page());
    EXPECT_EQ(save(file.path()), 1U);
    EXPECT_EQ(module.loads(), 0) << "loaded for the call only";
    EXPECT_EQ(noted.sets, (std::vector<DWORD>{kSet, kSet}));
    EXPECT_EQ(noted.sizes, std::vector<DWORD>{7});
    EXPECT_EQ(noted.bufferBefore, Bytes(8)) << "zeros, and one byte more than asked for";
    const StoredTag tag = tagOf(file.path(), 0, kDefaultTag);
    EXPECT_EQ(tag.type, 1U);
    EXPECT_EQ(tag.count, 7U);
    EXPECT_EQ(tag.bytes, noted.saves);
    EXPECT_EQ(tagOf(file.path(), 1, kDefaultTag), StoredTag()) << "only the first image has them";
    expectPages(file.path());
}

TEST_F(Annotations, ReplaceThoseThatWereThere) {
    const CompanionModule module(kModule, allEntries());
    const TempFile file(page({tiff::byteValues(kDefaultTag, {9, 9, 9, 9, 9, 9, 9, 9, 9, 9})}));
    EXPECT_EQ(save(file.path()), 1U);
    EXPECT_EQ(tagOf(file.path(), 0, kDefaultTag).bytes, noted.saves);
    noted.saves = {8, 8};
    noted.count = 2;
    EXPECT_EQ(save(file.path()), 1U);
    const StoredTag tag = tagOf(file.path(), 0, kDefaultTag);
    EXPECT_EQ(tag.count, 2U);
    EXPECT_EQ(tag.bytes[0], 8);
    EXPECT_EQ(tag.bytes[1], 8);
}

TEST_F(Annotations, MayHaveATagOfTheirOwn) {
    const CompanionModule module(kModule, allEntries());
    const TempFile file(page());
    EXPECT_EQ(save(file.path(), kSet, 40000), 1U);
    EXPECT_EQ(tagOf(file.path(), 0, 40000).bytes, noted.saves);
    EXPECT_EQ(tagOf(file.path(), 0, kDefaultTag), StoredTag());
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 40000), kRecreated);
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), 0U);
}

TEST_F(Annotations, MayBeFollowedByAZeroThatIsNotStored) {
    const CompanionModule module(kModule, allEntries());
    noted.endsWithZero = true;
    const TempFile file(page());
    EXPECT_EQ(save(file.path()), 1U);
    EXPECT_EQ(tagOf(file.path(), 0, kDefaultTag).bytes, noted.saves);
}

// By design: to save an empty set removes the annotations, and the result is 0.
TEST_F(Annotations, AnEmptySetRemovesThem) {
    const CompanionModule module(kModule, allEntries());
    const TempFile file(page({tiff::byteValues(kDefaultTag, {9, 9, 9, 9, 9}), tiff::byteValues(40000, {7})}));
    ASSERT_EQ(tagOf(file.path(), 0, kDefaultTag).count, 5U);
    noted.count = 0;
    EXPECT_EQ(save(file.path()), 0U);
    EXPECT_TRUE(noted.sizes.empty()) << "nothing to fill";
    EXPECT_EQ(tagOf(file.path(), 0, kDefaultTag), StoredTag());
    EXPECT_EQ(tagOf(file.path(), 0, 40000).count, 1U) << "the other tag is not theirs";
    expectPages(file.path());
    EXPECT_EQ(save(file.path(), kSet, 40000), 0U);
    EXPECT_EQ(tagOf(file.path(), 0, 40000), StoredTag());
    EXPECT_EQ(module.loads(), 0);
}

TEST_F(Annotations, NoSetTouchesNothing) {
    const CompanionModule module(kModule, allEntries());
    const Bytes content = page({tiff::byteValues(kDefaultTag, {9, 9, 9, 9, 9})});
    const TempFile file(content);
    EXPECT_EQ(save(file.path(), 0), 0U);
    EXPECT_TRUE(noted.sets.empty());
    EXPECT_EQ(readFile(file.path()), content);
}

TEST_F(Annotations, AModuleThatCannotFillTheBufferChangesNothing) {
    const CompanionModule module(kModule, allEntries());
    noted.filled = 0;
    const Bytes content = page({tiff::byteValues(kDefaultTag, {9, 9, 9, 9, 9})});
    const TempFile file(content);
    EXPECT_EQ(save(file.path()), 0U);
    EXPECT_EQ(readFile(file.path()), content);
    EXPECT_EQ(module.loads(), 0);
}

TEST_F(Annotations, CountsThatNoMemoryHoldsChangeNothing) {
    const CompanionModule module(kModule, allEntries());
    const Bytes content = page();
    const TempFile file(content);
    for (const DWORD count : {0xFFFFFFFFUL, 0xFFFFFFFEUL, 0x80000000UL, 0x7FFFFFFFUL}) {
        noted.count = count;
        EXPECT_EQ(save(file.path()), 0U);
    }
    EXPECT_TRUE(noted.sizes.empty()) << "the module was asked to fill a buffer that cannot be there";
    EXPECT_EQ(readFile(file.path()), content);
}

TEST_F(Annotations, ATiffInMemoryOrNoTiffTakesNone) {
    const CompanionModule module(kModule, allEntries());
    const OpenedTiff tiff(page());
    EXPECT_EQ(SaveAnnotationIntoTiff(tiff.get(), kSet, 0), 0U);
    EXPECT_EQ(SaveAnnotationIntoTiff(nullptr, kSet, 0), 0U);
    noted.count = 0;
    EXPECT_EQ(SaveAnnotationIntoTiff(tiff.get(), kSet, 0), 0U);
}

// ---------------------------------------------------------------- loading

TEST_F(Annotations, AreHandedBackToTheModule) {
    const CompanionModule module(kModule, allEntries());
    const Bytes content = page({tiff::byteValues(kDefaultTag, {9, 8, 7, 6, 5, 4})});
    const TempFile file(content);
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), kRecreated);
    EXPECT_EQ(noted.loads, 1);
    EXPECT_EQ(noted.loaded, (Bytes{9, 8, 7, 6, 5, 4}));
    EXPECT_EQ(module.loads(), 0);
    EXPECT_EQ(readFile(file.path()), content);
}

TEST_F(Annotations, AFewBytesAreHandedBackToo) {
    const CompanionModule module(kModule, allEntries());
    const TempFile file(page({tiff::byteValues(kDefaultTag, {9, 8})}));
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), kDefaultTag), kRecreated);
    EXPECT_EQ(noted.loaded, (Bytes{9, 8}));
}

TEST_F(Annotations, WhatWasSavedIsLoaded) {
    const CompanionModule module(kModule, allEntries());
    const TempFile file(page());
    noted.saves.assign(100000, 0x3C);
    noted.count = 100000;
    ASSERT_EQ(save(file.path()), 1U);
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), kRecreated);
    EXPECT_TRUE(noted.loaded == noted.saves);
}

TEST_F(Annotations, TagsOfAnotherTypeAreNotTheirs) {
    const CompanionModule module(kModule, allEntries());
    for (const tiff::Entry &entry : {tiff::ascii(kDefaultTag, "rmkrmk"), tiff::shorts(kDefaultTag, {1, 2, 3}),
                                     tiff::longs(kDefaultTag, {1}), tiff::typed(kDefaultTag, 7, 4, 1, {1, 2, 3, 4})}) {
        const TempFile file(page({entry}));
        EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), 0U) << entry.type;
    }
    EXPECT_EQ(noted.loads, 0);
}

TEST_F(Annotations, WithoutTheTagThereIsNoSet) {
    const CompanionModule module(kModule, allEntries());
    const TempFile file(page());
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_TAG_NOT_DEFINED});
    EXPECT_EQ(LoadAnnotationFromTiff("no such file", 0), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(LoadAnnotationFromTiff(nullptr, 0), 0U);
    const TempFile empty(tiff::Builder().bytes());
    EXPECT_EQ(LoadAnnotationFromTiff(empty.path(), 0), 0U) << "no image";
    EXPECT_EQ(noted.loads, 0);
    EXPECT_EQ(module.loads(), 0);
}

// ---------------------------------------------------------------- without the module, or without its entries

// Neither call does anything to the file, nor asks it of the module.
void expectNothingHappens() {
    const Bytes content = page({tiff::byteValues(kDefaultTag, {9, 9, 9, 9, 9})});
    const TempFile file(content);
    noted = {};
    const MessageBoxes boxes;
    EXPECT_EQ(save(file.path()), 0U);
    noted.count = 0;
    EXPECT_EQ(save(file.path()), 0U);
    EXPECT_EQ(readFile(file.path()), content);
    EXPECT_TRUE(noted.sets.empty());
    EXPECT_EQ(boxes.count(), 0) << "nobody is told";
}

TEST_F(Annotations, WithoutTheModuleNothingHappens) {
    const CompanionModule other("rmark.dll", allEntries());
    expectNothingHappens();
    const TempFile file(page({tiff::byteValues(kDefaultTag, {9})}));
    SetTiffError(VELLUM_EOFB_MISSING);
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_EOFB_MISSING}) << "the file was opened";
    EXPECT_EQ(noted.loads, 0);
}

TEST_F(Annotations, WithoutAnEntryForSavingNothingIsSaved) {
    for (const char *missing : {"RmkGetSaveCount", "RmkGetSaveData"}) {
        const CompanionModule module(kModule, allEntriesBut(missing));
        expectNothingHappens();
        EXPECT_EQ(module.loads(), 0);
        const TempFile file(page({tiff::byteValues(kDefaultTag, {9})}));
        EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), kRecreated) << "loading needs neither";
    }
}

TEST_F(Annotations, WithoutTheEntryForLoadingThereIsNoSet) {
    const CompanionModule module(kModule, allEntriesBut("RmkCreateOnLoad"));
    const TempFile file(page());
    EXPECT_EQ(save(file.path()), 1U) << "saving does not need it";
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), 0U);
    EXPECT_EQ(module.loads(), 0);
}

TEST_F(Annotations, AHandleBelow32IsNoModule) {
    for (const UINT_PTR handle : {UINT_PTR{2}, UINT_PTR{31}}) {
        const CompanionModule module(kModule, allEntries(), reinterpret_cast<HMODULE>(handle));
        expectNothingHappens();
        const TempFile file(page({tiff::byteValues(kDefaultTag, {9})}));
        EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), 0U);
        EXPECT_EQ(noted.loads, 0);
    }
    const CompanionModule module(kModule, allEntries(), reinterpret_cast<HMODULE>(UINT_PTR{32}));
    const TempFile file(page({tiff::byteValues(kDefaultTag, {9})}));
    EXPECT_EQ(LoadAnnotationFromTiff(file.path(), 0), kRecreated);
    EXPECT_EQ(module.loads(), 0);
}

// ---------------------------------------------------------------- system calls that fail

TEST_F(Annotations, ASaveThatFailsLeavesTheFileAsItWas) {
    const CompanionModule module(kModule, allEntries());
    const Bytes content = page({tiff::byteValues(kDefaultTag, {9, 9, 9, 9, 9})});
    for (const Call call : {Call::Allocate, Call::Reallocate, Call::Open, Call::Read, Call::Write, Call::Seek}) {
        for (long nth = 0;; ++nth) {
            ASSERT_LT(nth, 1000);
            SCOPED_TRACE(std::to_string(static_cast<int>(call)) + ", call " + std::to_string(nth));
            const TempFile file(content);
            const TiffHandle tiff = OpenTiffFile(file.path(), T_APPEND);
            DWORD result = 0;
            bool happened = false;
            {
                const FailNth fault(call, nth);
                result = SaveAnnotationIntoTiff(tiff, kSet, 0);
                happened = fault.happened();
            }
            CloseTiffFile(tiff);
            EXPECT_EQ(module.loads(), 0);
            if (result == 0) {
                EXPECT_EQ(readFile(file.path()), content);
            } else {
                EXPECT_EQ(tagOf(file.path(), 0, kDefaultTag).bytes, noted.saves);
            }
            if (!happened) {
                EXPECT_EQ(result, 1U);
                break;
            }
        }
    }
}

TEST_F(Annotations, ALoadThatFailsGivesNoSet) {
    const CompanionModule module(kModule, allEntries());
    const TempFile file(onePage({tiff::byteValues(kDefaultTag, {9, 9, 9, 9, 9})}).bytes());
    for (const Call call : {Call::Allocate, Call::Open, Call::Read}) {
        for (long nth = 0;; ++nth) {
            ASSERT_LT(nth, 1000);
            SCOPED_TRACE(std::to_string(static_cast<int>(call)) + ", call " + std::to_string(nth));
            DWORD result = 0;
            bool happened = false;
            {
                const FailNth fault(call, nth);
                result = LoadAnnotationFromTiff(file.path(), 0);
                happened = fault.happened();
            }
            EXPECT_EQ(module.loads(), 0);
            if (!happened) {
                EXPECT_EQ(result, kRecreated);
                EXPECT_GT(nth, 0) << "there is no such call";
                break;
            }
            EXPECT_EQ(result, 0U);
        }
    }
}

} // namespace
