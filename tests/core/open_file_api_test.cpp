// Opening and closing TIFFs, and what an open TIFF tells of itself.
#include "opened_tiff.h"
#include "support/faults.h"

#include <cstring>
#include <filesystem>
#include <string>

namespace vellum::test {
namespace {

// A TIFF of full-resolution images without any tags but ImageWidth.
Bytes plainTiff(unsigned images, std::uint16_t byteOrder = tiff::kII) {
    tiff::Builder file(byteOrder);
    for (unsigned i = 0; i < images; ++i) {
        file.directory({tiff::shorts(256, {i + 1})});
    }
    return file.bytes();
}

// A path of this many characters to a file in the folder for temporary files.
std::string longPath(std::size_t length) {
    const std::string folder = tempFolder() + "/";
    return folder + std::string(length - folder.size(), 'x');
}

// GetTiffFileInfo's record, not packed.
struct Info {
    std::string path;
    WORD byteOrder;
    DWORD imageCount;
    DWORD firstDirectoryOffset;
};

Info infoOf(TiffHandle tiff) {
    TiffFileInfo info;
    std::memset(&info, 0xEE, sizeof info);
    EXPECT_EQ(GetTiffFileInfo(tiff, &info), 1u);
    return {info.path, info.byteOrder, info.imageCount, info.firstDirectoryOffset};
}

class OpenFile : public ::testing::Test {
protected:
    void SetUp() override { SetTiffError(VELLUM_OK); }
    void TearDown() override { SetTiffError(VELLUM_OK); }
};

TEST_F(OpenFile, CountsTheImages) {
    const TempFile file(plainTiff(3));
    TiffHandle tiff = OpenTiffFile(file.path(), T_READ);
    ASSERT_NE(tiff, nullptr);
    EXPECT_EQ(TiffError(), 0u);
    EXPECT_EQ(imageCount(tiff), 3u);
    EXPECT_EQ(CloseTiffFile(tiff), 1u);
}

TEST_F(OpenFile, IsNotKeptOpenByItsHandle) {
    const TempFile file(plainTiff(1));
    TiffHandle tiff = OpenTiffFile(file.path(), T_READ);
    EXPECT_TRUE(std::filesystem::remove(file.path()));
    EXPECT_EQ(imageCount(tiff), 1u);
    EXPECT_EQ(CloseTiffFile(tiff), 1u);
}

TEST_F(OpenFile, IsNeverChangedByReading) {
    const Bytes content = plainTiff(2);
    const TempFile file(content);
    for (const DWORD mode : {DWORD{T_READ}, DWORD{T_APPEND}, DWORD{T_CREAT}, DWORD{99}}) {
        TiffHandle tiff = OpenTiffFile(file.path(), mode);
        ASSERT_NE(tiff, nullptr);
        CloseTiffFile(tiff);
    }
    EXPECT_EQ(readFile(file.path()), content);
}

TEST_F(OpenFile, ThatIsMissingCannotBeRead) {
    const TempFile missing;
    EXPECT_EQ(OpenTiffFile(missing.path(), T_READ), nullptr);
    EXPECT_EQ(TiffError(), 6u);
}

TEST_F(OpenFile, ThatIsAFolderCannotBeRead) {
    EXPECT_EQ(OpenTiffFile(tempFolder().c_str(), T_READ), nullptr);
    EXPECT_EQ(TiffError(), 6u);
}

TEST_F(OpenFile, WithoutAPathCannotBeRead) {
    EXPECT_EQ(OpenTiffFile("", T_READ), nullptr);
    EXPECT_EQ(SetTiffError(0), 6u);
    EXPECT_EQ(OpenTiffFile(nullptr, T_READ), nullptr);
    EXPECT_EQ(SetTiffError(0), 6u);
}

TEST_F(OpenFile, MayBeMissingWhenItIsCreatedAndIsNotTouched) {
    const TempFile missing;
    TiffHandle tiff = OpenTiffFile(missing.path(), T_CREAT);
    ASSERT_NE(tiff, nullptr);
    EXPECT_EQ(TiffError(), 0u);
    EXPECT_EQ(imageCount(tiff), 0u);
    EXPECT_EQ(CloseTiffFile(tiff), 1u);
    EXPECT_FALSE(readFile(missing.path()).has_value()) << "nothing was created";
}

TEST_F(OpenFile, MayBeMissingWhenItIsAppendedTo) {
    const TempFile missing;
    TiffHandle tiff = OpenTiffFile(missing.path(), T_APPEND);
    ASSERT_NE(tiff, nullptr);
    EXPECT_EQ(TiffError(), 0u);
    EXPECT_EQ(imageCount(tiff), 0u);
    EXPECT_EQ(CloseTiffFile(tiff), 1u);
    EXPECT_FALSE(readFile(missing.path()).has_value());
    tiff = OpenTiffFile(nullptr, T_APPEND);
    ASSERT_NE(tiff, nullptr);
    EXPECT_EQ(CloseTiffFile(tiff), 1u);
}

TEST_F(OpenFile, IsReadWhenItIsAppendedTo) {
    const TempFile file(plainTiff(2));
    TiffHandle tiff = OpenTiffFile(file.path(), T_APPEND);
    EXPECT_EQ(imageCount(tiff), 2u);
    CloseTiffFile(tiff);
    const TempFile garbage(Bytes{'x', 'y', 'z'});
    EXPECT_EQ(OpenTiffFile(garbage.path(), T_APPEND), nullptr) << "there, but not a TIFF";
    EXPECT_EQ(TiffError(), 14u);
}

// By design: error 2 is kept for programs that know it, and never set.
TEST_F(OpenFile, TakesEveryOtherModeForCreation) {
    const TempFile garbage(Bytes{'x', 'y', 'z'});
    for (const DWORD mode : {3u, 4u, 1000u, 0xFFFFFFFFu}) {
        TiffHandle tiff = OpenTiffFile(garbage.path(), mode);
        ASSERT_NE(tiff, nullptr) << mode;
        EXPECT_EQ(TiffError(), 0u);
        EXPECT_EQ(imageCount(tiff), 0u);
        CloseTiffFile(tiff);
    }
}

TEST_F(OpenFile, ClearsTheErrorFirst) {
    SetTiffError(5);
    const TempFile file(plainTiff(1));
    TiffHandle tiff = OpenTiffFile(file.path(), T_READ);
    EXPECT_EQ(TiffError(), 0u);
    CloseTiffFile(tiff);
}

TEST_F(OpenFile, TakesPathsOfUpTo149Characters) {
    for (const std::size_t length : {127u, 128u, 140u, 149u}) {
        const std::string path = longPath(length);
        ASSERT_TRUE(writeFile(path, plainTiff(2)));
        for (const DWORD mode : {DWORD{T_READ}, DWORD{T_APPEND}}) {
            TiffHandle tiff = OpenTiffFile(path.c_str(), mode);
            ASSERT_NE(tiff, nullptr) << length;
            EXPECT_EQ(infoOf(tiff).path, path);
            EXPECT_EQ(imageCount(tiff), 2u);
            EXPECT_EQ(GetTiffImage(tiff, 1), 1u);
            EXPECT_EQ(CloseTiffFile(tiff), 1u);
        }
        std::filesystem::remove(path);
    }
}

TEST_F(OpenFile, RefusesLongerPathsWithError7) {
    const std::string path = longPath(150);
    ASSERT_TRUE(writeFile(path, plainTiff(2)));
    for (const DWORD mode : {DWORD{T_READ}, DWORD{T_APPEND}, DWORD{T_CREAT}}) {
        SetTiffError(0);
        EXPECT_EQ(OpenTiffFile(path.c_str(), mode), nullptr);
        EXPECT_EQ(TiffError(), 7u);
    }
    std::filesystem::remove(path);
    EXPECT_EQ(OpenTiffFile(std::string(100000, 'x').c_str(), T_READ), nullptr);
    EXPECT_EQ(TiffError(), 7u);
}

TEST_F(OpenFile, WithALongPathMayBeMissingToo) {
    const std::string path = longPath(140);
    EXPECT_EQ(OpenTiffFile(path.c_str(), T_READ), nullptr);
    EXPECT_EQ(SetTiffError(0), 6u);
    TiffHandle tiff = OpenTiffFile(path.c_str(), T_APPEND);
    ASSERT_NE(tiff, nullptr);
    EXPECT_EQ(imageCount(tiff), 0u);
    EXPECT_EQ(CloseTiffFile(tiff), 1u);
    EXPECT_FALSE(readFile(path).has_value()) << "nothing was created";
    std::filesystem::create_directory(path);
    EXPECT_EQ(OpenTiffFile(path.c_str(), T_READ), nullptr) << "a folder";
    EXPECT_EQ(SetTiffError(0), 6u);
    std::filesystem::remove(path);
}

TEST_F(OpenFile, IsOpenedOnceToReadAndTwiceToAppend) {
    const TempFile file(plainTiff(2));
    {
        const FailNth fault(Call::Open, 0);
        EXPECT_EQ(OpenTiffFile(file.path(), T_READ), nullptr);
        EXPECT_EQ(fault.calls(), 1u);
    }
    EXPECT_EQ(SetTiffError(0), 6u);
    {
        const FailNth fault(Call::Open, 0);
        TiffHandle tiff = OpenTiffFile(file.path(), T_APPEND);
        EXPECT_EQ(fault.calls(), 1u);
        EXPECT_EQ(TiffError(), 0u);
        EXPECT_EQ(imageCount(tiff), 0u) << "what cannot be opened becomes a new file";
        CloseTiffFile(tiff);
    }
    {
        const FailNth fault(Call::Open, 1);
        EXPECT_EQ(OpenTiffFile(file.path(), T_APPEND), nullptr);
        EXPECT_EQ(fault.calls(), 2u);
    }
    EXPECT_EQ(SetTiffError(0), 6u);
}

TEST_F(OpenFile, NeedsMemoryForItsHandle) {
    const TempFile file(plainTiff(1));
    {
        const FailNth fault(Call::Allocate, 0);
        EXPECT_EQ(OpenTiffFile(file.path(), T_READ), nullptr);
    }
    EXPECT_EQ(SetTiffError(0), 1u);
    {
        const FailNth fault(Call::Allocate, 0);
        EXPECT_EQ(OpenTiffInMemory(nullptr, 0, T_CREAT), nullptr);
    }
    EXPECT_EQ(SetTiffError(0), 1u);
}

TEST_F(OpenFile, IsHandedOutAsAnUnlockedMovableBlockOf14176Bytes) {
    const TempFile file(plainTiff(1));
    TiffHandle tiff = OpenTiffFile(file.path(), T_READ);
    EXPECT_EQ(GlobalSize(tiff), 14176u);
    EXPECT_EQ(lockCount(tiff), 0u);
    GetTiffImage(tiff, 0);
    EXPECT_EQ(lockCount(tiff), 0u);
    CloseTiffFile(tiff);
}

TEST_F(OpenFile, TellsItsPathByteOrderAndFirstDirectory) {
    const TempFile file(plainTiff(2, tiff::kMM));
    TiffHandle tiff = OpenTiffFile(file.path(), T_READ);
    const Info info = infoOf(tiff);
    EXPECT_EQ(info.path, file.path());
    EXPECT_EQ(info.byteOrder, VELLUM_BYTE_ORDER_MM);
    EXPECT_EQ(info.imageCount, 2u);
    EXPECT_EQ(info.firstDirectoryOffset, 8u);
    CloseTiffFile(tiff);
}

TEST_F(OpenFile, ThatIsNewIsIntelAndWithoutImages) {
    TiffHandle tiff = OpenTiffFile("new.tif", T_CREAT);
    const Info info = infoOf(tiff);
    EXPECT_EQ(info.path, "new.tif");
    EXPECT_EQ(info.byteOrder, VELLUM_BYTE_ORDER_II);
    EXPECT_EQ(info.imageCount, 0u);
    EXPECT_EQ(info.firstDirectoryOffset, 0u);
    CloseTiffFile(tiff);
}

TEST_F(OpenFile, CountsTheImagesOfAFileInOneCall) {
    const TempFile file(plainTiff(5));
    EXPECT_EQ(GetNumberOfImagesInTiffFile(file.path()), 5u);
    const TempFile empty(plainTiff(0));
    EXPECT_EQ(GetNumberOfImagesInTiffFile(empty.path()), 0u);
    const TempFile missing;
    EXPECT_EQ(GetNumberOfImagesInTiffFile(missing.path()), 0xFFFFFFFFu);
    EXPECT_EQ(TiffError(), 6u);
    EXPECT_EQ(GetNumberOfImagesInTiffFile(nullptr), 0xFFFFFFFFu);
}

using OpenMemory = OpenFile;

TEST_F(OpenMemory, CountsTheImages) {
    HGLOBAL block = makeBlock(plainTiff(3, tiff::kMM));
    SetTiffError(5);
    TiffHandle tiff = OpenTiffInMemory(block, static_cast<DWORD>(GlobalSize(block)), T_READ);
    ASSERT_NE(tiff, nullptr);
    EXPECT_EQ(TiffError(), 0u) << "cleared first";
    EXPECT_EQ(imageCount(tiff), 3u);
    EXPECT_EQ(GetMemoryTiffHandle(tiff), block);
    EXPECT_EQ(lockCount(block), 0u);
    const Info info = infoOf(tiff);
    EXPECT_EQ(info.path, "");
    EXPECT_EQ(info.byteOrder, VELLUM_BYTE_ORDER_MM);
    EXPECT_EQ(CloseTiffFile(tiff), 1u);
    EXPECT_EQ(blockBytes(block), plainTiff(3, tiff::kMM)) << "the block is still its owner's";
    GlobalFree(block);
}

TEST_F(OpenMemory, NeedsABlockToReadFrom) {
    EXPECT_EQ(OpenTiffInMemory(nullptr, 100, T_READ), nullptr);
    EXPECT_EQ(SetTiffError(0), 6u);
    EXPECT_EQ(OpenTiffInMemory(nullptr, 100, T_APPEND), nullptr);
    EXPECT_EQ(SetTiffError(0), 6u);
}

TEST_F(OpenMemory, NeedsNoBlockToCreateIn) {
    TiffHandle tiff = OpenTiffInMemory(nullptr, 0, T_CREAT);
    ASSERT_NE(tiff, nullptr);
    EXPECT_EQ(imageCount(tiff), 0u);
    EXPECT_EQ(GetMemoryTiffHandle(tiff), nullptr);
    EXPECT_EQ(CloseTiffFile(tiff), 1u);
}

TEST_F(OpenMemory, IsNotThereForAFile) {
    const TempFile file(plainTiff(1));
    TiffHandle tiff = OpenTiffFile(file.path(), T_READ);
    EXPECT_EQ(GetMemoryTiffHandle(tiff), nullptr);
    CloseTiffFile(tiff);
}

TEST_F(OpenFile, ChangesItsPathAndByteOrder) {
    TiffHandle tiff = OpenTiffFile("first.tif", T_CREAT);
    EXPECT_EQ(ModiTiffFileInfo(tiff, "second.tif", VELLUM_BYTE_ORDER_MM), 1);
    EXPECT_EQ(infoOf(tiff).path, "second.tif");
    EXPECT_EQ(infoOf(tiff).byteOrder, VELLUM_BYTE_ORDER_MM);
    EXPECT_EQ(ModiTiffFileInfo(tiff, nullptr, 0), 1);
    EXPECT_EQ(infoOf(tiff).path, "second.tif");
    EXPECT_EQ(infoOf(tiff).byteOrder, VELLUM_BYTE_ORDER_MM);
    EXPECT_EQ(ModiTiffFileInfo(tiff, "", VELLUM_BYTE_ORDER_II), 1);
    EXPECT_EQ(infoOf(tiff).path, "");
    EXPECT_EQ(infoOf(tiff).byteOrder, VELLUM_BYTE_ORDER_II);
    EXPECT_EQ(TiffError(), 0u);
    CloseTiffFile(tiff);
}

TEST_F(OpenFile, KeepsItsPathWhenTheNewOneIsTooLong) {
    TiffHandle tiff = OpenTiffFile("first.tif", T_CREAT);
    EXPECT_EQ(ModiTiffFileInfo(tiff, std::string(150, 'x').c_str(), VELLUM_BYTE_ORDER_MM), 0);
    EXPECT_EQ(SetTiffError(0), 7u);
    EXPECT_EQ(infoOf(tiff).path, "first.tif");
    EXPECT_EQ(infoOf(tiff).byteOrder, VELLUM_BYTE_ORDER_MM) << "stored all the same";
    const std::string longest(149, 'x');
    EXPECT_EQ(ModiTiffFileInfo(tiff, longest.c_str(), 0), 1);
    EXPECT_EQ(infoOf(tiff).path, longest);
    CloseTiffFile(tiff);
}

TEST_F(OpenFile, RefusesOtherByteOrdersWithError14) {
    TiffHandle tiff = OpenTiffFile("first.tif", T_CREAT);
    for (const LONG order : {1, -1, 0x4949 + 0x10000, 0x4D49}) {
        SetTiffError(0);
        EXPECT_EQ(ModiTiffFileInfo(tiff, "second.tif", order), 0) << order;
        EXPECT_EQ(TiffError(), 14u);
    }
    EXPECT_EQ(infoOf(tiff).path, "second.tif") << "stored before the byte order was looked at";
    EXPECT_EQ(infoOf(tiff).byteOrder, VELLUM_BYTE_ORDER_II);
    CloseTiffFile(tiff);
}

TEST_F(OpenFile, NeedsNoRecordToTellNothing) {
    TiffHandle tiff = OpenTiffFile("x.tif", T_CREAT);
    EXPECT_EQ(GetTiffFileInfo(tiff, nullptr), 1u);
    CloseTiffFile(tiff);
}

TEST_F(OpenFile, AsksTheSystemForFileHandles) {
    EXPECT_EQ(SetTiffDllFileHandle(20), SetHandleCount(20));
    EXPECT_EQ(SetTiffDllFileHandle(100), SetHandleCount(100));
}

TEST_F(OpenFile, IsClosedOnce) {
    EXPECT_EQ(CloseTiffFile(nullptr), 0u);
    const TempFile file(plainTiff(1));
    TiffHandle tiff = OpenTiffFile(file.path(), T_READ);
    EXPECT_EQ(CloseTiffFile(tiff), 1u);
    EXPECT_EQ(TiffError(), 0u);
}

// Everything that takes a handle, with one that is none.
void expectEveryCallToFail(TiffHandle tiff) {
    SetTiffError(0);
    DWORD number = 7;
    HGLOBAL data = nullptr;
    BITMAPINFOHEADER header = {};
    EXPECT_EQ(CloseTiffFile(tiff), 0u);
    EXPECT_EQ(DropTiffImage(tiff, 0), 0u);
    EXPECT_EQ(IsTiffImageRegistered(tiff, 0), 0u);
    EXPECT_EQ(NumberOfTiffImages(tiff, VELLUM_ALL_IMAGES), 0);
    EXPECT_EQ(NumberOfTiffImages(tiff, 0), 0);
    EXPECT_EQ(ModiTiffFileInfo(tiff, "x", 0), 0);
    EXPECT_EQ(GetMemoryTiffHandle(tiff), nullptr);
    EXPECT_EQ(GetTiffImageInfo(tiff, 0, 256, &number), 0);
    EXPECT_EQ(GetTiffImageInfoBuffer(tiff, 0, 256, &data, &number, &number), 0);
    EXPECT_EQ(number, 7u);
    EXPECT_EQ(GetTiffRowsPerStrip(tiff, 0), 0u);
    EXPECT_EQ(GetTiffStripCount(tiff, 0), 0);
    EXPECT_EQ(TiffError(), 0u);
    EXPECT_EQ(GetTiffImage(tiff, 0), 0u);
    EXPECT_EQ(SetTiffError(0), 1u);
    EXPECT_EQ(GetTiffDimensions(tiff, 0, &header), 10u);
    EXPECT_EQ(GetTiffRGBQuad(tiff, 0), nullptr);
    EXPECT_EQ(SetTiffError(0), 10u);
    const Info info = infoOf(tiff);
    EXPECT_EQ(info.path, "");
    EXPECT_EQ(info.imageCount, 0u);
}

TEST_F(OpenFile, IsNotFoundBehindAHandleThatIsNone) {
    expectEveryCallToFail(nullptr);
}

TEST_F(OpenFile, IsNotFoundInABlockThatIsTooSmall) {
    HGLOBAL block = makeBlock(Bytes(14175));
    expectEveryCallToFail(block);
    EXPECT_EQ(GlobalSize(block), 14175u) << "not freed";
    EXPECT_EQ(lockCount(block), 0u);
    GlobalFree(block);
}

} // namespace
} // namespace vellum::test
