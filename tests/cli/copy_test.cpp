// vellum copy and vellum merge: pages that go from file to file as they are coded.
#include "cli/copied_files.h"
#include "cli/tiff_look.h"
#include "cli/vellum_process.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;

std::vector<SeenPage> joined(std::vector<SeenPage> one, const std::vector<SeenPage> &other) {
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

// The byte of every page of pagesOf().
Bytes pixelsIn(const std::optional<Bytes> &file) {
    Bytes pixels;
    for (const SeenPage &page : pagesIn(file)) {
        EXPECT_EQ(page.pieces.size(), 1U);
        pixels.push_back(page.pieces.empty() || page.pieces[0].empty() ? BYTE{0} : page.pieces[0][0]);
    }
    return pixels;
}

TEST(Copy, KeepsTagsAndCodeOfEveryPage) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    const Outcome outcome = folder.run({"copy", "fax.tif", "out.tif"});
    EXPECT_EQ(outcome.out, "out.tif: page 1: fax.tif, page 1\n"
                           "out.tif: page 2: fax.tif, page 2\n"
                           "out.tif: page 3: fax.tif, page 3\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_EQ(folder.files(), (Names{"fax.tif", "out.tif"}));
    EXPECT_TRUE(pagesIn(folder.get("out.tif")) == pagesIn(bundled("fax.tif")));
    EXPECT_EQ(folder.run({"check", "-q", "out.tif"}).status, 0U);
}

TEST(Copy, KeepsTagsOfAllTypesInEitherByteOrder) {
    for (const unsigned order : {unsigned{tiff::kII}, unsigned{tiff::kMM}}) {
        const WorkFolder folder;
        folder.put("in.tif", richPage(order));
        const Outcome outcome = folder.run({"copy", "in.tif", "out.tif"});
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.status, 0U);
        EXPECT_TRUE(pagesIn(folder.get("out.tif")) == pagesIn(richPage(order))) << order;
        EXPECT_EQ(folder.get("out.tif").value_or(Bytes(1)).at(0), 'I');
    }
}

TEST(Copy, PagesComeInTheOrderInWhichTheyAreNamed) {
    const WorkFolder folder;
    folder.put("in.tif", pagesOf({0x11, 0x22, 0x33, 0x44, 0x55, 0x66}, tiff::kMM));
    EXPECT_EQ(folder.run({"copy", "in.tif:3,1,5-", "out.tif"}).out, "out.tif: page 1: in.tif, page 3\n"
                                                                    "out.tif: page 2: in.tif, page 1\n"
                                                                    "out.tif: page 3: in.tif, page 5\n"
                                                                    "out.tif: page 4: in.tif, page 6\n");
    EXPECT_EQ(pixelsIn(folder.get("out.tif")), (Bytes{0x33, 0x11, 0x55, 0x66}));
    EXPECT_EQ(folder.run({"copy", "in.tif:2-3,2", "--replace", "out.tif"}).status, 0U);
    EXPECT_EQ(pixelsIn(folder.get("out.tif")), (Bytes{0x22, 0x33, 0x22}));
}

TEST(Copy, AppendsToAFileOfEitherByteOrder) {
    for (const unsigned order : {unsigned{tiff::kII}, unsigned{tiff::kMM}}) {
        const WorkFolder folder;
        folder.put("new.tif", pagesOf({0x11, 0x22}, order == tiff::kII ? tiff::kMM : tiff::kII));
        folder.put("old.tif", richPage(order));
        const Outcome outcome = folder.run({"copy", "--append", "new.tif", "old.tif"});
        EXPECT_EQ(outcome.out, "old.tif: page 2: new.tif, page 1\nold.tif: page 3: new.tif, page 2\n");
        EXPECT_EQ(outcome.err, "");
        EXPECT_TRUE(pagesIn(folder.get("old.tif")) == joined(pagesIn(richPage(order)), pagesIn(pagesOf({0x11, 0x22}))));
        EXPECT_EQ(folder.files(), (Names{"new.tif", "old.tif"}));
        EXPECT_EQ(folder.run({"check", "-q", "old.tif"}).status, 0U);
    }
}

TEST(Copy, AppendsToAMissingFileByMakingIt) {
    const WorkFolder folder;
    folder.put("in.tif", pagesOf({0x11, 0x22}));
    EXPECT_EQ(folder.run({"copy", "in.tif:2", "out.tif", "--append"}).out, "out.tif: page 1: in.tif, page 2\n");
    EXPECT_EQ(pixelsIn(folder.get("out.tif")), (Bytes{0x22}));
}

TEST(Copy, AnExistingFileIsLeftAlone) {
    const WorkFolder folder;
    folder.put("in.tif", pagesOf({0x11}));
    folder.put("old.tif", {1, 2, 3});
    const Outcome outcome = folder.run({"copy", "in.tif", "old.tif"});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vellum: old.tif: is there already.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.get("old.tif"), (Bytes{1, 2, 3}));
    EXPECT_EQ(folder.run({"merge", "in.tif", "in.tif", "old.tif"}).err, outcome.err);
    EXPECT_EQ(folder.get("old.tif"), (Bytes{1, 2, 3}));
    EXPECT_EQ(folder.run({"copy", "in.tif", "old.tif", "--replace"}).status, 0U);
    EXPECT_EQ(pixelsIn(folder.get("old.tif")), (Bytes{0x11}));
}

struct Failure {
    Bytes file;
    std::string pages;
    std::string message;
};

TEST(Copy, WritesNothingUnlessEveryPageCanBeCopied) {
    tiff::Builder dataless;
    dataless.directory({tiff::shorts(256, {8}), tiff::shorts(257, {1})});
    const Failure failures[] = {
        {brokenFile(), "", std::string("in.tif: ") + kBrokenChain},
        {brokenFile(), ":3", "in.tif: there is no page 3; the file has 2."},
        {pagesOf({0x11, 0x22}), ":1,2-4", "in.tif: there is no page 3; the file has 2."},
        {fileWithDamagedPage(), "", "in.tif: page 2: Unexpected end of file in reading data."},
        {dataless.bytes(), "", "in.tif: page 1: Indispensable tags are missing."},
        {{'n', 'o', ' ', 't', 'i', 'f', 'f', '!'}, "", "in.tif: Invalid byte order."},
    };
    for (const Failure &failure : failures) {
        const WorkFolder folder;
        folder.put("in.tif", failure.file);
        folder.put("old.tif", pagesOf({0x77}));
        const std::string how = failure.pages.empty() ? "--append" : "--replace";
        const Outcome outcome = folder.run({"copy", how, "in.tif" + failure.pages, "old.tif"});
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "vellum: " + failure.message + "\n");
        EXPECT_EQ(outcome.status, 1U);
        EXPECT_EQ(folder.get("old.tif"), pagesOf({0x77}));
        EXPECT_EQ(folder.files(), (Names{"in.tif", "old.tif"}));
    }
}

// The good pages of such files can be had.
TEST(Copy, PagesBeforeTheDamageCanBeNamed) {
    const WorkFolder folder;
    folder.put("broken.tif", brokenFile());
    folder.put("damaged.tif", fileWithDamagedPage());
    EXPECT_EQ(folder.run({"copy", "broken.tif:1-2", "one.tif"}).status, 0U);
    EXPECT_EQ(pixelsIn(folder.get("one.tif")), (Bytes{0x11, 0x22}));
    EXPECT_EQ(folder.run({"copy", "damaged.tif:1", "two.tif"}).status, 0U);
    EXPECT_EQ(pixelsIn(folder.get("two.tif")), (Bytes{0x11}));
}

TEST(Copy, AFileThatCannotBeAddedToStaysAsItWas) {
    const Failure failures[] = {
        {brokenFile(), "", kBrokenChain},
        {{'n', 'o', ' ', 't', 'i', 'f', 'f', '!'}, "", "Invalid byte order."},
    };
    for (const Failure &failure : failures) {
        const WorkFolder folder;
        folder.put("in.tif", pagesOf({0x11}));
        folder.put("old.tif", failure.file);
        const Outcome outcome = folder.run({"copy", "--append", "in.tif", "old.tif"});
        EXPECT_EQ(outcome.err, "vellum: old.tif: no page can be added: " + failure.message + "\n");
        EXPECT_EQ(outcome.status, 1U);
        EXPECT_EQ(folder.get("old.tif"), failure.file);
        EXPECT_EQ(folder.files(), (Names{"in.tif", "old.tif"}));
    }
}

TEST(Copy, TagsThatLeadElsewhereAreLeftBehindWithAWarning) {
    tiff::Builder file;
    addPage(file, {0x11}, 1, 1);
    file.page({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::longs(34665, {8})}, {{0x22}});
    const std::string warning =
        "vellum: in.tif: page 2: warning: ExifIFD (34665) and the data that it leads to are not copied.\n";
    const WorkFolder folder;
    folder.put("in.tif", file.bytes());
    for (const std::vector<std::string> &words : {std::vector<std::string>{"copy", "in.tif", "in-002.tif"},
                                                  {"merge", "in.tif", "in-002.tif", "--replace"},
                                                  {"split", "in.tif:2"}}) {
        const Outcome outcome = folder.run(words);
        EXPECT_EQ(outcome.err, warning);
        EXPECT_NE(outcome.out, "");
        EXPECT_EQ(outcome.status, 1U);
        std::vector<SeenPage> expected = pagesIn(file.bytes());
        expected.at(1).tags.erase(34665);
        EXPECT_TRUE(pagesIn(folder.get("in-002.tif")).back() == expected.at(1)) << words[0];
    }
    EXPECT_EQ(folder.run({"copy", "in.tif:1", "one.tif"}).status, 0U);
}

// What was there stays byte for byte, but for the last link: also what the library knows nothing of.
TEST(Copy, AppendingKeepsTheOldPagesAsTheyAre) {
    for (const unsigned order : {unsigned{tiff::kII}, unsigned{tiff::kMM}}) {
        tiff::Builder old(static_cast<std::uint16_t>(order));
        old.page({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::longs(330, {8})}, {{0x11}});
        const WorkFolder folder;
        folder.put("in.tif", pagesOf({0x22}));
        folder.put("old.tif", old.bytes());
        EXPECT_EQ(folder.run({"copy", "--append", "in.tif", "old.tif"}).err, "");
        Bytes enlarged = folder.get("old.tif").value_or(Bytes());
        ASSERT_GT(enlarged.size(), old.bytes().size());
        enlarged.resize(old.bytes().size());
        std::fill_n(enlarged.begin() + static_cast<std::ptrdiff_t>(old.lastLink()), 4, BYTE{0});
        EXPECT_EQ(enlarged, old.bytes());
        EXPECT_EQ(pixelsIn(folder.get("old.tif")), (Bytes{0x11, 0x22}));
    }
}

TEST(Copy, AFileThatIsReadOnlyOrInUseStaysAsItWas) {
    const WorkFolder folder;
    folder.put("in.tif", pagesOf({0x11}));
    folder.put("old.tif", pagesOf({0x22}));
    const std::string path = folder.path("old.tif");
    for (const std::string how : {"--append", "--replace"}) {
        SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
        const Outcome denied = folder.run({"copy", how, "in.tif", "old.tif"});
        SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        EXPECT_EQ(denied.err, "vellum: old.tif: cannot be written: access is denied.\n");
        EXPECT_EQ(denied.status, 1U);
        const HANDLE user =
            CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(user, INVALID_HANDLE_VALUE);
        const Outcome used = folder.run({"copy", how, "in.tif", "old.tif"});
        CloseHandle(user);
        EXPECT_EQ(used.err.rfind("vellum: old.tif: cannot be written: ", 0), 0U) << used.err;
        EXPECT_EQ(used.status, 1U);
        EXPECT_EQ(folder.get("old.tif"), pagesOf({0x22}));
    }
    EXPECT_EQ(folder.files(), (Names{"in.tif", "old.tif"}));
}

TEST(Merge, PutsAllPagesOfAllInputsIntoOneFile) {
    const WorkFolder folder;
    folder.put("one.tif", pagesOf({0x11, 0x22}));
    folder.put("two.tif", pagesOf({0x33}, tiff::kMM));
    folder.put("rich.tif", richPage(tiff::kMM));
    const Outcome outcome = folder.run({"merge", "one.tif", "two.tif", "rich.tif", "out.tif"});
    EXPECT_EQ(outcome.out, "out.tif: page 1: one.tif, page 1\n"
                           "out.tif: page 2: one.tif, page 2\n"
                           "out.tif: page 3: two.tif, page 1\n"
                           "out.tif: page 4: rich.tif, page 1\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_TRUE(pagesIn(folder.get("out.tif")) ==
                joined(pagesIn(pagesOf({0x11, 0x22, 0x33})), pagesIn(richPage(0x4D4D))));
    EXPECT_EQ(folder.run({"check", "-q", "out.tif"}).status, 0U);
}

TEST(Merge, TakesPatternsAndPages) {
    const WorkFolder folder;
    folder.makeFolder("in");
    folder.put("in/b.tif", pagesOf({0x33, 0x44}));
    folder.put("in/a.tif", pagesOf({0x11, 0x22}));
    EXPECT_EQ(folder.run({"merge", "in/*.tif:2", "in/a.tif:1", "out.tif"}).out, "out.tif: page 1: in/a.tif, page 2\n"
                                                                                "out.tif: page 2: in/b.tif, page 2\n"
                                                                                "out.tif: page 3: in/a.tif, page 1\n");
    EXPECT_EQ(pixelsIn(folder.get("out.tif")), (Bytes{0x22, 0x44, 0x11}));
}

TEST(Merge, TellsOfEveryInputThatFailsAndWritesNothing) {
    const WorkFolder folder;
    folder.put("good.tif", pagesOf({0x11}));
    folder.put("broken.tif", brokenFile());
    folder.put("damaged.tif", fileWithDamagedPage());
    folder.put("old.tif", {1, 2, 3});
    const Outcome outcome =
        folder.run({"merge", "good.tif", "broken.tif", "none.tif", "damaged.tif", "old.tif", "--replace"});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, std::string("vellum: broken.tif: ") + kBrokenChain +
                               "\nvellum: none.tif: General I/O error in reading or writting. (no such file)\n"
                               "vellum: damaged.tif: page 2: Unexpected end of file in reading data.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.get("old.tif"), (Bytes{1, 2, 3}));
    EXPECT_EQ(folder.files(), (Names{"broken.tif", "damaged.tif", "good.tif", "old.tif"}));
}

TEST(Merge, AFileHasAtMost1000Pages) {
    const WorkFolder folder;
    folder.put("half.tif", pagesOf(Bytes(500, 0x11)));
    const Outcome full = folder.run({"merge", "half.tif", "half.tif", "full.tif"});
    EXPECT_EQ(full.status, 0U);
    EXPECT_EQ(pixelsIn(folder.get("full.tif")).size(), 1000U);
    const Outcome outcome = folder.run({"merge", "full.tif", "half.tif:1", "out.tif"});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vellum: out.tif: cannot be written: a file has at most 1000 pages.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.files(), (Names{"full.tif", "half.tif"}));
}

} // namespace
} // namespace vellum::test
