// What the front ends share that save a picture as a new image of a TIFF file.
#pragma once

#include "support/wait_cursor.h"
#include "write/fill_lines.h"
#include "write/save_tags.h"

namespace vellum {

// A new image in a file that is made or appended to, dropped and closed with the object. Empty when there is none, with
// the error set: 2 when the file cannot be opened. Nothing is written before the image is encoded.
class NewImage {
public:
    explicit NewImage(const char *path) : tiff_(path == nullptr ? nullptr : OpenTiffFile(path, T_APPEND)) {
        // A new file has Intel's byte order; one that is appended to keeps its own.
        if (tiff_ == nullptr) {
            setError(Error::BadOpenMode);
        } else {
            index_ = DefineTiffImage(tiff_);
        }
    }
    NewImage(const NewImage &) = delete;
    NewImage &operator=(const NewImage &) = delete;
    ~NewImage() {
        if (index_ >= 0) {
            DropTiffImage(tiff_, index());
        }
        if (tiff_ != nullptr) {
            CloseTiffFile(tiff_);
        }
    }

    explicit operator bool() const { return index_ >= 0; }
    [[nodiscard]] TiffHandle tiff() const { return tiff_; }
    [[nodiscard]] DWORD index() const { return static_cast<DWORD>(index_); }

    // Encodes the image, which must have its tags, from lines that work on a context.
    bool encode(SaveLineContext &context, LineFunc lines) const {
        return EncodeTiffImage(tiff_, index(), userValueOf(context), lines) != 0;
    }

private:
    TiffHandle tiff_;
    LONG index_ = -1;
};

} // namespace vellum
