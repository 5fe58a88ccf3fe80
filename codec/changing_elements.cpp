// Growth of the position list, and the way from positions to bits.
#include "codec/changing_elements.h"

#include "codec/buffers.h"
#include "support/checked_size.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace vellum {
namespace {

// Room for the lines of ordinary fax pages, so that lists rarely grow.
constexpr DWORD kFirstCapacity = 5008;

// Clears a line in blocks of a fixed size, which compilers turn into a few wide stores; a call for the odd 200 bytes of
// a fax line would cost more than the stores. The last block may reach into the line buffer's slack.
void clearLine(BYTE *line, LONG bytes) {
    constexpr LONG kBlock = 64;
    static_assert(kBlock <= static_cast<LONG>(kLineSlack));
    for (LONG at = 0; at < bytes; at += kBlock) {
        std::memset(line + at, 0, kBlock);
    }
}

// Sets the bits from start up to, not including, end; both lie inside the line.
void setBits(BYTE *line, LONG start, LONG end) {
    const LONG firstByte = start >> 3;
    const LONG lastByte = end >> 3;
    const auto firstMask = static_cast<BYTE>(0xFF >> (start & 7));
    const auto lastMask = static_cast<BYTE>(~(0xFF >> (end & 7)));
    if (firstByte == lastByte) {
        line[firstByte] |= static_cast<BYTE>(firstMask & lastMask);
        return;
    }
    line[firstByte] |= firstMask;
    const LONG whole = lastByte - firstByte - 1;
    if (whole > 0) {
        std::memset(line + firstByte + 1, 0xFF, static_cast<std::size_t>(whole));
    }
    if (lastMask != 0) {
        line[lastByte] |= lastMask;
    }
}

} // namespace

bool ChangingElements::grow() {
    const DWORD wanted = capacity_ == 0 ? kFirstCapacity : capacity_ * 2;
    if (wanted <= capacity_ || (Size(wanted) * Size(sizeof(LONG))).tooLarge()) {
        return false;
    }
    std::unique_ptr<LONG[]> larger(new (std::nothrow) LONG[wanted]);
    if (larger == nullptr) {
        return false;
    }
    std::copy_n(positions_.get(), count_, larger.get());
    positions_ = std::move(larger);
    capacity_ = wanted;
    return true;
}

void drawLine(const ChangingElements &elements, BYTE *line, LONG bytesPerLine, LONG width) {
    clearLine(line, bytesPerLine);
    const LONG *positions = elements.positions();
    for (DWORD i = 0; i + 1 < elements.count(); i += 2) {
        const LONG start = std::max<LONG>(positions[i], 0);
        // By design: an end before its start is one pixel, so that a line of overlapping runs keeps its marks.
        const LONG end = std::min(positions[i + 1] < positions[i] ? start + 1 : positions[i + 1], width);
        if (start < end) {
            setBits(line, start, end);
        }
    }
}

} // namespace vellum
