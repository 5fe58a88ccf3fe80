// Windows: the dialog in which the texts of a header are edited, alone and in front of a save.
#include "cals/cals_files.h"
#include "support/decode_lines.h"
#include "support/dialog_user.h"
#include "support/import_patch.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr int kFirstField = 1006;
constexpr int kFields = 7;
constexpr int kNotes = 1012;
const char *const kKeywords[] = {
    "srcdocid: ", "dstdocis: ", "txtfileid: ", "figid: ", "scrgph: ", "doccls: ", "notes: "};

std::string textIn(HWND dialog, int control) {
    return textOf(GetDlgItem(dialog, control));
}

Records textsIn(HWND dialog) {
    Records texts;
    for (int i = 0; i < kFields; ++i) {
        texts.push_back(textIn(dialog, kFirstField + i));
    }
    return texts;
}

Bytes definedHeader(const CalsNotes *notes = nullptr) {
    const CalsInfo info = {1, {90, 270}, {1728, 2200}, 200};
    const OwnedBlock block(DefineCALSHead(&info, notes));
    return block.bytes();
}

LONG edit(LockedHeader &header, const char *path, const std::function<void(HWND)> &act) {
    const DialogUser user(act);
    const LONG answer = EditCALSHead(nullptr, path, header.get());
    EXPECT_TRUE(user.acted());
    EXPECT_FALSE(user.leftOpen());
    return answer;
}

const auto pressOk = [](HWND dialog) { press(dialog, IDOK); };
const auto pressCancel = [](HWND dialog) { press(dialog, IDCANCEL); };

// ---------------------------------------------------------------- what it shows

TEST(CalsEditDialog, ShowsNumbersAndTexts) {
    const CalsNotes notes = {"S", "D & D", nullptr, "F", "G", "C", "N"};
    LockedHeader header(definedHeader(&notes));
    edit(header, "C:\\drawings\\4711.cal", [](HWND dialog) {
        EXPECT_EQ(textOf(dialog), "Save CALS ");
        EXPECT_EQ(textIn(dialog, 1013), "File name: C:\\drawings\\4711.cal");
        EXPECT_EQ(textIn(dialog, 111), "rtype: 1");
        EXPECT_EQ(textIn(dialog, 1003), "rorient: 090,270");
        EXPECT_EQ(textIn(dialog, 1004), "rpelcnt: 001728,002200");
        EXPECT_EQ(textIn(dialog, 1005), "rdensty: 0200");
        EXPECT_EQ(textsIn(dialog), (Records{"S", "D & D", "NONE", "F", "G", "C", "N"}));
        EXPECT_EQ(textIn(dialog, IDOK), "OK");
        EXPECT_EQ(textIn(dialog, IDCANCEL), "Cancel");
        press(dialog, IDCANCEL);
    });
}

// By design: "dstdocid" and "txtfilid" are not spelled as their records are.
TEST(CalsEditDialog, EachFieldHasItsLabel) {
    LockedHeader header(definedHeader());
    edit(header, nullptr, [](HWND dialog) {
        Records labels;
        for (int i = 0; i < kFields; ++i) {
            labels.push_back(textOf(GetWindow(GetDlgItem(dialog, kFirstField + i), GW_HWNDPREV)));
        }
        EXPECT_EQ(labels, (Records{"srcdocid:", "dstdocid:", "txtfilid:", "figid:", "scrgph:", "doccls:", "notes:"}));
        press(dialog, IDCANCEL);
    });
}

TEST(CalsEditDialog, WithoutAPathShowsNone) {
    LockedHeader header(definedHeader());
    edit(header, nullptr, [](HWND dialog) {
        EXPECT_EQ(textIn(dialog, 1013), "");
        press(dialog, IDCANCEL);
    });
}

TEST(CalsEditDialog, WithoutAHeaderNothingIsFilledNorStored) {
    for (const int button : {IDOK, IDCANCEL}) {
        const DialogUser user([button](HWND dialog) {
            EXPECT_EQ(textsIn(dialog), Records(7));
            for (const int control : {111, 1003, 1004, 1005, 1013}) {
                EXPECT_EQ(textIn(dialog, control), "");
            }
            type(dialog, kNotes, "x");
            press(dialog, button);
        });
        EXPECT_EQ(EditCALSHead(nullptr, "C:\\x.cal", nullptr), button);
        EXPECT_TRUE(user.acted());
    }
}

TEST(CalsEditDialog, RecordsThatAreNotThereShowNothingAndAreNotMade) {
    LockedHeader header(calsHeader({"figid: F", "rtype: 1"}));
    EXPECT_EQ(edit(header, nullptr,
                   [](HWND dialog) {
                       EXPECT_EQ(textsIn(dialog), (Records{"", "", "", "F", "", "", ""}));
                       EXPECT_EQ(textIn(dialog, 111), "rtype: 1");
                       EXPECT_EQ(textIn(dialog, 1005), "");
                       type(dialog, kNotes, "lost");
                       press(dialog, IDOK);
                   }),
              1);
    EXPECT_EQ(header.content(), calsHeader({"figid: F", "rtype: 1"}));
}

// ---------------------------------------------------------------- what it stores

TEST(CalsEditDialog, OkRewritesTheTexts) {
    LockedHeader header(definedHeader());
    EXPECT_EQ(edit(header, nullptr,
                   [](HWND dialog) {
                       for (int i = 0; i < kFields; ++i) {
                           type(dialog, kFirstField + i, "text " + std::to_string(i));
                       }
                       press(dialog, IDOK);
                   }),
              1);
    const CalsNotes notes = {"text 0", "text 1", "text 2", "text 3", "text 4", "text 5", "text 6"};
    EXPECT_EQ(header.content(), definedHeader(&notes));
}

TEST(CalsEditDialog, OkWithoutAChangeLeavesEveryByteAsItWas) {
    const std::string longest(120, 'n');
    const CalsNotes notes = {"S", "", nullptr, " two words ", "G", "", longest.c_str()};
    const Bytes before = definedHeader(&notes);
    LockedHeader header(before);
    EXPECT_EQ(edit(header, nullptr, pressOk), 1);
    EXPECT_EQ(header.content(), before);
}

TEST(CalsEditDialog, AnEmptiedFieldLeavesItsKeyword) {
    LockedHeader header(definedHeader());
    edit(header, nullptr, [](HWND dialog) {
        type(dialog, kNotes, "");
        press(dialog, IDOK);
    });
    EXPECT_EQ(recordsOf(header.content())[10], blankPadded("notes: "));
    // Its record can still be edited.
    edit(header, nullptr, [](HWND dialog) {
        EXPECT_EQ(textIn(dialog, kNotes), "");
        type(dialog, kNotes, "again");
        press(dialog, IDOK);
    });
    EXPECT_EQ(recordsOf(header.content())[10], blankPadded("notes: again"));
}

TEST(CalsEditDialog, TextsEndWithTheirRecords) {
    LockedHeader header(definedHeader());
    const std::string text(300, 'x');
    edit(header, nullptr, [&text](HWND dialog) {
        for (int i = 0; i < kFields; ++i) {
            if (i % 2 == 0) {
                type(dialog, kFirstField + i, text);
            } else {
                SetDlgItemTextA(dialog, kFirstField + i, text.c_str());
            }
        }
        press(dialog, IDOK);
    });
    const Bytes plain = definedHeader();
    const Records records = recordsOf(header.content());
    const Records before = recordsOf(plain);
    for (std::size_t i = 0; i < 16; ++i) {
        const bool isText = before[i].find("NONE") != std::string::npos;
        const std::size_t keyword = before[i].find(": ") + 2;
        EXPECT_EQ(records[i], isText ? before[i].substr(0, keyword) + text.substr(0, 127 - keyword) + " " : before[i]);
    }
    Bytes head = header.content();
    head.resize(2048);
    const TempFile file(head);
    EXPECT_TRUE(OwnedBlock(ReadCALSHead(file.path()))) << "the file reads back";
}

TEST(CalsEditDialog, CancelLeavesEveryValueAsItWas) {
    const CalsNotes notes = {"S", "", nullptr, "two words", "G", "C", "N"};
    const Bytes before = definedHeader(&notes);
    LockedHeader header(before);
    EXPECT_EQ(edit(header, nullptr,
                   [](HWND dialog) {
                       type(dialog, kNotes, "changed");
                       press(dialog, IDCANCEL);
                   }),
              2);
    EXPECT_EQ(header.content(), before);
}

// Trimming takes the blank of an empty text's keyword: it is there again after Cancel.
TEST(CalsEditDialog, AnEmptyTextCanBeEditedAfterACancel) {
    const CalsNotes notes = {"S", "", nullptr, "F", "G", "C", ""};
    LockedHeader header(definedHeader(&notes));
    EXPECT_EQ(edit(header, nullptr, [](HWND dialog) { press(dialog, IDCANCEL); }), 2);
    EXPECT_NE(FindCALSRecord(header.get(), "notes: "), nullptr);
    EXPECT_EQ(edit(header, nullptr,
                   [](HWND dialog) {
                       type(dialog, kNotes, "typed");
                       press(dialog, IDOK);
                   }),
              1);
    EXPECT_EQ(header.record(10).substr(0, 12), "notes: typed");
}

// A program may open another one from the messages of the first: its window is not disabled by a dialog without owner.
TEST(CalsEditDialog, EachOfTwoDialogsHasItsOwnHeader) {
    const CalsNotes first = {"S", "D", "T", "F", "G", "C", "of the first"};
    const CalsNotes second = {"S", "D", "T", "F", "G", "C", "of the second"};
    LockedHeader outer(definedHeader(&first));
    LockedHeader inner(definedHeader(&second));
    EXPECT_EQ(edit(outer, nullptr,
                   [&inner](HWND dialog) {
                       type(dialog, kNotes, "outer");
                       ShowWindow(dialog, SW_HIDE); // so that the user looks at the other one
                       EXPECT_EQ(edit(inner, nullptr,
                                      [](HWND innerDialog) {
                                          EXPECT_EQ(textOf(GetDlgItem(innerDialog, kNotes)), "of the second");
                                          type(innerDialog, kNotes, "inner");
                                          press(innerDialog, IDOK);
                                      }),
                                 1);
                       ShowWindow(dialog, SW_SHOW);
                       press(dialog, IDOK);
                   }),
              1);
    EXPECT_EQ(outer.record(10).substr(0, 13), "notes: outer ");
    EXPECT_EQ(inner.record(10).substr(0, 13), "notes: inner ");
}

TEST(CalsEditDialog, OtherCommandsAreIgnoredAndClosingIsCancel) {
    LockedHeader header(definedHeader());
    EXPECT_EQ(edit(header, nullptr,
                   [](HWND dialog) {
                       for (const WPARAM command : {WPARAM{0}, WPARAM{3}, WPARAM{kNotes}, WPARAM{111}}) {
                           EXPECT_EQ(SendMessageA(dialog, WM_COMMAND, command, 0), 0);
                           EXPECT_TRUE(IsWindowVisible(dialog));
                       }
                       SendMessageA(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
                   }),
              2);
}

TEST(CalsEditDialog, ItsSubjectIsForgottenAfterwards) {
    {
        LockedHeader header(definedHeader());
        edit(header, "C:\\x.cal", pressCancel);
    }
    const DialogUser user([](HWND dialog) {
        EXPECT_EQ(textIn(dialog, 1013), "");
        EXPECT_EQ(textsIn(dialog), Records(7));
        press(dialog, IDOK);
    });
    EXPECT_EQ(DialogBoxParamA(libraryModule(), "CALSEDIT", nullptr, &CalsDllEditDlgFn, 0), 1);
    EXPECT_TRUE(user.acted());
}

// ---------------------------------------------------------------- in front of a save

Outcome saveAsking(const char *path, const std::function<void(HWND)> &act) {
    const DibBlock dib(PackedDib(20, 5, 1));
    const DialogUser user(act);
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    const DWORD result = SaveDIBInCALSFormat(path, dib.get(), nullptr, nullptr, 1);
    EXPECT_TRUE(user.acted());
    EXPECT_EQ(lockCount(dib.get()), 0U);
    return {result, TiffError()};
}

TEST(SaveCalsAsking, OkSavesWhatWasTyped) {
    const TempFile file;
    EXPECT_EQ(saveAsking(file.path(),
                         [&file](HWND dialog) {
                             EXPECT_EQ(textIn(dialog, 1013), std::string("File name: ") + file.path());
                             EXPECT_EQ(textIn(dialog, 1004), "rpelcnt: 000020,000005");
                             type(dialog, kFirstField, "4711-A");
                             type(dialog, kNotes, "");
                             press(dialog, IDOK);
                         }),
              kDecoded);
    const Records records = recordsOf(readFile(file.path()).value_or(Bytes()));
    ASSERT_EQ(records.size(), 16U);
    EXPECT_EQ(records[0], blankPadded("srcdocid: 4711-A"));
    EXPECT_EQ(records[1], blankPadded("dstdocis: NONE"));
    EXPECT_EQ(records[10], blankPadded("notes: "));
    const OwnedBlock dib(LoadCALSIntoDIB(file.path(), 0));
    EXPECT_TRUE(dib);
}

TEST(SaveCalsAsking, CancelIsSuccessWithoutAFile) {
    const TempFile file;
    EXPECT_EQ(saveAsking(file.path(), pressCancel), kDecoded);
    EXPECT_FALSE(readFile(file.path()));
}

INT_PTR WINAPI noDialog(HINSTANCE, LPCSTR, HWND, DLGPROC, LPARAM) {
    return -1;
}

TEST(SaveCalsAsking, WithoutADialogNothingIsSaved) {
    const TempFile file;
    const DibBlock dib(PackedDib(20, 5, 1));
    ImportPatch patch;
    patch.replace("DialogBoxParamA", &noDialog);
    EXPECT_EQ(SaveDIBInCALSFormat(file.path(), dib.get(), nullptr, nullptr, 1), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    EXPECT_FALSE(readFile(file.path()));
}

} // namespace
