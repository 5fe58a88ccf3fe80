/*
 * The file and its page. What depends on the kind of file stands here: for another kind that the library paints,
 * describe, loadPage, copyPage and showInformation need a second branch, and the file dialog a line.
 */
#include "viewer.h"

/* What a file tells about itself and one of its pages. */
typedef struct Description {
    DWORD pageCount;
    BITMAPINFOHEADER pageSize;
    DWORD pageError;
} Description;

/* A page that is damaged is described, too: it has an error in place of a size. */
static BOOL describe(const char *path, DWORD page, Description *description) {
    TiffHandle tiff = OpenTiffFile(path, T_READ);
    ZeroMemory(description, sizeof *description);
    if (tiff == NULL) {
        return FALSE;
    }
    description->pageCount = (DWORD)NumberOfTiffImages(tiff, VELLUM_ALL_IMAGES);
    if (!GetTiffImage(tiff, page)) {
        description->pageError = TiffError();
    } else {
        description->pageError = GetTiffDimensions(tiff, page, &description->pageSize);
    }
    CloseTiffFile(tiff); /* and drops the page */
    return page < description->pageCount;
}

static void take(Document *document, DWORD page, const Description *description) {
    document->pageCount = description->pageCount;
    document->page = page;
    document->pageSize = description->pageSize;
    document->pageError = description->pageError;
}

BOOL openDocument(Document *document, const char *path) {
    /* The full path: the current folder may be another one at the next call. */
    char fullPath[MAX_PATH], *name = NULL;
    Description description;
    const DWORD length = GetFullPathNameA(path, sizeof fullPath, fullPath, &name);
    if (lstrlenA(path) >= MAX_PATH || length >= sizeof fullPath) {
        SetTiffError(VELLUM_PATH_TOO_LONG);
        return FALSE;
    }
    if (length == 0 || name == NULL) {
        SetTiffError(VELLUM_IO_ERROR);
        return FALSE;
    }
    if (!describe(fullPath, 0, &description)) {
        return FALSE;
    }
    lstrcpyA(document->path, fullPath);
    document->name = document->path + (name - fullPath);
    take(document, 0, &description);
    return TRUE;
}

BOOL goToPage(Document *document, DWORD page) {
    Description description;
    if (!describe(document->path, page, &description)) {
        return FALSE;
    }
    take(document, page, &description);
    return TRUE;
}

HGLOBAL loadPage(const Document *document) {
    return LoadTiffIntoDIB(document->path, document->page, FALSE);
}

BOOL copyPage(const Document *document) {
    /* The result is 1 also for a file that is not there any more. The error number tells that. */
    return LoadTiffFileIntoClipboard(document->path, document->page, FALSE) && TiffError() == VELLUM_OK;
}

BOOL showInformation(const Document *document, HWND owner) {
    /* The loaders show the dialog when they are asked to, and then load. To show it alone, a program runs it itself. */
    TiffInfoDlgParam shown = {OpenTiffFile(document->path, T_READ), document->page};
    BOOL done =
        shown.tiff != NULL && GetTiffImage(shown.tiff, shown.index) &&
        DialogBoxParamA(GetModuleHandleA("VELLUM32.DLL"), "TIFFINFO", owner, TiffDllInfoDlgFn, (LPARAM)&shown) > 0;
    if (shown.tiff != NULL) {
        CloseTiffFile(shown.tiff);
    }
    return done;
}
