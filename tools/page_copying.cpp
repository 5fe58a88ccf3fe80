// Looking for what the library would not copy.
#include "tools/page_copying.h"

#include "tools/tag_numbers.h"
#include "tools/tag_text.h"
#include "tools/tag_values.h"

#include <algorithm>
#include <utility>

namespace tool {

namespace {

// Tags whose values lead to directories that are in no chain; the field type says it too.
constexpr DWORD kDirectoryTags[] = {330, 34665, 34853, 40965}; // SubIFDs, ExifIFD, GPSInfoIFD, interoperability
constexpr DWORD kDirectoryType = 13;

bool leadsElsewhere(const RegisteredPage &page, DWORD tag) {
    const auto values = readTag(page, tag);
    return values &&
           (values->type() == kDirectoryType || std::ranges::find(kDirectoryTags, tag) != std::end(kDirectoryTags));
}

// Offsets of data and their byte counts.
constexpr std::pair<DWORD, DWORD> kData[] = {
    {tag::kStripOffsets, tag::kStripByteCounts},
    {tag::kTileOffsets, tag::kTileByteCounts},
};

bool tellsPlaces(const TagValues &values) {
    const auto type = static_cast<Type>(values.type());
    return type == Type::Short || type == Type::Long;
}

// An error number of the library's.
DWORD checkPieces(const TagValues &offsets, const std::optional<TagValues> &counts, ULONGLONG fileSize) {
    if (!counts) {
        return VELLUM_TAG_MISSING;
    }
    if (!tellsPlaces(offsets) || !tellsPlaces(*counts) || offsets.count() != counts->count()) {
        return VELLUM_BAD_TAG;
    }
    for (DWORD i = 0; i < offsets.count(); ++i) {
        const auto offset = static_cast<ULONGLONG>(offsets.number(i));
        const auto bytes = static_cast<ULONGLONG>(counts->number(i));
        if (bytes == 0 && offset != 0) {
            return VELLUM_STRIP_OUT_OF_RANGE; // other readers may find the size by themselves
        }
        if (offset + bytes > fileSize) {
            return VELLUM_UNEXPECTED_END;
        }
    }
    return VELLUM_OK;
}

} // namespace

std::string dataObstacle(const TiffDocument &document, const RegisteredPage &page) {
    bool hasData = readTag(page, tag::kJpegInterchange).has_value() && page.isDelegatedJpeg();
    for (const auto &[offsetsTag, countsTag] : kData) {
        if (const auto offsets = readTag(page, offsetsTag)) {
            hasData = true;
            const DWORD error = checkPieces(*offsets, readTag(page, countsTag), document.fileSize().value_or(0));
            if (error != VELLUM_OK) {
                return libraryMessage(error);
            }
        }
    }
    return hasData ? "" : libraryMessage(VELLUM_TAG_MISSING);
}

std::string copyObstacle(const TiffDocument &document, DWORD index) {
    const RegisteredPage page(document, index);
    if (!page) {
        return libraryMessage(TiffError());
    }
    return dataObstacle(document, page);
}

std::string tagLeadingElsewhere(const TiffDocument &document, DWORD index) {
    const RegisteredPage page(document, index);
    const std::vector<DWORD> tags = page ? tagNumbers(page) : std::vector<DWORD>();
    const auto found = std::ranges::find_if(tags, [&page](DWORD tag) { return leadsElsewhere(page, tag); });
    return found == tags.end() ? "" : tagLabel(*found);
}

std::string rebuildObstacle(const TiffDocument &document) {
    std::string obstacle = document.chainMessage();
    for (DWORD index = 0; index < document.pageCount() && obstacle.empty(); ++index) {
        std::string reason = copyObstacle(document, index);
        if (const std::string tag = tagLeadingElsewhere(document, index); reason.empty() && !tag.empty()) {
            reason = tag + " leads to other data in the file, which would be lost.";
        }
        if (!reason.empty()) {
            obstacle = "page " + std::to_string(index + 1) + ": " + reason;
        }
    }
    return obstacle;
}

} // namespace tool
