// Texts for the library, which takes them in the ANSI code page. On the command line they are UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace tool {

// False when characters had to be replaced.
bool toAnsi(const std::wstring &wide, std::string &ansi);

// A text of the command line. Throws UsageError, with what it is, when the code page lacks one of its characters.
std::string ansiText(std::string_view what, const std::string &utf8);

} // namespace tool
