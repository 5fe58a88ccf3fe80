// Painting leaves nothing behind: objects, contexts, selections, blocks, files and the cursor are given back on every
// way out, whichever call fails.
#include "support/faults.h"
#include "support/gdi_calls.h"
#include "support/screen_painting.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace vellum::test;

constexpr SIZE kWindow = {71, 63};
constexpr DWORD kModes[] = {0, VELLUM_SHOW_BY_RESOLUTION, VELLUM_SHOW_FIT};

// ---------------------------------------------------------------- what is counted

struct {
    ImportPatch allocate;
    ImportPatch free;
    int held = 0;
} blocks;

HGLOBAL WINAPI countGlobalAlloc(UINT flags, SIZE_T bytes) {
    const HGLOBAL block = blocks.allocate.original<decltype(GlobalAlloc)>()(flags, bytes);
    blocks.held += block == nullptr ? 0 : 1;
    return block;
}

HGLOBAL WINAPI countGlobalFree(HGLOBAL block) {
    const HGLOBAL left = blocks.free.original<decltype(GlobalFree)>()(block);
    blocks.held -= block != nullptr && left == nullptr ? 1 : 0;
    return left;
}

// While it lives, counts the global blocks that the library holds.
class GlobalBlocks {
public:
    GlobalBlocks() {
        blocks.held = 0;
        blocks.allocate.replace("GlobalAlloc", &countGlobalAlloc);
        blocks.free.replace("GlobalFree", &countGlobalFree);
    }
    GlobalBlocks(const GlobalBlocks &) = delete;
    GlobalBlocks &operator=(const GlobalBlocks &) = delete;
    ~GlobalBlocks() {
        blocks.allocate.restore();
        blocks.free.restore();
    }
    [[nodiscard]] int held() const { return blocks.held; }
};

// What a program has selected into a device context.
std::vector<HGDIOBJ> selections(HDC dc) {
    std::vector<HGDIOBJ> objects;
    for (const UINT kind : {OBJ_BITMAP, OBJ_BRUSH, OBJ_PEN, OBJ_FONT, OBJ_PAL}) {
        objects.push_back(GetCurrentObject(dc, kind));
    }
    return objects;
}

bool isClosed(const char *path) {
    const HANDLE file = CreateFileA(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    CloseHandle(file);
    return true;
}

// One painting, after which everything must be as before.
class Balanced {
public:
    Balanced(Host &host, const char *path, const Look &look, GdiCalls::Fail fail = GdiCalls::Fail::Nothing) {
        const HCURSOR arrow = LoadCursor(nullptr, IDC_ARROW);
        SetCursor(arrow);
        host.reset();
        const HBRUSH brush = CreateSolidBrush(RGB(9, 8, 7));
        const HGDIOBJ brushBefore = SelectObject(host.dc(), brush);
        const std::vector<HGDIOBJ> before = selections(host.dc());
        {
            const GdiCalls calls(fail);
            const GlobalBlocks global;
            outcome = paint(host.window(), host.dc(), path, look);
            const GdiCalls::Counts &now = GdiCalls::counts();
            EXPECT_EQ(now.objects, 0);
            EXPECT_EQ(now.contexts, 0);
            EXPECT_EQ(now.memoryContexts, 0);
            EXPECT_EQ(now.savedStates, 0);
            EXPECT_EQ(now.deletedInUse, 0);
            EXPECT_EQ(global.held(), 0);
            paletteSelections = now.paletteSelections;
            paletteRealizations = now.paletteRealizations;
            colorUsage = now.lastUsage;
        }
        EXPECT_EQ(selections(host.dc()), before);
        EXPECT_EQ(GetCursor(), arrow);
        EXPECT_TRUE(isClosed(path));
        SelectObject(host.dc(), brushBefore);
        EXPECT_TRUE(DeleteObject(brush));
    }

    Outcome outcome;
    int paletteSelections = 0;
    int paletteRealizations = 0;
    UINT colorUsage = 0; // of the last SetDIBits
};

// The window takes a whole picture afterwards.
void expectUsable(Host &host) {
    const ScreenPicture picture = screenPicture(33, 21, 8);
    const TempFile file(picture.tiff());
    const Look look{VELLUM_ROTATE_90};
    host.reset();
    EXPECT_EQ(paint(host.window(), host.dc(), file.path(), look), kDecoded);
    EXPECT_TRUE(shows(host.pixels(), ScreenModel(picture, look, {kWindow})));
}

// ---------------------------------------------------------------- every way out

TEST(ScreenBalance, NothingIsLeftAfterAPainting) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD bits : kScreenDepths) {
        const TempFile file(screenPicture(99, 87, bits).tiff());
        for (const DWORD mode : kModes) {
            for (const DWORD flags : fourTurns(mode)) {
                SCOPED_TRACE(std::to_string(bits) + " bits, flags " + std::to_string(flags));
                EXPECT_EQ(Balanced(host, file.path(), {flags}).outcome, kDecoded);
            }
        }
    }
}

TEST(ScreenBalance, NothingIsLeftAfterADecodeThatFails) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD bits : kScreenDepths) {
        ScreenPicture cut = screenPicture(99, 87, bits);
        cut.rowsStored = 50;
        const TempFile file(cut.tiff());
        for (const DWORD mode : kModes) {
            for (const DWORD flags : fourTurns(mode)) {
                SCOPED_TRACE(std::to_string(bits) + " bits, flags " + std::to_string(flags));
                EXPECT_EQ(Balanced(host, file.path(), {flags}).outcome, failedWith(VELLUM_UNEXPECTED_END));
            }
        }
    }
}

TEST(ScreenBalance, NothingIsLeftOfPicturesThatCannotBePainted) {
    Host host(kWindow.cx, kWindow.cy);
    ScreenPicture withoutMap = screenPicture(9, 7, 8);
    std::vector<tiff::Entry> entries = withoutMap.entries();
    entries.pop_back();
    tiff::Builder builder;
    builder.page(entries, {withoutMap.packed()});
    const TempFile noMap(builder.bytes());
    EXPECT_EQ(Balanced(host, noMap.path(), {}).outcome, failedWith(VELLUM_TAG_MISSING));
    const TempFile noTiff(Bytes{'n', 'o'});
    EXPECT_EQ(Balanced(host, noTiff.path(), {}).outcome.result, 0U);
    ScreenPicture nothing = screenPicture(0, 5, 1);
    const TempFile noWidth(nothing.tiff());
    EXPECT_EQ(Balanced(host, noWidth.path(), {}).outcome.result, 0U);
    expectUsable(host);
}

TEST(ScreenBalance, ThePicturesPaletteIsRealizedWhileItIsPainted) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD bits : kScreenDepths) {
        SCOPED_TRACE(bits);
        const TempFile file(screenPicture(9, 7, bits).tiff());
        const Balanced painting(host, file.path(), {});
        EXPECT_EQ(painting.paletteRealizations, 1);
        EXPECT_GE(painting.paletteSelections, 2);
    }
}

TEST(ScreenBalance, PicturesWithAColourTableGoByThePalette) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD bits : {4U, 8U, 24U}) {
        const TempFile file(screenPicture(9, 7, bits).tiff());
        for (const DWORD flags : fourTurns()) {
            SCOPED_TRACE(std::to_string(bits) + " bits, flags " + std::to_string(flags));
            EXPECT_EQ(Balanced(host, file.path(), {flags}).colorUsage,
                      bits == 24 ? UINT{DIB_RGB_COLORS} : UINT{DIB_PAL_COLORS});
        }
    }
}

TEST(ScreenBalance, AProgramsOwnPaletteStaysSelected) {
    Host host(kWindow.cx, kWindow.cy);
    LOGPALETTE description{0x300, 1, {{1, 2, 3, 0}}};
    const HPALETTE own = CreatePalette(&description);
    const HPALETTE before = SelectPalette(host.dc(), own, FALSE);
    const TempFile file(screenPicture(9, 7, 8).tiff());
    EXPECT_EQ(paint(host.window(), host.dc(), file.path()), kDecoded);
    EXPECT_EQ(GetCurrentObject(host.dc(), OBJ_PAL), own);
    SelectPalette(host.dc(), before, FALSE);
    EXPECT_TRUE(DeleteObject(own));
}

// ---------------------------------------------------------------- calls that fail

TEST(ScreenFaults, WithoutALineBitmapOrAMemoryContextThereIsError1) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD bits : kScreenDepths) {
        const TempFile file(screenPicture(99, 87, bits).tiff());
        for (const GdiCalls::Fail fail : {GdiCalls::Fail::Bitmap, GdiCalls::Fail::MemoryDc}) {
            for (const DWORD mode : kModes) {
                for (const DWORD flags : fourTurns(mode)) {
                    SCOPED_TRACE(std::to_string(bits) + " bits, flags " + std::to_string(flags));
                    EXPECT_EQ(Balanced(host, file.path(), {flags}, fail).outcome, failedWith(VELLUM_NO_MEMORY));
                }
            }
        }
    }
    expectUsable(host);
}

// What of a device context the painting may change for a while.
struct ContextState {
    int graphicsMode = 0;
    XFORM world{};
    COLORREF colors[2] = {};
    int rasterOperation = 0;
    POINT brushOrigin{};
    RECT clip{};
    int clipKind = 0;

    explicit ContextState(HDC dc)
        : graphicsMode(GetGraphicsMode(dc)), colors{GetBkColor(dc), GetTextColor(dc)}, rasterOperation(GetROP2(dc)) {
        GetWorldTransform(dc, &world);
        GetBrushOrgEx(dc, &brushOrigin);
        const HRGN region = CreateRectRgn(0, 0, 0, 0);
        clipKind = GetClipRgn(dc, region);
        GetRgnBox(region, &clip);
        DeleteObject(region);
    }
    bool operator==(const ContextState &other) const {
        return graphicsMode == other.graphicsMode && std::memcmp(&world, &other.world, sizeof world) == 0 &&
               std::memcmp(colors, other.colors, sizeof colors) == 0 && rasterOperation == other.rasterOperation &&
               brushOrigin.x == other.brushOrigin.x && brushOrigin.y == other.brushOrigin.y &&
               EqualRect(&clip, &other.clip) && clipKind == other.clipKind;
    }
};

TEST(ScreenFaults, AContextThatCannotBeSavedIsError1AndKeepsAllButItsMappingAndStretchingMode) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD bits : kScreenDepths) {
        const TempFile file(screenPicture(30, 20, bits).tiff());
        for (const DWORD mode : kModes) {
            for (const DWORD flags : fourTurns(mode)) {
                SCOPED_TRACE(std::to_string(bits) + " bits, flags " + std::to_string(flags));
                host.reset();
                IntersectClipRect(host.dc(), 3, 2, 50, 40);
                SetGraphicsMode(host.dc(), GM_ADVANCED);
                const XFORM half{0.5F, 0, 0, 0.5F, 3, 4};
                SetWorldTransform(host.dc(), &half);
                const ContextState before(host.dc());
                const std::vector<HGDIOBJ> selected = selections(host.dc());
                {
                    const GdiCalls calls(GdiCalls::Fail::SaveDc);
                    EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), failedWith(VELLUM_NO_MEMORY));
                    EXPECT_EQ(calls.counts().objects, 0);
                    EXPECT_EQ(calls.counts().memoryContexts, 0);
                    EXPECT_EQ(calls.counts().deletedInUse, 0);
                }
                EXPECT_TRUE(ContextState(host.dc()) == before);
                EXPECT_EQ(selections(host.dc()), selected);
                EXPECT_EQ(GetStretchBltMode(host.dc()), bits == 1 ? WHITEONBLACK : COLORONCOLOR);
                EXPECT_NE(GetMapMode(host.dc()), MM_TEXT);
                EXPECT_TRUE(host.needsPainting());
                host.freshDc();
                EXPECT_EQ(host.pixels(), Pixels(static_cast<std::size_t>(kWindow.cx) * kWindow.cy, kUntouched));
            }
        }
    }
    expectUsable(host);
}

TEST(ScreenFaults, WithoutAPaletteATrueColourScreenShowsThePicture) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD bits : kScreenDepths) {
        const ScreenPicture picture = screenPicture(39, 27, bits);
        const TempFile file(picture.tiff());
        for (const DWORD flags : allTurns()) {
            SCOPED_TRACE(describe(picture, {flags}));
            EXPECT_EQ(Balanced(host, file.path(), {flags}, GdiCalls::Fail::Palette).outcome, kDecoded);
            EXPECT_TRUE(shows(host.pixels(), ScreenModel(picture, {flags}, {kWindow})));
        }
    }
}

TEST(ScreenFaults, WithoutMemoryThereIsError1AndTheWindowStaysUsable) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD bits : kScreenDepths) {
        const TempFile file(screenPicture(99, 87, bits).tiff());
        for (const DWORD rotation : {VELLUM_ROTATE_0, VELLUM_ROTATE_90, VELLUM_ROTATE_180, VELLUM_ROTATE_270}) {
            for (long n = 0;; ++n) {
                ASSERT_LT(n, 100);
                SCOPED_TRACE(std::to_string(bits) + " bits, rotation " + std::to_string(rotation) + ", allocation " +
                             std::to_string(n));
                const FailNth fault(Call::Allocate, n);
                const Outcome outcome = Balanced(host, file.path(), {rotation}).outcome;
                if (!fault.happened()) {
                    EXPECT_EQ(outcome, kDecoded);
                    EXPECT_GE(n, 4);
                    break;
                }
                EXPECT_EQ(outcome, failedWith(VELLUM_NO_MEMORY));
            }
        }
    }
    expectUsable(host);
}

// Some calls ask for what is known already: whatever succeeds has painted all.
TEST(ScreenFaults, FilesThatCannotBeReadEndThePainting) {
    Host host(kWindow.cx, kWindow.cy);
    const ScreenPicture picture = screenPicture(45, 37, 8);
    const TempFile file(picture.tiff());
    const ScreenModel model(picture, {}, {kWindow});
    for (const Call call : {Call::Open, Call::Read, Call::Seek}) {
        int failed = 0;
        for (long n = 0;; ++n) {
            ASSERT_LT(n, 1000);
            SCOPED_TRACE(std::to_string(static_cast<int>(call)) + ", call " + std::to_string(n));
            const FailNth fault(call, n);
            const Outcome outcome = Balanced(host, file.path(), {}).outcome;
            if (!fault.happened()) {
                EXPECT_EQ(outcome, kDecoded);
                EXPECT_GE(n, 1);
                break;
            }
            if (outcome.result == 1) {
                EXPECT_TRUE(shows(host.pixels(), model));
            } else {
                ++failed;
            }
            EXPECT_EQ(outcome.result == 0, outcome.error != VELLUM_OK);
        }
        EXPECT_GT(failed, 0);
    }
    expectUsable(host);
}

} // namespace
