// Walks the records of a loaded directory. Every step is held against the block's end.
#include "core/image_directory.h"

#include "core/open_file.h"
#include "support/byte_order.h"

#include <cstring>

namespace vellum {
namespace {

HGLOBAL registeredDirectory(TiffHandle tiff, DWORD index) {
    if (!isImageRegistered(tiff, index)) {
        return nullptr;
    }
    const TiffFileView file(tiff);
    return file ? file->images[index].directory : nullptr;
}

} // namespace

ImageDirectory::ImageDirectory(TiffHandle tiff, DWORD index) : block_(registeredDirectory(tiff, index)) {}

std::optional<TagRecord> ImageDirectory::recordAt(DWORD position, DWORD ordinal) const {
    const std::size_t bytes = block_.bytes();
    if (ordinal >= entryCount() || position > bytes || bytes - position < sizeof(RecordHead)) {
        return std::nullopt;
    }
    const BYTE *record = reinterpret_cast<const BYTE *>(block_.get()) + position;
    const auto head = load<RecordHead>(record);
    if (head.length < sizeof head || head.length > bytes - position) {
        return std::nullopt;
    }
    return TagRecord{head, record + sizeof head, static_cast<DWORD>(head.length - sizeof head), position,
                     static_cast<WORD>(ordinal)};
}

std::optional<TagRecord> ImageDirectory::find(DWORD tag) const {
    for (auto record = first(); record; record = next(*record)) {
        if (record->head.tag == tag) {
            return record;
        }
    }
    setError(Error::TagNotDefined);
    return std::nullopt;
}

void ImageDirectory::listTags(DWORD *numbers) const {
    for (auto record = first(); record; record = next(*record)) {
        *numbers++ = record->head.tag;
    }
}

} // namespace vellum
