// Pictures for tests from a small fixed random sequence: the same on every run and every machine.
#pragma once

#include "support/ccitt_writer.h"

#include <cstdint>
#include <vector>

namespace vellum::test {

class Random {
public:
    explicit Random(std::uint32_t seed) : state_(seed * 2654435761U + 12345U) {}

    // 0 to bound - 1.
    std::uint32_t below(std::uint32_t bound) {
        state_ = state_ * 1664525U + 1013904223U;
        return static_cast<std::uint32_t>((std::uint64_t{state_} * bound) >> 32);
    }

private:
    std::uint32_t state_;
};

inline std::vector<BYTE> randomBytes(std::size_t count, std::uint32_t seed) {
    Random random(seed);
    std::vector<BYTE> bytes(count);
    for (BYTE &byte : bytes) {
        byte = static_cast<BYTE>(random.below(256));
    }
    return bytes;
}

// Runs of 1 to longest pixels.
inline Row randomRow(Random &random, std::uint32_t width, std::uint32_t longest) {
    Row row;
    bool black = random.below(2) == 1;
    while (row.size() < width) {
        const std::uint32_t left = width - static_cast<std::uint32_t>(row.size());
        const std::uint32_t run = 1 + random.below(longest);
        row.insert(row.end(), run < left ? run : left, black);
        black = !black;
    }
    return row;
}

// Rows that resemble the one before them, as scans do, with a fresh one now and then.
inline Rows randomRows(Random &random, std::uint32_t width, std::uint32_t height) {
    Rows rows;
    for (std::uint32_t y = 0; y < height; ++y) {
        const std::uint32_t kind = random.below(4);
        if (kind == 0 || rows.empty()) {
            rows.push_back(randomRow(random, width, 1 + random.below(2) * 70 + random.below(3) * 900));
        } else if (kind == 1) {
            rows.emplace_back(width, random.below(2) == 1);
        } else {
            Row row = rows.back();
            for (std::uint32_t i = 0; i < 1 + width / 40; ++i) {
                const std::uint32_t x = random.below(width);
                row[x] = !row[x];
            }
            rows.push_back(row);
        }
    }
    return rows;
}

// Bytes with repeats and slopes in them.
inline std::vector<std::uint8_t> randomBytes(Random &random, std::size_t size) {
    std::vector<std::uint8_t> bytes;
    while (bytes.size() < size) {
        const std::uint32_t kind = random.below(3);
        const auto value = static_cast<std::uint8_t>(random.below(256));
        for (std::uint32_t i = random.below(40); i > 0 && bytes.size() < size; --i) {
            bytes.push_back(kind == 0 ? value : static_cast<std::uint8_t>(kind == 1 ? value + i : random.below(256)));
        }
    }
    return bytes;
}

} // namespace vellum::test
