// Windows: files that another program has open.
#pragma once

#include <windows.h>

#include <string>

namespace vellum::test {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

// Another program's handle; false when it did not get one.
class Other {
public:
    Other(const std::string &path, DWORD access, DWORD sharing)
        : handle_(CreateFileA(path.c_str(), access, sharing, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    Other(const Other &) = delete;
    Other &operator=(const Other &) = delete;
    ~Other() {
        if (*this) {
            CloseHandle(handle_);
        }
    }
    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle_;
};

} // namespace vellum::test
