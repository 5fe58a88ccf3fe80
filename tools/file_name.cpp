// Conversions of file names between the user, the system and the library.
#include "tools/file_name.h"

#include "tools/ansi_text.h"
#include "tools/looked_at_file.h"

#include <windows.h>

#include <algorithm>
#include <utility>

namespace tool {

namespace {

constexpr std::size_t kLongPath = 240; // longer names get the prefix that lifts the system's limit

std::wstring fullPath(const std::wstring &name) {
    const DWORD needed = GetFullPathNameW(name.c_str(), 0, nullptr, nullptr);
    std::wstring full(needed, L'\0');
    const DWORD length = GetFullPathNameW(name.c_str(), needed, full.data(), nullptr);
    if (length == 0 || length >= needed) {
        return name;
    }
    full.resize(length);
    return full;
}

// Wine's own translation of a Unix path; empty on Windows.
std::wstring translatedUnixPath(const std::string &path) {
    using Translate = wchar_t *(__cdecl *)(const char *);
    const FARPROC found = GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_dos_file_name");
    if (found == nullptr) {
        return {};
    }
    wchar_t *const translated = reinterpret_cast<Translate>(reinterpret_cast<void *>(found))(path.c_str());
    if (translated == nullptr) {
        return {};
    }
    std::wstring result = translated;
    HeapFree(GetProcessHeap(), 0, translated);
    return result;
}

// True when the translated path is the Unix path on the current drive. fullPath() would not do for this: Wine sees to
// it that a Unix path is understood from any drive, but only if the file exists.
bool liesOnCurrentDrive(const std::wstring &translated, std::wstring_view unixPath) {
    const std::wstring here = fullPath(L".");
    std::wstring withoutDrive = translated.substr(std::min<std::size_t>(translated.size(), 2));
    std::ranges::replace(withoutDrive, L'\\', L'/');
    return translated.substr(0, 2) == here.substr(0, 2) && withoutDrive == unixPath;
}

// What the system calls the file that the user wrote so. A Unix path that the system reads right as it stands keeps its
// few characters, of which the library allows 149.
std::wstring systemName(const std::string &userText) {
    std::wstring wide = toWide(userText);
    if (userText.starts_with('/') && !userText.starts_with("//")) {
        std::wstring translated = translatedUnixPath(userText);
        if (!translated.empty() && !liesOnCurrentDrive(translated, wide)) {
            return translated;
        }
    }
    return wide;
}

// Whether both are the same file. Not every file system has a serial number, so that size and time count, too.
bool isSameFile(const BY_HANDLE_FILE_INFORMATION &a, const BY_HANDLE_FILE_INFORMATION &b) {
    return a.dwVolumeSerialNumber == b.dwVolumeSerialNumber && a.nFileIndexHigh == b.nFileIndexHigh &&
           a.nFileIndexLow == b.nFileIndexLow && a.nFileSizeHigh == b.nFileSizeHigh &&
           a.nFileSizeLow == b.nFileSizeLow && CompareFileTime(&a.ftLastWriteTime, &b.ftLastWriteTime) == 0;
}

bool isSeparator(char c) {
    return c == '/' || c == '\\' || c == ':';
}

std::size_t baseStart(std::string_view name) {
    const auto separator = std::find_if(name.rbegin(), name.rend(), isSeparator);
    return static_cast<std::size_t>(name.rend() - separator);
}

// Position of the dot of the extension, or the name's end.
std::size_t extensionStart(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos || dot <= baseStart(name) ? name.size() : dot;
}

std::vector<FileName> matches(const std::string &pattern) {
    const std::string folder = pattern.substr(0, baseStart(pattern));
    std::vector<FileName> names;
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(FileName(pattern).forSystem().c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        const std::wstring_view name = found.cFileName;
        if (name != L"." && name != L"..") {
            names.emplace_back(folder + toUtf8(name));
        }
    } while (FindNextFileW(search, &found) != 0);
    FindClose(search);
    std::ranges::sort(names, {}, &FileName::shown);
    return names;
}

} // namespace

std::wstring toWide(std::string_view utf8) {
    const int bytes = static_cast<int>(utf8.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, wide.data(), length);
    return wide;
}

std::string toUtf8(std::wstring_view wide) {
    const int units = static_cast<int>(wide.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, utf8.data(), length, nullptr, nullptr);
    return utf8;
}

FileName::FileName(std::string userText) : shown_(std::move(userText)), system_(systemName(shown_)) {}

std::wstring FileName::forSystem() const {
    if (system_.size() < kLongPath || system_.starts_with(L"\\\\")) {
        return system_;
    }
    return L"\\\\?\\" + fullPath(system_);
}

std::string FileName::forLibrary() const {
    std::string ansi;
    if (toAnsi(system_, ansi)) {
        return ansi;
    }
    const DWORD needed = GetShortPathNameW(system_.c_str(), nullptr, 0);
    std::wstring shortName(needed, L'\0');
    shortName.resize(GetShortPathNameW(system_.c_str(), shortName.data(), needed));
    std::string shortAnsi;
    return !shortName.empty() && toAnsi(shortName, shortAnsi) ? shortAnsi : ansi;
}

bool FileName::isForLibrary() const {
    constexpr std::size_t kLongestForLibrary = 149;
    const std::string name = forLibrary();
    std::string ansi;
    return name.size() <= kLongestForLibrary && (toAnsi(system_, ansi) || ansi != name);
}

bool FileName::isFolder() const {
    const DWORD attributes = GetFileAttributesW(forSystem().c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool FileName::isReadOnlyFile() const {
    constexpr DWORD kBoth = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
    const DWORD attributes = GetFileAttributesW(forSystem().c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & kBoth) == FILE_ATTRIBUTE_READONLY;
}

bool FileName::exists() const {
    return GetFileAttributesW(forSystem().c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool FileName::isMissing() const {
    if (exists()) {
        return false;
    }
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

std::optional<unsigned long long> FileName::size() const {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (GetFileAttributesExW(forSystem().c_str(), GetFileExInfoStandard, &data) == 0) {
        return std::nullopt;
    }
    return (ULONGLONG{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
}

bool FileName::sameAs(const FileName &other) const {
    if (lstrcmpiW(fullPath(system_).c_str(), fullPath(other.system_).c_str()) == 0) {
        return true;
    }
    const LookedAtFile thisFile(forSystem());
    const LookedAtFile otherFile(other.forSystem());
    const auto here = thisFile.information();
    const auto there = otherFile.information();
    return here && there && isSameFile(*here, *there);
}

bool FileName::hasExtension(std::string_view dotAndLetters) const {
    const std::string_view extension = std::string_view(shown_).substr(extensionStart(shown_));
    return std::ranges::equal(extension, dotAndLetters,
                              [](char a, char b) { return a == b || (a >= 'A' && a <= 'Z' && a - 'A' + 'a' == b); });
}

FileName FileName::child(std::wstring_view name) const {
    std::string shown = shown_;
    std::wstring system = system_;
    if (shown.empty() || !isSeparator(shown.back())) {
        // The folder's own kind of separator: a Unix path stays one.
        shown += shown.find('\\') == std::string::npos ? '/' : '\\';
    }
    if (system.empty() || (system.back() != L'/' && system.back() != L'\\' && system.back() != L':')) {
        system += L'\\';
    }
    return {shown + toUtf8(name), system.append(name)};
}

FileName FileName::forPage(unsigned long pageNumber) const {
    std::string digits = std::to_string(pageNumber);
    if (digits.size() < 3) {
        digits.insert(0, 3 - digits.size(), '0');
    }
    std::string numbered = shown_;
    numbered.insert(extensionStart(numbered), "-" + digits);
    return FileName(std::move(numbered));
}

FileName FileName::withSuffix(std::string_view suffix) const {
    return {shown_ + std::string(suffix), system_ + toWide(suffix)};
}

std::vector<FileName> namesFromOperands(const std::vector<std::string> &operands) {
    std::vector<FileName> names;
    for (const std::string &operand : operands) {
        FileName name(operand);
        std::vector<FileName> matching;
        if (operand.find_first_of("*?") != std::string::npos && !name.exists()) {
            matching = matches(operand);
        }
        if (matching.empty()) {
            names.push_back(std::move(name));
        } else {
            names.insert(names.end(), matching.begin(), matching.end());
        }
    }
    return names;
}

} // namespace tool
