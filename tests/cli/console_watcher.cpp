// console_watcher PROGRAM ARGUMENT...: runs a program with its standard error on this process's console (a hidden one,
// when it was started so) and tells on standard error what can be seen there, a line for every look that differs from
// the one before. After a few of these the program is ended, as by a user who has seen enough, with status 99.
#include <windows.h>

#include <array>
#include <string>

namespace {

// The upper lines of the console, without the blanks at their ends.
std::string seenOn(HANDLE console) {
    constexpr SHORT kLines = 4;
    constexpr SHORT kColumns = 80;
    std::string seen;
    for (SHORT y = 0; y < kLines; ++y) {
        std::array<char, kColumns> line{};
        DWORD read = 0;
        ReadConsoleOutputCharacterA(console, line.data(), kColumns, COORD{0, y}, &read);
        std::string text(line.data(), read);
        text.erase(text.find_last_not_of(std::string(" \0", 2)) + 1);
        seen += text;
    }
    return seen;
}

void tell(const std::string &seen) {
    const std::string line = "[" + seen + "]\n";
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
}

// The command line behind this program's own name, which is quoted.
wchar_t *childCommandLine() {
    wchar_t *line = GetCommandLineW();
    while (*line != L'\0' && *++line != L'"') {
    }
    return *line == L'\0' ? line : line + 2;
}

} // namespace

int main() {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const HANDLE console = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                       &inherited, OPEN_EXISTING, 0, nullptr);
    if (console == INVALID_HANDLE_VALUE) {
        tell("no console");
        return 98;
    }
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = GetStdHandle(STD_OUTPUT_HANDLE);
    startup.hStdError = console;
    PROCESS_INFORMATION process{};
    if (CreateProcessW(nullptr, childCommandLine(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process) ==
        0) {
        tell("cannot start the program");
        return 97;
    }
    constexpr DWORD kPause = 15; // milliseconds
    constexpr int kLooks = 3;
    constexpr UINT kEnded = 99;
    int looks = 0;
    std::string last;
    while (WaitForSingleObject(process.hProcess, kPause) == WAIT_TIMEOUT) {
        std::string seen = seenOn(console);
        if (seen == last) {
            continue;
        }
        tell(seen);
        last = std::move(seen);
        if (++looks == kLooks) {
            TerminateProcess(process.hProcess, kEnded);
        }
    }
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    return static_cast<int>(status);
}
