// The pages of a TIFF as pictures: samples and meaning as they are stored, with the tags that describe the page.
#pragma once

#include "tools/picture.h"
#include "tools/tiff_document.h"

namespace tool {

class TiffSource final : public PageSource {
public:
    // The document must outlive the source.
    explicit TiffSource(const TiffDocument &document) : document_(document) {}

    [[nodiscard]] const FileName &name() const override { return document_.name(); }
    [[nodiscard]] DWORD pageCount() const override { return document_.pageCount(); }
    // A page whose data end early comes as far as it goes, its other lines zero.
    [[nodiscard]] PageReading read(DWORD index) const override;

private:
    const TiffDocument &document_;
};

} // namespace tool
