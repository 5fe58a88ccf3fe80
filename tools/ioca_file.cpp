// Wrapping and unwrapping pictures.
#include "tools/ioca_file.h"

#include "tools/bilevel_code.h"
#include "tools/line_store.h"
#include "tools/output_file.h"
#include "tools/raw_file.h"
#include "tools/tiff_document.h"

#include <cmath>
#include <memory>
#include <numeric>

namespace tool {

namespace {

constexpr BYTE kStructuredFields[] = {
    0x5A, 0x00, 0x1A, 0xD3, 0xA8, 0xA8, 0x00, 0x00, 0x00,       // Begin Document
    0xC4, 0xD6, 0xC3, 0xE4, 0xD4, 0xC5, 0xD5, 0xE3, 0x00, 0x00, // its name
    0x08, 0x65, 0xA5, 0x85, 0x93, 0x93, 0xA4, 0x94,             // its comment
    0x5A, 0x00, 0x00,                                           // the image's field begins
};
constexpr LONG kLengthOffset = 28; // where WriteMODCATail puts the image field's length
static_assert(sizeof kStructuredFields == kLengthOffset + sizeof(WORD));

constexpr WORD kLargestWord = 0xFFFF;
constexpr WORD kMmr = 1; // the one compression identifier that is read
constexpr double kTenInches = 10;
constexpr BYTE kBeginSegment = 0x70;

// Dots per ten inches; 0 for a resolution that is not told or that 16 bits cannot tell.
WORD resolutionOf(const Picture &picture, DWORD tag) {
    const double dots = std::round(dotsPerInch(picture, tag) * kTenInches);
    return dots <= kLargestWord ? static_cast<WORD>(dots) : WORD{0};
}

std::string failureText(DWORD error) {
    return "cannot be written: " + libraryMessage(error != VELLUM_OK ? error : DWORD{VELLUM_IO_ERROR});
}

std::string writeTail(const RawFile &file, IocaKind kind) {
    if (kind == IocaKind::Segment) {
        return WriteIOCATail(file.handle()) != 0 ? "" : failureText(VELLUM_IO_ERROR);
    }
    if (mTell(file.stream()) - kLengthOffset > LONG{kLargestWord}) {
        return "cannot be written: the code is too long for one structured field.";
    }
    return WriteMODCATail(file.handle()) != 0 ? "" : failureText(TiffError());
}

void setResolution(Picture &picture, const IocaHeader &header) {
    if (header.horizontalResolution == 0 || header.verticalResolution == 0) {
        return;
    }
    const auto perInch = [](DWORD tag, DWORD dots) {
        constexpr DWORD kInches = 10;
        const DWORD common = std::gcd(dots, kInches);
        return rationalTag(tag, dots / common, kInches / common);
    };
    const WORD inch[] = {WORD{kInch}};
    picture.set(perInch(tag::kXResolution, header.horizontalResolution));
    picture.set(perInch(tag::kYResolution, header.verticalResolution));
    picture.set(shortsTag(tag::kResolutionUnit, inch));
}

std::string unwrapObstacle(const IocaHeader &header) {
    if (header.compression != kMmr) {
        return "the image code is not MMR but of compression " + std::to_string(header.compression) + ".";
    }
    if (header.firstBlockPosition == 0) {
        return "there is no MMR block behind the headers.";
    }
    return header.width == 0 || header.height == 0 ? "the image has no pixels." : "";
}

// The first byte of a plain segment; what else begins differently is searched for a MO:DCA image field, and then for a
// segment.
bool readHeaders(const FileName &file, IocaKind kind, IocaHeader &header) {
    const RawFile raw = openForReading(file);
    return (kind == IocaKind::Modca ? ReadMODCAHeader : ReadIOCAHeader)(raw.handle(), &header) != 0;
}

} // namespace

std::string wrapObstacle(const Picture &picture) {
    if (!isBilevel(picture)) {
        return "only bilevel pages can be wrapped.";
    }
    return picture.width > kLargestWord || picture.height > kLargestWord
               ? "the page is larger than 65535 x 65535 pixels."
               : "";
}

std::string wrapPicture(const FileName &file, const Picture &picture, IocaKind kind, const std::string &progressLabel) {
    RawFile raw(file, GENERIC_READ | GENERIC_WRITE, 0);
    if (!raw.isOpen()) {
        return writeFailure(raw.error());
    }
    IocaHeader header{};
    header.horizontalResolution = resolutionOf(picture, tag::kXResolution);
    header.verticalResolution = resolutionOf(picture, tag::kYResolution);
    header.width = static_cast<WORD>(picture.width);
    header.height = static_cast<WORD>(picture.height);
    const bool isModca = kind == IocaKind::Modca;
    const LONG fields = LONG{sizeof kStructuredFields};
    if (isModca && mWrite(raw.stream(), kStructuredFields, sizeof kStructuredFields) != fields) {
        return failureText(VELLUM_IO_ERROR);
    }
    if ((isModca ? WriteMODCAHeader : WriteIOCAHeader)(raw.handle(), &header) == 0) {
        return failureText(TiffError());
    }
    BilevelRun run{picture, progressLabel};
    if (EncodeMMRImage(raw.stream(), picture.width, picture.height, 0, run.userValue(), supplyBilevelLine) == 0) {
        return failureText(TiffError());
    }
    std::string failure = writeTail(raw, kind);
    return raw.close() || !failure.empty() ? failure : writeFailure(GetLastError());
}

std::optional<IocaInfo> readIoca(const FileName &file, std::string &failure) {
    BYTE first = 0;
    {
        const RawFile raw = openForReading(file);
        if (!raw.isOpen()) {
            failure =
                file.isMissing() ? "there is no such file." : "cannot be read: " + systemMessage(raw.error()) + ".";
            return std::nullopt;
        }
        mRead(raw.stream(), &first, sizeof first);
    }
    IocaInfo info;
    for (const IocaKind kind : {IocaKind::Modca, IocaKind::Segment}) {
        const bool isPlain = first == kBeginSegment;
        info.kind = kind;
        if ((kind == IocaKind::Segment || !isPlain) && readHeaders(file, kind, info.header)) {
            return info;
        }
    }
    failure = "there is no IOCA image in the file.";
    return std::nullopt;
}

PageReading unwrapPicture(const FileName &file, const IocaInfo &info) {
    const IocaHeader &header = info.header;
    PageReading reading;
    reading.failure = unwrapObstacle(header);
    if (!reading.failure.empty()) {
        return reading;
    }
    Picture picture;
    picture.width = header.width;
    picture.height = header.height;
    setResolution(picture, header);
    const auto lines = std::make_shared<LineStore>(static_cast<std::size_t>(picture.lineBytes()));
    StoringRun run{*lines, "reading", picture.height};
    const RawFile raw = openForReading(file);
    const DWORD decoded = DecodeMMRImage(raw.stream(), header.firstBlockPosition, picture.width, picture.height, 0, 1,
                                         VELLUM_BYTE_ORDER_MM, run.userValue(), storeLine);
    if (decoded == 0 || lines->count() < picture.height) {
        reading.failure = "after line " + std::to_string(lines->count()) + " of " + std::to_string(picture.height) +
                          ": " + libraryMessage(decoded == 0 ? TiffError() : DWORD{VELLUM_UNEXPECTED_END});
        return reading;
    }
    picture.fillLine = [lines](BYTE *line, DWORD index) {
        lines->copy(index, line);
        return DWORD{VELLUM_OK};
    };
    reading.picture = std::move(picture);
    return reading;
}

} // namespace tool
