// Changing a tag of a page: what may be changed, to what, and the file that takes the old one's place.
#include "tools/console.h"
#include "tools/info.h"
#include "tools/library_file.h"
#include "tools/page_copying.h"
#include "tools/tag.h"
#include "tools/tag_text.h"
#include "tools/tiff_names.h"

#include <algorithm>

namespace tool {

namespace {

// Tags that tell how the image is stored: another value, or none, would make it unreadable.
constexpr DWORD kStructuralTags[] = {
    256,   257,   258, 259,      // ImageWidth, ImageLength, BitsPerSample, Compression
    266,                         // FillOrder
    273,   277,   278, 279, 284, // StripOffsets, SamplesPerPixel, RowsPerStrip, StripByteCounts, PlanarConfiguration
    288,   289,                  // FreeOffsets, FreeByteCounts
    292,   293,                  // T4Options, T6Options
    317,                         // Predictor
    322,   323,   324, 325,      // TileWidth, TileLength, TileOffsets, TileByteCounts
    330,                         // SubIFDs
    347,                         // JPEGTables
    512,   513,   514, 515,      // JPEGProc, JPEGInterchangeFormat and its length, JPEGRestartInterval
    517,   518,   519, 520, 521, // JPEGLosslessPredictors, JPEGPointTransforms, JPEGQTables, -DCTables, -ACTables
    530,                         // YCbCrSubSampling
    34665, 34853,                // ExifIFD, GPSInfoIFD
};
// Tags that may have other values, but have to be there.
constexpr DWORD kNeededTags[] = {262, 320}; // PhotometricInterpretation, ColorMap

void refuseStructural(const TagChange &change) {
    if (!change.force && std::ranges::find(kStructuralTags, change.tag) != std::end(kStructuralTags)) {
        throw UsageError(tagLabel(change.tag) + " tells how the image is stored; '--force' changes it all the same");
    }
}

// Whether readers that expect the one type take the other as well.
bool goesFor(Type type, Type customary) {
    const auto isCount = [](Type t) { return t == Type::Short || t == Type::Long; };
    const auto isBytes = [](Type t) { return t == Type::Byte || t == Type::Undefined; };
    return type == customary || (isCount(type) && isCount(customary)) || (isBytes(type) && isBytes(customary));
}

void refuseOddType(const TagChange &change) {
    const auto customary = customaryType(change.tag);
    if (!change.force && change.type && customary && !goesFor(*change.type, *customary)) {
        throw UsageError(tagLabel(change.tag) + " is of the type " + typeName(static_cast<DWORD>(*customary)) +
                         "; '--force' sets it all the same");
    }
}

Type typeFor(const TagChange &change, const std::optional<TagValues> &old) {
    if (change.type) {
        return *change.type;
    }
    if (old && isWritable(old->type())) {
        return static_cast<Type>(old->type());
    }
    const auto customary = customaryType(change.tag);
    if (!customary) {
        throw UsageError(tagLabel(change.tag) + " has no customary type; '--type' says which one");
    }
    return *customary;
}

Status complain(const FileName &name, const std::string &reason) {
    Console::get().complain(name.shown() + ": " + reason);
    return Status::Failed;
}

// Looked at in what has been written, before it takes the old file's place: the pages, and the tag with its values or
// without any.
bool isAsWanted(const FileName &name, DWORD pageCount, const TagChange &change,
                const std::optional<TagValues> &wanted) {
    const TiffDocument document(name);
    if (!document.isOpen() || document.pageCount() != pageCount || !document.chainMessage().empty()) {
        return false;
    }
    const RegisteredPage page(document, change.index);
    const auto values = readTag(page, change.tag);
    return page && values.has_value() == wanted.has_value() &&
           (!wanted || (values->type() == wanted->type() && values->bytes() == wanted->bytes()));
}

// Sets the tag, or takes it away when there are no values.
Status rebuild(const SelectedPages &pages, const TagChange &change, const std::optional<TagValues> &wanted) {
    Console::get().progress("rebuilding " + change.file.shown());
    LibraryFile file(change.file, LibraryFile::Start::OldContent);
    if (!file.failure().empty()) {
        return complain(change.file, file.failure());
    }
    const char *const path = file.libraryPath().c_str();
    const auto index = static_cast<LONG>(change.index);
    SetTiffError(VELLUM_OK);
    const DWORD done =
        wanted ? AddTiffTagToImage(path, index, wanted->tag(), wanted->type(), wanted->bytes().data(), wanted->count())
               : DeleteTiffTagOfImage(path, index, change.tag);
    const DWORD error = TiffError();
    if (done == 0 || !isAsWanted(file.place(), pages.document.pageCount(), change, wanted)) {
        const bool known = done == 0 && error != VELLUM_OK;
        return complain(change.file, "cannot be rebuilt: " + libraryMessage(known ? error : DWORD{VELLUM_IO_ERROR}));
    }
    return file.commit() ? Status::Ok : complain(change.file, file.failure());
}

// The file's pages, or nothing after a complaint, when it cannot be rebuilt.
std::unique_ptr<SelectedPages> openForChange(const TagChange &change) {
    auto pages = openPage(change.file, change.index);
    if (pages == nullptr) {
        return nullptr;
    }
    Console::get().progress("looking at " + change.file.shown());
    if (const std::string obstacle = rebuildObstacle(pages->document); !obstacle.empty()) {
        complain(change.file, "cannot be rebuilt: " + obstacle);
        return nullptr;
    }
    return pages;
}

std::optional<TagValues> oldValues(const SelectedPages &pages, const TagChange &change) {
    return readTag(RegisteredPage(pages.document, change.index), change.tag);
}

} // namespace

Status setTag(const TagChange &change) {
    refuseStructural(change);
    refuseOddType(change);
    if (change.type) {
        parseValues(change.tag, *change.type, change.words); // what makes no sense whatever the file holds
    }
    const auto pages = openForChange(change);
    if (pages == nullptr) {
        return Status::Failed;
    }
    const TagValues wanted = parseValues(change.tag, typeFor(change, oldValues(*pages, change)), change.words);
    const Status status = rebuild(*pages, change, wanted);
    if (status == Status::Ok && change.told) {
        Console::get().print(pages->label(change.index) + ": " + tagLabel(change.tag) + " is now " +
                             typeName(wanted.type()) + " " + wanted.shown(TagValues::Extent::Abbreviated) + "\n");
    }
    return status;
}

Status deleteTag(const TagChange &change) {
    refuseStructural(change);
    if (!change.force && std::ranges::find(kNeededTags, change.tag) != std::end(kNeededTags)) {
        throw UsageError(tagLabel(change.tag) + " tells what the image means; '--force' deletes it all the same");
    }
    const auto pages = openForChange(change);
    if (pages == nullptr) {
        return Status::Failed;
    }
    if (!oldValues(*pages, change)) {
        Console::get().print(missingTag(*pages, change.tag) + "\n");
        return Status::Ok;
    }
    const Status status = rebuild(*pages, change, std::nullopt);
    if (status == Status::Ok) {
        Console::get().print(pages->label(change.index) + ": " + tagLabel(change.tag) + " is deleted\n");
    }
    return status;
}

} // namespace tool
