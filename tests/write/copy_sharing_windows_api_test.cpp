// Copying and rebuilding where other programs have the files open, or the system keeps them from being changed.
#include "vellum32.h"
#include "write/pages_to_copy.h"
#include "write/raw_pages.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

// A file that another program has open.
class HeldFile {
public:
    HeldFile(const std::string &path, DWORD access, DWORD sharing)
        : handle_(CreateFileA(path.c_str(), access, sharing, nullptr, OPEN_EXISTING, 0, nullptr)) {}
    HeldFile(const HeldFile &) = delete;
    HeldFile &operator=(const HeldFile &) = delete;
    ~HeldFile() { CloseHandle(handle_); }
    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle_;
};

class CopySharing : public ::testing::Test {
protected:
    void expectNotEdited() {
        EXPECT_EQ(AddTiffTagToImage(file_.c_str(), 0, 315, 2, "a", 2), 0u);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
        EXPECT_EQ(folder_.names(), std::vector<std::string>{"file.tif"}) << "something is left behind";
    }

    const Bytes content_ = manyPages(tiff::kMM);
    TempFolder folder_;
    const std::string file_ = folder_.add("file.tif", content_);
};

TEST_F(CopySharing, AFileThatIsBeingReadIsNotReplaced) {
    {
        const HeldFile held(file_, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
        ASSERT_TRUE(held);
        expectNotEdited();
    }
    EXPECT_TRUE(readFile(file_) == content_);
}

TEST_F(CopySharing, AFileThatIsBeingWrittenIsNotRebuilt) {
    {
        const HeldFile held(file_, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE);
        ASSERT_TRUE(held);
        expectNotEdited();
    }
    EXPECT_TRUE(readFile(file_) == content_);
}

TEST_F(CopySharing, AReadOnlyFileIsNotReplaced) {
    SetFileAttributesA(file_.c_str(), FILE_ATTRIBUTE_READONLY);
    expectNotEdited();
    SetFileAttributesA(file_.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_TRUE(readFile(file_) == content_);
}

TEST_F(CopySharing, ADestinationThatIsInUseStaysAsItIs) {
    const std::string to = folder_.add("to.tif", content_);
    for (const DWORD mode : {DWORD{T_CREAT}, DWORD{T_APPEND}}) {
        {
            const HeldFile held(to, GENERIC_READ, FILE_SHARE_READ);
            ASSERT_TRUE(held);
            EXPECT_EQ(CopyTiffImageInFile(file_.c_str(), 0, to.c_str(), mode), 0u);
            EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
        }
        EXPECT_TRUE(readFile(to) == content_);
    }
}

TEST_F(CopySharing, AFileIsNotCopiedIntoItselfUnderItsShortName) {
    const std::string longName = folder_.add("a file with a long name.tif", content_);
    char shortName[MAX_PATH] = {};
    ASSERT_GT(GetShortPathNameA(longName.c_str(), shortName, sizeof shortName), 0u);
    EXPECT_EQ(CopyTiffImageInFile(longName.c_str(), 0, shortName, T_CREAT), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_TRUE(readFile(longName) == content_);
}

} // namespace
