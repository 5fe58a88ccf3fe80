// Notes in a tag of a TIFF image: reading and writing of the value, and the two calls.
#include "annot/note_tag.h"

#include "annot/note_text.h"
#include "core/image_info.h"

#include <algorithm>
#include <cstdio>

namespace vellum {
namespace {

// The tag is the one that is meant for a host's name; this is how notes are told from names.
constexpr char kNoteMark = '~';
constexpr DWORD kAsciiType = 2;

// Where things stand in the value.
constexpr std::size_t kOpacityAt = 4;
constexpr std::size_t kNumbersAt = 6;
constexpr char kOpaque = 'O';
constexpr char kTransparent = 'T';

// By design: only the low 16 bits of a size are stored.
constexpr DWORD kStoredSizeBits = 0xFFFF;

// The number before the next comma, which is taken away, too; nothing when there is no comma. By design: every
// character counts as a digit, by its distance from '0', and a number without digits is 0. No sign is known, for no
// note lies at negative coordinates. What 32 bits cannot hold wraps.
std::optional<DWORD> takeNumber(std::string_view &rest) {
    const std::size_t comma = rest.find(',');
    if (comma == std::string_view::npos) {
        return std::nullopt;
    }
    DWORD number = 0;
    for (const char digit : rest.substr(0, comma)) {
        number = number * 10 + static_cast<DWORD>(digit - '0');
    }
    rest.remove_prefix(comma + 1);
    return number;
}

// A tag's value as far as its terminator.
std::string_view textOf(const GlobalView<const char> &value) {
    const std::string_view all(value.get(), value.bytes());
    return all.substr(0, all.find('\0'));
}

bool addTag(TiffHandle tiff, DWORD index, const NoteRecord &note) {
    const NoteText text(note.text);
    if (!text) {
        return false;
    }
    char prefix[kLongestNotePrefix];
    const std::size_t prefixLength = formatNotePrefix(prefix, {note.opaque != 0,
                                                               note.left,
                                                               note.top,
                                                               note.right,
                                                               note.bottom,
                                                               static_cast<DWORD>(text.blockBytes()) & kStoredSizeBits,
                                                               {}});
    const GlobalBlock block = GlobalBlock::allocate(Size(text.blockBytes()) + Size(prefixLength) + Size(1));
    const GlobalView<char> value(block.get());
    if (!value) {
        return false;
    }
    std::copy_n(prefix, prefixLength, value.get());
    text.get().copy(value.get() + prefixLength, text.get().size());
    const auto length = static_cast<DWORD>(prefixLength + text.get().size() + 1);
    return DefineTiffImageInfoBuffer(tiff, index, static_cast<DWORD>(Tag::HostComputer), value.get(), kAsciiType,
                                     length) != 0;
}

bool readTag(TiffHandle tiff, DWORD index, NoteRecord &note) {
    const auto stored = allValues(tiff, index, Tag::HostComputer);
    if (!stored) {
        return false;
    }
    const GlobalView<const char> value(stored->data.get());
    const auto tag = value ? parseNoteTag(textOf(value)) : std::nullopt;
    if (!tag) {
        return false;
    }
    GlobalBlock text = makeNoteText(tag->text, tag->blockBytes);
    if (!text) {
        return false;
    }
    note.inHeader = 1;
    note.opaque = tag->opaque ? 1 : 0;
    note.left = tag->left;
    note.top = tag->top;
    note.right = tag->right;
    note.bottom = tag->bottom;
    note.text = text.release();
    return true;
}

} // namespace

std::optional<NoteTag> parseNoteTag(std::string_view value) {
    if (value.size() < kNumbersAt || value.front() != kNoteMark) {
        return std::nullopt;
    }
    NoteTag tag;
    tag.opaque = value[kOpacityAt] == kOpaque;
    DWORD numbers[5] = {};
    tag.text = value.substr(kNumbersAt);
    for (DWORD &number : numbers) {
        const auto taken = takeNumber(tag.text);
        if (!taken) {
            return std::nullopt;
        }
        number = *taken;
    }
    tag.left = static_cast<LONG>(numbers[0]);
    tag.top = static_cast<LONG>(numbers[1]);
    tag.right = static_cast<LONG>(numbers[2]);
    tag.bottom = static_cast<LONG>(numbers[3]);
    tag.blockBytes = numbers[4] & kStoredSizeBits;
    return tag;
}

std::size_t formatNotePrefix(char (&prefix)[kLongestNotePrefix], const NoteTag &tag) {
    const int length =
        std::snprintf(prefix, sizeof prefix, "%c,1,%c,%d,%d,%d,%d,%u,", kNoteMark, tag.opaque ? kOpaque : kTransparent,
                      static_cast<int>(tag.left), static_cast<int>(tag.top), static_cast<int>(tag.right),
                      static_cast<int>(tag.bottom), static_cast<unsigned>(tag.blockBytes));
    return static_cast<std::size_t>(length);
}

} // namespace vellum

extern "C" {

LONG VELLUMAPI AddNoteTagToTiff(TiffHandle tiff, DWORD index, const NoteRecord *note) {
    if (tiff == nullptr || note == nullptr || GetTiffImage(tiff, index) == 0) {
        return 0;
    }
    return vellum::addTag(tiff, index, *note) ? 1 : 0;
}

LONG VELLUMAPI GetNoteTagFromTiff(TiffHandle tiff, DWORD index, NoteRecord *note) {
    if (tiff == nullptr || note == nullptr || GetTiffImage(tiff, index) == 0) {
        return 0;
    }
    return vellum::readTag(tiff, index, *note) ? 1 : 0;
}

} // extern "C"
