/*
 * Puts a note on the first page of a TIFF without asking a user, and stamps "RECEIVED" on it.
 *   note_and_stamp note FILE.tif X Y LINE...      X, Y: pixels of the page
 *   note_and_stamp stamp IN.tif OUT.tif X Y       X, Y: millimetres from the upper left corner
 * The note is a text in tag 316 of FILE.tif and leaves the pixels alone; GetNoteTagFromTiff reads it again. The stamp
 * is in the pixels of a new page, which goes behind those that OUT.tif has.
 */
#include "vellum32.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define TAG_NOTE 316 /* also for the name of a host computer */
#define TYPE_ASCII 2

static int failed(const char *path) {
    char message[64];
    fprintf(stderr, "%s: %s\n", path, TiffErrorString(message, TiffError()));
    return 1;
}

/*
 * Gives a note its lines, with CR LF between them, in a block of the caller's; and, from its place, the rectangle that
 * they take in the screen's font, in which notes are shown (the first 40 characters of a line).
 */
static BOOL setText(NoteRecord *note, char **lines, int count) {
    HDC screen = GetDC(NULL);
    SIZE size = {0, 0};
    size_t bytes = 1;
    char *text;
    int i;
    note->right = note->left;
    note->bottom = note->top;
    for (i = 0; i < count; i++) {
        const char *line = lines[i][0] != '\0' ? lines[i] : "WW"; /* an empty line has a size, too */
        GetTextExtentPoint32A(screen, line, (int)strlen(line), &size);
        if (note->right < note->left + size.cx)
            note->right = note->left + size.cx;
        note->bottom += size.cy;
        bytes += strlen(lines[i]) + 2;
    }
    ReleaseDC(NULL, screen);

    note->text = GlobalAlloc(GMEM_MOVEABLE, bytes); /* the tag tells its size */
    text = note->text != NULL ? GlobalLock(note->text) : NULL;
    if (text == NULL)
        return FALSE;
    text[0] = '\0';
    for (i = 0; i < count; i++)
        strcat(strcat(text, i > 0 ? "\r\n" : ""), lines[i]);
    GlobalUnlock(note->text);
    return TRUE;
}

/* The tag's value, a block of the caller's: the library makes it a tag of the open page, from where it is taken. */
static HGLOBAL tagValue(const char *path, const NoteRecord *note, DWORD *length) {
    NoteRecord before;
    HGLOBAL value = NULL;
    TiffHandle tiff = OpenTiffFile(path, T_READ);
    BOOL ready = tiff != NULL && GetTiffImage(tiff, 0);
    if (ready && GetNoteTagFromTiff(tiff, 0, &before)) {
        GlobalFree(before.text); /* the new note takes its place */
    } else if (ready && GetTiffImageInfo(tiff, 0, TAG_NOTE, NULL)) {
        SetTiffError(VELLUM_BAD_TAG); /* the tag holds something else than a note: that is left alone */
        ready = FALSE;
    }
    if (!ready || !AddNoteTagToTiff(tiff, 0, note) || !GetTiffImageInfoBuffer(tiff, 0, TAG_NOTE, &value, NULL, length))
        value = NULL;
    CloseTiffFile(tiff); /* nothing was written */
    return value;
}

static int addNote(const char *path, LONG x, LONG y, char **lines, int count) {
    NoteRecord note = {TRUE, TRUE, NULL, 0, 0, 0, 0, NULL}; /* kept in the header, opaque */
    DWORD length, stored = 0;
    HGLOBAL value = NULL;
    const void *bytes;
    note.left = x;
    note.top = y;
    SetTiffError(VELLUM_NO_MEMORY); /* until a call tells otherwise */
    if (setText(&note, lines, count))
        value = tagValue(path, &note, &length);
    if (value != NULL && (bytes = GlobalLock(value)) != NULL) {
        stored = AddTiffTagToImage(path, 0, TAG_NOTE, TYPE_ASCII, bytes, length); /* the file is built anew */
        GlobalUnlock(value);
    }
    if (value != NULL)
        GlobalFree(value);
    if (note.text != NULL)
        GlobalFree(note.text);
    if (!stored)
        return failed(path);
    return printf("note from %ld,%ld to %ld,%ld\n", note.left, note.top, note.right, note.bottom) < 0;
}

/* Dots per inch: of the screen, and of a page, which has the screen's where it does not tell its own. */
static void getDots(const char *path, POINT *screen, POINT *page) {
    DWORD dots = 0; /* horizontal in the low word */
    HDC dc = GetDC(NULL);
    TiffHandle tiff = OpenTiffFile(path, T_READ);
    if (tiff != NULL && GetTiffImage(tiff, 0))
        GetTiffImageDPI(tiff, 0, &dots);
    CloseTiffFile(tiff);
    screen->x = GetDeviceCaps(dc, LOGPIXELSX);
    screen->y = GetDeviceCaps(dc, LOGPIXELSY);
    ReleaseDC(NULL, dc);
    page->x = LOWORD(dots) ? LOWORD(dots) : screen->x;
    page->y = HIWORD(dots) ? HIWORD(dots) : screen->y;
}

/*
 * Gives a DIB its dots per inch, 0 for none: the next number above dots / 0.0254, since the library drops fractions on
 * the way back. Result: the compression for a DIB of its depth.
 */
static LONG setResolution(HGLOBAL dib, LONG x, LONG y) {
    BITMAPINFOHEADER *header = GlobalLock(dib);
    LONG code = VELLUM_SAVE_LZW;
    if (header != NULL) {
        header->biXPelsPerMeter = x > 0 ? x * 5000 / 127 + 1 : 0;
        header->biYPelsPerMeter = y > 0 ? y * 5000 / 127 + 1 : 0;
        code = header->biBitCount == 1 ? VELLUM_SAVE_GROUP4 : VELLUM_SAVE_LZW;
        GlobalUnlock(dib);
    }
    return code;
}

/*
 * Places are given in pixels of the screen; the library scales them. In a picture coarser than the screen it would cut
 * the text's beginning off: such a one loses its resolution, so that its pixels are taken for the screen's, and place
 * and size are counted in them.
 */
static HGLOBAL printOn(HGLOBAL page, POINT dots, POINT screen, LONG x, LONG y) {
    const BOOL coarse = dots.x < screen.x || dots.y < screen.y;
    const POINT unit = coarse ? dots : screen;
    const int points = coarse ? MulDiv(16, dots.y, screen.y) : 16;
    setResolution(page, coarse ? 0 : dots.x, coarse ? 0 : dots.y);
    return DIBTextOverlay(page, MulDiv(x, unit.x * 10, 254), MulDiv(y, unit.y * 10, 254), "RECEIVED", "Arial",
                          (DWORD)points);
}

static int stamp(const char *in, const char *out, LONG x, LONG y) {
    HGLOBAL page, stamped = NULL;
    POINT screen, dots;
    DWORD saved;
    getDots(in, &screen, &dots);
    page = LoadTiffIntoDIB(in, 0, FALSE);
    if (page == NULL)
        return failed(in);
    if (TiffError() == VELLUM_OK) {     /* else its data end early */
        SetTiffError(VELLUM_NO_MEMORY); /* the next call sets no number */
        stamped = printOn(page, dots, screen, x, y);
    }
    GlobalFree(page); /* the stamp is on a copy */
    if (stamped == NULL)
        return failed(in);
    /* With the page's own resolution again: the overlay has cut it, or had none. */
    saved = SaveDIBInTiffFile(out, stamped, setResolution(stamped, dots.x, dots.y), FALSE);
    GlobalFree(stamped);
    return saved ? 0 : failed(out);
}

int main(int argc, char **argv) {
    const BOOL note = argc >= 6 && strcmp(argv[1], "note") == 0;
    const BOOL onPage = argc == 6 && strcmp(argv[1], "stamp") == 0;
    const LONG x = argc >= 6 ? atol(argv[note ? 3 : 4]) : 0;
    const LONG y = argc >= 6 ? atol(argv[note ? 4 : 5]) : 0;
    if ((note || onPage) && x >= 0 && y >= 0) /* a tag knows no negative numbers */
        return note ? addNote(argv[2], x, y, argv + 5, argc - 5) : stamp(argv[2], argv[3], x, y);
    return fprintf(stderr, "usage: note_and_stamp note FILE.tif X Y LINE...\n"
                           "       note_and_stamp stamp IN.tif OUT.tif X Y\n"),
           2;
}
