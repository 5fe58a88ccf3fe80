// Copies one image from stream to stream without decoding it: its directory, the values outside, then its data, as
// they are.
#pragma once

#include "write/directory_layout.h"
#include "write/image_data.h"

#include <optional>

namespace vellum {

// A registered image on its way into another file. Its tags in memory become those of the copy, so it must not be one
// that is still needed as it is; and it must stay registered as long as this object lives.
class CopiedImage {
public:
    // source  the stream that the image was loaded from
    CopiedImage(TiffHandle tiff, DWORD index, StreamHandle source) : tiff_(tiff), index_(index), source_(source) {}

    // Finds the data; nothing is changed yet. Errors as for ImageData::find.
    Error find() { return data_.find(tiff_, index_, source_); }

    // Lays the image out for a place in another file, in memory. Errors: 1, 6.
    Error layOut(DWORD start, WORD byteOrder);

    // Writes it to the stream's position, which must be that place. Errors: 1, 6.
    [[nodiscard]] Error write(StreamHandle target) const;

    // Of the link field behind the directory, in the other file.
    [[nodiscard]] DWORD linkPosition() const { return start_ + layout_->linkAt(); }

private:
    TiffHandle tiff_;
    DWORD index_;
    StreamHandle source_;
    DWORD start_ = 0;
    ImageData data_;
    std::optional<ImageDirectory> directory_;
    std::optional<DirectoryLayout> layout_;
};

// Whether a tag leads to more directories in its file (SubIFDs, EXIF ...), which are not copied.
bool leadsElsewhere(const RecordHead &record);

} // namespace vellum
