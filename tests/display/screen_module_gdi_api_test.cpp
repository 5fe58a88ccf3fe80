// Pictures whose lines come from the companion module, which may deliver them in any order, leave some out, repeat
// some, or name rows that the picture does not have.
#include "support/faults.h"
#include "support/jpeg_tiff.h"
#include "support/screen_painting.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace vellum::test;

constexpr SIZE kWindow = {271, 263};
constexpr int kWidth = 200;
constexpr int kHeight = 190;

// 8 bits of grey: the module's lines are those of this picture.
ScreenPicture grey() {
    ScreenPicture picture = screenPicture(kWidth, kHeight, 8);
    picture.photometric = kBlackIsZeroPhotometric;
    return picture;
}

const ScreenPicture *delivered = nullptr;
std::vector<DWORD> rowsToDeliver;

DWORD VELLUMAPI deliverRows(CodecState *state) {
    for (const DWORD row : rowsToDeliver) {
        Bytes line = delivered->packedRow(static_cast<int>(row % kHeight));
        line.resize(line.size() + 256);
        if (const DWORD error = state->lineFunction(line.data(), row, state->userValue); error != 0) {
            return error;
        }
    }
    return 0;
}

class ScreenModule : public testing::Test {
protected:
    // The rows that are not delivered stay untouched.
    void expectShown(const std::vector<DWORD> &rows, DWORD mode = 0) {
        const ScreenPicture picture = grey();
        delivered = &picture;
        rowsToDeliver = rows;
        const TempFile file(jpegTiff({.width = kWidth, .height = kHeight}));
        const CompanionModule module(kCompanionName, kCompanionEntry, asEntry(&deliverRows));
        for (const DWORD flags : fourTurns(mode)) {
            SCOPED_TRACE(describe(picture, {flags}));
            host_.reset();
            EXPECT_EQ(paint(host_.window(), host_.dc(), file.path(), {flags}), kDecoded);
            expectRows(picture, {flags});
        }
    }

private:
    void expectRows(const ScreenPicture &picture, const Look &look) {
        const ScreenModel whole(picture, look, {kWindow});
        ScreenPicture none = picture;
        none.rowsStored = 0;
        const ScreenModel untouched(none, look, {kWindow});
        const Pixels pixels = host_.pixels();
        for (int y = 0; y < whole.y().client; ++y) {
            for (int x = 0; x < whole.x().client; ++x) {
                const int row = rowAt(whole, look, x, y);
                const bool came = row < 0 || std::find(rowsToDeliver.begin(), rowsToDeliver.end(),
                                                       static_cast<DWORD>(row)) != rowsToDeliver.end();
                ASSERT_EQ(pixels[static_cast<std::size_t>(y * whole.x().client + x)],
                          (came ? whole : untouched).at(x, y, kBackground))
                    << x << ", " << y << ", row " << row;
            }
        }
    }

    // Which row of the picture is at a pixel; -1 for the background.
    static int rowAt(const ScreenModel &model, const Look &look, int x, int y) {
        const int canvasX = model.x().at[static_cast<std::size_t>(x)].first;
        const int canvasY = model.y().at[static_cast<std::size_t>(y)].first;
        if (canvasX >= model.x().canvas || canvasY >= model.y().canvas) {
            return -1;
        }
        const int place = look.turned() ? canvasX : canvasY;
        return look.rotation() == 1 || look.rotation() == 2 ? kHeight - 1 - place : place;
    }

    Host host_{kWindow.cx, kWindow.cy};
};

std::vector<DWORD> everyRow() {
    std::vector<DWORD> rows;
    for (DWORD row = 0; row < kHeight; ++row) {
        rows.push_back(row);
    }
    return rows;
}

TEST_F(ScreenModule, ItsLinesAreShown) {
    expectShown(everyRow());
}

TEST_F(ScreenModule, LinesFromTheBottomAreShown) {
    std::vector<DWORD> rows = everyRow();
    std::reverse(rows.begin(), rows.end());
    expectShown(rows);
}

TEST_F(ScreenModule, LinesFromHereAndThereAreShown) {
    std::vector<DWORD> rows;
    for (DWORD i = 0; i < kHeight; ++i) {
        rows.push_back(i * 77 % kHeight);
    }
    expectShown(rows);
}

TEST_F(ScreenModule, LinesThatAreLeftOutStayAsTheyWere) {
    expectShown({0, 1, 5, 6, 63, 64, 70, 140});
    std::vector<DWORD> even;
    for (DWORD row = 0; row < kHeight; row += 2) {
        even.push_back(row);
    }
    expectShown(even);
}

TEST_F(ScreenModule, RowsThatThePictureDoesNotHaveAreLeftOut) {
    expectShown({3, kHeight, kHeight + 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 4});
}

// Numbers that lead back into the picture when they are taken from its end, or cut to fewer bits.
TEST_F(ScreenModule, RowsBeforeTheFirstAndBehindTheLastChangeNothingInAnyRotation) {
    std::vector<DWORD> rows;
    for (const DWORD around : {DWORD{0}, DWORD{0x7FFFFFFF}, DWORD{0x80000000}, DWORD{0x80000000} + kHeight,
                               DWORD{0x10000}, DWORD{0xFFFF0000}, DWORD{2 * kHeight}, 0 - DWORD{kHeight}}) {
        for (int step = -2; step <= 2; ++step) {
            const DWORD row = around + static_cast<DWORD>(step);
            if (row >= kHeight) {
                rows.push_back(row);
            }
        }
    }
    for (const DWORD mode : {DWORD{0}, DWORD{VELLUM_SHOW_BY_RESOLUTION}}) {
        expectShown(rows, mode);
    }
    rows.push_back(0);
    rows.insert(rows.begin(), kHeight - 1);
    expectShown(rows);
}

TEST_F(ScreenModule, LinesThatComeTwiceAreShownOnce) {
    expectShown({3, 3, 100, 3, 100, 4});
}

} // namespace
