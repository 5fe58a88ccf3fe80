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

std::optional<TagRecord> ImageDirectory::recordAt(DWORD position, WORD ordinal) const {
    const std::size_t bytes = block_.bytes();
    if (position > bytes || bytes - position < sizeof(RecordHead)) {
        return std::nullopt;
    }
    const BYTE *record = reinterpret_cast<const BYTE *>(block_.get()) + position;
    const auto head = load<RecordHead>(record);
    if (head.length < sizeof head || head.length > bytes - position) {
        return std::nullopt;
    }
    return TagRecord{head, record + sizeof head, static_cast<DWORD>(head.length - sizeof head), position, ordinal};
}

std::optional<TagRecord> ImageDirectory::find(DWORD tag) const {
    DWORD position = sizeof(DirectoryHead);
    for (WORD ordinal = 0; ordinal < entryCount(); ++ordinal) {
        const auto record = recordAt(position, ordinal);
        if (!record) {
            break;
        }
        if (record->head.tag == tag) {
            return record;
        }
        position += record->head.length;
    }
    setError(Error::TagNotDefined);
    return std::nullopt;
}

void ImageDirectory::listTags(DWORD *numbers) const {
    DWORD position = sizeof(DirectoryHead);
    for (WORD ordinal = 0; ordinal < entryCount(); ++ordinal) {
        const auto record = recordAt(position, ordinal);
        if (!record) {
            break;
        }
        *numbers++ = record->head.tag;
        position += record->head.length;
    }
}

} // namespace vellum
