// The K factor and the raw CCITT code, through the public interface.
#include "support/ccitt_writer.h"
#include "support/paths.h"
#include "vellum32.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellum::test {
namespace {

// Two kinds of line in turn, ten pixels each.
const Row kEven = rowFromRuns({3, 4, 3});
const Row kOdd = rowFromRuns({2, 5, 3});

DWORD VELLUMAPI giveLine(BYTE *line, DWORD index, DWORD) {
    const Bytes bytes = packRow(index % 2 == 0 ? kEven : kOdd);
    std::copy(bytes.begin(), bytes.end(), line);
    return 0;
}

Bytes encodedLines(DWORD height, DWORD key) {
    const TempFile file;
    const HFILE handle = _lcreat(file.path(), 0);
    EXPECT_NE(handle, HFILE_ERROR);
    EXPECT_EQ(EncodeCcittImage(handle, 10, height, key, 0, &giveLine), 1U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    _lclose(handle);
    return readFile(file.path()).value_or(Bytes{});
}

Bytes expectedGroup3(DWORD height, DWORD k) {
    BitWriter out;
    for (DWORD i = 0; i < height; ++i) {
        const bool oneDimensional = i % k == 0;
        out.eol().bit(oneDimensional);
        const Row &row = i % 2 == 0 ? kEven : kOdd;
        if (oneDimensional) {
            appendRuns(out, row);
        } else {
            appendTwoDimensional(out, i % 2 == 0 ? kOdd : kEven, row);
        }
    }
    out.eol().bit(height % k == 0).fillToByte();
    for (int i = 0; i < 6; ++i) {
        out.eol().bit(true);
    }
    return out.bytes();
}

TEST(KFactorOfTheLibrary, Is2UntilItIsSetAndStaysAsSet) {
    EXPECT_EQ(encodedLines(5, VELLUM_KEY_GROUP3_2D), expectedGroup3(5, 2));
    EXPECT_EQ(SetKfactor(1), 0U);
    EXPECT_EQ(SetKfactor(-4), 0U);
    EXPECT_EQ(encodedLines(5, VELLUM_KEY_GROUP3_2D), expectedGroup3(5, 2));
    EXPECT_EQ(SetKfactor(4), 1U);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(encodedLines(9, VELLUM_KEY_GROUP3_2D), expectedGroup3(9, 4));
    }
    EXPECT_EQ(SetKfactor(0), 0U);
    EXPECT_EQ(encodedLines(9, VELLUM_KEY_GROUP3_2D), expectedGroup3(9, 4));
    EXPECT_EQ(SetKfactor(2), 1U);
    EXPECT_EQ(encodedLines(4, VELLUM_KEY_GROUP3_2D), expectedGroup3(4, 2));
}

TEST(RawCcittCode, IsTheNaiveWritersForGroup4AndModifiedHuffman) {
    EXPECT_EQ(encodedLines(3, VELLUM_KEY_GROUP4), encodeGroup4({kEven, kOdd, kEven}));
    EXPECT_EQ(encodedLines(3, VELLUM_KEY_MODIFIED_HUFFMAN), encodeModifiedHuffman({kEven, kOdd, kEven}));
}

} // namespace
} // namespace vellum::test
