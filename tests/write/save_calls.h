// Saving a DIB without the dialog, and seeing that the DIB stays as it is.
#pragma once

#include "write/packed_dibs.h"
#include "write/saved_tiff.h"

#include <gtest/gtest.h>

namespace vellum::test {

inline constexpr LONG kEveryCode[] = {
    VELLUM_SAVE_UNCOMPRESSED,     VELLUM_SAVE_PACKBITS,  VELLUM_SAVE_LZW,       VELLUM_SAVE_LZW_DIFFERENCING,
    VELLUM_SAVE_MODIFIED_HUFFMAN, VELLUM_SAVE_GROUP3_1D, VELLUM_SAVE_GROUP3_2D, VELLUM_SAVE_GROUP4};

inline bool isCcitt(LONG code) {
    return code >= VELLUM_SAVE_MODIFIED_HUFFMAN && code <= VELLUM_SAVE_GROUP4;
}

inline Outcome save(const char *path, const PackedDib &dib, LONG code, LONG fillOrder = 1) {
    const DibBlock block(dib);
    SetTiffError(VELLUM_NOT_CALS);
    const DWORD result = SaveDIBInTiffFileExt(path, block.get(), code, 0, fillOrder);
    EXPECT_EQ(lockCount(block.get()), 0U);
    EXPECT_EQ(blockBytes(block.get()), dib.bytes()) << "the DIB has changed";
    return {result, TiffError()};
}

} // namespace vellum::test
