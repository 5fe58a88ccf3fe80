// CALS files with changed headers: every call that reads them answers as stated, whatever they say.
#include "cals/changed_cals.h"
#include "fuzz/cals_file_input.h"
#include "support/faults.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

// Files are slow to make under Windows.
#ifdef VELLUM_NATIVE
constexpr std::uint32_t kFiles = 3000;
#else
constexpr std::uint32_t kFiles = 400;
#endif

TEST(ChangedCals, TheKeptFilesAreReadAsStated) {
    const MessageBoxes boxes;
    const TempFile copy;
    const std::vector<Bytes> files = keptCalsFiles();
    EXPECT_GE(files.size(), 16U);
    for (const Bytes &file : files) {
        const TempFile temp(file);
        EXPECT_STREQ(complaintAboutCalsFile(temp.path(), copy.path()), nullptr)
            << recordsOf(file).front() << ", " << file.size();
    }
}

TEST(ChangedCals, AnyChangedHeadersAreReadAsStated) {
    const MessageBoxes boxes;
    const TempFile copy;
    const std::vector<Bytes> files = keptCalsFiles();
    std::uint32_t headers = 0;
    std::uint32_t pictures = 0;
    for (std::uint32_t i = 0; i < kFiles; ++i) {
        const TempFile temp(changedCalsFile(files, i));
        ASSERT_STREQ(complaintAboutCalsFile(temp.path(), copy.path()), nullptr) << "file " << i;
        CalsInfo info;
        headers += OwnedBlock(ReadCALSHead(temp.path())) ? 1 : 0;
        pictures += ReadCALSInfo(temp.path(), &info) == 1 ? 1 : 0;
    }
    EXPECT_GT(headers, kFiles / 2);
    EXPECT_GT(pictures, kFiles / 5);
    EXPECT_LT(pictures, headers);
}

} // namespace
