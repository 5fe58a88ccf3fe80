/*
 * The file and its page. What depends on the kind of file stands here, and in the file dialog's line of names.
 */
#include "viewer.h"

#define TAG_RESOLUTION_UNIT 296
#define UNIT_CENTIMETRE 3

/* ---------------------------------------------------------------- what a file tells ------------------------------- */

/*
 * The library leaves dots per centimetre as they are in the file: it takes them for dots per metre, and paints such a
 * page 100 times too large.
 */
static double ratioOf(TiffHandle tiff, DWORD page, const BITMAPINFOHEADER *header) {
    DWORD unit[2] = {0, 0}; /* a tag of two numbers has room, too */
    return header->biXPelsPerMeter > 0 && header->biYPelsPerMeter > 0 &&
                   GetTiffImageInfo(tiff, page, TAG_RESOLUTION_UNIT, unit) && unit[0] == UNIT_CENTIMETRE
               ? 0.01
               : 1;
}

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
    size->ratio = ratioOf(tiff, page, &header);
    size->dotsPerInchX = header.biXPelsPerMeter * 0.0254 / size->ratio;
    size->dotsPerInchY = header.biYPelsPerMeter * 0.0254 / size->ratio;
    CloseTiffFile(tiff); /* and drops the page */
    return page < document->pageCount;
}

static BOOL describeCals(Document *document, DWORD page) {
    CalsInfo info;
    PageSize *size = &document->pageSize;
    if (!ReadCALSInfo(document->path, &info)) {
        return FALSE;
    }
    if (page > 0) {
        SetTiffError(VELLUM_INDEX_OUT_OF_RANGE);
        return FALSE;
    }
    document->kind = VELLUM_SHOW_CALS;
    document->pageCount = 1;
    document->page = 0;
    document->pageError = VELLUM_OK;
    size->width = info.rpelcnt[0];
    size->height = info.rpelcnt[1];
    size->dotsPerInchX = size->dotsPerInchY = info.rdensty;
    size->ratio = 1;
    return TRUE;
}

/* What there is at a file's start; what is missing is 0. */
static void readStart(const char *path, char *start, DWORD size) {
    HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, NULL, OPEN_EXISTING, 0, NULL);
    DWORD count = 0;
    ZeroMemory(start, size);
    if (file != INVALID_HANDLE_VALUE) {
        ReadFile(file, start, size, &count, NULL);
        CloseHandle(file);
    }
}

static BOOL endsWith(const char *path, const char *end) {
    const int length = lstrlenA(path), endLength = lstrlenA(end);
    return length >= endLength && lstrcmpiA(path + length - endLength, end) == 0;
}

/* The error to tell of a file that could be described neither as TIFF nor as CALS; 0 when it is meant to be neither. */
static DWORD chooseError(const char *path, DWORD tiffError, DWORD calsError) {
    static const char kFirstRecord[] = "srcdocid:";
    char start[sizeof kFirstRecord];
    readStart(path, start, sizeof start - 1);
    start[sizeof start - 1] = '\0';
    if ((start[0] == 'I' && start[1] == 'I') || (start[0] == 'M' && start[1] == 'M')) {
        return tiffError;
    }
    if (calsError != VELLUM_NOT_CALS || lstrcmpA(start, kFirstRecord) == 0 || endsWith(path, ".cal") ||
        endsWith(path, ".cals")) {
        return calsError;
    }
    return VELLUM_OK;
}

static BOOL describe(Document *document, DWORD page) {
    DWORD tiffError;
    if (describeTiff(document, page)) {
        return TRUE;
    }
    tiffError = TiffError();
    if (describeCals(document, page)) {
        return TRUE;
    }
    SetTiffError(chooseError(document->path, tiffError, TiffError()));
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

static LONG timesHundred(LONG number) {
    return number <= MAXLONG / 100 ? number * 100 : number;
}

/* Makes dots per metre of dots per centimetre. */
static void correctResolution(HGLOBAL dib) {
    BITMAPINFOHEADER *header = GlobalLock(dib);
    if (header != NULL) {
        header->biXPelsPerMeter = timesHundred(header->biXPelsPerMeter);
        header->biYPelsPerMeter = timesHundred(header->biYPelsPerMeter);
        GlobalUnlock(dib);
    }
}

HGLOBAL loadPage(const Document *document) {
    HGLOBAL dib = document->kind == VELLUM_SHOW_CALS ? LoadCALSIntoDIB(document->path, FALSE)
                                                     : LoadTiffIntoDIB(document->path, document->page, FALSE);
    if (dib != NULL && document->pageSize.ratio != 1) {
        correctResolution(dib);
    }
    return dib;
}

/* For files that the library has no call of its own for. */
static BOOL copyDib(HGLOBAL dib, HWND owner) {
    BOOL copied = FALSE;
    if (dib == NULL) {
        return FALSE;
    }
    /* That the page's data end early is no reason for what fails from here on. */
    SetTiffError(VELLUM_OK);
    if (OpenClipboard(owner)) {
        EmptyClipboard();
        copied = SetClipboardData(CF_DIB, dib) != NULL;
        CloseClipboard();
    }
    if (!copied) {
        GlobalFree(dib); /* else the clipboard's now */
    }
    return copied;
}

BOOL copyPage(const Document *document, HWND owner) {
    BOOL done;
    if (document->kind == VELLUM_SHOW_CALS) {
        return copyDib(loadPage(document), owner);
    }
    done = LoadTiffFileIntoClipboard(document->path, document->page, FALSE) != 0;
    if (TiffError() == VELLUM_UNEXPECTED_END) {
        /*
         * A page whose data end early is on the clipboard as far as it goes: success. Without success it is the
         * clipboard that could not be opened.
         */
        SetTiffError(VELLUM_OK);
        return done;
    }
    /* The result is 1 also for a file that is not there any more. The error number tells that. */
    return done && TiffError() == VELLUM_OK;
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
