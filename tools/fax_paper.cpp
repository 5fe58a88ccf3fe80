// Forms and paper.
#include "tools/fax_paper.h"

#include "tools/tiff_document.h"

#include <algorithm>

namespace tool {

namespace {

// Makes the form the page, by its own resolution. Result: why it cannot be one; empty when it can.
std::string useForm(const TiffDocument &document, FaxPageParams &page) {
    constexpr ULONGLONG kHundredths = 100;
    const RegisteredPage form(document, 0);
    BITMAPINFOHEADER header{};
    if (!form || GetTiffDimensions(form.handle(), 0, &header) != VELLUM_OK) {
        return libraryMessage(TiffError());
    }
    if (form.isDelegatedJpeg() && !jpegModuleAvailable()) {
        return kNoJpegModule;
    }
    DWORD dots = 0;
    GetTiffImageDPI(form.handle(), 0, &dots);
    page.horizontalResolution = std::max<DWORD>(LOWORD(dots), 1);
    page.verticalResolution = std::max<DWORD>(HIWORD(dots), 1);
    page.pageWidth = static_cast<DWORD>(static_cast<DWORD>(header.biWidth) * kHundredths / page.horizontalResolution);
    page.pageHeight = static_cast<DWORD>(static_cast<DWORD>(header.biHeight) * kHundredths / page.verticalResolution);
    return "";
}

bool whiten(HBITMAP bitmap, DWORD columns, DWORD rows) {
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ before = dc != nullptr ? SelectObject(dc, bitmap) : nullptr;
    const bool done =
        before != nullptr && PatBlt(dc, 0, 0, static_cast<int>(columns), static_cast<int>(rows), WHITENESS) != 0;
    if (before != nullptr) {
        SelectObject(dc, before);
    }
    DeleteDC(dc);
    return done;
}

} // namespace

FaxForm loadForm(const FileName &name, FaxPageParams &page) {
    const TiffDocument document(name);
    if (!document.isOpen()) {
        return {nullptr, document.openMessage()};
    }
    if (const std::string obstacle = useForm(document, page); !obstacle.empty()) {
        return {nullptr, obstacle};
    }
    constexpr LONG kNoDialog = 0;
    SetTiffError(VELLUM_OK);
    OwnedBitmap bitmap(LoadTiffIntoBitmap(name.forLibrary().c_str(), 0, kNoDialog));
    if (bitmap == nullptr) {
        const DWORD error = TiffError();
        return {nullptr, libraryMessage(error != VELLUM_OK ? error : DWORD{VELLUM_NO_MEMORY})};
    }
    return {std::move(bitmap), ""};
}

OwnedBitmap whitePaper(DWORD columns, DWORD rows) {
    OwnedBitmap paper(CreateBitmap(static_cast<int>(columns), static_cast<int>(rows), 1, 1, nullptr));
    return paper != nullptr && whiten(paper.get(), columns, rows) ? std::move(paper) : nullptr;
}

} // namespace tool
