// vellum fax: text files as editors write them, with line ends of all kinds, in the ANSI code page and in Unicode.
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

Bytes textOf(const std::string &text) {
    return {text.begin(), text.end()};
}

// The code units of a text, in the order of bytes that is asked for.
Bytes utf16Of(const std::u16string &text, bool highFirst) {
    Bytes bytes;
    for (const char16_t unit : text) {
        const auto high = static_cast<BYTE>(unit >> 8);
        const auto low = static_cast<BYTE>(unit & 0xFF);
        bytes.push_back(highFirst ? high : low);
        bytes.push_back(highFirst ? low : high);
    }
    return bytes;
}

// The file that a text becomes; nothing when it does not.
std::optional<Bytes> faxOf(const Bytes &text) {
    const WorkFolder folder;
    folder.put("a.txt", text);
    EXPECT_EQ(folder.run({"fax", "a.txt", "a.tif"}).err, "");
    return folder.get("a.tif");
}

void expectRefusal(const Bytes &text, const std::string &message) {
    const WorkFolder folder;
    folder.put("a.txt", text);
    const Outcome outcome = folder.run({"fax", "a.txt", "a.tif"});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vellum: a.txt: " + message + "\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_EQ(folder.files(), std::vector<std::string>{"a.txt"});
}

TEST(FaxText, LinesMayEndInAnyWay) {
    const WorkFolder folder;
    folder.put("dos.txt", textOf("one\r\ntwo\r\n\r\nfour"));
    folder.put("unix.txt", textOf("one\ntwo\n\nfour"));
    folder.put("old.txt", textOf("one\rtwo\r\rfour"));
    folder.put("joined.txt", textOf("onetwofour"));
    for (const char *name : {"dos", "unix", "old", "joined"}) {
        EXPECT_EQ(folder.run({"fax", std::string(name) + ".txt", std::string(name) + ".tif"}).err, "");
    }
    EXPECT_TRUE(folder.get("unix.tif") == folder.get("dos.tif"));
    EXPECT_TRUE(folder.get("old.tif") == folder.get("dos.tif"));
    EXPECT_FALSE(folder.get("joined.tif") == folder.get("dos.tif"));
}

TEST(FaxText, Utf8IsDrawnInTheLettersOfTheCodePage) {
    const auto ansi = faxOf(textOf("Gr\xFC\xDF"
                                   "e\r\n\xE9t\xE9"));
    ASSERT_TRUE(ansi);
    EXPECT_TRUE(faxOf(textOf("Gr\xC3\xBC\xC3\x9F"
                             "e\r\n\xC3\xA9t\xC3\xA9")) == ansi);
    EXPECT_TRUE(faxOf(textOf("\xEF\xBB\xBFGr\xC3\xBC\xC3\x9F"
                             "e\n\xC3\xA9t\xC3\xA9\n")) == ansi)
        << "with a mark";
    EXPECT_FALSE(faxOf(textOf("Grue\r\nete")) == ansi);
}

TEST(FaxText, AMarkAloneIsNotDrawn) {
    EXPECT_TRUE(faxOf(textOf("\xEF\xBB\xBFplain")) == faxOf(textOf("plain")));
    EXPECT_TRUE(faxOf(textOf("\xEF\xBB\xBF")) == faxOf({}));
}

TEST(FaxText, Utf16WithAMarkIsReadInEitherOrder) {
    const auto ansi = faxOf(textOf("Gr\xFC\xDF"
                                   "e\r\nend"));
    for (const bool highFirst : {false, true}) {
        EXPECT_TRUE(faxOf(utf16Of(u"\xFEFFGr\xFC\xDF"
                                  u"e\r\nend",
                                  highFirst)) == ansi)
            << highFirst;
    }
    Bytes cut = utf16Of(u"\xFEFFtext", false);
    cut.pop_back();
    expectRefusal(cut, "begins as UTF-16, but ends within a character.");
}

// Only what is UTF-8 to its end is taken for it.
TEST(FaxText, OtherBytesAreThoseOfTheCodePage) {
    const auto first = faxOf(textOf("\xC3\xA9"));
    const auto both = faxOf(textOf("\xC3\xA9\r\n\xE9"));
    EXPECT_TRUE(first == faxOf(textOf("\xE9")));
    EXPECT_FALSE(both == faxOf(textOf("\xE9\r\n\xE9")));
    // Two characters of the code page in the first line, each of which has another one behind it here.
    EXPECT_TRUE(both == faxOf(utf16Of(u"\xFEFF\xC3\xA9\r\n\xE9", false)));
}

TEST(FaxText, CharactersThatTheCodePageLacksAreRefused) {
    const std::string message = "line 2 has a character that the system's code page lacks: '\xE6\x97\xA5'";
    expectRefusal(textOf("one\r\ntwo \xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC\r\n"), message);
    expectRefusal(textOf("\xEF\xBB\xBFone\n\xE6\x97\xA5"), message);
    expectRefusal(utf16Of(u"\xFEFFone\n\x65E5\x672C", true), message);
    expectRefusal(textOf("\xEF\xBB\xBFone\ntwo\nthree \xE9"), "line 3 is not UTF-8, as which the file begins.");
}

} // namespace
} // namespace vellum::test
