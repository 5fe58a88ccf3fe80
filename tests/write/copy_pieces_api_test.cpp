// The pieces that data are copied in: the number of calls tells their size exactly.
#include "support/faults.h"
#include "support/paths.h"
#include "support/tiff_builder.h"
#include "vellum32.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

// A TIFF with one strip of so many bytes.
Bytes tiffOf(std::size_t stripBytes) {
    tiff::Builder builder;
    builder.page({tiff::shorts(256, {8}), tiff::longs(257, {static_cast<std::uint32_t>(stripBytes)}),
                  tiff::longs(278, {static_cast<std::uint32_t>(stripBytes)})},
                 {tiff::Bytes(stripBytes, 0x5A)});
    return builder.bytes();
}

// Calls that copying a strip of this size makes.
unsigned long callsOfCopy(Call call, std::size_t stripBytes) {
    const TempFile source(tiffOf(stripBytes));
    const TempFile target;
    const FailNth counting(call, FailNth::kNever);
    EXPECT_EQ(CopyTiffImageInFile(source.path(), 0, target.path(), T_CREAT), 1u);
    return counting.calls();
}

unsigned long callsOfAppend(Call call, std::size_t stripBytes) {
    const TempFile source(tiffOf(stripBytes));
    const TempFile target(Bytes{1});
    const FailNth counting(call, FailNth::kNever);
    EXPECT_NE(AppendCCITTImageFile(target.path(), source.path(), 0, 0), nullptr);
    return counting.calls();
}

TEST(CopyPieces, OfImagesAre32760Bytes) {
    const unsigned long three = callsOfCopy(Call::Read, 3 * 32760);
    EXPECT_EQ(callsOfCopy(Call::Read, 2 * 32760 + 1), three);
    EXPECT_EQ(callsOfCopy(Call::Read, 3 * 32760 + 1), three + 1);
    EXPECT_EQ(callsOfCopy(Call::Read, 100000), three + 1) << "four reads";
}

TEST(CopyPieces, OfAppendedCodeAre65534Bytes) {
    const unsigned long two = callsOfAppend(Call::Write, 2 * 65534);
    EXPECT_EQ(two, 2u);
    EXPECT_EQ(callsOfAppend(Call::Write, 65535), two);
    EXPECT_EQ(callsOfAppend(Call::Write, 2 * 65534 + 1), two + 1);
}

} // namespace
