// LoadTiffIntoDIB with the information dialog in front, whose answer the test gives.
#include "display/pictures.h"
#include "native/shim.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;
namespace shim = vellum::shim;

// While it lives, the dialog ends with this.
class Answer {
public:
    explicit Answer(INT_PTR answer) {
        shim::state.infoDialogAnswer = answer;
        shim::state.infoDialogs = 0;
    }
    Answer(const Answer &) = delete;
    Answer &operator=(const Answer &) = delete;
    ~Answer() { shim::state.infoDialogAnswer = IDCANCEL; }
};

Outcome load(const char *path, LONG showInfo) {
    SetTiffError(VELLUM_NOT_CALS);
    const Dib dib(LoadTiffIntoDIB(path, 0, showInfo));
    return {dib ? 1U : 0U, TiffError()};
}

TEST(LoadDibAsking, TheAnswerDecidesAboutPictureAndError) {
    const TempFile file(picture(9, 4, {8, 1}).tiff());
    struct Row {
        INT_PTR answer;
        Outcome outcome;
    };
    const Row rows[] = {{1, kDecoded},
                        {2, failedWith(VELLUM_OK)},
                        {0, failedWith(VELLUM_NO_MEMORY)},
                        {-1, failedWith(VELLUM_NO_MEMORY)},
                        {3, failedWith(VELLUM_NO_MEMORY)}};
    for (const Row &row : rows) {
        const Answer answer(row.answer);
        EXPECT_EQ(load(file.path(), 1), row.outcome) << row.answer;
        EXPECT_EQ(shim::state.infoDialogs, 1);
    }
}

TEST(LoadDibAsking, NobodyIsAskedWithoutShowInfoOrWithoutAnImage) {
    const TempFile file(picture(9, 4, {8, 1}).tiff());
    const Answer answer(IDCANCEL);
    EXPECT_EQ(load(file.path(), 0), kDecoded);
    EXPECT_EQ(load("no such file.tif", 1), failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(shim::state.infoDialogs, 0);
}

} // namespace
