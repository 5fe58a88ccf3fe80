// The program itself: help, version and command lines that make no sense.
#include "cli/small_tiffs.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

#include <span>

namespace vellum::test {
namespace {

const std::vector<std::string> kCommands = {"info",  "convert", "check", "tag",        "note", "copy",
                                            "split", "merge",   "ioca",  "fax-append", "fax",  "stamp"};

constexpr const char *kShortHelp = R"(Usage: vellum COMMAND [options] FILE...

Commands:
  info        tell what is in TIFF and CALS files
  convert     turn pages into Windows bitmaps, TIFF or CALS files
  check       decode every page and tell which ones are whole
  tag         look at the tags of a page and change them
  note        look at notes on pages, add them and burn them in
  copy        copy pages into another TIFF
  split       put every page into a file of its own
  merge       put the pages of many TIFF files into one
  ioca        wrap bilevel pages as IOCA images, and unwrap them
  fax-append  add the code of a fax page to the end of a file
  fax         draw a text file on the pages of a fax
  stamp       print some lines of text on a page

'vellum COMMAND --help' tells more about a command.
)";

TEST(CommandLine, AloneTheProgramShowsShortHelpOnStandardErrorWithStatus2) {
    const Outcome outcome = WorkFolder().run({});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, kShortHelp);
    EXPECT_EQ(outcome.status, 2U);
}

TEST(CommandLine, HelpGoesToStandardOutputWithStatus0) {
    const WorkFolder folder;
    const Outcome outcome = folder.run({"--help"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_EQ(outcome.out.rfind("vellum - look into, convert, copy, edit and check TIFF files\n", 0), 0U)
        << outcome.out;
    EXPECT_NE(outcome.out.find(kShortHelp), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("Exit status: 0"), std::string::npos) << outcome.out;
    EXPECT_EQ(folder.run({"-h"}).out, outcome.out);
    EXPECT_EQ(folder.run({"help"}).out, outcome.out);
}

TEST(CommandLine, EveryCommandHasHelpOfItsOwn) {
    const WorkFolder folder;
    for (const std::string &command : kCommands) {
        const Outcome outcome = folder.run({command, "--help"});
        EXPECT_EQ(outcome.out.rfind("vellum " + command + " - ", 0), 0U) << outcome.out;
        EXPECT_NE(outcome.out.find("Usage: vellum " + command + " "), std::string::npos) << outcome.out;
        EXPECT_NE(outcome.out.find("Exit status:"), std::string::npos) << outcome.out;
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.status, 0U);
        EXPECT_EQ(folder.run({"help", command}).out, outcome.out);
        EXPECT_EQ(folder.run({command, "no-such.tif", "-h"}).out, outcome.out);
    }
}

TEST(CommandLine, HelpFitsInto80Columns) {
    const WorkFolder folder;
    std::vector<std::string> commands = kCommands;
    commands.emplace_back("--help");
    for (const std::string &command : commands) {
        std::string text = folder.run({command, "--help"}).out;
        ASSERT_FALSE(text.empty());
        while (!text.empty()) {
            const std::size_t length = text.find('\n');
            EXPECT_LE(length, 80U) << text.substr(0, length);
            text.erase(0, length + 1);
        }
    }
}

TEST(CommandLine, VersionIsTheLibrarys) {
    const Outcome outcome = WorkFolder().run({"--version"});
    EXPECT_EQ(outcome.out, "vellum, VELLUM32.DLL Version 7.00\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
}

struct Misuse {
    std::vector<std::string> words;
    const char *message;
};

void expectMisuse(std::span<const Misuse> misuses) {
    const WorkFolder folder;
    for (const Misuse &misuse : misuses) {
        const Outcome outcome = folder.run(misuse.words);
        EXPECT_EQ(outcome.err, misuse.message);
        EXPECT_EQ(outcome.out, "") << misuse.message;
        EXPECT_EQ(outcome.status, 2U) << misuse.message;
    }
    EXPECT_TRUE(folder.files().empty());
}

TEST(CommandLine, MisuseIsExplainedWithStatus2) {
    const Misuse misuses[] = {
        {{"frobnicate"}, "vellum: unknown command 'frobnicate'\nTry 'vellum --help'.\n"},
        {{"--frobnicate"}, "vellum: unknown option '--frobnicate'\nTry 'vellum --help'.\n"},
        {{"help", "frobnicate"}, "vellum: unknown command 'frobnicate'\nTry 'vellum --help'.\n"},
        {{"info"}, "vellum info: no file given\nTry 'vellum info --help'.\n"},
        {{"check"}, "vellum check: no file given\nTry 'vellum check --help'.\n"},
        {{"info", "--frob", "a.tif"}, "vellum info: unknown option '--frob'\nTry 'vellum info --help'.\n"},
        {{"info", "--json=yes", "a.tif"}, "vellum info: option '--json' takes no value\nTry 'vellum info --help'.\n"},
        {{"check", "-q", "--quiet", "a.tif"},
         "vellum check: option '--quiet' is given twice\nTry 'vellum check --help'.\n"},
        {{"convert", "a.tif"},
         "vellum convert: one input file and one output file are needed\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.bmp", "b.bmp"},
         "vellum convert: one input file and one output file are needed\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.bmp", "--page"},
         "vellum convert: option '--page' needs a value\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.bmp", "--page", "0"},
         "vellum convert: option '--page' wants a page number from 1 on, not '0'\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.bmp", "--page=2x"},
         "vellum convert: option '--page' wants a page number from 1 on, not '2x'\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.bmp", "--page=99999999999"},
         "vellum convert: option '--page' wants a page number from 1 on, not '99999999999'\n"
         "Try 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.bmp", "--page", "2", "--all"},
         "vellum convert: '--page' and '--all' exclude each other\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.png"},
         "vellum convert: the output's name must end in .bmp, .tif, .tiff, .cal or .cals, not 'a.png'\n"
         "Try 'vellum convert --help'.\n"},
        {{"convert", "a.bmp", "A.BMP"},
         "vellum convert: the output would replace the input\nTry 'vellum convert --help'.\n"},
    };
    expectMisuse(misuses);
}

TEST(CommandLine, OptionsForTiffOutputGoWithNoOther) {
    const Misuse misuses[] = {
        {{"convert", "--append", "a.tif", "A.TIF"},
         "vellum convert: the output would replace the input\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.bmp", "--compression", "none"},
         "vellum convert: '--compression' is for TIFF output only\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.bmp", "--fill-order=1"},
         "vellum convert: '--fill-order' is for TIFF output only\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.bmp", "--k=4"},
         "vellum convert: '--k' is for TIFF output only\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.bmp", "--title=x"},
         "vellum convert: '--title' is for TIFF output only\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.bmp", "--artist=x"},
         "vellum convert: '--artist' is for TIFF output only\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "a.bmp", "--append"},
         "vellum convert: '--append' is for TIFF output only\nTry 'vellum convert --help'.\n"},
    };
    expectMisuse(misuses);
}

TEST(CommandLine, CodingsThatMakeNoSenseAreExplained) {
    const Misuse misuses[] = {
        {{"convert", "a.tif", "b.tif", "--compression=zip"},
         "vellum convert: option '--compression' wants one of none, packbits, lzw, lzw-diff, mh, g3, g3-2d, g4, jpeg, "
         "not 'zip'\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "b.tif", "--fill-order=3"},
         "vellum convert: option '--fill-order' wants 1 or 2, not '3'\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "b.tif", "--fill-order=2", "--compression=jpeg"},
         "vellum convert: '--fill-order' does not go with '--compression jpeg'\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "b.tif", "--compression=g3-2d", "--k=1"},
         "vellum convert: option '--k' wants a number from 2 on, not '1'\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "b.tif", "--compression=g3-2d", "--k=4lines"},
         "vellum convert: option '--k' wants a number from 2 on, not '4lines'\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "b.tif", "--compression=g3", "--k=4"},
         "vellum convert: '--k' goes with '--compression g3-2d' only\nTry 'vellum convert --help'.\n"},
        {{"convert", "a.tif", "b.tif", "--k=4"},
         "vellum convert: '--k' goes with '--compression g3-2d' only\nTry 'vellum convert --help'.\n"},
    };
    expectMisuse(misuses);
}

TEST(CommandLine, MisuseOfTheCopyingCommandsIsExplained) {
    const Misuse misuses[] = {
        {{"copy", "a.tif"}, "vellum copy: one input file and one output file are needed\nTry 'vellum copy --help'.\n"},
        {{"copy", "a.tif:2", "A.TIF"}, "vellum copy: the output would replace the input\nTry 'vellum copy --help'.\n"},
        {{"copy", "a.tif:", "b.tif"},
         "vellum copy: 'a.tif:' does not name pages like 1,3,5-8\nTry 'vellum copy --help'.\n"},
        {{"copy", "a.tif:1,,2", "b.tif"},
         "vellum copy: 'a.tif:1,,2' does not name pages like 1,3,5-8\nTry 'vellum copy --help'.\n"},
        {{"copy", "a.tif:0", "b.tif"},
         "vellum copy: 'a.tif:0' does not name pages like 1,3,5-8\nTry 'vellum copy --help'.\n"},
        {{"copy", "a.tif:3-2", "b.tif"},
         "vellum copy: 'a.tif:3-2' does not name pages like 1,3,5-8\nTry 'vellum copy --help'.\n"},
        {{"copy", "a.tif:99999999999", "b.tif"},
         "vellum copy: 'a.tif:99999999999' does not name pages like 1,3,5-8\nTry 'vellum copy --help'.\n"},
        {{"copy", "a.tif", "b.tif", "--append", "--replace"},
         "vellum copy: '--append' and '--replace' exclude each other\nTry 'vellum copy --help'.\n"},
        {{"split"}, "vellum split: one input file and at most one prefix are needed\nTry 'vellum split --help'.\n"},
        {{"split", "a", "b", "c"},
         "vellum split: one input file and at most one prefix are needed\nTry 'vellum split --help'.\n"},
        {{"merge", "a.tif"},
         "vellum merge: one or more input files and one output file are needed\nTry 'vellum merge --help'.\n"},
        {{"merge", "a.tif", "b.tif:1", "b.tif"},
         "vellum merge: the output would replace the input\nTry 'vellum merge --help'.\n"},
    };
    expectMisuse(misuses);
}

TEST(CommandLine, MisuseOfTheFaxCommandsIsExplained) {
    const Misuse misuses[] = {
        {{"ioca"}, "vellum ioca: one of wrap, unwrap and info is needed\nTry 'vellum ioca --help'.\n"},
        {{"ioca", "frob"},
         "vellum ioca: one of wrap, unwrap and info is needed, not 'frob'\nTry 'vellum ioca --help'.\n"},
        {{"ioca", "wrap", "a.tif"},
         "vellum ioca: 'wrap' needs one input file and one output file\nTry 'vellum ioca --help'.\n"},
        {{"ioca", "info", "a.img", "b.img"}, "vellum ioca: 'info' needs one file\nTry 'vellum ioca --help'.\n"},
        {{"ioca", "unwrap", "a.img", "b.tif", "--modca"},
         "vellum ioca: '--modca' goes with 'wrap' only\nTry 'vellum ioca --help'.\n"},
        {{"ioca", "wrap", "a.tif:1-2", "a.img"},
         "vellum ioca: 'a.tif:1-2' names more than one page\nTry 'vellum ioca --help'.\n"},
        {{"ioca", "wrap", "a.tif:1", "a.tif"},
         "vellum ioca: the output would replace the input\nTry 'vellum ioca --help'.\n"},
        {{"ioca", "unwrap", "a.img", "a.img"},
         "vellum ioca: the output would replace the input\nTry 'vellum ioca --help'.\n"},
        {{"fax-append", "a.bin"},
         "vellum fax-append: a target file and one input file are needed\nTry 'vellum fax-append --help'.\n"},
        {{"fax-append", "a.bin", "a.tif", "--offset=1k"},
         "vellum fax-append: option '--offset' wants a number of bytes, not '1k'\nTry 'vellum fax-append --help'.\n"},
        {{"fax-append", "a.bin", "a.tif:1,2"},
         "vellum fax-append: 'a.tif:1,2' names more than one page\nTry 'vellum fax-append --help'.\n"},
        {{"fax-append", "a.tif", "a.tif"},
         "vellum fax-append: the target is the input\nTry 'vellum fax-append --help'.\n"},
    };
    expectMisuse(misuses);
}

TEST(CommandLine, TwoDashesEndTheOptions) {
    const WorkFolder folder;
    folder.put("--json", smallPage());
    const Outcome outcome = folder.run({"info", "--", "--json"});
    EXPECT_EQ(outcome.out.rfind("--json: 1 page, ", 0), 0U) << outcome.out;
    EXPECT_EQ(outcome.status, 0U);
}

} // namespace
} // namespace vellum::test
