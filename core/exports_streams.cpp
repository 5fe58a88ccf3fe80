// The exported stream functions.
#include "core/typed_transfer.h"

namespace {

DWORD finish(vellum::Error error) {
    return error == vellum::Error::None ? 1 : vellum::failed(error);
}

} // namespace

extern "C" {

LONG VELLUMAPI mRead(StreamHandle stream, BYTE *buffer, LONG count) {
    return vellum::readStream(stream, buffer, count);
}

LONG VELLUMAPI mWrite(StreamHandle stream, const BYTE *buffer, DWORD count) {
    return vellum::writeStream(stream, buffer, count);
}

LONG VELLUMAPI mSeek(StreamHandle stream, LONG offset, LONG origin) {
    return vellum::seekStream(stream, offset, origin);
}

LONG VELLUMAPI mTell(StreamHandle stream) {
    return vellum::tellStream(stream);
}

LONG VELLUMAPI mSize(StreamHandle stream) {
    return vellum::sizeOfStream(stream);
}

LONG VELLUMAPI mClose(StreamHandle stream) {
    return vellum::closeStream(stream);
}

DWORD VELLUMAPI LongRead(StreamHandle stream, DWORD type, DWORD count, BYTE *buffer, LONG byteOrder, LONG fillOrder) {
    return finish(vellum::readValues(stream, type, count, buffer, byteOrder, fillOrder));
}

DWORD VELLUMAPI LongWrite(StreamHandle stream, LONG type, DWORD count, BYTE *buffer, LONG byteOrder, LONG fillOrder) {
    return finish(vellum::writeValues(stream, static_cast<DWORD>(type), count, buffer, byteOrder, fillOrder));
}

} // extern "C"
