// Bit reversal of whole buffers: four bytes at a time by swapping nibbles, pairs and single bits.
#include "support/byte_order.h"

#include <cstdint>

namespace vellum {
namespace {

template <class Word>
constexpr Word reversedInBytes(Word v) {
    constexpr Word nibbles = static_cast<Word>(0x0F0F0F0F0F0F0F0Full);
    constexpr Word pairs = static_cast<Word>(0x3333333333333333ull);
    constexpr Word bits = static_cast<Word>(0x5555555555555555ull);
    v = static_cast<Word>(((v >> 4) & nibbles) | ((v & nibbles) << 4));
    v = static_cast<Word>(((v >> 2) & pairs) | ((v & pairs) << 2));
    return static_cast<Word>(((v >> 1) & bits) | ((v & bits) << 1));
}

static_assert(reversedInBytes<std::uint8_t>(0x01) == 0x80);
static_assert(reversedInBytes<std::uint32_t>(0x01020304u) == 0x8040C020u);

} // namespace

void reverseBits(BYTE *bytes, std::size_t count) {
    for (; count >= sizeof(std::uint32_t); count -= sizeof(std::uint32_t), bytes += sizeof(std::uint32_t)) {
        const auto reversed = reversedInBytes(load<std::uint32_t>(bytes));
        std::memcpy(bytes, &reversed, sizeof reversed);
    }
    for (; count > 0; --count, ++bytes) {
        *bytes = reversedInBytes<std::uint8_t>(*bytes);
    }
}

} // namespace vellum
