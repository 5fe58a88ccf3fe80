// Deliberately naive PackBits and LZW encoders for tests, and the differencing that goes with LZW.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace vellum::test {

// One row: repeats of three or more bytes become runs, everything else literals; no packet crosses the row's end.
inline std::vector<std::uint8_t> packBits(const std::vector<std::uint8_t> &row) {
    std::vector<std::uint8_t> out;
    const auto repeats = [&row](std::size_t at) {
        std::size_t end = at;
        while (end < row.size() && row[end] == row[at] && end - at < 128) {
            ++end;
        }
        return end - at;
    };
    for (std::size_t at = 0; at < row.size();) {
        if (const std::size_t run = repeats(at); run >= 3) {
            out.push_back(static_cast<std::uint8_t>(257 - run));
            out.push_back(row[at]);
            at += run;
            continue;
        }
        const std::size_t start = at;
        while (at < row.size() && at - start < 128 && repeats(at) < 3) {
            ++at;
        }
        out.push_back(static_cast<std::uint8_t>(at - start - 1));
        for (std::size_t i = start; i < at; ++i) {
            out.push_back(row[i]);
        }
    }
    return out;
}

// Codes of 9 to 12 bits, most significant bit first.
class LzwCodes {
public:
    LzwCodes &code(unsigned value, unsigned width) {
        for (unsigned bit = width; bit-- > 0;) {
            if (used_++ % 8 == 0) {
                out_.push_back(0);
            }
            out_.back() = static_cast<std::uint8_t>(out_.back() | (value >> bit & 1U) << (7 - (used_ - 1) % 8));
        }
        return *this;
    }
    [[nodiscard]] const std::vector<std::uint8_t> &bytes() const { return out_; }

private:
    std::vector<std::uint8_t> out_;
    std::size_t used_ = 0;
};

inline constexpr unsigned kLzwClear = 256;
inline constexpr unsigned kLzwEnd = 257;

// What an encoder does when code 4094 has been given out: Clear, or go on with what its table holds at 4096.
enum class FullTable { Clear, Keep };

// One strip: Clear, the codes, EndOfInformation.
inline std::vector<std::uint8_t> encodeLzw(const std::vector<std::uint8_t> &data, FullTable full = FullTable::Clear) {
    LzwCodes out;
    std::map<std::pair<unsigned, std::uint8_t>, unsigned> table; // a string's code and one byte more
    unsigned next = 258;
    unsigned width = 9;
    const auto give = [&](unsigned code) {
        out.code(code, width);
        ++next;
        width = next >= 2048 ? 12 : next >= 1024 ? 11 : next >= 512 ? 10 : 9;
    };
    out.code(kLzwClear, width);
    constexpr unsigned kNothing = 0xFFFF;
    unsigned string = kNothing;
    for (const std::uint8_t byte : data) {
        if (string == kNothing) {
            string = byte;
            continue;
        }
        if (const auto longer = table.find({string, byte}); longer != table.end()) {
            string = longer->second;
            continue;
        }
        if (next < 4096) {
            table[{string, byte}] = next;
        }
        give(string);
        string = byte;
        if (next == 4095 && full == FullTable::Clear) {
            out.code(kLzwClear, width);
            table.clear();
            next = 258;
            width = 9;
        }
    }
    if (string != kNothing) {
        give(string);
    }
    return out.code(kLzwEnd, width).bytes();
}

// Each byte becomes its difference from the one that many places before it; for 8-bit (1) and 24-bit (3) rows.
inline std::vector<std::uint8_t> differences(const std::vector<std::uint8_t> &row, std::size_t distance) {
    std::vector<std::uint8_t> out = row;
    for (std::size_t i = distance; i < row.size(); ++i) {
        out[i] = static_cast<std::uint8_t>(row[i] - row[i - distance]);
    }
    return out;
}

// The same for rows of two 4-bit samples a byte, the left one in the high half.
inline std::vector<std::uint8_t> nibbleDifferences(const std::vector<std::uint8_t> &row) {
    std::vector<std::uint8_t> out = row;
    unsigned before = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
        const unsigned high = row[i] >> 4;
        const unsigned low = row[i] & 15U;
        out[i] = static_cast<std::uint8_t>(((high - before) & 15U) << 4 | ((low - high) & 15U));
        before = low;
    }
    return out;
}

} // namespace vellum::test
