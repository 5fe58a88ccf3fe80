// Byte streams behind one integer handle: files of the operating system and memory streams.
//
// Above 0 a handle is a file's (HFILE); -2 to -30 name a slot of the memory stream table; every other value is invalid.
// The primitives answer -1 on failure and set no error; only the typed transfers (LongRead, LongWrite) do.
#pragma once

#include "support/global_block.h"
#include "vellum32.h"

namespace vellum {

constexpr StreamHandle kNoStream = -1;

// Opens a stream over a block that stays the caller's. It is always slot 2: there is one memory stream at a time, and
// opening another takes the slot over.
StreamHandle openMemoryStream(HGLOBAL block, DWORD size);

// The block of a memory stream as it is now (writing may have moved it); null for a file.
HGLOBAL memoryStreamBlock(StreamHandle stream);

// Opens a file by OpenFile flags; paths beyond OpenFile's 127 characters open too. kNoStream on failure.
StreamHandle openFileStream(const char *path, UINT flags);

constexpr UINT kOpenRead = 0x20;   // OF_READ | OF_SHARE_DENY_WRITE
constexpr UINT kOpenAppend = 0x32; // OF_READWRITE | OF_SHARE_DENY_READ
constexpr UINT kOpenCreate = 0x1032;

// The primitives. Origins of seekStream: FILE_BEGIN, FILE_CURRENT, FILE_END (a memory stream counts back from its end).
LONG readStream(StreamHandle stream, BYTE *buffer, LONG count);
LONG writeStream(StreamHandle stream, const BYTE *buffer, DWORD count);
LONG seekStream(StreamHandle stream, LONG offset, LONG origin);
LONG tellStream(StreamHandle stream);
LONG sizeOfStream(StreamHandle stream);
LONG closeStream(StreamHandle stream);

// Whole buffers are moved in pieces of this many bytes.
constexpr DWORD kTransferPiece = 32000;

// Reads up to count bytes, piece by piece. Result: the bytes read before the stream ended. Sets no error.
DWORD readAvailable(StreamHandle stream, BYTE *buffer, DWORD count);

// Reads exactly count bytes; false when the stream ends early. Sets no error.
bool readBytes(StreamHandle stream, BYTE *buffer, DWORD count);

// Owns an open stream and closes it.
class Stream {
public:
    explicit Stream(StreamHandle handle) : handle_(handle) {}
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;
    ~Stream() {
        if (*this) {
            closeStream(handle_);
        }
    }
    explicit operator bool() const { return handle_ != kNoStream; }
    [[nodiscard]] StreamHandle get() const { return handle_; }

private:
    StreamHandle handle_;
};

} // namespace vellum
