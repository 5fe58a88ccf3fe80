// Starting vellum.exe, and examples.
#include "cli/vellum_process.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace vellum::test {

namespace {

constexpr DWORD kPatience = 120000; // milliseconds; a run that takes longer is stuck

std::wstring wide(const std::string &utf8) {
    const int bytes = static_cast<int>(utf8.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, result.data(), length);
    return result;
}

std::string narrow(const std::wstring &text) {
    const int units = static_cast<int>(text.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), units, result.data(), length, nullptr, nullptr);
    return result;
}

// The folder of the test programs.
std::wstring testsFolder() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder = path;
    folder.resize(folder.find_last_of(L"\\/"));
    return folder;
}

std::wstring programPath(const std::string &name = "vellum") {
    std::wstring folder = testsFolder();
    folder.resize(folder.find_last_of(L"\\/"));
    return folder + L"\\bin\\" + wide(name) + L".exe";
}

std::wstring watcherPath() {
    return testsFolder() + L"\\console_watcher.exe";
}

// The test words hold no quotes and do not end in a backslash.
std::wstring commandLine(const std::vector<std::string> &words, const std::wstring &program = programPath()) {
    std::wstring line = L"\"" + program + L"\"";
    for (const std::string &word : words) {
        line += L" \"" + wide(word) + L"\"";
    }
    return line;
}

// A file that a child process may write to; gone when it is closed.
class Catcher {
public:
    Catcher() {
        wchar_t folder[MAX_PATH] = {};
        wchar_t path[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, folder);
        GetTempFileNameW(folder, L"vto", 0, path);
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        file = CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                           &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    }
    Catcher(const Catcher &) = delete;
    Catcher &operator=(const Catcher &) = delete;
    ~Catcher() { CloseHandle(file); }

    [[nodiscard]] std::string content() const {
        std::string text(GetFileSize(file, nullptr), '\0');
        SetFilePointer(file, 0, nullptr, FILE_BEGIN);
        DWORD read = 0;
        EXPECT_NE(ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &read, nullptr), 0);
        EXPECT_EQ(read, text.size());
        return text;
    }

    HANDLE file;
};

// Takes the address space of a process that has not begun, and gives every other piece of it back.
void breakMemory(HANDLE process) {
    constexpr SIZE_T kPiece = SIZE_T{16} << 20;
    constexpr SIZE_T kSmallestPiece = SIZE_T{1} << 20;
    std::vector<void *> pieces;
    for (SIZE_T size = kPiece; size >= kSmallestPiece; size /= 2) {
        while (void *const piece = VirtualAllocEx(process, nullptr, size, MEM_RESERVE, PAGE_NOACCESS)) {
            if (size == kPiece) {
                pieces.push_back(piece);
            }
        }
    }
    std::sort(pieces.begin(), pieces.end());
    EXPECT_GT(pieces.size(), 50U);
    for (std::size_t i = 1; i < pieces.size(); i += 2) {
        EXPECT_NE(VirtualFreeEx(process, pieces[i], 0, MEM_RELEASE), 0);
    }
}

void removeFolder(const std::wstring &path) {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            const std::wstring name = found.cFileName;
            if (name == L"." || name == L"..") {
                continue;
            }
            if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
                removeFolder(path + L"\\" + name);
            } else {
                DeleteFileW((path + L"\\" + name).c_str());
            }
        } while (FindNextFileW(search, &found) != 0);
        FindClose(search);
    }
    RemoveDirectoryW(path.c_str());
}

} // namespace

WorkFolder::WorkFolder() {
    // Process ids come again, and a folder of a run that was killed may still be there.
    static DWORD counter = 0;
    const std::string start = tempFolder() + "\\vc" + std::to_string(GetCurrentProcessId()) + "-";
    do {
        path_ = start + std::to_string(++counter);
    } while (CreateDirectoryA(path_.c_str(), nullptr) == 0 && GetLastError() == ERROR_ALREADY_EXISTS);
}

WorkFolder::~WorkFolder() {
    constexpr int kAttempts = 40;
    constexpr DWORD kPause = 25; // milliseconds
    // A process that has just ended may hold the folder, its current one, for another moment.
    for (int attempt = 0; attempt < kAttempts && GetFileAttributesA(path_.c_str()) != INVALID_FILE_ATTRIBUTES;
         ++attempt) {
        if (attempt > 0) {
            Sleep(kPause);
        }
        removeFolder(wide(path_));
    }
}

Outcome WorkFolder::run(const std::vector<std::string> &words) const {
    return start(programPath(), commandLine(words));
}

Outcome WorkFolder::runInBrokenMemory(const std::vector<std::string> &words) const {
    return start(programPath(), commandLine(words), Memory::Broken);
}

Outcome WorkFolder::runOnConsole(const std::vector<std::string> &words) const {
    return start(watcherPath(), L"\"" + watcherPath() + L"\" " + commandLine(words));
}

Outcome WorkFolder::runExample(const std::string &example, const std::vector<std::string> &words) const {
    const std::wstring program = programPath("example_" + example);
    return start(program, commandLine(words, program));
}

Outcome WorkFolder::start(const std::wstring &program, std::wstring commandLine, Memory memory) const {
    const Catcher out;
    const Catcher err;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = out.file;
    startup.hStdError = err.file;
    PROCESS_INFORMATION process{};
    if (CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW | CREATE_SUSPENDED,
                       nullptr, wide(path_).c_str(), &startup, &process) == 0) {
        ADD_FAILURE() << "cannot start " << narrow(program) << ": error " << GetLastError();
        return {};
    }
    if (memory == Memory::Broken) {
        breakMemory(process.hProcess);
    }
    ResumeThread(process.hThread);
    Outcome outcome;
    if (WaitForSingleObject(process.hProcess, kPatience) != WAIT_OBJECT_0) {
        ADD_FAILURE() << "the program does not end";
        TerminateProcess(process.hProcess, 99);
        WaitForSingleObject(process.hProcess, kPatience);
    }
    GetExitCodeProcess(process.hProcess, &outcome.status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    outcome.out = out.content();
    outcome.err = err.content();
    return outcome;
}

void WorkFolder::put(const std::string &name, const Bytes &content) const {
    const HANDLE file = CreateFileW(wide(path(name)).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    const bool done = WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr) != 0;
    CloseHandle(file);
    EXPECT_TRUE(done && written == content.size()) << "cannot write " << name;
}

std::optional<Bytes> WorkFolder::get(const std::string &name) const {
    const HANDLE file =
        CreateFileW(wide(path(name)).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return std::nullopt;
    }
    Bytes content(GetFileSize(file, nullptr));
    DWORD read = 0;
    const bool done = ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &read, nullptr) != 0;
    CloseHandle(file);
    EXPECT_TRUE(done && read == content.size()) << "cannot read " << name;
    return content;
}

void WorkFolder::makeFolder(const std::string &name) const {
    EXPECT_NE(CreateDirectoryW(wide(path(name)).c_str(), nullptr), 0) << "cannot make " << name;
}

std::vector<std::string> WorkFolder::files() const {
    std::vector<std::string> names;
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(wide(path("*")).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            names.push_back(narrow(found.cFileName));
        }
    } while (FindNextFileW(search, &found) != 0);
    FindClose(search);
    std::sort(names.begin(), names.end());
    return names;
}

Bytes bundled(const std::string &name) {
    const auto content = readFile(std::string(VELLUM_EXAMPLES_FOLDER) + "/" + name);
    EXPECT_TRUE(content) << "cannot read " << VELLUM_EXAMPLES_FOLDER << "/" << name;
    return content.value_or(Bytes());
}

} // namespace vellum::test
