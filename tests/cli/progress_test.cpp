// The progress line on a console. That it is no part of what is redirected, the other tests see.
#include "cli/small_tiffs.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

#include <sstream>

namespace vellum::test {
namespace {

constexpr unsigned kPages = 1000;

// Pages that share one strip: a small file with work for many seconds in it.
Bytes longFile() {
    constexpr unsigned kLines = 4000;
    tiff::Builder file;
    const std::uint32_t strip = file.append(Bytes(std::size_t{128} * kLines, 0x5A));
    for (unsigned page = 0; page < kPages; ++page) {
        file.directory({tiff::shorts(256, {1024}), tiff::shorts(257, {kLines}), tiff::shorts(258, {1}),
                        tiff::shorts(259, {1}), tiff::shorts(262, {1}), tiff::longs(273, {strip}),
                        tiff::shorts(277, {1})});
    }
    return file.bytes();
}

TEST(Progress, IsShownOnAConsoleAndOverwritten) {
    const WorkFolder folder;
    folder.put("long.tif", longFile());
    folder.put("old.tif", {1, 2, 3});
    const Outcome outcome = folder.runOnConsole({"convert", "--all", "long.tif", "old.tif", "--compression=lzw"});
    // Three looks at a console on which there is the progress line and nothing else.
    std::istringstream looks(outcome.err);
    int seen = 0;
    for (std::string look; std::getline(looks, look); ++seen) {
        EXPECT_EQ(look.rfind("[page ", 0), 0U) << outcome.err;
        EXPECT_NE(look.find(" of 1000"), std::string::npos) << outcome.err;
        EXPECT_EQ(look.find("page", 6), std::string::npos) << outcome.err;
    }
    EXPECT_EQ(seen, 3) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    // The program was ended in the middle of its work: the old file is as it was.
    EXPECT_EQ(outcome.status, 99U);
    EXPECT_EQ(folder.get("old.tif"), (Bytes{1, 2, 3}));
}

// The library draws all pages of a text in one call.
TEST(Progress, TellsThatPagesAreDrawnBeforeTheyAreWritten) {
    const WorkFolder folder;
    std::string text;
    for (int i = 0; i < 6000; ++i) {
        text += "line\n";
    }
    folder.put("long.txt", Bytes(text.begin(), text.end()));
    const Outcome outcome = folder.runOnConsole({"fax", "long.txt", "long.tif", "--dpi=100", "--pages=1000"});
    EXPECT_EQ(outcome.err.rfind("[drawing the pages of long.txt]\n[page ", 0), 0U) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, 99U);
}

} // namespace
} // namespace vellum::test
