// Size, depth, strips and resolution of an image.
#include "opened_tiff.h"

#include <cstring>

namespace vellum::test {
namespace {

using Entries = std::vector<tiff::Entry>;

// The screen's resolution: natively and under Wine's driver without a screen it is 96; a program may find another.
DWORD screenDpi(int capability) {
    HDC screen = GetDC(nullptr);
    const auto dpi = static_cast<DWORD>(GetDeviceCaps(screen, capability));
    ReleaseDC(nullptr, screen);
    return dpi;
}

// Size and, behind it, other tags.
Entries sized(DWORD width, DWORD length, const Entries &others = {}) {
    Entries entries = {tiff::longs(256, {width}), tiff::longs(257, {length})};
    entries.insert(entries.end(), others.begin(), others.end());
    return entries;
}

// GetTiffDimensions' record, from one full of rubbish.
struct Dimensions {
    DWORD result;
    BITMAPINFOHEADER header;

    explicit Dimensions(const OneImage &image) {
        std::memset(&header, 0xEE, sizeof header);
        result = GetTiffDimensions(image.get(), 0, &header);
    }
    explicit Dimensions(const Entries &entries) : Dimensions(OneImage(entries)) {}
};

DWORD dpiOf(const Entries &entries) {
    const OneImage image(entries);
    DWORD dpi = 0xEEEEEEEE;
    EXPECT_EQ(GetTiffImageDPI(image.get(), 0, &dpi), 0u);
    return dpi;
}

constexpr DWORD dpi(DWORD vertical, DWORD horizontal) {
    return vertical << 16 | horizontal;
}

class ImageDimensions : public ::testing::Test {
protected:
    void SetUp() override { SetTiffError(VELLUM_OK); }
    void TearDown() override { SetTiffError(VELLUM_OK); }
};

TEST_F(ImageDimensions, OfABilevelFax) {
    for (const std::uint16_t order : {tiff::kII, tiff::kMM}) {
        const OneImage image(sized(1728, 2200,
                                   {tiff::shorts(258, {1}), tiff::rationals(282, {204, 1}),
                                    tiff::rationals(283, {196, 1}), tiff::shorts(296, {2})}),
                             order);
        const auto [result, header] = Dimensions(image);
        EXPECT_EQ(result, 0u);
        EXPECT_EQ(header.biSize, 40u);
        EXPECT_EQ(header.biWidth, 1728);
        EXPECT_EQ(header.biHeight, 2200);
        EXPECT_EQ(header.biPlanes, 1);
        EXPECT_EQ(header.biBitCount, 1);
        EXPECT_EQ(header.biCompression, 0u);
        EXPECT_EQ(header.biSizeImage, 0u);
        EXPECT_EQ(header.biXPelsPerMeter, 8031);
        EXPECT_EQ(header.biYPelsPerMeter, 7717);
        EXPECT_EQ(header.biClrUsed, 2u);
        EXPECT_EQ(header.biClrImportant, 2u);
        EXPECT_EQ(TiffError(), 13u) << "SamplesPerPixel was looked for in vain";
    }
}

TEST_F(ImageDimensions, NeedWidthAndLength) {
    EXPECT_EQ(Dimensions(Entries{tiff::longs(257, {5})}).result, 10u);
    EXPECT_EQ(SetTiffError(0), 10u);
    EXPECT_EQ(Dimensions(Entries{tiff::longs(256, {5})}).result, 10u);
    EXPECT_EQ(SetTiffError(0), 10u);
    EXPECT_EQ(Dimensions(Entries{}).result, 10u);
    EXPECT_EQ(SetTiffError(0), 10u);
}

TEST_F(ImageDimensions, OfAnImageThatIsNotRegisteredAreMissing) {
    tiff::Builder file;
    file.directory(sized(1, 1));
    const OpenedTiff tiff(file.bytes(), Place::Memory);
    BITMAPINFOHEADER header = {};
    EXPECT_EQ(GetTiffDimensions(tiff.get(), 0, &header), 10u);
    EXPECT_EQ(GetTiffDimensions(tiff.get(), 1000, &header), 10u);
    EXPECT_EQ(TiffError(), 10u);
    EXPECT_EQ(GetTiffRowsPerStrip(tiff.get(), 0), 0u);
    EXPECT_EQ(GetTiffStripCount(tiff.get(), 0), 0);
    EXPECT_EQ(GetTiffRGBQuad(tiff.get(), 0), nullptr);
    DWORD resolution = 0xEEEEEEEE;
    EXPECT_EQ(GetTiffImageDPI(tiff.get(), 0, &resolution), 0u);
    EXPECT_EQ(resolution, dpi(screenDpi(LOGPIXELSY), screenDpi(LOGPIXELSX))) << "as of any image without one";
}

TEST_F(ImageDimensions, MayGoToNobody) {
    const OneImage image(sized(1, 1));
    EXPECT_EQ(GetTiffDimensions(image.get(), 0, nullptr), 0u);
    EXPECT_EQ(GetTiffImageDPI(image.get(), 0, nullptr), 0u);
    const OneImage without(Entries{});
    EXPECT_EQ(GetTiffDimensions(without.get(), 0, nullptr), 10u);
}

// By design.
TEST_F(ImageDimensions, TakeALengthOf0For1000) {
    EXPECT_EQ(Dimensions(sized(5, 0)).header.biHeight, 1000);
    EXPECT_EQ(Dimensions(Entries{tiff::shorts(256, {5}), tiff::shorts(257, {0})}).header.biHeight, 1000);
    EXPECT_EQ(Dimensions(Entries{tiff::shorts(256, {5}), tiff::ascii(257, "no")}).header.biHeight, 1000)
        << "a text says nothing";
}

TEST_F(ImageDimensions, PassAWidthOf0) {
    const auto [result, header] = Dimensions(sized(0, 5));
    EXPECT_EQ(result, 0u);
    EXPECT_EQ(header.biWidth, 0);
    EXPECT_EQ(Dimensions(Entries{tiff::ascii(256, "no"), tiff::shorts(257, {5})}).header.biWidth, 0);
}

TEST_F(ImageDimensions, TakeBytesShortsAndLongs) {
    const auto [result, header] = Dimensions(Entries{tiff::byteValues(256, {200}), tiff::shorts(257, {65535})});
    EXPECT_EQ(result, 0u);
    EXPECT_EQ(header.biWidth, 200);
    EXPECT_EQ(header.biHeight, 65535);
    EXPECT_EQ(Dimensions(sized(0x7FFFFFFF, 0x7FFFFFFF)).header.biHeight, 0x7FFFFFFF);
}

WORD bitsOf(const Entries &others) {
    const auto [result, header] = Dimensions(sized(5, 5, others));
    EXPECT_EQ(result, 0u);
    return header.biBitCount;
}

TEST_F(ImageDimensions, MultiplyBitsBySamples) {
    EXPECT_EQ(bitsOf({}), 1);
    EXPECT_EQ(bitsOf({tiff::shorts(258, {4})}), 4);
    EXPECT_EQ(bitsOf({tiff::shorts(258, {8})}), 8);
    EXPECT_EQ(bitsOf({tiff::shorts(258, {8, 8, 8}), tiff::shorts(277, {3})}), 24);
    EXPECT_EQ(bitsOf({tiff::shorts(258, {8}), tiff::shorts(277, {3}), tiff::shorts(284, {1})}), 24);
    EXPECT_EQ(bitsOf({tiff::shorts(258, {24})}), 24);
    EXPECT_EQ(bitsOf({tiff::shorts(258, {1}), tiff::shorts(277, {4})}), 4);
}

TEST_F(ImageDimensions, KeepTheProductIn16Bits) {
    EXPECT_EQ(bitsOf({tiff::longs(258, {0x10008}), tiff::shorts(277, {1})}), 8);
    EXPECT_EQ(bitsOf({tiff::shorts(258, {0x8001}), tiff::shorts(277, {8})}), 8) << "0x40008";
    EXPECT_EQ(bitsOf({tiff::shorts(258, {0xFFFF}), tiff::shorts(277, {0xFFFF})}), 1) << "0xFFFE0001";
}

TEST_F(ImageDimensions, RefuseOtherDepthsWithError16) {
    for (const DWORD bits : {0u, 2u, 3u, 5u, 6u, 7u, 12u, 16u, 32u, 48u, 64u, 65535u}) {
        SetTiffError(0);
        const auto [result, header] = Dimensions(sized(5, 5, {tiff::shorts(258, {bits})}));
        EXPECT_EQ(result, 16u) << bits;
        EXPECT_EQ(header.biBitCount, bits);
        EXPECT_EQ(TiffError(), 16u);
    }
    EXPECT_EQ(Dimensions(sized(5, 5, {tiff::shorts(258, {8, 8, 8, 8}), tiff::shorts(277, {4})})).result, 16u);
    EXPECT_EQ(Dimensions(sized(5, 5, {tiff::shorts(258, {8}), tiff::shorts(277, {0})})).result, 16u);
}

TEST_F(ImageDimensions, RefuseSeparatePlanesWithError16) {
    for (const DWORD planar : {0u, 2u, 3u, 65535u}) {
        SetTiffError(0);
        EXPECT_EQ(Dimensions(sized(5, 5, {tiff::shorts(258, {8}), tiff::shorts(284, {planar})})).result, 16u);
        EXPECT_EQ(TiffError(), 16u);
    }
    EXPECT_EQ(Dimensions(sized(5, 5, {tiff::shorts(258, {8}), tiff::shorts(284, {1})})).result, 0u);
}

TEST_F(ImageDimensions, CountTheColors) {
    for (const auto &[bits, colors] : {std::pair{1u, 2u}, {4u, 16u}, {8u, 256u}, {24u, 0u}}) {
        const auto [result, header] = Dimensions(sized(5, 5, {tiff::shorts(258, {bits})}));
        EXPECT_EQ(header.biClrUsed, colors);
        EXPECT_EQ(header.biClrImportant, colors);
    }
}

// Pixels a meter for one resolution in both directions.
LONG perMeter(const tiff::Entry &x, DWORD unit = 2) {
    tiff::Entry y = x;
    y.tag = 283;
    const auto [result, header] = Dimensions(sized(5, 5, {x, y, tiff::shorts(296, {unit})}));
    EXPECT_EQ(result, 0u);
    EXPECT_EQ(header.biXPelsPerMeter, header.biYPelsPerMeter);
    return header.biXPelsPerMeter;
}

TEST_F(ImageDimensions, ConvertInchesToMeters) {
    EXPECT_EQ(perMeter(tiff::rationals(282, {300, 1})), 11811);
    EXPECT_EQ(perMeter(tiff::rationals(282, {200, 1})), 7874);
    EXPECT_EQ(perMeter(tiff::rationals(282, {600, 2})), 11811);
    EXPECT_EQ(perMeter(tiff::rationals(282, {1, 3})), 13);
    EXPECT_EQ(perMeter(tiff::rationals(282, {0, 1})), 0);
    EXPECT_EQ(perMeter(tiff::rationals(282, {0xFFFFFFFF, 0xFFFFFFFF})), 39) << "both parts without a sign";
    EXPECT_EQ(perMeter(tiff::rationals(282, {300, 1}), 1), 11811) << "no unit counts as inches";
}

TEST_F(ImageDimensions, TakeADenominatorOf0For1) {
    EXPECT_EQ(perMeter(tiff::rationals(282, {300, 0})), 11811);
    EXPECT_EQ(dpiOf({tiff::rationals(282, {300, 0}), tiff::rationals(283, {200, 0})}), dpi(200, 300));
}

// By design.
TEST_F(ImageDimensions, DoNotScaleCentimetersToMeters) {
    EXPECT_EQ(perMeter(tiff::rationals(282, {118, 1}), 3), 118);
    EXPECT_EQ(perMeter(tiff::rationals(282, {11811, 100}), 3), 118);
    EXPECT_EQ(perMeter(tiff::rationals(282, {2369, 20}), 3), 118) << "118.45 + 0.5, cut";
    EXPECT_EQ(perMeter(tiff::rationals(282, {237, 2}), 3), 119);
}

TEST_F(ImageDimensions, HaveNoResolutionInOtherUnits) {
    for (const DWORD unit : {0u, 4u, 65535u}) {
        EXPECT_EQ(perMeter(tiff::rationals(282, {300, 1}), unit), 0) << unit;
        EXPECT_EQ(dpiOf({tiff::rationals(282, {300, 1}), tiff::shorts(296, {unit})}), 0u);
    }
}

TEST_F(ImageDimensions, ClampResolutionsThatNoNumberHolds) {
    EXPECT_EQ(perMeter(tiff::rationals(282, {0xFFFFFFFF, 1})), 0x7FFFFFFF);
    EXPECT_EQ(perMeter(tiff::rationals(282, {0xFFFFFFFF, 1}), 3), 0x7FFFFFFF);
    EXPECT_EQ(perMeter(tiff::rationals(282, {54546751, 1})), 0x7FFFFFFF);
    EXPECT_EQ(perMeter(tiff::rationals(282, {54546000, 1})), 2147476020);
}

TEST_F(ImageDimensions, TakeWholeNumbersForResolutions) {
    EXPECT_EQ(perMeter(tiff::shorts(282, {300})), 11811);
    EXPECT_EQ(perMeter(tiff::longs(282, {300})), 11811);
    EXPECT_EQ(dpiOf({tiff::shorts(282, {300}), tiff::byteValues(283, {200})}), dpi(200, 300));
}

TEST_F(ImageDimensions, HaveTheScreensResolutionWhenThereIsNone) {
    const DWORD x = screenDpi(LOGPIXELSX);
    const DWORD y = screenDpi(LOGPIXELSY);
    ASSERT_GT(x, 0u);
    EXPECT_EQ(dpiOf({}), dpi(y, x));
    EXPECT_EQ(dpiOf({tiff::rationals(282, {300, 1})}), dpi(y, 300));
    EXPECT_EQ(dpiOf({tiff::rationals(283, {300, 1})}), dpi(300, x));
    EXPECT_EQ(dpiOf({tiff::ascii(282, "300")}), dpi(y, x)) << "a text says nothing";
    const auto [result, header] = Dimensions(sized(5, 5));
    EXPECT_EQ(header.biXPelsPerMeter, static_cast<LONG>(static_cast<double>(x) * 39.37 + 0.5));
    EXPECT_EQ(header.biYPelsPerMeter, static_cast<LONG>(static_cast<double>(y) * 39.37 + 0.5));
}

TEST_F(ImageDimensions, GiveDotsPerInch) {
    EXPECT_EQ(dpiOf({tiff::rationals(282, {300, 1}), tiff::rationals(283, {150, 1})}), dpi(150, 300));
    EXPECT_EQ(dpiOf({tiff::rationals(282, {300, 1}), tiff::rationals(283, {150, 1}), tiff::shorts(296, {1})}),
              dpi(150, 300));
    EXPECT_EQ(dpiOf({tiff::rationals(282, {2995, 10}), tiff::rationals(283, {2994, 10})}), dpi(299, 300)) << "rounded";
    EXPECT_EQ(dpiOf({tiff::rationals(282, {0x10005, 1}), tiff::rationals(283, {0x20006, 1})}), dpi(6, 5))
        << "16 bits each";
}

// By design.
TEST_F(ImageDimensions, DivideCentimetersBy3937ForDotsPerInch) {
    EXPECT_EQ(dpiOf({tiff::rationals(282, {118, 1}), tiff::rationals(283, {11811, 1}), tiff::shorts(296, {3})}),
              dpi(300, 3));
}

TEST_F(ImageDimensions, CountLinesAndStrips) {
    const auto rows = [](const Entries &entries) {
        const OneImage image(entries);
        return GetTiffRowsPerStrip(image.get(), 0);
    };
    EXPECT_EQ(rows(sized(5, 100, {tiff::shorts(278, {8})})), 8u);
    EXPECT_EQ(rows(sized(5, 100, {tiff::shorts(278, {100})})), 100u);
    EXPECT_EQ(rows(sized(5, 100, {tiff::shorts(278, {101})})), 100u);
    EXPECT_EQ(rows(sized(5, 100, {tiff::longs(278, {0xFFFFFFFF})})), 100u);
    EXPECT_EQ(rows(sized(5, 100, {tiff::shorts(278, {0})})), 100u);
    EXPECT_EQ(rows(sized(5, 100)), 100u);
    EXPECT_EQ(rows(sized(5, 0, {tiff::shorts(278, {8})})), 0u);
    EXPECT_EQ(rows({tiff::shorts(256, {5}), tiff::shorts(278, {8})}), 0u) << "no length";
    EXPECT_EQ(TiffError(), 13u);

    const auto strips = [](const Entries &entries) {
        const OneImage image(entries);
        return GetTiffStripCount(image.get(), 0);
    };
    EXPECT_EQ(strips({tiff::longs(273, {8})}), 1);
    EXPECT_EQ(strips({tiff::shorts(273, {8, 9, 10, 11, 12})}), 5);
    EXPECT_EQ(strips({tiff::shorts(256, {5})}), 0);
    EXPECT_EQ(TiffError(), 13u);
}

} // namespace
} // namespace vellum::test
