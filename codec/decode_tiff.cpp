// Decoding of a registered image: its tags become the state of a run, on a stream of the run's own.
#include "codec/decode_driver.h"

#include "codec/buffers.h"
#include "codec/jpeg_module.h"
#include "codec/strip_table.h"
#include "core/image_info.h"
#include "core/library_state.h"
#include "support/row_bytes.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr DWORD kLargestKeyHalf = 0xFFFF;

// The tags of the image being decoded.
struct ImageTags {
    TiffHandle tiff;
    DWORD index;

    [[nodiscard]] DWORD number(Tag tag, DWORD valueWhenAbsent) const {
        return firstValue(tiff, index, tag).value_or(valueWhenAbsent);
    }

    // Moves all values of a tag into a block of the state.
    [[nodiscard]] Error block(Tag tag, HGLOBAL &destination, TagShape *shape = nullptr) const {
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
};

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
    // A number that does not fit its half is no compression that anything could decode.
    return std::max(compression, option) > kLargestKeyHalf ? 0 : compression | option << 16;
}

// Header, key and orders: what every compression needs.
Error readImageParameters(CodecState &state, const ImageTags &tags) {
    if (IsTiffImageRegistered(tags.tiff, static_cast<LONG>(tags.index)) == 0) {
        return Error::IndexOutOfRange;
    }
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

// The strip table, and the lines that the request asks for.
Error readStrips(CodecState &state, const ImageTags &tags, const DecodeRequest &request) {
    TagShape offsets;
    if (const Error error = tags.block(Tag::StripOffsets, state.stripOffsets, &offsets); error != Error::None) {
        return error;
    }
    state.offsetsType = offsets.type;
    state.stripCount = offsets.count;
    const auto height = static_cast<DWORD>(state.image.biHeight);
    const DWORD rowsPerStrip = tags.number(Tag::RowsPerStrip, 0);
    state.rowsPerStrip = rowsPerStrip != 0 && rowsPerStrip < height ? rowsPerStrip : height;
    const std::uint64_t firstLine = std::uint64_t{state.rowsPerStrip} * request.firstStrip;
    if (request.firstStrip >= state.stripCount || firstLine >= height) {
        return Error::IndexOutOfRange;
    }
    state.stripIndex = request.firstStrip;
    state.currentLine = static_cast<DWORD>(firstLine);
    if (request.lineCount != 0 && request.lineCount < height - state.currentLine) {
        state.image.biHeight = static_cast<LONG>(state.currentLine + request.lineCount);
    }
    return Error::None;
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

Error readColourSubsampling(JpegCodecState &jpeg, const ImageTags &tags) {
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
    HGLOBAL &reference = jpeg.codec.workBlocks[3];
    const Error error = tags.block(Tag::ReferenceBlackWhite, reference);
    return error == Error::TagMissing ? defaultReferenceBlackWhite(reference) : error;
}

// Where the tiles lie, and the coding tables.
Error readJpegTables(CodecState &state, const ImageTags &tags) {
    TagShape offsets;
    if (const Error error = tags.block(Tag::TileOffsets, state.stripOffsets, &offsets); error != Error::None) {
        return error;
    }
    state.offsetsType = offsets.type;
    // By design: the module finds the TileLength values where the byte counts stand; it was made for this.
    if (const Error error = tags.block(Tag::TileLength, state.stripByteCounts); error != Error::None) {
        return error;
    }
    constexpr Tag kTables[] = {Tag::JpegQTables, Tag::JpegAcTables, Tag::JpegDcTables};
    HGLOBAL *block = state.workBlocks;
    for (const Tag table : kTables) {
        if (const Error error = tags.block(table, *block++); error != Error::None) {
            return error;
        }
    }
    return Error::None;
}

// What the companion module needs to know.
Error readJpegParameters(JpegCodecState &jpeg, const ImageTags &tags) {
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
    if (const Error error = readJpegTables(state, tags); error != Error::None) {
        return error;
    }
    jpeg.planarConfiguration = tags.number(Tag::PlanarConfiguration, 1);
    jpeg.restartInterval = tags.number(Tag::JpegRestartInterval, 0);
    return state.image.biBitCount > 8 ? readColourSubsampling(jpeg, tags) : Error::None;
}

// A stream of the run's own on the TIFF; a memory stream's block is stored back when the run ends.
class RunStream {
public:
    explicit RunStream(TiffHandle tiff) : tiff_(tiff), stream_(open(tiff)) {}
    ~RunStream() {
        if (const TiffFileView file(tiff_); file && stream_) {
            storeBackMemoryBlock(*file, stream_.get());
        }
    }
    RunStream(const RunStream &) = delete;
    RunStream &operator=(const RunStream &) = delete;

    // Makes the stream the state's, at its start.
    Error giveTo(CodecState &state) const {
        const LONG size = stream_ ? sizeOfStream(stream_.get()) : -1;
        if (size < 0 || seekStream(stream_.get(), 0, 0) == -1) {
            return Error::Io;
        }
        state.stream = stream_.get();
        state.streamLimit = static_cast<DWORD>(size);
        return Error::None;
    }

private:
    static StreamHandle open(TiffHandle tiff) {
        const TiffFileView file(tiff);
        return file ? openForReading(*file) : kNoStream;
    }

    TiffHandle tiff_;
    Stream stream_;
};

// The flag is 1 during a run that starts behind the first strip, and after every run.
class PartialDecodeFlag {
public:
    explicit PartialDecodeFlag(DWORD firstStrip) { library.partialDecode = firstStrip != 0 ? 1 : 0; }
    PartialDecodeFlag(const PartialDecodeFlag &) = delete;
    PartialDecodeFlag &operator=(const PartialDecodeFlag &) = delete;
    ~PartialDecodeFlag() { library.partialDecode = 1; }
};

Error run(CodecState &state, const DecodeRequest &request) {
    const RunStream stream(request.tiff);
    if (const Error error = stream.giveTo(state); error != Error::None) {
        return error;
    }
    const auto lineSize = static_cast<DWORD>(state.bytesPerLine);
    if (!worthAllocating(Size(lineSize), state.compressionKey, lineSize, state.streamLimit)) {
        return Error::NoMemory;
    }
    const RunLock table(library.stripTable, state.stripOffsets);
    // Uncompressed code is read in short spans, too short to lock the block for each.
    const RunLock memory(library.memoryTiff,
                         state.compressionKey == VELLUM_KEY_NONE ? memoryStreamBlock(state.stream) : nullptr);
    const PartialDecodeFlag partial(request.firstStrip);
    return decodeImageData(state);
}

} // namespace

Error decodeTiffImage(const DecodeRequest &request) {
    JpegCodecState jpeg{};
    CodecState &state = jpeg.codec;
    const CodecBuffers buffers(state);
    state.userValue = request.userValue;
    state.lineFunction = request.lineFunction;
    const ImageTags tags{request.tiff, request.index};
    if (const Error error = readImageParameters(state, tags); error != Error::None) {
        return error;
    }
    const Error error =
        state.compressionKey == VELLUM_KEY_JPEG ? readJpegParameters(jpeg, tags) : readStrips(state, tags, request);
    return error == Error::None ? run(state, request) : error;
}

} // namespace vellum
