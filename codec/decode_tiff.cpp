// Decoding of a registered image: its tags become the state of a run, on a stream of the run's own.
#include "codec/decode_driver.h"

#include "codec/buffers.h"
#include "codec/image_parameters.h"
#include "codec/jpeg_module.h"
#include "codec/strip_table.h"
#include "core/library_state.h"
#include "core/run_stream.h"

namespace vellum {
namespace {

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
    if (const Error error = readTiles(jpeg, tags); error != Error::None) {
        return error;
    }
    if (const Error error = readJpegTables(state, tags); error != Error::None) {
        return error;
    }
    return state.image.biBitCount > 8 ? readColourCoding(jpeg, tags) : Error::None;
}

// Makes the stream the state's, at its start.
Error giveStream(CodecState &state, const RunStream &stream) {
    const LONG size = stream ? sizeOfStream(stream.get()) : -1;
    if (size < 0 || seekStream(stream.get(), 0, 0) == -1) {
        return Error::Io;
    }
    state.stream = stream.get();
    state.streamLimit = static_cast<DWORD>(size);
    return Error::None;
}

// The flag is 1 during a run that starts behind the first strip, and after every run.
class PartialDecodeFlag {
public:
    explicit PartialDecodeFlag(DWORD firstStrip) { library.partialDecode = firstStrip != 0 ? 1 : 0; }
    PartialDecodeFlag(const PartialDecodeFlag &) = delete;
    PartialDecodeFlag &operator=(const PartialDecodeFlag &) = delete;
    ~PartialDecodeFlag() { library.partialDecode = 1; }
};

Error run(CodecState &state, const DecodeRequest &request) {
    const RunStream stream(request.tiff, openForReading, storeBackMemoryBlock);
    if (const Error error = giveStream(state, stream); error != Error::None) {
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
    if (IsTiffImageRegistered(request.tiff, static_cast<LONG>(request.index)) == 0) {
        return Error::IndexOutOfRange;
    }
    if (const Error error = readImageParameters(state, tags); error != Error::None) {
        return error;
    }
    const Error error =
        state.compressionKey == VELLUM_KEY_JPEG ? readJpegParameters(jpeg, tags) : readStrips(state, tags, request);
    return error == Error::None ? run(state, request) : error;
}

} // namespace vellum
