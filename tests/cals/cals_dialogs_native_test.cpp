// What becomes of the user's answers in front of loading and saving, under the sanitizers: the dialogs are the test
// itself.
#include "cals/cals_pictures.h"
#include "native/shim.h"
#include "support/decode_lines.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

std::string shownPath;

// What the user does in the two dialogs, as long as the object lives.
class UserWho {
public:
    explicit UserWho(LONG (*info)(const char *)) { shim::state.inCalsInfo = info; }
    explicit UserWho(LONG (*edit)(const char *, char *)) { shim::state.inCalsEdit = edit; }
    UserWho(const UserWho &) = delete;
    UserWho &operator=(const UserWho &) = delete;
    ~UserWho() {
        shim::state.inCalsInfo = nullptr;
        shim::state.inCalsEdit = nullptr;
    }
};

struct Loaded {
    bool picture;
    DWORD error;
    bool operator==(const Loaded &) const = default;
};
Loaded loadAsking(const char *path) {
    shownPath.clear();
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    const OwnedBlock dib(LoadCALSIntoDIB(path, 1));
    return {static_cast<bool>(dib), TiffError()};
}

template <LONG answer>
LONG answerInfo(const char *path) {
    shownPath = path;
    return answer;
}

TEST(LoadCalsAsking, OkLoadsCancelIsNoErrorAndNoDialogIsError1) {
    const TempFile file(bilevelPicture(9, 4).file());
    {
        const UserWho user(&answerInfo<1>);
        EXPECT_EQ(loadAsking(file.path()), (Loaded{true, VELLUM_OK}));
        EXPECT_EQ(shownPath, file.path());
    }
    {
        const UserWho user(&answerInfo<2>);
        EXPECT_EQ(loadAsking(file.path()), (Loaded{false, VELLUM_OK}));
    }
    for (auto *answer : {&answerInfo<-1>, &answerInfo<0>, &answerInfo<3>}) {
        const UserWho user(answer);
        EXPECT_EQ(loadAsking(file.path()), (Loaded{false, VELLUM_NO_MEMORY}));
    }
}

TEST(LoadCalsAsking, TheDialogComesBeforeTheFileIsLookedAt) {
    const UserWho user(&answerInfo<1>);
    EXPECT_EQ(loadAsking(TempFile().path()), (Loaded{false, VELLUM_IO_ERROR}));
    EXPECT_FALSE(shownPath.empty());
}

Outcome saveAsking(const char *path, const DibBlock &dib) {
    shownPath.clear();
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    const DWORD result = SaveDIBInCALSFormat(path, dib.get(), nullptr, nullptr, 1);
    EXPECT_EQ(lockCount(dib.get()), 0U);
    return {result, TiffError()};
}

template <LONG answer>
LONG answerEdit(const char *path, char *header) {
    shownPath = path;
    std::memcpy(FindCALSRecord(header, "notes: "), "notes: EDIT", 11);
    return answer;
}

// By design: Cancel counts as success.
TEST(SaveCalsAsking, CancelIsSuccessWithoutAFile) {
    const UserWho user(&answerEdit<2>);
    const DibBlock dib(PackedDib(20, 5, 1));
    const TempFile file;
    EXPECT_EQ(saveAsking(file.path(), dib), kDecoded);
    EXPECT_FALSE(readFile(file.path()));
    const Bytes before(10, BYTE{1});
    const TempFile there(before);
    EXPECT_EQ(saveAsking(there.path(), dib), kDecoded);
    EXPECT_EQ(readFile(there.path()), before);
}

TEST(SaveCalsAsking, WithoutADialogNothingIsSaved) {
    const DibBlock dib(PackedDib(20, 5, 1));
    for (auto *answer : {&answerEdit<-1>, &answerEdit<0>}) {
        const UserWho user(answer);
        const TempFile file;
        EXPECT_EQ(saveAsking(file.path(), dib), failedWith(VELLUM_NO_MEMORY));
        EXPECT_FALSE(readFile(file.path()));
    }
}

TEST(SaveCalsAsking, OkWritesTheHeaderAsItIsThen) {
    const UserWho user(&answerEdit<1>);
    const DibBlock dib(PackedDib(20, 5, 1));
    const TempFile file;
    ASSERT_EQ(saveAsking(file.path(), dib), kDecoded);
    EXPECT_EQ(shownPath, file.path());
    const Records records = recordsOf(readFile(file.path()).value_or(Bytes()));
    ASSERT_EQ(records.size(), 16U);
    EXPECT_EQ(records[10], blankPadded("notes: EDIT"));
}

TEST(SaveCalsAsking, IsNotDoneForWhatCannotBeSaved) {
    const UserWho user(&answerEdit<1>);
    const TempFile file;
    EXPECT_EQ(saveAsking(file.path(), DibBlock(PackedDib(20, 5, 8))), failedWith(VELLUM_BAD_COLOR_FORMAT));
    EXPECT_EQ(saveAsking(file.path(), DibBlock(PackedDib(33281, 1, 1))), failedWith(VELLUM_CODE_ERROR));
    EXPECT_TRUE(shownPath.empty());
}

} // namespace
} // namespace vellum::test
