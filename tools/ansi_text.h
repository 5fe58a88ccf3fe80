// Texts for the library, which takes them in the ANSI code page and with CR LF between lines. On the command line they
// are UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tool {

// False when characters had to be replaced.
bool toAnsi(const std::wstring &wide, std::string &ansi);

// A text of the command line. Throws UsageError, with what it is, when the code page lacks one of its characters.
std::string ansiText(std::string_view what, const std::string &utf8);

// The lines of a text, which end with CR LF, LF or CR. Behind a line end there is always another line, be it empty.
class Lines {
public:
    explicit Lines(std::string_view text) : rest_(text) {}

    // Without its line end; nothing when there is no other line.
    std::optional<std::string_view> next();

private:
    std::optional<std::string_view> rest_;
};

// The text with CR LF between its lines.
std::string withCrLf(std::string_view text);

} // namespace tool
