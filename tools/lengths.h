// Numbers of the command line that are lengths and sizes.
#pragma once

#include "tools/arguments.h"

#include <charconv>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// Throws UsageError for anything that is no number between least and most; `wants` says what is.
inline long parseNumber(std::string_view option, const std::string &text, long least, long most, const char *wants) {
    long number = 0;
    const char *const end = text.data() + text.size();
    const auto [parsedTo, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || parsedTo != end || number < least || number > most) {
        throw UsageError("option '" + std::string(option) + "' wants " + wants + ", not '" + text + "'");
    }
    return number;
}

// "10,20,30" in parts.
inline std::vector<std::string> splitAt(const std::string &text, char separator) {
    std::vector<std::string> parts(1);
    for (const char character : text) {
        if (character == separator) {
            parts.emplace_back();
        } else {
            parts.back() += character;
        }
    }
    return parts;
}

// A place as the command line has it.
inline std::string placeText(long x, long y) {
    return std::to_string(x) + "," + std::to_string(y);
}

} // namespace tool
