// What the library relies on in the system's memory and file calls. The tests run on Windows as well as on the shim of
// the native builds, and so hold the shim to the real thing.
#include "support/global_memory.h"
#include "support/paths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace vellum::test {
namespace {

constexpr UINT kZeroedMovable = GMEM_MOVEABLE | GMEM_ZEROINIT;

TEST(GlobalMemory, SizeIsExact) {
    for (const SIZE_T size : {1ul, 2ul, 3ul, 13ul, 14176ul, 100003ul}) {
        HGLOBAL block = GlobalAlloc(kZeroedMovable, size);
        EXPECT_EQ(GlobalSize(block), size);
        EXPECT_EQ(blockBytes(block), Bytes(size, 0));
        GlobalFree(block);
    }
}

TEST(GlobalMemory, ReallocationKeepsTheHandleAndZeroesTheGrowth) {
    HGLOBAL block = makeBlock({1, 2, 3});
    EXPECT_EQ(GlobalReAlloc(block, 6, kZeroedMovable), block);
    EXPECT_EQ(blockBytes(block), (Bytes{1, 2, 3, 0, 0, 0}));
    EXPECT_EQ(GlobalReAlloc(block, 2, kZeroedMovable), block);
    EXPECT_EQ(blockBytes(block), (Bytes{1, 2}));
    GlobalFree(block);
}

TEST(GlobalMemory, ALockedBlockMovesOnlyWhenTheCallAllowsIt) {
    HGLOBAL block = makeBlock({1, 2, 3});
    ASSERT_NE(GlobalLock(block), nullptr);
    EXPECT_EQ(GlobalReAlloc(block, 100000, GMEM_ZEROINIT), nullptr);
    EXPECT_EQ(GlobalSize(block), 3u);
    EXPECT_EQ(GlobalReAlloc(block, 100000, kZeroedMovable), block);
    EXPECT_EQ(GlobalSize(block), 100000u);
    EXPECT_EQ(lockCount(block), 1u);
    GlobalUnlock(block);
    GlobalFree(block);
}

TEST(GlobalMemory, LocksAreCounted) {
    HGLOBAL block = makeBlock({1});
    EXPECT_EQ(lockCount(block), 0u);
    void *bytes = GlobalLock(block);
    EXPECT_EQ(GlobalLock(block), bytes);
    EXPECT_EQ(lockCount(block), 2u);
    EXPECT_TRUE(GlobalUnlock(block));
    EXPECT_FALSE(GlobalUnlock(block));
    EXPECT_EQ(lockCount(block), 0u);
    EXPECT_FALSE(GlobalUnlock(block)); // one too many does no harm
    EXPECT_EQ(lockCount(block), 0u);
    GlobalFree(block);
}

TEST(GlobalMemory, ThereIsNoBlockOfThreeGigabytes) {
    EXPECT_EQ(GlobalAlloc(kZeroedMovable, 0xC0000000u), nullptr);
}

TEST(GlobalMemory, NullIsNoBlock) {
    EXPECT_EQ(GlobalLock(nullptr), nullptr);
    EXPECT_EQ(GlobalSize(nullptr), 0u);
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
}

HFILE openToRead(const char *path) {
    OFSTRUCT opened;
    return OpenFile(path, &opened, OF_READ | OF_SHARE_DENY_WRITE);
}

TEST(Files, ReadsStopAtTheEnd) {
    const TempFile file(Bytes{1, 2, 3, 4, 5});
    const HFILE handle = openToRead(file.path());
    ASSERT_NE(handle, HFILE_ERROR);
    EXPECT_GT(handle, 0);
    Bytes read(8, 0xEE);
    EXPECT_EQ(_lread(handle, read.data(), 3), 3u);
    EXPECT_EQ(_lread(handle, read.data() + 3, 5), 2u);
    EXPECT_EQ(read, (Bytes{1, 2, 3, 4, 5, 0xEE, 0xEE, 0xEE}));
    EXPECT_EQ(_lread(handle, read.data(), 1), 0u);
    EXPECT_EQ(_lclose(handle), 0);
}

TEST(Files, SeeksFromAllThreeOrigins) {
    const TempFile file(Bytes(10, 0));
    const HFILE handle = openToRead(file.path());
    EXPECT_EQ(_llseek(handle, 4, FILE_BEGIN), 4);
    EXPECT_EQ(_llseek(handle, 3, FILE_CURRENT), 7);
    EXPECT_EQ(_llseek(handle, -2, FILE_CURRENT), 5);
    EXPECT_EQ(_llseek(handle, -1, FILE_END), 9);
    EXPECT_EQ(_llseek(handle, 100, FILE_BEGIN), 100); // behind the end is a position like any other
    BYTE byte = 0;
    EXPECT_EQ(_lread(handle, &byte, 1), 0u);
    EXPECT_EQ(_llseek(handle, -1, FILE_BEGIN), -1);
    EXPECT_EQ(_llseek(handle, 0, FILE_CURRENT), 100);
    _lclose(handle);
}

TEST(Files, WritesBehindTheEndFillTheGapWithZeros) {
    const TempFile file;
    OFSTRUCT opened;
    const HFILE handle = OpenFile(file.path(), &opened, OF_CREATE | OF_SHARE_DENY_READ | OF_READWRITE);
    ASSERT_NE(handle, HFILE_ERROR);
    EXPECT_EQ(_lwrite(handle, "ab", 2), 2u);
    EXPECT_EQ(_llseek(handle, 4, FILE_BEGIN), 4);
    EXPECT_EQ(_lwrite(handle, "c", 1), 1u);
    _lclose(handle);
    EXPECT_EQ(readFile(file.path()), (Bytes{'a', 'b', 0, 0, 'c'}));
}

TEST(Files, WritingNothingCutsTheFile) {
    const TempFile file(Bytes{1, 2, 3, 4, 5});
    OFSTRUCT opened;
    const HFILE handle = OpenFile(file.path(), &opened, OF_READWRITE);
    ASSERT_NE(handle, HFILE_ERROR);
    EXPECT_EQ(_llseek(handle, 2, FILE_BEGIN), 2);
    EXPECT_EQ(_lwrite(handle, "", 0), 0u);
    _lclose(handle);
    EXPECT_EQ(readFile(file.path()), (Bytes{1, 2}));
}

TEST(Files, AMissingFileAndAFolderDoNotOpen) {
    EXPECT_EQ(openToRead((tempFolder() + "/no such file.tif").c_str()), HFILE_ERROR);
    EXPECT_EQ(openToRead(tempFolder().c_str()), HFILE_ERROR);
    EXPECT_EQ(CreateFileA(tempFolder().c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                          FILE_ATTRIBUTE_NORMAL, nullptr),
              INVALID_HANDLE_VALUE);
}

// A file whose full path has exactly this many characters: in a folder of its own with a long name.
class FileWithLongPath {
public:
    FileWithLongPath(std::size_t length, const Bytes &content) {
        const std::string parent = std::filesystem::temp_directory_path().string();
        const std::string name = "/vellum-native-test.tif";
        const std::size_t slash = parent.back() == '/' || parent.back() == '\\' ? 0 : 1;
        folder_ = parent + std::string(slash, '/') + std::string(length - parent.size() - slash - name.size(), 'd');
        std::filesystem::create_directory(folder_);
        path_ = folder_ + name;
        EXPECT_EQ(path_.size(), length);
        EXPECT_TRUE(writeFile(path_, content)) << path_;
    }
    FileWithLongPath(const FileWithLongPath &) = delete;
    FileWithLongPath &operator=(const FileWithLongPath &) = delete;
    ~FileWithLongPath() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    [[nodiscard]] const char *path() const { return path_.c_str(); }
    [[nodiscard]] const std::string &folder() const { return folder_; }

private:
    std::string folder_;
    std::string path_;
};

TEST(Files, OpenFileTakesPathsOfUpTo127Characters) {
    const FileWithLongPath longest(127, {7});
    const HFILE handle = openToRead(longest.path());
    EXPECT_NE(handle, HFILE_ERROR);
    _lclose(handle);
    EXPECT_EQ(openToRead(FileWithLongPath(128, {7}).path()), HFILE_ERROR);
}

TEST(Files, OpenFileCountsTheFullPathOfARelativeOne) {
    const FileWithLongPath file(140, {7});
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(file.folder());
    EXPECT_EQ(openToRead("vellum-native-test.tif"), HFILE_ERROR);
    std::filesystem::current_path(before);
    // Detours in a path do not count.
    const TempFile simple(Bytes{7});
    std::string detour = simple.path();
    for (int i = 0; i < 60; ++i) {
        detour.insert(detour.find_last_of("/\\"), "/.");
    }
    const HFILE handle = openToRead(detour.c_str());
    EXPECT_NE(handle, HFILE_ERROR) << detour;
    _lclose(handle);
}

TEST(Files, HandlesOfCreateFileServeTheOldCallsAndTakeLongerPaths) {
    const FileWithLongPath file(149, {7, 8});
    HANDLE handle =
        CreateFileA(file.path(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    const auto old = static_cast<HFILE>(reinterpret_cast<std::intptr_t>(handle));
    EXPECT_GT(old, 0);
    BYTE bytes[2] = {};
    EXPECT_EQ(_lread(old, bytes, 2), 2u);
    EXPECT_EQ(bytes[1], 8);
    EXPECT_EQ(_lclose(old), 0);
}

TEST(Numbers, MulDivRounds) {
    EXPECT_EQ(MulDiv(7, 1, 2), 4);
    EXPECT_EQ(MulDiv(-7, 1, 2), -4);
    EXPECT_EQ(MulDiv(7, 1, -2), -4);
    EXPECT_EQ(MulDiv(0x7FFFFFFF, 2, 2), 0x7FFFFFFF);
    EXPECT_EQ(MulDiv(0x7FFFFFFF, 2, 1), -1);
    EXPECT_EQ(MulDiv(1, 1, 0), -1);
}

} // namespace
} // namespace vellum::test
