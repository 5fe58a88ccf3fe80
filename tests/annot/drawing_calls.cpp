// Stands in for the calls that make contexts, bitmaps and fonts.
#include <windows.h>

#ifndef VELLUM_NATIVE
#include "annot/drawing_calls.h"
#include "support/import_patch.h"

namespace vellum::test {
namespace {

DrawingCalls::Counts counted;
Drawing failingKind = Drawing::Nothing;
int failingNth = 0;

struct {
    ImportPatch createCompatibleDc;
    ImportPatch deleteDc;
    ImportPatch getDc;
    ImportPatch releaseDc;
    ImportPatch createBitmap;
    ImportPatch createCompatibleBitmap;
    ImportPatch createDibSection;
    ImportPatch copyImage;
    ImportPatch createFontIndirect;
    ImportPatch createPalette;
    ImportPatch deleteObject;
    ImportPatch selectObject;
} patches;

// Counts a making; true when it is to fail.
bool fails(Drawing kind) {
    const int nth = counted.made[static_cast<int>(kind)]++;
    return kind == failingKind && nth == failingNth;
}

template <class Handle>
Handle countedObject(Handle handle) {
    counted.objects += handle == nullptr ? 0 : 1;
    return handle;
}

HDC WINAPI countCreateCompatibleDc(HDC like) {
    const HDC dc =
        fails(Drawing::Context) ? nullptr : patches.createCompatibleDc.original<decltype(CreateCompatibleDC)>()(like);
    counted.contexts += dc == nullptr ? 0 : 1;
    return dc;
}

BOOL WINAPI countDeleteDc(HDC dc) {
    --counted.contexts;
    return patches.deleteDc.original<decltype(DeleteDC)>()(dc);
}

HDC WINAPI countGetDc(HWND window) {
    ++counted.contexts;
    return patches.getDc.original<decltype(GetDC)>()(window);
}

int WINAPI countReleaseDc(HWND window, HDC dc) {
    --counted.contexts;
    return patches.releaseDc.original<decltype(ReleaseDC)>()(window, dc);
}

HBITMAP WINAPI countCreateBitmap(int width, int height, UINT planes, UINT bits, const void *data) {
    return fails(Drawing::Page) ? nullptr
                                : countedObject(patches.createBitmap.original<decltype(CreateBitmap)>()(
                                      width, height, planes, bits, data));
}

HBITMAP WINAPI countCreateCompatibleBitmap(HDC dc, int width, int height) {
    return countedObject(
        patches.createCompatibleBitmap.original<decltype(CreateCompatibleBitmap)>()(dc, width, height));
}

HBITMAP WINAPI countCreateDibSection(HDC dc, const BITMAPINFO *info, UINT usage, void **bits, HANDLE file,
                                     DWORD offset) {
    return fails(Drawing::Section) ? nullptr
                                   : countedObject(patches.createDibSection.original<decltype(CreateDIBSection)>()(
                                         dc, info, usage, bits, file, offset));
}

HANDLE WINAPI countCopyImage(HANDLE image, UINT type, int width, int height, UINT flags) {
    return fails(Drawing::Copy)
               ? nullptr
               : countedObject(patches.copyImage.original<decltype(CopyImage)>()(image, type, width, height, flags));
}

HFONT WINAPI countCreateFontIndirect(const LOGFONTA *font) {
    counted.font = *font;
    return fails(Drawing::Font)
               ? nullptr
               : countedObject(patches.createFontIndirect.original<decltype(CreateFontIndirectA)>()(font));
}

HPALETTE WINAPI countCreatePalette(const LOGPALETTE *palette) {
    return countedObject(patches.createPalette.original<decltype(CreatePalette)>()(palette));
}

BOOL WINAPI countDeleteObject(HGDIOBJ object) {
    const BOOL deleted = patches.deleteObject.original<decltype(DeleteObject)>()(object);
    counted.objects -= deleted ? 1 : 0;
    return deleted;
}

HGDIOBJ WINAPI countSelectObject(HDC dc, HGDIOBJ object) {
    const bool fail = GetObjectType(object) == OBJ_BITMAP && fails(Drawing::Selection);
    return fail ? nullptr : patches.selectObject.original<decltype(SelectObject)>()(dc, object);
}

} // namespace

DrawingCalls::DrawingCalls(Drawing failing, int nth) {
    counted = {};
    failingKind = failing;
    failingNth = nth;
    patches.createCompatibleDc.replace("CreateCompatibleDC", &countCreateCompatibleDc);
    patches.deleteDc.replace("DeleteDC", &countDeleteDc);
    patches.getDc.replace("GetDC", &countGetDc);
    patches.releaseDc.replace("ReleaseDC", &countReleaseDc);
    patches.createBitmap.replace("CreateBitmap", &countCreateBitmap);
    patches.createCompatibleBitmap.replace("CreateCompatibleBitmap", &countCreateCompatibleBitmap);
    patches.createDibSection.replace("CreateDIBSection", &countCreateDibSection);
    patches.copyImage.replace("CopyImage", &countCopyImage);
    patches.createFontIndirect.replace("CreateFontIndirectA", &countCreateFontIndirect);
    patches.createPalette.replace("CreatePalette", &countCreatePalette);
    patches.deleteObject.replace("DeleteObject", &countDeleteObject);
    patches.selectObject.replace("SelectObject", &countSelectObject);
}

DrawingCalls::~DrawingCalls() {
    ImportPatch *const all[] = {&patches.createCompatibleDc, &patches.deleteDc,     &patches.getDc,
                                &patches.releaseDc,          &patches.createBitmap, &patches.createCompatibleBitmap,
                                &patches.createDibSection,   &patches.copyImage,    &patches.createFontIndirect,
                                &patches.createPalette,      &patches.deleteObject, &patches.selectObject};
    for (ImportPatch *patch : all) {
        patch->restore();
    }
}

const DrawingCalls::Counts &DrawingCalls::counts() {
    return counted;
}

} // namespace vellum::test

#endif
