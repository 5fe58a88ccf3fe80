// Numbers in both byte orders, and bit reversal against the plain definition.
#include "support/byte_order.h"

#include <gtest/gtest.h>

#include <vector>

namespace vellum {
namespace {

TEST(ByteOrder, SwapsNumbersOfTwoAndFourBytes) {
    EXPECT_EQ(swapped(WORD{0x1234}), 0x3412);
    EXPECT_EQ(swapped(DWORD{0x12345678}), 0x78563412u);
}

TEST(ByteOrder, LoadsAtAnyAddressInMachineOrder) {
    const BYTE bytes[] = {0xFF, 0x78, 0x56, 0x34, 0x12};
    EXPECT_EQ(load<DWORD>(bytes + 1), 0x12345678u);
    EXPECT_EQ(load<WORD>(bytes + 3), 0x1234);
}

TEST(ByteOrder, OnlyMotorolaOrderSwaps) {
    const BYTE bytes[] = {0x12, 0x34};
    EXPECT_EQ(load<WORD>(bytes, kMotorolaOrder), 0x1234);
    EXPECT_EQ(load<WORD>(bytes, kIntelOrder), 0x3412);
    EXPECT_EQ(load<WORD>(bytes, WORD{0}), 0x3412);
}

BYTE plainlyReversed(BYTE value) {
    unsigned reversed = 0;
    for (unsigned bit = 0; bit < 8; ++bit) {
        reversed |= ((value >> bit) & 1u) << (7 - bit);
    }
    return static_cast<BYTE>(reversed);
}

TEST(ByteOrder, ReversesTheBitsOfEveryByteValue) {
    std::vector<BYTE> bytes(256);
    for (unsigned value = 0; value < 256; ++value) {
        bytes[value] = static_cast<BYTE>(value);
    }
    reverseBits(bytes.data(), bytes.size());
    for (unsigned value = 0; value < 256; ++value) {
        EXPECT_EQ(bytes[value], plainlyReversed(static_cast<BYTE>(value))) << value;
    }
}

TEST(ByteOrder, ReversesJustTheBytesItIsGiven) {
    for (std::size_t start = 0; start < 4; ++start) {
        for (std::size_t count = 0; count <= 13; ++count) {
            std::vector<BYTE> bytes(24, 0x01);
            reverseBits(bytes.data() + start, count);
            for (std::size_t i = 0; i < bytes.size(); ++i) {
                const bool inside = i >= start && i < start + count;
                EXPECT_EQ(bytes[i], inside ? 0x80 : 0x01) << "start " << start << " count " << count << " at " << i;
            }
        }
    }
}

} // namespace
} // namespace vellum
