// A TIFF taken apart without the library: every directory of the chain with all its values, and the data that its
// offsets lead to. So what the library copied is held against what was there, byte by byte.
#pragma once

#include "support/paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace vellum::test {

struct RawEntry {
    unsigned tag = 0;
    unsigned type = 0;
    std::uint32_t count = 0;
    Bytes values; // least significant byte first
    bool operator==(const RawEntry &) const = default;
};

struct RawPage {
    std::uint32_t offset = 0;
    std::uint32_t linkAt = 0;
    std::vector<RawEntry> entries; // as they stand
    std::vector<Bytes> strips;     // strips or tiles

    [[nodiscard]] const RawEntry *find(unsigned tag) const {
        const auto found =
            std::find_if(entries.begin(), entries.end(), [tag](const RawEntry &entry) { return entry.tag == tag; });
        return found == entries.end() ? nullptr : &*found;
    }
    // The values of a SHORT or LONG tag; empty when it is not there.
    [[nodiscard]] std::vector<std::uint32_t> numbers(unsigned tag) const {
        std::vector<std::uint32_t> all;
        if (const RawEntry *entry = find(tag); entry != nullptr) {
            const std::size_t size = entry->type == 3 ? 2 : 4;
            for (std::size_t i = 0; i + size <= entry->values.size(); i += size) {
                std::uint32_t number = 0;
                for (std::size_t b = 0; b < size; ++b) {
                    number |= std::uint32_t{entry->values[i + b]} << (8 * b);
                }
                all.push_back(number);
            }
        }
        return all;
    }
};

class RawTiff {
public:
    explicit RawTiff(Bytes bytes) : bytes_(std::move(bytes)) {
        motorola = bytes_.size() > 1 && bytes_[0] == 'M';
        std::uint32_t at = number(4, 4);
        std::uint32_t link = 4;
        while (at != 0 && whole && pages.size() < 1001) {
            pages.push_back(page(at));
            link = pages.back().linkAt;
            at = number(link, 4);
        }
    }
    explicit RawTiff(const std::string &path) : RawTiff(readFile(path).value_or(Bytes{})) {}

    std::vector<RawPage> pages;
    bool motorola = false;
    bool whole = true; // nothing leads out of the file

    [[nodiscard]] Bytes slice(std::uint32_t at, std::uint32_t count) {
        if (at > bytes_.size() || count > bytes_.size() - at) {
            whole = false;
            return {};
        }
        const auto from = bytes_.begin() + static_cast<std::ptrdiff_t>(at);
        return {from, from + static_cast<std::ptrdiff_t>(count)};
    }
    [[nodiscard]] std::size_t size() const { return bytes_.size(); }

private:
    std::uint32_t number(std::uint32_t at, std::uint32_t size) {
        Bytes raw = slice(at, size);
        if (motorola) {
            std::reverse(raw.begin(), raw.end());
        }
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < raw.size(); ++i) {
            value |= std::uint32_t{raw[i]} << (8 * i);
        }
        return value;
    }
    // Bytes that are swapped together, and bytes of a value.
    static std::pair<std::uint32_t, std::uint32_t> sizesOf(unsigned type) {
        switch (type) {
        case 3:
        case 8:
            return {2, 2};
        case 4:
        case 9:
        case 11:
        case 13:
            return {4, 4};
        case 5:
        case 10:
            return {4, 8};
        case 12:
            return {8, 8};
        default:
            return {1, 1};
        }
    }
    RawEntry entryAt(std::uint32_t at) {
        RawEntry entry{number(at, 2), number(at + 2, 2), number(at + 4, 4), {}};
        const auto [unit, size] = sizesOf(entry.type);
        const std::uint64_t bytes = std::uint64_t{entry.count} * size;
        if (bytes > bytes_.size()) {
            whole = false;
            return entry;
        }
        entry.values = slice(bytes > 4 ? number(at + 8, 4) : at + 8, static_cast<std::uint32_t>(bytes));
        for (std::size_t from = 0; motorola && from < entry.values.size(); from += unit) {
            BYTE *value = entry.values.data() + from;
            std::reverse(value, value + unit);
        }
        return entry;
    }
    RawPage page(std::uint32_t at) {
        RawPage page;
        page.offset = at;
        const std::uint32_t count = number(at, 2);
        for (std::uint32_t i = 0; i < count; ++i) {
            page.entries.push_back(entryAt(at + 2 + 12 * i));
        }
        page.linkAt = at + 2 + 12 * count;
        for (const unsigned tag : {273U, 324U}) {
            const auto offsets = page.numbers(tag);
            const auto counts = page.numbers(tag == 273 ? 279 : 325);
            for (std::size_t i = 0; i < offsets.size() && i < counts.size(); ++i) {
                page.strips.push_back(slice(offsets[i], counts[i]));
            }
        }
        return page;
    }

    Bytes bytes_;
};

inline bool isOffsetTag(unsigned tag) {
    return tag == 273 || tag == 324 || tag == 519 || tag == 520 || tag == 521;
}

// The page has the other's data, and its tags in ascending order: the same values, apart from offsets.
inline void expectCopied(const RawPage &copy, const RawPage &original, std::initializer_list<unsigned> except = {}) {
    EXPECT_TRUE(copy.strips == original.strips) << "the data differ";
    const auto comparable = [&except](const RawPage &page) {
        std::vector<RawEntry> entries;
        for (RawEntry entry : page.entries) {
            if (std::find(except.begin(), except.end(), entry.tag) == except.end()) {
                if (isOffsetTag(entry.tag)) {
                    entry.values.clear();
                    entry.type = 0;
                }
                entries.push_back(entry);
            }
        }
        return entries;
    };
    const auto byTag = [](const RawEntry &a, const RawEntry &b) { return a.tag < b.tag; };
    EXPECT_TRUE(std::is_sorted(copy.entries.begin(), copy.entries.end(), byTag));
    std::vector<RawEntry> expected = comparable(original);
    std::stable_sort(expected.begin(), expected.end(), byTag);
    EXPECT_TRUE(comparable(copy) == expected) << "the tags differ";
}

// A folder for one test, to see what a call leaves in it.
class TempFolder {
public:
    TempFolder() {
        const TempFile name;
        path_ = std::string(name.path()) + ".dir";
        std::filesystem::create_directory(path_);
    }
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] std::string file(const std::string &name) const { return path_ + "/" + name; }
    std::string add(const std::string &name, const Bytes &content) const {
        EXPECT_TRUE(writeFile(file(name), content));
        return file(name);
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto &entry : std::filesystem::directory_iterator(path_)) {
            all.push_back(entry.path().filename().string());
        }
        std::sort(all.begin(), all.end());
        return all;
    }

private:
    std::string path_;
};

} // namespace vellum::test
