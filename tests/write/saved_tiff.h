// An image of a TIFF that was saved, as the library's own readers see it.
#pragma once

#include "support/decode_lines.h"

#include <cstring>
#include <string>
#include <vector>

namespace vellum::test {

class SavedTiff {
public:
    explicit SavedTiff(const char *path, DWORD index = 0) : tiff_(path), index_(index) {
        if (tiff_) {
            registered_ = registerImage(tiff_.get(), index);
        }
    }
    explicit operator bool() const { return registered_; }
    [[nodiscard]] TiffHandle get() const { return tiff_.get(); }
    [[nodiscard]] LONG pages() const { return NumberOfTiffImages(tiff_.get(), VELLUM_ALL_IMAGES); }
    [[nodiscard]] WORD byteOrder() const {
        TiffFileInfo info{};
        GetTiffFileInfo(tiff_.get(), &info);
        return info.byteOrder;
    }

    [[nodiscard]] bool has(LONG tag) const { return GetTiffImageInfo(tiff_.get(), index_, tag, nullptr) == 1; }

    struct Shape {
        DWORD type = 0;
        DWORD count = 0;
        bool operator==(const Shape &) const = default;
    };
    [[nodiscard]] Shape shape(LONG tag) const {
        Shape found;
        GetTiffImageInfoBuffer(tiff_.get(), index_, tag, nullptr, &found.type, &found.count);
        return found;
    }

    // All values of a SHORT, LONG or RATIONAL tag (of a RATIONAL numerator, denominator, ...); empty when it is absent.
    [[nodiscard]] std::vector<DWORD> numbers(LONG tag) const {
        Shape found;
        const Bytes bytes = values(tag, found);
        const std::size_t unit = found.type == 3 ? 2 : 4;
        const std::size_t count = found.count * (found.type == 5 ? 2 : 1);
        std::vector<DWORD> all;
        for (std::size_t i = 0; i < count && (i + 1) * unit <= bytes.size(); ++i) {
            DWORD number = 0;
            std::memcpy(&number, bytes.data() + i * unit, unit);
            all.push_back(number);
        }
        return all;
    }
    // The one value of a tag; a number that no test expects when it has none or several.
    [[nodiscard]] DWORD number(LONG tag) const {
        const std::vector<DWORD> all = numbers(tag);
        return all.size() == 1 ? all[0] : 0xBADBAD;
    }
    // An ASCII tag up to its terminator, which must be there.
    [[nodiscard]] std::string text(LONG tag) const {
        Shape found;
        const Bytes bytes = values(tag, found);
        if (found.type != 2 || found.count == 0 || bytes.size() < found.count || bytes[found.count - 1] != 0) {
            return "(not a text)";
        }
        return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(found.count - 1)};
    }

    // Tag numbers as they stand in the file.
    [[nodiscard]] std::vector<DWORD> tags() const { return numbers(0); }

    // The decoded lines; empty when the image cannot be decoded.
    [[nodiscard]] Bytes lines() const {
        LineLog log;
        return decodeInto(log, tiff_.get(), index_) == kDecoded ? log.data : Bytes();
    }

private:
    Bytes values(LONG tag, Shape &found) const {
        HGLOBAL block = nullptr;
        if (GetTiffImageInfoBuffer(tiff_.get(), index_, tag, &block, &found.type, &found.count) == 0) {
            return {};
        }
        const Bytes bytes = blockBytes(block);
        GlobalFree(block);
        return bytes;
    }

    OpenedTiff tiff_;
    DWORD index_;
    bool registered_ = false;
};

} // namespace vellum::test
