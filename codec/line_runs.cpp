// From bits to positions: pixels that differ from their left neighbour, 32 at a time; pieces of one colour are passed
// over whole.
#include "codec/line_runs.h"

#include "codec/buffers.h"
#include "support/byte_order.h"

#include <emmintrin.h>

#include <bit>
#include <new>

namespace vellum {
namespace {

constexpr LONG kWordBits = 32;
constexpr LONG kWordBytes = kWordBits / 8;
// What is looked at in one go: a piece for whether one colour goes on, and stretches of pieces where it does.
constexpr LONG kPieceBytes = 16;
constexpr LONG kPieceBits = kPieceBytes * 8;
constexpr LONG kStretchBytes = 4 * kPieceBytes;

// All bits set in each number that is equal to that of the colour.
__m128i matches(const BYTE *piece, __m128i colour) {
    return _mm_cmpeq_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i *>(piece)), colour);
}
bool allSet(__m128i bits) {
    return _mm_movemask_epi8(bits) == 0xFFFF;
}
bool stretchMatches(const BYTE *stretch, __m128i colour) {
    const __m128i first = _mm_and_si128(matches(stretch, colour), matches(stretch + kPieceBytes, colour));
    const __m128i second =
        _mm_and_si128(matches(stretch + 2 * kPieceBytes, colour), matches(stretch + 3 * kPieceBytes, colour));
    return allSet(_mm_and_si128(first, second));
}

// Appends the positions of changing elements to a list.
class ElementFinder {
public:
    explicit ElementFinder(LONG *next) : next_(next) {}

    // The first piece that is not wholly of the colour that the pixels before it end with; end if there is none.
    [[nodiscard]] const BYTE *passColour(const BYTE *piece, const BYTE *end) const {
        const __m128i colour = _mm_set1_epi32(static_cast<int>(colour_));
        while (piece != end && allSet(matches(piece, colour))) {
            piece += kPieceBytes;
            while (end - piece >= kStretchBytes && stretchMatches(piece, colour)) {
                piece += kStretchBytes;
            }
        }
        return piece;
    }

    void addPiece(const BYTE *piece, LONG position) {
        for (LONG bytes = 0; bytes < kPieceBytes; bytes += kWordBytes) {
            add(piece + bytes, position + bytes * 8, kAllBits);
        }
    }

    // 32 pixels that begin at a position; only those of the mask count.
    void add(const BYTE *word, LONG position, DWORD mask) {
        const DWORD pixels = swapped(load<DWORD>(word));
        DWORD changes = (pixels ^ (pixels >> 1 | (colour_ & kTopBit))) & mask;
        colour_ = 0 - (pixels & 1);
        while (changes != 0) {
            const int zeros = std::countl_zero(changes);
            *next_++ = position + zeros;
            changes ^= kTopBit >> zeros;
        }
    }

    [[nodiscard]] LONG *end() const { return next_; }

    static constexpr DWORD kAllBits = 0xFFFFFFFF;

private:
    static constexpr DWORD kTopBit = 0x80000000;

    LONG *next_;
    DWORD colour_ = 0; // all bits of the pixel before, which is white before the first one
};

} // namespace

bool LineRuns::allocate(LONG width) {
    positions_.reset(new (std::nothrow) LONG[static_cast<DWORD>(1 + width + kSentinels)]);
    if (positions_ == nullptr) {
        return false;
    }
    width_ = width;
    positions_[0] = kFrontSentinel;
    setWhite();
    return true;
}

void LineRuns::measure(const BYTE *line) {
    ElementFinder finder(first());
    const BYTE *const end = line + width_ / kPieceBits * kPieceBytes;
    const BYTE *at = line;
    while ((at = finder.passColour(at, end)) != end) {
        finder.addPiece(at, static_cast<LONG>(at - line) * 8);
        at += kPieceBytes;
    }
    // The words that no whole piece covers are often of one colour, with some of the piece before them.
    const BYTE *const wordsEnd = line + width_ / kWordBits * kWordBytes;
    if (wordsEnd - line >= kPieceBytes && finder.passColour(wordsEnd - kPieceBytes, wordsEnd) == wordsEnd) {
        at = wordsEnd;
    }
    for (; at != wordsEnd; at += kWordBytes) {
        finder.add(at, static_cast<LONG>(at - line) * 8, ElementFinder::kAllBits);
    }
    const LONG position = static_cast<LONG>(at - line) * 8;
    if (position < width_) {
        finder.add(at, position, ~(ElementFinder::kAllBits >> (width_ - position)));
    }
    close(finder.end());
}

} // namespace vellum
