// Tags of pictures, and the labels of pages.
#include "tools/picture.h"

#include "tools/console.h"
#include "vellum32.h"

#include <utility>

namespace tool {

namespace {

template <class T>
std::string bytesOf(std::span<const T> values) {
    return {reinterpret_cast<const char *>(values.data()), values.size_bytes()};
}

} // namespace

void Picture::set(TagValues values) {
    remove(values.tag());
    tags.push_back(std::move(values));
}

void Picture::remove(DWORD tag) {
    std::erase_if(tags, [tag](const TagValues &values) { return values.tag() == tag; });
}

bool leavesAPart(const Picture &picture, DWORD lines, DWORD error) {
    constexpr ULONGLONG kNeedsNoProof = ULONGLONG{16} << 20;
    constexpr DWORD kLeastPart = 16; // a sixteenth
    const bool good = error == VELLUM_UNEXPECTED_END || error == VELLUM_EOFB_MISSING || error == VELLUM_EOFB_UNEXPECTED;
    return good && (picture.lineBytes() * picture.height <= kNeedsNoProof || lines >= picture.height / kLeastPart);
}

TagValues shortsTag(DWORD tag, std::span<const WORD> values) {
    return {tag, static_cast<DWORD>(Type::Short), static_cast<DWORD>(values.size()), bytesOf(values)};
}

TagValues rationalTag(DWORD tag, DWORD numerator, DWORD denominator) {
    const DWORD parts[] = {numerator, denominator};
    return {tag, static_cast<DWORD>(Type::Rational), 1, bytesOf(std::span<const DWORD>(parts))};
}

TagValues textTag(DWORD tag, std::string text) {
    text.push_back('\0');
    const auto count = static_cast<DWORD>(text.size());
    return {tag, static_cast<DWORD>(Type::Ascii), count, std::move(text)};
}

std::string PageSource::pageLabel(DWORD index) const {
    return name().shown() + ": page " + std::to_string(index + 1);
}

std::string PageSource::progressLabel(DWORD index) const {
    return "page " + std::to_string(index + 1) + " of " + std::to_string(pageCount());
}

void showLineProgress(const std::string &progressLabel, const char *doing, DWORD line, DWORD height) {
    constexpr DWORD kProgressLines = 128;
    if (line % kProgressLines == 0) {
        Console::get().progress(progressLabel + ": " + doing + " line " + std::to_string(line) + " of " +
                                std::to_string(height));
    }
}

} // namespace tool
