// CALS files by way of the library's functions for their headers and their code.
#include "tools/cals_file.h"

#include "tools/arguments.h"
#include "tools/bilevel_code.h"
#include "tools/line_store.h"
#include "tools/output_file.h"
#include "tools/raw_file.h"
#include "tools/tiff_document.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string_view>

namespace tool {

namespace {

// The texts by the names of their records. `elsewhere` is how other programs spell a record where they do it
// otherwise; the library does not take theirs for the text.
struct TextField {
    std::string_view key;
    const char *CalsNotes::*text;
    std::string_view elsewhere = {};
};
constexpr TextField kTexts[] = {
    {"srcdocid", &CalsNotes::srcdocid},
    {"dstdocis", &CalsNotes::dstdocis, "dstdocid"},
    {"txtfileid", &CalsNotes::txtfileid, "txtfilid"},
    {"figid", &CalsNotes::figid},
    {"scrgph", &CalsNotes::scrgph, "srcgph"},
    {"doccls", &CalsNotes::doccls},
    {"notes", &CalsNotes::notes},
};
static_assert(std::size(kTexts) == kCalsTexts);

constexpr DWORD kRecords = VELLUM_CALS_HEADER / VELLUM_CALS_RECORD;
constexpr DWORD kWidestLine = 33280; // pixels that the encoder takes

// A block of the library's, locked and freed with the object.
class LibraryBlock {
public:
    explicit LibraryBlock(HGLOBAL block) : block_(block), bytes_(block == nullptr ? nullptr : GlobalLock(block)) {}
    LibraryBlock(const LibraryBlock &) = delete;
    LibraryBlock &operator=(const LibraryBlock &) = delete;
    ~LibraryBlock() {
        if (bytes_ != nullptr) {
            GlobalUnlock(block_);
        }
        if (block_ != nullptr) {
            GlobalFree(block_);
        }
    }

    explicit operator bool() const { return bytes_ != nullptr; }
    [[nodiscard]] const char *get() const { return static_cast<const char *>(bytes_); }

private:
    HGLOBAL block_;
    void *bytes_;
};

std::string keyList() {
    std::string list;
    for (const TextField &field : kTexts) {
        list += (list.empty() ? "" : ", ") + std::string(field.key);
    }
    return list;
}

bool isNegative(const CalsInfo &info) {
    return info.rpelcnt[0] < 0 || info.rpelcnt[1] < 0;
}

// Reads the numbers. Result: an error number of the library; of counts below 0 the one that its loader has for them.
DWORD readInfo(const FileName &name, CalsInfo &info) {
    SetTiffError(VELLUM_OK);
    if (ReadCALSInfo(name.forLibrary().c_str(), &info) == 0) {
        const DWORD error = TiffError();
        return error != VELLUM_OK ? error : DWORD{VELLUM_NOT_CALS};
    }
    return isNegative(info) ? DWORD{VELLUM_NO_MEMORY} : DWORD{VELLUM_OK};
}

// An error of readInfo in words. The library calls a missing file an I/O error, and counts below 0 a lack of memory.
std::string readFailure(const FileName &name, const CalsInfo &info, DWORD error) {
    if (error == VELLUM_IO_ERROR && name.isMissing()) {
        return "there is no such file.";
    }
    if (error == VELLUM_NO_MEMORY && isNegative(info)) {
        return "the header claims a picture of " + std::to_string(info.rpelcnt[0]) + " x " +
               std::to_string(info.rpelcnt[1]) + " pixels.";
    }
    return error == VELLUM_OK ? "" : libraryMessage(error);
}

// The texts of the library run into each other: each ends where the next one begins.
void readTexts(const FileName &name, CalsDescription &description) {
    CalsNotes notes{};
    const LibraryBlock block(ReadCALSNote(name.forLibrary().c_str(), &notes));
    if (!block) {
        return;
    }
    const char *next = nullptr;
    for (std::size_t i = kCalsTexts; i-- > 0;) {
        if (const char *text = notes.*kTexts[i].text; text != nullptr) {
            description.texts[i] =
                next == nullptr ? std::string(text) : std::string(text, static_cast<std::size_t>(next - text));
            next = text;
        }
    }
}

// Without the padding and an end of line before it.
std::string trimmed(std::string_view record) {
    const auto isPadding = [](char c) { return c == ' ' || c == '\0' || c == '\r' || c == '\n'; };
    while (!record.empty() && isPadding(record.back())) {
        record.remove_suffix(1);
    }
    return std::string(record);
}

CalsRecord recordAt(const char *header, DWORD number) {
    const std::string text = trimmed({header + number * VELLUM_CALS_RECORD, VELLUM_CALS_RECORD});
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos) {
        return {number, "", text};
    }
    const std::size_t value = text.find_first_not_of(' ', colon + 1);
    return {number, text.substr(0, colon), value == std::string::npos ? "" : text.substr(value)};
}

// Texts that are there under the other spelling alone.
void readTextsSpelledOtherwise(const FileName &name, CalsDescription &description) {
    for (CalsRecord &record : readCalsRecords(name)) {
        const auto field = std::ranges::find(kTexts, record.keyword, &TextField::elsewhere);
        if (field == std::end(kTexts) || record.keyword.empty() || record.value.empty()) {
            continue;
        }
        if (auto &text = description.texts[static_cast<std::size_t>(field - kTexts)]; !text) {
            text = std::move(record.value);
        }
    }
}

void setResolution(Picture &picture, LONG density) {
    if (density <= 0) {
        return;
    }
    const WORD inch[] = {WORD{kInch}};
    picture.set(rationalTag(tag::kXResolution, static_cast<DWORD>(density), 1));
    picture.set(rationalTag(tag::kYResolution, static_cast<DWORD>(density), 1));
    picture.set(shortsTag(tag::kResolutionUnit, inch));
}

// A resolution as a header holds it; 0 when there is none.
LONG densityOf(const Picture &picture, DWORD tag) {
    const double density = std::round(dotsPerInch(picture, tag));
    return density <= MAXLONG ? static_cast<LONG>(density) : 0;
}

CalsInfo infoOf(const Picture &picture, const CalsDescription &description) {
    constexpr std::array<LONG, 2> kUsualOrientation = {90, 270};
    const std::array<LONG, 2> angles = description.orientation.value_or(kUsualOrientation);
    CalsInfo info{};
    info.rtype = 1;
    info.rorient[0] = angles[0];
    info.rorient[1] = angles[1];
    info.rpelcnt[0] = static_cast<LONG>(picture.width);
    info.rpelcnt[1] = static_cast<LONG>(picture.height);
    info.rdensty = densityOf(picture, tag::kXResolution);
    return info;
}

CalsNotes notesOf(const CalsDescription &description) {
    CalsNotes notes{};
    for (std::size_t i = 0; i < kCalsTexts; ++i) {
        notes.*kTexts[i].text = description.texts[i] ? description.texts[i]->c_str() : nullptr;
    }
    return notes;
}

// A few bytes of code can stand for gigabytes when lines are that long.
bool isBeyondDrawings(std::uint64_t width, std::uint64_t height) {
    constexpr std::uint64_t kWidest = 65536;
    constexpr std::uint64_t kLargest = 64u << 20;
    return width > kWidest && (width + 7) / 8 * height > kLargest;
}

} // namespace

void CalsDescription::complete(const CalsDescription &other) {
    for (std::size_t i = 0; i < kCalsTexts; ++i) {
        if (!texts[i]) {
            texts[i] = other.texts[i];
        }
    }
    if (!orientation) {
        orientation = other.orientation;
    }
}

void setCalsText(CalsDescription &description, const std::string &keyAndText) {
    const std::size_t equals = keyAndText.find('=');
    const std::string key = keyAndText.substr(0, equals);
    for (std::size_t i = 0; i < kCalsTexts; ++i) {
        if (equals == std::string::npos || key != kTexts[i].key) {
            continue;
        }
        std::string text = keyAndText.substr(equals + 1);
        // The keyword, a colon and a blank stand before it, and a blank behind.
        if (const std::size_t room = VELLUM_CALS_RECORD - 3 - key.size(); text.size() > room) {
            throw UsageError("the text of '" + key + "' is longer than " + std::to_string(room) + " bytes");
        }
        if (description.texts[i]) {
            throw UsageError("option '--note' has '" + key + "' twice");
        }
        description.texts[i] = std::move(text);
        return;
    }
    throw UsageError("option '--note' wants KEY=TEXT with one of " + keyList() + ", not '" + keyAndText + "'");
}

std::array<LONG, 2> parseCalsOrientation(const std::string &text) {
    std::array<LONG, 2> angles{};
    const char *const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, angles[0]);
    if (first.ec == std::errc() && first.ptr != end && *first.ptr == ',') {
        const auto second = std::from_chars(first.ptr + 1, end, angles[1]);
        if (second.ec == std::errc() && second.ptr == end) {
            return angles;
        }
    }
    throw UsageError("option '--orientation' wants two angles like 90,270, not '" + text + "'");
}

bool isCalsName(const FileName &name) {
    return name.hasExtension(".cal") || name.hasExtension(".cals");
}

bool isCalsFile(const FileName &name) {
    CalsInfo info;
    return isCalsName(name) || ReadCALSInfo(name.forLibrary().c_str(), &info) != 0;
}

std::vector<CalsRecord> readCalsRecords(const FileName &name) {
    std::vector<CalsRecord> records;
    const LibraryBlock header(ReadCALSHead(name.forLibrary().c_str()));
    for (DWORD i = 0; header && i < kRecords; ++i) {
        CalsRecord record = recordAt(header.get(), i);
        if (!record.keyword.empty() || !record.value.empty()) {
            records.push_back(std::move(record));
        }
    }
    return records;
}

CalsDescription describeCals(const FileName &name) {
    CalsDescription description;
    CalsInfo info;
    if (ReadCALSInfo(name.forLibrary().c_str(), &info) != 0) {
        description.orientation = {info.rorient[0], info.rorient[1]};
        readTexts(name, description);
        readTextsSpelledOtherwise(name, description);
    }
    return description;
}

CalsPicture measureCals(const FileName &name) {
    CalsPicture picture{};
    picture.error = readInfo(name, picture.info);
    picture.failure = readFailure(name, picture.info, picture.error);
    return picture;
}

DWORD decodeCals(const FileName &name, const CalsPicture &picture, DWORD userValue, LineFunc lineFunction) {
    const DWORD width = static_cast<DWORD>(picture.info.rpelcnt[0]);
    const DWORD height = static_cast<DWORD>(picture.info.rpelcnt[1]);
    if (isBeyondDrawings(width, height)) {
        return VELLUM_NO_MEMORY;
    }
    const RawFile raw = openForReading(name);
    if (!raw.isOpen()) {
        return VELLUM_IO_ERROR;
    }
    // Behind a header without data the decoder would start with the header.
    if (mSize(raw.stream()) <= VELLUM_CALS_HEADER) {
        return VELLUM_UNEXPECTED_END;
    }
    const DWORD decoded = DecodeCcittImageFrom(raw.stream(), VELLUM_CALS_HEADER, width, height, VELLUM_KEY_GROUP4, 1,
                                               VELLUM_BYTE_ORDER_II, userValue, lineFunction);
    return decoded != 0 ? DWORD{VELLUM_OK} : TiffError();
}

PageReading CalsSource::read(DWORD index) const {
    PageReading reading;
    const CalsPicture measured = measureCals(name_);
    if (measured.error != VELLUM_OK) {
        reading.failure = measured.failure;
        return reading;
    }
    Picture picture;
    picture.width = static_cast<DWORD>(measured.info.rpelcnt[0]);
    picture.height = static_cast<DWORD>(measured.info.rpelcnt[1]);
    setResolution(picture, measured.info.rdensty);
    const auto lines = std::make_shared<LineStore>(static_cast<std::size_t>(picture.lineBytes()));
    StoringRun run{*lines, progressLabel(index), picture.height};
    const DWORD error = decodeCals(name_, measured, run.userValue(), storeLine);
    if (error != VELLUM_OK && !leavesAPart(picture, lines->count(), error)) {
        reading.failure = libraryMessage(error);
        return reading;
    }
    if (error != VELLUM_OK) {
        reading.warning = "only a part was there: " + libraryMessage(error);
    }
    picture.fillLine = [lines](BYTE *line, DWORD lineIndex) {
        lines->copy(lineIndex, line);
        return DWORD{VELLUM_OK};
    };
    reading.picture = std::move(picture);
    return reading;
}

std::string calsObstacle(const Picture &picture) {
    if (!isBilevel(picture)) {
        return "CALS files hold bilevel pages only; the page has " + std::to_string(picture.bitsPerPixel()) +
               (picture.bitsPerPixel() == 1 ? " bit per pixel and a palette." : " bits per pixel.");
    }
    return picture.width > kWidestLine ? "the page is wider than 33280 pixels." : "";
}

std::string calsLoss(const Picture &picture) {
    const LONG both = densityOf(picture, tag::kXResolution);
    const LONG vertical = densityOf(picture, tag::kYResolution);
    return vertical == 0 || vertical == both ? ""
                                             : "CALS files hold one resolution: " + std::to_string(both) +
                                                   " dpi in place of " + std::to_string(vertical) + " vertically.";
}

std::string writeCals(const FileName &file, const Picture &picture, const CalsDescription &description,
                      const std::string &progressLabel) {
    const auto failure = [](DWORD error) { return "cannot be written: " + libraryMessage(error); };
    RawFile raw(file, GENERIC_READ | GENERIC_WRITE, 0);
    if (!raw.isOpen()) {
        return writeFailure(raw.error());
    }
    const CalsInfo info = infoOf(picture, description);
    const CalsNotes notes = notesOf(description);
    const LibraryBlock header(DefineCALSHead(&info, &notes));
    if (!header) {
        return failure(VELLUM_NO_MEMORY);
    }
    if (mWrite(raw.stream(), reinterpret_cast<const BYTE *>(header.get()), VELLUM_CALS_HEADER) != VELLUM_CALS_HEADER) {
        return failure(VELLUM_IO_ERROR);
    }
    BilevelRun run{picture, progressLabel};
    if (EncodeCcittImage(raw.stream(), picture.width, picture.height, VELLUM_KEY_GROUP4, run.userValue(),
                         supplyBilevelLine) == 0) {
        return failure(TiffError());
    }
    return raw.close() ? "" : writeFailure(GetLastError());
}

} // namespace tool
