// Writing to the standard streams.
#include "tools/console.h"

#include "tools/file_name.h"

namespace tool {

namespace {

constexpr DWORD kQuietMilliseconds = 700;    // work that can tell how far it is, and is shorter, shows no progress
constexpr DWORD kProgressMilliseconds = 100; // between two progress lines
constexpr std::size_t kLargestPending = 64 * 1024;
constexpr std::size_t kProgressColumns = 78;

// The end of a long text, which tells more than its start.
std::string lastColumns(std::string_view text) {
    static constexpr std::string_view kCut = "...";
    if (text.size() <= kProgressColumns) {
        return std::string(text);
    }
    text.remove_prefix(text.size() - kProgressColumns + kCut.size());
    while ((static_cast<unsigned char>(text.front()) & 0xC0) == 0x80) {
        text.remove_prefix(1); // the rest of a character that was cut through
    }
    return std::string(kCut).append(text);
}

} // namespace

Console::Stream::Stream(DWORD standardHandle) : handle(GetStdHandle(standardHandle)) {
    DWORD mode = 0;
    isTerminal = GetConsoleMode(handle, &mode) != 0;
}

bool Console::Stream::write(std::string_view text) const {
    if (isTerminal) {
        const std::wstring wide = toWide(text);
        DWORD written = 0;
        return WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr) != 0;
    }
    while (!text.empty()) {
        DWORD written = 0;
        if (WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) == 0 || written == 0) {
            return false;
        }
        text.remove_prefix(written);
    }
    return true;
}

Console &Console::get() {
    static Console console;
    return console;
}

Console::Console() : output_(STD_OUTPUT_HANDLE), error_(STD_ERROR_HANDLE), started_(GetTickCount()) {}

void Console::print(std::string_view text) {
    pending_ += text;
    if (pending_.size() > kLargestPending) {
        flush();
    }
}

void Console::flush() {
    if (pending_.empty()) {
        return;
    }
    if (output_.isTerminal) {
        clearProgress();
    }
    if (outputIntact_) {
        outputIntact_ = output_.write(pending_);
    }
    pending_.clear();
}

void Console::complain(std::string_view text) {
    printError("vellum: " + std::string(text) + "\n");
}

void Console::printError(std::string_view text) {
    flush();
    clearProgress();
    static_cast<void>(error_.write(text));
}

void Console::progress(std::string_view text) {
    const DWORD now = GetTickCount();
    if (!showsProgress() || now - started_ < kQuietMilliseconds || now - lastProgress_ < kProgressMilliseconds) {
        return;
    }
    lastProgress_ = now;
    showProgress(text);
}

void Console::announce(std::string_view text) {
    if (showsProgress()) {
        showProgress(text);
    }
}

void Console::showProgress(std::string_view text) {
    flush();
    std::string line = lastColumns(text);
    const std::size_t length = line.size();
    if (length < progressLength_) {
        line.append(progressLength_ - length, ' ');
    }
    progressLength_ = length;
    static_cast<void>(error_.write("\r" + line));
}

void Console::clearProgress() {
    if (progressLength_ > 0) {
        static_cast<void>(error_.write("\r" + std::string(progressLength_, ' ') + "\r"));
        progressLength_ = 0;
    }
}

} // namespace tool
