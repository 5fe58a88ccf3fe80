// Saving packed DIBs for fax receivers.
#include "write/save_calls.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

Outcome saveGamma(const char *path, const PackedDib &dib, LONG code, LONG fillOrder = 1) {
    const DibBlock block(dib);
    SetTiffError(VELLUM_NOT_CALS);
    const DWORD result = SaveDIBInGammaTiffFile(path, block.get(), code, 0, fillOrder);
    EXPECT_EQ(blockBytes(block.get()), dib.bytes());
    return {result, TiffError()};
}

// The lines with every pixel of 1 bit complemented.
Bytes complementedLines(const PackedDib &dib) {
    Bytes lines = dib.lines();
    const auto width = static_cast<std::size_t>(dib.header.biWidth);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const bool last = (i + 1) % dib.lineBytes() == 0 && width % 8 != 0;
        lines[i] = static_cast<BYTE>(~lines[i] & (last ? 0xFF00 >> width % 8 : 0xFF));
    }
    return lines;
}

// The unused bits of the last byte of a line are nobody's.
Bytes withoutSpareBits(Bytes lines, const PackedDib &dib) {
    const auto width = static_cast<std::size_t>(dib.header.biWidth);
    for (std::size_t i = dib.lineBytes() - 1; i < lines.size() && width % 8 != 0; i += dib.lineBytes()) {
        lines[i] = static_cast<BYTE>(lines[i] & (0xFF00 >> width % 8));
    }
    return lines;
}

TEST(SaveDibForGamma, ABilevelPictureIsAlwaysWhiteIsZero) {
    for (const LONG code : kEveryCode) {
        SCOPED_TRACE(code);
        const TempFile whiteFile;
        const PackedDib white(21, 5, 1);
        ASSERT_EQ(saveGamma(whiteFile.path(), white, code), kDecoded);
        EXPECT_EQ(SavedTiff(whiteFile.path()).number(262), 0U);
        EXPECT_EQ(SavedTiff(whiteFile.path()).lines(), white.lines());

        const TempFile blackFile;
        const PackedDib black(21, 5, 1, {kBlackQuad, kWhiteQuad});
        ASSERT_EQ(saveGamma(blackFile.path(), black, code), kDecoded);
        const SavedTiff saved(blackFile.path());
        EXPECT_EQ(saved.number(262), 0U);
        EXPECT_EQ(withoutSpareBits(saved.lines(), black), complementedLines(black));
    }
}

TEST(SaveDibForGamma, ABilevelPictureOfBlackAloneIsWhiteIsZeroToo) {
    for (const std::vector<RGBQUAD> &colours : {std::vector<RGBQUAD>{kBlackQuad}, {kBlackQuad, kBlackQuad}}) {
        const TempFile file;
        ASSERT_EQ(saveGamma(file.path(), PackedDib(21, 5, 1, colours), VELLUM_SAVE_GROUP4), kDecoded);
        EXPECT_EQ(SavedTiff(file.path()).number(262), 0U);
    }
}

TEST(SaveDibForGamma, OtherDepthsAreSavedAsTheyAlwaysAre) {
    for (const WORD bits : {WORD{4}, WORD{8}, WORD{24}}) {
        std::vector<RGBQUAD> colours = PackedDib::coloursFor(bits);
        if (!colours.empty()) {
            colours[0] = kBlackQuad;
        }
        const PackedDib dib(21, 5, bits, colours);
        const TempFile gamma;
        ASSERT_EQ(saveGamma(gamma.path(), dib, VELLUM_SAVE_LZW, 2), kDecoded);
        const TempFile plain;
        ASSERT_EQ(save(plain.path(), dib, VELLUM_SAVE_LZW, 2), kDecoded);
        EXPECT_EQ(readFile(gamma.path()), readFile(plain.path()));
    }
}

TEST(SaveDibForGamma, RefusesWhatTheOthersRefuse) {
    const TempFile file;
    EXPECT_EQ(saveGamma(file.path(), PackedDib(20, 5, 1), 210), failedWith(VELLUM_UNKNOWN_COMPRESSION));
    EXPECT_EQ(saveGamma(file.path(), PackedDib(20, 5, 8), VELLUM_SAVE_GROUP4), failedWith(VELLUM_BAD_COLOR_FORMAT));
    EXPECT_EQ(SaveDIBInGammaTiffFile(file.path(), nullptr, VELLUM_SAVE_LZW, 0, 1), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    EXPECT_FALSE(readFile(file.path()));
}

} // namespace
