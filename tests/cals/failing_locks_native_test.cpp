// Blocks that cannot be locked: every lock of the CALS calls, failing in turn. The start of the test program proves
// that nothing is left behind.
#include "cals/cals_pictures.h"
#include "native/shim.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

#include <functional>

namespace vellum::test {
namespace {

// Runs a call with each of its locks failing; it must then fail with error 1. Result: how many locks there are.
unsigned long failEachLock(const std::function<bool()> &call) {
    shim::state.globalLock = {};
    EXPECT_TRUE(call());
    const unsigned long locks = shim::state.globalLock.calls;
    for (unsigned long nth = 0; nth < locks; ++nth) {
        SCOPED_TRACE(nth);
        SetTiffError(VELLUM_OK);
        shim::state.globalLock = {static_cast<long>(nth), 0};
        const bool done = call();
        shim::state.globalLock = {};
        EXPECT_FALSE(done);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    }
    return locks;
}

TEST(FailingCalsLocks, OfHeadersAreError1) {
    const TempFile file(calsHeader(with(pictureRecords(), "notes: N")));
    EXPECT_EQ(failEachLock([&] { return static_cast<bool>(OwnedBlock(ReadCALSHead(file.path()))); }), 1U);
    EXPECT_EQ(failEachLock([&] {
                  CalsInfo info;
                  return ReadCALSInfo(file.path(), &info) == 1;
              }),
              2U);
    EXPECT_EQ(failEachLock([&] {
                  CalsNotes notes;
                  return static_cast<bool>(OwnedBlock(ReadCALSNote(file.path(), &notes)));
              }),
              3U);
    const CalsInfo info{};
    EXPECT_EQ(failEachLock([&] { return static_cast<bool>(OwnedBlock(DefineCALSHead(&info, nullptr))); }), 1U);
}

TEST(FailingCalsLocks, OfPicturesAreError1) {
    const TempFile file(bilevelPicture(45, 13).file());
    EXPECT_GE(failEachLock([&] { return static_cast<bool>(OwnedBlock(LoadCALSIntoDIB(file.path(), 0))); }), 3U);
}

// The encoder locks its table of strips too, which a stream without a directory has no use for.
TEST(FailingCalsLocks, OfASaveAreError1OrDoNotMatter) {
    const DibBlock dib(PackedDib(20, 5, 1));
    const TempFile made;
    const auto save = [&] { return SaveDIBInCALSFormat(made.path(), dib.get(), nullptr, nullptr, 0) == 1; };
    shim::state.globalLock = {};
    ASSERT_TRUE(save());
    const Bytes whole = readFile(made.path()).value_or(Bytes());
    const unsigned long locks = shim::state.globalLock.calls;
    int failures = 0;
    for (unsigned long nth = 0; nth < locks; ++nth) {
        SCOPED_TRACE(nth);
        shim::state.globalLock = {static_cast<long>(nth), 0};
        const bool done = save();
        shim::state.globalLock = {};
        EXPECT_EQ(TiffError(), done ? DWORD{VELLUM_OK} : DWORD{VELLUM_NO_MEMORY});
        if (done) {
            EXPECT_EQ(readFile(made.path()), whole);
        }
        failures += done ? 0 : 1;
    }
    EXPECT_GE(failures, 4) << "the picture, the header twice, and the buffers";
}

} // namespace
} // namespace vellum::test
