// Writing beside and renaming.
#include "tools/output_file.h"

#include <algorithm>
#include <utility>

namespace tool {

std::string systemMessage(DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return "there is no such folder";
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
        return "access is denied";
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        return "another program is using it";
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return "the disk is full";
    case ERROR_INVALID_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
        return "the name is not valid";
    default:
        return "system error " + std::to_string(error);
    }
}

std::string writeFailure(DWORD error) {
    return "cannot be written: " + systemMessage(error) + ".";
}

OutputFile::OutputFile(const FileName &name)
    : name_(name), beside_(name.withSuffix("." + std::to_string(GetCurrentProcessId()) + ".part")),
      file_(CreateFileW(beside_.forSystem().c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                        nullptr)) {
    exists_ = file_ != INVALID_HANDLE_VALUE;
    if (!exists_) {
        fail(GetLastError());
    } else if (name_.isReadOnlyFile()) {
        fail(ERROR_ACCESS_DENIED);
    }
}

OutputFile::~OutputFile() {
    if (file_ != INVALID_HANDLE_VALUE) {
        CloseHandle(file_);
    }
    if (exists_) {
        DeleteFileW(beside_.forSystem().c_str());
    }
}

void OutputFile::write(const void *data, std::size_t bytes) {
    constexpr std::size_t kPiece = std::size_t{1} << 24;
    const char *next = static_cast<const char *>(data);
    while (bytes > 0 && failure_.empty()) {
        DWORD written = 0;
        const DWORD piece = static_cast<DWORD>(std::min(bytes, kPiece));
        if (WriteFile(file_, next, piece, &written, nullptr) == 0) {
            fail(GetLastError());
        } else if (written == 0) {
            fail(ERROR_DISK_FULL);
        }
        next += written;
        bytes -= written;
    }
}

const FileName &OutputFile::handOver() {
    const HANDLE file = std::exchange(file_, INVALID_HANDLE_VALUE);
    if (file != INVALID_HANDLE_VALUE && CloseHandle(file) == 0) {
        fail(GetLastError());
    }
    return beside_;
}

bool OutputFile::commit() {
    handOver();
    if (failure_.empty()) {
        constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
        if (MoveFileExW(beside_.forSystem().c_str(), name_.forSystem().c_str(), kFlags) != 0) {
            exists_ = false;
        } else {
            fail(GetLastError());
        }
    }
    return failure_.empty();
}

void OutputFile::fail(DWORD systemError) {
    if (failure_.empty()) {
        failure_ = writeFailure(systemError);
    }
}

} // namespace tool
