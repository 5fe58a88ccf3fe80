// Makes files under names that are free, and moves them over others.
#include "write/replacement_file.h"

#include <cstring>
#include <utility>

namespace vellum {
namespace {

constexpr std::size_t kExtensionLength = 3;
constexpr int kMoreNames = 100;

HANDLE systemHandle(StreamHandle stream) {
    return reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(stream));
}

// Where the extension of a path's file name is to stand: behind its last dot, if it has one.
std::size_t extensionPlace(const char *path, std::size_t length) {
    std::size_t place = length;
    for (std::size_t i = length; i > 0 && path[i - 1] != '\\' && path[i - 1] != '/' && path[i - 1] != ':'; --i) {
        if (path[i - 1] == '.') {
            place = i - 1;
            break;
        }
    }
    return place;
}

} // namespace

ReplacementFile::~ReplacementFile() {
    if (stream_ != kNoStream) {
        closeStream(stream_);
    }
    if (exists_) {
        DeleteFileA(path_);
    }
}

// Never takes a file that is there.
bool ReplacementFile::tryCreate() {
    HANDLE file =
        CreateFileA(path_, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    stream_ = static_cast<StreamHandle>(reinterpret_cast<LONG_PTR>(file));
    exists_ = true;
    return true;
}

Error ReplacementFile::create(const char *oldPath) {
    // Not every system minds when a read-only file is replaced. Its owner does.
    if ((GetFileAttributesA(oldPath) & FILE_ATTRIBUTE_READONLY) != 0) {
        return Error::Io;
    }
    const std::size_t length = std::strlen(oldPath);
    const std::size_t dot = extensionPlace(oldPath, length);
    if (dot + 1 + kExtensionLength >= sizeof path_) {
        return Error::PathTooLong;
    }
    std::memcpy(path_, oldPath, dot);
    std::memcpy(path_ + dot, ".~~~", kExtensionLength + 2);
    char *const number = path_ + dot + 2;
    for (int next = 0; !tryCreate(); ++next) {
        // Only a name that is taken makes another one worth trying.
        if (next == kMoreNames || GetFileAttributesA(path_) == INVALID_FILE_ATTRIBUTES) {
            return Error::Io;
        }
        number[0] = static_cast<char>('0' + next / 10);
        number[1] = static_cast<char>('0' + next % 10);
    }
    return Error::None;
}

Error ReplacementFile::flush() {
    return FlushFileBuffers(systemHandle(stream_)) != 0 ? Error::None : Error::Io;
}

Error ReplacementFile::replace(const char *oldPath) {
    const bool closed = closeStream(std::exchange(stream_, kNoStream)) == 0;
    if (!closed || MoveFileExA(path_, oldPath, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
        return Error::Io;
    }
    exists_ = false;
    return Error::None;
}

} // namespace vellum
