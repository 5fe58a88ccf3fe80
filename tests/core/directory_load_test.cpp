// The load of one directory with all its values.
#include "core/directory_reader.h"
#include "core/image_directory.h"
#include "opened_tiff.h"
#include "support/faults.h"

#include <filesystem>
#include <string>

namespace vellum::test {
namespace {

// All values of a tag as stored.
struct Values {
    LONG result = 0;
    DWORD type = 0;
    DWORD count = 0;
    Bytes data;

    friend bool operator==(const Values &a, const Values &b) {
        return a.result == b.result && a.type == b.type && a.count == b.count && a.data == b.data;
    }
    friend void PrintTo(const Values &values, std::ostream *out) {
        *out << "result " << values.result << " type " << values.type << " count " << values.count << " data "
             << ::testing::PrintToString(values.data);
    }
};

Values valuesOf(TiffHandle tiff, LONG tag, DWORD index = 0) {
    Values values;
    HGLOBAL data = nullptr;
    values.result = GetTiffImageInfoBuffer(tiff, index, tag, &data, &values.type, &values.count);
    values.data = blockBytes(data);
    GlobalFree(data);
    return values;
}

constexpr LONG kTag = 40000;

class Load : public ::testing::TestWithParam<Variant> {
protected:
    void SetUp() override { SetTiffError(VELLUM_OK); }
    void TearDown() override { SetTiffError(VELLUM_OK); }

    [[nodiscard]] tiff::Builder builder() const { return tiff::Builder(GetParam().byteOrder); }
    [[nodiscard]] Place place() const { return GetParam().place; }

    // What a directory with this one entry holds.
    [[nodiscard]] Values loaded(const tiff::Entry &entry) const {
        const OneImage image({entry}, GetParam().byteOrder, place());
        EXPECT_TRUE(image.registered());
        EXPECT_EQ(TiffError(), 0u);
        return valuesOf(image.get(), entry.tag);
    }
};
INSTANTIATE_TEST_SUITE_P(, Load, allVariants(), variantName);

TEST_P(Load, PutsInlineNumbersIntoMachineOrder) {
    EXPECT_EQ(loaded(tiff::shorts(kTag, {0x0102})), (Values{1, 3, 1, {2, 1, 0, 0}})) << "all 4 bytes are kept";
    EXPECT_EQ(loaded(tiff::shorts(kTag, {0x0102, 0x0304})), (Values{1, 3, 2, {2, 1, 4, 3}}));
    EXPECT_EQ(loaded(tiff::longs(kTag, {0x01020304})), (Values{1, 4, 1, {4, 3, 2, 1}}));
    EXPECT_EQ(loaded(tiff::byteValues(kTag, {1, 2, 3})), (Values{1, 1, 3, {1, 2, 3, 0}}));
    EXPECT_EQ(loaded(tiff::ascii(kTag, "abc")), (Values{1, 2, 4, {'a', 'b', 'c', 0}}));
}

TEST_P(Load, KeepsAllFourBytesOfAField) {
    // The bytes behind the values: whatever the writer left there, in the order of the entry's own type.
    tiff::Builder file = builder();
    const std::uint32_t directory = file.directory({tiff::shorts(kTag, {0x0102}), tiff::byteValues(kTag + 1, {9})});
    file.set16(directory + 2 + 10, 0xBBAA);
    file.set16(directory + 2 + 12 + 10, 0x5555);
    const OpenedTiff tiff(file.bytes(), place());
    GetTiffImage(tiff.get(), 0);
    EXPECT_EQ(valuesOf(tiff.get(), kTag), (Values{1, 3, 1, {2, 1, 0xAA, 0xBB}}));
    EXPECT_EQ(valuesOf(tiff.get(), kTag + 1), (Values{1, 1, 1, {9, 0, 0x55, 0x55}}));
}

TEST_P(Load, FetchesValuesFromOutside) {
    EXPECT_EQ(loaded(tiff::shorts(kTag, {0x0102, 0x0304, 0x0506})), (Values{1, 3, 3, {2, 1, 4, 3, 6, 5}}));
    EXPECT_EQ(loaded(tiff::longs(kTag, {0x01020304, 5})), (Values{1, 4, 2, {4, 3, 2, 1, 5, 0, 0, 0}}));
    EXPECT_EQ(loaded(tiff::typed(kTag, 9, 2, 4, {0x01020304, 5})), (Values{1, 9, 2, {4, 3, 2, 1, 5, 0, 0, 0}}));
    EXPECT_EQ(loaded(tiff::rationals(kTag, {0x01020304, 5})), (Values{1, 5, 1, {4, 3, 2, 1, 5, 0, 0, 0}}));
    EXPECT_EQ(loaded(tiff::ascii(kTag, "abcde")), (Values{1, 2, 6, {'a', 'b', 'c', 'd', 'e', 0}}));
    EXPECT_EQ(loaded(tiff::typed(kTag, 7, 5, 1, {1, 2, 3, 4, 5})), (Values{1, 7, 5, {1, 2, 3, 4, 5}}));
}

// By design.
TEST_P(Load, KeepsSignedShortsByteForByte) {
    EXPECT_EQ(loaded(tiff::typed(kTag, 8, 4, 1, {1, 2, 3, 4})), (Values{1, 8, 4, {1, 2, 3, 4}}));
    EXPECT_EQ(loaded(tiff::typed(kTag, 8, 6, 1, {1, 2, 3, 4, 5, 6})), (Values{1, 8, 6, {1, 2, 3, 4, 5, 6}}));
}

TEST_P(Load, KeepsTypesItDoesNotKnowAsBytes) {
    EXPECT_EQ(loaded(tiff::typed(kTag, 12, 1, 1, {1, 2, 3, 4})), (Values{1, 12, 1, {1, 2, 3, 4}}));
    EXPECT_EQ(loaded(tiff::typed(kTag, 0, 2, 1, {1, 2})), (Values{1, 0, 2, {1, 2, 0, 0}}));
    EXPECT_EQ(loaded(tiff::typed(kTag, 65535, 5, 1, {1, 2, 3, 4, 5})), (Values{1, 65535, 5, {1, 2, 3, 4, 5}}));
}

// By design.
TEST_P(Load, TakesALoneSlongForTheOffsetOfItsValue) {
    tiff::Builder file = builder();
    file.put32(0x01020304);
    file.directory({tiff::field(kTag, 9, 1, 8)});
    const OpenedTiff tiff(file.bytes(), place());
    EXPECT_EQ(GetTiffImage(tiff.get(), 0), 1u);
    EXPECT_EQ(valuesOf(tiff.get(), kTag), (Values{1, 9, 1, {4, 3, 2, 1}}));
}

TEST_P(Load, KeepsTheFieldOfEntriesWithoutValues) {
    const bool mm = GetParam().byteOrder == tiff::kMM;
    const Bytes raw = mm ? Bytes{1, 2, 3, 4} : Bytes{4, 3, 2, 1};
    EXPECT_EQ(loaded(tiff::field(kTag, 5, 0, 0x01020304)), (Values{1, 5, 0, raw}));
    EXPECT_EQ(loaded(tiff::field(kTag, 1, 0, 0x01020304)), (Values{1, 1, 0, raw}));
    EXPECT_EQ(loaded(tiff::field(kTag, 4, 0, 0x01020304)), (Values{1, 4, 0, {4, 3, 2, 1}}));
    EXPECT_EQ(loaded(tiff::field(kTag, 9, 0, 0x01020304)), (Values{1, 9, 0, {4, 3, 2, 1}}));
}

TEST_P(Load, KeepsEveryTagInTheOrderOfTheFile) {
    const OneImage image({tiff::shorts(300, {1}), tiff::shorts(257, {2}), tiff::shorts(300, {3}),
                          tiff::longs(65535, {4}), tiff::longs(0, {5})},
                         GetParam().byteOrder, place());
    EXPECT_EQ(valuesOf(image.get(), 0).data,
              (Bytes{0x2C, 1, 0, 0, 1, 1, 0, 0, 0x2C, 1, 0, 0, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(valuesOf(image.get(), 300).data, (Bytes{1, 0, 0, 0})) << "the first of two";
    EXPECT_EQ(valuesOf(image.get(), 65535).data, (Bytes{4, 0, 0, 0}));
}

TEST_P(Load, TakesADirectoryWithoutEntries) {
    const OneImage image({}, GetParam().byteOrder, place());
    EXPECT_TRUE(image.registered());
    const Values list = valuesOf(image.get(), 0);
    EXPECT_EQ(list.result, 1);
    EXPECT_EQ(list.type, 4u);
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(valuesOf(image.get(), 256).result, 0);
    EXPECT_EQ(TiffError(), 13u);
}

// More entries than are read at a time, each with values outside.
TEST_P(Load, FetchesTheValuesOfLargeDirectories) {
    std::vector<tiff::Entry> entries;
    for (std::uint32_t i = 0; i < 5000; ++i) {
        entries.push_back(i % 3 == 0 ? tiff::shorts(i + 1, {i, i + 1}) : tiff::longs(i + 1, {i, i * 1000}));
    }
    const OneImage image(entries, GetParam().byteOrder, place());
    ASSERT_TRUE(image.registered());
    for (DWORD i = 0; i < 5000; i += 7) {
        DWORD first = 0xFFFFFFFF;
        EXPECT_EQ(GetTiffImageInfo(image.get(), 0, static_cast<LONG>(i + 1), &first), 1);
        EXPECT_EQ(first, i);
    }
    EXPECT_EQ(valuesOf(image.get(), 0).count, 5000u);
    EXPECT_EQ(valuesOf(image.get(), 5000).data.size(), 8u);
}

TEST_P(Load, DeliversValuesThatEntriesShare) {
    tiff::Builder file = builder();
    const std::uint32_t text = file.append({'s', 'h', 'a', 'r', 'e', 'd', 0, 0});
    std::vector<tiff::Entry> entries;
    for (std::uint32_t i = 0; i < 20; ++i) {
        entries.push_back(tiff::field(kTag + i, 2, 7, text));
    }
    file.directory(entries);
    const OpenedTiff tiff(file.bytes(), place());
    EXPECT_EQ(GetTiffImage(tiff.get(), 0), 1u);
    EXPECT_EQ(valuesOf(tiff.get(), kTag + 19).data, (Bytes{'s', 'h', 'a', 'r', 'e', 'd', 0}));
}

// In a file such values lie outside; memory is asked for neither there nor for a TIFF in memory.
TEST_P(Load, RefusesSizesBeyond2GB) {
    for (const std::uint32_t count : {0x20000000u, 0x40000000u, 0xFFFFFFFFu}) {
        const OneImage image({tiff::field(kTag, 4, count, 8)}, GetParam().byteOrder, place());
        EXPECT_FALSE(image.registered());
        EXPECT_EQ(SetTiffError(0), place() == Place::File ? 6u : 1u) << count;
    }
}

// Entries that all claim the same bytes: 100 MB, 3 GB and 6.5 GB out of files of less than a megabyte.
TEST_P(Load, RefusesDirectoriesThatClaimFarMoreThanTheFileHoldsWithError1) {
    struct {
        std::uint32_t entries, bytes;
    } const cases[] = {{2000, 50000}, {60000, 50000}, {65000, 100000}};
    for (const auto &[entries, bytes] : cases) {
        tiff::Builder file = builder();
        const std::uint32_t data = file.append(Bytes(bytes, 7));
        file.directory(std::vector<tiff::Entry>(entries, tiff::field(kTag, 1, bytes, data)));
        const OpenedTiff tiff(file.bytes(), place());
        const FailNth counter(Call::Allocate, FailNth::kNever);
        EXPECT_EQ(GetTiffImage(tiff.get(), 0), 0u);
        EXPECT_EQ(SetTiffError(0), 1u);
        EXPECT_EQ(counter.calls(), 0u) << "without asking for memory";
    }
}

TEST_P(Load, NeedsMemoryForTheDirectory) {
    tiff::Builder file = builder();
    file.directory({tiff::shorts(256, {1})});
    const OpenedTiff tiff(file.bytes(), place());
    {
        const FailNth fault(Call::Allocate, 0);
        EXPECT_EQ(GetTiffImage(tiff.get(), 0), 0u);
    }
    EXPECT_EQ(SetTiffError(0), 1u);
    EXPECT_EQ(IsTiffImageRegistered(tiff.get(), 0), 0u);
    EXPECT_EQ(GetTiffImage(tiff.get(), 0), 1u);
}

TEST_P(Load, AllocatesTheRecordsAndElevenBytes) {
    const OneImage image({tiff::shorts(256, {1}), tiff::shorts(258, {8, 8, 8})}, GetParam().byteOrder, place());
    const TiffFileView file(image.get());
    const GlobalView<const DirectoryHead> head(file->images[0].directory);
    ASSERT_TRUE(head);
    EXPECT_EQ(head.bytes(), 16u + 18 + 11);
    const DirectoryHead copy = *head;
    const DWORD capacity = copy.capacity;
    const DWORD used = copy.used;
    const WORD count = copy.entryCount;
    EXPECT_EQ(count, 2);
    EXPECT_EQ(capacity, 16u + 18 + 1);
    EXPECT_EQ(used, 16u + 18);
    EXPECT_EQ(lockCount(file->images[0].directory), 1u) << "only this test's own lock";
}

// By design: the index is not held against the number of images.
TEST_P(Load, OfAnIndexBehindTheLastImageReadsTheHeader) {
    tiff::Builder file = builder();
    file.directory({tiff::shorts(256, {1})});
    const OpenedTiff tiff(file.bytes(), place());
    EXPECT_EQ(GetTiffImage(tiff.get(), 1), 0u) << "no directory is there";
    EXPECT_EQ(SetTiffError(0), 6u);
    EXPECT_EQ(GetTiffImage(tiff.get(), 999), 0u);
    EXPECT_EQ(SetTiffError(0), 6u);
    EXPECT_EQ(IsTiffImageRegistered(tiff.get(), 999), 0u);
}

class ErrorFree : public ::testing::Test {
protected:
    void SetUp() override { SetTiffError(VELLUM_OK); }
    void TearDown() override { SetTiffError(VELLUM_OK); }
};
using LoadFromAFile = ErrorFree;
using LoadFromMemory = ErrorFree;
using LoadedDirectory = ErrorFree;

TEST_F(LoadFromAFile, RefusesValuesThatLieOutsideWithError6) {
    tiff::Builder file;
    file.directory({tiff::longs(kTag, {1, 2})});
    const auto end = file.position();
    struct {
        DWORD type, count, offset;
        bool fits;
    } const cases[] = {
        {4, 2, end - 8, true},     {4, 2, end - 7, false},    {4, 2, end, false},        {1, 5, end - 5, true},
        {1, 5, end - 4, false},    {4, 1000, 8, false},       {5, 1, end - 8, true},     {5, 1, end - 7, false},
        {9, 1, end - 4, true},     {9, 1, end - 3, false},    {4, 2, 100000, false},     {4, 2, 0x7FFFFFFF, false},
        {4, 2, 0x80000000, false}, {4, 2, 0xFFFFFFFF, false}, {4, 2, 0xFFFFFFF8, false}, {1, 0x70000000, 8, false},
    };
    for (const auto &value : cases) {
        tiff::Builder edited = file;
        edited.set16(8 + 2 + 2, value.type);
        edited.set32(8 + 2 + 4, value.count);
        edited.set32(8 + 2 + 8, value.offset);
        const OpenedTiff tiff(edited.bytes(), Place::File);
        ASSERT_TRUE(tiff);
        const FailNth counter(Call::Allocate, FailNth::kNever);
        EXPECT_EQ(GetTiffImage(tiff.get(), 0), value.fits ? 1u : 0u)
            << value.type << " " << value.count << " " << value.offset;
        EXPECT_EQ(SetTiffError(0), value.fits ? 0u : 6u);
        EXPECT_EQ(counter.calls(), value.fits ? 1u : 0u) << "no memory for what is not there";
        EXPECT_EQ(IsTiffImageRegistered(tiff.get(), 0), value.fits ? 1u : 0u);
    }
}

TEST_F(LoadFromMemory, ReadsZerosForValuesBehindItsEnd) {
    tiff::Builder file;
    const std::uint32_t end = file.directory({tiff::field(kTag, 1, 6, 24)}) + 2 + 12 + 4;
    file.append({7, 7});
    ASSERT_EQ(end, 26u);
    const OpenedTiff tiff(file.bytes(), Place::Memory);
    EXPECT_EQ(GetTiffImage(tiff.get(), 0), 1u);
    EXPECT_EQ(valuesOf(tiff.get(), kTag), (Values{1, 1, 6, {0, 0, 7, 7, 0, 0}}));
}

TEST_F(LoadFromMemory, CannotGoBehindItsEnd) {
    tiff::Builder file;
    file.directory({tiff::field(kTag, 1, 6, 1000)});
    const OpenedTiff tiff(file.bytes(), Place::Memory);
    EXPECT_EQ(GetTiffImage(tiff.get(), 0), 0u);
    EXPECT_EQ(TiffError(), 6u);
}

TEST_F(LoadFromAFile, ThatIsGoneIsError6) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1})});
    file.directory({tiff::shorts(256, {2})});
    const OpenedTiff tiff(file.bytes(), Place::File);
    EXPECT_EQ(GetTiffImage(tiff.get(), 0), 1u);
    std::filesystem::remove(tiff.path());
    EXPECT_EQ(GetTiffImage(tiff.get(), 1), 0u);
    EXPECT_EQ(TiffError(), 6u);
    EXPECT_EQ(GetTiffImage(tiff.get(), 0), 1u) << "is in memory already";
}

// A file that another program changes between the open call and the load.
TEST_F(LoadFromAFile, NeverTakesMoreRoomThanTheDirectoryHadAtTheOpening) {
    tiff::Builder before;
    before.directory({tiff::shorts(256, {1}), tiff::shorts(257, {1})});
    tiff::Builder more;
    more.directory({tiff::shorts(256, {1}), tiff::shorts(257, {1}), tiff::shorts(258, {1})});
    tiff::Builder longer;
    longer.directory({tiff::shorts(256, {1}), tiff::longs(257, {1, 2, 3, 4, 5, 6})});
    tiff::Builder longerByOne;
    longerByOne.directory({tiff::shorts(256, {1}), tiff::byteValues(257, {1, 2, 3, 4, 5})});
    for (const tiff::Builder *after : {&more, &longer, &longerByOne}) {
        for (const Place place : {Place::File, Place::Memory}) {
            Bytes content = before.bytes();
            content.resize(200);
            Bytes changed = after->bytes();
            changed.resize(200);
            const OpenedTiff tiff(content, place);
            if (place == Place::File) {
                ASSERT_TRUE(writeFile(tiff.path(), changed));
            } else {
                const GlobalView<BYTE> block(tiff.block());
                std::memcpy(block.get(), changed.data(), changed.size());
            }
            const FailNth counter(Call::Allocate, FailNth::kNever);
            EXPECT_EQ(GetTiffImage(tiff.get(), 0), 0u);
            EXPECT_EQ(SetTiffError(0), 6u);
            EXPECT_EQ(counter.calls(), place == Place::File ? 0u : 1u) << "a file is looked through first";
        }
    }
}

TEST_F(LoadFromAFile, TakesADirectoryThatShrankMeanwhile) {
    tiff::Builder before;
    before.directory({tiff::shorts(256, {1}), tiff::shorts(257, {1})});
    tiff::Builder after;
    after.directory({tiff::shorts(256, {5})});
    const OpenedTiff tiff(before.bytes(), Place::File);
    ASSERT_TRUE(writeFile(tiff.path(), after.bytes()));
    EXPECT_EQ(GetTiffImage(tiff.get(), 0), 1u);
    DWORD width = 0;
    EXPECT_EQ(GetTiffImageInfo(tiff.get(), 0, 256, &width), 1);
    EXPECT_EQ(width, 5u);
    EXPECT_EQ(GetTiffImageInfo(tiff.get(), 0, 257, &width), 0);
}

TEST_F(LoadFromAFile, SurvivesEveryFailingCall) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1}), tiff::longs(kTag, {1, 2, 3}), tiff::shorts(258, {8, 8, 8})});
    for (const Call call : {Call::Open, Call::Read, Call::Seek}) {
        const OpenedTiff counted(file.bytes(), Place::File);
        unsigned long calls = 0;
        {
            const FailNth counter(call, FailNth::kNever);
            EXPECT_EQ(GetTiffImage(counted.get(), 0), 1u);
            calls = counter.calls();
        }
        EXPECT_GT(calls, 0u);
        for (unsigned long nth = 0; nth < calls; ++nth) {
            const OpenedTiff tiff(file.bytes(), Place::File);
            SetTiffError(0);
            DWORD registered = 0;
            {
                const FailNth fault(call, static_cast<long>(nth));
                registered = GetTiffImage(tiff.get(), 0);
            }
            EXPECT_EQ(IsTiffImageRegistered(tiff.get(), 0), registered);
            EXPECT_EQ(TiffError(), registered == 1 ? 0u : 6u) << static_cast<int>(call) << " " << nth;
            if (call != Call::Seek) {
                EXPECT_EQ(registered, 0u) << static_cast<int>(call) << " " << nth;
            }
            SetTiffError(0);
        }
    }
}

// A caller can write into the block that a handle is; a directory that makes no sense ends the search.
TEST_F(LoadedDirectory, IsNotTrustedBlindlyAfterwards) {
    for (const DWORD length : {0u, 11u, 34u, 46u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        const OneImage image({tiff::shorts(256, {1}), tiff::shorts(257, {2})});
        {
            const TiffFileView file(image.get());
            const GlobalView<BYTE> directory(file->images[0].directory);
            std::memcpy(directory.get() + sizeof(DirectoryHead), &length, sizeof length);
        }
        DWORD value = 7;
        SetTiffError(0);
        EXPECT_EQ(GetTiffImageInfo(image.get(), 0, 257, &value), 0) << length;
        EXPECT_EQ(TiffError(), 13u);
        EXPECT_EQ(valuesOf(image.get(), 256).result, 0) << "its own record is the broken one";
        EXPECT_EQ(valuesOf(image.get(), 0).data, Bytes(8));
    }
}

} // namespace
} // namespace vellum::test
