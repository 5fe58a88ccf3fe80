// Packed DIBs of small pictures for the save tests, and the lines that a TIFF of them must have.
#pragma once

#include "support/global_memory.h"
#include "vellum32.h"

#include <cstddef>
#include <vector>

namespace vellum::test {

constexpr RGBQUAD quad(BYTE red, BYTE green, BYTE blue) {
    return {blue, green, red, 0x55};
}
inline constexpr RGBQUAD kBlackQuad = quad(0, 0, 0);
inline constexpr RGBQUAD kWhiteQuad = quad(255, 255, 255);

// Colours that differ in every component; the first is not black.
inline std::vector<RGBQUAD> manyColours(std::size_t count) {
    std::vector<RGBQUAD> colours;
    for (std::size_t i = 0; i < count; ++i) {
        colours.push_back(quad(static_cast<BYTE>(i + 1), static_cast<BYTE>(255 - i), static_cast<BYTE>(i * 3)));
    }
    return colours;
}

struct PackedDib {
    BITMAPINFOHEADER header{};
    std::vector<RGBQUAD> colours;
    BYTE seed = 1;

    PackedDib(LONG width, LONG height, WORD bits) : PackedDib(width, height, bits, coloursFor(bits)) {}
    PackedDib(LONG width, LONG height, WORD bits, std::vector<RGBQUAD> table) : colours(std::move(table)) {
        header.biSize = sizeof header;
        header.biWidth = width;
        header.biHeight = height;
        header.biPlanes = 1;
        header.biBitCount = bits;
        header.biClrUsed = static_cast<DWORD>(colours.size());
    }

    static std::vector<RGBQUAD> coloursFor(WORD bits) {
        if (bits == 1) {
            return {kWhiteQuad, kBlackQuad};
        }
        return manyColours(bits <= 8 ? std::size_t{1} << bits : 0);
    }

    [[nodiscard]] std::size_t lineBytes() const {
        return (static_cast<std::size_t>(header.biWidth) * header.biBitCount + 7) / 8;
    }
    [[nodiscard]] std::size_t stride() const {
        return (static_cast<std::size_t>(header.biWidth) * header.biBitCount + 31) / 32 * 4;
    }

    // A byte of a row, counted from the top; unused bits of the last byte are 0, as encoders leave them.
    [[nodiscard]] BYTE at(LONG row, std::size_t byte) const {
        const auto value = static_cast<BYTE>(seed + row * 29 + static_cast<LONG>(byte) * 53 + (row ^ LONG(byte)) * 7);
        const std::size_t bits = static_cast<std::size_t>(header.biWidth) * header.biBitCount;
        const bool last = byte + 1 == lineBytes() && bits % 8 != 0;
        return last ? static_cast<BYTE>(value & (0xFF00 >> bits % 8)) : value;
    }

    // The block's bytes: the padding of the rows is 0xEE, so that it is seen where it does not belong.
    [[nodiscard]] Bytes bytes() const {
        Bytes made(header.biSize + colours.size() * sizeof(RGBQUAD), BYTE{0x77});
        std::memcpy(made.data(), &header, sizeof header);
        if (!colours.empty()) {
            std::memcpy(made.data() + header.biSize, colours.data(), colours.size() * sizeof(RGBQUAD));
        }
        for (LONG row = header.biHeight - 1; row >= 0; --row) {
            Bytes line(stride(), BYTE{0xEE});
            for (std::size_t i = 0; i < lineBytes(); ++i) {
                line[i] = at(row, i);
            }
            made.insert(made.end(), line.begin(), line.end());
        }
        return made;
    }

    // All lines as a TIFF stores them, top first, red before blue.
    [[nodiscard]] Bytes lines() const {
        Bytes made;
        for (LONG row = 0; row < header.biHeight; ++row) {
            for (std::size_t i = 0; i < lineBytes(); ++i) {
                made.push_back(at(row, header.biBitCount == 24 ? i / 3 * 3 + 2 - i % 3 : i));
            }
        }
        return made;
    }
};

// A block of the caller's, freed with the object.
class DibBlock {
public:
    explicit DibBlock(const Bytes &bytes) : handle_(makeBlock(bytes)) {}
    explicit DibBlock(const PackedDib &dib) : DibBlock(dib.bytes()) {}
    DibBlock(const DibBlock &) = delete;
    DibBlock &operator=(const DibBlock &) = delete;
    ~DibBlock() { GlobalFree(handle_); }
    [[nodiscard]] HGLOBAL get() const { return handle_; }

private:
    HGLOBAL handle_;
};

} // namespace vellum::test
