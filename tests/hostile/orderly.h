// What the tests of damaged input share: small pictures, a TIFF around them, and what an orderly end of a decode is.
#pragma once

#include "support/coded_tiff.h"
#include "support/decode_lines.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

#include <chrono>

#ifdef VELLUM_NATIVE
#include "native/shim.h"
#endif

namespace vellum::test {

struct SmallPicture {
    CodedPage page;
    Bytes packed;
    Bytes code; // one strip
};

// A picture small enough for every byte of its code to be tried: 61 x 12 pixels for the CCITT codings, 19 x 12 pixels
// of 8 or 24 bits for the others.
inline SmallPicture smallPicture(DWORD key) {
    Random random(key);
    SmallPicture picture;
    picture.page = {.width = 61, .height = 12, .key = key};
    const DWORD compression = key & 0xFFFF;
    if (compression >= 2 && compression <= 4) {
        picture.packed = packRows(randomRows(random, 61, 12));
    } else {
        picture.page.width = 19;
        picture.page.bits = 8;
        picture.page.samples = key == VELLUM_KEY_LZW_DIFFERENCING ? 3 : 1;
        picture.packed = randomBytes(random, std::size_t{19} * picture.page.samples * 12);
    }
    picture.code = encodeStrip(picture.page, picture.packed);
    return picture;
}

// Success with every line, or a failure that says why; lines in order and none beyond the height.
inline testing::AssertionResult orderly(const Outcome &outcome, const LineLog &log, DWORD height) {
    if (!log.inOrder) {
        return testing::AssertionFailure() << "lines out of order";
    }
    if (log.lines > height) {
        return testing::AssertionFailure() << log.lines << " lines for " << height;
    }
    if (outcome.result == 1) {
        return outcome.error == VELLUM_OK && log.lines == height
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << "success with error " << outcome.error << " and " << log.lines
                                                 << " of " << height << " lines";
    }
    switch (outcome.result == 0 ? outcome.error : VELLUM_OK) {
    case VELLUM_UNEXPECTED_END:
    case VELLUM_IO_ERROR:
    case VELLUM_CODE_ERROR:
    case VELLUM_EOFB_UNEXPECTED:
        return testing::AssertionSuccess();
    default:
        return testing::AssertionFailure() << "result " << outcome.result << ", error " << outcome.error;
    }
}

// The lines that came are the picture's first ones.
inline testing::AssertionResult startsWithLinesOf(const Bytes &packed, const LineLog &log) {
    for (std::size_t i = 0; i < log.data.size(); ++i) {
        if (i >= packed.size() || log.data[i] != packed[i]) {
            return testing::AssertionFailure() << "line " << i / log.lineBytes << " is not the picture's";
        }
    }
    return testing::AssertionSuccess();
}

// Everything a program asks of an image, with the lines counted and forgotten. Whatever the file says, each call
// answers; what the answer is does not matter here.
inline void useImage(TiffHandle tiff, DWORD index) {
    if (!registerImage(tiff, index)) {
        EXPECT_NE(TiffError(), DWORD{VELLUM_OK});
        return;
    }
    BITMAPINFOHEADER header{};
    const DWORD described = GetTiffDimensions(tiff, index, &header);
    DWORD dpi = 0;
    GetTiffImageDPI(tiff, index, &dpi);
    GetTiffRowsPerStrip(tiff, index);
    GetTiffStripCount(tiff, index);
    if (const HGLOBAL colours = GetTiffRGBQuad(tiff, index); colours != nullptr) {
        EXPECT_GE(GlobalSize(colours), sizeof(BITMAPINFOHEADER));
        GlobalFree(colours);
    }
    LineLog log;
    log.keepData = false;
    const Outcome outcome = decodeInto(log, tiff, index);
    EXPECT_EQ(outcome.result == 1, outcome.error == VELLUM_OK);
    EXPECT_TRUE(log.inOrder);
    EXPECT_TRUE(described == 0 || outcome.result == 0);
    if (described == 0) {
        EXPECT_LE(log.lines, static_cast<DWORD>(header.biHeight));
    }
    DropTiffImage(tiff, index);
}

inline void useAllImages(TiffHandle tiff, LONG most = 4) {
    const LONG images = NumberOfTiffImages(tiff, VELLUM_ALL_IMAGES);
    EXPECT_GE(images, 0);
    EXPECT_LE(images, 1000);
    for (LONG i = 0; i < images && i < most; ++i) {
        useImage(tiff, static_cast<DWORD>(i));
    }
}

class Stopwatch {
public:
    [[nodiscard]] double seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// The most global memory that was in use at one time since the object was made. Only the native build counts it.
class PeakMemory {
public:
#ifdef VELLUM_NATIVE
    PeakMemory() : before_(shim::state.bytes) {
        shim::state.peakBytes = shim::state.bytes;
    }
    [[nodiscard]] std::size_t bytes() const {
        return shim::state.peakBytes - before_;
    }

private:
    std::size_t before_;
#else
    [[nodiscard]] std::size_t bytes() const {
        return 0;
    }
#endif
};

// Files are slow to make under Windows: there every few bytes are tried, beginning somewhere else for every key; the
// native build tries every byte.
#ifdef VELLUM_NATIVE
inline constexpr std::size_t kFileStep = 1;
#else
inline constexpr std::size_t kFileStep = 7;
#endif

inline constexpr std::size_t kLittleMemory = 32U << 20;

// Far above what any of these inputs takes, far below what a runaway takes. The sanitizers cost a factor of ten.
inline constexpr double kPromptSeconds = 10;

} // namespace vellum::test
