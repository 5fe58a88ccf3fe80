// A TIFF that is open for the length of a scope.
#pragma once

#include "core/open_file.h"

namespace vellum {

// Empty when it cannot be opened: the error is set then.
class OpenTiff {
public:
    OpenTiff(const char *path, DWORD mode) : tiff_(openTiffFile(path, mode)) {}
    OpenTiff(const OpenTiff &) = delete;
    OpenTiff &operator=(const OpenTiff &) = delete;
    ~OpenTiff() {
        if (tiff_ != nullptr) {
            closeTiffFile(tiff_);
        }
    }
    explicit operator bool() const { return tiff_ != nullptr; }
    [[nodiscard]] TiffHandle get() const { return tiff_; }

private:
    TiffHandle tiff_;
};

} // namespace vellum
