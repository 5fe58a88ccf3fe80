// Opening TIFFs and following their chains.
#include "tools/tiff_document.h"

#include "tools/tag_numbers.h"

#include <algorithm>
#include <map>

namespace tool {

const char *const kNoJpegModule = "JPEG data need the companion module DCTLIB32.DLL, which is not there.";

namespace {

constexpr DWORD kMostPages = 1000; // the library takes no more
constexpr DWORD kShort = 3;
constexpr DWORD kLong = 4;
constexpr LONG kEntryBytes = 12;
constexpr LONG kFromStart = 0;

// The file, read through the library's streams.
class RawFile {
public:
    RawFile(const FileName &name, WORD byteOrder) : byteOrder_(byteOrder) {
        const HANDLE file = CreateFileW(name.forSystem().c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            stream_ = static_cast<StreamHandle>(reinterpret_cast<INT_PTR>(file));
        }
    }
    RawFile(const RawFile &) = delete;
    RawFile &operator=(const RawFile &) = delete;
    ~RawFile() {
        if (stream_ > 0) {
            mClose(stream_);
        }
    }

    // The link behind the directory at an offset.
    std::optional<DWORD> linkBehind(DWORD directoryOffset) const {
        const LONG offset = static_cast<LONG>(directoryOffset);
        WORD entries = 0;
        DWORD link = 0;
        if (stream_ > 0 && mSeek(stream_, offset, kFromStart) == offset && read(kShort, &entries)) {
            const LONG linkOffset = offset + static_cast<LONG>(sizeof entries) + entries * kEntryBytes;
            if (mSeek(stream_, linkOffset, kFromStart) == linkOffset && read(kLong, &link)) {
                return link;
            }
        }
        return std::nullopt;
    }

private:
    bool read(DWORD type, void *value) const {
        return LongRead(stream_, type, 1, static_cast<BYTE *>(value), byteOrder_, 1) != 0;
    }

    StreamHandle stream_ = 0;
    WORD byteOrder_;
};

Chain followChain(const FileName &name, const TiffFileInfo &info, bool brokenAtOpen) {
    Chain chain;
    if (info.imageCount == 0) {
        return chain;
    }
    const RawFile file(name, info.byteOrder);
    std::map<DWORD, std::size_t> pageAt;
    std::optional<DWORD> next = info.firstDirectoryOffset;
    while (next && *next != 0 && chain.directoryOffsets.size() < info.imageCount) {
        const auto [seen, isNew] = pageAt.emplace(*next, chain.directoryOffsets.size());
        if (!isNew) {
            break;
        }
        chain.directoryOffsets.push_back(*next);
        next = file.linkBehind(*next);
    }
    if (brokenAtOpen) {
        chain.end = Chain::End::Broken;
    } else if (next && pageAt.contains(*next)) {
        chain.end = Chain::End::Loops;
        chain.loopsToPage = pageAt[*next];
    } else if (info.imageCount == kMostPages && next && *next != 0) {
        chain.end = Chain::End::TooMany;
    }
    return chain;
}

bool jpegModuleHas(const char *entry) {
    const HMODULE module = LoadLibraryA("DCTLIB32.DLL");
    if (module == nullptr) {
        return false;
    }
    const bool found = GetProcAddress(module, entry) != nullptr;
    FreeLibrary(module);
    return found;
}

} // namespace

std::string libraryMessage(DWORD error) {
    char message[64] = "";
    TiffErrorString(message, error);
    return message;
}

TiffDocument::TiffDocument(const FileName &name)
    : name_(name), handle_(OpenTiffFile(name.forLibrary().c_str(), T_READ)), openError_(TiffError()) {
    if (handle_ != nullptr) {
        GetTiffFileInfo(handle_, &info_);
        chain_ = followChain(name_, info_, openError_ != VELLUM_OK);
    }
}

TiffDocument::~TiffDocument() {
    if (handle_ != nullptr) {
        CloseTiffFile(handle_);
    }
}

std::string TiffDocument::openMessage() const {
    std::string message = libraryMessage(openError_);
    if (openError_ == VELLUM_IO_ERROR && name_.isMissing()) {
        message += " (no such file)";
    } else if (openError_ == VELLUM_IO_ERROR && name_.isFolder()) {
        message += " (a folder)";
    }
    return message;
}

std::string TiffDocument::chainMessage() const {
    const std::string last = std::to_string(pageCount());
    switch (chain_.end) {
    case Chain::End::Complete:
        break;
    case Chain::End::Broken:
        return "the chain of pages breaks behind page " + last + ": " + libraryMessage(openError_);
    case Chain::End::Loops:
        return "the chain of pages leads back from page " + last + " to page " +
               std::to_string(chain_.loopsToPage + 1) + ".";
    case Chain::End::TooMany:
        return "there are more than " + last + " pages; the others are out of reach.";
    }
    return {};
}

RegisteredPage::RegisteredPage(const TiffDocument &document, DWORD index)
    : handle_(document.handle()), index_(index), registered_(false) {
    // An index error of an earlier page that were still pending would make the load fail.
    SetTiffError(VELLUM_OK);
    registered_ = GetTiffImage(handle_, index_) != 0;
}

RegisteredPage::~RegisteredPage() {
    if (registered_) {
        DropTiffImage(handle_, index_);
    }
}

std::optional<DWORD> RegisteredPage::number(LONG tag) const {
    DWORD value[2] = {0, 0}; // a RATIONAL takes both
    const DWORD pending = TiffError();
    const bool found = GetTiffImageInfo(handle_, index_, tag, value) != 0;
    SetTiffError(pending); // an absent tag is no failure here
    return found ? std::optional(value[0]) : std::nullopt;
}

bool RegisteredPage::isDelegatedJpeg() const {
    return LOWORD(number(tag::kCompression).value_or(0)) == VELLUM_KEY_JPEG;
}

bool jpegModuleAvailable() {
    static const bool available = jpegModuleHas("JPEGDecoder");
    return available;
}

bool jpegModuleEncodes() {
    static const bool available = jpegModuleHas("JPEGEncoder");
    return available;
}

} // namespace tool
