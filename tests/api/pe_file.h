// Reads what tests ask of a 32-bit Windows module file: the names it exports and the DLLs it imports from.
#pragma once

#include "support/paths.h"

#include <string>
#include <vector>

namespace vellum::test {

class PeFile {
public:
    // Not valid() when the bytes are no 32-bit module.
    explicit PeFile(Bytes file);

    [[nodiscard]] bool valid() const { return headers_ != 0; }
    // In the order of the export table.
    [[nodiscard]] std::vector<std::string> exports() const;
    // The DLLs' names in upper case, in the order of the import table.
    [[nodiscard]] std::vector<std::string> importedModules() const;
    // The imported functions of one of them; an import by number reads "#number".
    [[nodiscard]] std::vector<std::string> importsFrom(const std::string &upperCaseName) const;
    [[nodiscard]] DWORD timeStamp() const;
    [[nodiscard]] DWORD imageBase() const;

private:
    // Numbers and texts at a place of the file; 0 and "" behind its end.
    template <class T>
    [[nodiscard]] T number(std::size_t position) const;
    [[nodiscard]] std::string text(std::size_t position) const;
    // The place in the file of an address relative to the image base; 0 when no section holds it.
    [[nodiscard]] std::size_t place(DWORD relativeAddress) const;
    [[nodiscard]] std::size_t directory(unsigned index) const;

    Bytes file_;
    std::size_t headers_ = 0; // of "PE\0\0"
};

} // namespace vellum::test
