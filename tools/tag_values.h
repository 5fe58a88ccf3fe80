// The tags of a page with all their values, as the library hands them out, and their look as text.
#pragma once

#include "tools/tiff_document.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

class TagValues {
public:
    TagValues(DWORD tag, DWORD type, DWORD count, std::string bytes)
        : tag_(tag), type_(type), count_(count), bytes_(std::move(bytes)) {}

    [[nodiscard]] DWORD tag() const { return tag_; }
    [[nodiscard]] DWORD type() const { return type_; }
    // Values, by the type's size in the library: types beyond RATIONAL other than SLONG are kept as that many bytes.
    [[nodiscard]] DWORD count() const { return count_; }

    [[nodiscard]] bool isText() const;
    [[nodiscard]] bool isRational() const;
    // Neither text nor RATIONAL: the value at a position below count().
    [[nodiscard]] LONGLONG number(DWORD position) const;
    struct Rational {
        DWORD numerator;
        DWORD denominator;
    };
    [[nodiscard]] Rational rational(DWORD position) const;
    // The values as they lie in memory.
    [[nodiscard]] std::string_view bytes() const;
    // The text without its terminator.
    [[nodiscard]] std::string_view text() const;

    enum class Extent { Abbreviated, Whole };
    // The values on one line, in ASCII and UTF-8, control characters escaped.
    [[nodiscard]] std::string shown(Extent extent) const;

private:
    [[nodiscard]] std::string shownText(Extent extent) const;

    DWORD tag_;
    DWORD type_;
    DWORD count_;
    std::string bytes_; // at least count_ values, in the machine's byte order
};

// Whether the library holds values of a type whole: of types beyond RATIONAL it knows those of one byte, and SLONG.
[[nodiscard]] bool keepsWholeValues(DWORD type);

// Tag numbers of a page in the order of its directory, a tag that occurs twice being named twice.
std::vector<DWORD> tagNumbers(const RegisteredPage &page);

// A tag's values (of its first entry); nothing when the page has no such tag. Tag 0 cannot be asked for.
std::optional<TagValues> readTag(const RegisteredPage &page, DWORD tag);

} // namespace tool
