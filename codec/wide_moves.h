// Short moves in pieces of a fixed size, which compilers turn into single wide loads and stores: a call for the few
// bytes of a packet, or of a fax line, would cost more than the move. They may read and write up to a piece beyond the
// count; the slack of the line and code buffers covers that.
#pragma once

#include "codec/buffers.h"

#include <cstring>

namespace vellum {

constexpr DWORD kMovePiece = 16;
static_assert(kMovePiece <= kCodeSlack && kMovePiece <= kLineSlack);

// Lines, and what is long as lines are, go by larger pieces.
constexpr DWORD kLinePiece = 64;
static_assert(kLinePiece <= kLineSlack);

inline void fillLine(BYTE *to, BYTE value, DWORD count) {
    for (DWORD at = 0; at < count; at += kLinePiece) {
        std::memset(to + at, value, kLinePiece);
    }
}

inline void copyInPieces(BYTE *to, const BYTE *from, DWORD count) {
    for (DWORD at = 0; at < count; at += kMovePiece) {
        std::memcpy(to + at, from + at, kMovePiece);
    }
}

inline void fillInPieces(BYTE *to, BYTE value, DWORD count) {
    for (DWORD at = 0; at < count; at += kMovePiece) {
        std::memset(to + at, value, kMovePiece);
    }
}

} // namespace vellum
