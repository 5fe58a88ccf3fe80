// Stands in for the GDI and clipboard calls of the library.
#include <windows.h>

#ifndef VELLUM_NATIVE
#include "support/gdi_calls.h"

#include <map>

namespace vellum::test {
namespace {

GdiCalls::Counts counts;
GdiCalls::Fail failing = GdiCalls::Fail::Nothing;
std::map<HDC, HGDIOBJ> memoryBitmaps; // what the memory contexts have selected

struct {
    ImportPatch createBitmap;
    ImportPatch createCompatibleBitmap;
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
    ImportPatch openClipboard;
    ImportPatch closeClipboard;
    ImportPatch emptyClipboard;
    ImportPatch getClipboardData;
    ImportPatch setClipboardData;
} patches;

template <class Handle>
Handle counted(Handle handle) {
    counts.objects += handle == nullptr ? 0 : 1;
    return handle;
}

HBITMAP WINAPI countCreateBitmap(int width, int height, UINT planes, UINT bits, const void *data) {
    return failing == GdiCalls::Fail::Bitmap
               ? nullptr
               : counted(patches.createBitmap.original<decltype(CreateBitmap)>()(width, height, planes, bits, data));
}

HBITMAP WINAPI countCreateCompatibleBitmap(HDC dc, int width, int height) {
    return failing == GdiCalls::Fail::Bitmap
               ? nullptr
               : counted(
                     patches.createCompatibleBitmap.original<decltype(CreateCompatibleBitmap)>()(dc, width, height));
}

HPALETTE WINAPI countCreatePalette(const LOGPALETTE *palette) {
    return failing == GdiCalls::Fail::Palette
               ? nullptr
               : counted(patches.createPalette.original<decltype(CreatePalette)>()(palette));
}

BOOL WINAPI countDeleteObject(HGDIOBJ object) {
    for (const auto &[dc, bitmap] : memoryBitmaps) {
        counts.deletedInUse += bitmap == object ? 1 : 0;
    }
    const BOOL deleted = patches.deleteObject.original<decltype(DeleteObject)>()(object);
    counts.objects -= deleted ? 1 : 0;
    return deleted;
}

HDC WINAPI countGetDc(HWND window) {
    if (failing == GdiCalls::Fail::GetDc) {
        return nullptr;
    }
    ++counts.contexts;
    return patches.getDc.original<decltype(GetDC)>()(window);
}

int WINAPI countReleaseDc(HWND window, HDC dc) {
    --counts.contexts;
    return patches.releaseDc.original<decltype(ReleaseDC)>()(window, dc);
}

HDC WINAPI countCreateCompatibleDc(HDC like) {
    const HDC dc = failing == GdiCalls::Fail::MemoryDc
                       ? nullptr
                       : patches.createCompatibleDc.original<decltype(CreateCompatibleDC)>()(like);
    counts.memoryContexts += dc == nullptr ? 0 : 1;
    if (dc != nullptr) {
        memoryBitmaps[dc] = nullptr;
    }
    return dc;
}

BOOL WINAPI countDeleteDc(HDC dc) {
    memoryBitmaps.erase(dc);
    --counts.memoryContexts;
    return patches.deleteDc.original<decltype(DeleteDC)>()(dc);
}

int WINAPI countSaveDc(HDC dc) {
    if (failing == GdiCalls::Fail::SaveDc) {
        return 0;
    }
    const int level = patches.saveDc.original<decltype(SaveDC)>()(dc);
    counts.savedStates += level == 0 ? 0 : 1;
    return level;
}

BOOL WINAPI countRestoreDc(HDC dc, int level) {
    const BOOL restored = patches.restoreDc.original<decltype(RestoreDC)>()(dc, level);
    counts.savedStates -= restored ? 1 : 0;
    return restored;
}

HGDIOBJ WINAPI countSelectObject(HDC dc, HGDIOBJ object) {
    const bool bitmap = GetObjectType(object) == OBJ_BITMAP;
    const HGDIOBJ before = patches.selectObject.original<decltype(SelectObject)>()(dc, object);
    if (const auto memory = memoryBitmaps.find(dc); bitmap && before != nullptr && memory != memoryBitmaps.end()) {
        memory->second = object;
    }
    return before;
}

HPALETTE WINAPI countSelectPalette(HDC dc, HPALETTE palette, BOOL background) {
    const HPALETTE before = patches.selectPalette.original<decltype(SelectPalette)>()(dc, palette, background);
    if (counts.paletteSelections++ == 0) {
        counts.original = before;
    }
    counts.selected = palette;
    return before;
}

UINT WINAPI countRealizePalette(HDC dc) {
    ++counts.paletteRealizations;
    return patches.realizePalette.original<decltype(RealizePalette)>()(dc);
}

int WINAPI countSetDiBits(HDC dc, HBITMAP bitmap, UINT start, UINT lines, const void *bits, const BITMAPINFO *info,
                          UINT usage) {
    ++counts.lines;
    counts.lastUsage = usage;
    return patches.setDiBits.original<decltype(SetDIBits)>()(dc, bitmap, start, lines, bits, info, usage);
}

int WINAPI countGetDiBits(HDC dc, HBITMAP bitmap, UINT start, UINT lines, void *bits, BITMAPINFO *info, UINT usage) {
    ++counts.linesRead;
    counts.lastUsage = usage;
    return failing == GdiCalls::Fail::GetDiBits
               ? 0
               : patches.getDiBits.original<decltype(GetDIBits)>()(dc, bitmap, start, lines, bits, info, usage);
}

BOOL WINAPI countOpenClipboard(HWND window) {
    if (failing == GdiCalls::Fail::OpenClipboard) {
        return FALSE;
    }
    ++counts.clipboardOpen;
    return patches.openClipboard.original<decltype(OpenClipboard)>()(window);
}

BOOL WINAPI countCloseClipboard() {
    --counts.clipboardOpen;
    return patches.closeClipboard.original<decltype(CloseClipboard)>()();
}

BOOL WINAPI countEmptyClipboard() {
    ++counts.clipboardEmptied;
    return patches.emptyClipboard.original<decltype(EmptyClipboard)>()();
}

HANDLE WINAPI countGetClipboardData(UINT format) {
    return failing == GdiCalls::Fail::GetClipboardData
               ? nullptr
               : patches.getClipboardData.original<decltype(GetClipboardData)>()(format);
}

HANDLE WINAPI countSetClipboardData(UINT format, HANDLE data) {
    return failing == GdiCalls::Fail::SetClipboardData
               ? nullptr
               : patches.setClipboardData.original<decltype(SetClipboardData)>()(format, data);
}

} // namespace

GdiCalls::GdiCalls(Fail fail) {
    vellum::test::counts = {};
    memoryBitmaps.clear();
    failing = fail;
    patches.createBitmap.replace("CreateBitmap", &countCreateBitmap);
    patches.createCompatibleBitmap.replace("CreateCompatibleBitmap", &countCreateCompatibleBitmap);
    patches.createPalette.replace("CreatePalette", &countCreatePalette);
    patches.deleteObject.replace("DeleteObject", &countDeleteObject);
    patches.getDc.replace("GetDC", &countGetDc);
    patches.releaseDc.replace("ReleaseDC", &countReleaseDc);
    patches.createCompatibleDc.replace("CreateCompatibleDC", &countCreateCompatibleDc);
    patches.deleteDc.replace("DeleteDC", &countDeleteDc);
    patches.saveDc.replace("SaveDC", &countSaveDc);
    patches.restoreDc.replace("RestoreDC", &countRestoreDc);
    patches.selectObject.replace("SelectObject", &countSelectObject);
    patches.selectPalette.replace("SelectPalette", &countSelectPalette);
    patches.realizePalette.replace("RealizePalette", &countRealizePalette);
    patches.setDiBits.replace("SetDIBits", &countSetDiBits);
    patches.getDiBits.replace("GetDIBits", &countGetDiBits);
    patches.openClipboard.replace("OpenClipboard", &countOpenClipboard);
    patches.closeClipboard.replace("CloseClipboard", &countCloseClipboard);
    patches.emptyClipboard.replace("EmptyClipboard", &countEmptyClipboard);
    patches.getClipboardData.replace("GetClipboardData", &countGetClipboardData);
    patches.setClipboardData.replace("SetClipboardData", &countSetClipboardData);
}

GdiCalls::~GdiCalls() {
    ImportPatch *all[] = {&patches.createBitmap,
                          &patches.createCompatibleBitmap,
                          &patches.createPalette,
                          &patches.deleteObject,
                          &patches.getDc,
                          &patches.releaseDc,
                          &patches.createCompatibleDc,
                          &patches.deleteDc,
                          &patches.saveDc,
                          &patches.restoreDc,
                          &patches.selectObject,
                          &patches.selectPalette,
                          &patches.realizePalette,
                          &patches.setDiBits,
                          &patches.getDiBits,
                          &patches.getClipboardData,
                          &patches.openClipboard,
                          &patches.closeClipboard,
                          &patches.emptyClipboard,
                          &patches.setClipboardData};
    for (ImportPatch *patch : all) {
        patch->restore();
    }
}

const GdiCalls::Counts &GdiCalls::counts() {
    return vellum::test::counts;
}

} // namespace vellum::test

#endif
