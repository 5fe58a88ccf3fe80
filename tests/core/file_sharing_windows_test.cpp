// What other programs may do with a file that the library has open, and the library with one that they have open. Paths
// beyond 127 characters go another way into the system and must not differ.
#include "core/stream.h"
#include "opened_tiff.h"
#include "support/other_opener.h"

#include <filesystem>
#include <string>

namespace vellum::test {
namespace {

class FileSharing : public ::testing::TestWithParam<std::size_t> {
protected:
    FileSharing() {
        path_ = tempPathOf(GetParam(), 's');
        tiff::Builder file;
        file.directory({tiff::shorts(256, {1})});
        EXPECT_TRUE(writeFile(path_, file.bytes()));
        SetTiffError(0);
    }
    ~FileSharing() override {
        std::filesystem::remove(path_);
        SetTiffError(0);
    }

    std::string path_;
};
INSTANTIATE_TEST_SUITE_P(OfPathsOf, FileSharing, ::testing::Values(60, 140), ::testing::PrintToStringParamName());

TEST_P(FileSharing, OfAFileThatIsReadKeepsWritersOut) {
    const Stream stream(openFileStream(path_.c_str(), kOpenRead));
    ASSERT_TRUE(stream);
    EXPECT_TRUE(Other(path_, GENERIC_READ, kShareAll));
    EXPECT_FALSE(Other(path_, GENERIC_WRITE, kShareAll));
    const BYTE byte = 1;
    EXPECT_EQ(mWrite(stream.get(), &byte, 1), -1) << "it is open for reading only";
}

TEST_P(FileSharing, OfAFileThatIsWrittenKeepsReadersOut) {
    for (const UINT flags : {kOpenAppend, kOpenCreate}) {
        const Stream stream(openFileStream(path_.c_str(), flags));
        ASSERT_TRUE(stream);
        EXPECT_FALSE(Other(path_, GENERIC_READ, kShareAll)) << flags;
        EXPECT_TRUE(Other(path_, GENERIC_WRITE, kShareAll)) << flags;
    }
}

TEST_P(FileSharing, WithAReaderLetsTheFileBeReadAndAppendedTo) {
    const Other reader(path_, GENERIC_READ, FILE_SHARE_READ);
    ASSERT_TRUE(reader);
    for (const DWORD mode : {DWORD{T_READ}, DWORD{T_APPEND}}) {
        TiffHandle tiff = OpenTiffFile(path_.c_str(), mode);
        EXPECT_EQ(imageCount(tiff), 1u) << "the scan does not write";
        EXPECT_EQ(GetTiffImage(tiff, 0), 1u);
        EXPECT_EQ(CloseTiffFile(tiff), 1u);
    }
    EXPECT_EQ(TiffError(), 0u);
}

TEST_P(FileSharing, WithAWriterIsError6) {
    const Other writer(path_, GENERIC_READ | GENERIC_WRITE, kShareAll);
    ASSERT_TRUE(writer);
    EXPECT_EQ(OpenTiffFile(path_.c_str(), T_READ), nullptr);
    EXPECT_EQ(TiffError(), 6u);
}

} // namespace
} // namespace vellum::test
