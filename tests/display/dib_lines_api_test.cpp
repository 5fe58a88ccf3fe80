// The line functions for packed DIBs, as a program uses them that brings a context of its own.
#include "display/pictures.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

using LoaderLine = DWORD(VELLUMAPI *)(BYTE *, DWORD, LoadLineContext *);

// Programs hand the functions to DecodeTiffImage by a cast, as the user value is as wide as an address. The sanitizers
// object to a call through a cast function pointer, so natively a function of the right type stands between.
#ifdef VELLUM_NATIVE
template <LoaderLine function>
DWORD VELLUMAPI between(BYTE *line, DWORD row, DWORD userValue) {
    return function(line, row, reinterpret_cast<LoadLineContext *>(static_cast<std::uintptr_t>(userValue)));
}
template <LoaderLine function>
constexpr LineFunc kLineFunc = &between<function>;
#else
template <LoaderLine function>
const LineFunc kLineFunc = reinterpret_cast<LineFunc>(reinterpret_cast<void *>(function));
#endif

LoadLineContext contextOver(Bytes &rows, DWORD height, std::size_t lineBytes, std::size_t stride) {
    LoadLineContext context{};
    context.bits = rows.data();
    context.height = height;
    context.lineBytes = static_cast<DWORD>(lineBytes);
    context.strideOrUsage = static_cast<DWORD>(stride);
    return context;
}

DWORD userValueOf(LoadLineContext &context) {
    return static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(&context));
}

TEST(DibLines, ARowGoesToItsPlaceFromTheBottom) {
    Bytes rows(4 * 8, BYTE{0xEE});
    LoadLineContext context = contextOver(rows, 4, 3, 8);
    Bytes line = {1, 2, 3, 4, 5, 6};
    const Bytes untouched = line;
    EXPECT_EQ(DllFlushTiffLineDIB(line.data(), 0, &context), 0U);
    EXPECT_EQ(line, untouched);
    line = {7, 8, 9, 4, 5, 6};
    EXPECT_EQ(DllFlushTiffLineDIB(line.data(), 3, &context), 0U);
    Bytes expected(4 * 8, BYTE{0xEE});
    std::copy_n(Bytes{1, 2, 3}.data(), 3, expected.data() + 3 * 8);
    std::copy_n(Bytes{7, 8, 9}.data(), 3, expected.data());
    EXPECT_EQ(rows, expected);
}

TEST(DibLines, RedAndBlueAreExchangedInTheLineItself) {
    Bytes rows(8, BYTE{0xEE});
    LoadLineContext context = contextOver(rows, 1, 6, 8);
    Bytes line = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_EQ(DllFlushTiffLine24DIB(line.data(), 0, &context), 0U);
    EXPECT_EQ(rows, (Bytes{3, 2, 1, 6, 5, 4, 0xEE, 0xEE}));
    EXPECT_EQ(line, (Bytes{3, 2, 1, 6, 5, 4, 7, 8, 9})) << "only the context's bytes of the line are used";
}

TEST(DibLines, BytesBehindTheLastWholePixelAreCopiedAsTheyAre) {
    Bytes rows(8);
    LoadLineContext context = contextOver(rows, 1, 5, 8);
    Bytes line = {1, 2, 3, 4, 5};
    DllFlushTiffLine24DIB(line.data(), 0, &context);
    EXPECT_EQ(rows, (Bytes{3, 2, 1, 4, 5, 0, 0, 0}));
}

TEST(DibLines, RowsBelowTheDibGoNowhere) {
    Bytes rows(8);
    LoadLineContext context = contextOver(rows, 2, 4, 4);
    Bytes line = {1, 2, 3, 4};
    EXPECT_EQ(DllFlushTiffLineDIB(line.data(), 2, &context), 0U);
    EXPECT_EQ(DllFlushTiffLine24DIB(line.data(), 0xFFFFFFFF, &context), 0U);
    EXPECT_EQ(rows, Bytes(8));
}

TEST(DibLines, AProgramsOwnContextTakesAnImage) {
    for (const Depth &depth : kDepths) {
        SCOPED_TRACE(depth.bitsPerPixel());
        const Picture original = picture(7, 5, depth);
        const OpenedTiff tiff(original.tiff());
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        // A stride of the program's own, wider than any DIB's.
        const std::size_t stride = original.stride() + 16;
        Bytes rows(stride * 5);
        LoadLineContext context = contextOver(rows, 5, original.lineBytes(), stride);
        ASSERT_EQ(
            DecodeTiffImage(tiff.get(), 0, 0, 0, userValueOf(context),
                            depth.samples == 3 ? kLineFunc<DllFlushTiffLine24DIB> : kLineFunc<DllFlushTiffLineDIB>),
            1U);
        for (DWORD row = 0; row < 5; ++row) {
            Bytes expected = original.dibRow(row);
            expected.resize(stride);
            const auto begin = rows.begin() + static_cast<std::ptrdiff_t>((4 - row) * stride);
            EXPECT_EQ(Bytes(begin, begin + static_cast<std::ptrdiff_t>(stride)), expected) << row;
        }
    }
}

TEST(DibLines, ARangeOfStripsLandsInItsRows) {
    const Picture original = picture(9, 6, {8, 1}, 2);
    const OpenedTiff tiff(original.tiff());
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    Bytes rows(original.stride() * 6);
    LoadLineContext context = contextOver(rows, 6, original.lineBytes(), original.stride());
    ASSERT_EQ(DecodeTiffImage(tiff.get(), 0, 1, 2, userValueOf(context), kLineFunc<DllFlushTiffLineDIB>), 1U);
    for (DWORD row = 0; row < 6; ++row) {
        const auto begin = rows.begin() + static_cast<std::ptrdiff_t>((5 - row) * original.stride());
        EXPECT_EQ(Bytes(begin, begin + static_cast<std::ptrdiff_t>(original.stride())),
                  row == 2 || row == 3 ? original.dibRow(row) : Bytes(original.stride()))
            << row;
    }
}

} // namespace
