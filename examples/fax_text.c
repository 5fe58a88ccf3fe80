/*
 * Draws a text file on the pages of a fax, 204 x 196 dots per inch, or prints it on a form.
 *   fax_text TEXT OUT.tif [a4|letter|legal]
 *   fax_text TEXT OUT.tif FORM.tif
 * TEXT is in the ANSI code page, and its lines end with CR LF: an LF alone is dropped and begins no line. Pages go
 * behind those that OUT.tif has. A form has one page, its first; of the text it takes what fits.
 */
#include "vellum32.h"

#include <stdio.h>
#include <string.h>

#define MOST_PAGES 100

static int failed(const char *path) {
    char message[64];
    fprintf(stderr, "%s: %s\n", path, TiffErrorString(message, TiffError()));
    return 1;
}

/* What goes for paper and forms. Lengths are hundredths of an inch, which fit the resolution better than millimetres.
 */
static void setText(FaxPageParams *params, const char *textFile) {
    DWORD i;
    memset(params, 0, sizeof *params);
    lstrcpynA(params->textFile, textFile, sizeof params->textFile);
    strcpy(params->fontFace, "Courier New");
    params->fontSize = 10; /* points */
    params->flags = VELLUM_FAX_HUNDREDTHS;
    params->leftMargin = 80;
    params->topMargin = 80;
    for (i = 0; i < 16; i++)
        params->tabStops[i] = 80 * (i + 1); /* from the left margin; a tab behind the last one leads nowhere */
}

static BOOL setPaper(FaxPageParams *params, const char *name) {
    static const struct {
        const char *name;
        DWORD width, height;
    } papers[] = {{"a4", 827, 1169}, {"letter", 850, 1100}, {"legal", 850, 1400}};
    DWORD i;
    for (i = 0; i < 3 && strcmp(papers[i].name, name) != 0; i++) {
    }
    if (i == 3)
        return FALSE;
    params->pageWidth = papers[i].width;
    params->pageHeight = papers[i].height;
    params->horizontalResolution = 204;
    params->verticalResolution = 196;
    return TRUE;
}

/* The form is the page: it has its own resolution, and its own right and lower edge. */
static BOOL setForm(FaxPageParams *params, const char *form) {
    BITMAPINFOHEADER size;
    DWORD dots = 0; /* horizontal in the low word */
    TiffHandle tiff = OpenTiffFile(form, T_READ);
    const BOOL known = tiff != NULL && GetTiffImage(tiff, 0) && GetTiffDimensions(tiff, 0, &size) == VELLUM_OK;
    if (known)
        GetTiffImageDPI(tiff, 0, &dots);
    CloseTiffFile(tiff);
    if (!known)
        return FALSE;
    params->horizontalResolution = LOWORD(dots) ? LOWORD(dots) : 204; /* 0: in no unit that is known */
    params->verticalResolution = HIWORD(dots) ? HIWORD(dots) : 196;
    params->pageWidth = (DWORD)MulDiv(size.biWidth, 100, (int)params->horizontalResolution);
    params->pageHeight = (DWORD)MulDiv(size.biHeight, 100, (int)params->verticalResolution);
    return TRUE;
}

/* The next number above dots / 0.0254: the library drops fractions when it makes dots per inch of it again. */
static LONG pixelsPerMeter(DWORD dotsPerInch) {
    return (LONG)(dotsPerInch * 5000 / 127 + 1);
}

/* Adds a page to a file, white as zero, as fax machines expect it. The page stays the caller's. */
static BOOL savePage(const char *path, HGLOBAL page, const FaxPageParams *params) {
    BITMAPINFOHEADER *header = GlobalLock(page);
    LONG code;
    if (header == NULL)
        return SetTiffError(VELLUM_NO_MEMORY), FALSE;
    header->biXPelsPerMeter = pixelsPerMeter(params->horizontalResolution);
    header->biYPelsPerMeter = pixelsPerMeter(params->verticalResolution);
    code = header->biBitCount == 1 ? VELLUM_SAVE_GROUP4 : VELLUM_SAVE_LZW; /* a form may have colours */
    GlobalUnlock(page);
    return SaveDIBInGammaTiffFile(path, page, code, FALSE, 1) != 0;
}

int main(int argc, char **argv) {
    static const char *const troubles[] = {"nothing to do", "the text has more pages", "the text file cannot be opened",
                                           "not enough memory"};
    const char *complete = "the whole text is on the pages";
    HANDLE pages[MOST_PAGES];
    FaxPageParams params;
    DWORD count, saved, i, status = VELLUM_FAX_COMPLETE;
    if (argc < 3 || argc > 4)
        return fprintf(stderr, "usage: fax_text TEXT OUT.tif [a4|letter|legal|FORM.tif]\n"), 2;

    setText(&params, argv[1]);
    if (setPaper(&params, argc == 4 ? argv[3] : "a4")) {
        count = CreateDIBFaxPageFromASCII(&params, MOST_PAGES, pages, &status);
    } else {
        pages[0] = setForm(&params, argv[3]) ? DIBFormOverlay(argv[3], &params) : NULL;
        count = pages[0] != NULL ? 1 : 0;
        if (count == 0 && TiffError() != VELLUM_OK)
            return failed(argv[3]); /* the form's error: the text sets no number */
        status = count == 1 ? VELLUM_FAX_COMPLETE : VELLUM_FAX_NO_TEXT;
        complete = "what fits of the text is on the form";
    }
    for (saved = 0; saved < count && savePage(argv[2], pages[saved], &params); saved++) {
    }
    for (i = 0; i < count; i++)
        GlobalFree(pages[i]); /* also those that were not saved */
    if (saved < count)
        return failed(argv[2]);
    printf("pages: %lu of %lu x %lu dpi; %s\n", count, params.horizontalResolution, params.verticalResolution,
           status == VELLUM_FAX_COMPLETE ? complete : troubles[status - 1]);
    return status == VELLUM_FAX_COMPLETE ? 0 : 1;
}
