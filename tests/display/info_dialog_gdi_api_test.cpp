// The information dialog's template, control by control, and its procedure.
#include "display/info_dialog_calls.h"

#include <memory>

namespace {

using namespace vellum::test;

enum class Kind { PushButton, Label, RightText, GroupBox };

struct Control {
    int id;
    Kind kind;
    const char *text;
    RECT place; // x, y, width and height in dialog units
};

constexpr Control kControls[] = {
    {1, Kind::PushButton, "Load", {191, 66, 64, 20}},
    {103, Kind::Label, "Date", {18, 46, 28, 10}},
    {107, Kind::Label, "Width", {16, 74, 30, 10}},
    {109, Kind::Label, "Planes", {102, 74, 30, 10}},
    {110, Kind::Label, "Bits", {102, 86, 30, 10}},
    {200, Kind::RightText, "0", {51, 74, 35, 10}},
    {201, Kind::RightText, "0", {51, 86, 35, 10}},
    {111, Kind::GroupBox, "User informations", {12, 6, 166, 54}},
    {112, Kind::GroupBox, "Dimensions", {12, 62, 80, 52}},
    {115, Kind::GroupBox, "Colors", {98, 62, 80, 52}},
    {202, Kind::RightText, "1", {138, 74, 32, 10}},
    {203, Kind::RightText, "1", {140, 86, 30, 10}},
    {2, Kind::PushButton, "Cancel", {191, 93, 64, 20}},
    {204, Kind::Label, "Monochrom", {102, 98, 74, 10}},
    {119, Kind::Label, "Artist", {18, 34, 26, 10}},
    {121, Kind::Label, "Title", {18, 22, 26, 10}},
    {205, Kind::Label, "No title defined", {52, 22, 124, 10}},
    {206, Kind::Label, "No artist defined", {52, 34, 122, 10}},
    {207, Kind::Label, "No date defined", {52, 46, 124, 10}},
    {125, Kind::GroupBox, "Compression", {183, 6, 80, 54}},
    {208, Kind::Label, "No compression", {189, 23, 70, 10}},
    {128, Kind::Label, "Predictor", {189, 38, 36, 10}},
    {209, Kind::RightText, "None", {227, 38, 32, 10}},
    {126, Kind::Label, "Height", {16, 86, 34, 10}},
    {130, Kind::Label, "Strips", {16, 98, 48, 10}},
    {210, Kind::RightText, "1", {51, 98, 35, 10}},
};

std::string classOf(HWND window) {
    char name[32] = "";
    GetClassNameA(window, name, sizeof name);
    return name;
}

Kind kindOf(HWND window) {
    const auto style = static_cast<DWORD>(GetWindowLongA(window, GWL_STYLE));
    if (classOf(window) == "Button") {
        // A push button is the default one while it has the focus.
        const DWORD type = style & BS_TYPEMASK;
        EXPECT_TRUE(type == BS_PUSHBUTTON || type == BS_DEFPUSHBUTTON || type == BS_GROUPBOX) << type;
        return type == BS_GROUPBOX ? Kind::GroupBox : Kind::PushButton;
    }
    EXPECT_EQ(classOf(window), "Static");
    const DWORD type = style & SS_TYPEMASK;
    EXPECT_TRUE(type == SS_LEFT || type == SS_RIGHT) << type;
    return type == SS_RIGHT ? Kind::RightText : Kind::Label;
}

// In pixels of the dialog's inside: left, top, width, height.
RECT placeOf(HWND dialog, HWND window) {
    RECT rect{};
    GetWindowRect(window, &rect);
    POINT corner = {rect.left, rect.top};
    ScreenToClient(dialog, &corner);
    return {corner.x, corner.y, rect.right - rect.left, rect.bottom - rect.top};
}

// Shows the template as it is, with nobody to fill it.
void lookAtTemplate(const std::function<void(HWND)> &look) {
    const DialogUser user([&look](HWND dialog) {
        look(dialog);
        EndDialog(dialog, 7);
    });
    const auto procedure = [](HWND, UINT, WPARAM, LPARAM) CALLBACK -> INT_PTR { return FALSE; };
    EXPECT_EQ(DialogBoxParamA(libraryModule(), "TIFFINFO", nullptr, procedure, 0), 7);
}

TEST(InfoTemplate, HasTheseControlsInThisOrder) {
    lookAtTemplate([](HWND dialog) {
        HWND window = GetWindow(dialog, GW_CHILD);
        for (const Control &control : kControls) {
            SCOPED_TRACE(control.id);
            ASSERT_NE(window, nullptr);
            EXPECT_EQ(GetDlgCtrlID(window), control.id);
            EXPECT_EQ(kindOf(window), control.kind);
            EXPECT_EQ(wholeTextOf(window), control.text);
            RECT expected = control.place;
            MapDialogRect(dialog, &expected);
            const RECT place = placeOf(dialog, window);
            EXPECT_EQ(place.left, expected.left);
            EXPECT_EQ(place.top, expected.top);
            EXPECT_EQ(place.right, expected.right);
            EXPECT_EQ(place.bottom, expected.bottom);
            EXPECT_TRUE(IsWindowVisible(window));
            EXPECT_TRUE(IsWindowEnabled(window));
            window = GetWindow(window, GW_HWNDNEXT);
        }
        EXPECT_EQ(window, nullptr) << "more controls than are known";
    });
}

TEST(InfoTemplate, IsAPopupWithACaptionAndRoomForItsControls) {
    lookAtTemplate([](HWND dialog) {
        EXPECT_EQ(wholeTextOf(dialog), "Noname.tif");
        const auto style = static_cast<DWORD>(GetWindowLongA(dialog, GWL_STYLE));
        EXPECT_EQ(style & (WS_POPUP | WS_CHILD | WS_CAPTION), DWORD{WS_POPUP | WS_CAPTION});
        RECT inside{};
        GetClientRect(dialog, &inside);
        constexpr LONG kMargin = 6;
        for (const auto &[id, kind, text, place] : kControls) {
            // Rounded once, as the dialog's own size is: which font there is must not matter.
            RECT needed = {0, 0, place.left + place.right + kMargin, place.top + place.bottom + kMargin};
            MapDialogRect(dialog, &needed);
            EXPECT_LE(needed.right, inside.right) << id;
            EXPECT_LE(needed.bottom, inside.bottom) << id;
        }
    });
}

// A title may have an ampersand; it does not underline what follows.
TEST(InfoTemplate, TheTextsOfAFileAreShownWithTheirAmpersands) {
    lookAtTemplate([](HWND dialog) {
        for (const int control : {kTitle, kArtist, kDate}) {
            EXPECT_NE(GetWindowLongA(GetDlgItem(dialog, control), GWL_STYLE) & SS_NOPREFIX, 0) << control;
        }
    });
}

// ---------------------------------------------------------------- the procedure

// The dialog of an image that is registered.
class InfoProcedure : public testing::Test {
protected:
    void SetUp() override {
        tiff::Builder file;
        file.directory({tiff::longs(256, {20}), tiff::longs(257, {10})});
        tiff_ = std::make_unique<OpenedTiff>(file.bytes());
        ASSERT_TRUE(registerImage(tiff_->get(), 0));
    }

    INT_PTR run(const std::function<void(HWND)> &act) {
        TiffInfoDlgParam param = {tiff_->get(), 0};
        return runInfoDialog(&param, act);
    }

    static void strike(WPARAM key) { PostMessageA(GetFocus(), WM_KEYDOWN, key, 0); }

private:
    std::unique_ptr<OpenedTiff> tiff_;
};

TEST_F(InfoProcedure, LoadEndsWith1AndCancelWith2) {
    EXPECT_EQ(run([](HWND dialog) { press(dialog, 1); }), 1);
    EXPECT_EQ(run([](HWND dialog) { press(dialog, 2); }), 2);
    EXPECT_EQ(run([](HWND dialog) { SendMessageA(dialog, WM_SYSCOMMAND, SC_CLOSE, 0); }), 2);
}

TEST_F(InfoProcedure, LoadHasTheFocusSoEnterLoadsAndEscapeCancels) {
    EXPECT_EQ(run([](HWND dialog) {
                  EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 1));
                  EXPECT_EQ(LOWORD(SendMessageA(dialog, DM_GETDEFID, 0, 0)), 1);
                  strike(VK_RETURN);
              }),
              1);
    EXPECT_EQ(run([](HWND) { strike(VK_ESCAPE); }), 2);
}

TEST_F(InfoProcedure, TheTabulatorGoesFromLoadToCancelWhereEnterCancels) {
    EXPECT_EQ(run([](HWND dialog) {
                  EXPECT_EQ(GetDlgCtrlID(GetNextDlgTabItem(dialog, GetDlgItem(dialog, 1), FALSE)), 2);
                  EXPECT_EQ(GetDlgCtrlID(GetNextDlgTabItem(dialog, GetDlgItem(dialog, 2), FALSE)), 1);
                  strike(VK_TAB);
                  PostMessageA(GetDlgItem(dialog, 2), WM_KEYDOWN, VK_RETURN, 0);
              }),
              2);
}

TEST_F(InfoProcedure, TakesEveryCommandAndEndsForTwoOfThem) {
    EXPECT_EQ(run([](HWND dialog) {
                  for (const WPARAM command : {0U, 3U, 103U, 200U, 210U, 0x7FFFU, 0x8001U, 0xFFFFU}) {
                      EXPECT_EQ(TiffDllInfoDlgFn(dialog, WM_COMMAND, command, 0), 1) << command;
                      EXPECT_EQ(TiffDllInfoDlgFn(dialog, WM_COMMAND, command | 0x10000, 0), 1) << command;
                  }
                  EXPECT_TRUE(IsWindowVisible(dialog));
                  EXPECT_EQ(TiffDllInfoDlgFn(dialog, WM_COMMAND, 1, 0), 1);
              }),
              1);
    EXPECT_EQ(run([](HWND dialog) { EXPECT_EQ(TiffDllInfoDlgFn(dialog, WM_COMMAND, 2, 0), 1); }), 2);
}

// By design: the high word of a command, which tells what happened to the control, does not matter.
TEST_F(InfoProcedure, EveryNotificationOfItsButtonsEndsIt) {
    EXPECT_EQ(run([](HWND dialog) { EXPECT_EQ(TiffDllInfoDlgFn(dialog, WM_COMMAND, MAKEWPARAM(1, BN_DBLCLK), 0), 1); }),
              1);
    EXPECT_EQ(run([](HWND dialog) { EXPECT_EQ(TiffDllInfoDlgFn(dialog, WM_COMMAND, MAKEWPARAM(2, 0xFFFF), 0), 1); }),
              2);
}

TEST_F(InfoProcedure, LeavesAllOtherMessagesToTheSystem) {
    EXPECT_EQ(run([](HWND dialog) {
                  for (UINT message = 0; message < 0x500; ++message) {
                      if (message != WM_COMMAND && message != WM_INITDIALOG) {
                          EXPECT_EQ(TiffDllInfoDlgFn(dialog, message, 1, 0), 0) << message;
                      }
                  }
                  EXPECT_TRUE(IsWindowVisible(dialog));
                  press(dialog, 1);
              }),
              1);
}

TEST_F(InfoProcedure, GivesTheFocusToLoadItself) {
    EXPECT_EQ(run([](HWND dialog) {
                  SetFocus(GetDlgItem(dialog, 2));
                  EXPECT_EQ(TiffDllInfoDlgFn(dialog, WM_INITDIALOG, 0, 0), 0);
                  EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 1));
                  press(dialog, 1);
              }),
              1);
}

TEST(InfoProcedureAlone, WithoutARecordTheTemplateStaysAsItIs) {
    EXPECT_EQ(runInfoDialog(nullptr,
                            [](HWND dialog) {
                                EXPECT_EQ(wholeTextOf(dialog), "Noname.tif");
                                EXPECT_EQ(textsIn(dialog), kTemplateTexts);
                                EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 1));
                                press(dialog, 1);
                            }),
              1);
}

TEST(InfoProcedureAlone, HandlesThatAreNoneAndImagesThatAreNotRegisteredTellNothing) {
    tiff::Builder file;
    file.directory({tiff::longs(256, {20}), tiff::longs(257, {10}), tiff::shorts(259, {4})});
    const OpenedTiff unregistered(file.bytes());
    const HGLOBAL small = makeBlock(Bytes(8));
    for (const HGLOBAL handle : {HGLOBAL{nullptr}, small, static_cast<HGLOBAL>(unregistered.get())}) {
        for (const DWORD index : {0UL, 1UL, 1000UL, 0xFFFFFFFFUL}) {
            EXPECT_EQ(textsOf(handle, index), texts({}));
        }
    }
    EXPECT_EQ(lockCount(small), 0U);
    EXPECT_EQ(lockCount(unregistered.get()), 0U);
    GlobalFree(small);
}

} // namespace
