// A note as the value of an ASCII tag: "~,1,O,left,top,right,bottom,size,text" with numbers in decimal, O for an opaque
// note and T for a transparent one, and the size of the text's block.
#pragma once

#include "vellum32.h"

#include <optional>
#include <string_view>

namespace vellum {

// What stands in the tag. The text lasts as long as the value that it was found in.
struct NoteTag {
    bool opaque = false;
    LONG left = 0;
    LONG top = 0;
    LONG right = 0;
    LONG bottom = 0;
    DWORD blockBytes = 0; // what the size field says, at most 65535
    std::string_view text;
};

// Nothing for a value that is no note, or that ends before its text begins.
std::optional<NoteTag> parseNoteTag(std::string_view value);

// Everything before the text, with a terminator. Result: its length.
constexpr std::size_t kLongestNotePrefix = 80;
std::size_t formatNotePrefix(char (&prefix)[kLongestNotePrefix], const NoteTag &tag);

} // namespace vellum
