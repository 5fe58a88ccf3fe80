// Seeded random damage to small files and streams: each decode ends in an orderly way, in bounded time. The native
// build runs this under the address sanitizer with every block exactly as large as it was asked for.
#include "hostile/orderly.h"

namespace {

using namespace vellum::test;

constexpr std::uint32_t kRounds = 1500;

// One to six bytes from a position on: replaced, a bit flipped, zeroed, or a piece moved.
void damage(Bytes &bytes, std::size_t from, Random &random) {
    const auto size = static_cast<std::uint32_t>(bytes.size() - from);
    for (std::uint32_t i = 1 + random.below(6); i > 0; --i) {
        std::uint8_t &byte = bytes[from + random.below(size)];
        switch (random.below(5)) {
        case 0:
            byte = static_cast<std::uint8_t>(random.below(256));
            break;
        case 1:
            byte = static_cast<std::uint8_t>(byte ^ 1U << random.below(8));
            break;
        case 2:
            byte = 0;
            break;
        case 3:
            byte = 0xFF;
            break;
        default:
            byte = bytes[from + random.below(size)];
            break;
        }
    }
}

class Corrupted : public testing::TestWithParam<DWORD> {};

TEST_P(Corrupted, CodeEndsOrderly) {
    const SmallPicture picture = smallPicture(GetParam());
    const Bytes whole = codedTiffCodeLast(picture.page, picture.code);
    const Stopwatch watch;
    for (std::uint32_t seed = 0; seed < kRounds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        Bytes bytes = whole;
        damage(bytes, whole.size() - picture.code.size(), random);
        const OpenedTiff tiff(bytes);
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        LineLog log;
        const Outcome outcome = decodeInto(log, tiff.get(), 0);
        EXPECT_TRUE(orderly(outcome, log, picture.page.height));
    }
    EXPECT_LT(watch.seconds(), kPromptSeconds * 6);
}

// Nothing but noise where code should be.
TEST_P(Corrupted, NoiseEndsOrderly) {
    CodedPage page = smallPicture(GetParam()).page;
    page.height = 200;
    const Stopwatch watch;
    for (std::uint32_t seed = 0; seed < kRounds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        Bytes code;
        const std::uint32_t zeros = random.below(4); // noise of every density
        for (std::uint32_t i = 30 + random.below(200); i > 0; --i) {
            code.push_back(static_cast<std::uint8_t>(random.below(4) < zeros ? 0 : random.below(256)));
        }
        page.width = 1 + random.below(300);
        page.rowsPerStrip = random.below(3) == 0 ? 1 + random.below(9) : 0;
        const OpenedTiff tiff(codedTiff(page, std::vector<Bytes>(1 + random.below(40), code)));
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        LineLog log;
        const Outcome outcome = decodeInto(log, tiff.get(), 0);
        EXPECT_TRUE(log.inOrder);
        EXPECT_LE(log.lines, page.height);
        EXPECT_EQ(outcome.result == 1, outcome.error == VELLUM_OK);
    }
    EXPECT_LT(watch.seconds(), kPromptSeconds * 6);
}

// The same damage to the whole file, header and directory included.
TEST_P(Corrupted, FilesEndOrderly) {
    SmallPicture picture = smallPicture(GetParam());
    picture.page.rowsPerStrip = 4;
    const Bytes whole = codedTiff(picture.page, encodeStrips(picture.page, picture.packed));
    const Stopwatch watch;
    for (std::uint32_t seed = 0; seed < kRounds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed + 100000);
        Bytes bytes = whole;
        damage(bytes, 0, random);
        if (const OpenedTiff tiff(bytes); tiff) {
            useAllImages(tiff.get());
        }
    }
    EXPECT_LT(watch.seconds(), kPromptSeconds * 6);
}

// The directory alone: the damage that changes sizes, counts, types and offsets.
TEST_P(Corrupted, DirectoriesEndOrderlyInFilesToo) {
    const SmallPicture picture = smallPicture(GetParam());
    tiff::Builder builder;
    std::vector<tiff::Entry> entries = entriesOf(picture.page);
    entries.push_back(tiff::rationals(282, {200, 1}));
    entries.push_back(tiff::shorts(320, std::vector<std::uint32_t>(48, 7)));
    builder.page(entries, {picture.code});
    const Bytes whole = builder.bytes();
    const Stopwatch watch;
    for (std::uint32_t seed = 0; seed < kRounds / kFileStep; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed + 200000);
        Bytes bytes = whole;
        damage(bytes, picture.code.size() + 8, random);
        const TempFile file(bytes);
        if (const OpenedTiff tiff{std::string(file.path())}; tiff) {
            useAllImages(tiff.get());
        }
        if (const HGLOBAL dib = LoadTiffIntoDIB(file.path(), 0, 0); dib != nullptr) {
            GlobalFree(dib);
        } else {
            EXPECT_NE(TiffError(), DWORD{VELLUM_OK});
        }
        EXPECT_EQ(readFile(file.path()), bytes);
    }
    EXPECT_LT(watch.seconds(), kPromptSeconds * 6);
}

INSTANTIATE_TEST_SUITE_P(Hostile, Corrupted, testing::ValuesIn(kAllKeys),
                         [](const testing::TestParamInfo<DWORD> &key) { return "Key" + std::to_string(key.param); });

TEST(CorruptedRaw, BlocksOfMmrEndOrderly) {
    const SmallPicture picture = smallPicture(VELLUM_KEY_GROUP4);
    const Bytes framed = frameBlocks(picture.code, 17);
    for (std::uint32_t seed = 0; seed < kRounds / kFileStep; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        Bytes bytes = framed;
        damage(bytes, 0, random);
        const TempFile file(bytes);
        const RawFile stream(file.path());
        LineLog log;
        const Outcome outcome =
            decodeMmrInto(log, stream.get(), {.width = picture.page.width, .height = picture.page.height});
        EXPECT_TRUE(orderly(outcome, log, picture.page.height));
    }
}

// The fixtures' own code, with its long lines and many strips.
TEST(CorruptedFixtures, EndOrderly) {
    for (const char *name : {"g4-msb-ii.tif", "g4-msb-mm-r1.tif", "g3-2d-lsb-mm-r7.tif", "g3-1d-fill-msb-ii.tif",
                             "mh-lsb-mm-r7.tif", "lzw2-msb-ii.tif", "lzw1-lsb-mm-r7.tif", "packbits-msb-mm-r1.tif"}) {
        const std::optional<Bytes> whole = readFile(fixture(name));
        ASSERT_TRUE(whole);
        for (std::uint32_t seed = 0; seed < 40; ++seed) {
            SCOPED_TRACE(std::string(name) + ", seed " + std::to_string(seed));
            Random random(seed);
            Bytes bytes = *whole;
            damage(bytes, 0, random);
            if (const OpenedTiff tiff(bytes); tiff) {
                useAllImages(tiff.get(), 20);
            }
        }
    }
}

} // namespace
