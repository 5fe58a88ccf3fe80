// vellum tag: looking at tags and changing them.
#include "cli/copied_files.h"
#include "cli/tiff_look.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;
using Numbers = std::vector<std::uint32_t>;

Bytes twoPages(unsigned byteOrder) {
    tiff::Builder file(static_cast<std::uint16_t>(byteOrder));
    addPage(file, {0x11}, 1, 1);
    file.page({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::shorts(262, {1}), tiff::ascii(315, "Ann"),
               tiff::shorts(65000, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10})},
              {{0x22}});
    return file.bytes();
}

TEST(Tag, ListShowsThePagesTags) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages(tiff::kII));
    const Outcome outcome = folder.run({"tag", "list", "in.tif", "--page", "2"});
    EXPECT_EQ(outcome.out, R"(      256  ImageWidth                 SHORT   1  8
      257  ImageLength                SHORT   1  1
      262  PhotometricInterpretation  SHORT   1  1
      273  StripOffsets               LONG    1  112
      279  StripByteCounts            LONG    1  1
      315  Artist                     ASCII   4  "Ann"
    65000  -                          SHORT  10  1, 2, 3, 4, 5, 6, 7, 8, ...
)");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    const std::string whole = folder.run({"tag", "list", "--all-values", "in.tif", "--page=2"}).out;
    EXPECT_NE(whole.find("1, 2, 3, 4, 5, 6, 7, 8, 9, 10\n"), std::string::npos) << whole;
    EXPECT_EQ(folder.run({"tag", "list", "in.tif"}).out.find("Artist"), std::string::npos);
}

TEST(Tag, GetShowsOneTagByNumberOrName) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages(tiff::kMM));
    const Outcome byName = folder.run({"tag", "get", "in.tif", "artist", "--page=2"});
    EXPECT_EQ(byName.out, "    315  Artist  ASCII  4  \"Ann\"\n");
    EXPECT_EQ(byName.err, "");
    EXPECT_EQ(byName.status, 0U);
    EXPECT_EQ(folder.run({"tag", "get", "in.tif", "0x13B", "--page=2"}).out, byName.out);
    EXPECT_EQ(folder.run({"tag", "get", "in.tif", "65000", "--page=2"}).out,
              "    65000  -  SHORT  10  1, 2, 3, 4, 5, 6, 7, 8, 9, 10\n");
    EXPECT_EQ(folder.run({"tag", "get", "in.tif", "Artist", "--page=2", "--json"}).out, R"({
  "file": "in.tif",
  "page": 2,
  "tags": [
    {"tag": 315, "name": "Artist", "type": "ASCII", "count": 4, "values": ["Ann"]}
  ]
}
)");
    const Outcome missing = folder.run({"tag", "get", "in.tif", "Artist"});
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "vellum: in.tif: page 1: there is no Artist (315).\n");
    EXPECT_EQ(missing.status, 1U);
}

TEST(Tag, SetChangesOneTagOfOnePageAndNothingElse) {
    for (const unsigned order : {unsigned{tiff::kII}, unsigned{tiff::kMM}}) {
        const WorkFolder folder;
        folder.put("in.tif", twoPages(order));
        const Outcome outcome = folder.run({"tag", "set", "in.tif", "--page=2", "Artist", "Bob \xC3\xA9"});
        EXPECT_EQ(outcome.out, "in.tif: page 2: Artist (315) is now ASCII \"Bob \xC3\xA9\"\n");
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.status, 0U);
        std::vector<SeenPage> expected = pagesIn(twoPages(order));
        expected.at(1).tags[315] = {2, {'B', 'o', 'b', ' ', 0xC3, 0xA9, 0}};
        EXPECT_TRUE(pagesIn(folder.get("in.tif")) == expected);
        EXPECT_EQ(folder.files(), Names{"in.tif"});
        EXPECT_EQ(folder.run({"check", "-q", "in.tif"}).status, 0U);
    }
}

TEST(Tag, EveryTypeCanBeSet) {
    struct Case {
        std::vector<std::string> words; // behind "tag set in.tif"
        unsigned tag;
        SeenTag stored;
    };
    const Case cases[] = {
        {{"65000", "4000000000"}, 65000, {4, {4000000000}}}, // the type that it has in the file
        {{"Orientation", "6"}, 274, {3, {6}}},               // the customary one, here and in the next ones
        {{"XResolution", "204"}, 282, {5, {204, 1}}},
        {{"yresolution", "118.11"}, 283, {5, {11811, 100}}},
        {{"XPosition", "6/4"}, 286, {5, {6, 4}}},
        {{"PageNumber", "1", "9"}, 297, {3, {1, 9}}},
        {{"DateTime", ""}, 306, {2, {0}}},
        {{"65000", "--type=BYTE", "1", "0xff"}, 65000, {1, {1, 255}}},
        {{"65000", "--type=short", "65535"}, 65000, {3, {65535}}},
        {{"65001", "--type=SBYTE", "--", "-1", "127"}, 65001, {6, {255, 127}}},
        {{"65002", "--type=UNDEFINED", "0", "1", "2", "3", "4"}, 65002, {7, {0, 1, 2, 3, 4}}},
        {{"65003", "--type=SLONG", "--", "-2147483648", "-1"}, 65003, {9, {0x80000000, 0xFFFFFFFF}}},
        {{"Artist", "--type=BYTE", "--force", "7"}, 315, {1, {7}}},
    };
    const WorkFolder folder;
    tiff::Builder file;
    file.page({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::longs(65000, {5})}, {{0x11}});
    folder.put("in.tif", file.bytes());
    std::vector<SeenPage> expected = pagesIn(folder.get("in.tif"));
    for (const Case &entry : cases) {
        std::vector<std::string> words = {"tag", "set", "in.tif"};
        words.insert(words.end(), entry.words.begin(), entry.words.end());
        const Outcome outcome = folder.run(words);
        EXPECT_EQ(outcome.err, "") << entry.words[0];
        EXPECT_EQ(outcome.status, 0U);
        expected.at(0).tags[entry.tag] = entry.stored;
        EXPECT_TRUE(pagesIn(folder.get("in.tif")) == expected) << entry.words[0];
    }
}

TEST(Tag, DeleteTakesATagAway) {
    for (const unsigned order : {unsigned{tiff::kII}, unsigned{tiff::kMM}}) {
        const WorkFolder folder;
        folder.put("in.tif", twoPages(order));
        const Outcome outcome = folder.run({"tag", "delete", "in.tif", "Artist", "--page=2"});
        EXPECT_EQ(outcome.out, "in.tif: page 2: Artist (315) is deleted\n");
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.status, 0U);
        std::vector<SeenPage> expected = pagesIn(twoPages(order));
        expected.at(1).tags.erase(315);
        EXPECT_TRUE(pagesIn(folder.get("in.tif")) == expected);
    }
}

TEST(Tag, DeletingATagThatIsNotThereIsNoFailureAndTouchesNothing) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages(tiff::kMM));
    const Outcome outcome = folder.run({"tag", "delete", "in.tif", "Artist"});
    EXPECT_EQ(outcome.out, "in.tif: page 1: there is no Artist (315).\n");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_EQ(folder.get("in.tif"), twoPages(tiff::kMM));
}

TEST(Tag, StructuralTagsNeedForce) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages(tiff::kII));
    for (const std::string tag : {"StripOffsets", "StripByteCounts", "ImageWidth", "ImageLength", "Compression"}) {
        const std::string end = " tells how the image is stored; '--force' changes it all the same\n"
                                "Try 'vellum tag --help'.\n";
        for (const std::vector<std::string> &words :
             {std::vector<std::string>{"tag", "set", "in.tif", tag, "4"}, {"tag", "delete", "in.tif", tag}}) {
            const Outcome outcome = folder.run(words);
            EXPECT_EQ(outcome.err.rfind("vellum tag: " + tag + " (", 0), 0U) << outcome.err;
            EXPECT_TRUE(outcome.err.ends_with(end)) << outcome.err;
            EXPECT_EQ(outcome.status, 2U);
        }
    }
    EXPECT_EQ(folder.run({"tag", "delete", "in.tif", "262"}).err,
              "vellum tag: PhotometricInterpretation (262) tells what the image means; '--force' deletes it all the "
              "same\nTry 'vellum tag --help'.\n");
    EXPECT_EQ(folder.get("in.tif"), twoPages(tiff::kII));
    EXPECT_EQ(folder.run({"tag", "set", "in.tif", "--force", "ImageWidth", "7"}).status, 0U);
    EXPECT_EQ(pagesIn(folder.get("in.tif")).at(0).tag(256).numbers, Numbers{7});
    EXPECT_EQ(folder.run({"tag", "delete", "in.tif", "262", "--force"}).status, 0U);
    EXPECT_EQ(pagesIn(folder.get("in.tif")).at(0).tag(262).type, 0U);
}

TEST(Tag, AFileThatCannotBeRebuiltStaysAsItIs) {
    tiff::Builder pointing;
    addPage(pointing, {0x11}, 1, 1);
    pointing.page({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::longs(34665, {8})}, {{0x22}});
    struct Case {
        Bytes file;
        const char *message;
    };
    const Case cases[] = {
        {brokenFile(), "cannot be rebuilt: the chain of pages breaks behind page 2: General I/O error in reading or "
                       "writting."},
        {fileWithDamagedPage(), "cannot be rebuilt: page 2: Unexpected end of file in reading data."},
        {pointing.bytes(),
         "cannot be rebuilt: page 2: ExifIFD (34665) leads to other data in the file, which would be lost."},
        {{'n', 'o', ' ', 't', 'i', 'f', 'f', '!'}, "Invalid byte order."},
    };
    for (const Case &entry : cases) {
        const WorkFolder folder;
        folder.put("in.tif", entry.file);
        for (const std::vector<std::string> &words : {std::vector<std::string>{"tag", "set", "in.tif", "Artist", "Bob"},
                                                      {"tag", "delete", "in.tif", "Artist"}}) {
            const Outcome outcome = folder.run(words);
            EXPECT_EQ(outcome.out, "");
            EXPECT_EQ(outcome.err, std::string("vellum: in.tif: ") + entry.message + "\n");
            EXPECT_EQ(outcome.status, 1U);
            EXPECT_EQ(folder.get("in.tif"), entry.file);
        }
        EXPECT_EQ(folder.files(), Names{"in.tif"});
    }
}

TEST(Tag, AFileThatIsReadOnlyOrInUseStaysAsItWas) {
    const WorkFolder folder;
    folder.put("in.tif", pagesOf({0x11}));
    const std::string path = folder.path("in.tif");
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
    const Outcome denied = folder.run({"tag", "set", "in.tif", "Artist", "Bob"});
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(denied.err, "vellum: in.tif: cannot be written: access is denied.\n");
    EXPECT_EQ(denied.status, 1U);
    const HANDLE user = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(user, INVALID_HANDLE_VALUE);
    const Outcome used = folder.run({"tag", "set", "in.tif", "Artist", "Bob"});
    CloseHandle(user);
    EXPECT_EQ(used.err.rfind("vellum: in.tif: cannot be written: ", 0), 0U) << used.err;
    EXPECT_EQ(used.status, 1U);
    EXPECT_EQ(folder.get("in.tif"), pagesOf({0x11}));
    EXPECT_EQ(folder.files(), Names{"in.tif"});
}

TEST(Tag, APageThatIsNotThereIsReported) {
    const WorkFolder folder;
    folder.put("in.tif", twoPages(tiff::kII));
    for (const std::string action : {"list", "get", "delete", "set"}) {
        std::vector<std::string> words = {"tag", action, "in.tif", "--page=3"};
        if (action != "list") {
            words.emplace_back("Artist");
        }
        if (action == "set") {
            words.emplace_back("Bob");
        }
        const Outcome outcome = folder.run(words);
        EXPECT_EQ(outcome.err, "vellum: in.tif: there is no page 3; the file has 2.\n");
        EXPECT_EQ(outcome.status, 1U);
    }
    EXPECT_EQ(folder.get("in.tif"), twoPages(tiff::kII));
}

TEST(Tag, WhatMakesNoSenseIsExplainedWithStatus2) {
    struct Case {
        std::vector<std::string> words;
        const char *message;
    };
    const Case cases[] = {
        {{}, "one of list, get, set and delete is needed"},
        {{"frob", "in.tif"}, "one of list, get, set and delete is needed, not 'frob'"},
        {{"list"}, "'list' needs one file"},
        {{"get", "in.tif"}, "'get' needs one file and one tag"},
        {{"set", "in.tif", "Artist"}, "'set' needs one file, one tag and its values"},
        {{"list", "in.tif", "--force"}, "'--force' does not go with 'list'"},
        {{"set", "in.tif", "Artist", "x", "--json"}, "'--json' does not go with 'set'"},
        {{"get", "in.tif", "Frob"}, "there is no tag 'Frob': a tag is a number from 1 to 65535 or a TIFF name"},
        {{"get", "in.tif", "0"}, "there is no tag '0': a tag is a number from 1 to 65535 or a TIFF name"},
        {{"get", "in.tif", "65536"}, "there is no tag '65536': a tag is a number from 1 to 65535 or a TIFF name"},
        {{"set", "in.tif", "65000", "--type=WORD", "1"},
         "option '--type' wants one of BYTE, ASCII, SHORT, LONG, RATIONAL, SBYTE, UNDEFINED, SLONG, not 'WORD'"},
        {{"set", "in.tif", "65000", "--type=DOUBLE", "1"},
         "option '--type' wants one of BYTE, ASCII, SHORT, LONG, RATIONAL, SBYTE, UNDEFINED, SLONG, not 'DOUBLE'"},
        {{"set", "in.tif", "65001", "1"}, "tag 65001 has no customary type; '--type' says which one"},
        {{"set", "in.tif", "XResolution", "--type=ASCII", "x"},
         "XResolution (282) is of the type RATIONAL; '--force' sets it all the same"},
        {{"set", "in.tif", "Orientation", "65536"}, "'65536' is no SHORT value: these are numbers from 0 to 65535"},
        {{"set", "in.tif", "Orientation", "1x"}, "'1x' is no SHORT value: these are numbers from 0 to 65535"},
        {{"set", "in.tif", "65001", "--type=SBYTE", "128"},
         "'128' is no SBYTE value: these are numbers from -128 to 127"},
        {{"set", "in.tif", "XResolution", "1/0"}, "'1/0' is no RATIONAL value: these are written 204/1 or 96.5"},
        {{"set", "in.tif", "XResolution", "."}, "'.' is no RATIONAL value: these are written 204/1 or 96.5"},
        {{"set", "in.tif", "XResolution", "4294967296"},
         "'4294967296' is no RATIONAL value: these are written 204/1 or 96.5"},
        {{"set", "in.tif", "65001", "--type=SLONG", "1"},
         "a single SLONG value cannot be stored so that other programs read it; LONG can"},
        {{"set", "in.tif", "Artist", "Ann", "Bob"}, "an ASCII tag has one text; one with blanks stands in quotes"},
    };
    const WorkFolder folder;
    folder.put("in.tif", twoPages(tiff::kII));
    for (const Case &entry : cases) {
        std::vector<std::string> words = {"tag"};
        words.insert(words.end(), entry.words.begin(), entry.words.end());
        const Outcome outcome = folder.run(words);
        EXPECT_EQ(outcome.err, std::string("vellum tag: ") + entry.message + "\nTry 'vellum tag --help'.\n");
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.status, 2U) << entry.message;
    }
    EXPECT_EQ(folder.get("in.tif"), twoPages(tiff::kII));
}

} // namespace
} // namespace vellum::test
