// Typed transfers: arrays of TIFF field values between a stream and memory, in the machine's byte order there.
// LongRead and LongWrite are their exported forms.
#pragma once

#include "core/error.h"
#include "core/stream.h"

#include <optional>

namespace vellum {

// The TIFF field types that the library treats by type; all others are bytes to it.
constexpr DWORD kByte = 1;
constexpr DWORD kShort = 3;
constexpr DWORD kLong = 4;
constexpr DWORD kRational = 5;
constexpr DWORD kSlong = 9;

constexpr LONG kReversedBits = 2; // fill order

// Bytes that one value of a TIFF field type takes. SSHORT and SRATIONAL count as bytes: files that hold them are moved
// byte for byte, in both directions.
DWORD typeSize(DWORD type);

// Reverses the bytes of every value in place: 2 for SHORT, 4 for LONG and SLONG, all 8 as one unit for RATIONAL.
void swapValues(BYTE *values, DWORD type, DWORD count);

// Reads count values and converts them; Error::Io when the stream ends early.
Error readValues(StreamHandle stream, DWORD type, DWORD count, BYTE *buffer, LONG byteOrder, LONG fillOrder);

// Converts count values and writes them. The buffer is converted in place when there is no memory for a copy.
Error writeValues(StreamHandle stream, DWORD type, DWORD count, BYTE *buffer, LONG byteOrder, LONG fillOrder);

} // namespace vellum
