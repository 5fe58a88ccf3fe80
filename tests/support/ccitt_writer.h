// A deliberately naive CCITT encoder for tests: code words are typed out as strings of '0' and '1', rows are one bool a
// pixel (true is black), and every changing element is searched for pixel by pixel. It shares nothing with the library,
// so that the two can be held against each other, and it can write streams that no sane encoder would.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace vellum::test {

using Bytes = std::vector<std::uint8_t>;
using Row = std::vector<bool>;
using Rows = std::vector<Row>;

enum class Colour { White, Black };

// ------------------------------------------------------------------------------------------------ code words

// Index is the run length.
inline constexpr const char *kWhiteTerminating[64] = {
    "00110101", "000111",   "0111",     "1000",     "1011",     "1100",     "1110",     "1111",
    "10011",    "10100",    "00111",    "01000",    "001000",   "000011",   "110100",   "110101",
    "101010",   "101011",   "0100111",  "0001100",  "0001000",  "0010111",  "0000011",  "0000100",
    "0101000",  "0101011",  "0010011",  "0100100",  "0011000",  "00000010", "00000011", "00011010",
    "00011011", "00010010", "00010011", "00010100", "00010101", "00010110", "00010111", "00101000",
    "00101001", "00101010", "00101011", "00101100", "00101101", "00000100", "00000101", "00001010",
    "00001011", "01010010", "01010011", "01010100", "01010101", "00100100", "00100101", "01011000",
    "01011001", "01011010", "01011011", "01001010", "01001011", "00110010", "00110011", "00110100"};

inline constexpr const char *kBlackTerminating[64] = {
    "0000110111",   "010",          "11",           "10",           "011",          "0011",         "0010",
    "00011",        "000101",       "000100",       "0000100",      "0000101",      "0000111",      "00000100",
    "00000111",     "000011000",    "0000010111",   "0000011000",   "0000001000",   "00001100111",  "00001101000",
    "00001101100",  "00000110111",  "00000101000",  "00000010111",  "00000011000",  "000011001010", "000011001011",
    "000011001100", "000011001101", "000001101000", "000001101001", "000001101010", "000001101011", "000011010010",
    "000011010011", "000011010100", "000011010101", "000011010110", "000011010111", "000001101100", "000001101101",
    "000011011010", "000011011011", "000001010100", "000001010101", "000001010110", "000001010111", "000001100100",
    "000001100101", "000001010010", "000001010011", "000000100100", "000000110111", "000000111000", "000000100111",
    "000000101000", "000001011000", "000001011001", "000000101011", "000000101100", "000001011010", "000001100110",
    "000001100111"};

// Index is run length / 64 - 1, up to 1728.
inline constexpr const char *kWhiteMakeup[27] = {
    "11011",     "10010",     "010111",    "0110111",   "00110110",  "00110111",  "01100100",
    "01100101",  "01101000",  "01100111",  "011001100", "011001101", "011010010", "011010011",
    "011010100", "011010101", "011010110", "011010111", "011011000", "011011001", "011011010",
    "011011011", "010011000", "010011001", "010011010", "011000",    "010011011"};

inline constexpr const char *kBlackMakeup[27] = {
    "0000001111",    "000011001000",  "000011001001",  "000001011011",  "000000110011",  "000000110100",
    "000000110101",  "0000001101100", "0000001101101", "0000001001010", "0000001001011", "0000001001100",
    "0000001001101", "0000001110010", "0000001110011", "0000001110100", "0000001110101", "0000001110110",
    "0000001110111", "0000001010010", "0000001010011", "0000001010100", "0000001010101", "0000001011010",
    "0000001011011", "0000001100100", "0000001100101"};

// Both colours; index is run length / 64 - 28: 1792 to 2560.
inline constexpr const char *kExtendedMakeup[13] = {
    "00000001000",  "00000001100",  "00000001101",  "000000010010", "000000010011", "000000010100", "000000010101",
    "000000010110", "000000010111", "000000011100", "000000011101", "000000011110", "000000011111"};

inline constexpr const char *kEol = "000000000001";
inline constexpr const char *kPass = "0001";
inline constexpr const char *kHorizontal = "001";
// Index is offset + 3: from three to the left to three to the right.
inline constexpr const char *kVertical[7] = {"0000010", "000010", "010", "1", "011", "000011", "0000011"};

inline const char *makeupWord(Colour colour, unsigned length) {
    const unsigned step = length / 64;
    if (step >= 28) {
        return kExtendedMakeup[step - 28];
    }
    return colour == Colour::White ? kWhiteMakeup[step - 1] : kBlackMakeup[step - 1];
}

// ------------------------------------------------------------------------------------------------ writing bits

// Collects bits, most significant bit of each byte first. Every function returns the writer, so that a stream reads as
// one chain: BitWriter().eol().run(Colour::White, 9).fillToByte().bytes().
class BitWriter {
public:
    // Characters other than 0 and 1 are there for the reader's eye and are skipped.
    BitWriter &bits(std::string_view text) {
        for (const char c : text) {
            if (c == '0' || c == '1') {
                bit(c == '1');
            }
        }
        return *this;
    }
    BitWriter &bits(const BitWriter &other) {
        for (std::size_t i = 0; i < other.count_; ++i) {
            bit((other.bytes_[i / 8] >> (7 - i % 8) & 1) != 0);
        }
        return *this;
    }
    BitWriter &zeros(std::size_t count) {
        for (; count > 0; --count) {
            bit(false);
        }
        return *this;
    }
    BitWriter &byte(unsigned value) {
        for (unsigned mask = 0x80; mask != 0; mask >>= 1) {
            bit((value & mask) != 0);
        }
        return *this;
    }
    // Zero bits up to a byte boundary.
    BitWriter &fillToByte() { return zeros((8 - count_ % 8) % 8); }

    // One run: makeup codes as needed and always a terminating code.
    BitWriter &run(Colour colour, unsigned length) {
        for (; length >= 2560 + 64; length -= 2560) {
            makeup(colour, 2560);
        }
        if (length >= 64) {
            makeup(colour, length / 64 * 64);
        }
        return bits(colour == Colour::White ? kWhiteTerminating[length % 64] : kBlackTerminating[length % 64]);
    }
    BitWriter &white(unsigned length) { return run(Colour::White, length); }
    BitWriter &black(unsigned length) { return run(Colour::Black, length); }
    // A makeup code alone: a multiple of 64 from 64 to 2560.
    BitWriter &makeup(Colour colour, unsigned length) { return bits(makeupWord(colour, length)); }
    // Runs in turn, beginning with white.
    BitWriter &runs(std::initializer_list<unsigned> lengths) {
        Colour colour = Colour::White;
        for (const unsigned length : lengths) {
            run(colour, length);
            colour = colour == Colour::White ? Colour::Black : Colour::White;
        }
        return *this;
    }

    BitWriter &eol() { return bits(kEol); }
    // Fill bits before the EOL, so that it (with its tag bit, if there will be one) ends on a byte boundary.
    BitWriter &eolEndingOnByte(unsigned tagBits = 0) {
        while ((count_ + 12 + tagBits) % 8 != 0) {
            bit(false);
        }
        return eol();
    }
    BitWriter &eofb() { return eol().eol(); }
    BitWriter &pass() { return bits(kPass); }
    BitWriter &vertical(int offset) { return bits(kVertical[offset + 3]); }
    BitWriter &horizontal(Colour first, unsigned length1, unsigned length2) {
        return bits(kHorizontal)
            .run(first, length1)
            .run(first == Colour::White ? Colour::Black : Colour::White, length2);
    }

    BitWriter &bit(bool set) {
        if (count_ % 8 == 0) {
            bytes_.push_back(0);
        }
        if (set) {
            bytes_.back() = static_cast<std::uint8_t>(bytes_.back() | (0x80U >> count_ % 8));
        }
        ++count_;
        return *this;
    }

    [[nodiscard]] std::size_t bitCount() const { return count_; }
    // The stream so far, the last byte filled with zero bits.
    [[nodiscard]] const Bytes &bytes() const { return bytes_; }

private:
    Bytes bytes_;
    std::size_t count_ = 0;
};

// ------------------------------------------------------------------------------------------------ coding rows

// A row's runs, one terminated code each, beginning with a white one (of length 0 when the row begins black).
inline void appendRuns(BitWriter &out, const Row &row) {
    Colour colour = Colour::White;
    for (std::size_t at = 0; at < row.size();) {
        unsigned length = 0;
        while (at < row.size() && row[at] == (colour == Colour::Black)) {
            ++length;
            ++at;
        }
        out.run(colour, length);
        colour = colour == Colour::White ? Colour::Black : Colour::White;
    }
}

// The first pixel behind from (-1: before the row) that differs from the one to its left; the row's length when there
// is none. Left of the row everything is white.
inline int nextChange(const Row &row, int from) {
    const int width = static_cast<int>(row.size());
    bool left = from >= 0 && from < width && row[static_cast<std::size_t>(from)];
    for (int at = from + 1; at < width; ++at) {
        const bool pixel = row[static_cast<std::size_t>(at)];
        if (pixel != left) {
            return at;
        }
        left = pixel;
    }
    return width;
}

// The first changing element of the reference row behind from whose colour is the opposite of the current one.
inline int findB1(const Row &reference, int from, bool black) {
    const int width = static_cast<int>(reference.size());
    int at = nextChange(reference, from);
    while (at < width && reference[static_cast<std::size_t>(at)] == black) {
        at = nextChange(reference, at);
    }
    return at;
}

// One row in the two-dimensional code.
inline void appendTwoDimensional(BitWriter &out, const Row &reference, const Row &row) {
    const int width = static_cast<int>(row.size());
    int a0 = -1;
    bool black = false;
    while (a0 < width) {
        int a1 = a0 < 0 && !row.empty() && row[0] ? 0 : nextChange(row, a0);
        const int b1 = findB1(reference, a0, black);
        const int b2 = nextChange(reference, b1);
        if (b2 < a1) {
            out.pass();
            a0 = b2;
            continue;
        }
        if (a1 - b1 >= -3 && a1 - b1 <= 3) {
            out.vertical(a1 - b1);
            a0 = a1;
            black = !black;
            continue;
        }
        const int a2 = nextChange(row, a1);
        out.horizontal(black ? Colour::Black : Colour::White, static_cast<unsigned>(a1 - (a0 < 0 ? 0 : a0)),
                       static_cast<unsigned>(a2 - a1));
        a0 = a2;
    }
}

// ------------------------------------------------------------------------------------------------ whole streams

// Modified Huffman as TIFF has it: no EOL, every row starts on a byte.
inline Bytes encodeModifiedHuffman(const Rows &rows) {
    BitWriter out;
    for (const Row &row : rows) {
        appendRuns(out, row);
        out.fillToByte();
    }
    return out.bytes();
}

struct Group3Options {
    bool fill = false;           // EOLs end on byte boundaries
    bool leadingEol = true;      // an EOL before the first row
    bool eols = true;            // EOLs between the rows (one-dimensional code only)
    bool returnToControl = true; // six EOLs at the end
};

inline void appendEol(BitWriter &out, bool fill, std::string_view tag) {
    if (fill) {
        out.eolEndingOnByte(static_cast<unsigned>(tag.size()));
    } else {
        out.eol();
    }
    out.bits(tag);
}

inline Bytes encodeGroup3(const Rows &rows, const Group3Options &options = {}) {
    BitWriter out;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (options.eols && (i > 0 || options.leadingEol)) {
            appendEol(out, options.fill, "");
        }
        appendRuns(out, rows[i]);
    }
    for (int i = 0; options.returnToControl && i < 6; ++i) {
        appendEol(out, options.fill && i == 0, "");
    }
    return out.bytes();
}

// Every k-th row is coded one-dimensionally, beginning with the first.
inline Bytes encodeGroup3TwoDimensional(const Rows &rows, unsigned k, const Group3Options &options = {}) {
    BitWriter out;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const bool oneDimensional = i % k == 0;
        if (i > 0 || options.leadingEol) {
            appendEol(out, options.fill, oneDimensional ? "1" : "0");
        }
        if (oneDimensional) {
            appendRuns(out, rows[i]);
        } else {
            appendTwoDimensional(out, rows[i - 1], rows[i]);
        }
    }
    for (int i = 0; options.returnToControl && i < 6; ++i) {
        appendEol(out, options.fill && i == 0, "1");
    }
    return out.bytes();
}

enum class Eofb { Yes, No };

inline Bytes encodeGroup4(const Rows &rows, Eofb eofb = Eofb::Yes) {
    BitWriter out;
    Row reference(rows.empty() ? 0 : rows[0].size());
    for (const Row &row : rows) {
        appendTwoDimensional(out, reference, row);
        reference = row;
    }
    if (eofb == Eofb::Yes) {
        out.eofb();
    }
    return out.bytes();
}

// Cuts a stream into blocks with the header FE 92, length high, length low (0 for a block of 65520 bytes).
inline Bytes frameBlocks(const Bytes &code, std::size_t blockBytes) {
    Bytes out;
    for (std::size_t at = 0; at < code.size(); at += blockBytes) {
        const std::size_t length = code.size() - at < blockBytes ? code.size() - at : blockBytes;
        const std::size_t stored = length == 65520 ? 0 : length;
        out.insert(out.end(), {0xFE, 0x92, static_cast<std::uint8_t>(stored >> 8), static_cast<std::uint8_t>(stored)});
        for (std::size_t i = at; i < at + length; ++i) {
            out.push_back(code[i]);
        }
    }
    return out;
}

// ------------------------------------------------------------------------------------------------ rows

inline Row rowFromRuns(std::initializer_list<unsigned> lengths) {
    Row row;
    bool black = false;
    for (const unsigned length : lengths) {
        row.insert(row.end(), length, black);
        black = !black;
    }
    return row;
}

// Packed as the decoders deliver a line: most significant bit first, 1 for black, the last byte's rest 0.
inline Bytes packRow(const Row &row) {
    Bytes out((row.size() + 7) / 8);
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (row[i]) {
            out[i / 8] = static_cast<std::uint8_t>(out[i / 8] | (0x80U >> i % 8));
        }
    }
    return out;
}

inline Bytes packRows(const Rows &rows) {
    Bytes out;
    for (const Row &row : rows) {
        const Bytes packed = packRow(row);
        out.insert(out.end(), packed.begin(), packed.end());
    }
    return out;
}

// Reverses the bits of every byte: FillOrder 2.
inline Bytes reverseBits(Bytes bytes) {
    for (std::uint8_t &byte : bytes) {
        unsigned reversed = 0;
        for (unsigned bit = 0; bit < 8; ++bit) {
            reversed |= (byte >> bit & 1U) << (7 - bit);
        }
        byte = static_cast<std::uint8_t>(reversed);
    }
    return bytes;
}

} // namespace vellum::test
