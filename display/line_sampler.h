// Takes from a decoded line the pixels that the screen shows: a part of the line, scaled down or up, and in reverse for
// a picture that is turned so. Lines hold 1, 4, 8 or 24 bits per pixel, packed as TIFF packs them.
#pragma once

#include "display/screen_placement.h"

#include <memory>

namespace vellum {

class LineSampler {
public:
    // For lines of that many pixels, along a direction of the canvas. Reversed: the line's last pixel is the canvas's
    // first. False for want of memory.
    [[nodiscard]] bool prepare(const Projection &projection, LONG linePixels, bool reversed, WORD bitsPerPixel);

    // The pixels of the screen that a line gives.
    [[nodiscard]] LONG samples() const { return samples_; }

    // Writes them, packed. Scaled down, bits left out are ORed to the next one that stays, so that marks do not get
    // lost; of other pixels one stands for its neighbours.
    void sample(const BYTE *line, BYTE *to) const;

private:
    // Pixels of the line that fall on one of the screen: bits as bytes and masks, so that bits are found quickly.
    struct Bits {
        DWORD firstByte;
        DWORD lastByte;
        BYTE firstMask;
        BYTE lastMask;
    };

    static Bits bitsBetween(DWORD first, DWORD last);
    [[nodiscard]] std::size_t count() const { return static_cast<std::size_t>(samples_); }
    [[nodiscard]] bool isBlank(const BYTE *line) const;
    void sampleBits(const BYTE *line, BYTE *to) const;
    void sampleNibbles(const BYTE *line, BYTE *to) const;
    template <DWORD bytesPerPixel>
    void sampleBytes(const BYTE *line, BYTE *to) const;

    std::unique_ptr<Bits[]> bits_;    // 1 bit per pixel
    std::unique_ptr<DWORD[]> pixels_; // other depths: which pixel
    LONG samples_ = 0;
    WORD bitsPerPixel_ = 1;
};

} // namespace vellum
