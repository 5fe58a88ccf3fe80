// Appending where only the system knows that a file is not to be written: the source by another name, and files that
// somebody has open.
#include "support/paths.h"
#include "support/tiff_builder.h"
#include "vellum32.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

Bytes oneStrip() {
    tiff::Builder file;
    file.page({tiff::shorts(256, {8}), tiff::shorts(257, {1})}, {{1, 2, 3}});
    return file.bytes();
}

TEST(CcittAppendSharing, TheSourceByAnotherNameIsNotWrittenTo) {
    const TempFile source(oneStrip());
    const TempFile other;
    ASSERT_TRUE(CreateHardLinkA(other.path(), source.path(), nullptr)) << GetLastError();
    EXPECT_EQ(AppendCCITTImageFile(other.path(), source.path(), 0, 0), nullptr);
    EXPECT_EQ(AppendCCITTImageFile(source.path(), other.path(), 0, -5), nullptr);
    EXPECT_EQ(readFile(source.path()), oneStrip());
    EXPECT_EQ(readFile(other.path()), oneStrip());
}

TEST(CcittAppendSharing, ATargetThatIsInUseStaysAsItIs) {
    const TempFile source(oneStrip());
    const TempFile target(Bytes{7, 8});
    const HANDLE user = CreateFileA(target.path(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(user, INVALID_HANDLE_VALUE);
    EXPECT_EQ(AppendCCITTImageFile(target.path(), source.path(), 0, 0), nullptr);
    CloseHandle(user);
    EXPECT_EQ(readFile(target.path()), (Bytes{7, 8}));
    EXPECT_NE(AppendCCITTImageFile(target.path(), source.path(), 0, 0), nullptr);
    EXPECT_EQ(readFile(target.path()), (Bytes{7, 8, 1, 2, 3}));
}

} // namespace
