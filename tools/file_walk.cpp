// Walking folders.
#include "tools/file_walk.h"

#include "tools/looked_at_file.h"

#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tool {

namespace {

constexpr const char *kExtensions[] = {".tif", ".tiff", ".cal", ".cals"};

} // namespace

void FileWalk::folder(const FileName &name) {
    if (!isNew(name)) {
        return;
    }
    std::vector<std::wstring> files;
    std::vector<std::wstring> folders;
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(name.child(L"*").forSystem().c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        if (GetLastError() != ERROR_FILE_NOT_FOUND) { // which an empty root folder gives
            onFailure_(name);
        }
        return;
    }
    do {
        const std::wstring entry = found.cFileName;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            files.push_back(entry);
        } else if (entry != L"." && entry != L"..") {
            folders.push_back(entry);
        }
    } while (FindNextFileW(search, &found) != 0);
    FindClose(search);

    std::ranges::sort(files);
    std::ranges::sort(folders);
    for (const std::wstring &entry : files) {
        const FileName file = name.child(entry);
        const auto is = [&file](const char *extension) { return file.hasExtension(extension); };
        if (std::ranges::any_of(kExtensions, is)) {
            onFile_(file);
        }
    }
    for (const std::wstring &entry : folders) {
        folder(name.child(entry));
    }
}

bool FileWalk::isNew(const FileName &folder) {
    const auto information = LookedAtFile(folder.forSystem()).information();
    if (!information) {
        return true; // the listing will tell what is wrong
    }
    const ULONGLONG number = (ULONGLONG{information->nFileIndexHigh} << 32) | information->nFileIndexLow;
    return walked_.emplace(information->dwVolumeSerialNumber, number).second;
}

} // namespace tool
