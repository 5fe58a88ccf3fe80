// SHA-256 for tests that compare decoded pages with published digests.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace vellum::test {

class Sha256 {
public:
    void add(const void *data, std::size_t size) {
        const auto *bytes = static_cast<const std::uint8_t *>(data);
        total_ += size;
        while (size > 0) {
            const std::size_t taken = size < 64 - held_ ? size : 64 - held_;
            std::memcpy(block_.data() + held_, bytes, taken);
            held_ += taken;
            bytes += taken;
            size -= taken;
            if (held_ == 64) {
                digestBlock();
                held_ = 0;
            }
        }
    }

    // The digest in lower-case hexadecimal; nothing may be added afterwards.
    std::string hex() {
        const std::uint64_t bits = total_ * 8;
        const std::uint8_t one = 0x80;
        const std::uint8_t zero = 0;
        add(&one, 1);
        while (held_ != 56) {
            add(&zero, 1);
        }
        std::array<std::uint8_t, 8> length{};
        for (unsigned i = 0; i < 8; ++i) {
            length[i] = static_cast<std::uint8_t>(bits >> (56 - 8 * i));
        }
        add(length.data(), length.size());
        std::string text;
        for (const std::uint32_t word : state_) {
            for (int shift = 28; shift >= 0; shift -= 4) {
                text += "0123456789abcdef"[word >> shift & 15];
            }
        }
        return text;
    }

private:
    static std::uint32_t rotate(std::uint32_t value, unsigned bits) { return value >> bits | value << (32 - bits); }

    void digestBlock() {
        std::array<std::uint32_t, 64> w{};
        for (unsigned i = 0; i < 16; ++i) {
            w[i] = static_cast<std::uint32_t>(block_[4 * i]) << 24 |
                   static_cast<std::uint32_t>(block_[4 * i + 1]) << 16 |
                   static_cast<std::uint32_t>(block_[4 * i + 2]) << 8 | block_[4 * i + 3];
        }
        for (unsigned i = 16; i < 64; ++i) {
            const std::uint32_t s0 = rotate(w[i - 15], 7) ^ rotate(w[i - 15], 18) ^ w[i - 15] >> 3;
            const std::uint32_t s1 = rotate(w[i - 2], 17) ^ rotate(w[i - 2], 19) ^ w[i - 2] >> 10;
            w[i] = w[i - 16] + s0 + w[i - 7] + s1;
        }
        std::array<std::uint32_t, 8> v = state_;
        for (unsigned i = 0; i < 64; ++i) {
            const std::uint32_t s1 = rotate(v[4], 6) ^ rotate(v[4], 11) ^ rotate(v[4], 25);
            const std::uint32_t choice = (v[4] & v[5]) ^ (~v[4] & v[6]);
            const std::uint32_t t1 = v[7] + s1 + choice + kRound[i] + w[i];
            const std::uint32_t s0 = rotate(v[0], 2) ^ rotate(v[0], 13) ^ rotate(v[0], 22);
            const std::uint32_t majority = (v[0] & v[1]) ^ (v[0] & v[2]) ^ (v[1] & v[2]);
            v = {t1 + s0 + majority, v[0], v[1], v[2], v[3] + t1, v[4], v[5], v[6]};
        }
        for (unsigned i = 0; i < 8; ++i) {
            state_[i] += v[i];
        }
    }

    static constexpr std::array<std::uint32_t, 64> kRound = {
        0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
        0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
        0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
        0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
        0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
        0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
        0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
        0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

    std::array<std::uint32_t, 8> state_ = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                           0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<std::uint8_t, 64> block_{};
    std::size_t held_ = 0;
    std::uint64_t total_ = 0;
};

} // namespace vellum::test
