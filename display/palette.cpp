// Building of logical palettes, and the palette of an image in a file.
#include "display/palette.h"

#include "display/loading.h"
#include "support/dib_view.h"

#include <algorithm>
#include <memory>
#include <new>

namespace vellum {
namespace {

constexpr WORD kPaletteVersion = 0x300;
constexpr DWORD kCubeEntries = 256;
constexpr DWORD kMostEntries = 0xFFFF;

struct PaletteDeleter {
    void operator()(LOGPALETTE *palette) const { ::operator delete(palette); }
};
using PaletteRecord = std::unique_ptr<LOGPALETTE, PaletteDeleter>;

PaletteRecord newRecord(DWORD entries) {
    const std::size_t bytes = sizeof(LOGPALETTE) + entries * sizeof(PALETTEENTRY);
    PaletteRecord record(static_cast<LOGPALETTE *>(::operator new(bytes, std::nothrow)));
    if (record) {
        record->palVersion = kPaletteVersion;
        record->palNumEntries = static_cast<WORD>(entries);
    }
    return record;
}

void copyColours(LOGPALETTE &record, const RGBQUAD *colours) {
    for (DWORD i = 0; i < record.palNumEntries; ++i) {
        record.palPalEntry[i] = {colours[i].rgbRed, colours[i].rgbGreen, colours[i].rgbBlue, 0};
    }
}

// Eight reds, eight greens, four blues; by design the last entry is white, which the steps would just miss.
void fillCube(LOGPALETTE &record) {
    for (DWORD i = 0; i < kCubeEntries; ++i) {
        record.palPalEntry[i] = {static_cast<BYTE>(32 * (i % 8)), static_cast<BYTE>(32 * (i / 8 % 8)),
                                 static_cast<BYTE>(64 * (i / 64)), 0};
    }
    record.palPalEntry[kCubeEntries - 1] = {255, 255, 255, 0};
}

} // namespace

OwnedPalette makePalette(const BITMAPINFOHEADER *header, std::size_t bytes) {
    if (header == nullptr || bytes < sizeof *header || header->biSize != sizeof *header) {
        return OwnedPalette();
    }
    const DWORD entries = colourTableEntries(*header);
    const bool cube = entries == 0 && header->biBitCount == 24;
    if ((entries == 0 && !cube) || entries > kMostEntries || bytes - sizeof *header < entries * sizeof(RGBQUAD)) {
        return OwnedPalette();
    }
    const PaletteRecord record = newRecord(cube ? kCubeEntries : entries);
    if (!record) {
        return OwnedPalette();
    }
    if (cube) {
        fillCube(*record);
    } else {
        copyColours(*record, reinterpret_cast<const RGBQUAD *>(header + 1));
    }
    return OwnedPalette(CreatePalette(record.get()));
}

OwnedPalette makePalette(HGLOBAL dib) {
    const GlobalView<const BITMAPINFOHEADER> header(dib);
    return makePalette(header.get(), header.bytes());
}

} // namespace vellum

extern "C" HPALETTE VELLUMAPI GetTiffImagePalette(const char *path, DWORD index) {
    const vellum::LoadedImage image(path, index);
    if (!image) {
        return nullptr;
    }
    const vellum::GlobalBlock info(GetTiffRGBQuad(image.tiff(), index));
    const vellum::GlobalView<const BITMAPINFOHEADER> header(info.get());
    if (!header || header->biBitCount == 1) {
        return nullptr;
    }
    return vellum::makePalette(header.get(), header.bytes()).release();
}
