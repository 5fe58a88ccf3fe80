// Images of whole bytes given to the byte-oriented encoders, and what these write.
#pragma once

#include "codec/byte_codecs.h"
#include "encoder_run.h"
#include "support/random_pictures.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace vellum::test {

using ByteCodec = Encoder;
using ByteCode = Encoded;

constexpr DWORD kCodeBufferBytes = 32767;

struct ByteImage {
    Bytes data;
    DWORD lineBytes = 1;
    DWORD rowsPerStrip = 0xFFFFFFFF;
    DWORD key = VELLUM_KEY_NONE;
    WORD bits = 8;
    DWORD fillOrder = 1;
    DWORD answerAt = 0xFFFFFFFF; // the line for which the line function returns `answer` and gives nothing
    DWORD answer = VELLUM_INDEX_OUT_OF_RANGE;
    Bytes before = {}; // what the stream holds already

    [[nodiscard]] DWORD height() const { return static_cast<DWORD>(data.size() / lineBytes); }
    [[nodiscard]] DWORD strips() const { return (height() - 1) / rowsPerStrip + 1; }
    [[nodiscard]] Bytes lines(DWORD first, DWORD count) const {
        const auto byteOf = [this](std::uint64_t line) {
            return static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(data.size(), line * lineBytes));
        };
        return {data.begin() + byteOf(first), data.begin() + byteOf(std::uint64_t{first} + count)};
    }
};

// Gives the lines of an image, and other bytes behind each: they must not count.
struct ByteLines {
    const ByteImage *image;
    DWORD asked = 0;

    static DWORD VELLUMAPI give(BYTE *line, DWORD index, DWORD userValue) {
        auto &lines = *reinterpret_cast<ByteLines *>(static_cast<std::uintptr_t>(userValue));
        const ByteImage &image = *lines.image;
        if (index == image.answerAt) {
            return image.answer;
        }
        const BYTE *from = image.data.data() + std::size_t{index} * image.lineBytes;
        std::memcpy(line, from, image.lineBytes);
        std::memset(line + image.lineBytes, lines.asked % 2 == 0 ? from[image.lineBytes - 1] : 0xA5, kLineSlack);
        ++lines.asked;
        return 0;
    }
};

inline CodecState byteState(StreamHandle stream, const ByteImage &image) {
    CodecState state{};
    state.stream = stream;
    state.image.biWidth = static_cast<LONG>(image.lineBytes * 8 / image.bits);
    state.image.biHeight = static_cast<LONG>(image.height());
    state.image.biBitCount = image.bits;
    state.bytesPerLine = static_cast<LONG>(image.lineBytes);
    state.compressionKey = image.key;
    state.fillOrder = image.fillOrder;
    state.rowsPerStrip = std::min(image.rowsPerStrip, image.height());
    state.stripCount = image.strips();
    state.offsetsType = 4;
    return state;
}

// Runs an encoder as the drivers do, with the closing flush; the stream stays the caller's.
inline ByteCode encodeBytesTo(StreamHandle stream, const ByteImage &image, ByteCodec encoder) {
    ByteLines lines{&image};
    CodecState state = byteState(stream, image);
    state.lineFunction = &ByteLines::give;
    state.userValue = static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(&lines));
    ByteCode code = runEncoder(state, encoder);
    code.asked = lines.asked;
    return code;
}

inline ByteCode encodeBytesOf(const ByteImage &image, ByteCodec encoder) {
    return intoMemory(image.before, [&](StreamHandle stream) { return encodeBytesTo(stream, image, encoder); });
}

// Writes into a file whose n-th write fails, and gives what the encoder said of it.
inline ByteCode encodeBytesToFile(const char *path, const ByteImage &image, ByteCodec encoder) {
    const Stream stream(openFileStream(path, kOpenCreate));
    return encodeBytesTo(stream.get(), image, encoder);
}

// The lines that a decoder finds in the strips; empty when it fails.
inline Bytes decodeBytesOf(const ByteImage &image, const ByteCode &code, ByteCodec decoder) {
    struct Received {
        DWORD lineBytes;
        Bytes data;
        static DWORD VELLUMAPI take(BYTE *line, DWORD, DWORD userValue) {
            auto &received = *reinterpret_cast<Received *>(static_cast<std::uintptr_t>(userValue));
            received.data.insert(received.data.end(), line, line + received.lineBytes);
            return 0;
        }
    } received{image.lineBytes, {}};
    const HGLOBAL block = makeBlock(code.stream);
    const StreamHandle stream = openMemoryStream(block, static_cast<DWORD>(code.stream.size()));
    CodecState state = byteState(stream, image);
    state.streamLimit = static_cast<DWORD>(code.stream.size());
    const auto *offsets = reinterpret_cast<const BYTE *>(code.offsets.data());
    state.stripOffsets = makeBlock(Bytes(offsets, offsets + code.offsets.size() * sizeof(DWORD)));
    state.lineFunction = &Received::take;
    state.userValue = static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(&received));
    const Error error = decoder(state);
    freeCodecBuffers(state);
    closeStream(stream);
    GlobalFree(block);
    return error == Error::None ? received.data : Bytes();
}

// ------------------------------------------------------------------------------------------------ pictures

// Bytes below a bound, without any order.
inline Bytes noiseBytes(std::size_t size, unsigned seed, std::uint32_t below = 256) {
    Random random(seed);
    Bytes bytes(size);
    for (BYTE &byte : bytes) {
        byte = static_cast<BYTE>(random.below(below));
    }
    return bytes;
}

// Slopes with a little noise, as a photograph has them.
inline Bytes photographBytes(DWORD lineBytes, DWORD height, unsigned seed) {
    Random random(seed);
    Bytes bytes;
    for (DWORD y = 0; y < height; ++y) {
        for (DWORD x = 0; x < lineBytes; ++x) {
            bytes.push_back(static_cast<BYTE>((x * 3 + y * 2) / 7 + random.below(4)));
        }
    }
    return bytes;
}

// Long runs of two values with short pieces of other bytes between them, as a printed page has them.
inline Bytes pageBytes(std::size_t size, unsigned seed) {
    Random random(seed);
    Bytes bytes;
    while (bytes.size() < size) {
        const auto paper = static_cast<BYTE>(random.below(9) == 0 ? 0xFF : 0);
        bytes.insert(bytes.end(), 1 + random.below(random.below(4) == 0 ? 300 : 25), paper);
        for (std::uint32_t i = random.below(5); i > 0; --i) {
            bytes.push_back(static_cast<BYTE>(0xFF << random.below(8)));
        }
    }
    bytes.resize(size);
    return bytes;
}

} // namespace vellum::test
