// The record of an open TIFF, as the parts of the library that write find it, and the companion module's end.
#include "core/open_file.h"

#include "core/library_state.h"
#include "opened_tiff.h"
#include "support/faults.h"

#include <string>

namespace vellum::test {
namespace {

Bytes twoImages() {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1})});
    file.directory({tiff::shorts(256, {2})});
    return file.bytes();
}

// A copy of a record's head, not packed, and of its first two slots' offsets.
struct Record {
    std::string path;
    DWORD openFlags = 0;
    DWORD lastLinkPos = 0;
    HGLOBAL memHandle = nullptr;
    DWORD memSize = 0;
    WORD byteOrder = 0;
    DWORD imageCount = 0;
    DWORD directoryOffsets[2] = {};
};

// Reads the record and closes the TIFF.
Record recordOf(TiffHandle tiff) {
    Record record;
    if (const TiffFileView file(tiff); file) {
        record = {file->pathName,    file->openFlags,
                  file->lastLinkPos, file->memHandle,
                  file->memSize,     file->byteOrder,
                  file->imageCount,  {file->images[0].directoryOffset, file->images[1].directoryOffset}};
    } else {
        ADD_FAILURE() << "not open";
    }
    CloseTiffFile(tiff);
    return record;
}

TEST(TiffRecord, OfAFileThatIsRead) {
    const TempFile file(twoImages());
    const Record record = recordOf(OpenTiffFile(file.path(), T_READ));
    EXPECT_EQ(record.openFlags, 0x20u);
    EXPECT_EQ(record.memHandle, nullptr);
    EXPECT_EQ(record.memSize, 0xFFFFFFFFu);
    EXPECT_EQ(record.directoryOffsets[0], 8u);
    EXPECT_EQ(record.directoryOffsets[1], 8u + 18);
    EXPECT_EQ(record.lastLinkPos, 8u + 18 + 14);
}

TEST(TiffRecord, OfAFileThatIsAppendedTo) {
    const TempFile file(twoImages());
    EXPECT_EQ(recordOf(OpenTiffFile(file.path(), T_APPEND)).openFlags, 0x32u);
    const TempFile missing;
    EXPECT_EQ(recordOf(OpenTiffFile(missing.path(), T_APPEND)).openFlags, 0x1032u) << "created";
}

TEST(TiffRecord, OfAFileThatIsCreated) {
    const Record record = recordOf(OpenTiffFile("new.tif", T_CREAT));
    EXPECT_EQ(record.path, "new.tif");
    EXPECT_EQ(record.openFlags, 0x1032u);
    EXPECT_EQ(record.lastLinkPos, 4u);
    EXPECT_EQ(record.byteOrder, VELLUM_BYTE_ORDER_II);
    EXPECT_EQ(record.memSize, 0xFFFFFFFFu);
}

TEST(TiffRecord, OfAMemoryTiff) {
    const Bytes content = twoImages();
    HGLOBAL block = makeBlock(content);
    const auto size = static_cast<DWORD>(content.size());
    for (const DWORD mode : {DWORD{T_READ}, DWORD{T_APPEND}}) {
        const Record record = recordOf(OpenTiffInMemory(block, size, mode));
        EXPECT_EQ(record.openFlags, 0x32u);
        EXPECT_EQ(record.memHandle, block);
        EXPECT_EQ(record.memSize, size);
        EXPECT_EQ(record.imageCount, 2u);
    }
    GlobalFree(block);
}

// By design.
TEST(TiffRecord, OfAMemoryTiffThatIsCreatedHasNoOpenFlags) {
    HGLOBAL block = makeBlock({1, 2, 3});
    const Record record = recordOf(OpenTiffInMemory(block, 3, T_CREAT));
    EXPECT_EQ(record.openFlags, 0u);
    EXPECT_EQ(record.memHandle, block);
    EXPECT_EQ(record.memSize, 3u);
    EXPECT_EQ(record.lastLinkPos, 4u);
    EXPECT_EQ(record.imageCount, 0u);
    GlobalFree(block);
}

TEST(TiffRecord, KeepsTheNumberOfADroppedImagesBlock) {
    const OpenedTiff tiff(twoImages(), Place::Memory);
    GetTiffImage(tiff.get(), 0);
    const TiffFileView file(tiff.get());
    HGLOBAL directory = file->images[0].directory;
    EXPECT_NE(directory, nullptr);
    EXPECT_EQ(DropTiffImage(tiff.get(), 0), 1u);
    HGLOBAL left = file->images[0].directory;
    EXPECT_EQ(left, directory) << "so that the slot does not count as free";
}

TEST(TiffRecord, IsReadFromAndWrittenBackThroughItsStream) {
    const OpenedTiff tiff(twoImages(), Place::Memory);
    const TiffFileView file(tiff.get());
    const StreamHandle stream = openForReading(*file);
    EXPECT_EQ(stream, -2);
    EXPECT_EQ(mSize(stream), static_cast<LONG>(twoImages().size()));
    HGLOBAL other = makeBlock({1});
    openMemoryStream(other, 1);
    storeBackMemoryBlock(*file, stream);
    EXPECT_EQ(GetMemoryTiffHandle(tiff.get()), other);
    mClose(stream);
    GlobalFree(other);

    const OpenedTiff onDisk(twoImages(), Place::File);
    const TiffFileView diskFile(onDisk.get());
    const Stream disk(openForReading(*diskFile));
    EXPECT_GT(disk.get(), 0);
    storeBackMemoryBlock(*diskFile, disk.get());
    EXPECT_EQ(GetMemoryTiffHandle(onDisk.get()), nullptr);
}

TEST(ClosingATiff, UnloadsTheJpegModule) {
    const CompanionModule module("JPEG.DLL", "Entry", nullptr);
    library.jpegModule = LoadLibraryA("JPEG.DLL");
    ASSERT_NE(library.jpegModule, nullptr);
    EXPECT_EQ(CloseTiffFile(nullptr), 0u);
    EXPECT_EQ(module.loads(), 1) << "nothing was closed";
    EXPECT_EQ(CloseTiffFile(OpenTiffFile("new.tif", T_CREAT)), 1u);
    EXPECT_EQ(module.loads(), 0);
    EXPECT_EQ(library.jpegModule, nullptr);
    EXPECT_EQ(CloseTiffFile(OpenTiffFile("new.tif", T_CREAT)), 1u);
    EXPECT_EQ(module.loads(), 0);
}

} // namespace
} // namespace vellum::test
