/*
 * Notes: the one that a page of a TIFF has is shown over it, and a click places one. A note is kept in a tag of the
 * page. It is read from the file for every painting, as the page itself is, and goes with the page into a file that the
 * page is saved in. A note that is burned in is a part of the picture, which is saved: the file stays as it is.
 *
 * The library places notes by a scale and a point. That goes for every size that a page is shown in, also for one that
 * is fitted: the note's place is scaled, its text is not. Of rotation the library's functions for notes know nothing,
 * so that there are no notes while the page is turned. CALS files have no tags.
 */
#include "viewer.h"

#define TAG_NOTE 316 /* also for the name of a host computer; the library tells which of both it is */
#define TYPE_ASCII 2

BOOL canHaveNote(const Viewer *viewer) {
    const Document *document = &viewer->document;
    return document->pageCount > 0 && document->pageError == VELLUM_OK && document->kind == VELLUM_SHOW_TIFF &&
           viewer->view.rotation == VELLUM_ROTATE_0;
}

static void freeBlock(HGLOBAL block) {
    if (block != NULL) {
        GlobalFree(block);
    }
}

void freeNote(NoteRecord *note) {
    freeBlock(note->text);
    note->text = NULL;
}

/* ---------------------------------------------------------------- the tag ----------------------------------------- */

BOOL readNote(const Document *document, NoteRecord *note, BOOL *tagTaken) {
    BOOL found = FALSE;
    TiffHandle tiff = document->kind == VELLUM_SHOW_TIFF ? OpenTiffFile(document->path, T_READ) : NULL;
    *tagTaken = FALSE;
    if (tiff != NULL) {
        if (GetTiffImage(tiff, document->page)) {
            found = GetNoteTagFromTiff(tiff, document->page, note) != 0;
            *tagTaken = !found && GetTiffImageInfo(tiff, document->page, TAG_NOTE, NULL);
        }
        CloseTiffFile(tiff);
    }
    return found;
}

/* The note as the tag has it: the library makes it a tag of the page in memory, from where it is taken. */
static HGLOBAL tagValue(const char *path, DWORD page, const NoteRecord *note, DWORD *length) {
    HGLOBAL value = NULL;
    TiffHandle tiff = OpenTiffFile(path, T_READ);
    if (tiff == NULL) {
        return NULL;
    }
    if (!GetTiffImage(tiff, page) || !AddNoteTagToTiff(tiff, page, note) ||
        !GetTiffImageInfoBuffer(tiff, page, TAG_NOTE, &value, NULL, length)) {
        value = NULL;
    }
    CloseTiffFile(tiff);
    return value;
}

BOOL storeNote(const char *path, DWORD page, const NoteRecord *note) {
    DWORD length = 0;
    HGLOBAL value = tagValue(path, page, note, &length);
    const void *bytes = value != NULL ? GlobalLock(value) : NULL;
    BOOL stored = FALSE;
    if (bytes != NULL) {
        stored = AddTiffTagToImage(path, (LONG)page, TAG_NOTE, TYPE_ASCII, bytes, length) != 0;
        GlobalUnlock(value);
    }
    freeBlock(value);
    return stored;
}

/* ---------------------------------------------------------------- painting ---------------------------------------- */

void paintNote(const Viewer *viewer, HDC dc) {
    const PageSize *size = &viewer->document.pageSize;
    const RECT shown = pageOnScreen(viewer);
    const POINT origin = {shown.left, shown.top};
    NoteRecord note;
    BOOL tagTaken;
    if (!canHaveNote(viewer) || size->width <= 0 || size->height <= 0 ||
        !readNote(&viewer->document, &note, &tagTaken)) {
        return;
    }
    /*
     * No image offset: a note that begins above it or to the left would not be drawn at all. With an origin outside the
     * window, one that is scrolled half away shows its other half.
     */
    PaintNotePlus(viewer->window, dc, NULL, (double)(shown.right - shown.left) / size->width,
                  (double)(shown.bottom - shown.top) / size->height, &origin, &note);
    freeNote(&note);
}

/* ---------------------------------------------------------------- placing ----------------------------------------- */

void setPlacing(Viewer *viewer, BOOL placing) {
    if (viewer->placing != placing) {
        viewer->placing = placing;
        SetCursor(LoadCursorA(NULL, placing ? (LPCSTR)IDC_CROSS : (LPCSTR)IDC_ARROW));
    }
}

/* The library's dialog; what it adds to a click by the scroll bars is in the point already. */
static void askForNote(const Viewer *viewer, NoteRecord *note, const RECT *shown, POINT click) {
    const PageSize *size = &viewer->document.pageSize;
    const LONG zoom[4] = {shown->right - shown->left, size->width, shown->bottom - shown->top, size->height};
    const POINT place = {click.x - shown->left, click.y - shown->top};
    const POINT noOffset = {0, 0};
    NotePlus(viewer->window, note, &place, &noOffset, zoom, 0);
}

/* The page as it was when the dialog for its note came. */
typedef struct NotedPage {
    NoteRecord note;
    BOOL tagTaken; /* for something else than a note */
    BOOL damaged;  /* its picture goes only so far */
} NotedPage;

/* Does with the note what the user chose. */
static void keepNote(Viewer *viewer, const NoteRecord *note, const NotedPage *page) {
    const Document *document = &viewer->document;
    const NoteRecord *before = &page->note;
    if (note->image != before->image) {
        if (!page->damaged || agreesToPart(viewer)) {
            saveAs(viewer, note->image, NULL);
        }
    } else if (note->text == before->text) {
        return; /* "Cancel" */
    } else if (note->text == NULL) {
        if (!DeleteTiffTagOfImage(document->path, (LONG)document->page, TAG_NOTE)) {
            reportUndone(viewer, document->path, "The note could not be deleted.");
        }
    } else if (!note->inHeader) {
        reportUndone(viewer, document->path, "The note could not be drawn into the picture.");
    } else if (!page->tagTaken ||
               agrees(viewer, document->path, "The name of a host computer gives way to the note?")) {
        if (!storeNote(document->path, document->page, note)) {
            reportUndone(viewer, document->path, "The note could not be stored.");
        }
    }
    InvalidateRect(viewer->window, NULL, TRUE);
}

void placeNote(Viewer *viewer, POINT click) {
    const RECT shown = pageOnScreen(viewer);
    NoteRecord note = {TRUE, TRUE, NULL, 0, 0, 0, 0, NULL}; /* in the header, opaque */
    NotedPage page;
    NoteRecord *before = &page.note;
    if (!viewer->placing || !PtInRect(&shown, click)) {
        return; /* beside the page: the next click may be on it */
    }
    setPlacing(viewer, FALSE);
    /* A page has one note: it is the one that is changed, and moved. */
    readNote(&viewer->document, &note, &page.tagTaken);
    note.image = loadPage(&viewer->document); /* to be burned into; without it, the header is still there */
    page.damaged = note.image != NULL && TiffError() != VELLUM_OK;
    page.note = note;
    askForNote(viewer, &note, &shown, click);
    keepNote(viewer, &note, &page);

    /* "Store" leaves the former text to its caller, burning the former picture. "Delete" frees the text itself. */
    if (note.text != before->text) {
        freeNote(&note);
    }
    if (note.text != NULL || note.image != before->image) {
        freeNote(before);
    }
    if (note.image != before->image) {
        freeBlock(note.image);
    }
    freeBlock(before->image);
}
