// The three loaders with the information dialog in front: Load, Cancel, a dialog that cannot be shown.
#include "display/info_dialog_calls.h"
#include "support/bitmap_pixels.h"
#include "support/faults.h"
#include "support/gdi_calls.h"

namespace {

using namespace vellum::test;

// Counts the library's blocks and locks while it lives.
class BlockCalls {
public:
    BlockCalls() {
        blocks = 0;
        locks = 0;
        allocate_.replace("GlobalAlloc", &countAlloc);
        free_.replace("GlobalFree", &countFree);
        lock_.replace("GlobalLock", &countLock);
        unlock_.replace("GlobalUnlock", &countUnlock);
    }
    BlockCalls(const BlockCalls &) = delete;
    BlockCalls &operator=(const BlockCalls &) = delete;
    ~BlockCalls() {
        for (ImportPatch *patch : {&unlock_, &lock_, &free_, &allocate_}) {
            patch->restore();
        }
    }

    inline static int blocks = 0; // allocated less freed
    inline static int locks = 0;  // locked less unlocked

private:
    static HGLOBAL WINAPI countAlloc(UINT flags, SIZE_T bytes) {
        const HGLOBAL block = allocate_.original<decltype(GlobalAlloc)>()(flags, bytes);
        blocks += block != nullptr ? 1 : 0;
        return block;
    }
    static HGLOBAL WINAPI countFree(HGLOBAL block) {
        --blocks;
        return free_.original<decltype(GlobalFree)>()(block);
    }
    static LPVOID WINAPI countLock(HGLOBAL block) {
        const LPVOID bytes = lock_.original<decltype(GlobalLock)>()(block);
        locks += bytes != nullptr ? 1 : 0;
        return bytes;
    }
    static BOOL WINAPI countUnlock(HGLOBAL block) {
        --locks;
        return unlock_.original<decltype(GlobalUnlock)>()(block);
    }

    inline static ImportPatch allocate_;
    inline static ImportPatch free_;
    inline static ImportPatch lock_;
    inline static ImportPatch unlock_;
};

enum class Loader { Dib, Bitmap, Clipboard };

// What a loader gave back, and what it left behind beside it.
struct Loaded {
    bool picture = false; // a DIB, a bitmap, or one on the clipboard
    DWORD clipboardResult = 0xFFFF;
    DWORD error = 0xFFFF;
    Pixels pixels;
};

void emptyTheClipboard() {
    ASSERT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    CloseClipboard();
}

class LoadAsking : public testing::TestWithParam<Loader> {
protected:
    void SetUp() override { emptyTheClipboard(); }
    void TearDown() override { emptyTheClipboard(); }

    static Loaded load(const char *path, DWORD index, LONG showInfo) {
        const HCURSOR arrow = LoadCursor(nullptr, IDC_ARROW);
        SetCursor(arrow);
        SetTiffError(VELLUM_NOT_CALS);
        Loaded loaded;
        const GdiCalls calls;
        const BlockCalls blocks;
        switch (GetParam()) {
        case Loader::Dib:
            takeDib(loaded, LoadTiffIntoDIB(path, index, showInfo));
            break;
        case Loader::Bitmap:
            takeBitmap(loaded, LoadTiffIntoBitmap(path, index, showInfo));
            break;
        case Loader::Clipboard:
            loaded.clipboardResult = LoadTiffFileIntoClipboard(path, index, showInfo);
            takeClipboard(loaded);
            break;
        }
        EXPECT_EQ(calls.counts().contexts, 0);
        EXPECT_EQ(calls.counts().clipboardOpen, 0);
        EXPECT_EQ(BlockCalls::locks, 0);
        EXPECT_EQ(GetCursor(), arrow);
        return loaded;
    }

    // Of all other GDI objects and blocks nothing is left.
    static void expectNoMoreThan(int objects, int blocks) {
        EXPECT_EQ(GdiCalls::counts().objects, objects);
        EXPECT_EQ(BlockCalls::blocks, blocks);
    }
    static void takeDib(Loaded &loaded, HGLOBAL block) {
        loaded.error = TiffError();
        loaded.picture = block != nullptr;
        expectNoMoreThan(0, loaded.picture ? 1 : 0);
        const Dib dib(block);
        if (dib) {
            loaded.pixels = pixelsOf(dib);
        }
    }
    static void takeBitmap(Loaded &loaded, HBITMAP handle) {
        loaded.error = TiffError();
        loaded.picture = handle != nullptr;
        expectNoMoreThan(loaded.picture ? 1 : 0, 0);
        const LoadedBitmap bitmap(handle);
        if (bitmap) {
            loaded.pixels = pixelsOf(bitmap.get());
        }
    }
    static void takeClipboard(Loaded &loaded) {
        loaded.error = TiffError();
        loaded.picture = IsClipboardFormatAvailable(CF_BITMAP) != FALSE;
        expectNoMoreThan(loaded.picture ? 1 : 0, 0);
        EXPECT_EQ(GdiCalls::counts().clipboardEmptied, loaded.picture ? 1 : 0);
        if (loaded.picture && OpenClipboard(nullptr)) {
            loaded.pixels = pixelsOf(static_cast<HBITMAP>(GetClipboardData(CF_BITMAP)));
            CloseClipboard();
        }
    }

    // No picture and this error; the clipboard loader says 0.
    static void expectNothing(const Loaded &loaded, DWORD error) {
        EXPECT_FALSE(loaded.picture);
        EXPECT_EQ(loaded.error, error);
        if (GetParam() == Loader::Clipboard) {
            EXPECT_EQ(loaded.clipboardResult, 0U);
        }
    }
    static void expectPicture(const Loaded &loaded, const Pixels &pixels) {
        EXPECT_TRUE(loaded.picture);
        EXPECT_EQ(loaded.error, DWORD{VELLUM_OK});
        EXPECT_EQ(loaded.pixels, pixels);
        if (GetParam() == Loader::Clipboard) {
            EXPECT_EQ(loaded.clipboardResult, 1U);
        }
    }

    static Pixels pixelsIn(const char *path, DWORD index = 0) { return pixelsOf(Dib(LoadTiffIntoDIB(path, index, 0))); }
};

// Two images, so that the dialog must be about the right one.
Bytes twoImages() {
    tiff::Builder file;
    for (const Picture &page : {picture(9, 4, {8, 1}), picture(17, 5, {8, 3})}) {
        auto entries = entriesOf(page.page);
        file.page(entries, encodeStrips(page.page, page.packed));
    }
    return file.bytes();
}

TEST_P(LoadAsking, LoadGoesOn) {
    const TempFile file(twoImages());
    for (const LONG showInfo : {1L, -1L, 0x10000L}) {
        const DialogUser user([&](HWND dialog) {
            EXPECT_EQ(wholeTextOf(dialog), file.path());
            EXPECT_EQ(wholeTextOf(GetDlgItem(dialog, kWidth)), "17");
            EXPECT_EQ(wholeTextOf(GetDlgItem(dialog, kHeight)), "5");
            EXPECT_EQ(wholeTextOf(GetDlgItem(dialog, kColourFormat)), "RGB color");
            EXPECT_EQ(GetWindow(dialog, GW_OWNER), nullptr);
            EXPECT_NE(GetCursor(), LoadCursor(nullptr, IDC_WAIT)) << "the wait cursor comes behind the dialog";
            EXPECT_EQ(GdiCalls::counts().contexts, 0);
            EXPECT_EQ(BlockCalls::locks, 0) << "nothing is locked while the user thinks";
            press(dialog, 1);
        });
        const Loaded loaded = load(file.path(), 1, showInfo);
        EXPECT_TRUE(user.acted());
        EXPECT_FALSE(user.leftOpen());
        expectPicture(loaded, pixelsIn(file.path(), 1));
        emptyTheClipboard();
    }
}

TEST_P(LoadAsking, CancelGivesNothingAndError0) {
    const TempFile file(twoImages());
    const DialogUser user([](HWND dialog) { press(dialog, 2); });
    expectNothing(load(file.path(), 0, 1), VELLUM_OK);
    EXPECT_TRUE(user.acted());
    EXPECT_FALSE(user.leftOpen());
    EXPECT_TRUE(DeleteFileA(file.path())) << "the file is closed";
}

TEST_P(LoadAsking, AShowInfoOf0AsksNobody) {
    const TempFile file(twoImages());
    const DialogUser user([](HWND dialog) { press(dialog, 2); });
    expectPicture(load(file.path(), 0, 0), pixelsIn(file.path()));
    EXPECT_FALSE(user.acted());
}

TEST_P(LoadAsking, ADialogThatIsClosedOtherwiseIsError1) {
    const TempFile file(twoImages());
    const DialogUser user([](HWND dialog) { EndDialog(dialog, 3); });
    expectNothing(load(file.path(), 0, 1), VELLUM_NO_MEMORY);
    EXPECT_TRUE(user.acted());
}

INT_PTR dialogResult = 0;
int dialogs = 0;

// Stands in for the system's dialogs; what it is handed must be the library's dialog of a registered image.
INT_PTR WINAPI givesItsResult(HINSTANCE module, LPCSTR name, HWND owner, DLGPROC procedure, LPARAM lParam) {
    ++dialogs;
    EXPECT_EQ(module, libraryModule());
    EXPECT_STREQ(name, "TIFFINFO");
    EXPECT_EQ(owner, nullptr);
    EXPECT_EQ(reinterpret_cast<FARPROC>(reinterpret_cast<void *>(procedure)),
              GetProcAddress(libraryModule(), "TiffDllInfoDlgFn"));
    const auto *param = reinterpret_cast<const TiffInfoDlgParam *>(lParam);
    EXPECT_EQ(param->index, 1U);
    EXPECT_EQ(IsTiffImageRegistered(param->tiff, 1), 1U);
    SetTiffError(VELLUM_BAD_TAG);
    return dialogResult;
}

TEST_P(LoadAsking, OnlyTheResult1LoadsAndOnly2CountsAsCancel) {
    const TempFile file(twoImages());
    const Pixels pixels = pixelsIn(file.path(), 1);
    for (const INT_PTR result : {-1, 0, 1, 2, 3, 0x10001}) {
        SCOPED_TRACE(result);
        dialogResult = result;
        dialogs = 0;
        ImportPatch patch;
        patch.replace("DialogBoxParamA", &givesItsResult);
        const Loaded loaded = load(file.path(), 1, 1);
        EXPECT_EQ(dialogs, 1);
        if (result == 1) {
            expectPicture(loaded, pixels);
        } else {
            expectNothing(loaded, result == 2 ? VELLUM_OK : VELLUM_NO_MEMORY);
        }
        emptyTheClipboard();
    }
}

TEST_P(LoadAsking, NothingIsShownForWhatCannotBeOpenedOrRegistered) {
    const TempFile file(twoImages());
    const DialogUser user([](HWND dialog) { press(dialog, 1); });
    const auto expectUnopened = [](const Loaded &loaded, DWORD error) {
        EXPECT_FALSE(loaded.picture);
        EXPECT_EQ(loaded.error, error);
        if (GetParam() == Loader::Clipboard) {
            EXPECT_EQ(loaded.clipboardResult, 1U);
        }
    };
    expectUnopened(load("no such file.tif", 0, 1), VELLUM_IO_ERROR);
    expectUnopened(load(file.path(), 2, 1), VELLUM_IO_ERROR);
    expectUnopened(load(file.path(), 1000, 1), VELLUM_INDEX_OUT_OF_RANGE);
    EXPECT_FALSE(user.acted());
}

// The dialog asks before the colours are looked at.
TEST_P(LoadAsking, AnImageThatCannotBeLoadedIsShownAllTheSame) {
    Picture deep = picture(4, 4, {8, 1});
    deep.page.bits = 16;
    const TempFile file(deep.tiff());
    const DialogUser user([](HWND dialog) {
        EXPECT_EQ(wholeTextOf(GetDlgItem(dialog, kBits)), "16");
        press(dialog, 1);
    });
    expectNothing(load(file.path(), 0, 1), VELLUM_BAD_COLOR_FORMAT);
    EXPECT_TRUE(user.acted());
}

TEST_P(LoadAsking, WithoutMemoryTheLoadEndsWithError1OrATextIsMissing) {
    tiff::Builder builder;
    const Picture page = picture(9, 4, {8, 1});
    auto entries = entriesOf(page.page);
    entries.insert(entries.begin() + 5, tiff::ascii(270, "A title"));
    builder.page(entries, encodeStrips(page.page, page.packed));
    const TempFile file(builder.bytes());
    const Pixels pixels = pixelsIn(file.path());
    int textsMissed = 0;
    for (long n = 0;; ++n) {
        ASSERT_LT(n, 100);
        SCOPED_TRACE(n);
        bool asked = false;
        std::string title;
        const DialogUser user([&](HWND dialog) {
            asked = true;
            title = wholeTextOf(GetDlgItem(dialog, kTitle));
            press(dialog, 1);
        });
        const FailNth fault(Call::Allocate, n);
        const Loaded loaded = load(file.path(), 0, 1);
        if (!fault.happened()) {
            EXPECT_EQ(title, "A title");
            expectPicture(loaded, pixels);
            break;
        }
        if (loaded.picture) {
            EXPECT_EQ(title, "No title defined");
            expectPicture(loaded, pixels);
            ++textsMissed;
            emptyTheClipboard();
        } else {
            EXPECT_EQ(loaded.error, DWORD{VELLUM_NO_MEMORY});
        }
        EXPECT_TRUE(asked || !loaded.picture);
    }
    EXPECT_EQ(textsMissed, 1);
}

std::string loaderName(const testing::TestParamInfo<Loader> &loader) {
    constexpr const char *kNames[] = {"IntoDib", "IntoBitmap", "IntoClipboard"};
    return kNames[static_cast<int>(loader.param)];
}
INSTANTIATE_TEST_SUITE_P(AllLoaders, LoadAsking, testing::Values(Loader::Dib, Loader::Bitmap, Loader::Clipboard),
                         loaderName);

} // namespace
