// vellum convert: what is on the disk when a TIFF could be written, and when it could not.
#include "cli/bitmaps.h"
#include "cli/small_tiffs.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;

TEST(ConvertTiffOutput, ReplacesAnExistingFile) {
    const WorkFolder folder;
    folder.put("small.tif", smallPage());
    folder.put("out.tif", Bytes(100000, 1));
    EXPECT_EQ(folder.run({"convert", "small.tif", "out.tif"}).status, 0U);
    EXPECT_LT(folder.get("out.tif").value_or(Bytes(100000)).size(), 1000U);
    EXPECT_EQ(folder.files(), (Names{"out.tif", "small.tif"}));
}

// What holds for outputs of both formats; the parameter is the extension.
class ConvertOutput : public testing::TestWithParam<std::string> {
protected:
    static std::string named(const std::string &stem) { return stem + GetParam(); }
};

TEST_P(ConvertOutput, TellsWhyItCannotBeWritten) {
    const WorkFolder folder;
    folder.put("small.tif", smallPage());
    const Outcome missing = folder.run({"convert", "small.tif", named("nowhere/small")});
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "vellum: " + named("nowhere/small") + ": cannot be written: there is no such folder.\n");
    EXPECT_EQ(missing.status, 1U);

    folder.makeFolder(named("folder"));
    const Outcome taken = folder.run({"convert", "small.tif", named("folder")});
    EXPECT_EQ(taken.out, "");
    EXPECT_EQ(taken.err, "vellum: " + named("folder") + ": cannot be written: access is denied.\n");
    EXPECT_EQ(taken.status, 1U);
    EXPECT_EQ(folder.files(), Names{"small.tif"});
}

TEST_P(ConvertOutput, AnOldFileThatIsInUseStaysAsItWas) {
    const WorkFolder folder;
    folder.put("small.tif", smallPage());
    folder.put(named("used"), {1, 2, 3});
    const HANDLE user = CreateFileA(folder.path(named("used")).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(user, INVALID_HANDLE_VALUE);
    const Outcome outcome = folder.run({"convert", "small.tif", named("used")});
    CloseHandle(user);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.rfind("vellum: " + named("used") + ": cannot be written: ", 0), 0U) << outcome.err;
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.get(named("used")), (Bytes{1, 2, 3}));
    EXPECT_EQ(folder.files(), (Names{"small.tif", named("used")}));
}

INSTANTIATE_TEST_SUITE_P(BothFormats, ConvertOutput, testing::Values(".bmp", ".tif"));

// Under Wine the file system asks the user's rights, and these tests may run as one who has all: a read-only file does
// as well as a read-only folder.
TEST(ConvertTiffOutput, AReadOnlyFileIsNotReplaced) {
    const WorkFolder folder;
    folder.put("small.tif", smallPage());
    folder.put("kept.tif", {1, 2, 3});
    const std::string path = folder.path("kept.tif");
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
    const Outcome outcome = folder.run({"convert", "small.tif", "kept.tif"});
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(outcome.err, "vellum: kept.tif: cannot be written: access is denied.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.get("kept.tif"), (Bytes{1, 2, 3}));
    EXPECT_EQ(folder.files(), (Names{"kept.tif", "small.tif"}));
}

TEST(ConvertTiffOutput, TellsWhyTheInputCannotBeRead) {
    const WorkFolder folder;
    const Outcome outcome = folder.run({"convert", "missing.tif", "small.tif"});
    EXPECT_EQ(outcome.err, "vellum: missing.tif: General I/O error in reading or writting. (no such file)\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.run({"convert", "missing.bmp", "small.tif"}).status, 1U);
    EXPECT_TRUE(folder.files().empty());
}

TEST(ConvertTiffOutput, ItsPathMayBeLongerThanTheLibraryTakes) {
    const WorkFolder folder;
    const std::string deep = std::string(110, 'd');
    folder.makeFolder(deep);
    folder.put("small.tif", smallPage());
    const std::string name = std::string(190, 'n') + ".tif";
    const Outcome outcome = folder.run({"convert", "small.tif", deep + "/" + name});
    EXPECT_EQ(outcome.out, deep + "/" + name + ": page 1: 8 x 2, 1 bit, g4\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(folder.run({"convert", "small.tif", "short.tif"}).status, 0U);
    const std::string path = "\\\\?\\" + folder.path(deep + "\\" + name);
    EXPECT_EQ(readFile(path), folder.get("short.tif"));
    DeleteFileA(path.c_str());

    // A file that is added to has to be one that the library can open.
    const std::string long150 = deep + "/" + std::string(35, 'n') + ".tif";
    ASSERT_EQ(long150.size(), 150U);
    folder.put(long150, smallPage());
    const Outcome appended = folder.run({"convert", "--append", "small.tif", long150});
    EXPECT_EQ(appended.err, "vellum: " + long150 + ": no page can be added: Pathname is longer than MAXPATH.\n");
    EXPECT_EQ(appended.status, 1U);
    EXPECT_EQ(folder.get(long150), smallPage());
}

TEST(ConvertTiffOutput, ItsNameMayHaveAnyLetters) {
    const std::string name = "\xC3\xA9t\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC"; // Latin and Japanese
    const WorkFolder folder;
    folder.put(name + ".bmp", bitmapFile(patternBitmap(24)));
    if (folder.files() != Names{name + ".bmp"}) {
        GTEST_SKIP() << "not tested: the file system does not keep such names (under Wine: set a UTF-8 locale)";
    }
    const Outcome outcome = folder.run({"convert", name + ".bmp", name + ".tif"});
    EXPECT_EQ(outcome.out, name + ".tif: page 1: 13 x 3, 24 bits, lzw-diff\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(folder.run({"convert", "--append", name + ".bmp", name + ".tif"}).status, 0U);
    EXPECT_EQ(folder.run({"check", "-q", name + ".tif"}).status, 0U);
    EXPECT_EQ(folder.files(), (Names{name + ".bmp", name + ".tif"}));
}

} // namespace
} // namespace vellum::test
