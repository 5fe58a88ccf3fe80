// Blocks that cannot be locked: every lock of the calls that open and register, failing in turn. The start of the test
// program proves that nothing is left behind.
#include "native/shim.h"
#include "opened_tiff.h"

#include <functional>

namespace vellum::test {
namespace {

Bytes twoImages() {
    tiff::Builder file;
    for (const std::uint32_t width : {1u, 2u}) {
        file.directory({tiff::shorts(256, {width}), tiff::shorts(257, {1}), tiff::shorts(258, {8, 8, 8}),
                        tiff::shorts(320, std::vector<std::uint32_t>(48, 7))});
    }
    return file.bytes();
}

// Runs a call with each of its locks failing. Result: how many locks there are.
unsigned long failEachLock(const std::function<void(unsigned long nth)> &call) {
    shim::state.globalLock = {};
    call(0);
    const unsigned long locks = shim::state.globalLock.calls;
    for (unsigned long nth = 0; nth < locks; ++nth) {
        SetTiffError(0);
        shim::state.globalLock = {static_cast<long>(nth), 0};
        call(nth);
        shim::state.globalLock = {};
    }
    SetTiffError(0);
    return locks;
}

bool failing() {
    return shim::state.globalLock.countdown >= 0;
}

TEST(FailingLocks, OfTheHandleAreError1WhenAFileIsOpened) {
    const TempFile file(twoImages());
    for (const DWORD mode : {DWORD{T_READ}, DWORD{T_APPEND}, DWORD{T_CREAT}}) {
        const unsigned long locks = failEachLock([&](unsigned long nth) {
            const bool fails = failing();
            TiffHandle tiff = OpenTiffFile(file.path(), mode);
            shim::state.globalLock.countdown = -1;
            EXPECT_EQ(tiff == nullptr, fails) << nth;
            EXPECT_EQ(TiffError(), fails ? 1u : 0u) << nth;
            const unsigned long calls = shim::state.globalLock.calls;
            CloseTiffFile(tiff);
            shim::state.globalLock.calls = calls;
        });
        EXPECT_EQ(locks, 1u);
    }
}

TEST(FailingLocks, OfAMemoryTiffAreErrorsOfItsReader) {
    const Bytes content = twoImages();
    HGLOBAL block = makeBlock(content);
    const unsigned long locks = failEachLock([&](unsigned long nth) {
        const bool fails = failing();
        TiffHandle tiff = OpenTiffInMemory(block, static_cast<DWORD>(content.size()), T_READ);
        shim::state.globalLock.countdown = -1;
        const unsigned long calls = shim::state.globalLock.calls;
        if (fails) {
            EXPECT_EQ(TiffError(), nth == 0 ? 1u : 6u) << nth;
            EXPECT_TRUE(tiff == nullptr || imageCount(tiff) == 1) << nth;
        } else {
            EXPECT_EQ(TiffError(), 0u);
        }
        CloseTiffFile(tiff);
        shim::state.globalLock.calls = calls;
    });
    EXPECT_GT(locks, 5u);
    GlobalFree(block);
}

TEST(FailingLocks, NeverRegisterHalfAnImage) {
    for (const Place place : {Place::File, Place::Memory}) {
        const OpenedTiff tiff(twoImages(), place);
        const unsigned long locks = failEachLock([&](unsigned long nth) {
            const shim::Fault fault = shim::state.globalLock;
            const bool fails = failing();
            shim::state.globalLock = {};
            DropTiffImage(tiff.get(), 0);
            shim::state.globalLock = fault;
            const DWORD registered = GetTiffImage(tiff.get(), 0);
            shim::state.globalLock.countdown = -1;
            const unsigned long calls = shim::state.globalLock.calls;
            EXPECT_EQ(IsTiffImageRegistered(tiff.get(), 0), registered) << nth;
            // A handle that cannot be locked for the question whether the image is registered answers no.
            if (fails && nth > 0) {
                EXPECT_EQ(registered, 0u) << nth;
                EXPECT_TRUE(TiffError() == 1 || TiffError() == 6) << nth << ": " << TiffError();
            } else {
                EXPECT_EQ(registered, 1u);
            }
            shim::state.globalLock.calls = calls;
        });
        EXPECT_GE(locks, 3u);
    }
}

TEST(FailingLocks, LeaveNoColorTableBehind) {
    const OneImage image({tiff::shorts(256, {1}), tiff::shorts(257, {1}), tiff::shorts(258, {4}),
                          tiff::shorts(262, {3}), tiff::shorts(320, std::vector<std::uint32_t>(48, 7))});
    const unsigned long locks = failEachLock([&](unsigned long nth) {
        HGLOBAL table = GetTiffRGBQuad(image.get(), 0);
        if (table == nullptr) {
            EXPECT_NE(TiffError(), 0u) << nth;
        }
        EXPECT_EQ(lockCount(table), table == nullptr ? UINT{GMEM_INVALID_HANDLE} & GMEM_LOCKCOUNT : 0u) << nth;
        GlobalFree(table);
    });
    EXPECT_GT(locks, 5u);
}

} // namespace
} // namespace vellum::test
