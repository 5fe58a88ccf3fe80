// From UTF-16 to the ANSI code page.
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

} // namespace tool
