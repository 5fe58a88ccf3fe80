// Standard output and standard error, in UTF-8 with "\n" line ends; a console window gets the characters themselves.
//
// What is printed is held back until flush(), so that a file's report appears in one piece; messages to standard error
// push it out first, so that the two stay in order.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace tool {

class Console {
public:
    // The streams of this process.
    static Console &get();

    void print(std::string_view text);
    void flush();

    // One message line on standard error: "vellum: " and the text.
    void complain(std::string_view text);
    // Text on standard error as it is.
    void printError(std::string_view text);

    // False once standard output could not take what was printed: a full disk, a closed pipe.
    [[nodiscard]] bool outputIntact() const { return outputIntact_; }

    // The progress line: on standard error, only when that is a terminal, and only once work has gone on for a while.
    // It is overwritten by the next one and gone when something else is printed.
    [[nodiscard]] bool showsProgress() const { return error_.isTerminal; }
    void progress(std::string_view text);
    // The same for work that cannot tell how far it is: shown at once, until something else is.
    void announce(std::string_view text);
    void clearProgress();

private:
    struct Stream {
        explicit Stream(DWORD standardHandle);
        [[nodiscard]] bool write(std::string_view text) const;
        HANDLE handle;
        bool isTerminal = false;
    };

    Console();
    void showProgress(std::string_view text);

    Stream output_;
    Stream error_;
    std::string pending_;
    std::size_t progressLength_ = 0;
    DWORD started_;
    DWORD lastProgress_ = 0;
    bool outputIntact_ = true;
};

} // namespace tool
