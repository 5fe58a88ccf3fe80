// Small uncompressed pictures of every depth for the loader tests, and a view of the packed DIBs they become.
#pragma once

#include "support/coded_tiff.h"
#include "support/decode_lines.h"

#include <algorithm>

namespace vellum::test {

struct Depth {
    DWORD bits; // per sample
    DWORD samples;
    [[nodiscard]] DWORD bitsPerPixel() const { return bits * samples; }
};
inline constexpr Depth kDepths[] = {{1, 1}, {4, 1}, {8, 1}, {8, 3}};

struct Picture {
    CodedPage page;
    Bytes packed; // the rows as the file has them, top first

    [[nodiscard]] DWORD bitsPerPixel() const { return page.bits * page.samples; }
    [[nodiscard]] std::size_t lineBytes() const { return packedLineBytes(page.width, bitsPerPixel()); }
    [[nodiscard]] std::size_t stride() const { return (std::size_t{page.width} * bitsPerPixel() + 31) / 32 * 4; }
    [[nodiscard]] Bytes tiff() const { return codedTiff(page, encodeStrips(page, packed)); }

    // The row's bytes as a DIB has them: padded to 32 bits with zeros, red and blue exchanged.
    [[nodiscard]] Bytes dibRow(DWORD row) const {
        Bytes bytes(stride());
        for (std::size_t i = 0; i < lineBytes(); ++i) {
            const std::size_t from = page.samples == 3 ? i / 3 * 3 + (2 - i % 3) : i;
            bytes[i] = packed[row * lineBytes() + from];
        }
        return bytes;
    }
};

// Every byte differs from its neighbours, and no row is like another.
inline Picture picture(DWORD width, DWORD height, const Depth &depth, DWORD rowsPerStrip = 0) {
    Picture made;
    made.page = {.width = width,
                 .height = height,
                 .bits = depth.bits,
                 .samples = depth.samples,
                 .key = VELLUM_KEY_NONE,
                 .rowsPerStrip = rowsPerStrip};
    for (std::size_t i = 0; i < made.lineBytes() * height; ++i) {
        made.packed.push_back(static_cast<BYTE>(i * 37 + i / 7 + 1));
    }
    return made;
}

// A packed DIB, freed with the object.
class Dib {
public:
    explicit Dib(HGLOBAL block) : block_(block), bytes_(block == nullptr ? Bytes() : blockBytes(block)) {
        if (bytes_.size() >= sizeof header_) {
            std::memcpy(&header_, bytes_.data(), sizeof header_);
        }
    }
    Dib(const Dib &) = delete;
    Dib &operator=(const Dib &) = delete;
    ~Dib() {
        if (block_ != nullptr) {
            GlobalFree(block_);
        }
    }

    explicit operator bool() const { return block_ != nullptr; }
    [[nodiscard]] HGLOBAL get() const { return block_; }
    [[nodiscard]] const BITMAPINFOHEADER &header() const { return header_; }
    [[nodiscard]] const Bytes &bytes() const { return bytes_; }
    [[nodiscard]] std::size_t bitsOffset() const { return header_.biSize + header_.biClrUsed * sizeof(RGBQUAD); }
    // The row'th of the rows from the top.
    [[nodiscard]] Bytes row(DWORD row, std::size_t stride) const {
        const std::size_t at = bitsOffset() + (static_cast<DWORD>(header_.biHeight) - 1 - row) * stride;
        if (at + stride > bytes_.size()) {
            return {};
        }
        const auto begin = bytes_.begin() + static_cast<std::ptrdiff_t>(at);
        return {begin, begin + static_cast<std::ptrdiff_t>(stride)};
    }

private:
    HGLOBAL block_;
    Bytes bytes_;
    BITMAPINFOHEADER header_ = {};
};

} // namespace vellum::test
