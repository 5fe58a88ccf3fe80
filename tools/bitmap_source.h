// A Windows bitmap file as a picture: 1, 4, 8, 24 or 32 bits per pixel, not compressed, either way up, with the headers
// of 12 bytes or of 40 and more. Nothing that the file says of sizes is believed beyond the file's own size.
#pragma once

#include "tools/picture.h"

#include <memory>

namespace tool {

// Whether a file begins as a bitmap does. False also for one that cannot be read.
bool isBitmapFile(const FileName &name);

class BitmapFile;

class BitmapSource final : public PageSource {
public:
    explicit BitmapSource(const FileName &name);

    [[nodiscard]] const FileName &name() const override { return name_; }
    [[nodiscard]] DWORD pageCount() const override { return 1; }
    [[nodiscard]] PageReading read(DWORD index) const override;

private:
    FileName name_;
    std::shared_ptr<BitmapFile> file_;
};

} // namespace tool
