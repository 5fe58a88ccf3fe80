// Outputs that are the input under another name. Every command that writes a file it has not read knows them.
#include "cli/small_tiffs.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using Words = std::vector<std::string>;

bool link(const WorkFolder &folder, const std::string &name, const std::string &newName) {
    return CreateHardLinkA(folder.path(newName).c_str(), folder.path(name).c_str(), nullptr) != 0;
}

// All of them read in.tif, which has a note, and are to write OUT.
struct Case {
    Words words;
    const char *message;
};
const char *const kReplaced = "the output would replace the input";
const Case kCommands[] = {
    {{"convert", "in.tif", "OUT"}, kReplaced},
    {{"stamp", "in.tif", "OUT", "--text=x", "--at=0,0"}, kReplaced},
    {{"fax", "empty.txt", "OUT", "--form=in.tif", "--margin=0"}, kReplaced},
    {{"note", "burn", "in.tif", "OUT"}, "the output is the input"},
    {{"copy", "--replace", "in.tif", "OUT"}, kReplaced},
    {{"merge", "--replace", "in.tif", "OUT"}, kReplaced},
    {{"ioca", "wrap", "in.tif", "OUT"}, kReplaced},
    {{"fax-append", "OUT", "in.tif"}, "the target is the input"},
};

Words withOutput(Words words, const std::string &output) {
    for (std::string &word : words) {
        word = word == "OUT" ? output : word;
    }
    return words;
}

// A page of modified Huffman code, 1728 white pixels, with a note.
Bytes pageWithNote() {
    tiff::Builder file;
    file.page({tiff::longs(256, {1728}), tiff::longs(257, {1}), tiff::shorts(258, {1}), tiff::shorts(259, {2}),
               tiff::shorts(262, {0}), tiff::shorts(277, {1}), tiff::ascii(316, "~,1,T,0,0,20,20,2,x")},
              {{0x4D, 0x9A, 0x80}});
    return file.bytes();
}

void prepare(const WorkFolder &folder) {
    folder.put("in.tif", pageWithNote());
    folder.put("a.txt", {'x'});
    folder.put("empty.txt", {}); // no other text fits on a page of one line
}

TEST(SameFile, AHardLinkToTheInputIsNoOutput) {
    const WorkFolder folder;
    prepare(folder);
    ASSERT_TRUE(link(folder, "in.tif", "link.tif")) << "error " << GetLastError();
    for (const auto &[words, message] : kCommands) {
        const Outcome outcome = folder.run(withOutput(words, "link.tif"));
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "vellum " + words[0] + ": " + message + "\nTry 'vellum " + words[0] + " --help'.\n");
        EXPECT_EQ(outcome.status, 2U);
    }
    EXPECT_TRUE(folder.get("in.tif") == pageWithNote());
    EXPECT_EQ(folder.files(), (Words{"a.txt", "empty.txt", "in.tif", "link.tif"}));
}

// Before the first of its pages is written.
TEST(SameFile, NorIsAFileOfOnePage) {
    const WorkFolder folder;
    for (const std::string extension : {".bmp", ".cal"}) {
        tiff::Builder file;
        for (int i = 0; i < 3; ++i) {
            file.page({tiff::longs(256, {8}), tiff::longs(257, {1}), tiff::shorts(262, {0})}, {{0x55}});
        }
        const std::string second = "in-002" + extension;
        folder.put("in-002.tif", file.bytes());
        ASSERT_TRUE(link(folder, "in-002.tif", second));
        const Outcome outcome = folder.run({"convert", "--all", "in-002.tif", "in" + extension});
        EXPECT_EQ(outcome.err, "vellum convert: the output would replace the input\nTry 'vellum convert --help'.\n");
        EXPECT_EQ(outcome.status, 2U);
        EXPECT_TRUE(folder.get(second) == file.bytes());
        EXPECT_FALSE(folder.get("in-001" + extension));
    }
}

TEST(SameFile, NeitherIsOneToTheText) {
    const WorkFolder folder;
    prepare(folder);
    ASSERT_TRUE(link(folder, "a.txt", "link.tif")) << "error " << GetLastError();
    EXPECT_EQ(folder.run({"fax", "a.txt", "link.tif"}).status, 2U);
    EXPECT_EQ(folder.get("a.txt"), Bytes{'x'});
}

TEST(SameFile, NorAnotherSpelling) {
    const WorkFolder folder;
    prepare(folder);
    folder.makeFolder("sub");
    for (const std::string &name : {std::string("In.Tif"), std::string("sub\\..\\in.tif"), folder.path("in.tif"),
                                    "\\\\?\\" + folder.path("in.tif")}) {
        EXPECT_EQ(folder.run({"convert", "in.tif", name}).status, 2U) << name;
    }
    EXPECT_TRUE(folder.get("in.tif") == pageWithNote());
}

TEST(SameFile, NorTheShortName) {
    const WorkFolder folder;
    folder.put("a rather long name.tif", pageWithNote());
    char path[MAX_PATH] = "";
    GetShortPathNameA(folder.path("a rather long name.tif").c_str(), path, sizeof path);
    const std::string shortPath = path;
    const std::string shortName = shortPath.substr(shortPath.find_last_of('\\') + 1);
    if (shortName == "a rather long name.tif") {
        GTEST_SKIP() << "not tested: the file system keeps no short names";
    }
    EXPECT_EQ(folder.run({"convert", "a rather long name.tif", shortName}).status, 2U) << shortName;
    EXPECT_TRUE(folder.get("a rather long name.tif") == pageWithNote());
}

// A file like the input is another file: it is replaced, or added to, as always.
TEST(SameFile, ACopyOfTheInputIsAnotherFile) {
    for (const auto &[words, message] : kCommands) {
        const WorkFolder folder;
        prepare(folder);
        ASSERT_NE(CopyFileA(folder.path("in.tif").c_str(), folder.path("copy.tif").c_str(), TRUE), 0);
        const Outcome outcome = folder.run(withOutput(words, "copy.tif"));
        EXPECT_EQ(outcome.err, "") << words[0];
        EXPECT_EQ(outcome.status, 0U) << words[0];
        EXPECT_FALSE(folder.get("copy.tif") == pageWithNote()) << words[0];
        EXPECT_TRUE(folder.get("in.tif") == pageWithNote()) << words[0];
    }
}

} // namespace
} // namespace vellum::test
