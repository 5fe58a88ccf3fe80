// Windows: counts the GDI objects and device contexts that the library holds, and makes chosen calls of it fail.
#pragma once

#include "support/import_patch.h"

namespace vellum::test {

// While it lives, counts; one object at a time.
class GdiCalls {
public:
    enum class Fail {
        Nothing,
        GetDc,
        MemoryDc,
        Bitmap,
        Palette,
        SaveDc,
        GetDiBits,
        OpenClipboard,
        GetClipboardData,
        SetClipboardData
    };

    explicit GdiCalls(Fail fail = Fail::Nothing);
    GdiCalls(const GdiCalls &) = delete;
    GdiCalls &operator=(const GdiCalls &) = delete;
    ~GdiCalls();

    struct Counts {
        int objects = 0; // created less deleted
        int contexts = 0;
        int memoryContexts = 0; // created less deleted
        int savedStates = 0;    // SaveDC less RestoreDC
        int deletedInUse = 0;   // bitmaps deleted while a memory context had them selected
        int paletteSelections = 0;
        int paletteRealizations = 0;
        int clipboardOpen = 0; // opened less closed
        int clipboardEmptied = 0;
        int lines = 0;     // SetDIBits
        int linesRead = 0; // GetDIBits
        UINT lastUsage = 0xFFFF;
        HPALETTE selected = nullptr; // the last one selected
        HPALETTE original = nullptr; // what the first selection gave back
    };
    [[nodiscard]] static const Counts &counts();
};

} // namespace vellum::test
