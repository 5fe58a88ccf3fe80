// Windows: the dialog for notes: what it shows, what its buttons do, and what is left of it.
#include "annot/notes.h"
#include "support/dialog_user.h"
#include "support/faults.h"
#include "support/gdi_calls.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace vellum::test;

constexpr int kOnImage = 1000;
constexpr int kInHeader = 1001;
constexpr int kTransparent = 1002;
constexpr int kOpaque = 1003;
constexpr int kText = 1004;
constexpr int kDelete = 1005;

// Shows the dialog alone. Result: how it ended.
INT_PTR show(NoteRecord &note, const std::function<void(HWND)> &act) {
    const DialogUser user(act);
    const INT_PTR result = DialogBoxParamA(GetModuleHandleA("VELLUM32.DLL"), "NOTEITDLG", nullptr, &NoteDlgFn,
                                           reinterpret_cast<LPARAM>(&note));
    EXPECT_TRUE(user.acted());
    EXPECT_FALSE(user.leftOpen());
    return result;
}

std::function<void(HWND)> pressing(int button) {
    return [button](HWND dialog) { press(dialog, button); };
}

std::string wholeText(HWND dialog) {
    const HWND field = GetDlgItem(dialog, kText);
    std::string text(static_cast<std::size_t>(GetWindowTextLengthA(field)) + 1, '\0');
    text.resize(static_cast<std::size_t>(GetWindowTextA(field, text.data(), static_cast<int>(text.size()))));
    return text;
}

// Which of the four radio buttons are checked.
std::string checks(HWND dialog) {
    std::string checks;
    for (const int button : {kOnImage, kInHeader, kTransparent, kOpaque}) {
        checks += isChecked(dialog, button) ? 'x' : '-';
    }
    return checks;
}

// ---------------------------------------------------------------- what it shows

TEST(NoteDialog, HasItsControlsWithTheirTexts) {
    OwnedNote note("x");
    show(note.record, [](HWND dialog) {
        EXPECT_EQ(textOf(dialog), "Notes");
        const std::map<int, std::string> texts = {{kOnImage, "Stored text on &Image"},
                                                  {kInHeader, "Store text in &header"},
                                                  {kTransparent, "&Transparent"},
                                                  {kOpaque, "&Opaque"},
                                                  {IDOK, "Store"},
                                                  {IDCANCEL, "Cancel"},
                                                  {kDelete, "Delete"}};
        for (const auto &[control, text] : texts) {
            EXPECT_EQ(textOf(GetDlgItem(dialog, control)), text);
            EXPECT_TRUE(isEnabled(dialog, control));
        }
        press(dialog, IDCANCEL);
    });
}

TEST(NoteDialog, ItsTextHasManyLinesAndTakesReturn) {
    OwnedNote note("x");
    show(note.record, [](HWND dialog) {
        const auto style = static_cast<DWORD>(GetWindowLongA(GetDlgItem(dialog, kText), GWL_STYLE));
        EXPECT_EQ(style & (ES_MULTILINE | ES_WANTRETURN), DWORD{ES_MULTILINE | ES_WANTRETURN});
        EXPECT_EQ(style & ES_READONLY, 0U);
        press(dialog, IDCANCEL);
    });
}

TEST(NoteDialog, ChecksWhereTheNoteIsKeptAndHowItLooks) {
    for (const LONG inHeader : {0, 1, -7}) {
        for (const LONG opaque : {0, 1, -7}) {
            OwnedNote note("x");
            note.record.inHeader = inHeader;
            note.record.opaque = opaque;
            show(note.record, [&](HWND dialog) {
                EXPECT_EQ(checks(dialog), std::string(inHeader != 0 ? "-x" : "x-") + (opaque != 0 ? "-x" : "x-"));
                press(dialog, IDCANCEL);
            });
        }
    }
}

TEST(NoteDialog, ShowsTheTextWithItsLines) {
    for (const std::string &text : {std::string("one\r\ntwo & three\r\n"), std::string(), std::string(60000, 'x')}) {
        OwnedNote note(text);
        show(note.record, [&](HWND dialog) {
            EXPECT_EQ(wholeText(dialog), text);
            press(dialog, IDCANCEL);
        });
    }
}

TEST(NoteDialog, OfATextWithoutATerminatorShowsTheWholeBlock) {
    OwnedNote note;
    note.record.text = makeBlock(bytesOf("abc"));
    show(note.record, [](HWND dialog) {
        EXPECT_EQ(wholeText(dialog), "abc");
        press(dialog, IDCANCEL);
    });
    EXPECT_EQ(lockCount(note.record.text), 0U);
}

TEST(NoteDialog, WithoutATextIsEmpty) {
    OwnedNote note;
    show(note.record, [](HWND dialog) {
        EXPECT_EQ(wholeText(dialog), "");
        press(dialog, IDCANCEL);
    });
    EXPECT_EQ(note.record.text, nullptr);
}

TEST(NoteDialog, IsLightGrey) {
    OwnedNote note("x");
    show(note.record, [](HWND dialog) {
        const HDC dc = GetDC(dialog);
        for (const UINT message : {WM_CTLCOLORDLG, WM_CTLCOLORSTATIC, WM_CTLCOLORBTN}) {
            SetBkColor(dc, RGB(255, 0, 0));
            const INT_PTR brush = SendMessageA(dialog, message, reinterpret_cast<WPARAM>(dc), 0);
            LOGBRUSH look{};
            ASSERT_NE(GetObjectA(reinterpret_cast<HGDIOBJ>(brush), sizeof look, &look), 0);
            EXPECT_EQ(look.lbStyle, UINT{BS_SOLID});
            EXPECT_EQ(look.lbColor, COLORREF{0xC0C0C0});
            EXPECT_EQ(GetBkColor(dc), COLORREF{0xC0C0C0}) << "what texts stand on";
        }
        ReleaseDC(dialog, dc);
        press(dialog, IDCANCEL);
    });
}

// ---------------------------------------------------------------- its buttons

TEST(NoteDialog, RadioButtonsAreSwitchedInPairs) {
    OwnedNote note("x");
    show(note.record, [](HWND dialog) {
        EXPECT_EQ(checks(dialog), "x-x-");
        press(dialog, kInHeader);
        EXPECT_EQ(checks(dialog), "-xx-");
        press(dialog, kOpaque);
        EXPECT_EQ(checks(dialog), "-x-x");
        press(dialog, kOpaque);
        EXPECT_EQ(checks(dialog), "-x-x");
        press(dialog, kOnImage);
        EXPECT_EQ(checks(dialog), "x--x");
        press(dialog, kTransparent);
        EXPECT_EQ(checks(dialog), "x-x-");
        press(dialog, IDCANCEL);
    });
}

TEST(NoteDialog, StoreTakesTextAndChoicesAndEndsWith2) {
    OwnedNote note("before");
    note.record.left = 5;
    const HGLOBAL before = note.record.text;
    EXPECT_EQ(show(note.record,
                   [](HWND dialog) {
                       press(dialog, kInHeader);
                       press(dialog, kOpaque);
                       type(dialog, kText, "first\rsecond");
                       press(dialog, IDOK);
                   }),
              2);
    EXPECT_EQ(note.text(), "first\r\nsecond");
    EXPECT_EQ(GlobalSize(note.record.text), sizeof "first\r\nsecond");
    EXPECT_EQ(lockCount(note.record.text), 0U);
    EXPECT_NE(note.record.inHeader, 0);
    EXPECT_NE(note.record.opaque, 0);
    EXPECT_EQ(note.record.left, 5);
    // By design: the block from before is the caller's.
    ASSERT_NE(note.record.text, before);
    EXPECT_EQ(blockBytes(before), bytesOf(std::string("before") + '\0'));
    GlobalFree(before);
}

TEST(NoteDialog, StoreOfTheOtherChoicesClearsThem) {
    OwnedNote note("x");
    const HGLOBAL before = note.record.text;
    note.record.inHeader = 1;
    note.record.opaque = 1;
    EXPECT_EQ(show(note.record,
                   [](HWND dialog) {
                       press(dialog, kOnImage);
                       press(dialog, kTransparent);
                       press(dialog, IDOK);
                   }),
              2);
    EXPECT_EQ(note.record.inHeader, 0);
    EXPECT_EQ(note.record.opaque, 0);
    EXPECT_EQ(note.text(), "x");
    GlobalFree(before);
}

TEST(NoteDialog, StoresALongTextWhole) {
    const std::string text(70000, 'y');
    OwnedNote note(text);
    const HGLOBAL before = note.record.text;
    EXPECT_EQ(show(note.record, pressing(IDOK)), 2);
    EXPECT_EQ(note.text(), text);
    GlobalFree(before);
}

TEST(NoteDialog, CancelEndsWith0AndDeleteWith1AndBothLeaveTheNote) {
    for (const auto &[button, result] : {std::pair{int{IDCANCEL}, 0}, std::pair{kDelete, 1}}) {
        OwnedNote note("kept");
        note.record.inHeader = 1;
        const NoteRecord before = note.record;
        EXPECT_EQ(show(note.record,
                       [button = button](HWND dialog) {
                           type(dialog, kText, "lost");
                           press(dialog, kOnImage);
                           press(dialog, kOpaque);
                           press(dialog, button);
                       }),
                  result);
        EXPECT_EQ(std::memcmp(&note.record, &before, sizeof before), 0);
        EXPECT_EQ(note.text(), "kept");
    }
}

TEST(NoteDialog, WithoutANoteIsEmptyAndStoresNothing) {
    const DialogUser user([](HWND dialog) {
        EXPECT_EQ(checks(dialog), "----");
        press(dialog, IDOK);
    });
    EXPECT_EQ(DialogBoxParamA(GetModuleHandleA("VELLUM32.DLL"), "NOTEITDLG", nullptr, &NoteDlgFn, 0), 0);
    EXPECT_TRUE(user.acted());
}

// ---------------------------------------------------------------- want of memory, and what is left

TEST(NoteDialog, WithoutMemoryForTheTextStoreIsLikeCancel) {
    OwnedNote note("kept");
    const NoteRecord before = note.record;
    EXPECT_EQ(show(note.record,
                   [](HWND dialog) {
                       press(dialog, kOpaque);
                       const FailNth fault(Call::Allocate, 0);
                       press(dialog, IDOK);
                       EXPECT_TRUE(fault.happened());
                   }),
              0);
    EXPECT_EQ(std::memcmp(&note.record, &before, sizeof before), 0);
    EXPECT_EQ(lockCount(note.record.text), 0U);
}

TEST(NoteDialog, GivesItsBrushBack) {
    const GdiCalls calls;
    OwnedNote note("x");
    for (int i = 1; i <= 3; ++i) {
        show(note.record, [](HWND dialog) {
            EXPECT_EQ(GdiCalls::counts().objects, 1);
            press(dialog, IDCANCEL);
        });
        EXPECT_EQ(GdiCalls::counts().objects, 0);
        EXPECT_EQ(GdiCalls::tried(GdiCalls::Fail::Brush), i);
    }
}

TEST(NoteDialog, WithoutItsBrushIsThereAllTheSame) {
    const GdiCalls calls(GdiCalls::Fail::Brush);
    OwnedNote note("x");
    EXPECT_EQ(show(note.record, pressing(IDCANCEL)), 0);
    EXPECT_EQ(GdiCalls::counts().objects, 0);
}

} // namespace
