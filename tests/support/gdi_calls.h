// Windows: counts the GDI objects and device contexts that the library holds and what it draws, and makes chosen calls
// of it fail.
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
        Bitmap, // CreateBitmap, CreateCompatibleBitmap
        DibSection,
        CopyImage,
        Font,
        Brush,
        Palette,
        Selection, // of bitmaps
        SaveDc,
        GetDiBits, // GetDIBits, GetBitmapBits
        OpenClipboard,
        GetClipboardData,
        SetClipboardData
    };
    static constexpr int kFailKinds = static_cast<int>(Fail::SetClipboardData) + 1;
    static constexpr int kEvery = -1;

    // The n-th call of its kind (from 0) fails, or every one.
    explicit GdiCalls(Fail fail = Fail::Nothing, int nth = kEvery);
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
        LOGFONTA font = {};          // the last one that was asked for
        int textsDrawn = 0;          // ExtTextOutA
        int textsMeasured = 0;       // GetTextExtentPoint32A
        int tried[kFailKinds] = {};

        [[nodiscard]] int allContexts() const { return contexts + memoryContexts; }
    };
    [[nodiscard]] static const Counts &counts();
    // Calls of the kind, whether they failed or not.
    [[nodiscard]] static int tried(Fail kind) { return counts().tried[static_cast<int>(kind)]; }
};

} // namespace vellum::test
