// The exported buffer operations, as the companion codec modules call them.
#include "codec/buffers.h"

namespace vellum {
namespace {

DWORD run(Error (*operation)(CodecState &), CodecState *state) {
    return state == nullptr ? number(Error::NoMemory) : number(operation(*state));
}

} // namespace
} // namespace vellum

extern "C" {

DWORD VELLUMAPI InitDecodeBuffers(CodecState *state) {
    return vellum::run(vellum::initDecodeBuffers, state);
}
DWORD VELLUMAPI InitEncodeBuffers(CodecState *state) {
    return vellum::run(vellum::initEncodeBuffers, state);
}
DWORD VELLUMAPI FillCodeBuffer(CodecState *state) {
    return vellum::run(vellum::fillCodeBuffer, state);
}
DWORD VELLUMAPI FlushCodeBuffer(CodecState *state) {
    return vellum::run(vellum::flushCodeBuffer, state);
}
DWORD VELLUMAPI FillDataBuffer(CodecState *state) {
    return vellum::run(vellum::fillDataBuffer, state);
}
DWORD VELLUMAPI FlushDataBuffer(CodecState *state) {
    return vellum::run(vellum::flushDataBuffer, state);
}

} // extern "C"
