// A file or folder that is only looked at: what others do with it does not matter, nor does it to them.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace tool {

class LookedAtFile {
public:
    explicit LookedAtFile(const std::wstring &name)
        : file_(CreateFileW(name.c_str(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                            nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {}
    LookedAtFile(const LookedAtFile &) = delete;
    LookedAtFile &operator=(const LookedAtFile &) = delete;
    ~LookedAtFile() {
        if (file_ != INVALID_HANDLE_VALUE) {
            CloseHandle(file_);
        }
    }

    // Its numbers are only good as long as the object lives.
    [[nodiscard]] std::optional<BY_HANDLE_FILE_INFORMATION> information() const {
        BY_HANDLE_FILE_INFORMATION information{};
        const bool known = file_ != INVALID_HANDLE_VALUE && GetFileInformationByHandle(file_, &information) != 0;
        return known ? std::optional(information) : std::nullopt;
    }

private:
    HANDLE file_;
};

} // namespace tool
