// Raw code in a memory stream, decoded by the raw front end, for the codec tests.
#pragma once

#include "core/stream.h"
#include "support/ccitt_writer.h"
#include "support/decode_lines.h"

#include <gtest/gtest.h>

namespace vellum::test {

// What a decode delivered and how it ended.
struct Decoded {
    Outcome outcome;
    Bytes lines;
    DWORD lineCount = 0;
};

struct RawPage {
    DWORD width = 0;
    DWORD height = 0;
    DWORD key = VELLUM_KEY_GROUP4;
    DWORD fillOrder = 1;
};

inline Decoded decodeRaw(const Bytes &code, const RawPage &page) {
    const HGLOBAL block = makeBlock(code);
    const StreamHandle stream = openMemoryStream(block, static_cast<DWORD>(code.size()));
    LineLog log;
    const Outcome outcome = decodeRawInto(log, stream, {0, page.width, page.height, page.key, page.fillOrder});
    mClose(stream);
    GlobalFree(block);
    EXPECT_TRUE(log.inOrder);
    return {outcome, log.data, log.lines};
}

// The code of one line of Group 4 or of a key that a test names, in pixels: '#' black, '.' white.
inline std::string drawn(const Bytes &lines, DWORD width) {
    std::string text;
    const std::size_t rowBytes = (width + 7) / 8;
    for (std::size_t row = 0; row * rowBytes < lines.size(); ++row) {
        if (row != 0) {
            text += '\n';
        }
        for (std::size_t x = 0; x < width; ++x) {
            text += (lines[row * rowBytes + x / 8] & (0x80U >> x % 8)) != 0 ? '#' : '.';
        }
    }
    return text;
}

// Deterministic rows: runs whose lengths come from a small generator, each row like the one above it but for a few
// edges, as in text.
inline Rows textLikeRows(unsigned width, unsigned height, unsigned seed) {
    Rows rows;
    const auto next = [&seed](unsigned below) {
        seed = seed * 1103515245U + 12345U;
        return (seed >> 16) % below;
    };
    Row row(width);
    for (unsigned y = 0; y < height; ++y) {
        if (y % 7 == 0) {
            bool black = next(2) == 1;
            for (unsigned x = 0; x < width;) {
                const unsigned run = next(y % 3 == 0 ? 3 : 90) + 1;
                for (unsigned i = 0; i < run && x < width; ++i) {
                    row[x++] = black;
                }
                black = !black;
            }
        } else if (width > 2) {
            for (unsigned i = 0; i < width / 20 + 1; ++i) {
                const unsigned x = next(width);
                row[x] = !row[x];
            }
        }
        rows.push_back(row);
    }
    return rows;
}

} // namespace vellum::test
