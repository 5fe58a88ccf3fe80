// A file that is there already, as the library's functions take it.
#pragma once

#include "tools/file_name.h"
#include "vellum32.h"

#include <utility>

namespace tool {

class RawFile {
public:
    RawFile(const FileName &name, DWORD access, DWORD sharing)
        : file_(CreateFileW(name.forSystem().c_str(), access, sharing, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                            nullptr)),
          error_(file_ == INVALID_HANDLE_VALUE ? GetLastError() : ERROR_SUCCESS) {}
    RawFile(const RawFile &) = delete;
    RawFile &operator=(const RawFile &) = delete;
    ~RawFile() { close(); }

    [[nodiscard]] bool isOpen() const { return file_ != INVALID_HANDLE_VALUE; }
    [[nodiscard]] DWORD error() const { return error_; }
    [[nodiscard]] StreamHandle stream() const { return static_cast<StreamHandle>(reinterpret_cast<INT_PTR>(file_)); }
    [[nodiscard]] HFILE handle() const { return stream(); }

    // False when the system could not write what it had taken.
    bool close() {
        const HANDLE file = std::exchange(file_, INVALID_HANDLE_VALUE);
        // ReadIOCAHeader has closed a file in which there is no segment.
        DWORD flags = 0;
        return file == INVALID_HANDLE_VALUE || GetHandleInformation(file, &flags) == 0 || CloseHandle(file) != 0;
    }

private:
    HANDLE file_;
    DWORD error_;
};

inline RawFile openForReading(const FileName &name) {
    return {name, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE};
}

} // namespace tool
