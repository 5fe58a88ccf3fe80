// Looks into a TIFF file without the library, in either byte order: every page's tags with their values, and the bytes
// of its strips or tiles. For files that are as they should be; what leads out of the file fails the test.
#pragma once

#include "support/paths.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>

namespace vellum::test {

struct SeenTag {
    unsigned type = 0;
    std::vector<std::uint32_t> numbers; // a value of 8 bytes is two of them, a DOUBLE with its lower half first
    bool operator==(const SeenTag &) const = default;
};

struct SeenPage {
    std::map<unsigned, SeenTag> tags; // without StripOffsets and TileOffsets
    std::vector<Bytes> pieces;
    bool operator==(const SeenPage &) const = default;

    [[nodiscard]] SeenTag tag(unsigned number) const {
        const auto found = tags.find(number);
        return found == tags.end() ? SeenTag() : found->second;
    }
};

class TiffLook {
public:
    explicit TiffLook(const std::optional<Bytes> &file) : file_(file.value_or(Bytes())) {
        for (std::size_t at = number(4, 4); at != 0 && pages_.size() < 2000; at = page(at)) {
        }
    }

    [[nodiscard]] const std::vector<SeenPage> &pages() const { return pages_; }

private:
    [[nodiscard]] std::uint32_t number(std::size_t at, std::size_t bytes) const {
        if (at + bytes > file_.size()) {
            ADD_FAILURE() << "offset " << at << " is not in the file";
            return 0;
        }
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < bytes; ++i) {
            value = value << 8 | file_[at + (file_[0] == 'M' ? i : bytes - 1 - i)];
        }
        return value;
    }

    [[nodiscard]] SeenTag values(std::size_t entry) const {
        static constexpr std::size_t kUnits[] = {1, 1, 1, 2, 4, 4, 1, 1, 2, 4, 4, 4, 4, 4};
        SeenTag seen{number(entry + 2, 2), {}};
        const bool pairs = seen.type == 5 || seen.type == 10 || seen.type == 12;
        const std::size_t unit = kUnits[seen.type < 14 ? seen.type : 0];
        const std::size_t count = std::size_t{number(entry + 4, 4)} * (pairs ? 2 : 1);
        const std::size_t at = count * unit <= 4 ? entry + 8 : number(entry + 8, 4);
        for (std::size_t i = 0; i < count; ++i) {
            const bool swapped = seen.type == 12 && file_[0] == 'M';
            seen.numbers.push_back(number(at + (swapped ? i ^ 1U : i) * unit, unit));
        }
        return seen;
    }

    // Result: the offset of the next directory.
    std::size_t page(std::size_t at) {
        SeenPage page;
        const std::size_t entries = number(at, 2);
        for (std::size_t entry = at + 2; entry < at + 2 + entries * 12; entry += 12) {
            page.tags[number(entry, 2)] = values(entry);
        }
        for (const unsigned offsets : {273U, 324U}) {
            const SeenTag from = page.tag(offsets);
            const SeenTag counts = page.tag(offsets == 273 ? 279 : 325);
            page.tags.erase(offsets);
            for (std::size_t i = 0; i < from.numbers.size(); ++i) {
                const std::size_t end = std::size_t{from.numbers[i]} + counts.numbers.at(i);
                EXPECT_LE(end, file_.size());
                if (end <= file_.size()) {
                    page.pieces.emplace_back(file_.begin() + static_cast<std::ptrdiff_t>(from.numbers[i]),
                                             file_.begin() + static_cast<std::ptrdiff_t>(end));
                }
            }
        }
        pages_.push_back(std::move(page));
        return number(at + 2 + entries * 12, 4);
    }

    Bytes file_;
    std::vector<SeenPage> pages_;
};

inline std::vector<SeenPage> pagesIn(const std::optional<Bytes> &file) {
    return TiffLook(file).pages();
}

} // namespace vellum::test
