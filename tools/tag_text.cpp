// Reading tags and their values from the command line.
#include "tools/tag_text.h"

#include "tools/arguments.h"
#include "tools/picture.h"
#include "tools/tiff_names.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <numeric>

namespace tool {

namespace {

constexpr const char *kWritableTypes = "BYTE, ASCII, SHORT, LONG, RATIONAL, SBYTE, UNDEFINED, SLONG";

// A whole text as a number: decimal, or hexadecimal behind 0x.
std::optional<LONGLONG> parseNumber(std::string_view text) {
    const bool negative = text.starts_with('-');
    text.remove_prefix(negative ? 1 : 0);
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(hexadecimal ? 2 : 0);
    ULONGLONG number = 0;
    const char *const end = text.data() + text.size();
    const auto [parsedTo, error] = std::from_chars(text.data(), end, number, hexadecimal ? 16 : 10);
    if (error != std::errc() || parsedTo != end || number > MAXDWORD) {
        return std::nullopt;
    }
    return negative ? -static_cast<LONGLONG>(number) : static_cast<LONGLONG>(number);
}

struct Limits {
    LONGLONG least;
    LONGLONG most;
    std::size_t bytes;
};

Limits limitsOf(Type type) {
    switch (type) {
    case Type::Short:
        return {0, 0xFFFF, 2};
    case Type::Long:
        return {0, MAXDWORD, 4};
    case Type::SLong:
        return {std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max(), 4};
    case Type::SByte:
        return {-128, 127, 1};
    default:
        return {0, 0xFF, 1};
    }
}

void appendNumber(std::string &bytes, Type type, const std::string &word) {
    const Limits limits = limitsOf(type);
    const auto number = parseNumber(word);
    if (!number || *number < limits.least || *number > limits.most) {
        throw UsageError("'" + word + "' is no " + typeName(static_cast<DWORD>(type)) +
                         " value: these are numbers from " + std::to_string(limits.least) + " to " +
                         std::to_string(limits.most));
    }
    bytes.append(reinterpret_cast<const char *>(&*number), limits.bytes);
}

std::optional<TagValues::Rational> parseFraction(const std::string &word, std::size_t slash) {
    const auto numerator = parseNumber(std::string_view(word).substr(0, slash));
    const auto denominator = parseNumber(std::string_view(word).substr(slash + 1));
    if (!numerator || !denominator || *numerator < 0 || *denominator <= 0) {
        return std::nullopt;
    }
    return TagValues::Rational{static_cast<DWORD>(*numerator), static_cast<DWORD>(*denominator)};
}

// "96.5" is 193/2.
std::optional<TagValues::Rational> parseDecimal(const std::string &word) {
    const std::size_t point = std::min(word.find('.'), word.size());
    const std::string fraction = point < word.size() ? word.substr(point + 1) : "";
    const std::string digits = word.substr(0, point) + fraction;
    ULONGLONG numerator = 0;
    const char *const end = digits.data() + digits.size();
    const auto [parsedTo, error] = std::from_chars(digits.data(), end, numerator);
    constexpr std::size_t kMostPlaces = 9;
    if (error != std::errc() || parsedTo != end || fraction.size() > kMostPlaces) {
        return std::nullopt;
    }
    ULONGLONG denominator = 1;
    for (std::size_t place = 0; place < fraction.size(); ++place) {
        denominator *= 10;
    }
    const ULONGLONG common = std::gcd(numerator, denominator);
    if (numerator / common > MAXDWORD) {
        return std::nullopt;
    }
    return TagValues::Rational{static_cast<DWORD>(numerator / common), static_cast<DWORD>(denominator / common)};
}

void appendRational(std::string &bytes, const std::string &word) {
    const std::size_t slash = word.find('/');
    const auto value = slash == std::string::npos ? parseDecimal(word) : parseFraction(word, slash);
    if (!value) {
        throw UsageError("'" + word + "' is no RATIONAL value: these are written 204/1 or 96.5");
    }
    bytes.append(reinterpret_cast<const char *>(&value->numerator), sizeof value->numerator);
    bytes.append(reinterpret_cast<const char *>(&value->denominator), sizeof value->denominator);
}

} // namespace

DWORD parseTag(const std::string &text) {
    constexpr LONGLONG kMostTags = 0xFFFF;
    if (const auto named = tagNumber(text)) {
        return *named;
    }
    const auto number = parseNumber(text);
    if (!number || *number < 1 || *number > kMostTags) {
        throw UsageError("there is no tag '" + text + "': a tag is a number from 1 to 65535 or a TIFF name");
    }
    return static_cast<DWORD>(*number);
}

std::string tagLabel(DWORD tag) {
    const std::string number = std::to_string(tag);
    return tagName(tag).empty() ? "tag " + number : std::string(tagName(tag)) + " (" + number + ")";
}

bool isWritable(DWORD type) {
    return keepsWholeValues(type);
}

Type parseType(const std::string &text) {
    const auto type = typeNumber(text);
    if (!type || !isWritable(static_cast<DWORD>(*type))) {
        throw UsageError(std::string("option '--type' wants one of ") + kWritableTypes + ", not '" + text + "'");
    }
    return *type;
}

TagValues parseValues(DWORD tag, Type type, std::span<const std::string> words) {
    if (words.empty()) {
        throw UsageError("no value given");
    }
    if (type == Type::Ascii) {
        if (words.size() > 1) {
            throw UsageError("an ASCII tag has one text; one with blanks stands in quotes");
        }
        return textTag(tag, words.front());
    }
    if (type == Type::SLong && words.size() == 1) {
        throw UsageError("a single SLONG value cannot be stored so that other programs read it; LONG can");
    }
    std::string bytes;
    for (const std::string &word : words) {
        type == Type::Rational ? appendRational(bytes, word) : appendNumber(bytes, type, word);
    }
    return {tag, static_cast<DWORD>(type), static_cast<DWORD>(words.size()), std::move(bytes)};
}

} // namespace tool
