// Gathers the lines of a picture on their way to the screen, and puts a band of them there at once: a call for each
// line costs more than its pixels. A line that has no extent on the screen is left out; one that has more than a pixel
// is repeated.
#pragma once

#include "display/line_sampler.h"
#include "support/gdi_objects.h"
#include "support/global_block.h"
#include "vellum32.h"

#include <optional>

namespace vellum {

// Clockwise; the values are the flags of the screen functions.
enum class Rotation : DWORD { None = 0, By90 = 1, By180 = 2, By270 = 3 };

constexpr bool swapsSides(Rotation rotation) {
    return rotation == Rotation::By90 || rotation == Rotation::By270;
}

// How pixels reach a bitmap: bits as they are, numbers of colours, or colours.
enum class ScreenDepth { Mono, Indexed, TrueColor };

constexpr ScreenDepth screenDepth(WORD bitsPerPixel) {
    return bitsPerPixel == 1 ? ScreenDepth::Mono : bitsPerPixel <= 8 ? ScreenDepth::Indexed : ScreenDepth::TrueColor;
}

// A picture on the screen.
struct ScreenProjection {
    Rotation rotation = Rotation::None;
    Projection columns;
    Projection rows;

    // Along a line of the image, and from line to line.
    [[nodiscard]] const Projection &alongLine() const { return swapsSides(rotation) ? rows : columns; }
    [[nodiscard]] const Projection &acrossLines() const { return swapsSides(rotation) ? columns : rows; }
};

class ScreenBand {
public:
    // Rows of the screen, or columns, that a band has.
    static constexpr LONG kThickness = 64;

    // Makes the bitmap of a band, with the device's planes and bits per pixel or monochrome, and the buffers. False for
    // want of memory.
    [[nodiscard]] bool prepare(HDC dc, const ScreenProjection &projection, const BITMAPINFOHEADER &image);

    // Whether there is anything to be shown. If not, no line may be added, and there is no bitmap.
    [[nodiscard]] bool empty() const { return bitmap_.get() == nullptr; }
    [[nodiscard]] HBITMAP bitmap() const { return bitmap_.get(); }
    // For turned lines; null where they are not turned.
    [[nodiscard]] BYTE *workBuffer() const { return turned_ ? turned_->get() : nullptr; }
    [[nodiscard]] DWORD bitmapRowBytes() const { return bitmapRowBytes_; }
    // Makes a picture's header that of a band.
    void describe(BITMAPINFOHEADER &header) const;

    // The memory device context has the bitmap selected; it and the painted device context count in pixels.
    void begin(HDC memory) { memory_ = memory; }
    // Takes a line of the image. Lines that are meant for another rotation or depth are none of this picture.
    void add(Rotation rotation, ScreenDepth depth, const BYTE *line, LONG row, const ScreenLineContext &context);
    // Shows the lines that wait.
    void flush(const ScreenLineContext &context);

private:
    [[nodiscard]] bool allocate();
    [[nodiscard]] LONG canvasPlace(LONG row) const;
    [[nodiscard]] BYTE *slot(LONG position) const;
    BYTE *claimSlot(LONG position, const ScreenLineContext &context);
    void fillBitmap(const ScreenLineContext &context);

    ScreenProjection projection_;
    WORD bitsPerPixel_ = 1;
    LineSampler sampler_;
    OwnedBitmap bitmap_;
    SIZE bitmapSize_ = {};
    DWORD bitmapRowBytes_ = 0;
    DWORD slotBytes_ = 0; // from line to line
    GlobalBlock linesBlock_;
    GlobalBlock turnedBlock_;
    std::optional<GlobalView<BYTE>> lines_;
    std::optional<GlobalView<BYTE>> turned_; // as columns
    HDC memory_ = nullptr;
    LONG bandStart_ = 0; // on the screen
    Span waiting_;       // lines of the band
};

} // namespace vellum
