// Any bytes as the value of tag 316 of an image in memory: read as a note, stored as one and read again. A second,
// simpler look at the bytes says what must come out. For the fuzzer, and for the inputs that are kept.
#pragma once

#include "support/tiff_builder.h"
#include "vellum32.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

namespace vellum::test {

// A packed TIFF in memory, opened.
class NotedTiff {
public:
    explicit NotedTiff(const std::string &value) {
        std::vector<std::uint32_t> numbers;
        for (const char c : value) {
            numbers.push_back(static_cast<std::uint8_t>(c));
        }
        tiff::Builder file;
        file.page({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::shorts(258, {1}), tiff::shorts(259, {1}),
                   tiff::shorts(262, {0}), tiff::shorts(278, {1}),
                   tiff::typed(316, 2, static_cast<std::uint32_t>(numbers.size()), 1, numbers)},
                  {{0xA5}});
        const auto bytes = file.bytes();
        block_ = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
        std::memcpy(GlobalLock(block_), bytes.data(), bytes.size());
        GlobalUnlock(block_);
        tiff_ = OpenTiffInMemory(block_, static_cast<DWORD>(bytes.size()), T_READ);
    }
    NotedTiff(const NotedTiff &) = delete;
    NotedTiff &operator=(const NotedTiff &) = delete;
    ~NotedTiff() {
        if (tiff_ != nullptr) {
            CloseTiffFile(tiff_);
        }
        GlobalFree(block_);
    }
    [[nodiscard]] TiffHandle get() const { return tiff_; }

private:
    HGLOBAL block_;
    TiffHandle tiff_;
};

// What a value says, as far as its terminator.
struct PlainNote {
    explicit PlainNote(const std::string &whole) {
        const std::string value = whole.substr(0, whole.find('\0'));
        if (value.size() < 7 || value[0] != '~') {
            return;
        }
        opaque = value[4] == 'O';
        std::size_t at = 6;
        for (DWORD &number : numbers) {
            for (; at < value.size() && value[at] != ','; ++at) {
                number = number * 10 + static_cast<DWORD>(value[at]) - DWORD{'0'};
            }
            if (at++ == value.size()) {
                return;
            }
        }
        text = value.substr(at);
    }

    bool opaque = false;
    DWORD numbers[5] = {};
    std::optional<std::string> text; // nothing: no note
};

// A note that was read, with its block.
class ReadNote {
public:
    explicit ReadNote(TiffHandle tiff) : found_(GetNoteTagFromTiff(tiff, 0, &record)) {
        if (record.text != nullptr) {
            bytes_.assign(static_cast<const char *>(GlobalLock(record.text)), GlobalSize(record.text));
            GlobalUnlock(record.text);
        }
    }
    ReadNote(const ReadNote &) = delete;
    ReadNote &operator=(const ReadNote &) = delete;
    ~ReadNote() {
        if (record.text != nullptr) {
            GlobalFree(record.text);
        }
    }

    [[nodiscard]] LONG found() const { return found_; }
    [[nodiscard]] std::size_t blockBytes() const { return bytes_.size(); }
    [[nodiscard]] bool terminated() const { return bytes_.find('\0') != std::string::npos; }
    [[nodiscard]] std::string text() const { return bytes_.substr(0, bytes_.find('\0')); }
    [[nodiscard]] bool hasNumbers(const DWORD (&numbers)[5]) const {
        const LONG rectangle[] = {record.left, record.top, record.right, record.bottom};
        return std::equal(rectangle, rectangle + 4, numbers,
                          [](LONG a, DWORD b) { return static_cast<DWORD>(a) == b; });
    }

    NoteRecord record = {};

private:
    std::string bytes_;
    LONG found_;
};

// What is wrong with the note that the library makes of a value; null when nothing is.
inline const char *complaintAboutNoteTag(const std::string &value) {
    const NotedTiff tiff(value);
    if (tiff.get() == nullptr || GetTiffImage(tiff.get(), 0) != 1) {
        return "the image is not there";
    }
    const PlainNote plain(value);
    const ReadNote read(tiff.get());
    if (read.found() != (plain.text ? 1 : 0)) {
        return plain.text ? "a note is taken for none" : "what is no note is taken for one";
    }
    if (!plain.text) {
        const NoteRecord untouched = {};
        return std::memcmp(&read.record, &untouched, sizeof untouched) == 0 ? nullptr : "the record was touched";
    }
    const std::size_t needed = plain.text->size() + 1;
    if (!read.terminated() || read.blockBytes() != std::max<std::size_t>(plain.numbers[4] & 0xFFFF, needed)) {
        return "the block has another size, or no terminator";
    }
    if (read.text() != *plain.text || read.record.inHeader != 1 || read.record.opaque != (plain.opaque ? 1 : 0) ||
        !read.hasNumbers(plain.numbers)) {
        return "the note is another one";
    }
    if (AddNoteTagToTiff(tiff.get(), 0, &read.record) != 1) {
        return "the note cannot be stored";
    }
    const ReadNote again(tiff.get());
    if (again.found() != 1 || !again.terminated() || again.text() != *plain.text) {
        return "the stored note has another text";
    }
    // A minus sign does not come back.
    const bool positive = std::all_of(plain.numbers, plain.numbers + 4, [](DWORD n) { return n <= 0x7FFFFFFF; });
    return !positive || again.hasNumbers(plain.numbers) ? nullptr : "the stored note lies somewhere else";
}

} // namespace vellum::test
