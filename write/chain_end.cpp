// Reads links and the numbers of entries between them, nothing else.
#include "write/chain_end.h"

#include "support/byte_order.h"

#include <cstdint>
#include <optional>

namespace vellum {
namespace {

constexpr std::uint64_t kEntryBytes = 12;
constexpr std::uint64_t kLastPosition = 0x7FFFFFFF;

template <class Number>
std::optional<Number> readNumber(StreamHandle stream, WORD byteOrder, DWORD position) {
    const auto place = static_cast<LONG>(position);
    BYTE bytes[sizeof(Number)];
    if (seekStream(stream, place, FILE_BEGIN) != place || !readBytes(stream, bytes, sizeof bytes)) {
        return std::nullopt;
    }
    return load<Number>(bytes, byteOrder);
}

enum class Step { Next, End, Broken };

// Moves from a link field to that of the directory it leads to.
Step follow(StreamHandle stream, WORD byteOrder, DWORD &linkPosition) {
    const auto directory = readNumber<DWORD>(stream, byteOrder, linkPosition);
    if (!directory) {
        return Step::Broken;
    }
    if (*directory == 0) {
        return Step::End;
    }
    const auto entries = readNumber<WORD>(stream, byteOrder, *directory);
    const std::uint64_t next = *directory + sizeof(WORD) + entries.value_or(0) * kEntryBytes;
    if (!entries || next > kLastPosition) {
        return Step::Broken;
    }
    linkPosition = static_cast<DWORD>(next);
    return Step::Next;
}

} // namespace

Error findLastLink(StreamHandle stream, WORD byteOrder, DWORD most, DWORD &linkPosition) {
    for (DWORD left = most;; --left) {
        switch (follow(stream, byteOrder, linkPosition)) {
        case Step::Next:
            break;
        case Step::End:
            return Error::None;
        case Step::Broken:
            return Error::Io;
        }
        if (left == 0) {
            return Error::IndexOutOfRange;
        }
    }
}

bool isLinkOfChain(StreamHandle stream, WORD byteOrder, DWORD most, DWORD linkPosition) {
    DWORD position = kFirstLinkPosition;
    for (DWORD left = most; position != linkPosition; --left) {
        if (left == 0 || follow(stream, byteOrder, position) != Step::Next) {
            return false;
        }
    }
    return true;
}

} // namespace vellum
