// Growth of the position list, and the way from positions to bits.
#include "codec/changing_elements.h"

#include "codec/wide_moves.h"
#include "support/byte_order.h"
#include "support/checked_size.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace vellum {
namespace {

// Room for the lines of ordinary fax pages, so that lists rarely grow.
constexpr DWORD kFirstCapacity = 5008;

// Sets runs of bits in a cleared line, one 32-bit word at a time: the word being worked on is kept aside and goes into
// the line when another one is begun. The last word may reach into the line buffer's slack, with zero bits.
class WordPainter {
public:
    explicit WordPainter(BYTE *line) : line_(line) {}
    WordPainter(const WordPainter &) = delete;
    WordPainter &operator=(const WordPainter &) = delete;
    ~WordPainter() { put(); }

    // Sets the bits from start up to, not including, end; start < end.
    void setBits(LONG start, LONG end) {
        begin(start / kBits);
        const DWORD fromStart = kAllBits >> (start % kBits);
        const LONG last = end / kBits;
        if (last == word_) {
            bits_ |= fromStart & ~(kAllBits >> (end % kBits));
            return;
        }
        bits_ |= fromStart;
        while (word_ + 1 < last) {
            begin(word_ + 1);
            bits_ = kAllBits;
        }
        if (end % kBits != 0) {
            begin(last);
            bits_ = ~(kAllBits >> (end % kBits));
        }
    }

private:
    static constexpr LONG kBits = 32;
    static constexpr DWORD kAllBits = 0xFFFFFFFF;

    void begin(LONG word) {
        if (word != word_) {
            put();
            word_ = word;
            bits_ = 0;
        }
    }

    // Words may be begun twice, so what a word holds stays.
    void put() {
        BYTE *at = line_ + word_ * static_cast<LONG>(sizeof(DWORD));
        const DWORD value = load<DWORD>(at) | swapped(bits_);
        std::memcpy(at, &value, sizeof value);
    }

    BYTE *line_;
    LONG word_ = 0;
    DWORD bits_ = 0;
};

} // namespace

bool ChangingElements::grow() {
    const DWORD wanted = capacity_ == 0 ? kFirstCapacity : capacity_ * 2;
    if (wanted <= capacity_ || ((Size(wanted) + Size(kFrontSentinels)) * Size(sizeof(LONG))).tooLarge()) {
        return false;
    }
    std::unique_ptr<LONG[]> larger(new (std::nothrow) LONG[kFrontSentinels + wanted]);
    if (larger == nullptr) {
        return false;
    }
    std::fill_n(larger.get(), kFrontSentinels, std::numeric_limits<LONG>::min());
    if (positions_ != nullptr) {
        std::copy_n(positions(), count_, larger.get() + kFrontSentinels);
    }
    positions_ = std::move(larger);
    capacity_ = wanted;
    return true;
}

bool ChangingElements::isOrdered() const {
    return positions()[0] >= 0 && std::is_sorted(positions(), positions() + count_);
}

void drawLine(const ChangingElements &elements, BYTE *line, LONG bytesPerLine, LONG width) {
    fillLine(line, 0, static_cast<DWORD>(bytesPerLine));
    const LONG *positions = elements.positions();
    const LONG *end = positions + (elements.count() & ~DWORD{1});
    if (positions == end) {
        return;
    }
    WordPainter painter(line);
    for (; positions != end; positions += 2) {
        const LONG start = std::max<LONG>(positions[0], 0);
        // By design: an end before its start is one pixel, so that a line of overlapping runs keeps its marks.
        const LONG stop = std::min(positions[1] < positions[0] ? start + 1 : positions[1], width);
        if (start < stop) {
            painter.setBits(start, stop);
        }
    }
}

} // namespace vellum
