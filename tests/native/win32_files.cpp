// Files over POSIX. A file handle is a descriptor plus a bias, so that no small number is taken for one by accident.
// Backslashes in paths count as slashes. Sharing is not modelled; a directory does not open, as on Windows.
#include "native/shim.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace vellum::shim {
namespace {

constexpr int kBias = 0x100;

int descriptor(HFILE file) {
    return file - kBias;
}
int descriptor(HANDLE file) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(file)) - kBias;
}

std::string posixPath(LPCSTR path) {
    std::string posix(path);
    for (char &c : posix) {
        c = c == '\\' ? '/' : c;
    }
    return posix;
}

// The biased handle, or -1.
int openBiased(LPCSTR path, int flags) {
    if (state.openFile.hit() || path == nullptr) {
        state.lastError = ERROR_FILE_NOT_FOUND;
        return HFILE_ERROR;
    }
    const int fd = ::open(posixPath(path).c_str(), flags | O_CLOEXEC, 0666);
    if (fd < 0) {
        state.lastError = errno == EEXIST ? ERROR_FILE_EXISTS : ERROR_FILE_NOT_FOUND;
        return HFILE_ERROR;
    }
    struct stat64 status;
    if (::fstat64(fd, &status) != 0 || S_ISDIR(status.st_mode)) {
        ::close(fd);
        state.lastError = ERROR_ACCESS_DENIED;
        return HFILE_ERROR;
    }
    ++state.openFiles;
    return fd + kBias;
}

int accessFlags(UINT flags) {
    switch (flags & 3) {
    case OF_WRITE:
        return O_WRONLY;
    case OF_READWRITE:
        return O_RDWR;
    default:
        return O_RDONLY;
    }
}

bool closeBiased(int fd) {
    if (fd < 0 || ::close(fd) != 0) {
        state.lastError = ERROR_INVALID_HANDLE;
        return false;
    }
    --state.openFiles;
    return true;
}

LONG readSome(int fd, void *buffer, size_t count) {
    return state.read.hit() || fd < 0 ? -1 : static_cast<LONG>(::read(fd, buffer, count));
}

LONG writeSome(int fd, const void *buffer, size_t count) {
    return state.write.hit() || fd < 0 ? -1 : static_cast<LONG>(::write(fd, buffer, count));
}

// Positions are those of the old calls: 32 bits, and none before the start.
LONG seekTo(int fd, LONG offset, DWORD origin) {
    static constexpr int kWhence[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (state.seek.hit() || fd < 0 || origin > 2) {
        return -1;
    }
    const auto position = ::lseek64(fd, offset, kWhence[origin]);
    if (position < 0) {
        state.lastError = ERROR_NEGATIVE_SEEK;
    }
    return static_cast<LONG>(position);
}

} // namespace
} // namespace vellum::shim

using namespace vellum::shim;

extern "C" {

HFILE WINAPI OpenFile(LPCSTR path, OFSTRUCT *opened, UINT flags) {
    std::memset(opened, 0, sizeof *opened);
    opened->cBytes = sizeof *opened;
    const DWORD length = path == nullptr ? 0 : GetFullPathNameA(path, OFS_MAXPATHNAME, opened->szPathName, nullptr);
    if (length == 0 || length >= OFS_MAXPATHNAME) {
        state.lastError = ERROR_FILE_NOT_FOUND;
        return HFILE_ERROR;
    }
    if ((flags & OF_PARSE) != 0) {
        return 0;
    }
    if ((flags & OF_DELETE) != 0) {
        return DeleteFileA(path) ? 1 : HFILE_ERROR;
    }
    const int creating = (flags & OF_CREATE) != 0 ? O_CREAT | O_TRUNC : 0;
    const HFILE file = openBiased(path, accessFlags(flags) | creating);
    if (file != HFILE_ERROR && (flags & OF_EXIST) != 0) {
        _lclose(file);
    }
    return file;
}

HFILE WINAPI _lopen(LPCSTR path, int flags) {
    return openBiased(path, accessFlags(static_cast<UINT>(flags)));
}

HFILE WINAPI _lcreat(LPCSTR path, int) {
    return openBiased(path, O_RDWR | O_CREAT | O_TRUNC);
}

UINT WINAPI _lread(HFILE file, LPVOID buffer, UINT count) {
    return static_cast<UINT>(readSome(descriptor(file), buffer, count));
}

// Writing no bytes cuts the file at the position.
UINT WINAPI _lwrite(HFILE file, LPCSTR buffer, UINT count) {
    if (count == 0) {
        const auto position = ::lseek64(descriptor(file), 0, SEEK_CUR);
        return state.write.hit() || ::ftruncate64(descriptor(file), position) != 0 ? ~0u : 0;
    }
    return static_cast<UINT>(writeSome(descriptor(file), buffer, count));
}

LONG WINAPI _hread(HFILE file, LPVOID buffer, LONG count) {
    return readSome(descriptor(file), buffer, static_cast<size_t>(count));
}

LONG WINAPI _hwrite(HFILE file, LPCSTR buffer, LONG count) {
    return static_cast<LONG>(_lwrite(file, buffer, static_cast<UINT>(count)));
}

LONG WINAPI _llseek(HFILE file, LONG offset, int origin) {
    return seekTo(descriptor(file), offset, static_cast<DWORD>(origin));
}

HFILE WINAPI _lclose(HFILE file) {
    return closeBiased(descriptor(file)) ? 0 : HFILE_ERROR;
}

HANDLE WINAPI CreateFileA(LPCSTR path, DWORD access, DWORD, SECURITY_ATTRIBUTES *, DWORD creation, DWORD, HANDLE) {
    int flags = (access & GENERIC_WRITE) == 0 ? O_RDONLY : (access & GENERIC_READ) != 0 ? O_RDWR : O_WRONLY;
    switch (creation) {
    case CREATE_NEW:
        flags |= O_CREAT | O_EXCL;
        break;
    case CREATE_ALWAYS:
        flags |= O_CREAT | O_TRUNC;
        break;
    case OPEN_ALWAYS:
        flags |= O_CREAT;
        break;
    case TRUNCATE_EXISTING:
        flags |= O_TRUNC;
        break;
    default:
        break;
    }
    return reinterpret_cast<HANDLE>(openBiased(path, flags));
}

BOOL WINAPI CloseHandle(HANDLE handle) {
    return closeBiased(descriptor(handle));
}

DWORD WINAPI GetFileAttributesA(LPCSTR path) {
    struct stat64 status;
    if (::stat64(posixPath(path).c_str(), &status) != 0) {
        state.lastError = ERROR_FILE_NOT_FOUND;
        return INVALID_FILE_ATTRIBUTES;
    }
    return S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
}

DWORD WINAPI GetFileSize(HANDLE file, LPDWORD high) {
    struct stat64 status;
    if (::fstat64(descriptor(file), &status) != 0) {
        state.lastError = ERROR_INVALID_HANDLE;
        return 0xFFFFFFFF;
    }
    if (high != nullptr) {
        *high = static_cast<DWORD>(status.st_size >> 32);
    }
    return static_cast<DWORD>(status.st_size);
}

DWORD WINAPI SetFilePointer(HANDLE file, LONG offset, LONG *, DWORD origin) {
    return static_cast<DWORD>(seekTo(descriptor(file), offset, origin));
}

BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD count, LPDWORD done, void *) {
    const LONG got = readSome(descriptor(file), buffer, count);
    *done = got < 0 ? 0 : static_cast<DWORD>(got);
    return got >= 0;
}

BOOL WINAPI WriteFile(HANDLE file, LPCVOID buffer, DWORD count, LPDWORD done, void *) {
    const LONG put = writeSome(descriptor(file), buffer, count);
    *done = put < 0 ? 0 : static_cast<DWORD>(put);
    return put >= 0;
}

// Does not ask the file system: "." and ".." are taken out of the text.
DWORD WINAPI GetFullPathNameA(LPCSTR path, DWORD length, LPSTR buffer, LPSTR *filePart) {
    const std::filesystem::path posix = posixPath(path);
    if (posix.empty()) {
        return 0;
    }
    const std::string full = std::filesystem::absolute(posix).lexically_normal().string();
    if (full.size() + 1 > length) {
        return static_cast<DWORD>(full.size() + 1);
    }
    std::memcpy(buffer, full.c_str(), full.size() + 1);
    if (filePart != nullptr) {
        *filePart = buffer + full.rfind('/') + 1;
    }
    return static_cast<DWORD>(full.size());
}

BOOL WINAPI FlushFileBuffers(HANDLE file) {
    return !state.write.hit() && descriptor(file) >= 0;
}

BOOL WINAPI DeleteFileA(LPCSTR path) {
    return !state.remove.hit() && ::unlink(posixPath(path).c_str()) == 0;
}

BOOL WINAPI MoveFileA(LPCSTR from, LPCSTR to) {
    if (GetFileAttributesA(to) != INVALID_FILE_ATTRIBUTES) {
        state.lastError = ERROR_ACCESS_DENIED;
        return FALSE;
    }
    return std::rename(posixPath(from).c_str(), posixPath(to).c_str()) == 0;
}

BOOL WINAPI MoveFileExA(LPCSTR from, LPCSTR to, DWORD flags) {
    if (state.move.hit()) {
        state.lastError = ERROR_ACCESS_DENIED;
        return FALSE;
    }
    if ((flags & MOVEFILE_REPLACE_EXISTING) == 0) {
        return MoveFileA(from, to);
    }
    return std::rename(posixPath(from).c_str(), posixPath(to).c_str()) == 0;
}

UINT WINAPI SetHandleCount(UINT count) {
    return count;
}

} // extern "C"
