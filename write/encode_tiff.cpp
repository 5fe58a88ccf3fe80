// Encoding of a defined image: its tags become the state of a run, the lines become strips on a stream of the run's
// own, and the directory follows them.
#include "codec/buffers.h"
#include "codec/encode_driver.h"
#include "codec/image_parameters.h"
#include "codec/jpeg_module.h"
#include "core/open_file.h"
#include "core/run_stream.h"
#include "core/tiff_header.h"
#include "core/typed_transfer.h"
#include "write/directory_writer.h"
#include "write/image_definition.h"

#include <algorithm>

namespace vellum {
namespace {

struct EncodeRequest {
    TiffHandle tiff;
    DWORD index;
    DWORD userValue;
    LineFunc lineFunction;
};

// By design: one image at a time. Not the image itself is looked at but slot 0 (or slot 1, for image 0): programs
// define an image, encode it and drop it before they define the next.
bool anotherImageIsDefined(TiffHandle tiff, DWORD index) {
    return isImageRegistered(tiff, index == 0 ? 1 : 0);
}

DWORD stripsOf(const CodecState &state) {
    const auto height = static_cast<DWORD>(state.image.biHeight);
    return static_cast<DWORD>((std::uint64_t{height} + state.rowsPerStrip - 1) / state.rowsPerStrip);
}

// Strips by RowsPerStrip; an image that has none stores every line as a strip of its own. Tile tags are for JPEG alone:
// other compressions store strips, whatever tags there are.
void readStripLayout(CodecState &state, const ImageTags &tags) {
    const auto height = static_cast<DWORD>(state.image.biHeight);
    const DWORD rows = tags.number(Tag::RowsPerStrip, 1);
    state.rowsPerStrip = rows != 0 ? std::min(rows, height) : height;
    state.stripCount = stripsOf(state);
}

// By design: the number of tiles is a 16-bit one, as the module takes it. Where that leaves nothing, and for an image
// without tiles, the strips count.
Error readTileLayout(JpegCodecState &jpeg, const ImageTags &tags) {
    if (const Error error = readTiles(jpeg, tags); error != Error::None) {
        return error;
    }
    CodecState &state = jpeg.codec;
    if (!hasTag(tags.tiff, tags.index, Tag::TileWidth)) {
        readStripLayout(state, tags);
        return Error::None;
    }
    state.stripCount &= 0xFFFF;
    if (state.stripCount == 0) {
        state.stripCount = stripsOf(state);
    }
    return Error::None;
}

// Two factors, 2 where there is none.
void readSubsampling(JpegCodecState &jpeg, const ImageTags &tags) {
    WORD factors[2] = {};
    HGLOBAL block = nullptr;
    if (tags.block(Tag::YCbCrSubSampling, block) == Error::None) {
        const GlobalBlock owned(block);
        if (const GlobalView<WORD> stored(block, sizeof factors); stored) {
            std::copy_n(stored.get(), 2, factors);
        }
    }
    jpeg.subsamplingHorizontal = factors[0] != 0 ? factors[0] : 2;
    jpeg.subsamplingVertical = factors[1] != 0 ? factors[1] : 2;
}

Error readJpegLayout(JpegCodecState &jpeg, const ImageTags &tags) {
    if (const Error error = readTileLayout(jpeg, tags); error != Error::None) {
        return error;
    }
    readSubsampling(jpeg, tags);
    return jpeg.codec.image.biBitCount > 8 ? readReferenceBlackWhite(jpeg, tags) : Error::None;
}

Error setUp(JpegCodecState &jpeg, const EncodeRequest &request) {
    CodecState &state = jpeg.codec;
    state.userValue = request.userValue;
    state.lineFunction = request.lineFunction;
    const ImageTags tags{request.tiff, request.index};
    if (const Error error = readImageParameters(state, tags); error != Error::None) {
        return error;
    }
    if (const Error error = checkEncodable(state); error != Error::None) {
        return error;
    }
    if (state.compressionKey != VELLUM_KEY_JPEG) {
        readStripLayout(state, tags);
    } else if (const Error error = readJpegLayout(jpeg, tags); error != Error::None) {
        return error;
    }
    return allocateStripTables(state);
}

bool defineTable(const EncodeRequest &request, Tag tag, HGLOBAL table, DWORD count) {
    const GlobalView<BYTE> values(table, std::size_t{count} * sizeof(DWORD));
    return values && defineTag(request.tiff, request.index, static_cast<WORD>(tag), values.get(), kLong, count);
}

bool defineStrips(const EncodeRequest &request, const CodecState &state) {
    return defineTable(request, Tag::StripOffsets, state.stripOffsets, state.stripCount) &&
           defineTable(request, Tag::StripByteCounts, state.stripByteCounts, state.stripCount);
}

// The module has left its coding tables in the work blocks.
bool defineTiles(const EncodeRequest &request, const CodecState &state) {
    const DWORD components = state.image.biBitCount > 8 ? 3 : 1;
    return defineTable(request, Tag::TileOffsets, state.stripOffsets, state.stripCount) &&
           defineTable(request, Tag::TileByteCounts, state.stripByteCounts, state.stripCount) &&
           defineTable(request, Tag::JpegQTables, state.workBlocks[0], components) &&
           defineTable(request, Tag::JpegAcTables, state.workBlocks[1], components) &&
           defineTable(request, Tag::JpegDcTables, state.workBlocks[2], components);
}

// A line function may end the image before its last line: then the image has the lines that there are.
bool shortenImage(const EncodeRequest &request, CodecState &state, DWORD lines) {
    state.stripCount = std::min(state.stripCount, (lines + state.rowsPerStrip - 1) / state.rowsPerStrip);
    return defineNumber(request.tiff, request.index, Tag::ImageLength, kLong, lines);
}

// Closes the strip tables, defines their tags and writes the directory.
Error writeResults(const EncodeRequest &request, CodecState &state) {
    const bool jpeg = state.compressionKey == VELLUM_KEY_JPEG;
    const bool complete = jpeg || state.stripIndex >= state.stripCount;
    const DWORD linesWhenCutShort = state.currentLine - 1;
    if (!complete && linesWhenCutShort == 0) {
        // There is no image to speak of.
        return Error::None;
    }
    finishStrips(state);
    const bool defined = (complete || shortenImage(request, state, linesWhenCutShort)) &&
                         (jpeg ? defineTiles(request, state) : defineStrips(request, state));
    return defined ? writeDirectory(request.tiff, request.index, state.stream) : Error::NoMemory;
}

// An existing file is looked at before anything is written to it.
Error checkExisting(TiffHandle tiff, StreamHandle stream) {
    const TiffFileView file(tiff);
    if (!file) {
        return Error::NoMemory;
    }
    return (file->openFlags & OF_CREATE) != 0 ? Error::None : checkChain(*file, stream);
}

Error writeImage(const EncodeRequest &request, CodecState &state, StreamHandle stream) {
    state.stream = stream;
    if (const Error error = checkExisting(request.tiff, stream); error != Error::None) {
        return error;
    }
    if (const Error error = writeTiffHeader(request.tiff, stream, 0); error != Error::None) {
        return error;
    }
    // A position that is no offset: nothing behind it could be found again.
    if (tellStream(stream) < 0) {
        return Error::Io;
    }
    if (const Error error = encodeImageData(state); error != Error::None) {
        return error;
    }
    return writeResults(request, state);
}

StreamHandle openByItsFlags(const TiffFileBlock &file) {
    return openForWriting(file, file.openFlags);
}

bool hasRoomForAnImage(TiffHandle tiff, DWORD index) {
    const TiffFileView file(tiff);
    return file && !chainIsFull(*file, index);
}

Error encodeTiffImage(const EncodeRequest &request) {
    if (!hasRoomForAnImage(request.tiff, request.index) || anotherImageIsDefined(request.tiff, request.index)) {
        return Error::IndexOutOfRange;
    }
    JpegCodecState jpeg{};
    CodecState &state = jpeg.codec;
    const CodecBuffers buffers(state);
    if (const Error error = setUp(jpeg, request); error != Error::None) {
        return error;
    }
    if (state.compressionKey == VELLUM_KEY_JPEG && !jpegModuleEncodes()) {
        // By design: the user has been told, and no file is touched.
        return Error::None;
    }
    const RunStream stream(request.tiff, openByItsFlags, storeBackMemoryTiff);
    return stream ? writeImage(request, state, stream.get()) : Error::Io;
}

} // namespace
} // namespace vellum

extern "C" DWORD VELLUMAPI EncodeTiffImage(TiffHandle tiff, DWORD index, DWORD userValue, LineFunc lineFunction) {
    return vellum::recorded(vellum::encodeTiffImage({tiff, index, userValue, lineFunction}));
}
