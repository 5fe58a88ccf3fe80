/*
 * What the menu does, what the caption and the menu show of it, and what the user is told when something fails.
 */
#include <windows.h>

#include <commdlg.h>

#include "resource.h"
#include "viewer.h"

#define PROGRAM_NAME "Viewer"

/* Says something about a file. The path may come from a command line of any length. */
static int showMessage(const Viewer *viewer, const char *path, const char *text, UINT style) {
    char message[512];
    wsprintfA(message, "%.260s\n\n%.200s", path, text);
    return MessageBoxA(viewer->window, message, PROGRAM_NAME, style);
}

void report(const Viewer *viewer, const char *path, const char *otherwise) {
    char message[64];
    const DWORD error = TiffError();
    showMessage(viewer, path, error == VELLUM_OK ? otherwise : TiffErrorString(message, error),
                MB_OK | MB_ICONEXCLAMATION);
}

static BOOL isWriteProtected(const char *path) {
    const DWORD attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

static const char kWriteProtected[] = "The file is write-protected.";

void reportUndone(const Viewer *viewer, const char *path, const char *what) {
    char message[200], library[64];
    const DWORD error = TiffError();
    const char *reason =
        error == VELLUM_IO_ERROR && isWriteProtected(path) ? kWriteProtected : TiffErrorString(library, error);
    wsprintfA(message, "%.100s%s%.80s", what, error == VELLUM_OK ? "" : " ", error == VELLUM_OK ? "" : reason);
    showMessage(viewer, path, message, MB_OK | MB_ICONEXCLAMATION);
}

BOOL agrees(const Viewer *viewer, const char *path, const char *question) {
    return showMessage(viewer, path, question, MB_YESNO | MB_ICONQUESTION) == IDYES;
}

BOOL agreesToPart(const Viewer *viewer) {
    return agrees(viewer, viewer->document.path, "The page is damaged. Save what there is?");
}

/* ---------------------------------------------------------------- files ------------------------------------------- */

void openFile(Viewer *viewer, const char *path) {
    setPlacing(viewer, FALSE);
    if (!openDocument(&viewer->document, path)) {
        report(viewer, path, "The file is neither a TIFF nor a CALS raster file.");
        return;
    }
    viewer->view.rotation = VELLUM_ROTATE_0;
    viewer->view.inverted = FALSE;
    scrollToStart(viewer);
    InvalidateRect(viewer->window, NULL, TRUE);
    updateFrame(viewer);
}

static const char kReadable[] = "TIFF and CALS files\0*.tif;*.tiff;*.cal;*.cals\0All files\0*.*\0";
static const char kWritable[] = "TIFF files\0*.tif;*.tiff\0All files\0*.*\0";

static OPENFILENAMEA fileDialog(const Viewer *viewer, char *path, const char *filter, DWORD flags) {
    OPENFILENAMEA dialog;
    ZeroMemory(&dialog, sizeof dialog);
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = viewer->window;
    dialog.lpstrFilter = filter;
    dialog.lpstrFile = path;
    dialog.nMaxFile = MAX_PATH;
    dialog.lpstrDefExt = "tif";
    dialog.Flags = flags | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    path[0] = '\0';
    return dialog;
}

static void openByDialog(Viewer *viewer) {
    char path[MAX_PATH];
    OPENFILENAMEA dialog = fileDialog(viewer, path, kReadable, OFN_FILEMUSTEXIST);
    if (GetOpenFileNameA(&dialog)) {
        openFile(viewer, path);
    }
}

/*
 * Asks the user for compression, title and so on, and saves. The library's dialog has no owner: the window is kept from
 * taking commands meanwhile.
 */
static BOOL saveByDialog(const Viewer *viewer, const char *path, HGLOBAL dib) {
    BOOL saved;
    EnableWindow(viewer->window, FALSE);
    saved = SaveDIBInTiffFile(path, dib, VELLUM_SAVE_UNCOMPRESSED, TRUE) != 0;
    EnableWindow(viewer->window, TRUE);
    SetForegroundWindow(viewer->window);
    return saved;
}

/* A file that is there gets one page more, if the user agrees. In place of one that cannot, another is asked for. */
static BOOL askForNewPage(const Viewer *viewer, char *path) {
    OPENFILENAMEA dialog = fileDialog(viewer, path, kWritable, OFN_PATHMUSTEXIST);
    while (GetSaveFileNameA(&dialog)) {
        if (!isWriteProtected(path)) {
            return GetFileAttributesA(path) == INVALID_FILE_ATTRIBUTES ||
                   agrees(viewer, path, "The file is there already. Add the page to it?");
        }
        showMessage(viewer, path, kWriteProtected, MB_OK | MB_ICONEXCLAMATION);
    }
    return FALSE;
}

/* 0 for a file that is not there yet. */
static DWORD pageCountOf(const char *path) {
    const DWORD count = GetNumberOfImagesInTiffFile(path);
    return count != 0xFFFFFFFF ? count : 0;
}

/* Of JPEG without the companion module the library tells itself; it is a success without a page, and without a note. */
static void saveDib(Viewer *viewer, const char *path, HGLOBAL dib, const NoteRecord *note) {
    const DWORD pages = pageCountOf(path);
    SetTiffError(VELLUM_OK);
    if (!saveByDialog(viewer, path, dib)) {
        if (TiffError() != VELLUM_OK) { /* no error: the user cancelled */
            reportUndone(viewer, path, "The page could not be saved.");
        }
    } else if (note != NULL && pageCountOf(path) > pages && !storeNote(path, pageCountOf(path) - 1, note)) {
        reportUndone(viewer, path, "The page was saved without its note.");
    }
    goToPage(&viewer->document, viewer->document.page); /* it may have been added to the file that is shown */
    updateFrame(viewer);
}

void saveAs(Viewer *viewer, HGLOBAL dib, const NoteRecord *note) {
    char path[MAX_PATH];
    if (askForNewPage(viewer, path)) {
        saveDib(viewer, path, dib, note);
    }
}

/* The page as the file has it, with its note: neither turned nor inverted. */
static void savePage(Viewer *viewer) {
    char path[MAX_PATH];
    NoteRecord note = {TRUE, TRUE, NULL, 0, 0, 0, 0, NULL};
    BOOL noted, tagTaken;
    HGLOBAL dib;
    if (!askForNewPage(viewer, path)) {
        return;
    }
    dib = loadPage(&viewer->document);
    if (dib == NULL) {
        report(viewer, viewer->document.path, "The page could not be loaded.");
        return;
    }
    /* A page whose data end early comes as far as it goes, with the error pending. */
    if (TiffError() == VELLUM_OK || agreesToPart(viewer)) {
        noted = readNote(&viewer->document, &note, &tagTaken);
        saveDib(viewer, path, dib, noted ? &note : NULL);
        freeNote(&note);
    }
    GlobalFree(dib);
}

/* ---------------------------------------------------------------- pages ------------------------------------------- */

static void showPage(Viewer *viewer, DWORD page) {
    if (page == viewer->document.page || page >= viewer->document.pageCount) {
        return;
    }
    if (!goToPage(&viewer->document, page)) {
        report(viewer, viewer->document.path, "The file has no such page any more.");
        return;
    }
    scrollToStart(viewer);
    InvalidateRect(viewer->window, NULL, TRUE);
    updateFrame(viewer);
}

static void setSizing(Viewer *viewer, Sizing sizing) {
    viewer->view.sizing = sizing;
    InvalidateRect(viewer->window, NULL, TRUE);
    updateFrame(viewer);
}

static void invert(Viewer *viewer) {
    viewer->view.inverted = !viewer->view.inverted;
    InvalidateRect(viewer->window, NULL, TRUE);
    updateFrame(viewer);
}

/* ---------------------------------------------------------------- the menu ---------------------------------------- */

static void runPageCommand(Viewer *viewer, UINT command) {
    const DWORD page = viewer->document.page;
    switch (command) {
    case IDM_SAVE_PAGE:
        savePage(viewer);
        break;
    case IDM_INFORMATION:
        if (!showInformation(&viewer->document, viewer->window)) {
            report(viewer, viewer->document.path, "The dialog could not be shown.");
        }
        break;
    case IDM_COPY:
        if (!copyPage(&viewer->document, viewer->window)) {
            report(viewer, viewer->document.path, "The clipboard could not be opened.");
        }
        break;
    case IDM_PLACE_NOTE:
        setPlacing(viewer, canHaveNote(viewer));
        break;
    case IDM_NEXT_PAGE:
        showPage(viewer, page + 1);
        break;
    case IDM_PREVIOUS_PAGE:
        showPage(viewer, page - 1); /* of the first page: a number that no page has */
        break;
    case IDM_FIRST_PAGE:
        showPage(viewer, 0);
        break;
    case IDM_LAST_PAGE:
        showPage(viewer, viewer->document.pageCount - 1);
        break;
    case IDM_ROTATE:
        rotateView(viewer);
        updateFrame(viewer);
        break;
    case IDM_INVERT:
        invert(viewer);
        break;
    default:
        break;
    }
}

void runCommand(Viewer *viewer, UINT command) {
    setPlacing(viewer, FALSE);
    switch (command) {
    case IDM_OPEN:
        openByDialog(viewer);
        break;
    case IDM_EXIT:
        DestroyWindow(viewer->window);
        break;
    case IDM_FIT:
    case IDM_PIXELS:
    case IDM_TRUE_SIZE:
        setSizing(viewer, (Sizing)(command - IDM_FIT));
        break;
    default:
        if (viewer->document.pageCount > 0) {
            runPageCommand(viewer, command);
        }
        break;
    }
}

static void enable(HMENU menu, UINT command, BOOL enabled) {
    EnableMenuItem(menu, command, (UINT)(enabled ? MF_ENABLED : MF_GRAYED));
}

void updateFrame(const Viewer *viewer) {
    const Document *document = &viewer->document;
    const BOOL any = document->pageCount > 0;
    const BOOL before = document->page > 0, behind = document->page + 1 < document->pageCount;
    HMENU menu = GetMenu(viewer->window);
    char caption[MAX_PATH + 64] = PROGRAM_NAME;
    if (any) {
        wsprintfA(caption, "%s - page %lu of %lu - " PROGRAM_NAME, document->path + document->nameOffset,
                  document->page + 1, document->pageCount);
    }
    SetWindowTextA(viewer->window, caption);

    enable(menu, IDM_SAVE_PAGE, any);
    enable(menu, IDM_INFORMATION, any);
    enable(menu, IDM_COPY, any);
    enable(menu, IDM_PLACE_NOTE, canHaveNote(viewer));
    enable(menu, IDM_NEXT_PAGE, behind);
    enable(menu, IDM_LAST_PAGE, behind);
    enable(menu, IDM_PREVIOUS_PAGE, before);
    enable(menu, IDM_FIRST_PAGE, before);
    enable(menu, IDM_ROTATE, any);
    enable(menu, IDM_INVERT, any);
    CheckMenuRadioItem(menu, IDM_FIT, IDM_TRUE_SIZE, IDM_FIT + (UINT)viewer->view.sizing, MF_BYCOMMAND);
    CheckMenuItem(menu, IDM_INVERT, (UINT)(viewer->view.inverted ? MF_CHECKED : MF_UNCHECKED));
}
