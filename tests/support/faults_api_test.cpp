// The test support itself: a call that is made to fail fails the library's call, once, and everything is as before
// afterwards.
#include "support/faults.h"
#include "support/paths.h"
#include "vellum32.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

// The smallest file: a header and one empty directory.
const Bytes kEmptyTiff = {'I', 'I', 42, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0};

DWORD errorOfOpening(const char *path) {
    const TiffHandle tiff = OpenTiffFile(path, T_READ);
    const DWORD error = TiffError();
    EXPECT_EQ(tiff == nullptr, error != VELLUM_OK);
    CloseTiffFile(tiff);
    return error;
}

TEST(Faults, TheChosenAllocationFails) {
    const TempFile file(kEmptyTiff);
    {
        const FailNth failing(Call::Allocate, 0);
        EXPECT_EQ(errorOfOpening(file.path()), DWORD{VELLUM_NO_MEMORY});
        EXPECT_TRUE(failing.happened());
        EXPECT_EQ(errorOfOpening(file.path()), DWORD{VELLUM_OK});
    }
    EXPECT_EQ(errorOfOpening(file.path()), DWORD{VELLUM_OK});
}

TEST(Faults, TheChosenFileCallFails) {
    const TempFile file(kEmptyTiff);
    for (const Call call : {Call::Open, Call::Read}) {
        const FailNth failing(call, 0);
        EXPECT_EQ(errorOfOpening(file.path()), DWORD{VELLUM_IO_ERROR});
        EXPECT_TRUE(failing.happened());
        EXPECT_EQ(errorOfOpening(file.path()), DWORD{VELLUM_OK});
    }
}

TEST(Faults, CallsAreCounted) {
    const TempFile file(kEmptyTiff);
    const FailNth counting(Call::Open, FailNth::kNever);
    EXPECT_EQ(errorOfOpening(file.path()), DWORD{VELLUM_OK});
    EXPECT_FALSE(counting.happened());
    EXPECT_EQ(counting.calls(), 1u);
}

TEST(Faults, MessageBoxesAreNoted) {
    const MessageBoxes boxes;
    TiffErrorString(nullptr, VELLUM_IO_ERROR);
    EXPECT_EQ(boxes.count(), 1);
    EXPECT_EQ(boxes.text(), "General I/O error in reading or writting.");
    EXPECT_EQ(boxes.caption(), "TIFF error");
    EXPECT_EQ(boxes.style(), 0x30u);
}

} // namespace
} // namespace vellum::test
