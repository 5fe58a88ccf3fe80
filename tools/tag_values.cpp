// Reading tags and writing their values as text.
#include "tools/tag_values.h"

#include "tools/json.h"
#include "tools/tag_numbers.h"

#include <algorithm>
#include <cstring>

namespace tool {

namespace {

constexpr DWORD kMostValues = 8;             // shown when abbreviated
constexpr std::size_t kMostCharacters = 100; // likewise

constexpr DWORD valueBytes(DWORD type) {
    switch (static_cast<Type>(type)) {
    case Type::Short:
        return 2;
    case Type::Long:
    case Type::SLong:
        return 4;
    case Type::Rational:
        return 8;
    default:
        return 1;
    }
}

template <class T>
T load(const std::string &bytes, std::size_t position) {
    T value;
    std::memcpy(&value, bytes.data() + position * sizeof value, sizeof value);
    return value;
}

// The content of a block of the library's, which is freed.
std::string takeBlock(HGLOBAL block) {
    std::string bytes;
    if (const void *const data = GlobalLock(block)) {
        bytes.assign(static_cast<const char *>(data), GlobalSize(block));
        GlobalUnlock(block);
    }
    GlobalFree(block);
    return bytes;
}

std::string escaped(std::string_view utf8) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            out += "\\n";
        } else if (c == '\\' || c == '"') {
            out.append("\\").append(1, c);
        } else if (byte < 0x20 || byte == 0x7F) {
            out.append("\\x").append(1, kHex[byte >> 4]).append(1, kHex[byte & 15]);
        } else {
            out += c;
        }
    }
    return out;
}

} // namespace

bool TagValues::isText() const {
    return static_cast<Type>(type_) == Type::Ascii;
}
bool TagValues::isRational() const {
    return static_cast<Type>(type_) == Type::Rational;
}

LONGLONG TagValues::number(DWORD position) const {
    switch (static_cast<Type>(type_)) {
    case Type::Short:
        return load<WORD>(bytes_, position);
    case Type::Long:
        return load<DWORD>(bytes_, position);
    case Type::SLong:
        return load<LONG>(bytes_, position);
    case Type::SByte:
        return load<signed char>(bytes_, position);
    default:
        return load<BYTE>(bytes_, position);
    }
}

TagValues::Rational TagValues::rational(DWORD position) const {
    const std::size_t first = std::size_t{position} * 2;
    return {load<DWORD>(bytes_, first), load<DWORD>(bytes_, first + 1)};
}

std::string_view TagValues::bytes() const {
    return std::string_view(bytes_).substr(0, std::size_t{count_} * valueBytes(type_));
}

std::string_view TagValues::text() const {
    std::string_view text(bytes_.data(), count_);
    if (text.ends_with('\0')) {
        text.remove_suffix(1);
    }
    return text;
}

std::string TagValues::shown(Extent extent) const {
    if (isText()) {
        return shownText(extent);
    }
    const bool abbreviated = extent == Extent::Abbreviated && count_ > kMostValues;
    const DWORD shownCount = abbreviated ? kMostValues : count_;
    std::string out;
    for (DWORD i = 0; i < shownCount; ++i) {
        out += i == 0 ? "" : ", ";
        if (isRational()) {
            const Rational value = rational(i);
            out += std::to_string(value.numerator) + "/" + std::to_string(value.denominator);
        } else {
            out += std::to_string(number(i));
        }
    }
    return abbreviated ? out + ", ..." : out;
}

std::string TagValues::shownText(Extent extent) const {
    const bool abbreviated = extent == Extent::Abbreviated && text().size() > kMostCharacters;
    std::string utf8 = utf8FromAnything(abbreviated ? text().substr(0, kMostCharacters) : text());
    return "\"" + escaped(utf8) + "\"" + (abbreviated ? "..." : "");
}

bool keepsWholeValues(DWORD type) {
    return type >= static_cast<DWORD>(Type::Byte) && type <= static_cast<DWORD>(Type::SLong) &&
           type != static_cast<DWORD>(Type::SShort);
}

std::vector<DWORD> tagNumbers(const RegisteredPage &page) {
    HGLOBAL block = nullptr;
    DWORD count = 0;
    if (GetTiffImageInfoBuffer(page.handle(), page.index(), 0, &block, nullptr, &count) == 0 || block == nullptr) {
        return {};
    }
    const std::string bytes = takeBlock(block);
    std::vector<DWORD> tags(std::min<std::size_t>(count, bytes.size() / sizeof(DWORD)));
    std::memcpy(tags.data(), bytes.data(), tags.size() * sizeof(DWORD));
    return tags;
}

std::optional<TagValues> readTag(const RegisteredPage &page, DWORD tag) {
    HGLOBAL block = nullptr;
    DWORD type = 0;
    DWORD count = 0;
    const DWORD pending = TiffError();
    const LONG found =
        tag == 0 ? 0
                 : GetTiffImageInfoBuffer(page.handle(), page.index(), static_cast<LONG>(tag), &block, &type, &count);
    SetTiffError(pending); // an absent tag is no failure here
    if (found == 0 || block == nullptr) {
        return std::nullopt;
    }
    std::string bytes = takeBlock(block);
    const std::size_t held = bytes.size() / valueBytes(type);
    return TagValues(tag, type, static_cast<DWORD>(std::min<std::size_t>(count, held)), std::move(bytes));
}

} // namespace tool
