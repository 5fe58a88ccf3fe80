// The wait cursor while the code of a CALS file is read or written, and the previous one before it and afterwards: when
// the header is read or written, and under the warning of a picture that is not whole.
#include "cals/cals_pictures.h"
#include "support/import_patch.h"
#include "support/screen_host.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace vellum::test;

std::vector<HCURSOR> atHeader;
std::vector<HCURSOR> atCode;
std::vector<HCURSOR> atWarning;
ImportPatch reads;
ImportPatch writes;
ImportPatch boxes;

void noteCursor(UINT count) {
    (count == VELLUM_CALS_HEADER ? atHeader : atCode).push_back(GetCursor());
}

UINT WINAPI notingRead(HFILE file, void *buffer, UINT count) {
    noteCursor(count);
    return reads.original<UINT WINAPI(HFILE, void *, UINT)>()(file, buffer, count);
}

UINT WINAPI notingWrite(HFILE file, const char *buffer, UINT count) {
    noteCursor(count);
    return writes.original<UINT WINAPI(HFILE, const char *, UINT)>()(file, buffer, count);
}

int WINAPI notingBox(HWND, const char *, const char *, UINT) {
    atWarning.push_back(GetCursor());
    return IDOK;
}

bool areAll(const std::vector<HCURSOR> &seen, HCURSOR cursor) {
    return !seen.empty() && std::ranges::count(seen, cursor) == static_cast<std::ptrdiff_t>(seen.size());
}

class CalsWaitCursor : public testing::Test {
protected:
    CalsWaitCursor() {
        reads.replace("_lread", &notingRead);
        writes.replace("_lwrite", &notingWrite);
        boxes.replace("MessageBoxA", &notingBox);
    }
    ~CalsWaitCursor() override {
        reads.restore();
        writes.restore();
        boxes.restore();
        SetCursor(before_);
    }

    // Whether the work ends with this error, whatever the cursor was.
    static void expectWaiting(DWORD error, const std::function<void()> &work) {
        for (const HCURSOR previous : {LoadCursor(nullptr, IDC_ARROW), LoadCursor(nullptr, IDC_CROSS), HCURSOR{}}) {
            atHeader.clear();
            atCode.clear();
            atWarning.clear();
            SetCursor(previous);
            SetTiffError(VELLUM_OK);
            work();
            EXPECT_EQ(TiffError(), error);
            EXPECT_TRUE(areAll(atHeader, previous));
            EXPECT_TRUE(areAll(atCode, LoadCursor(nullptr, IDC_WAIT)));
            EXPECT_EQ(GetCursor(), previous);
            if (!atWarning.empty()) {
                EXPECT_TRUE(areAll(atWarning, previous));
            }
        }
    }

private:
    const HCURSOR before_ = GetCursor();
};

void load(const TempFile &file) {
    const OwnedBlock dib(LoadCALSIntoDIB(file.path(), 0));
}

TEST_F(CalsWaitCursor, IsShownWhileADrawingLoads) {
    const TempFile file(bilevelPicture(45, 23).file());
    expectWaiting(VELLUM_OK, [&] { load(file); });
}

TEST_F(CalsWaitCursor, IsShownWhileADrawingThatIsDamagedLoads) {
    const TempFile file(calsFile(pictureRecords(), {1, 0, 0, 0x55, 0x55}));
    expectWaiting(VELLUM_CODE_ERROR, [&] { load(file); });
    EXPECT_TRUE(atWarning.empty());
}

TEST_F(CalsWaitCursor, IsGoneWhenTheUserIsWarnedOfADrawingThatIsNotWhole) {
    const TempFile file(calsFile(pictureRecords("000009,000020"), {0xFF}));
    expectWaiting(VELLUM_UNEXPECTED_END, [&] { load(file); });
    EXPECT_EQ(atWarning.size(), 1U);
}

// Of 65 MB in a kilobyte of code: it is decoded before there is memory for it, and then once more.
TEST_F(CalsWaitCursor, IsShownWhileADrawingProvesThatItIsThere) {
    const TempFile file(calsFile(pictureRecords("065536,008320"), Bytes(1043, BYTE{0xFF})));
    expectWaiting(VELLUM_OK, [&] { load(file); });
    EXPECT_GE(atCode.size(), 2U);
}

TEST_F(CalsWaitCursor, IsShownWhileADrawingIsSaved) {
    const DibBlock dib(PackedDib(45, 23, 1));
    const TempFile file;
    expectWaiting(VELLUM_OK, [&] { SaveDIBInCALSFormat(file.path(), dib.get(), nullptr, nullptr, 0); });
}

TEST_F(CalsWaitCursor, IsShownWhileADrawingIsPainted) {
    Host host(50, 40);
    const TempFile file(bilevelPicture(45, 23).file());
    for (const DWORD flags : {VELLUM_ROTATE_0, VELLUM_ROTATE_90, VELLUM_ROTATE_180, VELLUM_ROTATE_270}) {
        expectWaiting(VELLUM_OK, [&] {
            host.reset();
            EXPECT_EQ(DecompressCALSToScreen(host.window(), host.dc(), file.path(), nullptr, static_cast<BYTE>(flags)),
                      1U);
        });
    }
}

TEST_F(CalsWaitCursor, IsNeverShownForAHeaderThatDescribesNoPicture) {
    const TempFile file(calsHeader({"notes: lonely"}));
    const HCURSOR arrow = LoadCursor(nullptr, IDC_ARROW);
    atHeader.clear();
    atCode.clear();
    SetCursor(arrow);
    load(file);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NOT_CALS});
    EXPECT_TRUE(areAll(atHeader, arrow));
    EXPECT_TRUE(atCode.empty());
    EXPECT_EQ(GetCursor(), arrow);
}

} // namespace
