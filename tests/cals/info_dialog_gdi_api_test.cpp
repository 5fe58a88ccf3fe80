// Windows: the dialog that lists a header, line by line, alone and in front of a load.
#include "cals/cals_pictures.h"
#include "support/decode_lines.h"
#include "support/dialog_user.h"
#include "support/gdi_calls.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr int kFileName = 111;
constexpr int kList = 1001;

Records linesOf(HWND dialog) {
    const HWND list = GetDlgItem(dialog, kList);
    Records lines;
    const auto count = SendMessageA(list, LB_GETCOUNT, 0, 0);
    for (WPARAM i = 0; i < static_cast<WPARAM>(count); ++i) {
        std::string line(static_cast<std::size_t>(SendMessageA(list, LB_GETTEXTLEN, i, 0)) + 1, '\0');
        SendMessageA(list, LB_GETTEXT, i, reinterpret_cast<LPARAM>(line.data()));
        line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

// The list as it is shown for a file.
Records listed(const char *path) {
    Records lines;
    const DialogUser user([&lines](HWND dialog) {
        lines = linesOf(dialog);
        press(dialog, IDOK);
    });
    EXPECT_EQ(ShowCALSInfo(nullptr, path), 1);
    EXPECT_TRUE(user.acted());
    EXPECT_FALSE(user.leftOpen());
    return lines;
}
Records listed(const Bytes &content) {
    const TempFile file(content);
    return listed(file.path());
}

TEST(CalsInfoDialog, ListsTheSixteenRecords) {
    Records expected = {"srcdocid    :  DRAWING 4711", "rtype       :  1", "rorient     :  090,270",
                        "rpelcnt     :  000009,000004", "rdensty     :  0200"};
    expected.resize(16, " ");
    Records records = pictureRecords();
    records.insert(records.begin(), "srcdocid: DRAWING 4711");
    EXPECT_EQ(listed(calsHeader(records)), expected);
    EXPECT_EQ(listed(calsHeader(records, '\0')), expected);
}

TEST(CalsInfoDialog, AKeywordTakesTwelveCharacters) {
    Bytes header = calsHeader({"abcdefghijklmnop:x", "a:b:c", ":only", "no colon here", "line: end\r",
                               std::string("nul\0after: x", 12), "notes:" + std::string(121, 'n')});
    const Records lines = listed(header);
    ASSERT_EQ(lines.size(), 16U);
    EXPECT_EQ(lines[0], "abcdefghijkl: x");
    EXPECT_EQ(lines[1], "a           : b:c");
    EXPECT_EQ(lines[2], "            : only");
    EXPECT_EQ(lines[3], "no colon here");
    EXPECT_EQ(lines[4], "line        :  end");
    EXPECT_EQ(lines[5], "nul");
    EXPECT_EQ(lines[6], "notes       : " + std::string(121, 'n'));
    EXPECT_EQ(lines[7], " ");
}

TEST(CalsInfoDialog, ShowsTheErrorInsteadWhenThereIsNoHeader) {
    EXPECT_EQ(listed(TempFile().path()), Records{"General I/O error in reading or writting."});
    EXPECT_EQ(listed(Bytes(2047, BYTE{' '})), Records{"File has not a valid CALS format."});
    SetTiffError(VELLUM_PATH_TOO_LONG);
    EXPECT_EQ(listed(nullptr), Records{"Pathname is longer than MAXPATH."}) << "the current error";
}

TEST(CalsInfoDialog, ShowsTheFileNameAndAFixedPitchFont) {
    const TempFile file(calsHeader(pictureRecords()));
    const DialogUser user([&file](HWND dialog) {
        EXPECT_EQ(textOf(GetDlgItem(dialog, kFileName)), std::string("File name: ") + file.path());
        EXPECT_EQ(textOf(GetDlgItem(dialog, IDOK)), "OK");
        EXPECT_EQ(textOf(GetDlgItem(dialog, IDCANCEL)), "Cancel");
        const HWND list = GetDlgItem(dialog, kList);
        EXPECT_EQ(reinterpret_cast<HGDIOBJ>(SendMessageA(list, WM_GETFONT, 0, 0)), GetStockObject(SYSTEM_FIXED_FONT));
        EXPECT_TRUE(IsWindowVisible(list)) << "it is drawn again";
        press(dialog, IDOK);
    });
    EXPECT_EQ(ShowCALSInfo(nullptr, file.path()), 1);
    EXPECT_TRUE(user.acted());
}

TEST(CalsInfoDialog, LongRecordsCanBeScrolledTo) {
    const TempFile file(calsHeader({"notes: " + std::string(120, 'n')}));
    const DialogUser user([](HWND dialog) {
        const HWND list = GetDlgItem(dialog, kList);
        RECT client{};
        GetClientRect(list, &client);
        EXPECT_GT(SendMessageA(list, LB_GETHORIZONTALEXTENT, 0, 0), client.right);
        press(dialog, IDOK);
    });
    EXPECT_EQ(ShowCALSInfo(nullptr, file.path()), 1);
}

TEST(CalsInfoDialog, APathIsShownAsItIsWhateverItsLength) {
    const std::string path = "a&b\\" + std::string(1000, 'p');
    const DialogUser user([&path](HWND dialog) {
        const std::string shown = textOf(GetDlgItem(dialog, kFileName));
        EXPECT_EQ(shown, ("File name: " + path).substr(0, shown.size()));
        EXPECT_GE(shown.size(), 260U);
        press(dialog, IDOK);
    });
    EXPECT_EQ(ShowCALSInfo(nullptr, path.c_str()), 1);
}

TEST(CalsInfoDialog, EndsWithTheButtonAndWithNothingElse) {
    const TempFile file(calsHeader(pictureRecords()));
    {
        const DialogUser user([](HWND dialog) {
            for (const WPARAM command : {WPARAM{0}, WPARAM{3}, WPARAM{kList}, WPARAM{111}}) {
                EXPECT_EQ(SendMessageA(dialog, WM_COMMAND, command, 0), 0);
                EXPECT_TRUE(IsWindowVisible(dialog));
            }
            press(dialog, IDCANCEL);
        });
        EXPECT_EQ(ShowCALSInfo(nullptr, file.path()), 2);
        EXPECT_FALSE(user.leftOpen());
    }
    {
        const DialogUser user([](HWND dialog) { SendMessageA(dialog, WM_SYSCOMMAND, SC_CLOSE, 0); });
        EXPECT_EQ(ShowCALSInfo(nullptr, file.path()), 2);
        EXPECT_FALSE(user.leftOpen());
    }
}

TEST(CalsInfoDialog, RunsOverItsExportedProcedure) {
    const TempFile file(calsHeader(pictureRecords()));
    const DialogUser user([](HWND dialog) {
        EXPECT_EQ(linesOf(dialog).size(), 16U);
        press(dialog, IDOK);
    });
    EXPECT_EQ(
        DialogBoxParamA(libraryModule(), "CALSINFO", nullptr, &CalsDllInfoDlgFn, reinterpret_cast<LPARAM>(file.path())),
        1);
}

TEST(CalsInfoDialog, LeavesNoDeviceContextBehind) {
    const TempFile file(calsHeader(pictureRecords()));
    const GdiCalls calls;
    listed(file.path());
    EXPECT_EQ(calls.counts().contexts, 0);
    EXPECT_EQ(calls.counts().objects, 0);
}

// ---------------------------------------------------------------- in front of a load

struct Loaded {
    bool picture;
    DWORD error;
    bool operator==(const Loaded &) const = default;
};
Loaded loadAsking(const char *path) {
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    const OwnedBlock dib(LoadCALSIntoDIB(path, 1));
    return {static_cast<bool>(dib), TiffError()};
}

TEST(LoadCalsAsking, OkLoadsAndCancelIsNoError) {
    const TempFile file(bilevelPicture(45, 13).file());
    {
        const DialogUser user([](HWND dialog) { press(dialog, IDOK); });
        EXPECT_EQ(loadAsking(file.path()), (Loaded{true, VELLUM_OK}));
        EXPECT_TRUE(user.acted());
    }
    {
        const DialogUser user([](HWND dialog) { press(dialog, IDCANCEL); });
        EXPECT_EQ(loadAsking(file.path()), (Loaded{false, VELLUM_OK}));
    }
    const DialogUser user([](HWND) {});
    const OwnedBlock dib(LoadCALSIntoDIB(file.path(), 0));
    EXPECT_TRUE(dib);
    EXPECT_FALSE(user.acted()) << "nobody asked for it";
}

INT_PTR WINAPI noDialog(HINSTANCE, LPCSTR, HWND, DLGPROC, LPARAM) {
    return -1;
}

TEST(LoadCalsAsking, WithoutADialogNothingIsLoaded) {
    const TempFile file(bilevelPicture(45, 13).file());
    ImportPatch patch;
    patch.replace("DialogBoxParamA", &noDialog);
    EXPECT_EQ(loadAsking(file.path()), (Loaded{false, VELLUM_NO_MEMORY}));
}

} // namespace
