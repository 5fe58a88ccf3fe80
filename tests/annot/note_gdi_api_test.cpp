// Windows: notes from the dialog to their place, by Note and NotePlus.
#include "annot/answered_dialogs.h"
#include "annot/plain_notes.h"
#include "annot/uneven_screen.h"
#include "support/dialog_user.h"
#include "support/gdi_calls.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr int kOnImage = 1000;
constexpr int kInHeader = 1001;
constexpr int kDelete = 1005;

// The user presses the buttons one after the other.
LONG note(HWND window, NoteRecord &record, const std::vector<int> &buttons) {
    const DialogUser user([&](HWND dialog) {
        for (const int button : buttons) {
            press(dialog, button);
        }
    });
    const LONG result = Note(window, &record);
    EXPECT_TRUE(user.acted());
    return result;
}

struct View {
    std::optional<POINT> click = {};
    std::optional<POINT> offset = {};
    std::optional<std::array<LONG, 4>> zoom = {};
    DWORD flags = 0;
};

LONG notePlus(HWND window, NoteRecord &record, const std::vector<int> &buttons, const View &view = {}) {
    const DialogUser user([&](HWND dialog) {
        for (const int button : buttons) {
            press(dialog, button);
        }
    });
    const LONG result =
        NotePlus(window, &record, view.click ? &*view.click : nullptr, view.offset ? &*view.offset : nullptr,
                 view.zoom ? view.zoom->data() : nullptr, view.flags);
    EXPECT_TRUE(user.acted());
    return result;
}

const std::vector<int> kStoreInHeader = {kInHeader, IDOK};
const std::vector<int> kStoreOnImage = {kOnImage, IDOK};

HGLOBAL dibBlock(LONG width, LONG height, LONG xPelsPerMeter, LONG yPelsPerMeter) {
    PackedDib dib(width, height, 8);
    dib.header.biXPelsPerMeter = xPelsPerMeter;
    dib.header.biYPelsPerMeter = yPelsPerMeter;
    return makeBlock(dib.bytes());
}

HGLOBAL dibBlock(LONG width, LONG height, LONG pelsPerMeter = 0) {
    return dibBlock(width, height, pelsPerMeter, pelsPerMeter);
}

void expectRectangle(const NoteRecord &record, LONG left, LONG top, const SIZE &size) {
    EXPECT_EQ(record.left, left);
    EXPECT_EQ(record.top, top);
    EXPECT_EQ(record.right, left + size.cx);
    EXPECT_EQ(record.bottom, top + size.cy);
}

// A note whose text from before the dialog is freed, too.
class AskedNote : public OwnedNote {
public:
    explicit AskedNote(const std::string &text) : OwnedNote(text), before_(record.text) {}
    ~AskedNote() {
        if (before_ != record.text && GlobalFlags(before_) != GMEM_INVALID_HANDLE) {
            GlobalFree(before_);
        }
    }
    AskedNote(const AskedNote &) = delete;
    AskedNote &operator=(const AskedNote &) = delete;

private:
    HGLOBAL before_;
};

// ---------------------------------------------------------------- results

TEST(NoteResult, OfCancelIs0AndTheNoteStays) {
    OwnedNote asked("kept");
    asked.record.inHeader = 1;
    const NoteRecord before = asked.record;
    EXPECT_EQ(note(nullptr, asked.record, {kOnImage, IDCANCEL}), 0);
    EXPECT_EQ(notePlus(nullptr, asked.record, {kOnImage, IDCANCEL}), 0);
    EXPECT_EQ(std::memcmp(&asked.record, &before, sizeof before), 0);
    EXPECT_EQ(asked.text(), "kept");
}

TEST(NoteResult, OfDeleteIs0AndTheTextIsFreed) {
    OwnedNote asked("lost");
    asked.record.inHeader = 1;
    EXPECT_EQ(note(nullptr, asked.record, {kDelete}), 0);
    EXPECT_EQ(asked.record.text, nullptr);
    EXPECT_EQ(asked.record.inHeader, 0);
}

// By design: NotePlus leaves where the note is kept.
TEST(NoteResult, OfDeleteByNotePlusIs0AndOnlyTheTextGoes) {
    OwnedNote asked("lost");
    asked.record.inHeader = 1;
    EXPECT_EQ(notePlus(nullptr, asked.record, {kDelete}), 0);
    EXPECT_EQ(asked.record.text, nullptr);
    EXPECT_EQ(asked.record.inHeader, 1);
}

TEST(NoteResult, OfDeleteWithoutATextIs0) {
    NoteRecord record = {};
    EXPECT_EQ(note(nullptr, record, {kDelete}), 0);
    EXPECT_EQ(notePlus(nullptr, record, {kDelete}), 0);
    EXPECT_EQ(record.text, nullptr);
}

TEST(NoteResult, WithoutARecordIs0) {
    EXPECT_EQ(Note(nullptr, nullptr), 0);
    EXPECT_EQ(NotePlus(nullptr, nullptr, nullptr, nullptr, nullptr, 0), 0);
}

TEST(NoteResult, OfAStoreInTheHeaderIs1WithAndWithoutAnImage) {
    AskedNote asked("kept");
    EXPECT_EQ(note(nullptr, asked.record, kStoreInHeader), 1);
    EXPECT_EQ(asked.text(), "kept");
    AskedNote other("kept");
    other.record.image = dibBlock(10, 10);
    const HGLOBAL image = other.record.image;
    EXPECT_EQ(notePlus(nullptr, other.record, kStoreInHeader), 1);
    EXPECT_EQ(other.text(), "kept");
    EXPECT_EQ(other.record.image, image);
}

TEST(NoteResult, OfAStoreOnNoImageIs0AndTheTextStays) {
    AskedNote asked("kept");
    EXPECT_EQ(note(nullptr, asked.record, kStoreOnImage), 0);
    EXPECT_EQ(asked.text(), "kept");
    AskedNote other("kept");
    EXPECT_EQ(notePlus(nullptr, other.record, kStoreOnImage), 0);
    EXPECT_EQ(other.text(), "kept");
}

// No template, no memory for windows: the dialog function's -1.
TEST(NoteResult, OfADialogThatCannotBeShownIs1AndTheNoteStays) {
    for (const INT_PTR answer : {-1, 3, 1000}) {
        OwnedNote asked("kept");
        asked.record = {1, 1, asked.record.text, 5, 6, 70, 80, dibBlock(100, 50)};
        const NoteRecord before = asked.record;
        const AnsweredDialogs dialogs(answer);
        EXPECT_EQ(Note(nullptr, &asked.record), 1) << answer;
        EXPECT_EQ(NotePlus(nullptr, &asked.record, nullptr, nullptr, nullptr, 0), 1) << answer;
        EXPECT_EQ(AnsweredDialogs::asked(), 2);
        EXPECT_EQ(std::memcmp(&asked.record, &before, sizeof before), 0);
        EXPECT_EQ(asked.text(), "kept");
        EXPECT_EQ(lockCount(asked.record.image), 0U);
    }
}

// What looks like an image and is none cannot be burned into.
TEST(NoteResult, OfAStoreOnABrokenImageIs1ByNoteAnd0ByNotePlus) {
    for (const bool plus : {false, true}) {
        AskedNote asked("kept");
        asked.record.image = textBlock("no image");
        const HGLOBAL image = asked.record.image;
        EXPECT_EQ(plus ? notePlus(nullptr, asked.record, kStoreOnImage) : note(nullptr, asked.record, kStoreOnImage),
                  plus ? 0 : 1);
        EXPECT_EQ(asked.text(), "kept");
        EXPECT_EQ(asked.record.image, image);
    }
}

// ---------------------------------------------------------------- the rectangle

TEST(NoteRectangle, HasTheSizeOfTheTextInTheWindowsFont) {
    const Host host(400, 300);
    const struct {
        const char *text;
        Lines lines;
    } kTexts[] = {{"Hello", {"Hello"}},
                  {"Hello\r\nwide world", {"Hello", "wide world"}},
                  {"a\r\n\r\nb", {"a", "WW", "b"}},
                  {"a\r\n", {"a", "WW"}},
                  {"", {"WW"}},
                  {"a\tb", {"ab"}}};
    for (const auto &[text, lines] : kTexts) {
        AskedNote asked(text);
        asked.record.left = 7;
        asked.record.top = 9;
        EXPECT_EQ(note(host.window(), asked.record, kStoreInHeader), 1);
        expectRectangle(asked.record, 7, 9, plainSize(host.dc(), lines));
    }
}

TEST(NoteRectangle, OfALongLineIsAsWideAsAllOfIt) {
    const Host host(400, 300);
    const std::string line(3000, 'i');
    AskedNote asked(line);
    EXPECT_EQ(note(host.window(), asked.record, kStoreInHeader), 1);
    EXPECT_EQ(asked.record.right, plainExtent(host.dc(), "i").cx * 3000);
}

TEST(NoteRectangle, OfNoteIsMovedByTheScrollPositions) {
    Host host(300, 200);
    host.reset({0, 1000, 100, false}, {0, 1000, 50, false});
    AskedNote asked("x");
    asked.record.left = 5;
    asked.record.image = dibBlock(1000, 500, 7874);
    EXPECT_EQ(note(host.window(), asked.record, kStoreInHeader), 1);
    // 100 * (1000 - 300) / 1000, 50 * (500 - 200) / 500: the resolution does not count.
    expectRectangle(asked.record, 75, 30, plainSize(host.dc(), {"x"}));
}

TEST(NoteRectangle, OfNotePlusIsWhereTheUserClicked) {
    Host host(300, 200);
    host.reset({0, 1000, 100, false}, {0, 1000, 50, false});
    const SIZE size = plainSize(host.dc(), {"x"});
    const auto placedBy = [&](const View &view) {
        auto asked = std::make_unique<AskedNote>("x");
        asked->record.left = 5;
        asked->record.image = dibBlock(1000, 500, 3780); // 96.01 dots per inch
        EXPECT_EQ(notePlus(host.window(), asked->record, kStoreInHeader, view), 1);
        return asked;
    };
    expectRectangle(placedBy({})->record, 75, 30, size);
    expectRectangle(placedBy({.click = POINT{10, 20}})->record, 80, 50, size);
    expectRectangle(placedBy({.click = POINT{10, 20}, .offset = POINT{100, 200}})->record, 110, 220, size);
    expectRectangle(placedBy({.click = POINT{10, 20}, .offset = POINT{1, 2}, .zoom = {{2, 1, 1, 2}}})->record, 6, 42,
                    size);
    const int dpi = GetDeviceCaps(host.dc(), LOGPIXELSX);
    expectRectangle(
        placedBy({.click = POINT{200, 0}, .offset = POINT{0, 0}, .flags = VELLUM_NOTE_BY_RESOLUTION})->record,
        static_cast<LONG>(200 * (3780 * 0.0254000508001016) / dpi + 0.5), 0, size);
}

TEST(NoteRectangle, ByResolutionIsScaledByThatOfEachDirection) {
    const Host host(300, 200);
    const auto placedIn = [&](LONG xPelsPerMeter, LONG yPelsPerMeter) {
        auto asked = std::make_unique<AskedNote>("x");
        asked->record.image = dibBlock(1000, 500, xPelsPerMeter, yPelsPerMeter);
        EXPECT_EQ(notePlus(host.window(), asked->record, kStoreInHeader,
                           {.click = POINT{100, 60}, .offset = POINT{0, 0}, .flags = VELLUM_NOTE_BY_RESOLUTION}),
                  1);
        return POINT{asked->record.left, asked->record.top};
    };
    ASSERT_EQ(GetDeviceCaps(host.dc(), LOGPIXELSX), 96);
    const POINT finerDown = placedIn(3780, 7559); // 96 x 192 dots per inch
    EXPECT_EQ(finerDown.x, 100);
    EXPECT_EQ(finerDown.y, 120);
    const POINT finerAcross = placedIn(7559, 3780);
    EXPECT_EQ(finerAcross.x, 200);
    EXPECT_EQ(finerAcross.y, 60);
    const UnevenScreen screen(48, 192);
    const POINT uneven = placedIn(3780, 3780);
    EXPECT_EQ(uneven.x, 200);
    EXPECT_EQ(uneven.y, 30);
}

// A window that keeps its device context, with a font in it that no other one has.
class OwnDcWindow {
public:
    OwnDcWindow() : font_(CreateFontA(-40, 0, 0, 0, FW_BOLD, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, "Arial")) {
        WNDCLASSA description{};
        description.style = CS_OWNDC;
        description.lpfnWndProc = &DefWindowProcA;
        description.hInstance = GetModuleHandleA(nullptr);
        description.lpszClassName = kClass;
        RegisterClassA(&description);
        window_ = CreateWindowExA(0, kClass, "", WS_POPUP | WS_VISIBLE, 0, 0, 400, 300, nullptr, nullptr,
                                  description.hInstance, nullptr);
        before_ = SelectObject(dc(), font_);
    }
    OwnDcWindow(const OwnDcWindow &) = delete;
    OwnDcWindow &operator=(const OwnDcWindow &) = delete;
    ~OwnDcWindow() {
        SelectObject(dc(), before_);
        DeleteObject(font_);
        DestroyWindow(window_);
        UnregisterClassA(kClass, GetModuleHandleA(nullptr));
    }
    [[nodiscard]] HWND window() const { return window_; }
    // The same one every time; there is nothing to release.
    [[nodiscard]] HDC dc() const { return GetDC(window_); }

private:
    static constexpr char kClass[] = "VellumOwnDcWindow";

    HFONT font_;
    HWND window_ = nullptr;
    HGDIOBJ before_ = nullptr;
};

TEST(NoteRectangle, IsMeasuredInTheFontThatTheWindowsDeviceContextHas) {
    const OwnDcWindow own;
    const SIZE size = plainSize(own.dc(), {"Hello", "WW"});
    const Host plainHost(400, 300);
    ASSERT_NE(size.cy, plainSize(plainHost.dc(), {"Hello", "WW"}).cy);
    AskedNote asked("Hello\r\n");
    EXPECT_EQ(note(own.window(), asked.record, kStoreInHeader), 1);
    expectRectangle(asked.record, 0, 0, size);
    AskedNote other("Hello\r\n");
    EXPECT_EQ(notePlus(own.window(), other.record, kStoreInHeader, {.click = POINT{5, 6}}), 1);
    expectRectangle(other.record, 5, 6, size);
}

// By design: the place is known when the image comes.
TEST(NoteRectangle, IsMeasuredAndPlacedWithoutAnImageToo) {
    const Host host(300, 200);
    const SIZE size = plainSize(host.dc(), {"Hello", "world"});
    AskedNote asked("Hello\r\nworld");
    asked.record.left = 7;
    asked.record.top = 9;
    EXPECT_EQ(note(host.window(), asked.record, kStoreOnImage), 0);
    expectRectangle(asked.record, 7, 9, size);
    AskedNote other("Hello\r\nworld");
    EXPECT_EQ(notePlus(host.window(), other.record, kStoreOnImage, {.click = POINT{50, 60}, .offset = POINT{1, 2}}), 0);
    expectRectangle(other.record, 51, 62, size);
}

// Pictures that nothing can be burned into have notes, too.
TEST(NoteRectangle, NeedsTheHeaderOfAnImageOnly) {
    Host host(300, 200);
    host.reset({0, 1000, 100, false}, {0, 1000, 50, false});
    const SIZE size = plainSize(host.dc(), {"x"});
    std::vector<PackedDib> pictures(4, PackedDib(1000, 500, 8));
    pictures[1].header.biHeight = -500;
    pictures[2].header.biCompression = BI_RLE8;
    pictures[3].header.biCompression = BI_BITFIELDS;
    pictures[3].header.biBitCount = 16;
    for (PackedDib &picture : pictures) {
        SCOPED_TRACE(picture.header.biHeight);
        SCOPED_TRACE(picture.header.biCompression);
        picture.header.biXPelsPerMeter = 7874;
        picture.header.biYPelsPerMeter = 7874;
        Bytes header = PackedDib(1000, 1, 8).bytes();
        std::memcpy(header.data(), &picture.header, sizeof picture.header);
        AskedNote scrolled("x");
        scrolled.record.image = makeBlock(header);
        EXPECT_EQ(note(host.window(), scrolled.record, kStoreInHeader), 1);
        expectRectangle(scrolled.record, 70, 30, size);
        AskedNote clicked("x");
        clicked.record.image = makeBlock(header);
        EXPECT_EQ(notePlus(host.window(), clicked.record, kStoreInHeader,
                           {.click = POINT{100, 50}, .offset = POINT{0, 0}, .flags = VELLUM_NOTE_BY_RESOLUTION}),
                  1);
        const double scale = GetDeviceCaps(host.dc(), LOGPIXELSX) / (7874 * 0.0254000508001016);
        expectRectangle(clicked.record, static_cast<LONG>(100 / scale + 0.5), static_cast<LONG>(50 / scale + 0.5),
                        size);
    }
}

TEST(NoteRectangle, InACenteredImageCountsFromItsCorner) {
    const Host host(300, 200);
    AskedNote asked("x");
    asked.record.image = dibBlock(100, 50);
    EXPECT_EQ(
        notePlus(host.window(), asked.record, kStoreInHeader, {.click = POINT{110, 20}, .flags = VELLUM_NOTE_CENTERED}),
        1);
    expectRectangle(asked.record, 10, 0, plainSize(host.dc(), {"x"}));
}

// ---------------------------------------------------------------- what is given back

TEST(NoteBalance, LeavesNoDeviceContextAndNoObjectBehind) {
    const Host host(300, 200);
    for (const auto &buttons : {kStoreInHeader, kStoreOnImage, std::vector<int>{kDelete}}) {
        AskedNote asked("Hello");
        asked.record.image = dibBlock(100, 50);
        const HGLOBAL image = asked.record.image;
        {
            const GdiCalls calls;
            notePlus(host.window(), asked.record, buttons);
            EXPECT_EQ(GdiCalls::counts().objects, 0);
            EXPECT_EQ(GdiCalls::tried(GdiCalls::Fail::Brush), 1) << "the dialog's, which goes with it";
            EXPECT_EQ(GdiCalls::counts().contexts, 0);
            EXPECT_EQ(GdiCalls::counts().memoryContexts, 0);
            EXPECT_EQ(GdiCalls::counts().deletedInUse, 0);
        }
        EXPECT_EQ(lockCount(image), 0U);
        if (asked.record.image != image) {
            GlobalFree(image);
        }
    }
}

} // namespace
