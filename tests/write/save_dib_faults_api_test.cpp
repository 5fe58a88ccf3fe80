// Saving a DIB where the system lets it down. Natively every test fails that leaves a block, a lock or a file behind.
#include "support/faults.h"
#include "write/packed_dibs.h"
#include "write/saved_tiff.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using namespace vellum::test;

constexpr LONG kCodes[] = {VELLUM_SAVE_UNCOMPRESSED, VELLUM_SAVE_PACKBITS, VELLUM_SAVE_LZW, VELLUM_SAVE_GROUP4};

// Fails every call of a kind in turn while a page is added to a file of one page. Result: how many calls a save makes.
template <class Check>
long failEach(Call call, LONG code, Check check) {
    const PackedDib first(9, 4, 8);
    const PackedDib second(40, 30, 1);
    const DibBlock firstBlock(first);
    const DibBlock secondBlock(second);
    constexpr long kEnough = 2000;
    for (long n = 0; n < kEnough; ++n) {
        SCOPED_TRACE(n);
        const TempFile file;
        EXPECT_EQ(SaveDIBInTiffFile(file.path(), firstBlock.get(), VELLUM_SAVE_LZW, 0), 1U);
        DWORD result = 0;
        bool happened = false;
        {
            const FailNth fault(call, n);
            result = SaveDIBInTiffFile(file.path(), secondBlock.get(), code, 0);
            happened = fault.happened();
        }
        const DWORD error = TiffError();
        EXPECT_EQ(lockCount(secondBlock.get()), 0U);
        const SavedTiff page(file.path(), 0);
        EXPECT_EQ(page.lines(), first.lines()) << "the page that was there is damaged";
        if (!happened) {
            EXPECT_EQ(result, 1U);
            EXPECT_EQ(SavedTiff(file.path(), 1).lines(), second.lines());
            return n;
        }
        if (result == 0) {
            EXPECT_EQ(page.pages(), 1) << "the chain has changed";
        }
        check(result, error);
    }
    ADD_FAILURE() << "the save never ends";
    return kEnough;
}

TEST(SaveDibFaults, WithoutMemoryTheSaveFailsWithError1) {
    for (const LONG code : kCodes) {
        SCOPED_TRACE(code);
        for (const Call call : {Call::Allocate, Call::Reallocate}) {
            const long calls = failEach(call, code, [](DWORD result, DWORD error) {
                EXPECT_EQ(result, 0U);
                EXPECT_TRUE(error == VELLUM_NO_MEMORY || error == VELLUM_BAD_OPEN_MODE) << error;
            });
            EXPECT_GE(calls, 4);
        }
    }
}

TEST(SaveDibFaults, AFileThatCannotBeWrittenIsAnIoError) {
    for (const LONG code : kCodes) {
        SCOPED_TRACE(code);
        const auto failed = [](DWORD result, DWORD error) {
            EXPECT_EQ(result, 0U);
            EXPECT_EQ(error, DWORD{VELLUM_IO_ERROR});
        };
        EXPECT_GE(failEach(Call::Write, code, failed), 3);
    }
}

// The open call reads the chain, and the encoder looks at its end again.
TEST(SaveDibFaults, AFileThatCannotBeReadIsError2WhileItIsOpenedAndAnIoErrorAfterwards) {
    std::vector<DWORD> errors;
    failEach(Call::Read, VELLUM_SAVE_LZW, [&errors](DWORD result, DWORD error) {
        if (result == 0) {
            errors.push_back(error);
        } // else it was a read that the save could do without
    });
    EXPECT_EQ(errors.front(), DWORD{VELLUM_BAD_OPEN_MODE});
    EXPECT_EQ(errors.back(), DWORD{VELLUM_IO_ERROR});
    EXPECT_TRUE(std::is_sorted(errors.begin(), errors.end()));
    EXPECT_EQ(std::count(errors.begin(), errors.end(), VELLUM_BAD_OPEN_MODE) +
                  std::count(errors.begin(), errors.end(), VELLUM_IO_ERROR),
              static_cast<std::ptrdiff_t>(errors.size()));
}

} // namespace
