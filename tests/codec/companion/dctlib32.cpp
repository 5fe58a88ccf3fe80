// A companion module for the tests: a module of its own that uses the library's buffer operations as any codec does.
// The code bytes are the pixels. It notes what it was handed in an exported record, for the tests to look at.
#include "companion/noted.h"

#include <cstring>

extern "C" {

NotedByCompanion noted = {};

DWORD VELLUMAPI JPEGDecoder(CodecState *state) {
    ++noted.calls;
    std::memcpy(noted.record, state, sizeof noted.record);
    if (const DWORD error = InitDecodeBuffers(state); error != 0) {
        return error;
    }
    for (;;) {
        while (state->lineBytesLeft > 0) {
            if (state->codeBytesLeft == 0) {
                if (const DWORD error = FillCodeBuffer(state); error != 0) {
                    return error;
                }
            }
            *state->linePointer++ = *state->codePointer++;
            --state->codeBytesLeft;
            --state->lineBytesLeft;
        }
        if (const DWORD error = FlushDataBuffer(state); error != 0) {
            return error == VELLUM_INDEX_OUT_OF_RANGE ? DWORD{VELLUM_OK} : error;
        }
    }
}

// Encodes lines as they are, and leaves three coding tables of three numbers each.
DWORD VELLUMAPI JPEGEncoder(CodecState *state) {
    ++noted.calls;
    std::memcpy(noted.record, state, sizeof noted.record);
    for (DWORD table = 0; table < 3; ++table) {
        state->workBlocks[table] = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 3 * sizeof(DWORD));
    }
    DWORD error = InitEncodeBuffers(state);
    while (error == 0) {
        while (state->lineBytesLeft > 0) {
            if (state->codeBytesLeft == 0) {
                if (const DWORD failed = FlushCodeBuffer(state); failed != 0) {
                    return failed;
                }
            }
            *state->codePointer++ = *state->linePointer++;
            --state->codeBytesLeft;
            --state->lineBytesLeft;
        }
        error = FillDataBuffer(state);
    }
    return error == VELLUM_INDEX_OUT_OF_RANGE ? DWORD{VELLUM_OK} : error;
}

} // extern "C"
