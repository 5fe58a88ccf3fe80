// Reading the text of a fax.
#include "tools/fax_text.h"

#include "tools/ansi_text.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

namespace tool {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kSwappedUtf16Mark = "\xFE\xFF"; // high bytes first

// False also for an empty text.
bool isUtf8(std::string_view bytes) {
    return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                               0) != 0;
}

bool isAscii(std::string_view bytes) {
    return std::ranges::all_of(bytes, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string utf8OfUtf16(std::string_view bytes, bool swapped) {
    std::wstring wide;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        wide += static_cast<wchar_t>(swapped ? first << 8 | second : second << 8 | first);
    }
    return toUtf8(wide);
}

// The first character of a text that the code page lacks.
std::string lackingCharacter(std::string_view utf8) {
    const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    std::string character;
    while (!utf8.empty()) {
        std::size_t length = 1;
        while (length < utf8.size() && isContinuation(utf8[length])) {
            ++length;
        }
        character = utf8.substr(0, length);
        if (std::string ansi; !toAnsi(toWide(character), ansi)) {
            break;
        }
        utf8.remove_prefix(length);
    }
    return character;
}

FaxText fromUtf8(std::string_view bytes) {
    FaxText result;
    Lines lines(bytes);
    std::size_t number = 0;
    while (const auto line = lines.next()) {
        const auto fail = [&result, number](const std::string &reason) {
            result.failure = "line " + std::to_string(number + 1) + reason;
            return result;
        };
        if (!line->empty() && !isUtf8(*line)) {
            return fail(" is not UTF-8, as which the file begins.");
        }
        std::string ansi;
        if (!toAnsi(toWide(*line), ansi)) {
            return fail(" has a character that the system's code page lacks: '" + lackingCharacter(*line) + "'");
        }
        result.text += (number == 0 ? "" : "\r\n") + ansi;
        ++number;
    }
    return result;
}

FaxText fromUtf16(std::string_view bytes, bool swapped) {
    if (bytes.size() % 2 != 0) {
        return {"", "begins as UTF-16, but ends within a character."};
    }
    return fromUtf8(utf8OfUtf16(bytes, swapped));
}

FaxText fromBytes(std::string_view bytes) {
    if (bytes.starts_with(kUtf8Mark)) {
        return fromUtf8(bytes.substr(kUtf8Mark.size()));
    }
    if (bytes.starts_with(kUtf16Mark) || bytes.starts_with(kSwappedUtf16Mark)) {
        return fromUtf16(bytes.substr(kUtf16Mark.size()), bytes.starts_with(kSwappedUtf16Mark));
    }
    if (!isAscii(bytes) && isUtf8(bytes)) {
        return fromUtf8(bytes);
    }
    return {withCrLf(bytes), ""};
}

std::optional<std::string> readFile(const FileName &name) {
    std::ifstream file(std::filesystem::path(name.forSystem()), std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    return file.is_open() && !file.bad() ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace

FaxText readFaxText(const FileName &name) {
    const auto bytes = readFile(name);
    if (!bytes) {
        return {"", name.isMissing() ? "there is no such file." : "cannot be read."};
    }
    FaxText result = fromBytes(*bytes);
    // Behind the last line a line end would begin another page when the one before is full.
    if (result.text.ends_with("\r\n")) {
        result.text.resize(result.text.size() - 2);
    }
    return result;
}

} // namespace tool
