// Stands in for the GDI and clipboard calls of the library.
#include <windows.h>

#ifndef VELLUM_NATIVE
#include "support/gdi_calls.h"

#include <map>
#include <optional>

namespace vellum::test {
namespace {

using Fail = GdiCalls::Fail;

GdiCalls::Counts counts;
Fail failing = Fail::Nothing;
int failingNth = GdiCalls::kEvery;
std::map<HDC, HGDIOBJ> memoryBitmaps; // what the memory contexts have selected

struct Patches {
    ImportPatch createBitmap;
    ImportPatch createCompatibleBitmap;
    ImportPatch createDibSection;
    ImportPatch copyImage;
    ImportPatch createFontIndirect;
    ImportPatch createSolidBrush;
    ImportPatch createPalette;
    ImportPatch deleteObject;
    ImportPatch getDc;
    ImportPatch releaseDc;
    ImportPatch createCompatibleDc;
    ImportPatch deleteDc;
    ImportPatch saveDc;
    ImportPatch restoreDc;
    ImportPatch selectObject;
    ImportPatch selectPalette;
    ImportPatch realizePalette;
    ImportPatch setDiBits;
    ImportPatch getDiBits;
    ImportPatch getBitmapBits;
    ImportPatch extTextOut;
    ImportPatch getTextExtent;
    ImportPatch openClipboard;
    ImportPatch closeClipboard;
    ImportPatch emptyClipboard;
    ImportPatch getClipboardData;
    ImportPatch setClipboardData;
};
std::optional<Patches> patches;

// Counts a call; true when it is to fail.
bool fails(Fail kind) {
    const int nth = counts.tried[static_cast<int>(kind)]++;
    return kind == failing && (failingNth == GdiCalls::kEvery || failingNth == nth);
}

template <class Handle>
Handle counted(Handle handle) {
    counts.objects += handle == nullptr ? 0 : 1;
    return handle;
}

// Makes an object, or fails to.
template <class Function, class... Arguments>
auto make(Fail kind, const ImportPatch &patch, Arguments... arguments) {
    using Handle = decltype(patch.original<Function>()(arguments...));
    return fails(kind) ? Handle{} : counted(patch.original<Function>()(arguments...));
}

HBITMAP WINAPI countCreateBitmap(int width, int height, UINT planes, UINT bits, const void *data) {
    return make<decltype(CreateBitmap)>(Fail::Bitmap, patches->createBitmap, width, height, planes, bits, data);
}

HBITMAP WINAPI countCreateCompatibleBitmap(HDC dc, int width, int height) {
    return make<decltype(CreateCompatibleBitmap)>(Fail::Bitmap, patches->createCompatibleBitmap, dc, width, height);
}

HBITMAP WINAPI countCreateDibSection(HDC dc, const BITMAPINFO *info, UINT usage, void **bits, HANDLE file,
                                     DWORD offset) {
    return make<decltype(CreateDIBSection)>(Fail::DibSection, patches->createDibSection, dc, info, usage, bits, file,
                                            offset);
}

HANDLE WINAPI countCopyImage(HANDLE image, UINT type, int width, int height, UINT flags) {
    return make<decltype(CopyImage)>(Fail::CopyImage, patches->copyImage, image, type, width, height, flags);
}

HFONT WINAPI countCreateFontIndirect(const LOGFONTA *font) {
    counts.font = *font;
    return make<decltype(CreateFontIndirectA)>(Fail::Font, patches->createFontIndirect, font);
}

HBRUSH WINAPI countCreateSolidBrush(COLORREF colour) {
    return make<decltype(CreateSolidBrush)>(Fail::Brush, patches->createSolidBrush, colour);
}

HPALETTE WINAPI countCreatePalette(const LOGPALETTE *palette) {
    return make<decltype(CreatePalette)>(Fail::Palette, patches->createPalette, palette);
}

BOOL WINAPI countDeleteObject(HGDIOBJ object) {
    for (const auto &[dc, bitmap] : memoryBitmaps) {
        counts.deletedInUse += bitmap == object ? 1 : 0;
    }
    const BOOL deleted = patches->deleteObject.original<decltype(DeleteObject)>()(object);
    counts.objects -= deleted ? 1 : 0;
    return deleted;
}

HDC WINAPI countGetDc(HWND window) {
    if (fails(Fail::GetDc)) {
        return nullptr;
    }
    ++counts.contexts;
    return patches->getDc.original<decltype(GetDC)>()(window);
}

int WINAPI countReleaseDc(HWND window, HDC dc) {
    --counts.contexts;
    return patches->releaseDc.original<decltype(ReleaseDC)>()(window, dc);
}

HDC WINAPI countCreateCompatibleDc(HDC like) {
    const HDC dc =
        fails(Fail::MemoryDc) ? nullptr : patches->createCompatibleDc.original<decltype(CreateCompatibleDC)>()(like);
    counts.memoryContexts += dc == nullptr ? 0 : 1;
    if (dc != nullptr) {
        memoryBitmaps[dc] = nullptr;
    }
    return dc;
}

BOOL WINAPI countDeleteDc(HDC dc) {
    memoryBitmaps.erase(dc);
    --counts.memoryContexts;
    return patches->deleteDc.original<decltype(DeleteDC)>()(dc);
}

int WINAPI countSaveDc(HDC dc) {
    if (fails(Fail::SaveDc)) {
        return 0;
    }
    const int level = patches->saveDc.original<decltype(SaveDC)>()(dc);
    counts.savedStates += level == 0 ? 0 : 1;
    return level;
}

BOOL WINAPI countRestoreDc(HDC dc, int level) {
    const BOOL restored = patches->restoreDc.original<decltype(RestoreDC)>()(dc, level);
    counts.savedStates -= restored ? 1 : 0;
    return restored;
}

HGDIOBJ WINAPI countSelectObject(HDC dc, HGDIOBJ object) {
    const bool bitmap = GetObjectType(object) == OBJ_BITMAP;
    if (bitmap && fails(Fail::Selection)) {
        return nullptr;
    }
    const HGDIOBJ before = patches->selectObject.original<decltype(SelectObject)>()(dc, object);
    if (const auto memory = memoryBitmaps.find(dc); bitmap && before != nullptr && memory != memoryBitmaps.end()) {
        memory->second = object;
    }
    return before;
}

HPALETTE WINAPI countSelectPalette(HDC dc, HPALETTE palette, BOOL background) {
    const HPALETTE before = patches->selectPalette.original<decltype(SelectPalette)>()(dc, palette, background);
    if (counts.paletteSelections++ == 0) {
        counts.original = before;
    }
    counts.selected = palette;
    return before;
}

UINT WINAPI countRealizePalette(HDC dc) {
    ++counts.paletteRealizations;
    return patches->realizePalette.original<decltype(RealizePalette)>()(dc);
}

int WINAPI countSetDiBits(HDC dc, HBITMAP bitmap, UINT start, UINT lines, const void *bits, const BITMAPINFO *info,
                          UINT usage) {
    ++counts.lines;
    counts.lastUsage = usage;
    return patches->setDiBits.original<decltype(SetDIBits)>()(dc, bitmap, start, lines, bits, info, usage);
}

int WINAPI countGetDiBits(HDC dc, HBITMAP bitmap, UINT start, UINT lines, void *bits, BITMAPINFO *info, UINT usage) {
    ++counts.linesRead;
    counts.lastUsage = usage;
    return fails(Fail::GetDiBits)
               ? 0
               : patches->getDiBits.original<decltype(GetDIBits)>()(dc, bitmap, start, lines, bits, info, usage);
}

LONG WINAPI countGetBitmapBits(HBITMAP bitmap, LONG bytes, void *bits) {
    return fails(Fail::GetDiBits) ? 0 : patches->getBitmapBits.original<decltype(GetBitmapBits)>()(bitmap, bytes, bits);
}

BOOL WINAPI countExtTextOut(HDC dc, int x, int y, UINT options, const RECT *area, const char *text, UINT length,
                            const INT *distances) {
    ++counts.textsDrawn;
    return patches->extTextOut.original<decltype(ExtTextOutA)>()(dc, x, y, options, area, text, length, distances);
}

BOOL WINAPI countGetTextExtent(HDC dc, const char *text, int length, SIZE *extent) {
    ++counts.textsMeasured;
    return patches->getTextExtent.original<decltype(GetTextExtentPoint32A)>()(dc, text, length, extent);
}

BOOL WINAPI countOpenClipboard(HWND window) {
    if (fails(Fail::OpenClipboard)) {
        return FALSE;
    }
    ++counts.clipboardOpen;
    return patches->openClipboard.original<decltype(OpenClipboard)>()(window);
}

BOOL WINAPI countCloseClipboard() {
    --counts.clipboardOpen;
    return patches->closeClipboard.original<decltype(CloseClipboard)>()();
}

BOOL WINAPI countEmptyClipboard() {
    ++counts.clipboardEmptied;
    return patches->emptyClipboard.original<decltype(EmptyClipboard)>()();
}

HANDLE WINAPI countGetClipboardData(UINT format) {
    return fails(Fail::GetClipboardData) ? nullptr
                                         : patches->getClipboardData.original<decltype(GetClipboardData)>()(format);
}

HANDLE WINAPI countSetClipboardData(UINT format, HANDLE data) {
    return fails(Fail::SetClipboardData)
               ? nullptr
               : patches->setClipboardData.original<decltype(SetClipboardData)>()(format, data);
}

} // namespace

GdiCalls::GdiCalls(Fail fail, int nth) {
    vellum::test::counts = {};
    memoryBitmaps.clear();
    failing = fail;
    failingNth = nth;
    patches.emplace();
    patches->createBitmap.replace("CreateBitmap", &countCreateBitmap);
    patches->createCompatibleBitmap.replace("CreateCompatibleBitmap", &countCreateCompatibleBitmap);
    patches->createDibSection.replace("CreateDIBSection", &countCreateDibSection);
    patches->copyImage.replace("CopyImage", &countCopyImage);
    patches->createFontIndirect.replace("CreateFontIndirectA", &countCreateFontIndirect);
    patches->createSolidBrush.replace("CreateSolidBrush", &countCreateSolidBrush);
    patches->createPalette.replace("CreatePalette", &countCreatePalette);
    patches->deleteObject.replace("DeleteObject", &countDeleteObject);
    patches->getDc.replace("GetDC", &countGetDc);
    patches->releaseDc.replace("ReleaseDC", &countReleaseDc);
    patches->createCompatibleDc.replace("CreateCompatibleDC", &countCreateCompatibleDc);
    patches->deleteDc.replace("DeleteDC", &countDeleteDc);
    patches->saveDc.replace("SaveDC", &countSaveDc);
    patches->restoreDc.replace("RestoreDC", &countRestoreDc);
    patches->selectObject.replace("SelectObject", &countSelectObject);
    patches->selectPalette.replace("SelectPalette", &countSelectPalette);
    patches->realizePalette.replace("RealizePalette", &countRealizePalette);
    patches->setDiBits.replace("SetDIBits", &countSetDiBits);
    patches->getDiBits.replace("GetDIBits", &countGetDiBits);
    patches->getBitmapBits.replace("GetBitmapBits", &countGetBitmapBits);
    patches->extTextOut.replace("ExtTextOutA", &countExtTextOut);
    patches->getTextExtent.replace("GetTextExtentPoint32A", &countGetTextExtent);
    patches->openClipboard.replace("OpenClipboard", &countOpenClipboard);
    patches->closeClipboard.replace("CloseClipboard", &countCloseClipboard);
    patches->emptyClipboard.replace("EmptyClipboard", &countEmptyClipboard);
    patches->getClipboardData.replace("GetClipboardData", &countGetClipboardData);
    patches->setClipboardData.replace("SetClipboardData", &countSetClipboardData);
}

GdiCalls::~GdiCalls() {
    patches.reset();
}

const GdiCalls::Counts &GdiCalls::counts() {
    return vellum::test::counts;
}

} // namespace vellum::test

#endif
