/*
 * The file and its page. What depends on the kind of file stands here, and in the file dialog's line of names.
 */
#include "viewer.h"

/* ---------------------------------------------------------------- what a file tells ------------------------------- */

/* A page that is damaged is described, too: it has an error in place of a size. */
static BOOL describeTiff(Document *document, DWORD page) {
    BITMAPINFOHEADER header = {sizeof header, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    PageSize *size = &document->pageSize;
    TiffHandle tiff = OpenTiffFile(document->path, T_READ);
    if (tiff == NULL) {
        return FALSE;
    }
    document->kind = VELLUM_SHOW_TIFF;
    document->pageCount = (DWORD)NumberOfTiffImages(tiff, VELLUM_ALL_IMAGES);
    document->page = page;
    document->pageError = GetTiffImage(tiff, page) ? GetTiffDimensions(tiff, page, &header) : TiffError();
    size->width = header.biWidth;
    size->height = header.biHeight;
    size->dotsPerInchX = header.biXPelsPerMeter * 0.0254;
    size->dotsPerInchY = header.biYPelsPerMeter * 0.0254;
    CloseTiffFile(tiff); /* and drops the page */
    return page < document->pageCount;
}

static BOOL describeCals(Document *document, DWORD page) {
    CalsInfo info;
    PageSize *size = &document->pageSize;
    if (page > 0 || !ReadCALSInfo(document->path, &info)) {
        return FALSE;
    }
    document->kind = VELLUM_SHOW_CALS;
    document->pageCount = 1;
    document->page = 0;
    document->pageError = VELLUM_OK;
    size->width = info.rpelcnt[0];
    size->height = info.rpelcnt[1];
    size->dotsPerInchX = size->dotsPerInchY = info.rdensty;
    return TRUE;
}

static BOOL describe(Document *document, DWORD page) {
    DWORD error;
    if (describeTiff(document, page)) {
        return TRUE;
    }
    error = TiffError();
    if (describeCals(document, page)) {
        return TRUE;
    }
    SetTiffError(error);
    return FALSE;
}

/* Result: FALSE, with TiffError telling why, for a path that no file can have. */
static BOOL setPath(Document *document, const char *path) {
    /* The full path: the current folder may be another one at the next call. */
    char *name = NULL;
    const DWORD length = GetFullPathNameA(path, sizeof document->path, document->path, &name);
    if (lstrlenA(path) >= MAX_PATH || length >= sizeof document->path) {
        SetTiffError(VELLUM_PATH_TOO_LONG);
        return FALSE;
    }
    if (length == 0 || name == NULL) {
        SetTiffError(VELLUM_IO_ERROR);
        return FALSE;
    }
    document->nameOffset = (DWORD)(name - document->path);
    return TRUE;
}

BOOL openDocument(Document *document, const char *path) {
    Document opened;
    ZeroMemory(&opened, sizeof opened);
    if (!setPath(&opened, path) || !describe(&opened, 0)) {
        return FALSE;
    }
    *document = opened;
    return TRUE;
}

BOOL goToPage(Document *document, DWORD page) {
    Document described = *document;
    if (!describe(&described, page)) {
        return FALSE;
    }
    *document = described;
    return TRUE;
}

/* ---------------------------------------------------------------- what is done with a page ------------------------ */

HGLOBAL loadPage(const Document *document) {
    return document->kind == VELLUM_SHOW_CALS ? LoadCALSIntoDIB(document->path, FALSE)
                                              : LoadTiffIntoDIB(document->path, document->page, FALSE);
}

/* For files that the library has no call of its own for. */
static BOOL copyDib(HGLOBAL dib, HWND owner) {
    BOOL copied = FALSE;
    if (dib != NULL && OpenClipboard(owner)) {
        EmptyClipboard();
        copied = SetClipboardData(CF_DIB, dib) != NULL;
        CloseClipboard();
    }
    if (dib != NULL && !copied) {
        GlobalFree(dib); /* else the clipboard's now */
    }
    return copied;
}

BOOL copyPage(const Document *document, HWND owner) {
    if (document->kind == VELLUM_SHOW_CALS) {
        return copyDib(loadPage(document), owner);
    }
    /* The result is 1 also for a file that is not there any more. The error number tells that. */
    return LoadTiffFileIntoClipboard(document->path, document->page, FALSE) && TiffError() == VELLUM_OK;
}

/* The loaders show the dialog when they are asked to, and then load. To show it alone, a program runs it itself. */
static BOOL showTiffInformation(const Document *document, HWND owner) {
    TiffInfoDlgParam shown = {OpenTiffFile(document->path, T_READ), document->page};
    BOOL done =
        shown.tiff != NULL && GetTiffImage(shown.tiff, shown.index) &&
        DialogBoxParamA(GetModuleHandleA("VELLUM32.DLL"), "TIFFINFO", owner, TiffDllInfoDlgFn, (LPARAM)&shown) > 0;
    if (shown.tiff != NULL) {
        CloseTiffFile(shown.tiff);
    }
    return done;
}

BOOL showInformation(const Document *document, HWND owner) {
    return document->kind == VELLUM_SHOW_CALS ? ShowCALSInfo(owner, document->path) > 0
                                              : showTiffInformation(document, owner);
}
