// The record of one open TIFF and the views that the rest of the library looks at it through.
//
// A TiffHandle is a movable block of exactly 14176 bytes: a 176-byte head and 1000 image slots. It holds no open file:
// every reading call opens the file again and closes it.
#pragma once

#include "core/error.h"
#include "core/stream.h"

#include <cstddef>

namespace vellum {

constexpr DWORD kMaxImages = 1000;
constexpr DWORD kPathBytes = 150; // with the terminator
constexpr DWORD kWholeFile = 0xFFFFFFFF;
constexpr WORD kRegistered = 0x4000;

#pragma pack(push, 1)

struct TiffImageSlot {
    DWORD directoryOffset; // of the image's directory in the stream
    DWORD directorySize;   // sum of the lengths of its TiffTag records; sticks at 0xFFFFFFFF
    HGLOBAL directory;     // its TiffImageDir while it is registered
    WORD flags;            // low byte: subfile type; kRegistered
};
static_assert(sizeof(TiffImageSlot) == 14);

struct TiffFileBlock {
    char pathName[kPathBytes]; // empty for a memory TIFF
    DWORD fileHandle;          // kept while a write or copy holds the file open; else 0
    DWORD openFlags;           // OpenFile flags with which the writers reopen the file
    DWORD lastLinkPos;         // stream position of the last link field; 4 without images
    HGLOBAL memHandle;         // the caller's block; null for a file
    DWORD memSize;             // its TIFF's bytes; kWholeFile for a file
    WORD byteOrder;
    DWORD imageCount;
    TiffImageSlot images[kMaxImages];
};
static_assert(offsetof(TiffFileBlock, images) == 176);
static_assert(sizeof(TiffFileBlock) == 14176);

#pragma pack(pop)

using TiffFileView = GlobalView<TiffFileBlock>;

// Opens a stream of its own on the TIFF, for reading: its path, or a memory stream over its block.
StreamHandle openForReading(const TiffFileBlock &file);

// Copies the block that a memory stream holds now back into the record (a write may have moved it).
void storeBackMemoryBlock(TiffFileBlock &file, StreamHandle stream);

// The same with its size, behind a run that may have grown it. A stream that lost its block (it could not grow) changes
// nothing: the block that the record names is still the caller's.
void storeBackMemoryTiff(TiffFileBlock &file, StreamHandle stream);

} // namespace vellum
