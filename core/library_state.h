// Everything the library remembers from one call to the next, grouped by owner. Callers make one call at a time, so
// nothing here is locked.
#pragma once

#include "core/error.h"

struct NoteRecord;

namespace vellum {

struct MemoryStreamSlot {
    HGLOBAL block = nullptr; // the caller's block; null when the slot is free
    LONG position = -1;      // bytes from the start; -1 when free
    LONG size = -1;          // valid bytes; -1 when free
};

constexpr int kMemoryStreamSlots = 31;

// A block that stays locked as long as a decoding run lasts.
struct LockedBlock {
    HGLOBAL block = nullptr; // null between runs
    const BYTE *bytes = nullptr;
    DWORD size = 0;
};

// Characters of a text of the save dialog, and the bytes that it takes.
constexpr DWORD kSaveTextLength = 100;
constexpr DWORD kSaveTextBytes = kSaveTextLength + 1;

// How the picture being saved is to be saved: what the caller or the user chose.
struct SaveState {
    LONG code = 0;         // VELLUM_SAVE_...
    DWORD photometric = 0; // PhotometricInterpretation that was asked for
    DWORD colours = 0;     // colours of the picture; 2 for a bilevel one
    DWORD fillOrder = 1;
    char title[kSaveTextBytes] = "";  // ImageDescription
    char artist[kSaveTextBytes] = ""; // Artist
};

// The header and two colours of the bilevel bitmap that SaveBitmapInCcittFile encodes.
struct CcittBitmapInfo {
    BITMAPINFOHEADER header = {};
    RGBQUAD colours[2] = {};
};

// display/screen_band.h
class ScreenBand;

// cals/edit_dialog.cpp
struct CalsEdit;

// What the dialog for notes works on.
struct NoteDialogState {
    NoteRecord *note = nullptr;
    HANDLE brush = nullptr; // of the dialog's background
};

struct LibraryState {
    // core/error.cpp: written by every call that fails.
    Error lastError = Error::None;

    // api/entry.cpp: set once when a process attaches.
    HINSTANCE module = nullptr;
    bool processAttached = false;
    bool processDetached = false;

    // core/stream.cpp: a slot is valid from the opening of a memory stream to its close.
    MemoryStreamSlot memoryStreams[kMemoryStreamSlots];

    // core/message_box.cpp: true while a message box of the library's own accord is open.
    bool tellingUser = false;

    // core/image_dimensions.cpp: the screen's resolution in dots per inch; 0 until an image needs it.
    DWORD screenDpiX = 0;
    DWORD screenDpiY = 0;

    // codec/strip_table.h: the strip table of the run in progress, which stays locked as long as the run lasts.
    LockedBlock stripTable;

    // codec/decode_tiff.cpp: the memory TIFF that the run in progress reads, likewise.
    LockedBlock memoryTiff;

    // codec/jpeg_module.cpp: loaded by the first JPEG image, forgotten by CloseTiffFile.
    HMODULE jpegModule = nullptr;

    // write/save_dib.cpp and write/save_bitmap.cpp: set by every save; the texts only by write/save_dialog.cpp, so that
    // they stay from one save to the next.
    SaveState save;

    // write/save_bitmap.cpp: valid while SaveBitmapInCcittFile encodes, for DllFillCcittLine; else all zero.
    CcittBitmapInfo ccittBitmap;

    // write/ccitt_append.cpp: the target of the last AppendCCITTImageFile, which callers hold a pointer to; empty
    // before the first call and after one that failed early.
    char appendedPath[MAX_PATH] = "";

    // display/screen_painter.cpp: the lines of the picture that is being painted on the screen; null while none is, or
    // none of it is to be seen.
    ScreenBand *screen = nullptr;

    // cals/edit_dialog.cpp: the edit whose dialog opens next; null but for the length of EditCALSHead.
    CalsEdit *calsEdit = nullptr;

    // annot/note_dialog.cpp: valid while the dialog for notes is there; else all null.
    NoteDialogState noteDialog;

    // codec/decode_tiff.cpp: 1 while a decode that starts behind the first strip runs, and after any decode.
    DWORD partialDecode = 0;

    // codec/ccitt_encode.cpp: every how many lines Group 3 two-dimensional code has a one-dimensional one; set by
    // SetKfactor and kept until the next time.
    LONG kFactor = 2;
};

extern constinit LibraryState library;

} // namespace vellum
