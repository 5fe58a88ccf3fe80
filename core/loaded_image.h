// A TIFF file that is open for reading, with one image registered, for the length of a scope.
#pragma once

#include "core/open_file.h"

namespace vellum {

// Empty when the file does not open or the image cannot be registered: the error is set then.
class LoadedImage {
public:
    LoadedImage(const char *path, DWORD index) : tiff_(openTiffFile(path, T_READ)), index_(index) {
        if (tiff_ != nullptr && !registerImage(tiff_, index)) {
            closeTiffFile(tiff_);
            tiff_ = nullptr;
        }
    }
    LoadedImage(const LoadedImage &) = delete;
    LoadedImage &operator=(const LoadedImage &) = delete;
    ~LoadedImage() {
        if (tiff_ != nullptr) {
            closeTiffFile(tiff_);
        }
    }

    explicit operator bool() const { return tiff_ != nullptr; }
    [[nodiscard]] TiffHandle tiff() const { return tiff_; }
    [[nodiscard]] DWORD index() const { return index_; }

private:
    TiffHandle tiff_;
    DWORD index_;
};

} // namespace vellum
