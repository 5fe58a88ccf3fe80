// A file that appears under its name only when it is whole: it is written beside it, under a name of its own, and then
// takes the name in one step. Until then an older file of the name stays untouched, and whatever goes wrong, nothing
// half-written stays behind.
#pragma once

#include "tools/file_name.h"

#include <windows.h>

#include <cstddef>
#include <string>

namespace tool {

// "the disk is full", for messages.
std::string systemMessage(DWORD error);
// "cannot be written: the disk is full."
std::string writeFailure(DWORD error);

class OutputFile {
public:
    explicit OutputFile(const FileName &name);
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;
    ~OutputFile();

    void write(const void *data, std::size_t bytes);
    // Closes the file, for others to write it. Result: the name that it has until then.
    const FileName &handOver();
    // Gives the file its name. False when that failed or anything before it did; failure() says why.
    [[nodiscard]] bool commit();
    [[nodiscard]] const std::string &failure() const { return failure_; }

private:
    void fail(DWORD systemError);

    FileName name_;
    FileName beside_;
    HANDLE file_;
    bool exists_ = false; // the file beside is there and has to be renamed or removed
    std::string failure_;
};

} // namespace tool
