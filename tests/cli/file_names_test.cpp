// The names that vellum.exe takes: patterns, Unix paths, long paths, letters of all kinds.
#include "cli/small_tiffs.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

bool underWine() {
    return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
}

TEST(FileNames, PatternsStandForTheFilesThatMatch) {
    const WorkFolder folder;
    folder.makeFolder("in");
    folder.put("in/b.tif", smallPage());
    folder.put("in/a.tif", smallPage());
    folder.put("in/c.txt", {'x'});
    const Outcome outcome = folder.run({"check", "in/*.tif", "in/?.txt", "in/*.none"});
    EXPECT_EQ(outcome.out, R"(ok      in/a.tif: page 1 of 1
ok      in/b.tif: page 1 of 1
FAILED  in/c.txt: Invalid byte order.
FAILED  in/*.none: General I/O error in reading or writting.
2 pages in 4 files checked, 2 failures
)");
}

TEST(FileNames, BlanksAndAbsolutePathsServe) {
    const WorkFolder folder;
    folder.put("a b.tif", smallPage());
    const std::string path = folder.path("a b.tif");
    const Outcome outcome = folder.run({"info", path});
    EXPECT_EQ(outcome.out.rfind(path + ": 1 page, ", 0), 0U) << outcome.out << outcome.err;
}

TEST(FileNames, UnixPathsServeUnderWine) {
    if (!underWine()) {
        GTEST_SKIP() << "not tested: this Windows has no Unix paths";
    }
    const WorkFolder folder;
    folder.put("small.tif", smallPage());
    using UnixName = char *(__cdecl *)(const wchar_t *);
    const FARPROC found = GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name");
    ASSERT_NE(found, nullptr);
    const auto unixName = reinterpret_cast<UnixName>(reinterpret_cast<void *>(found));
    const std::string windowsPath = folder.path("");
    const std::wstring widePath(windowsPath.begin(), windowsPath.end());
    char *const name = unixName(widePath.c_str());
    ASSERT_NE(name, nullptr);
    std::string path = name;
    HeapFree(GetProcessHeap(), 0, name);
    if (!path.ends_with('/')) {
        path += '/';
    }
    ASSERT_EQ(path.front(), '/');
    // The folder lies on drive C:, so that the path is right only when it is understood as a Unix one.
    const Outcome outcome = folder.run({"convert", path + "small.tif", path + "small.bmp"});
    EXPECT_EQ(outcome.out, path + "small.bmp: 8 x 2, 1 bit\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(folder.get("small.bmp"));
    const std::string verdict = "ok      " + path + "small.tif: page 1 of 1\n1 page in 1 file checked, no failure\n";
    EXPECT_EQ(folder.run({"check", path}).out, verdict);
    EXPECT_EQ(folder.run({"check", path.substr(0, path.size() - 1)}).out, verdict);
    EXPECT_EQ(folder.run({"check", path + "*.tif"}).out, verdict);
}

TEST(FileNames, TheLibraryReadsPathsOf149Characters) {
    const WorkFolder folder;
    const std::string deep = std::string(100, 'd');
    folder.makeFolder(deep);
    const std::string longest = deep + "/" + std::string(44, 'n') + ".tif";
    const std::string tooLong = deep + "/" + std::string(45, 'n') + ".tif";
    ASSERT_EQ(longest.size(), 149U);
    folder.put(longest, smallPage());
    folder.put(tooLong, smallPage());
    const Outcome good = folder.run({"info", longest});
    EXPECT_EQ(good.err, "");
    EXPECT_EQ(good.status, 0U);
    const Outcome outcome = folder.run({"info", tooLong});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vellum: " + tooLong + ": Pathname is longer than MAXPATH.\n");
    EXPECT_EQ(outcome.status, 1U);
}

TEST(FileNames, OutputPathsMayBeLonger) {
    const WorkFolder folder;
    const std::string deep = std::string(110, 'd');
    folder.makeFolder(deep);
    folder.put("small.tif", smallPage());
    const std::string output = deep + "/" + std::string(190, 'n') + ".bmp";
    const Outcome outcome = folder.run({"convert", "small.tif", output});
    EXPECT_EQ(outcome.out, output + ": 8 x 2, 1 bit\n");
    EXPECT_EQ(outcome.err, "");
    const std::string path = "\\\\?\\" + folder.path(deep + "\\" + std::string(190, 'n') + ".bmp");
    EXPECT_EQ(readFile(path).value_or(Bytes()).size(), 70U);
    DeleteFileA(path.c_str());
}

TEST(FileNames, LettersOutsideTheCodePageServe) {
    const std::string name = "\xC3\xA9t\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC.tif"; // Latin and Japanese
    const WorkFolder folder;
    folder.put(name, smallPage());
    if (folder.files() != std::vector<std::string>{name}) {
        GTEST_SKIP() << "not tested: the file system does not keep such names (under Wine: set a UTF-8 locale)";
    }
    const Outcome outcome = folder.run({"check", name, "."});
    EXPECT_EQ(outcome.out, "ok      " + name + ": page 1 of 1\nok      ./" + name +
                               ": page 1 of 1\n2 pages in 2 files checked, no failure\n");
    EXPECT_EQ(outcome.err, "");
}

} // namespace
} // namespace vellum::test
