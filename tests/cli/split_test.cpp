// vellum split: a file for every page, and back again.
#include "cli/copied_files.h"
#include "cli/tiff_look.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;

TEST(Split, FilesAreNamedAfterTheInputOrAPrefix) {
    const WorkFolder folder;
    folder.makeFolder("out");
    folder.put("in.tif", pagesOf({0x11, 0x22}));
    const Outcome outcome = folder.run({"split", "in.tif"});
    EXPECT_EQ(outcome.out, "in-001.tif: in.tif, page 1\nin-002.tif: in.tif, page 2\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_EQ(folder.files(), (Names{"in-001.tif", "in-002.tif", "in.tif"}));
    EXPECT_EQ(folder.run({"split", "in.tif:2", "out/v1.2"}).out, "out/v1.2-002.tif: in.tif, page 2\n");
    EXPECT_TRUE(folder.get("out/v1.2-002.tif") == folder.get("in-002.tif"));
    EXPECT_EQ(folder.run({"split", "in.tif:1", "out/page.TIFF"}).out, "out/page-001.TIFF: in.tif, page 1\n");
    EXPECT_TRUE(folder.get("out/page-001.TIFF") == folder.get("in-001.tif"));
}

// Pixels, by way of bitmaps, and coded bytes.
TEST(Split, WhatIsSplitAndMergedIsWhatItWas) {
    const WorkFolder folder;
    folder.put("fax.tif", bundled("fax.tif"));
    EXPECT_EQ(folder.run({"split", "fax.tif", "page"}).status, 0U);
    const Outcome outcome = folder.run({"merge", "page-*.tif", "again.tif"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_TRUE(pagesIn(folder.get("again.tif")) == pagesIn(bundled("fax.tif")));
    EXPECT_EQ(folder.run({"convert", "--all", "fax.tif", "one.bmp"}).status, 0U);
    EXPECT_EQ(folder.run({"convert", "--all", "again.tif", "two.bmp"}).status, 0U);
    for (const std::string page : {"-001.bmp", "-002.bmp", "-003.bmp"}) {
        EXPECT_TRUE(folder.get("one" + page).has_value());
        EXPECT_TRUE(folder.get("one" + page) == folder.get("two" + page)) << page;
    }
}

TEST(Split, NamesWithBlanksAndLettersOfAllKindsServe) {
    const std::string name = "\xC3\xA9t\xC3\xA9 \xE6\x97\xA5.tif"; // Latin and Japanese, and a blank
    const WorkFolder folder;
    folder.put(name, pagesOf({0x11}));
    if (folder.files() != Names{name}) {
        GTEST_SKIP() << "not tested: the file system does not keep such names (under Wine: set a UTF-8 locale)";
    }
    const std::string part = name.substr(0, name.size() - 4) + "-001.tif";
    EXPECT_EQ(folder.run({"split", name}).out, part + ": " + name + ", page 1\n");
    EXPECT_EQ(folder.run({"copy", "--append", name, part}).out, part + ": page 2: " + name + ", page 1\n");
    EXPECT_EQ(folder.run({"tag", "set", name, "Artist", "\xC3\xA9"}).status, 0U);
    EXPECT_EQ(folder.files(), (Names{part, name}));
    EXPECT_EQ(pagesIn(folder.get(part)).size(), 2U);
    EXPECT_EQ(pagesIn(folder.get(name)).at(0).tag(315).numbers, (std::vector<std::uint32_t>{0xC3, 0xA9, 0}));
}

TEST(Split, WritesNothingUnlessEveryPageCanBeCopied) {
    const WorkFolder folder;
    folder.put("broken.tif", brokenFile());
    folder.put("damaged.tif", fileWithDamagedPage());
    folder.put("damaged-001.tif", {1, 2, 3});
    const Outcome broken = folder.run({"split", "broken.tif"});
    EXPECT_EQ(broken.err, std::string("vellum: broken.tif: ") + kBrokenChain + "\n");
    EXPECT_EQ(broken.status, 1U);
    const Outcome damaged = folder.run({"split", "damaged.tif"});
    EXPECT_EQ(damaged.out, "");
    EXPECT_EQ(damaged.err, "vellum: damaged.tif: page 2: Unexpected end of file in reading data.\n");
    EXPECT_EQ(damaged.status, 1U);
    EXPECT_EQ(folder.files(), (Names{"broken.tif", "damaged-001.tif", "damaged.tif"}));
    EXPECT_EQ(folder.get("damaged-001.tif"), (Bytes{1, 2, 3}));
}

TEST(Split, GoesOnWhenAFileCannotBeWritten) {
    const WorkFolder folder;
    folder.put("in.tif", pagesOf({0x11, 0x22}));
    folder.makeFolder("in-001.tif");
    const Outcome outcome = folder.run({"split", "in.tif"});
    EXPECT_EQ(outcome.out, "in-002.tif: in.tif, page 2\n");
    EXPECT_EQ(outcome.err, "vellum: in-001.tif: cannot be written: access is denied.\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.files(), (Names{"in-002.tif", "in.tif"}));
}

TEST(Split, TheInputIsNotReplaced) {
    const WorkFolder folder;
    folder.put("in-001.tif", pagesOf({0x11}));
    const Outcome outcome = folder.run({"split", "in-001.tif", "in"});
    EXPECT_EQ(outcome.err, "vellum split: the output would replace the input\nTry 'vellum split --help'.\n");
    EXPECT_EQ(outcome.status, 2U);
    EXPECT_EQ(folder.get("in-001.tif"), pagesOf({0x11}));
}

} // namespace
} // namespace vellum::test
