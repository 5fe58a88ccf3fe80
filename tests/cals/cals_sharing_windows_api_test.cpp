// What other programs may do with a CALS file that the library has open, and the library with one that they have open.
// Paths beyond 127 characters go another way into the system and must not differ.
#include "cals/cals_pictures.h"
#include "support/import_patch.h"
#include "support/other_opener.h"
#include "support/screen_host.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace vellum::test;

// What others can do while the library reads or writes the file.
struct Others {
    int looks = 0;
    int couldRead = 0;
    int couldWrite = 0;
};
Others others;
std::string watched;
ImportPatch reads;
ImportPatch writes;

void lookAtFile() {
    ++others.looks;
    others.couldRead += Other(watched, GENERIC_READ, kShareAll) ? 1 : 0;
    others.couldWrite += Other(watched, GENERIC_WRITE, kShareAll) ? 1 : 0;
}

UINT WINAPI watchedRead(HFILE file, void *buffer, UINT count) {
    lookAtFile();
    return reads.original<UINT WINAPI(HFILE, void *, UINT)>()(file, buffer, count);
}

UINT WINAPI watchedWrite(HFILE file, const char *buffer, UINT count) {
    lookAtFile();
    return writes.original<UINT WINAPI(HFILE, const char *, UINT)>()(file, buffer, count);
}

UINT WINAPI refusedWrite(HFILE, const char *, UINT) {
    return 0;
}

class CalsSharing : public testing::TestWithParam<std::size_t> {
protected:
    CalsSharing() {
        path_ = tempPathOf(GetParam(), 'c');
        EXPECT_TRUE(writeFile(path_, content_));
        SetTiffError(VELLUM_OK);
    }
    ~CalsSharing() override { DeleteFileA(path_.c_str()); }

    [[nodiscard]] const char *path() const { return path_.c_str(); }
    // Nobody has it open any more.
    [[nodiscard]] bool isFree() const { return static_cast<bool>(Other(path_, GENERIC_READ | GENERIC_WRITE, 0)); }

    // Everything that reads the file; each is true when it succeeds.
    [[nodiscard]] std::vector<std::function<bool()>> readers() const {
        return {
            [this] { return static_cast<bool>(OwnedBlock(ReadCALSHead(path()))); },
            [this] {
                CalsInfo info;
                return ReadCALSInfo(path(), &info) != 0;
            },
            [this] {
                CalsNotes notes;
                return static_cast<bool>(OwnedBlock(ReadCALSNote(path(), &notes)));
            },
            [this] { return static_cast<bool>(OwnedBlock(LoadCALSIntoDIB(path(), 0))); },
            [this] {
                const Host host(50, 40);
                return DecompressCALSToScreen(host.window(), host.dc(), path(), nullptr, 0) != 0;
            },
        };
    }
    [[nodiscard]] DWORD save() const { return SaveDIBInCALSFormat(path(), dib_.get(), nullptr, nullptr, 0); }

    const Bytes content_ = bilevelPicture(45, 23).file();

private:
    std::string path_;
    const DibBlock dib_{PackedDib(45, 23, 1)};
};
INSTANTIATE_TEST_SUITE_P(OfPathsOf, CalsSharing, testing::Values(60, 140), testing::PrintToStringParamName());

TEST_P(CalsSharing, AFileThatIsReadCanBeReadByOthersAndNotWritten) {
    for (const auto &read : readers()) {
        others = {};
        watched = path();
        reads.replace("_lread", &watchedRead);
        const bool done = read();
        reads.restore();
        EXPECT_TRUE(done);
        EXPECT_GT(others.looks, 0);
        EXPECT_EQ(others.couldRead, others.looks);
        EXPECT_EQ(others.couldWrite, 0);
        EXPECT_TRUE(isFree());
    }
}

TEST_P(CalsSharing, AFileThatOthersReadIsRead) {
    const Other reader(path(), GENERIC_READ, FILE_SHARE_READ);
    ASSERT_TRUE(reader);
    for (const auto &read : readers()) {
        EXPECT_TRUE(read());
        EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    }
}

TEST_P(CalsSharing, AFileThatOthersWriteIsError6) {
    const Other writer(path(), GENERIC_READ | GENERIC_WRITE, kShareAll);
    ASSERT_TRUE(writer);
    for (const auto &read : readers()) {
        SetTiffError(VELLUM_OK);
        EXPECT_FALSE(read());
        EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    }
}

TEST_P(CalsSharing, AFileThatIsSavedCannotBeReadByOthersBeforeItIsWhole) {
    others = {};
    watched = path();
    writes.replace("_lwrite", &watchedWrite);
    const DWORD saved = save();
    writes.restore();
    EXPECT_EQ(saved, 1U);
    EXPECT_GE(others.looks, 2) << "the header and the code";
    EXPECT_EQ(others.couldRead, 0);
    EXPECT_TRUE(isFree());
}

TEST_P(CalsSharing, AFileThatOthersHaveOpenIsNotSavedOver) {
    const struct {
        DWORD access;
        DWORD sharing;
    } kUses[] = {{GENERIC_READ, FILE_SHARE_READ},
                 {GENERIC_READ, kShareAll},
                 {GENERIC_READ | GENERIC_WRITE, kShareAll},
                 {GENERIC_WRITE, FILE_SHARE_READ}};
    for (const auto &[access, sharing] : kUses) {
        {
            const Other user(path(), access, sharing);
            ASSERT_TRUE(user);
            SetTiffError(VELLUM_OK);
            EXPECT_EQ(save(), 0U);
            EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
        }
        EXPECT_EQ(readFile(path()), content_);
    }
}

TEST_P(CalsSharing, AFileIsFreeAgainWhenItCouldNotBeReadOrWritten) {
    EXPECT_TRUE(writeFile(path(), calsFile(pictureRecords(), {1, 0, 0, 0x55, 0x55})));
    EXPECT_FALSE(OwnedBlock(LoadCALSIntoDIB(path(), 0)));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_CODE_ERROR});
    EXPECT_TRUE(isFree());
    EXPECT_TRUE(writeFile(path(), Bytes(2047, BYTE{' '})));
    EXPECT_FALSE(OwnedBlock(ReadCALSHead(path())));
    EXPECT_TRUE(isFree());
    writes.replace("_lwrite", &refusedWrite);
    const DWORD saved = save();
    writes.restore();
    EXPECT_EQ(saved, 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_TRUE(isFree());
}

} // namespace
