// File names: as the user wrote them, as the system wants them and as the library wants them.
//
// Inside the program names are UTF-8. The system is asked with wide characters, and with the prefix for long paths when
// they are long. The library takes the characters of the ANSI code page only: a name that has others is handed over
// under its short name, if the file has one.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

std::wstring toWide(std::string_view utf8);
std::string toUtf8(std::wstring_view wide);

class FileName {
public:
    // A name from the command line. Under Wine a Unix path that starts with "/" is understood from any drive.
    explicit FileName(std::string userText);

    // For messages and output.
    [[nodiscard]] const std::string &shown() const { return shown_; }
    // For calls of the system.
    [[nodiscard]] std::wstring forSystem() const;
    // For calls of the library.
    [[nodiscard]] std::string forLibrary() const;
    // Whether the library can open the file, which must be there, under that name.
    [[nodiscard]] bool isForLibrary() const;

    [[nodiscard]] bool isFolder() const;
    // True for a file that is marked so. Not everywhere does the system itself keep others from changing it.
    [[nodiscard]] bool isReadOnlyFile() const;
    // False also for what exists and cannot be looked at.
    [[nodiscard]] bool exists() const;
    // True when the system says that there is nothing of this name.
    [[nodiscard]] bool isMissing() const;
    // The file's bytes; nothing when it cannot be looked at.
    [[nodiscard]] std::optional<unsigned long long> size() const;
    // True for a name of the same file, be it a hard link, a symbolic link, a short name or another spelling. Names of
    // which one cannot be looked at, as there is no such file yet, are compared as they stand.
    [[nodiscard]] bool sameAs(const FileName &other) const;
    // True when the name ends so, upper or lower case.
    [[nodiscard]] bool hasExtension(std::string_view dotAndLetters) const;

    // A file in this folder.
    [[nodiscard]] FileName child(std::wstring_view name) const;
    // The name with "-007" before its extension, for page 7.
    [[nodiscard]] FileName forPage(unsigned long pageNumber) const;
    // The name with a suffix behind it.
    [[nodiscard]] FileName withSuffix(std::string_view suffix) const;

private:
    FileName(std::string shown, std::wstring system) : shown_(std::move(shown)), system_(std::move(system)) {}

    std::string shown_;
    std::wstring system_;
};

// Names from the command line. Those with * or ? stand for the files they match, in order of name, where the shell has
// not done so already; a pattern that matches nothing stays as it is.
std::vector<FileName> namesFromOperands(const std::vector<std::string> &operands);

} // namespace tool
