// The text of a note: a block of the caller's, looked at as long as the object lives. It ends at its first NUL, or with
// its block.
#pragma once

#include "support/global_block.h"

#include <string_view>

namespace vellum {

class NoteText {
public:
    explicit NoteText(HGLOBAL block) : block_(block) {}

    // False when there is no text.
    explicit operator bool() const { return static_cast<bool>(block_); }
    [[nodiscard]] std::string_view get() const {
        const std::string_view all(block_.get(), block_.bytes());
        return all.substr(0, all.find('\0'));
    }
    // Size of the whole block.
    [[nodiscard]] std::size_t blockBytes() const { return block_.bytes(); }

private:
    GlobalView<const char> block_;
};

// A block with a copy of a text, and zeros behind it: at least `leastBytes`, and always as many as the text and its
// terminator need. Empty without memory.
inline GlobalBlock makeNoteText(std::string_view text, std::size_t leastBytes = 0) {
    const Size whole = Size(text.size()) + Size(1);
    GlobalBlock block = GlobalBlock::allocate(text.size() + 1 < leastBytes ? Size(leastBytes) : whole);
    const GlobalView<char> copy(block.get());
    if (!copy) {
        return {};
    }
    text.copy(copy.get(), text.size());
    return block;
}

} // namespace vellum
