// Nearest neighbours, found by stepping with whole numbers.
//
// By design, for pictures that have always looked so: positions are rounded to the next pixel boundary, not cut. The
// last columns of an enlarged rectangle may therefore show the column beside it, and rows that would show the row below
// it stay zero, as does everything beyond the picture.
#include "annot/rectangle_scaler.h"

#include <algorithm>

namespace vellum {
namespace {

constexpr DWORD kSpareBytes = 16;

// first + floor(i * from / to + 1/2) for i = 0, 1, 2 ...
class Steps {
public:
    Steps(LONG first, LONG from, LONG to)
        : position_(static_cast<std::uint64_t>(first)), rest_(static_cast<std::uint64_t>(to)),
          step_(2 * static_cast<std::uint64_t>(from)), unit_(2 * static_cast<std::uint64_t>(to)) {}

    [[nodiscard]] std::uint64_t position() const { return position_; }
    void next() {
        rest_ += step_;
        if (rest_ >= unit_) {
            position_ += rest_ / unit_;
            rest_ %= unit_;
        }
    }

private:
    std::uint64_t position_;
    std::uint64_t rest_; // in units, below one: 1/2 at first
    std::uint64_t step_;
    std::uint64_t unit_;
};

// Pixels of less than a byte, the first one in the highest bits. They are written into zeros.
template <DWORD bits>
void copyPackedPixel(const BYTE *from, std::uint64_t fromPixel, BYTE *to, DWORD toPixel) {
    constexpr DWORD kPerByte = 8 / bits;
    const auto shift = static_cast<unsigned>((kPerByte - 1 - fromPixel % kPerByte) * bits);
    const unsigned value = unsigned{from[fromPixel / kPerByte]} >> shift & ((1u << bits) - 1);
    to[toPixel / kPerByte] |= static_cast<BYTE>(value << (kPerByte - 1 - toPixel % kPerByte) * bits);
}

template <DWORD bytes>
void copyWholePixel(const BYTE *from, std::uint64_t fromPixel, BYTE *to, DWORD toPixel) {
    std::copy_n(from + fromPixel * bytes, bytes, to + std::size_t{toPixel} * bytes);
}

using CopyPixel = void(const BYTE *from, std::uint64_t fromPixel, BYTE *to, DWORD toPixel);

// A row of `count` pixels; `width` is that of the picture.
template <CopyPixel copyPixel>
void scaleRow(const BYTE *from, DWORD width, Steps columns, BYTE *to, DWORD count) {
    for (DWORD i = 0; i < count && columns.position() < width; ++i, columns.next()) {
        copyPixel(from, columns.position(), to, i);
    }
}

using ScaleRow = void (*)(const BYTE *from, DWORD width, Steps columns, BYTE *to, DWORD count);

// Null for depths that are not scaled.
ScaleRow rowScalerFor(WORD bitsPerPixel) {
    switch (bitsPerPixel) {
    case 1:
        return &scaleRow<copyPackedPixel<1>>;
    case 4:
        return &scaleRow<copyPackedPixel<4>>;
    case 8:
        return &scaleRow<copyWholePixel<1>>;
    case 24:
        return &scaleRow<copyWholePixel<3>>;
    default:
        return nullptr;
    }
}

bool isScalable(const DibView &dib, const PixelRectangle &source, LONG width, LONG height) {
    return source.width >= 1 && source.height >= 1 && width >= 1 && height >= 1 && source.x >= 0 && source.y >= 0 &&
           static_cast<DWORD>(source.x) < dib.width() && static_cast<DWORD>(source.y) < dib.height();
}

// Header and colours of the new picture; result: where its rows begin.
BYTE *describe(const DibView &dib, LONG width, LONG height, BYTE *to) {
    BITMAPINFOHEADER header = dib.header();
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biSizeImage = 0;
    std::memcpy(to, &header, sizeof header);
    const std::size_t colourBytes = dib.colourCount() * sizeof(RGBQUAD);
    std::memcpy(to + sizeof header, dib.colours(), colourBytes);
    return to + sizeof header + colourBytes;
}

void scaleRows(const DibView &dib, const PixelRectangle &source, LONG width, LONG height, BYTE *rows) {
    const ScaleRow scale = rowScalerFor(dib.bitsPerPixel());
    const std::size_t stride = dibRowBytes(static_cast<DWORD>(width), dib.bitsPerPixel()).fit().value_or(0);
    const Steps columns(source.x, source.width, width);
    const std::uint64_t end = static_cast<std::uint64_t>(source.y) + static_cast<std::uint64_t>(source.height);
    Steps fromRow(source.y, source.height, height);
    const BYTE *before = nullptr;
    std::uint64_t rowBefore = 0;
    for (LONG i = 0; i < height && fromRow.position() < end; ++i, fromRow.next()) {
        BYTE *to = rows + static_cast<std::size_t>(height - 1 - i) * stride;
        const std::uint64_t row = fromRow.position();
        if (before != nullptr && row == rowBefore) {
            std::memcpy(to, before, stride);
        } else if (row < dib.height()) {
            const BYTE *from = dib.bits() + (dib.height() - 1 - static_cast<std::size_t>(row)) * dib.stride();
            scale(from, dib.width(), columns, to, static_cast<DWORD>(width));
        }
        before = to;
        rowBefore = row;
    }
}

} // namespace

GlobalBlock scaleRectangle(const DibView &dib, const PixelRectangle &source, LONG width, LONG height) {
    if (!dib || rowScalerFor(dib.bitsPerPixel()) == nullptr || !isScalable(dib, source, width, height)) {
        return {};
    }
    const Size rowsBytes =
        dibRowBytes(static_cast<DWORD>(width), dib.bitsPerPixel()) * (Size(static_cast<DWORD>(height)) + Size(1));
    GlobalBlock block =
        GlobalBlock::allocate(Size(sizeof(BITMAPINFOHEADER)) + Size(dib.colourCount()) * Size(sizeof(RGBQUAD)) +
                              rowsBytes + Size(kSpareBytes));
    const GlobalView<BYTE> packed(block.get());
    if (!packed) {
        return {};
    }
    scaleRows(dib, source, width, height, describe(dib, width, height, packed.get()));
    return block;
}

} // namespace vellum
