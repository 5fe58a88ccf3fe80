// Puts directory and data of a copied image together.
#include "write/image_copier.h"

#include <algorithm>
#include <iterator>

namespace vellum {
namespace {

constexpr WORD kDirectoryTags[] = {
    330,   // SubIFDs
    400,   // global parameters of a fax profile
    34665, // EXIF
    34853, // GPS
    40965, // interoperability
    50933, // further camera profiles
};
constexpr WORD kTypeIfd = 13;

} // namespace

bool leadsElsewhere(const RecordHead &record) {
    return record.type == kTypeIfd ||
           std::find(std::begin(kDirectoryTags), std::end(kDirectoryTags), record.tag) != std::end(kDirectoryTags);
}

Error CopiedImage::layOut(DWORD start, WORD byteOrder) {
    if (const Error error = data_.place(tiff_, index_, start); error != Error::None) {
        return error;
    }
    start_ = start;
    directory_.emplace(tiff_, index_);
    if (!*directory_) {
        return Error::NoMemory;
    }
    layout_.emplace(*directory_, byteOrder, Arrangement::DirectoryFirst);
    return layout_->layOut(start);
}

Error CopiedImage::write(StreamHandle target) const {
    if (const Error error = layout_->write(target); error != Error::None) {
        return error;
    }
    return data_.copy(source_, target);
}

} // namespace vellum
