// Pages given to the CCITT encoders, what they write, and what a naive writer says they should write.
#pragma once

#include "codec/ccitt_encode.h"
#include "core/library_state.h"
#include "encoder_run.h"
#include "support/ccitt_writer.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace vellum::test {

struct EncodePage {
    Rows rows;
    DWORD key = VELLUM_KEY_GROUP4;
    DWORD rowsPerStrip = 0; // 0: one strip
    DWORD fillOrder = 1;
    DWORD linesThere = 0xFFFFFFFF; // for the line after so many the line function answers with
    DWORD answer = VELLUM_INDEX_OUT_OF_RANGE;
    Bytes before = {}; // what the stream holds already

    [[nodiscard]] DWORD width() const { return rows.empty() ? 0 : static_cast<DWORD>(rows[0].size()); }
    [[nodiscard]] DWORD height() const { return static_cast<DWORD>(rows.size()); }
    [[nodiscard]] DWORD stripRows() const { return rowsPerStrip == 0 ? height() : rowsPerStrip; }
    [[nodiscard]] DWORD strips() const { return rows.empty() ? 1 : (height() + stripRows() - 1) / stripRows(); }
};

// Gives the lines of a page. The bits behind the width and the bytes behind the line are black: they must not count.
struct PageLines {
    const EncodePage *page;
    DWORD asked = 0;

    static DWORD VELLUMAPI give(BYTE *line, DWORD index, DWORD userValue) {
        auto &source = *reinterpret_cast<PageLines *>(static_cast<std::uintptr_t>(userValue));
        ++source.asked;
        if (index >= source.page->linesThere) {
            return source.page->answer;
        }
        const Bytes bytes = packRow(source.page->rows[index]);
        std::memset(line, 0xFF, bytes.size() + kLineSlack);
        std::copy(bytes.begin(), bytes.end(), line);
        if (const DWORD spare = source.page->width() % 8; spare != 0) {
            line[bytes.size() - 1] = static_cast<BYTE>(line[bytes.size() - 1] | 0xFFU >> spare);
        }
        return 0;
    }
};

using CcittEncoder = Encoder;

inline CcittEncoder ccittEncoderOf(DWORD key) {
    if (key == VELLUM_KEY_GROUP4) {
        return vellum::encodeGroup4;
    }
    return key == VELLUM_KEY_GROUP3_2D || key == VELLUM_KEY_GROUP3_2D_FILL ? vellum::encodeGroup3TwoDimensional
                                                                           : vellum::encodeOneDimensional;
}

// Runs an encoder over a page as the drivers do, with the closing flush; the stream stays the caller's.
inline Encoded encodeTo(StreamHandle stream, const EncodePage &page, CcittEncoder encoder) {
    PageLines source{&page};
    CodecState state{};
    state.stream = stream;
    state.image.biWidth = static_cast<LONG>(page.width());
    state.image.biHeight = static_cast<LONG>(page.height());
    state.image.biBitCount = 1;
    state.bytesPerLine = static_cast<LONG>((page.width() + 7) / 8);
    state.compressionKey = page.key;
    state.fillOrder = page.fillOrder;
    state.stripCount = page.strips();
    state.rowsPerStrip = page.stripRows();
    state.lineFunction = &PageLines::give;
    state.userValue = static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(&source));
    Encoded encoded = runEncoder(state, encoder);
    encoded.asked = source.asked;
    return encoded;
}

inline Encoded encodePage(const EncodePage &page, CcittEncoder encoder) {
    return intoMemory(page.before, [&](StreamHandle stream) { return encodeTo(stream, page, encoder); });
}
inline Encoded encodePage(const EncodePage &page) {
    return encodePage(page, ccittEncoderOf(page.key));
}

// ------------------------------------------------------------------------------------------------ what it should be

// The lines of one strip as the encoders put them. K is the K factor of two-dimensional Group 3.
inline Bytes expectedStrip(const Rows &rows, DWORD key, bool endsImage, unsigned k = 2) {
    BitWriter out;
    const bool fill = key == VELLUM_KEY_GROUP3_1D_FILL || key == VELLUM_KEY_GROUP3_2D_FILL;
    Row reference(rows[0].size());
    const auto oneDimensional = [k](std::size_t line) { return line % k == 0; };
    for (std::size_t i = 0; i < rows.size(); ++i) {
        switch (key) {
        case VELLUM_KEY_GROUP3_1D:
        case VELLUM_KEY_GROUP3_1D_FILL:
            appendEol(out, fill, "");
            appendRuns(out, rows[i]);
            break;
        case VELLUM_KEY_GROUP3_2D:
        case VELLUM_KEY_GROUP3_2D_FILL:
            appendEol(out, fill, oneDimensional(i) ? "1" : "0");
            oneDimensional(i) ? appendRuns(out, rows[i]) : appendTwoDimensional(out, reference, rows[i]);
            break;
        case VELLUM_KEY_GROUP4:
            appendTwoDimensional(out, reference, rows[i]);
            break;
        default:
            appendRuns(out, rows[i]);
            out.fillToByte();
            break;
        }
        reference = rows[i];
    }
    if (key == VELLUM_KEY_GROUP4) {
        out.eofb();
    } else if (endsImage && (key == VELLUM_KEY_GROUP3_1D || key == VELLUM_KEY_GROUP3_1D_FILL)) {
        for (int i = 0; i < 5; ++i) {
            appendEol(out, fill, "");
        }
    } else if (endsImage && (key == VELLUM_KEY_GROUP3_2D || key == VELLUM_KEY_GROUP3_2D_FILL)) {
        appendEol(out, fill, oneDimensional(rows.size()) ? "1" : "0");
        out.fillToByte();
        for (int i = 0; i < 6; ++i) {
            appendEol(out, fill, "1");
        }
    }
    return out.bytes();
}

inline std::vector<Bytes> expectedStrips(const EncodePage &page, unsigned k = 2) {
    std::vector<Bytes> strips;
    for (std::size_t from = 0; from < page.rows.size(); from += page.stripRows()) {
        const std::size_t to = std::min<std::size_t>(from + page.stripRows(), page.rows.size());
        const Rows rows(page.rows.begin() + static_cast<std::ptrdiff_t>(from),
                        page.rows.begin() + static_cast<std::ptrdiff_t>(to));
        strips.push_back(expectedStrip(rows, page.key, to == page.rows.size(), k));
        if (page.fillOrder == 2) {
            strips.back() = reverseBits(strips.back());
        }
    }
    return strips;
}

inline Bytes joined(const std::vector<Bytes> &strips) {
    Bytes all;
    for (const Bytes &strip : strips) {
        all.insert(all.end(), strip.begin(), strip.end());
    }
    return all;
}

// Sets the K factor and puts it back to what it was.
class KFactor {
public:
    explicit KFactor(LONG k) : before_(library.kFactor) { SetKfactor(k); }
    KFactor(const KFactor &) = delete;
    KFactor &operator=(const KFactor &) = delete;
    ~KFactor() { library.kFactor = before_; }

private:
    LONG before_;
};

inline constexpr DWORD kCcittKeys[] = {2,
                                       VELLUM_KEY_MODIFIED_HUFFMAN,
                                       VELLUM_KEY_GROUP3_1D,
                                       VELLUM_KEY_GROUP3_1D_FILL,
                                       VELLUM_KEY_GROUP3_2D,
                                       VELLUM_KEY_GROUP3_2D_FILL,
                                       VELLUM_KEY_GROUP4};

} // namespace vellum::test
