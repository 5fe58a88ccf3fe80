// An open TIFF as the subcommands see it: the handle, the library's messages, and the chain of directories.
#pragma once

#include "tools/file_name.h"
#include "vellum32.h"

#include <optional>
#include <string>
#include <vector>

namespace tool {

// The library's message of an error number.
std::string libraryMessage(DWORD error);

// How the chain of directories ends. The library answers with pages (of a loop, a thousand), so a program that means to
// deal with every page once has to know.
struct Chain {
    enum class End {
        Complete,
        Broken,  // the link behind the last page leads nowhere
        Loops,   // the link behind the last distinct page leads back
        TooMany, // there are more pages than the library takes
    };
    End end = End::Complete;
    std::vector<DWORD> directoryOffsets; // of the distinct pages, from the file's start
    std::size_t loopsToPage = 0;         // Loops: the page, from 0, that comes again
};

class TiffDocument {
public:
    explicit TiffDocument(const FileName &name);
    TiffDocument(const TiffDocument &) = delete;
    TiffDocument &operator=(const TiffDocument &) = delete;
    ~TiffDocument();

    // False when the file is no TIFF that can be read; openError() says why.
    [[nodiscard]] bool isOpen() const { return handle_ != nullptr; }
    [[nodiscard]] DWORD openError() const { return openError_; }
    // openError() in words; a missing file, which the library reports as an I/O error, is called that as well.
    [[nodiscard]] std::string openMessage() const;

    [[nodiscard]] const FileName &name() const { return name_; }
    [[nodiscard]] TiffHandle handle() const { return handle_; }
    // Pages as the library counts them, and the distinct ones among them.
    [[nodiscard]] DWORD libraryPageCount() const { return info_.imageCount; }
    [[nodiscard]] DWORD pageCount() const { return static_cast<DWORD>(chain_.directoryOffsets.size()); }
    [[nodiscard]] WORD byteOrder() const { return info_.byteOrder; }
    [[nodiscard]] std::optional<ULONGLONG> fileSize() const { return name_.size(); }
    [[nodiscard]] const Chain &chain() const { return chain_; }
    // What is wrong with the chain, in words; empty when it is complete.
    [[nodiscard]] std::string chainMessage() const;

private:
    FileName name_;
    TiffHandle handle_;
    DWORD openError_;
    TiffFileInfo info_{};
    Chain chain_;
};

// Loads a page's tags for as long as it lives.
class RegisteredPage {
public:
    RegisteredPage(const TiffDocument &document, DWORD index);
    RegisteredPage(const RegisteredPage &) = delete;
    RegisteredPage &operator=(const RegisteredPage &) = delete;
    ~RegisteredPage();

    explicit operator bool() const { return registered_; }
    [[nodiscard]] TiffHandle handle() const { return handle_; }
    [[nodiscard]] DWORD index() const { return index_; }

    // The first value of a BYTE, SHORT or LONG tag; nothing when the page has none.
    [[nodiscard]] std::optional<DWORD> number(LONG tag) const;
    // Whether decoding the page needs the companion JPEG module.
    [[nodiscard]] bool isDelegatedJpeg() const;

private:
    TiffHandle handle_;
    DWORD index_;
    bool registered_;
};

// Whether the companion JPEG module is there and complete. Without it the library would ask for it with a message box
// and wait, so pages that need it are not decoded then; kNoJpegModule is the message.
bool jpegModuleAvailable();
// Whether it can encode as well.
bool jpegModuleEncodes();
extern const char *const kNoJpegModule;

} // namespace tool
