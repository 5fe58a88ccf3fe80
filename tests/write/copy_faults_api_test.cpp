// Every system call of a copy or a rebuild fails in turn: a file that was there is as it was, the pages of a chain stay
// readable, and no file is left behind (nor anything open, locked or allocated: natively the shim sees to that).
#include "support/decode_lines.h"
#include "support/encode_lines.h"
#include "support/faults.h"
#include "write/pages_to_copy.h"
#include "write/raw_pages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace {

using namespace vellum::test;

constexpr Call kCalls[] = {Call::Allocate, Call::Reallocate, Call::Open, Call::Read,
                           Call::Write,    Call::Seek,       Call::Move};

// Short enough for every call to fail in turn, with all that a copy can meet.
Bytes smallFile() {
    tiff::Builder file(tiff::kMM);
    file.page(plainEntries(2, 4, {tiff::ascii(305, "some text")}), {{1, 2, 3}, tiff::Bytes(33000, 7)});
    file.page(plainEntries(1, 4, {tiff::typed(65007, 10, 1, 4, {7, 9})}), {{4, 5}});
    return file.bytes();
}

struct FaultRun {
    std::function<DWORD()> call;
    std::function<void()> prepare;
    std::function<void(bool done)> check;
    std::vector<DWORD> allowed;
};

// Result: how many calls of this kind there are.
long failEach(Call call, const FaultRun &run) {
    for (long nth = 0; nth < 2000; ++nth) {
        SCOPED_TRACE(::testing::Message() << "call kind " << static_cast<int>(call) << ", number " << nth);
        run.prepare();
        SetTiffError(VELLUM_EOFB_MISSING);
        DWORD result = 0;
        bool happened = false;
        {
            const FailNth fault(call, nth);
            result = run.call();
            happened = fault.happened();
        }
        const DWORD error = TiffError();
        run.check(result == 1);
        if (!happened) {
            EXPECT_EQ(result, 1u);
            return nth;
        }
        if (result == 0) {
            EXPECT_NE(std::find(run.allowed.begin(), run.allowed.end(), error), run.allowed.end()) << error;
        } else {
            EXPECT_EQ(error, DWORD{VELLUM_OK});
        }
        if (::testing::Test::HasFailure()) {
            break;
        }
    }
    ADD_FAILURE() << "the call never ends";
    return 0;
}

class CopyFaults : public ::testing::TestWithParam<Call> {
protected:
    const Bytes original_ = smallFile();
    TempFolder folder_;
    const std::string from_ = folder_.file("from.tif");
    const std::string to_ = folder_.file("to.tif");

    void expectSource() const { EXPECT_TRUE(readFile(from_) == original_) << "the source has changed"; }
    [[nodiscard]] static std::vector<DWORD> allowed() {
        switch (GetParam()) {
        case Call::Allocate:
        case Call::Reallocate:
            return {VELLUM_NO_MEMORY};
        case Call::Open:
            return {VELLUM_IO_ERROR, VELLUM_NO_MEMORY}; // 1: a file that opened, but not as a TIFF
        case Call::Read:
            return {VELLUM_IO_ERROR, VELLUM_NO_MEMORY, VELLUM_NOT_TIFF};
        default:
            return {VELLUM_IO_ERROR, VELLUM_NO_MEMORY};
        }
    }

    // A rebuild of the file, in which a tag changes.
    void rebuild(const std::function<DWORD()> &call, unsigned edited) {
        FaultRun run{call, [this] { folder_.add("from.tif", original_); }, {}, allowed()};
        run.check = [this, edited](bool done) {
            EXPECT_EQ(folder_.names(), std::vector<std::string>{"from.tif"});
            if (!done) {
                expectSource();
                return;
            }
            const RawTiff rebuilt(from_);
            EXPECT_TRUE(rebuilt.whole);
            ASSERT_EQ(rebuilt.pages.size(), 2u);
            for (std::size_t page = 0; page < 2; ++page) {
                expectCopied(rebuilt.pages[page], RawTiff(original_).pages[page], {edited});
            }
        };
        EXPECT_GT(failEach(GetParam(), run), 0) << "there is no such call";
    }
};

class AddFaults : public CopyFaults {};
class DeleteFaults : public CopyFaults {};

TEST_P(AddFaults, AddingATag) {
    rebuild([this] { return AddTiffTagToImage(from_.c_str(), 1, 315, 2, "somebody", 9); }, 315);
}

TEST_P(DeleteFaults, DeletingATag) {
    rebuild([this] { return DeleteTiffTagOfImage(from_.c_str(), 0, 305); }, 305);
}

TEST_P(CopyFaults, CopyingIntoANewFile) {
    folder_.add("from.tif", original_);
    const FaultRun run{[this] { return CopyTiffImageInFile(from_.c_str(), 0, to_.c_str(), T_CREAT); },
                       [this] { std::filesystem::remove(to_); },
                       [this](bool done) {
                           expectSource();
                           if (done) {
                               const RawTiff copy(to_);
                               ASSERT_EQ(copy.pages.size(), 1u);
                               expectCopied(copy.pages[0], RawTiff(original_).pages[0]);
                           } else if (const auto begun = readFile(to_); begun && begun->size() >= 8) {
                               EXPECT_EQ(GetNumberOfImagesInTiffFile(to_.c_str()), 0u);
                           }
                       },
                       allowed()};
    EXPECT_GT(failEach(GetParam(), run), 0);
}

TEST_P(CopyFaults, AppendingToAFile) {
    folder_.add("from.tif", original_);
    const Bytes existing = manyPages(tiff::kMM);
    // A file that cannot be looked into is not replaced.
    const FaultRun run{[this] { return CopyTiffImageInFile(from_.c_str(), 1, to_.c_str(), T_APPEND); },
                       [this, &existing] { folder_.add("to.tif", existing); },
                       [this, &existing](bool done) {
                           expectSource();
                           const RawTiff before(existing);
                           const RawTiff after(to_);
                           ASSERT_EQ(after.pages.size(), done ? 5u : 4u);
                           EXPECT_TRUE(after.whole);
                           for (std::size_t page = 0; page < 4; ++page) {
                               EXPECT_TRUE(after.pages[page].entries == before.pages[page].entries);
                               EXPECT_TRUE(after.pages[page].strips == before.pages[page].strips);
                           }
                           if (done) {
                               expectCopied(after.pages[4], RawTiff(original_).pages[1]);
                           }
                       },
                       allowed()};
    EXPECT_GT(failEach(GetParam(), run), 0);
}

std::string callName(const ::testing::TestParamInfo<Call> &call) {
    constexpr const char *kNames[] = {"Allocate", "Reallocate", "Open", "Read", "Write", "Seek", "Move"};
    return kNames[static_cast<int>(call.param)];
}

// Each with the kinds of calls that it makes: nothing grows where no tag is added, and only a rebuild moves a file.
INSTANTIATE_TEST_SUITE_P(Each, AddFaults, ::testing::ValuesIn(kCalls), callName);
INSTANTIATE_TEST_SUITE_P(Each, DeleteFaults,
                         ::testing::Values(Call::Allocate, Call::Open, Call::Read, Call::Write, Call::Seek, Call::Move),
                         callName);
INSTANTIATE_TEST_SUITE_P(Each, CopyFaults,
                         ::testing::Values(Call::Allocate, Call::Open, Call::Read, Call::Write, Call::Seek), callName);

TEST(CopyDeleteFault, ATemporaryFileThatCannotBeDeletedDoesNoHarm) {
    const Bytes original = smallFile();
    const TempFolder folder;
    const std::string file = folder.add("file.tif", original);
    {
        const FailNth move(Call::Move, 0);
        const FailNth remove(Call::Delete, 0);
        EXPECT_EQ(AddTiffTagToImage(file.c_str(), 0, 315, 2, "a", 2), 0u);
        EXPECT_TRUE(remove.happened());
    }
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_TRUE(readFile(file) == original);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"file.tif", "file.~~~"}));
    // The next call leaves it alone, too: it is as good as a user's now.
    EXPECT_EQ(AddTiffTagToImage(file.c_str(), 0, 315, 2, "a", 2), 1u);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"file.tif", "file.~~~"}));
}

TEST(CopyMemoryFault, ABlockThatCannotGrowKeepsItsChain) {
    const TempFile from(smallFile());
    for (long nth = 0;; ++nth) {
        ASSERT_LT(nth, 100);
        const OpenedTiff source{std::string(from.path())};
        const WrittenTiff destination;
        ASSERT_EQ(CopyTiffImage(source.get(), 1, destination.get()), 1u);
        DWORD result = 0;
        bool happened = false;
        {
            const FailNth fault(Call::Reallocate, nth);
            result = CopyTiffImage(source.get(), 0, destination.get());
            happened = fault.happened();
        }
        const RawTiff memory(destination.memory());
        EXPECT_TRUE(memory.whole);
        EXPECT_EQ(memory.pages.size(), result == 1 ? 2u : 1u);
        if (!happened) {
            EXPECT_EQ(result, 1u);
            EXPECT_GT(nth, 0);
            break;
        }
    }
}

} // namespace
