// A file that the library writes by its name, and that appears under its own name only when it is whole: until then it
// lies beside it or, where the library could not take that name, among the temporary files.
#pragma once

#include "tools/output_file.h"

#include <memory>
#include <string>

namespace tool {

class TemporaryFile;

class LibraryFile {
public:
    enum class Start {
        Empty,
        OldContent, // a copy of the file that has the name now
    };

    LibraryFile(const FileName &name, Start start);
    LibraryFile(const LibraryFile &) = delete;
    LibraryFile &operator=(const LibraryFile &) = delete;
    ~LibraryFile();

    // Where the file lies until commit().
    [[nodiscard]] const FileName &place() const { return place_; }
    // The same for calls of the library.
    [[nodiscard]] const std::string &libraryPath() const { return libraryPath_; }
    // Gives the file its name. False when that failed or anything before it did; failure() says why.
    [[nodiscard]] bool commit();
    [[nodiscard]] const std::string &failure() const { return failure_; }

private:
    void copy(const FileName &from, const FileName &to);
    void fail(std::string failure);

    OutputFile file_;
    std::unique_ptr<TemporaryFile> elsewhere_;
    FileName place_;
    std::string libraryPath_;
    std::string failure_;
};

} // namespace tool
