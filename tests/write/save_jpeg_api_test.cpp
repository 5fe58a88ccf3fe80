// Code 209 through a save front end, with a stand-in for the companion module.
#include "support/faults.h"
#include "support/jpeg_tiff.h"
#include "support/read_tags.h"
#include "write/save_calls.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

struct Handed {
    DWORD key = 0;
    WORD bits = 0;
    Bytes lines;
} handed;

// Its code is the lines, its tables are empty.
DWORD VELLUMAPI encodeAsIs(CodecState *state) {
    handed = {state->compressionKey, state->image.biBitCount, {}};
    for (HGLOBAL *block = state->workBlocks; block != state->workBlocks + 3; ++block) {
        *block = makeBlock(Bytes(12));
    }
    DWORD error = InitEncodeBuffers(state);
    while (error == 0) {
        const auto bytes = static_cast<std::size_t>(state->bytesPerLine);
        handed.lines.insert(handed.lines.end(), state->lineBuffer, state->lineBuffer + bytes);
        error = FillDataBuffer(state);
    }
    return error;
}

std::vector<DWORD> shapeOf(const char *path) {
    const TiffHandle tiff = OpenTiffFile(path, T_READ);
    EXPECT_EQ(GetTiffImage(tiff, 0), 1u);
    const std::vector<DWORD> shape = {firstNumber(tiff, 0, 259), firstNumber(tiff, 0, 262), firstNumber(tiff, 0, 277),
                                      firstNumber(tiff, 0, 322), firstNumber(tiff, 0, 323)};
    CloseTiffFile(tiff);
    return shape;
}

TEST(SaveDibByTheJpegModule, HandsOverColourLinesRedFirst) {
    const CompanionModule module(kCompanionName, "JPEGEncoder", asEntry(encodeAsIs));
    const TempFile file;
    const PackedDib dib(5, 4, 24);
    ASSERT_EQ(save(file.path(), dib, VELLUM_SAVE_JPEG), kDecoded);
    EXPECT_EQ(handed.key, DWORD{VELLUM_KEY_JPEG});
    EXPECT_EQ(handed.bits, 24);
    EXPECT_EQ(handed.lines, dib.lines()) << "lines() is red first";
    EXPECT_EQ(shapeOf(file.path()), (std::vector<DWORD>{6, 2, 3, 5, 4}));
}

} // namespace
