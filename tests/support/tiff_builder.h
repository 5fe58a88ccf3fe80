// Builds TIFF files byte by byte for tests, in either byte order, so that a test shows what it reads.
//
//   tiff::Builder file(tiff::kMM);
//   file.page({tiff::shorts(256, {8}), tiff::shorts(257, {2})}, {{0xFF, 0x00}});  // adds StripOffsets and -ByteCounts
//   file.directory({tiff::longs(256, {3}), tiff::field(270, 2, 99, 0xFFFF)});     // exactly these entries
//   file.linkTo(8);                                                               // the last link: a loop
//   std::vector<std::uint8_t> bytes = file.bytes();
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace tiff {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint16_t kII = 0x4949;
constexpr std::uint16_t kMM = 0x4D4D;

// One directory entry: its values are put into the 4-byte field or behind the directory, as their size asks for.
struct Entry {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint32_t count = 0;
    unsigned unit = 1;                  // bytes of each number: 1, 2 or 4
    std::vector<std::uint32_t> numbers; // the values; a RATIONAL is two numbers
    bool rawField = false;              // numbers[0] is the 4-byte field itself, as a LONG in the file's order
};

// Any type and count over numbers of 1, 2 or 4 bytes.
inline Entry typed(unsigned tag, unsigned type, std::uint32_t count, unsigned unit,
                   std::vector<std::uint32_t> numbers) {
    return {static_cast<std::uint16_t>(tag), static_cast<std::uint16_t>(type), count, unit, std::move(numbers), false};
}
inline Entry byteValues(unsigned tag, std::vector<std::uint32_t> values) {
    const auto count = static_cast<std::uint32_t>(values.size());
    return typed(tag, 1, count, 1, std::move(values));
}
inline Entry shorts(unsigned tag, std::vector<std::uint32_t> values) {
    const auto count = static_cast<std::uint32_t>(values.size());
    return typed(tag, 3, count, 2, std::move(values));
}
inline Entry longs(unsigned tag, std::vector<std::uint32_t> values) {
    const auto count = static_cast<std::uint32_t>(values.size());
    return typed(tag, 4, count, 4, std::move(values));
}
// Numerator, denominator, numerator, ...
inline Entry rationals(unsigned tag, std::vector<std::uint32_t> parts) {
    const auto count = static_cast<std::uint32_t>(parts.size() / 2);
    return typed(tag, 5, count, 4, std::move(parts));
}
// The text with its terminator.
inline Entry ascii(unsigned tag, const std::string &text) {
    std::vector<std::uint32_t> values;
    for (const char c : text) {
        values.push_back(static_cast<std::uint8_t>(c));
    }
    values.push_back(0);
    const auto count = static_cast<std::uint32_t>(values.size());
    return typed(tag, 2, count, 1, std::move(values));
}
// An entry whose 4-byte field is given as it is: an offset that may lead anywhere, say.
inline Entry field(unsigned tag, unsigned type, std::uint32_t count, std::uint32_t valueOrOffset) {
    return {static_cast<std::uint16_t>(tag), static_cast<std::uint16_t>(type), count, 4, {valueOrOffset}, true};
}

class Builder {
public:
    // Writes the header; without any directory the file has no images.
    explicit Builder(std::uint16_t byteOrder = kII) : byteOrder_(byteOrder) {
        put8(byteOrder & 0xFFu);
        put8(byteOrder >> 8);
        put16(42);
        lastLink_ = position();
        put32(0);
    }

    // Appends a directory with exactly these entries, and behind its link field their outside values; links the chain
    // to it. Result: its offset.
    std::uint32_t directory(const std::vector<Entry> &entries) {
        pad();
        const std::uint32_t start = position();
        set32(lastLink_, start);
        put16(static_cast<std::uint32_t>(entries.size()));
        std::vector<std::pair<std::uint32_t, const Entry *>> outside;
        for (const Entry &entry : entries) {
            put16(entry.tag);
            put16(entry.type);
            put32(entry.count);
            const std::uint32_t fieldAt = position();
            put32(0);
            if (entry.rawField) {
                set32(fieldAt, entry.numbers.at(0));
            } else if (entry.unit * entry.numbers.size() <= 4) {
                setNumbers(fieldAt, entry);
            } else {
                outside.emplace_back(fieldAt, &entry);
            }
        }
        lastLink_ = position();
        put32(0);
        for (const auto &[fieldAt, entry] : outside) {
            pad();
            set32(fieldAt, position());
            const std::uint32_t at = position();
            bytes_.resize(bytes_.size() + entry->unit * entry->numbers.size());
            setNumbers(at, *entry);
        }
        return start;
    }

    // Appends the strips' data and a directory with these entries and, at their places in the ascending order,
    // StripOffsets (273) and StripByteCounts (279), both LONG. Result: the directory's offset.
    std::uint32_t page(std::vector<Entry> entries, const std::vector<Bytes> &strips) {
        std::vector<std::uint32_t> offsets;
        std::vector<std::uint32_t> counts;
        for (const Bytes &strip : strips) {
            offsets.push_back(append(strip));
            counts.push_back(static_cast<std::uint32_t>(strip.size()));
        }
        insertSorted(entries, longs(273, std::move(offsets)));
        insertSorted(entries, longs(279, std::move(counts)));
        return directory(entries);
    }

    // Appends bytes as they are. Result: their offset.
    std::uint32_t append(const Bytes &data) {
        const std::uint32_t start = position();
        bytes_.insert(bytes_.end(), data.begin(), data.end());
        return start;
    }

    // Points the last link of the chain (the header's when there is no directory) anywhere.
    void linkTo(std::uint32_t offset) { set32(lastLink_, offset); }
    // Where the last link field lies.
    [[nodiscard]] std::uint32_t lastLink() const { return lastLink_; }

    // Overwrites numbers in the file's byte order.
    void set16(std::uint32_t at, std::uint32_t value) {
        const bool mm = byteOrder_ == kMM;
        bytes_.at(at) = static_cast<std::uint8_t>(mm ? value >> 8 : value);
        bytes_.at(at + 1) = static_cast<std::uint8_t>(mm ? value : value >> 8);
    }
    void set32(std::uint32_t at, std::uint32_t value) {
        const bool mm = byteOrder_ == kMM;
        set16(at, mm ? value >> 16 : value & 0xFFFFu);
        set16(at + 2, mm ? value & 0xFFFFu : value >> 16);
    }

    void put8(std::uint32_t value) { bytes_.push_back(static_cast<std::uint8_t>(value)); }
    void put16(std::uint32_t value) {
        bytes_.resize(bytes_.size() + 2);
        set16(position() - 2, value);
    }
    void put32(std::uint32_t value) {
        bytes_.resize(bytes_.size() + 4);
        set32(position() - 4, value);
    }

    [[nodiscard]] std::uint32_t position() const { return static_cast<std::uint32_t>(bytes_.size()); }
    [[nodiscard]] const Bytes &bytes() const { return bytes_; }

private:
    void pad() {
        if (bytes_.size() % 2 != 0) {
            put8(0);
        }
    }
    void setNumbers(std::uint32_t at, const Entry &entry) {
        for (const std::uint32_t value : entry.numbers) {
            if (entry.unit == 4) {
                set32(at, value);
            } else if (entry.unit == 2) {
                set16(at, value);
            } else {
                bytes_.at(at) = static_cast<std::uint8_t>(value);
            }
            at += entry.unit;
        }
    }
    static void insertSorted(std::vector<Entry> &entries, Entry entry) {
        auto at = entries.begin();
        while (at != entries.end() && at->tag < entry.tag) {
            ++at;
        }
        entries.insert(at, std::move(entry));
    }

    std::uint16_t byteOrder_;
    std::uint32_t lastLink_ = 0;
    Bytes bytes_;
};

} // namespace tiff
