// What a coding run needs to know of a registered image, read from its tags into the state: the same for both
// directions. Every function returns an error number.
#pragma once

#include "core/image_info.h"

namespace vellum {

// Lines wider than this are refused, so that positions on a line never wrap.
constexpr DWORD kWidestLine = 0x7FFF0000;

// The tags of an image.
struct ImageTags {
    TiffHandle tiff;
    DWORD index;

    [[nodiscard]] DWORD number(Tag tag, DWORD valueWhenAbsent) const {
        return firstValue(tiff, index, tag).value_or(valueWhenAbsent);
    }

    // Moves all values of a tag into a block of the state; error 10 when the tag is absent.
    Error block(Tag tag, HGLOBAL &destination, TagShape *shape = nullptr) const;
};

// Header, line size, key and orders: what every compression needs. Errors: 1, 10, 15, 16.
Error readImageParameters(CodecState &state, const ImageTags &tags);

// Compression 6: JPEGProc (missing: 10; neither 0 nor 1: 11), the tiles, planes and restart interval. An image without
// tiles is one tile.
Error readTiles(JpegCodecState &jpeg, const ImageTags &tags);

// Compression 6, more than 8 bits per pixel: YCbCrSubSampling (missing: 10) and ReferenceBlackWhite, which has a
// default.
Error readColourCoding(JpegCodecState &jpeg, const ImageTags &tags);

// ReferenceBlackWhite alone.
Error readReferenceBlackWhite(JpegCodecState &jpeg, const ImageTags &tags);

} // namespace vellum
