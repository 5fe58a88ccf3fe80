// The header of new TIFFs, and the look at a file's first two bytes.
#include "core/tiff_header.h"

#include "opened_tiff.h"
#include "support/faults.h"

namespace vellum::test {
namespace {

TEST(TiffHeader, IsWrittenIntoNewFiles) {
    const TempFile file;
    TiffHandle tiff = OpenTiffFile(file.path(), T_CREAT);
    {
        const Stream stream(openFileStream(file.path(), kOpenCreate));
        EXPECT_EQ(writeTiffHeader(tiff, stream.get(), 8), Error::None);
    }
    EXPECT_EQ(readFile(file.path()), (Bytes{'I', 'I', 42, 0, 8, 0, 0, 0}));
    CloseTiffFile(tiff);
}

// By design.
TEST(TiffHeader, HoldsTheFirstOffsetInMachineOrderAlsoForMotorolaFiles) {
    const TempFile file;
    TiffHandle tiff = OpenTiffFile(file.path(), T_CREAT);
    ModiTiffFileInfo(tiff, nullptr, VELLUM_BYTE_ORDER_MM);
    {
        const Stream stream(openFileStream(file.path(), kOpenCreate));
        EXPECT_EQ(writeTiffHeader(tiff, stream.get(), 8), Error::None);
    }
    EXPECT_EQ(readFile(file.path()), (Bytes{'M', 'M', 0, 42, 8, 0, 0, 0}));
    CloseTiffFile(tiff);
}

TEST(TiffHeader, IsLeftAloneInExistingFiles) {
    tiff::Builder builder;
    builder.directory({tiff::shorts(256, {1})});
    const TempFile file(builder.bytes());
    TiffHandle tiff = OpenTiffFile(file.path(), T_APPEND);
    {
        const Stream stream(openFileStream(file.path(), kOpenAppend));
        EXPECT_EQ(writeTiffHeader(tiff, stream.get(), 8), Error::None);
        EXPECT_EQ(mTell(stream.get()), static_cast<LONG>(builder.bytes().size())) << "at the end";
    }
    EXPECT_EQ(readFile(file.path()), builder.bytes());
    CloseTiffFile(tiff);
}

TEST(TiffHeader, IsNotWrittenIntoMemory) {
    HGLOBAL block = makeBlock({1, 2, 3});
    TiffHandle tiff = OpenTiffInMemory(block, 3, T_CREAT);
    const Stream stream(openMemoryStream(block, 3));
    EXPECT_EQ(writeTiffHeader(tiff, stream.get(), 8), Error::None);
    EXPECT_EQ(mTell(stream.get()), 3) << "at the end";
    EXPECT_EQ(blockBytes(block), (Bytes{1, 2, 3}));
    CloseTiffFile(tiff);
    GlobalFree(block);
}

TEST(TiffHeader, ThatCannotBeWrittenIsAnError) {
    const TempFile file;
    TiffHandle tiff = OpenTiffFile(file.path(), T_CREAT);
    const Stream stream(openFileStream(file.path(), kOpenCreate));
    {
        const FailNth fault(Call::Write, 0);
        EXPECT_EQ(writeTiffHeader(tiff, stream.get(), 8), Error::Io);
    }
    EXPECT_EQ(writeTiffHeader(tiff, kNoStream, 8), Error::Io);
    EXPECT_EQ(writeTiffHeader(nullptr, stream.get(), 8), Error::NoMemory);
    CloseTiffFile(tiff);
}

TEST(TiffCheck, LooksAtTheFirstTwoBytes) {
    const auto check = [](const Bytes &content) {
        const TempFile file(content);
        return looksLikeTiff(file.path());
    };
    EXPECT_TRUE(check({'I', 'I'}));
    EXPECT_TRUE(check({'M', 'M', 1, 2, 3}));
    EXPECT_FALSE(check({'I', 'M'}));
    EXPECT_FALSE(check({'B', 'M', 'M'}));
    EXPECT_FALSE(check({'I'}));
    EXPECT_FALSE(check({}));
    const TempFile missing;
    EXPECT_FALSE(looksLikeTiff(missing.path()));
    EXPECT_FALSE(looksLikeTiff(tempFolder().c_str()));
    EXPECT_FALSE(looksLikeTiff(nullptr));
}

} // namespace
} // namespace vellum::test
