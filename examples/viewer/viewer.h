/*
 * An example of a program that shows pages with VELLUM32.DLL. What it keeps, and what its files do:
 *   document.c   the file and its page; the only one that asks the library about files, but for notes
 *   placement.c  how large the page becomes on the screen, and how to tell the painter so
 *   view.c       painting and scrolling
 *   notes.c      a note on a page: shown, written, kept
 *   commands.c   what the menu does
 *   main.c       the window and its messages
 */
#ifndef VIEWER_H
#define VIEWER_H

#include "vellum32.h"

/* ---------------------------------------------------------------- document.c -------------------------------------- */

/* Pixels, and dots per inch: 0 for a page that does not tell. */
typedef struct PageSize {
    LONG width;
    LONG height;
    double dotsPerInchX;
    double dotsPerInchY;
    double ratio; /* what VELLUM_SHOW_BY_RESOLUTION is to be multiplied by to give the page its true size */
} PageSize;

/* A file and the page of it that is shown. No file is kept open: the library opens it for every call. */
typedef struct Document {
    char path[MAX_PATH];
    DWORD nameOffset;  /* where the last part of path begins */
    LONG kind;         /* VELLUM_SHOW_TIFF, VELLUM_SHOW_CALS */
    DWORD pageCount;   /* 0: no document */
    DWORD page;        /* from 0 */
    PageSize pageSize; /* all 0 when the page cannot be described */
    DWORD pageError;   /* why it cannot be */
} Document;

/*
 * Opens a file at its first page. Result: FALSE, with TiffError telling why, leaves *document as it was; no error is
 * pending for a file that is neither TIFF nor CALS.
 */
BOOL openDocument(Document *document, const char *path);

/* Goes to a page, and looks at it, and at the number of pages, afresh. A page that is not there changes nothing. */
BOOL goToPage(Document *document, DWORD page);

/* Loads the page as a packed DIB that the caller frees. Result: NULL, with TiffError telling why. */
HGLOBAL loadPage(const Document *document);

/*
 * Puts the page onto the clipboard, also one whose data end early: as far as it goes. Result: FALSE, with TiffError
 * telling why, unless the clipboard is in use.
 */
BOOL copyPage(const Document *document, HWND owner);

/* Shows the library's information dialog. Result: FALSE, with TiffError telling why, when it could not be shown. */
BOOL showInformation(const Document *document, HWND owner);

/* ---------------------------------------------------------------- placement.c ------------------------------------- */

/* How large a page is shown. */
typedef enum Sizing {
    SIZING_FIT,    /* the whole page, as large as the window lets it */
    SIZING_PIXELS, /* a pixel of the page on a pixel of the screen */
    SIZING_TRUE    /* an inch on paper is an inch of the screen */
} Sizing;

typedef struct View {
    Sizing sizing;
    DWORD rotation; /* VELLUM_ROTATE_..., quarter turns clockwise */
    BOOL inverted;
    BOOL painting; /* while DecompressToScreen is at work */
} View;

/* What DecompressToScreen is told, and the size on the screen that comes of it. */
typedef struct Placement {
    DWORD flags;
    DWORD ratios[4];
    SIZE size;
} Placement;

Placement placePage(const PageSize *page, const View *view, const SIZE *client, const SIZE *screenDotsPerInch);

/* ---------------------------------------------------------------- view.c ------------------------------------------ */

typedef struct Viewer {
    HWND window;
    Document document;
    View view;
    BOOL placing;      /* the next click places a note */
    LONG wheelRest[2]; /* by SB_HORZ and SB_VERT: what the wheel has not scrolled yet, in WHEEL_DELTA-ths of a pixel */
} Viewer;

/* Gives the scroll bars their range. Once, when the window is new. */
void prepareScrolling(HWND window);

/* WM_PAINT. */
void paintView(Viewer *viewer);

/* WM_HSCROLL, WM_VSCROLL. bar: SB_HORZ or SB_VERT; request: SB_LINEUP and so on. */
void handleScrollBar(Viewer *viewer, int bar, WORD request);

/* Moves the part that is shown, and paints it; above 0 to the right or down. */
void scrollPixels(Viewer *viewer, int bar, LONG pixels);
void scrollToStart(Viewer *viewer);

/* WM_MOUSEWHEEL. turn: WHEEL_DELTA for a notch, less for a part of one; above 0 away from the user. */
void scrollByWheel(Viewer *viewer, int bar, LONG turn);

/* Turns the page clockwise by 90 degrees; what the window shows of it stays about the same. */
void rotateView(Viewer *viewer);

/* The distance of an arrow key or an arrow of a scroll bar, in pixels. */
#define SCROLL_LINE 40

/* Where the page lies in the client area, as far as it is scrolled; upright. Also beyond what the window shows. */
RECT pageOnScreen(const Viewer *viewer);

/* ---------------------------------------------------------------- notes.c ----------------------------------------- */

/*
 * Reads the page's note, whose text the caller frees. Result: FALSE, with *note as it was, when there is none;
 * *tagTaken tells whether its tag is there for something else.
 */
BOOL readNote(const Document *document, NoteRecord *note, BOOL *tagTaken);

/* Writes a note into a tag of a page. Result: FALSE, with TiffError telling why. No handle may be open on the file. */
BOOL storeNote(const char *path, DWORD page, const NoteRecord *note);

void freeNote(NoteRecord *note);

/* Whether notes on the page are shown, and can be placed. */
BOOL canHaveNote(const Viewer *viewer);

/* Draws the note of the page, if it has one, over the page. */
void paintNote(const Viewer *viewer, HDC dc);

/* The mode in which a click places a note, and its cursor. */
void setPlacing(Viewer *viewer, BOOL placing);

/* A click at a point of the client area: in that mode, opens the library's dialog for notes. */
void placeNote(Viewer *viewer, POINT click);

/* ---------------------------------------------------------------- commands.c -------------------------------------- */

/* Shows a file; says so when it cannot, and leaves what is shown. */
void openFile(Viewer *viewer, const char *path);

/* Asks for a file, and saves a picture in it. note: what to store with it; NULL for none. */
void saveAs(Viewer *viewer, HGLOBAL dib, const NoteRecord *note);

/* Tells the user the message of the pending error, or `otherwise` when none is pending. */
void report(const Viewer *viewer, const char *path, const char *otherwise);

/* Tells the user what could not be done with a file, and why. */
void reportUndone(const Viewer *viewer, const char *path, const char *what);

/* Asks the user a question about a file. */
BOOL agrees(const Viewer *viewer, const char *path, const char *question);

/* Asks the user whether a page that is damaged is to be saved as far as it goes. */
BOOL agreesToPart(const Viewer *viewer);

/* Does what a menu item is for. */
void runCommand(Viewer *viewer, UINT command);

/* Brings caption and menu up to date. */
void updateFrame(const Viewer *viewer);

#endif
