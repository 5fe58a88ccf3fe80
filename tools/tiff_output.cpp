// New files and files that are added to.
#include "tools/tiff_output.h"

#include "tools/library_file.h"
#include "tools/output_file.h"
#include "tools/tiff_document.h"
#include "tools/tiff_page_writer.h"

#include <array>
#include <utility>

namespace tool {

namespace {

constexpr DWORD kMostPages = 1000; // the library reads no more

// A new file, or one that goes on where the old one of the name ends.
class NewTiff final : public TiffOutput {
public:
    NewTiff(const FileName &name, LibraryFile::Start start, DWORD pageCount)
        : TiffOutput(pageCount), file_(name, start) {
        libraryPath_ = file_.libraryPath();
        fail(file_.failure());
    }

    void refuse(std::string reason) { fail("no page can be added: " + std::move(reason)); }

    bool commit() override {
        if (failure().empty() && !file_.commit()) {
            fail(file_.failure());
        }
        return failure().empty();
    }

private:
    LibraryFile file_;
};

// An existing file, opened for a moment: while the library works on it nobody else may have it open.
class ExistingFile {
public:
    explicit ExistingFile(const FileName &name)
        : file_(CreateFileW(name.forSystem().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr)),
          error_(file_ == INVALID_HANDLE_VALUE ? GetLastError() : ERROR_SUCCESS) {}
    ExistingFile(const ExistingFile &) = delete;
    ExistingFile &operator=(const ExistingFile &) = delete;
    ~ExistingFile() {
        if (file_ != INVALID_HANDLE_VALUE) {
            CloseHandle(file_);
        }
    }

    [[nodiscard]] DWORD error() const { return error_; }

    [[nodiscard]] ULONGLONG size() const {
        LARGE_INTEGER size{};
        return GetFileSizeEx(file_, &size) != 0 ? static_cast<ULONGLONG>(size.QuadPart) : 0;
    }
    [[nodiscard]] bool read(ULONGLONG offset, void *to, DWORD bytes) const {
        OVERLAPPED position = at(offset);
        DWORD done = 0;
        return ReadFile(file_, to, bytes, &done, &position) != 0 && done == bytes;
    }
    [[nodiscard]] bool write(ULONGLONG offset, const void *from, DWORD bytes) const {
        OVERLAPPED position = at(offset);
        DWORD done = 0;
        return WriteFile(file_, from, bytes, &done, &position) != 0 && done == bytes && FlushFileBuffers(file_) != 0;
    }
    void cut(ULONGLONG size) const {
        LARGE_INTEGER position{};
        position.QuadPart = static_cast<LONGLONG>(size);
        if (SetFilePointerEx(file_, position, nullptr, FILE_BEGIN) != 0) {
            SetEndOfFile(file_);
        }
    }

private:
    static OVERLAPPED at(ULONGLONG offset) {
        OVERLAPPED position{};
        position.Offset = static_cast<DWORD>(offset);
        position.OffsetHigh = static_cast<DWORD>(offset >> 32);
        return position;
    }

    HANDLE file_;
    DWORD error_;
};

// What a file was before pages are added to it.
struct OldPages {
    DWORD count = 0;
    ULONGLONG linkOffset = 0; // of the last directory's link, which is 0
    ULONGLONG fileSize = 0;
    std::string failure; // why nothing can be added
};

// The link behind a directory has to be 0: it is what a new page is tied to.
bool findLink(const ExistingFile &file, DWORD directory, WORD byteOrder, ULONGLONG &linkOffset) {
    constexpr DWORD kEntryBytes = 12;
    std::array<BYTE, 2> count{};
    if (!file.read(directory, count.data(), count.size())) {
        return false;
    }
    const bool swaps = byteOrder == VELLUM_BYTE_ORDER_MM;
    const DWORD entries = swaps ? MAKEWORD(count[1], count[0]) : MAKEWORD(count[0], count[1]);
    linkOffset = ULONGLONG{directory} + count.size() + ULONGLONG{entries} * kEntryBytes;
    DWORD link = 1;
    return file.read(linkOffset, &link, sizeof link) && link == 0;
}

OldPages oldPagesOf(const FileName &name) {
    OldPages pages;
    const DWORD error = name.isReadOnlyFile() ? ERROR_ACCESS_DENIED : ExistingFile(name).error();
    if (error != ERROR_SUCCESS) {
        pages.failure = writeFailure(error);
        return pages;
    }
    const TiffDocument document(name);
    const std::string reason = document.isOpen() ? document.chainMessage() : document.openMessage();
    if (!reason.empty()) {
        pages.failure = "no page can be added: " + reason;
        return pages;
    }
    const ExistingFile file(name);
    pages.count = document.pageCount();
    pages.fileSize = file.size();
    if (pages.count == 0 ||
        !findLink(file, document.chain().directoryOffsets.back(), document.byteOrder(), pages.linkOffset)) {
        pages.failure = "no page can be added: " + libraryMessage(VELLUM_IO_ERROR);
    }
    return pages;
}

class AppendedTiff final : public TiffOutput {
public:
    AppendedTiff(FileName name, OldPages old) : TiffOutput(old.count), name_(std::move(name)), old_(std::move(old)) {
        libraryPath_ = name_.forLibrary();
        fail(old_.failure);
    }
    AppendedTiff(const AppendedTiff &) = delete;
    AppendedTiff &operator=(const AppendedTiff &) = delete;
    ~AppendedTiff() override {
        if (tried_ && !committed_ && isStillOurs()) {
            takeBack();
        }
    }

    bool add(const Picture &picture, const TiffCoding &coding, const std::string &progressLabel) override {
        tried_ = tried_ || failure().empty();
        return TiffOutput::add(picture, coding, progressLabel);
    }

    bool commit() override {
        committed_ = failure().empty();
        return committed_;
    }

private:
    // Pages that somebody else has added meanwhile are not to be lost.
    [[nodiscard]] bool isStillOurs() const {
        const TiffDocument document(name_);
        return document.isOpen() && document.pageCount() == pageCount();
    }

    // The link first: from then on nothing leads behind the old end.
    void takeBack() const {
        constexpr DWORD kNoLink = 0;
        const ExistingFile file(name_);
        DWORD link = kNoLink;
        if (file.read(old_.linkOffset, &link, sizeof link) &&
            (link == kNoLink || file.write(old_.linkOffset, &kNoLink, sizeof kNoLink))) {
            file.cut(old_.fileSize);
        }
    }

    FileName name_;
    OldPages old_;
    bool tried_ = false;
    bool committed_ = false;
};

} // namespace

TiffOutput::TiffOutput(DWORD pageCount) : pageCount_(pageCount) {}

TiffOutput::~TiffOutput() = default;

void TiffOutput::fail(std::string failure) {
    if (failure_.empty()) {
        failure_ = std::move(failure);
    }
}

bool TiffOutput::hasRoom() {
    if (pageCount_ == kMostPages) {
        fail("cannot be written: a file has at most " + std::to_string(kMostPages) + " pages.");
    }
    return failure_.empty();
}

bool TiffOutput::count(std::string failure) {
    fail(std::move(failure));
    pageCount_ += failure_.empty() ? 1 : 0;
    return failure_.empty();
}

bool TiffOutput::add(const Picture &picture, const TiffCoding &coding, const std::string &progressLabel) {
    return hasRoom() && count(writeTiffPage({libraryPath_, pageCount_, progressLabel}, picture, coding));
}

bool TiffOutput::addCopy(const TiffDocument &document, DWORD index) {
    if (copier_ == nullptr) {
        copier_ = std::make_unique<PageCopier>(PageTarget{libraryPath_, pageCount_, {}});
    }
    return hasRoom() && count(copier_->copy(document, index));
}

std::unique_ptr<TiffOutput> newTiff(const FileName &name) {
    return std::make_unique<NewTiff>(name, LibraryFile::Start::Empty, 0);
}

std::unique_ptr<TiffOutput> enlargedTiff(const FileName &name) {
    if (name.isMissing()) {
        return newTiff(name);
    }
    const TiffDocument old(name);
    auto output = std::make_unique<NewTiff>(name, LibraryFile::Start::OldContent, old.pageCount());
    if (std::string reason = old.isOpen() ? old.chainMessage() : old.openMessage(); !reason.empty()) {
        output->refuse(std::move(reason));
    }
    return output;
}

std::unique_ptr<TiffOutput> appendedTiff(const FileName &name) {
    if (name.isMissing()) {
        return newTiff(name);
    }
    return std::make_unique<AppendedTiff>(name, oldPagesOf(name));
}

} // namespace tool
