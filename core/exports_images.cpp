// The exported queries on images.
#include "core/image_dimensions.h"
#include "core/image_info.h"
#include "core/open_file.h"

extern "C" {

DWORD VELLUMAPI GetTiffImage(TiffHandle tiff, DWORD index) {
    return vellum::registerImage(tiff, index) ? 1 : 0;
}

LONG VELLUMAPI GetTiffImageInfo(TiffHandle tiff, DWORD index, LONG tag, void *value) {
    return vellum::copyFirstValue(tiff, index, tag, value) ? 1 : 0;
}

LONG VELLUMAPI GetTiffImageInfoBuffer(TiffHandle tiff, DWORD index, LONG tag, HGLOBAL *data, DWORD *type,
                                      DWORD *count) {
    const auto shape = vellum::tagShape(tiff, index, tag);
    if (!shape) {
        return 0;
    }
    if (data != nullptr) {
        auto values = vellum::allValues(tiff, index, tag);
        if (!values) {
            return 0;
        }
        *data = values->data.release();
    }
    if (type != nullptr) {
        *type = shape->type;
    }
    if (count != nullptr) {
        *count = shape->count;
    }
    return 1;
}

DWORD VELLUMAPI GetTiffDimensions(TiffHandle tiff, DWORD index, BITMAPINFOHEADER *header) {
    BITMAPINFOHEADER unwanted = {};
    const vellum::Error error = vellum::describeImage(tiff, index, header != nullptr ? *header : unwanted);
    if (error != vellum::Error::None) {
        vellum::setError(error);
    }
    return number(error);
}

HGLOBAL VELLUMAPI GetTiffRGBQuad(TiffHandle tiff, DWORD index) {
    return vellum::makeColorTable(tiff, index).release();
}

DWORD VELLUMAPI GetTiffRowsPerStrip(TiffHandle tiff, DWORD index) {
    return vellum::rowsPerStrip(tiff, index);
}

LONG VELLUMAPI GetTiffStripCount(TiffHandle tiff, DWORD index) {
    return static_cast<LONG>(vellum::stripCount(tiff, index));
}

DWORD VELLUMAPI GetTiffImageDPI(TiffHandle tiff, DWORD index, DWORD *dpi) {
    if (dpi != nullptr) {
        *dpi = vellum::dotsPerInch(tiff, index);
    }
    return 0;
}

} // extern "C"
