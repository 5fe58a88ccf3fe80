// What the information dialog tells of an image, tag by tag.
#include "display/info_dialog_calls.h"
#include "support/faults.h"

#include <cstring>

namespace {

using namespace vellum::test;

// ---------------------------------------------------------------- caption and texts

TEST(InfoTexts, TheCaptionIsTheFullPath) {
    tiff::Builder file;
    file.directory({tiff::longs(256, {20})});
    const TempFile onDisk(file.bytes());
    ASSERT_NE(std::strchr(onDisk.path(), '\\'), nullptr);
    const OpenedTiff tiff{std::string(onDisk.path())};
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    TiffInfoDlgParam param = {tiff.get(), 0};
    runInfoDialog(&param, [&](HWND dialog) {
        EXPECT_EQ(wholeTextOf(dialog), onDisk.path());
        press(dialog, 1);
    });
}

TEST(InfoTexts, ThePathOf149CharactersIsShownWhole) {
    tiff::Builder file;
    file.directory({tiff::longs(256, {20})});
    const OpenedTiff tiff(file.bytes());
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    const std::string path(149, 'p');
    ASSERT_EQ(ModiTiffFileInfo(tiff.get(), path.c_str(), 0), 1);
    TiffInfoDlgParam param = {tiff.get(), 0};
    runInfoDialog(&param, [&](HWND dialog) {
        EXPECT_EQ(wholeTextOf(dialog), path);
        press(dialog, 1);
    });
    ASSERT_EQ(ModiTiffFileInfo(tiff.get(), "", 0), 1);
}

TEST(InfoTexts, ATiffInMemoryHasAnEmptyCaption) {
    tiff::Builder file;
    file.directory({tiff::longs(256, {20})});
    const OpenedTiff tiff(file.bytes());
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    TiffInfoDlgParam param = {tiff.get(), 0};
    runInfoDialog(&param, [](HWND dialog) {
        EXPECT_EQ(wholeTextOf(dialog), "");
        press(dialog, 1);
    });
}

TEST(InfoTexts, TitleArtistAndDateAreTheTags) {
    for (const std::uint16_t order : {tiff::kII, tiff::kMM}) {
        EXPECT_EQ(textsOf({tiff::ascii(270, "A harbour & its ships"), tiff::ascii(306, "1998:04:01 12:30:00"),
                           tiff::ascii(315, "B\xF8rge")},
                          order),
                  texts({{kTitle, "A harbour & its ships"}, {kArtist, "B\xF8rge"}, {kDate, "1998:04:01 12:30:00"}}));
    }
}

TEST(InfoTexts, EachIsTheTemplatesWhereItsTagIsAbsent) {
    EXPECT_EQ(textsOf({tiff::ascii(270, "t")}), texts({{kTitle, "t"}}));
    EXPECT_EQ(textsOf({tiff::ascii(306, "d")}), texts({{kDate, "d"}}));
    EXPECT_EQ(textsOf({tiff::ascii(315, "a")}), texts({{kArtist, "a"}}));
}

TEST(InfoTexts, AnEmptyTextIsShownEmpty) {
    EXPECT_EQ(textsOf({tiff::ascii(270, ""), tiff::ascii(306, ""), tiff::ascii(315, "")}),
              texts({{kTitle, ""}, {kArtist, ""}, {kDate, ""}}));
}

TEST(InfoTexts, EndAtTheFirstZeroOrWithTheTag) {
    const auto bytes = [](unsigned tag, const std::string &text) {
        std::vector<std::uint32_t> values(text.begin(), text.end());
        return tiff::typed(tag, 2, static_cast<std::uint32_t>(values.size()), 1, values);
    };
    EXPECT_EQ(
        textsOf({bytes(270, std::string("first\0second\0", 13)), bytes(306, "no terminator"), bytes(315, "four")}),
        texts({{kTitle, "first"}, {kDate, "no terminator"}, {kArtist, "four"}}));
}

TEST(InfoTexts, TheTypeOfATextDoesNotMatter) {
    EXPECT_EQ(textsOf({tiff::byteValues(270, {'B', 'Y', 'T', 'E', 'S', 0}), tiff::longs(306, {0x31323334}),
                       tiff::typed(315, 7, 5, 1, {'a', 'n', 'y', 0, 'x'})}),
              texts({{kTitle, "BYTES"}, {kDate, "4321"}, {kArtist, "any"}}));
}

// Whatever it consists of, it is laid out quickly.
TEST(InfoTexts, AHugeTextIsTaken) {
    constexpr std::size_t kBytes = 1'000'000;
    for (const char *piece : {"x", "a ", "\n", "\t", "word\r\n", "-"}) {
        const std::size_t length = std::strlen(piece);
        std::vector<std::uint32_t> values;
        for (std::size_t i = 0; i < kBytes; ++i) {
            values.push_back(static_cast<BYTE>(piece[i % length]));
        }
        values.back() = 'y';
        const DWORD before = GetTickCount();
        const Texts found = textsOf({tiff::typed(270, 2, kBytes, 1, values)});
        EXPECT_LT(GetTickCount() - before, 10'000U);
        EXPECT_EQ(found.at(kTitle), std::string(values.begin(), values.end()));
    }
}

// ---------------------------------------------------------------- numbers

TEST(InfoNumbers, SizePlanesBitsAndStripsAreTheTags) {
    for (const std::uint16_t order : {tiff::kII, tiff::kMM}) {
        EXPECT_EQ(textsOf({tiff::shorts(256, {1728}), tiff::longs(257, {2200}), tiff::shorts(258, {4}),
                           tiff::longs(273, {8, 9, 10}), tiff::shorts(277, {2})},
                          order),
                  texts({{kWidth, "1728"},
                         {kHeight, "2200"},
                         {kPlanes, "2"},
                         {kBits, "4"},
                         {kColourFormat, "Greyscale"},
                         {kStrips, "3"}}));
    }
}

TEST(InfoNumbers, EachIsTheTemplatesWhereItsTagIsAbsent) {
    EXPECT_EQ(textsOf({tiff::longs(256, {5})}), texts({{kWidth, "5"}}));
    EXPECT_EQ(textsOf({tiff::longs(257, {6})}), texts({{kHeight, "6"}}));
    EXPECT_EQ(textsOf({tiff::shorts(273, {8, 9})}), texts({{kStrips, "2"}}));
    EXPECT_EQ(textsOf({tiff::ascii(305, "software")}), texts({}));
}

// By design: three interleaved samples make one plane.
TEST(InfoNumbers, ThreeSamplesAreOnePlane) {
    const auto planes = [](DWORD samples) { return textsOf({tiff::shorts(277, {samples})}).at(kPlanes); };
    EXPECT_EQ(planes(3), "1");
    EXPECT_EQ(planes(1), "1");
    EXPECT_EQ(planes(2), "2");
    EXPECT_EQ(planes(4), "4");
    EXPECT_EQ(planes(0), "0");
    EXPECT_EQ(planes(65535), "65535");
}

TEST(InfoNumbers, AnRgbImageShowsPlanes1Bits8AndRgb) {
    EXPECT_EQ(textsOf({tiff::shorts(258, {8, 8, 8}), tiff::shorts(262, {2}), tiff::shorts(277, {3})}),
              texts({{kPlanes, "1"}, {kBits, "8"}, {kColourFormat, "RGB color"}}));
}

TEST(InfoNumbers, OfSeveralDepthsTheFirstCounts) {
    EXPECT_EQ(textsOf({tiff::shorts(258, {5, 6, 5})}).at(kBits), "5");
}

TEST(InfoNumbers, AreSigned) {
    EXPECT_EQ(textsOf({tiff::longs(256, {0x7FFFFFFF}), tiff::longs(257, {0xFFFFFFFF})}),
              texts({{kWidth, "2147483647"}, {kHeight, "-1"}}));
}

TEST(InfoNumbers, OfOtherTypesThanNumbersAreNotShown) {
    EXPECT_EQ(textsOf({tiff::ascii(256, "256"), tiff::ascii(257, "257"), tiff::ascii(258, "8"), tiff::ascii(259, "4"),
                       tiff::ascii(262, "2"), tiff::ascii(277, "3")}),
              texts({}));
    EXPECT_EQ(textsOf({tiff::byteValues(256, {200}), tiff::rationals(257, {77, 2})}),
              texts({{kWidth, "200"}, {kHeight, "77"}}));
}

// ---------------------------------------------------------------- colours

std::string colours(const std::vector<tiff::Entry> &entries) {
    return textsOf(entries).at(kColourFormat);
}

TEST(InfoColours, FollowPhotometricInterpretationAndDepth) {
    struct Row {
        DWORD photometric;
        const char *bilevel;
        const char *deeper;
    };
    constexpr Row kRows[] = {{0, "Monochrome", "Greyscale"},      {1, "Inv. monochrome", "Inv. greyscale"},
                             {2, "RGB color", "RGB color"},       {3, "Palette color", "Palette color"},
                             {4, "Transp. mask", "Transp. mask"}, {5, "Monochrom", "Monochrom"},
                             {6, "Monochrom", "Monochrom"},       {0xFFFF, "Monochrom", "Monochrom"}};
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.photometric);
        const tiff::Entry photometric = tiff::shorts(262, {row.photometric});
        EXPECT_EQ(colours({photometric}), row.bilevel);
        EXPECT_EQ(colours({tiff::shorts(258, {1}), photometric, tiff::shorts(277, {1})}), row.bilevel);
        EXPECT_EQ(colours({tiff::shorts(258, {8}), photometric}), row.deeper);
        EXPECT_EQ(colours({photometric, tiff::shorts(277, {3})}), row.deeper);
        EXPECT_EQ(colours({tiff::shorts(258, {4}), photometric, tiff::shorts(277, {3})}), row.deeper);
    }
    EXPECT_EQ(colours({tiff::longs(262, {0xFFFFFFFF})}), "Monochrom");
}

TEST(InfoColours, WithoutPhotometricInterpretationWhiteIsZero) {
    EXPECT_EQ(colours({tiff::longs(256, {5})}), "Monochrome");
    EXPECT_EQ(colours({tiff::shorts(258, {4})}), "Greyscale");
}

TEST(InfoColours, DepthsThatNoImageHasAreToldApartAllTheSame) {
    EXPECT_EQ(colours({tiff::shorts(258, {0})}), "Monochrome");
    EXPECT_EQ(colours({tiff::longs(258, {0x10000}), tiff::longs(277, {0x10000})}), "Greyscale");
    EXPECT_EQ(colours({tiff::longs(258, {0xFFFFFFFF}), tiff::longs(277, {0xFFFFFFFF})}), "Greyscale");
}

// ---------------------------------------------------------------- compression

TEST(InfoCompression, HasATextForEveryCompressionThatTheLibraryKnows) {
    struct Row {
        DWORD compression;
        const char *text;
        const char *option;
    };
    constexpr Row kRows[] = {{1, "No compression", "None"},
                             {2, "CCITT G3 No EOL", "None"},
                             {3, "CCITT G3", "1 dim."},
                             {4, "CCITT G4", "None"},
                             {5, "LZW", "Normal"},
                             {6, "JPEG", "None"},
                             {7, "No compression", "None"},
                             {0, "No compression", "None"},
                             {32771, "No compression", "None"},
                             {32773, "PackBits", "None"},
                             {65535, "No compression", "None"}};
    for (const Row &row : kRows) {
        EXPECT_EQ(textsOf({tiff::shorts(259, {row.compression})}),
                  texts({{kCompression, row.text}, {kOption, row.option}}))
            << row.compression;
    }
    EXPECT_EQ(textsOf({tiff::longs(256, {5})}), texts({{kWidth, "5"}})) << "without Compression";
}

TEST(InfoCompression, OfGroup3T4OptionsTellTheDimensionsByTheirLowestBit) {
    const auto option = [](DWORD value) {
        const Texts found = textsOf({tiff::shorts(259, {3}), tiff::longs(292, {value})});
        EXPECT_EQ(found.at(kCompression), "CCITT G3");
        return found.at(kOption);
    };
    EXPECT_EQ(option(0), "1 dim.");
    EXPECT_EQ(option(1), "2 dim.");
    EXPECT_EQ(option(4), "1 dim.");
    EXPECT_EQ(option(5), "2 dim.");
    EXPECT_EQ(option(0xFFFFFFFE), "1 dim.");
    EXPECT_EQ(option(0xFFFFFFFF), "2 dim.");
}

TEST(InfoCompression, OfLzwPredictorTellsWhetherThereAreDifferences) {
    const auto option = [](DWORD value) {
        const Texts found = textsOf({tiff::shorts(259, {5}), tiff::shorts(317, {value})});
        EXPECT_EQ(found.at(kCompression), "LZW");
        return found.at(kOption);
    };
    EXPECT_EQ(option(1), "Normal");
    EXPECT_EQ(option(2), "Differ.");
    EXPECT_EQ(option(3), "Differ.");
    EXPECT_EQ(option(0), "Differ.");
}

TEST(InfoCompression, EachOptionCountsForItsCompressionOnly) {
    for (const DWORD compression : {1, 2, 4, 6, 32773}) {
        EXPECT_EQ(textsOf({tiff::shorts(259, {compression}), tiff::longs(292, {1}), tiff::longs(293, {2}),
                           tiff::shorts(317, {2})})
                      .at(kOption),
                  "None")
            << compression;
    }
    EXPECT_EQ(textsOf({tiff::shorts(259, {3}), tiff::shorts(317, {2})}).at(kOption), "1 dim.");
    EXPECT_EQ(textsOf({tiff::shorts(259, {5}), tiff::longs(292, {1})}).at(kOption), "Normal");
}

// ---------------------------------------------------------------- resolution, for templates of a program's own

#pragma pack(push, 2)
struct OwnTemplate {
    struct Item {
        DLGITEMTEMPLATE item = {WS_CHILD | WS_VISIBLE, 0, 0, 0, 20, 10, 0};
        WORD window[2] = {0xFFFF, 0x0082}; // a static text
        WORD text = 0;
        WORD extra = 0;
        WORD aligned = 0;
    };
    DLGTEMPLATE head = {WS_POPUP | WS_VISIBLE | WS_CAPTION, 0, 2, 0, 0, 100, 50};
    WORD menuClassTitle[3] = {};
    Item horizontal;
    Item vertical;
};
#pragma pack(pop)
static_assert(sizeof(DLGTEMPLATE) + 3 * sizeof(WORD) == 24 && sizeof(OwnTemplate::Item) == 28);

struct Shown {
    std::string horizontal;
    std::string vertical;
    bool operator==(const Shown &) const = default;
};

Shown resolution(const std::vector<tiff::Entry> &entries) {
    tiff::Builder file;
    file.directory(entries);
    const OpenedTiff tiff(file.bytes());
    EXPECT_TRUE(registerImage(tiff.get(), 0));
    alignas(4) OwnTemplate own;
    own.horizontal.item.id = 211;
    own.vertical.item.id = 212;
    TiffInfoDlgParam param = {tiff.get(), 0};
    Shown shown;
    const DialogUser user([&shown](HWND dialog) {
        shown = {wholeTextOf(GetDlgItem(dialog, 211)), wholeTextOf(GetDlgItem(dialog, 212))};
        SendMessageA(dialog, WM_COMMAND, 1, 0);
    });
    EXPECT_EQ(DialogBoxIndirectParamA(GetModuleHandleA(nullptr), &own.head, nullptr, &TiffDllInfoDlgFn,
                                      reinterpret_cast<LPARAM>(&param)),
              1);
    return shown;
}

TEST(InfoResolution, ATemplateOfAProgramsOwnShowsIt) {
    EXPECT_EQ(resolution({tiff::rationals(282, {204, 1}), tiff::rationals(283, {98, 1})}), (Shown{"204", "98"}));
    EXPECT_EQ(resolution({tiff::rationals(282, {118, 1}), tiff::rationals(283, {157, 1}), tiff::shorts(296, {3})}),
              (Shown{"3", "4"}))
        << "as GetTiffImageDPI has centimetres";
    EXPECT_EQ(resolution({tiff::rationals(282, {204, 1}), tiff::rationals(283, {98, 1}), tiff::shorts(296, {9})}),
              (Shown{"0", "0"}));
    EXPECT_EQ(resolution({tiff::rationals(282, {65535, 1}), tiff::rationals(283, {32768, 1})}),
              (Shown{"65535", "32768"}));
}

// ---------------------------------------------------------------- error number, without memory

// By design: T6Options is looked up as the other options are, though nothing of it is shown.
TEST(InfoErrors, OneAbsentTagLeavesError13AndWithAllOfThemTheErrorStays) {
    const std::vector<tiff::Entry> all = {
        tiff::longs(256, {20}),         tiff::longs(257, {10}),        tiff::shorts(258, {1}), tiff::shorts(259, {4}),
        tiff::shorts(262, {0}),         tiff::ascii(270, "title"),     tiff::longs(273, {8}),  tiff::shorts(277, {1}),
        tiff::rationals(282, {204, 1}), tiff::rationals(283, {98, 1}), tiff::longs(293, {0}),  tiff::shorts(296, {2}),
        tiff::ascii(306, "date"),       tiff::ascii(315, "artist"),
    };
    const auto errorOf = [](const std::vector<tiff::Entry> &entries) {
        textsOf(entries);
        return TiffError();
    };
    EXPECT_EQ(errorOf(all), DWORD{VELLUM_OK});
    for (std::size_t left = 0; left < all.size(); ++left) {
        std::vector<tiff::Entry> entries = all;
        entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(left));
        EXPECT_EQ(errorOf(entries), DWORD{VELLUM_TAG_NOT_DEFINED}) << all[left].tag;
    }
}

TEST(InfoFaults, WithoutMemoryForATextTheTemplatesStays) {
    tiff::Builder file;
    file.directory({tiff::longs(256, {20}), tiff::ascii(270, "A title"), tiff::ascii(306, "A date"),
                    tiff::ascii(315, "An artist")});
    const OpenedTiff tiff(file.bytes());
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    constexpr int kInOrder[] = {kTitle, kArtist, kDate};
    const Texts whole = texts({{kWidth, "20"}, {kTitle, "A title"}, {kArtist, "An artist"}, {kDate, "A date"}});
    for (const Call call : {Call::Allocate, Call::Reallocate}) {
        for (long n = 0; n <= 3; ++n) {
            const FailNth fault(call, n);
            Texts expected = whole;
            if (n < 3) {
                expected[kInOrder[n]] = kTemplateTexts.at(kInOrder[n]);
            }
            EXPECT_EQ(textsOf(tiff.get()), expected) << n;
            EXPECT_EQ(fault.happened(), n < 3);
        }
    }
}

} // namespace
