// What the tests' own naive encoders write decodes to the pixels they were given: every coding, odd widths, strips that
// do not fit into one code buffer, lines with more changes than any scan has.
#include "support/coded_tiff.h"
#include "support/decode_lines.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr DWORD kWidths[] = {1, 2, 7, 8, 9, 15, 16, 17, 31, 33, 63, 64, 65, 131, 1727, 1728, 2560, 2623, 2625, 5300};
constexpr DWORD kCcittKeys[] = {VELLUM_KEY_MODIFIED_HUFFMAN, VELLUM_KEY_GROUP3_1D,      VELLUM_KEY_GROUP3_1D_FILL,
                                VELLUM_KEY_GROUP3_2D,        VELLUM_KEY_GROUP3_2D_FILL, VELLUM_KEY_GROUP4};

bool isCcitt(DWORD key) {
    return (key & 0xFFFF) >= 2 && (key & 0xFFFF) <= 4;
}

// Equal, without printing thousands of bytes when not.
testing::AssertionResult same(const Bytes &got, const Bytes &expected) {
    for (std::size_t i = 0; i < got.size() && i < expected.size(); ++i) {
        if (got[i] != expected[i]) {
            return testing::AssertionFailure() << "first difference at byte " << i;
        }
    }
    return got.size() == expected.size() ? testing::AssertionSuccess()
                                         : testing::AssertionFailure() << got.size() << " for " << expected.size();
}

void expectDecodes(const CodedPage &page, const Bytes &packed) {
    SCOPED_TRACE(std::string(keyName(page.key)) + ", width " + std::to_string(page.width) + ", height " +
                 std::to_string(page.height) + ", rows per strip " + std::to_string(page.rowsPerStrip));
    const OpenedTiff tiff(codedTiff(page, encodeStrips(page, packed)));
    ASSERT_TRUE(tiff);
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
    EXPECT_TRUE(log.inOrder);
    EXPECT_TRUE(same(log.data, packed));
}

class EveryKey : public testing::TestWithParam<DWORD> {};

TEST_P(EveryKey, OddWidthsDecodeRight) {
    for (const DWORD width : kWidths) {
        Random random(width);
        CodedPage page{.width = width, .height = 23, .key = GetParam()};
        const Bytes packed = packRows(randomRows(random, width, page.height));
        expectDecodes(page, packed);
        page.rowsPerStrip = 4;
        page.fillOrder = 2;
        expectDecodes(page, packed);
    }
}

TEST_P(EveryKey, StripsLongerThanTheCodeBufferDecodeRight) {
    Random random(77);
    CodedPage page{.width = 4001, .height = 180, .key = GetParam()};
    Rows rows;
    for (DWORD y = 0; y < page.height; ++y) {
        rows.push_back(randomRow(random, page.width, 4));
    }
    const Bytes packed = packRows(rows);
    ASSERT_GT(encodeStrip(page, packed).size(), 80000U);
    expectDecodes(page, packed);
    page.rowsPerStrip = 80; // strips of 40000 bytes and more
    expectDecodes(page, packed);
    page.rowsPerStrip = 1;
    expectDecodes(page, packed);
}

// Ranges of an image whose strips lie far into the file, where older versions counted offsets differently.
TEST_P(EveryKey, RangesBehindTheFirstCodeBufferDeliverTheImagesLines) {
    Random random(5);
    for (const DWORD rowsPerStrip : {3U, 20U, 80U}) {
        CodedPage page{.width = 4001, .height = 165, .key = GetParam(), .rowsPerStrip = rowsPerStrip};
        Rows rows;
        for (DWORD y = 0; y < page.height; ++y) {
            rows.push_back(randomRow(random, page.width, 4));
        }
        const OpenedTiff tiff(codedTiff(page, encodeStrips(page, packRows(rows))));
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        for (DWORD strip = 0; strip * rowsPerStrip < page.height; ++strip) {
            SCOPED_TRACE("strip " + std::to_string(strip) + " of " + std::to_string(rowsPerStrip) + " rows");
            const DWORD first = strip * rowsPerStrip;
            const DWORD end = first + 5 < page.height ? first + 5 : page.height;
            LineLog log;
            log.firstLine = first;
            EXPECT_EQ(decodeInto(log, tiff.get(), 0, strip, 5), kDecoded);
            EXPECT_TRUE(log.inOrder);
            EXPECT_TRUE(same(log.data, packRows(Rows(rows.begin() + static_cast<std::ptrdiff_t>(first),
                                                     rows.begin() + static_cast<std::ptrdiff_t>(end)))));
        }
    }
}

// More changing elements than 5008, alone and after a plain line.
TEST_P(EveryKey, LinesWithMoreChangesThanAnyScanHasDecodeRight) {
    for (const DWORD width : {5007U, 5008U, 5009U, 5011U, 20001U}) {
        Rows rows;
        for (DWORD y = 0; y < 6; ++y) {
            Row row;
            for (DWORD x = 0; x < width; ++x) {
                row.push_back(y == 3 ? x > width / 2 : (x + y) % 2 == 0);
            }
            rows.push_back(row);
        }
        expectDecodes({.width = width, .height = 6, .key = GetParam()}, packRows(rows));
    }
}

TEST_P(EveryKey, WidestImagesDecodeRight) {
    Random random(3);
    for (const DWORD width : {65535U, 65536U, 100003U}) {
        expectDecodes({.width = width, .height = 5, .key = GetParam()},
                      packRows({randomRow(random, width, 3000), Row(width), randomRow(random, width, 9000),
                                Row(width, true), randomRow(random, width, 500)}));
    }
}

INSTANTIATE_TEST_SUITE_P(NaiveStreams, EveryKey, testing::ValuesIn(kAllKeys),
                         [](const testing::TestParamInfo<DWORD> &key) { return "Key" + std::to_string(key.param); });

TEST(NaiveStreams, BytePixelsDecodeRight) {
    for (const DWORD key : kAllKeys) {
        if (isCcitt(key)) {
            continue;
        }
        for (const DWORD samples : {1U, 3U}) {
            for (const DWORD width : {1U, 2U, 3U, 85U, 127U, 128U, 129U, 257U, 700U}) {
                Random random(width);
                CodedPage page{.width = width, .height = 40, .bits = 8, .samples = samples, .key = key};
                const Bytes pixels = randomBytes(random, std::size_t{width} * samples * page.height);
                expectDecodes(page, pixels);
                page.rowsPerStrip = 7;
                expectDecodes(page, pixels);
            }
        }
    }
}

// Codes up to 4095 are used and nothing is cleared: the table stays as it is.
TEST(NaiveStreams, LzwGoesOnWithAFullTable) {
    Random random(1);
    Bytes pixels = randomBytes(random, 30000);
    const Bytes again(pixels.begin(), pixels.begin() + 10000);
    pixels.insert(pixels.end(), again.begin(), again.end());
    const CodedPage page{.width = 100, .height = 400, .bits = 8, .key = VELLUM_KEY_LZW};
    const Bytes code = encodeLzw(pixels, FullTable::Keep);
    ASSERT_NE(code, encodeLzw(pixels));
    const OpenedTiff tiff(codedTiff(page, {code}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
    EXPECT_TRUE(same(log.data, pixels));
}

TEST(NaiveStreams, HalfBytePixelsDecodeRight) {
    for (const DWORD key : {VELLUM_KEY_NONE, VELLUM_KEY_PACKBITS, VELLUM_KEY_LZW, VELLUM_KEY_LZW_DIFFERENCING}) {
        for (const DWORD width : {1U, 2U, 3U, 16U, 127U, 700U}) {
            Random random(width);
            const CodedPage page{.width = width, .height = 40, .bits = 4, .key = key};
            expectDecodes(page, randomBytes(random, packedLineBytes(width, 4) * page.height));
        }
    }
}

TEST(NaiveStreams, BlocksOfMmrDecodeRight) {
    for (const DWORD width : {9U, 131U, 1727U}) {
        Random random(width);
        const Rows rows = randomRows(random, width, 60);
        for (const std::size_t blockBytes : {1U, 2U, 100U, 65520U}) {
            SCOPED_TRACE(std::to_string(width) + " pixels, blocks of " + std::to_string(blockBytes));
            Bytes file = {1, 2, 3};
            const Bytes framed = frameBlocks(encodeGroup4(rows), blockBytes);
            file.insert(file.end(), framed.begin(), framed.end());
            const TempFile temp(file);
            const RawFile opened(temp.path());
            LineLog log;
            EXPECT_EQ(decodeMmrInto(log, opened.get(), {.offset = 3, .width = width, .height = 60}), kDecoded);
            EXPECT_TRUE(log.inOrder);
            EXPECT_TRUE(same(log.data, packRows(rows)));
        }
    }
}

TEST(NaiveStreams, RawFilesOfEveryCcittCodingDecodeRight) {
    for (const DWORD key : kCcittKeys) {
        for (const DWORD fillOrder : {1U, 2U}) {
            SCOPED_TRACE(std::string(keyName(key)) + ", fill order " + std::to_string(fillOrder));
            Random random(key);
            const CodedPage page{.width = 333, .height = 50, .key = key, .fillOrder = fillOrder};
            const Bytes packed = packRows(randomRows(random, page.width, page.height));
            const TempFile temp(encodeStrip(page, packed));
            const RawFile opened(temp.path());
            LineLog log;
            EXPECT_EQ(decodeRawInto(log, opened.get(), {0, page.width, page.height, key, fillOrder}), kDecoded);
            EXPECT_TRUE(log.inOrder);
            EXPECT_TRUE(same(log.data, packed));
        }
    }
}

} // namespace
