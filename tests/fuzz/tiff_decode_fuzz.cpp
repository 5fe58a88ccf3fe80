// Any bytes as a TIFF in memory: opened, its images queried and decoded. Nothing may crash, hang, leak or deliver a
// line that the image does not have.
#include "vellum32.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr DWORD kMostImages = 8;
// Blank lines cost next to nothing to code, so a small input may stand for a long picture.
constexpr DWORD kMostLines = 20000;

struct Delivered {
    bool begun = false;
    DWORD next = 0;
    DWORD height = 0;
    unsigned sum = 0;
    std::size_t lineBytes = 0;
};

DWORD VELLUMAPI receive(BYTE *line, DWORD lineIndex, DWORD userValue) {
    auto &delivered = *reinterpret_cast<Delivered *>(static_cast<std::uintptr_t>(userValue));
    if ((delivered.begun && lineIndex != delivered.next) || lineIndex >= delivered.height) {
        std::abort();
    }
    delivered.begun = true;
    delivered.next = lineIndex + 1;
    for (std::size_t i = 0; i < delivered.lineBytes; ++i) {
        delivered.sum += line[i];
    }
    return delivered.next % kMostLines != 0 ? 0 : VELLUM_INDEX_OUT_OF_RANGE;
}

void decode(TiffHandle tiff, DWORD index, DWORD firstStrip) {
    BITMAPINFOHEADER header{};
    if (GetTiffDimensions(tiff, index, &header) != 0) {
        return;
    }
    Delivered delivered;
    delivered.height = static_cast<DWORD>(header.biHeight);
    const std::uint64_t bits = std::uint64_t{static_cast<DWORD>(header.biWidth)} * header.biBitCount;
    delivered.lineBytes = static_cast<std::size_t>((bits + 7) / 8);
    DecodeTiffImage(tiff, index, firstStrip, 0, static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(&delivered)),
                    receive);
}

void query(TiffHandle tiff, DWORD index) {
    DWORD dpi = 0;
    GetTiffImageDPI(tiff, index, &dpi);
    GlobalFree(GetTiffRGBQuad(tiff, index));
    HGLOBAL tags = nullptr;
    DWORD count = 0;
    if (GetTiffImageInfoBuffer(tiff, index, 0, &tags, nullptr, &count) != 0) {
        GlobalFree(tags);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, size);
    if (size > 0) {
        std::memcpy(GlobalLock(block), data, size);
        GlobalUnlock(block);
    }
    if (const TiffHandle tiff = OpenTiffInMemory(block, static_cast<DWORD>(size), T_READ); tiff != nullptr) {
        const auto images = static_cast<DWORD>(NumberOfTiffImages(tiff, VELLUM_ALL_IMAGES));
        for (DWORD index = 0; index < images && index < kMostImages; ++index) {
            SetTiffError(VELLUM_OK);
            if (GetTiffImage(tiff, index) != 0) {
                query(tiff, index);
                decode(tiff, index, 0);
                decode(tiff, index, 1);
            }
        }
        CloseTiffFile(tiff);
    }
    GlobalFree(block);
    return 0;
}
