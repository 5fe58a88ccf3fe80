// Notes for tests, whose blocks are freed with them.
#pragma once

#include "support/global_memory.h"
#include "vellum32.h"

#include <string>

namespace vellum::test {

inline Bytes bytesOf(const std::string &text) {
    return Bytes(text.begin(), text.end());
}

// A block with a text, a terminator, and `spare` bytes that are not zero.
inline HGLOBAL textBlock(const std::string &text, std::size_t spare = 0) {
    Bytes bytes = bytesOf(text + '\0');
    bytes.resize(bytes.size() + spare, BYTE{0xEE});
    return makeBlock(bytes);
}

class OwnedNote {
public:
    OwnedNote() = default;
    explicit OwnedNote(const std::string &text) { record.text = textBlock(text); }
    OwnedNote(const OwnedNote &) = delete;
    OwnedNote &operator=(const OwnedNote &) = delete;
    ~OwnedNote() {
        for (HGLOBAL block : {record.text, record.image}) {
            if (block != nullptr) {
                GlobalFree(block);
            }
        }
    }

    // The text up to its terminator; "(none)" without a block, "(unterminated)" without a terminator.
    [[nodiscard]] std::string text() const {
        if (record.text == nullptr) {
            return "(none)";
        }
        const Bytes bytes = blockBytes(record.text);
        const std::string all(bytes.begin(), bytes.end());
        return all.find('\0') == std::string::npos ? "(unterminated)" : all.substr(0, all.find('\0'));
    }

    NoteRecord record = {};
};

} // namespace vellum::test
