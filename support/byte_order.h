// Byte order and bit order of what files hold. Reads never assume alignment.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstring>

namespace vellum {

constexpr WORD kIntelOrder = 0x4949;
constexpr WORD kMotorolaOrder = 0x4D4D;

constexpr WORD swapped(WORD value) {
    return static_cast<WORD>((value >> 8) | (value << 8));
}
constexpr DWORD swapped(DWORD value) {
    return (value >> 24) | ((value >> 8) & 0xFF00u) | ((value << 8) & 0xFF0000u) | (value << 24);
}

// A number in machine order at any address.
template <class T>
T load(const void *from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

// A number in a file's byte order at any address. Every order but "MM" counts as the machine's.
template <class T>
T load(const void *from, WORD byteOrder) {
    const T value = load<T>(from);
    return byteOrder == kMotorolaOrder ? swapped(value) : value;
}

// Reverses the bits within every byte: FillOrder 2 data become FillOrder 1 data and the other way round.
void reverseBits(BYTE *bytes, std::size_t count);

} // namespace vellum
