// Making and deleting temporary files.
#include "tools/temporary_file.h"

#include <windows.h>

#include <array>

namespace tool {

namespace {

FileName makeFile() {
    std::array<wchar_t, MAX_PATH + 1> folder{};
    std::array<wchar_t, MAX_PATH + 1> path{};
    GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
    GetTempFileNameW(folder.data(), L"vlm", 0, path.data());
    return FileName(toUtf8(path.data()));
}

} // namespace

TemporaryFile::TemporaryFile() : name_(makeFile()) {}

TemporaryFile::~TemporaryFile() {
    DeleteFileW(name_.forSystem().c_str());
}

} // namespace tool
