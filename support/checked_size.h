// Byte counts that cannot wrap. Sizes are computed in 64 bits, stick at "too large" once they leave the 32-bit range,
// and reach an allocation only through fit().
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

namespace vellum {

class Size {
public:
    // The largest block a 32-bit program can sensibly ask for; everything above counts as too large.
    static constexpr std::uint64_t kLargest = 0x7FFFFFFF;

    constexpr Size(std::uint64_t bytes) : bytes_(bytes > kLargest ? kTooLarge : bytes) {}

    friend constexpr Size operator+(Size a, Size b) { return Size(a.bytes_ + b.bytes_); }
    // Both operands are below 2^32, so the product cannot wrap in 64 bits.
    friend constexpr Size operator*(Size a, Size b) { return Size(a.bytes_ * b.bytes_); }

    [[nodiscard]] constexpr bool tooLarge() const { return bytes_ > kLargest; }

    // The number itself, or nothing when no allocation can have this size.
    [[nodiscard]] constexpr std::optional<DWORD> fit() const {
        return tooLarge() ? std::nullopt : std::optional<DWORD>(static_cast<DWORD>(bytes_));
    }

private:
    static constexpr std::uint64_t kTooLarge = 0xFFFFFFFF;
    std::uint64_t bytes_;
};

} // namespace vellum
