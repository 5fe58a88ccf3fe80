// The tags that every image needs, from the description of a bitmap.
#include "core/typed_transfer.h"
#include "write/image_definition.h"

#include <algorithm>
#include <initializer_list>

namespace vellum {
namespace {

// Uncompressed bytes of a strip, about.
constexpr DWORD kStripBytes = 8192;

constexpr DWORD kDone = 0;
constexpr DWORD kNotDefined = 1;

// Defines one tag after the other; once one has failed, no more.
class TagWriter {
public:
    TagWriter(TiffHandle tiff, DWORD index) : tiff_(tiff), index_(index) {}

    // By design: always SHORT. A larger number is cut to its low 16 bits; who has larger images redefines the tag.
    TagWriter &shortNumber(Tag tag, DWORD value) { return shorts(tag, {static_cast<WORD>(value)}); }

    TagWriter &shorts(Tag tag, std::initializer_list<WORD> values) {
        return add(tag, values.begin(), kShort, values.size());
    }

    TagWriter &rationals(Tag tag, std::initializer_list<DWORD> pairs) {
        return add(tag, pairs.begin(), kRational, pairs.size() / 2);
    }

    [[nodiscard]] DWORD result() const { return defined_ ? kDone : kNotDefined; }

private:
    TagWriter &add(Tag tag, const void *values, DWORD type, std::size_t count) {
        defined_ =
            defined_ && defineTag(tiff_, index_, static_cast<WORD>(tag), values, type, static_cast<DWORD>(count));
        return *this;
    }

    TiffHandle tiff_;
    DWORD index_;
    bool defined_ = true;
};

DWORD rowsPerStrip(DWORD compression, DWORD width, DWORD height, DWORD depth) {
    const bool ccitt = compression >= 2 && compression <= 4;
    if (ccitt) {
        return height;
    }
    const std::uint64_t lineSize = (std::uint64_t{width} * depth + 7) / 8;
    const auto rows = static_cast<DWORD>(std::max<std::uint64_t>(kStripBytes / lineSize, 1));
    return std::min(rows, height);
}

DWORD defineStrips(TagWriter tags, DWORD compression, DWORD width, DWORD height, DWORD depth) {
    tags.shortNumber(Tag::ImageWidth, width)
        .shortNumber(Tag::ImageLength, height)
        .shortNumber(Tag::RowsPerStrip, rowsPerStrip(compression, width, height, depth));
    if (depth != 24) {
        return tags.shortNumber(Tag::BitsPerSample, depth).result();
    }
    return tags.shorts(Tag::BitsPerSample, {8, 8, 8})
        .shortNumber(Tag::SamplesPerPixel, 3)
        .shortNumber(Tag::PlanarConfiguration, 1)
        .result();
}

// The whole image is one tile.
DWORD defineJpeg(TagWriter tags, DWORD width, DWORD height, DWORD depth) {
    tags.shortNumber(Tag::ImageWidth, width).shortNumber(Tag::ImageLength, height);
    if (depth == 24) {
        tags.shorts(Tag::BitsPerSample, {8, 8, 8}).shortNumber(Tag::SamplesPerPixel, 3);
    } else {
        tags.shortNumber(Tag::BitsPerSample, 8).shortNumber(Tag::SamplesPerPixel, 1);
    }
    tags.shortNumber(Tag::PlanarConfiguration, 1)
        .shortNumber(Tag::TileWidth, width)
        .shortNumber(Tag::TileLength, height)
        .shortNumber(Tag::JpegProc, 1)
        .shortNumber(Tag::JpegRestartInterval, 0);
    if (depth == 24) {
        // By design: three values, not three pairs. The companion module and the readers of its files go by them.
        tags.shorts(Tag::YCbCrSubSampling, {2, 2}).rationals(Tag::ReferenceBlackWhite, {0, 255, 128, 255, 128, 255});
    }
    return tags.result();
}

constexpr bool depthAllowed(DWORD depth) {
    return depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 24;
}

DWORD defineGeneralTags(TiffHandle tiff, DWORD index, const BITMAP &bitmap) {
    if (bitmap.bmWidth < 1) {
        return number(Error::TagMissing);
    }
    const auto width = static_cast<DWORD>(bitmap.bmWidth);
    const auto height = static_cast<DWORD>(bitmap.bmHeight);
    const DWORD depth = DWORD{bitmap.bmPlanes} * bitmap.bmBitsPixel;
    if (!depthAllowed(depth)) {
        return number(Error::BadColorFormat);
    }
    const DWORD compression = firstValue(tiff, index, Tag::Compression).value_or(1);
    const TagWriter tags(tiff, index);
    return compression == VELLUM_KEY_JPEG ? defineJpeg(tags, width, height, depth)
                                          : defineStrips(tags, compression, width, height, depth);
}

} // namespace
} // namespace vellum

extern "C" DWORD VELLUMAPI DefineGeneralTags(TiffHandle tiff, DWORD index, BITMAP bitmap) {
    return vellum::defineGeneralTags(tiff, index, bitmap);
}
