// From tags to the parameters of a run.
#include "codec/image_parameters.h"

#include "support/row_bytes.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr DWORD kLargestKeyHalf = 0xFFFF;

// The Compression value in the low half, its option in the high half.
DWORD compressionKey(const ImageTags &tags) {
    const DWORD compression = tags.number(Tag::Compression, 1);
    DWORD option = 0;
    switch (compression) {
    case 2:
        option = 4;
        break;
    case 3:
        option = tags.number(Tag::T4Options, 0);
        break;
    case 5:
        option = tags.number(Tag::Predictor, 1);
        break;
    default:
        break;
    }
    // A number that does not fit its half is no compression that anything could code.
    return std::max(compression, option) > kLargestKeyHalf ? 0 : compression | option << 16;
}

DWORD tilesAlong(DWORD pixels, DWORD tilePixels) {
    return tilePixels == 0 ? 1 : static_cast<DWORD>((std::uint64_t{pixels} + tilePixels - 1) / tilePixels);
}

// ReferenceBlackWhite of an image that has none: the full ranges of luminance and the two colour differences, as three
// pairs of RATIONALs.
Error defaultReferenceBlackWhite(HGLOBAL &destination) {
    constexpr DWORD kRationals[] = {0, 1, 255, 1, 128, 1, 255, 1, 128, 1, 255, 1};
    GlobalBlock block = GlobalBlock::allocate(Size(sizeof kRationals));
    if (const GlobalView<BYTE> bytes(block.get(), sizeof kRationals); bytes) {
        std::memcpy(bytes.get(), kRationals, sizeof kRationals);
    }
    destination = block.release();
    return destination != nullptr ? Error::None : Error::NoMemory;
}

} // namespace

Error ImageTags::block(Tag tag, HGLOBAL &destination, TagShape *shape) const {
    if (!hasTag(tiff, index, tag)) {
        return Error::TagMissing;
    }
    auto values = allValues(tiff, index, tag);
    if (!values) {
        return Error::NoMemory;
    }
    if (shape != nullptr) {
        *shape = {values->type, values->count};
    }
    destination = values->data.release();
    return Error::None;
}

Error readImageParameters(CodecState &state, const ImageTags &tags) {
    if (const DWORD error = GetTiffDimensions(tags.tiff, tags.index, &state.image); error != 0) {
        return fromLineFunction(error);
    }
    const auto width = static_cast<DWORD>(state.image.biWidth);
    if (width == 0) {
        return Error::TagMissing;
    }
    const auto bytes = lineBytes(width, state.image.biBitCount).fit();
    if (width > kWidestLine || !bytes) {
        return Error::NoMemory;
    }
    state.bytesPerLine = static_cast<LONG>(*bytes);
    state.compressionKey = compressionKey(tags);
    state.fillOrder = tags.number(Tag::FillOrder, 1);
    if (state.fillOrder != 1 && state.fillOrder != 2) {
        return Error::BadFillOrder;
    }
    TiffFileInfo file{};
    GetTiffFileInfo(tags.tiff, &file);
    state.byteOrder = file.byteOrder;
    return Error::None;
}

Error readTiles(JpegCodecState &jpeg, const ImageTags &tags) {
    CodecState &state = jpeg.codec;
    const auto process = firstValue(tags.tiff, tags.index, Tag::JpegProc);
    if (!process) {
        return Error::TagMissing;
    }
    if (*process > 1) {
        return Error::UnknownCompression;
    }
    state.jpegProcess = static_cast<WORD>(*process);
    jpeg.tileWidth = tags.number(Tag::TileWidth, 0);
    jpeg.tileLength = tags.number(Tag::TileLength, 0);
    jpeg.tilesAcross = tilesAlong(static_cast<DWORD>(state.image.biWidth), jpeg.tileWidth);
    jpeg.tilesDown = tilesAlong(static_cast<DWORD>(state.image.biHeight), jpeg.tileLength);
    state.stripCount = jpeg.tilesAcross * jpeg.tilesDown;
    const auto height = static_cast<DWORD>(state.image.biHeight);
    state.rowsPerStrip = jpeg.tileLength != 0 ? jpeg.tileLength : height;
    jpeg.planarConfiguration = tags.number(Tag::PlanarConfiguration, 1);
    jpeg.restartInterval = tags.number(Tag::JpegRestartInterval, 0);
    return Error::None;
}

Error readReferenceBlackWhite(JpegCodecState &jpeg, const ImageTags &tags) {
    HGLOBAL &reference = jpeg.codec.workBlocks[3];
    const Error error = tags.block(Tag::ReferenceBlackWhite, reference);
    return error == Error::TagMissing ? defaultReferenceBlackWhite(reference) : error;
}

Error readColourCoding(JpegCodecState &jpeg, const ImageTags &tags) {
    HGLOBAL block = nullptr;
    if (const Error error = tags.block(Tag::YCbCrSubSampling, block); error != Error::None) {
        return error;
    }
    const GlobalBlock owned(block);
    const GlobalView<WORD> factors(block, 2 * sizeof(WORD));
    if (!factors) {
        return Error::NoMemory;
    }
    jpeg.subsamplingHorizontal = factors.get()[0];
    jpeg.subsamplingVertical = factors.get()[1];
    return readReferenceBlackWhite(jpeg, tags);
}

} // namespace vellum
