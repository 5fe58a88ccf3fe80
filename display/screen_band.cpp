// Bands of lines: sampled, turned if need be, put into a bitmap, and shown.
#include "display/screen_band.h"

#include "display/turned_lines.h"
#include "support/pixel_order.h"
#include "support/row_bytes.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

// A row of the bitmap as SetBitmapBits takes it, or as a DIB has it.
Size bandRowBytes(LONG pixels, WORD bitsPerPixel) {
    const auto count = static_cast<DWORD>(pixels);
    return bitsPerPixel == 1 ? wordRowBytes(count, bitsPerPixel) : dibRowBytes(count, bitsPerPixel);
}

HBITMAP createBandBitmap(HDC dc, const SIZE &size, WORD bitsPerPixel) {
    const bool mono = bitsPerPixel == 1;
    return CreateBitmap(size.cx, size.cy, mono ? 1 : static_cast<UINT>(GetDeviceCaps(dc, PLANES)),
                        mono ? 1 : static_cast<UINT>(GetDeviceCaps(dc, BITSPIXEL)), nullptr);
}

bool lockAllocated(Size bytes, GlobalBlock &block, std::optional<GlobalView<BYTE>> &view) {
    block = GlobalBlock::allocate(bytes);
    view.emplace(block.get());
    return static_cast<bool>(*view);
}

} // namespace

bool ScreenBand::prepare(HDC dc, const ScreenProjection &projection, const BITMAPINFOHEADER &image) {
    projection_ = projection;
    bitsPerPixel_ = image.biBitCount;
    const LONG length = projection.alongLine().length();
    if (length <= 0 || projection.acrossLines().length() <= 0) {
        return true;
    }
    const bool reversed = projection.rotation == Rotation::By180 || projection.rotation == Rotation::By270;
    bitmapSize_ = swapsSides(projection.rotation) ? SIZE{kThickness, length} : SIZE{length, kThickness};
    if (!sampler_.prepare(projection.alongLine(), image.biWidth, reversed, bitsPerPixel_) || !allocate()) {
        return false;
    }
    bitmap_ = OwnedBitmap(createBandBitmap(dc, bitmapSize_, bitsPerPixel_));
    return static_cast<bool>(bitmap_);
}

bool ScreenBand::allocate() {
    const Size rowBytes = bandRowBytes(bitmapSize_.cx, bitsPerPixel_);
    const Size slotBytes = bandRowBytes(sampler_.samples(), bitsPerPixel_);
    bitmapRowBytes_ = rowBytes.fit().value_or(0);
    slotBytes_ = slotBytes.fit().value_or(0);
    return lockAllocated(slotBytes * Size(kThickness), linesBlock_, lines_) &&
           (!swapsSides(projection_.rotation) ||
            lockAllocated(rowBytes * Size(static_cast<DWORD>(bitmapSize_.cy)), turnedBlock_, turned_));
}

void ScreenBand::describe(BITMAPINFOHEADER &header) const {
    header.biWidth = bitmapSize_.cx;
    header.biHeight = bitmapSize_.cy;
    header.biSizeImage = 0;
}

LONG ScreenBand::canvasPlace(LONG row) const {
    const bool fromTheEnd = projection_.rotation == Rotation::By90 || projection_.rotation == Rotation::By180;
    return fromTheEnd ? projection_.acrossLines().canvas - 1 - row : row;
}

// Rows of a DIB lie bottom first.
BYTE *ScreenBand::slot(LONG position) const {
    const LONG line = position - bandStart_;
    const bool bottomFirst = bitsPerPixel_ != 1 && !swapsSides(projection_.rotation);
    return lines_->get() + static_cast<std::size_t>(bottomFirst ? kThickness - 1 - line : line) * slotBytes_;
}

// The place of a line of the screen. Shows those that wait when another band begins, or when lines are left out, which
// companion modules may do.
BYTE *ScreenBand::claimSlot(LONG position, const ScreenLineContext &context) {
    const LONG start = position - position % kThickness;
    const LONG line = position - start;
    if (start != bandStart_ || line < waiting_.first - 1 || line > waiting_.end) {
        flush(context);
        bandStart_ = start;
    }
    const bool first = waiting_.length() == 0;
    waiting_ = {first ? line : std::min(waiting_.first, line), first ? line + 1 : std::max(waiting_.end, line + 1)};
    return slot(position);
}

void ScreenBand::add(Rotation rotation, ScreenDepth depth, const BYTE *line, LONG row,
                     const ScreenLineContext &context) {
    const Projection &across = projection_.acrossLines();
    // A companion module may deliver any number.
    if (rotation != projection_.rotation || depth != screenDepth(bitsPerPixel_) || row < 0 || row >= across.canvas) {
        return;
    }
    const LONG place = canvasPlace(row);
    if (!across.shown.holds(place)) {
        return;
    }
    const BYTE *sampled = nullptr;
    for (LONG position = across.at(place); position < across.at(place + 1); ++position) {
        BYTE *to = claimSlot(position, context);
        if (sampled != nullptr) {
            std::memcpy(to, sampled, slotBytes_);
        } else {
            sampler_.sample(line, to);
            if (depth == ScreenDepth::TrueColor) {
                exchangeRedAndBlue(to, static_cast<DWORD>(sampler_.samples()) * kBytesPerPixel);
            }
        }
        sampled = to;
    }
}

void ScreenBand::fillBitmap(const ScreenLineContext &context) {
    const bool turned = swapsSides(projection_.rotation);
    const BYTE *bits = turned ? context.workBuffer : lines_->get();
    if (turned) {
        const std::ptrdiff_t step = bitmapRowBytes_;
        const std::ptrdiff_t lastRow = (bitmapSize_.cy - 1) * step;
        const RowPlaces rows =
            bitsPerPixel_ == 1 ? RowPlaces{context.workBuffer, step} : RowPlaces{context.workBuffer + lastRow, -step};
        turnLines({lines_->get(), slotBytes_, kThickness, sampler_.samples(), bitsPerPixel_}, rows);
    }
    if (bitsPerPixel_ == 1) {
        SetBitmapBits(context.bitmap, static_cast<DWORD>(bitmapSize_.cy) * bitmapRowBytes_, bits);
    } else {
        SetDIBits(memory_, context.bitmap, 0, static_cast<UINT>(bitmapSize_.cy), bits, context.header,
                  context.colorUsage);
    }
}

void ScreenBand::flush(const ScreenLineContext &context) {
    if (waiting_.length() == 0) {
        return;
    }
    fillBitmap(context);
    const LONG from = bandStart_ + waiting_.first;
    const LONG length = sampler_.samples();
    if (swapsSides(projection_.rotation)) {
        BitBlt(context.dc, from, 0, waiting_.length(), length, memory_, waiting_.first, 0, context.rasterOperation);
    } else {
        BitBlt(context.dc, 0, from, length, waiting_.length(), memory_, 0, waiting_.first, context.rasterOperation);
    }
    waiting_ = {};
}

} // namespace vellum
