// From UTF-16 to the ANSI code page, and lines.
#include "tools/ansi_text.h"

#include "tools/arguments.h"
#include "tools/file_name.h"

#include <windows.h>

namespace tool {

bool toAnsi(const std::wstring &wide, std::string &ansi) {
    const bool utf8 = GetACP() == CP_UTF8;
    const DWORD flags = utf8 ? 0 : WC_NO_BEST_FIT_CHARS;
    BOOL replaced = FALSE;
    BOOL *const replacedPointer = utf8 ? nullptr : &replaced;
    const int wideLength = static_cast<int>(wide.size());
    const int length = WideCharToMultiByte(CP_ACP, flags, wide.data(), wideLength, nullptr, 0, nullptr, nullptr);
    ansi.assign(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, flags, wide.data(), wideLength, ansi.data(), length, nullptr, replacedPointer);
    return replaced == FALSE;
}

std::string ansiText(std::string_view what, const std::string &utf8) {
    std::string ansi;
    if (!toAnsi(toWide(utf8), ansi)) {
        throw UsageError(std::string(what) + " has characters that the system's code page lacks: '" + utf8 + "'");
    }
    return ansi;
}

std::optional<std::string_view> Lines::next() {
    if (!rest_) {
        return std::nullopt;
    }
    const std::string_view all = *rest_;
    const std::size_t end = all.find_first_of("\r\n");
    if (end == std::string_view::npos) {
        rest_.reset();
    } else {
        rest_ = all.substr(end + (all.substr(end, 2) == "\r\n" ? 2 : 1));
    }
    return all.substr(0, end);
}

std::string withCrLf(std::string_view text) {
    std::string joined;
    Lines lines(text);
    bool first = true;
    while (const auto line = lines.next()) {
        joined += first ? "" : "\r\n";
        joined += *line;
        first = false;
    }
    return joined;
}

} // namespace tool
