// Message boxes of the library, whose message loop lets the program paint: no second box while one is open, and what
// is painted meanwhile does not change what the first painting says.
#include "cals/cals_pictures.h"
#include "support/import_patch.h"
#include "support/jpeg_tiff.h"
#include "support/screen_painting.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace vellum::test;

constexpr SIZE kWindow = {71, 63};
constexpr int kBoxesAtMost = 5; // in one another, for a library that goes on showing them

struct {
    ImportPatch patch;
    int count = 0;
    int open = 0;
    std::function<void()> program;
} box;

int WINAPI runProgram(HWND, LPCSTR, LPCSTR, UINT) {
    ++box.count;
    if (++box.open <= kBoxesAtMost) {
        box.program();
    }
    --box.open;
    return IDOK;
}

// While it lives, a program runs while a message box is open; that is then closed.
class ProgramAtBox {
public:
    explicit ProgramAtBox(std::function<void()> program) {
        box.count = 0;
        box.program = std::move(program);
        box.patch.replace("MessageBoxA", &runProgram);
    }
    ProgramAtBox(const ProgramAtBox &) = delete;
    ProgramAtBox &operator=(const ProgramAtBox &) = delete;
    ~ProgramAtBox() { box.patch.restore(); }

    [[nodiscard]] static int boxes() { return box.count; }
};

Bytes twoBitTiff() {
    const ScreenPicture picture = screenPicture(8, 4, 8);
    std::vector<tiff::Entry> entries = picture.entries();
    entries[2] = tiff::shorts(258, {2});
    tiff::Builder builder;
    builder.page(entries, {picture.packed()});
    return builder.bytes();
}

class ScreenBoxes : public testing::Test {
protected:
    Outcome paintFirst(const TempFile &file, const Look &look = {}) {
        first_.reset();
        return paint(first_.window(), first_.dc(), file.path(), look);
    }
    // Another window of the program.
    Outcome paintMeanwhile(const TempFile &file, const Look &look = {}) {
        second_.reset();
        return paint(second_.window(), second_.dc(), file.path(), look);
    }

    Host first_{kWindow.cx, kWindow.cy};
    Host second_{kWindow.cx, kWindow.cy};
    const TempFile twoBits_{twoBitTiff()};
    const TempFile jpeg_{jpegTiff({})}; // whose module is not there
};

TEST_F(ScreenBoxes, APictureThatCannotBePaintedIsToldOnceHoweverOftenItIsPaintedMeanwhile) {
    for (const DWORD flags : fourTurns()) {
        SCOPED_TRACE(flags);
        std::vector<Outcome> meanwhile;
        const ProgramAtBox program([&] {
            for (int i = 0; i < 3; ++i) {
                meanwhile.push_back(paintMeanwhile(twoBits_, {flags}));
            }
        });
        EXPECT_EQ(paintFirst(twoBits_, {flags}), failedWith(VELLUM_BAD_COLOR_FORMAT));
        EXPECT_EQ(program.boxes(), 1);
        EXPECT_EQ(meanwhile, std::vector<Outcome>(3, failedWith(VELLUM_BAD_COLOR_FORMAT)));
    }
}

TEST_F(ScreenBoxes, TheNextPictureThatCannotBePaintedIsToldAgain) {
    const ProgramAtBox program([&] { paintMeanwhile(twoBits_); });
    for (int round = 1; round <= 3; ++round) {
        EXPECT_EQ(paintFirst(twoBits_), failedWith(VELLUM_BAD_COLOR_FORMAT));
        EXPECT_EQ(program.boxes(), round);
    }
    EXPECT_EQ(paintFirst(jpeg_), kDecoded);
    EXPECT_EQ(program.boxes(), 4);
}

TEST_F(ScreenBoxes, AJpegPictureWithoutItsModuleIsToldOnce) {
    for (const DWORD flags : fourTurns()) {
        SCOPED_TRACE(flags);
        std::vector<Outcome> meanwhile;
        const ProgramAtBox program([&] { meanwhile.push_back(paintMeanwhile(jpeg_, {flags})); });
        EXPECT_EQ(paintFirst(jpeg_, {flags}), kDecoded);
        EXPECT_EQ(program.boxes(), 1);
        EXPECT_EQ(meanwhile, std::vector<Outcome>{kDecoded});
        EXPECT_FALSE(first_.needsPainting());
        EXPECT_FALSE(second_.needsPainting());
    }
}

TEST_F(ScreenBoxes, OneKindOfBoxKeepsTheOthersAway) {
    {
        Outcome meanwhile{};
        const ProgramAtBox program([&] { meanwhile = paintMeanwhile(twoBits_); });
        EXPECT_EQ(paintFirst(jpeg_), kDecoded);
        EXPECT_EQ(program.boxes(), 1);
        EXPECT_EQ(meanwhile, failedWith(VELLUM_BAD_COLOR_FORMAT));
    }
    Outcome meanwhile{};
    const ProgramAtBox program([&] { meanwhile = paintMeanwhile(jpeg_); });
    EXPECT_EQ(paintFirst(twoBits_), failedWith(VELLUM_BAD_COLOR_FORMAT));
    EXPECT_EQ(program.boxes(), 1);
    EXPECT_EQ(meanwhile, kDecoded);
}

// The warning about a CALS file that ends early is such a box, too.
TEST_F(ScreenBoxes, AWarningOfALoaderIsOneAmongThem) {
    Bytes cut = bilevelPicture(64, 40).file();
    cut.resize(2048 + (cut.size() - 2048) / 2);
    const TempFile cals(cut);
    {
        const ProgramAtBox program([&] {
            EXPECT_TRUE(OwnedBlock(LoadCALSIntoDIB(cals.path(), 0)));
            EXPECT_EQ(TiffError(), DWORD{VELLUM_UNEXPECTED_END});
        });
        EXPECT_EQ(paintFirst(twoBits_), failedWith(VELLUM_BAD_COLOR_FORMAT));
        EXPECT_EQ(program.boxes(), 1);
    }
    const ProgramAtBox program([&] { EXPECT_EQ(paintMeanwhile(twoBits_), failedWith(VELLUM_BAD_COLOR_FORMAT)); });
    EXPECT_TRUE(OwnedBlock(LoadCALSIntoDIB(cals.path(), 0)));
    EXPECT_EQ(program.boxes(), 1);
}

// ---------------------------------------------------------------- what is painted meanwhile

TEST_F(ScreenBoxes, TheErrorStaysWhatWasToldWhenAnotherPictureIsPainted) {
    const ScreenPicture other = screenPicture(30, 20, 8);
    const TempFile file(other.tiff());
    for (const DWORD flags : fourTurns()) {
        SCOPED_TRACE(flags);
        const ProgramAtBox program([&] { EXPECT_EQ(paintMeanwhile(file, {flags}), kDecoded); });
        EXPECT_EQ(paintFirst(twoBits_, {flags}), failedWith(VELLUM_BAD_COLOR_FORMAT));
        EXPECT_EQ(program.boxes(), 1);
        EXPECT_TRUE(shows(second_.pixels(), ScreenModel(other, {flags}, {kWindow})));
        EXPECT_TRUE(first_.needsPainting());
    }
}

TEST_F(ScreenBoxes, TheErrorStaysWhatWasToldWhenAnotherPictureFails) {
    const TempFile noFile;
    const ProgramAtBox program([&] { EXPECT_EQ(paintMeanwhile(noFile), failedWith(VELLUM_IO_ERROR)); });
    EXPECT_EQ(paintFirst(twoBits_), failedWith(VELLUM_BAD_COLOR_FORMAT));
    EXPECT_EQ(program.boxes(), 1);
}

// The box of a missing module comes in the middle of a painting, whose place on the screen is known by then.
TEST_F(ScreenBoxes, APaintingGoesOnWhenAnotherPictureWasPaintedInItsMiddle) {
    const ScreenPicture other = screenPicture(30, 20, 8);
    const TempFile file(other.tiff());
    for (const DWORD flags : fourTurns()) {
        SCOPED_TRACE(flags);
        const ProgramAtBox program([&] { EXPECT_EQ(paintMeanwhile(file, {flags}), kDecoded); });
        EXPECT_EQ(paintFirst(jpeg_, {flags}), kDecoded);
        EXPECT_TRUE(shows(second_.pixels(), ScreenModel(other, {flags}, {kWindow})));
        EXPECT_EQ(first_.pixels().front(), kUntouched) << "the empty place of the picture";
        EXPECT_EQ(first_.pixels().back(), kBackground);
    }
}

} // namespace
