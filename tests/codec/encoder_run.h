// An encoder run over a state as the drivers run it, and what it leaves behind.
#pragma once

#include "codec/buffers.h"
#include "core/stream.h"
#include "support/global_memory.h"

#include <cstddef>
#include <cstring>
#include <vector>

namespace vellum::test {

using Encoder = Error (*)(CodecState &);

// What an encoder left behind.
struct Encoded {
    Error error = Error::None;
    Bytes stream;               // all of it, with what was there before
    std::vector<DWORD> offsets; // the strip tables
    std::vector<DWORD> counts;
    DWORD asked = 0;  // lines that the line function was asked for
    DWORD closed = 0; // strips that were closed

    [[nodiscard]] Bytes strip(std::size_t index) const {
        const auto begin = stream.begin() + static_cast<std::ptrdiff_t>(offsets[index]);
        return {begin, begin + static_cast<std::ptrdiff_t>(counts[index])};
    }
    [[nodiscard]] std::vector<Bytes> strips() const {
        std::vector<Bytes> all;
        for (std::size_t i = 0; i < closed; ++i) {
            all.push_back(strip(i));
        }
        return all;
    }
};

inline std::vector<DWORD> tableEntries(HGLOBAL table) {
    const Bytes bytes = blockBytes(table);
    std::vector<DWORD> entries(bytes.size() / sizeof(DWORD));
    std::memcpy(entries.data(), bytes.data(), entries.size() * sizeof(DWORD));
    return entries;
}

// Runs an encoder with strip tables and the closing flush; the stream stays the caller's. The state is set up but for
// the tables.
inline Encoded runEncoder(CodecState state, Encoder encoder) {
    state.stripOffsets = makeBlock(Bytes(state.stripCount * sizeof(DWORD)));
    state.stripByteCounts = makeBlock(Bytes(state.stripCount * sizeof(DWORD)));
    Encoded encoded;
    encoded.error = encoder(state);
    if (encoded.error == Error::None && state.codeBuffer != nullptr) {
        encoded.error = flushCodeBuffer(state);
    }
    encoded.offsets = tableEntries(state.stripOffsets);
    encoded.counts = tableEntries(state.stripByteCounts);
    encoded.closed = state.stripIndex;
    freeCodecBuffers(state);
    return encoded;
}

// Calls run(stream) on a memory stream that stands behind these bytes, and takes what the stream holds then.
template <class Run>
Encoded intoMemory(const Bytes &before, Run run) {
    const StreamHandle stream = openMemoryStream(makeBlock(before), static_cast<DWORD>(before.size()));
    seekStream(stream, 0, FILE_END);
    Encoded encoded = run(stream);
    const HGLOBAL block = memoryStreamBlock(stream);
    encoded.stream = blockBytes(block);
    encoded.stream.resize(static_cast<std::size_t>(tellStream(stream)));
    closeStream(stream);
    GlobalFree(block);
    return encoded;
}

} // namespace vellum::test
