// Files and streams cut at every byte: what comes before the cut is delivered, what comes after it is a clean error,
// and a file is never touched.
#include "hostile/orderly.h"

namespace {

using namespace vellum::test;

class Truncated : public testing::TestWithParam<DWORD> {};

Bytes cut(const Bytes &bytes, std::size_t size) {
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

TEST_P(Truncated, CodeInMemoryDeliversTheLinesBeforeTheCut) {
    const SmallPicture picture = smallPicture(GetParam());
    const Bytes whole = codedTiffCodeLast(picture.page, picture.code);
    const std::size_t codeStart = whole.size() - picture.code.size();
    DWORD linesBefore = 0;
    for (std::size_t size = codeStart; size <= whole.size(); ++size) {
        SCOPED_TRACE(std::to_string(size - codeStart) + " bytes of code");
        const OpenedTiff tiff(cut(whole, size));
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        LineLog log;
        const Outcome outcome = decodeInto(log, tiff.get(), 0);
        EXPECT_TRUE(orderly(outcome, log, picture.page.height));
        EXPECT_TRUE(startsWithLinesOf(picture.packed, log));
        EXPECT_GE(log.lines, linesBefore);
        linesBefore = log.lines;
    }
    EXPECT_EQ(linesBefore, picture.page.height);
}

TEST_P(Truncated, FilesEndOrderlyAndStayAsTheyAre) {
    const SmallPicture picture = smallPicture(GetParam());
    const Bytes codeLast = codedTiffCodeLast(picture.page, picture.code);
    const Bytes directoryLast = codedTiff(picture.page, {picture.code}, tiff::kMM);
    for (const Bytes &whole : {codeLast, directoryLast}) {
        for (std::size_t size = GetParam() % kFileStep; size < whole.size(); size += kFileStep) {
            SCOPED_TRACE(std::to_string(size) + " bytes of the file");
            const Bytes content = cut(whole, size);
            const TempFile file(content);
            if (const OpenedTiff tiff{std::string(file.path())}; tiff) {
                useAllImages(tiff.get());
            } else {
                const DWORD error = TiffError();
                EXPECT_TRUE(error == VELLUM_IO_ERROR || error == VELLUM_NOT_TIFF || error == VELLUM_BAD_BYTE_ORDER);
            }
            EXPECT_EQ(readFile(file.path()), content);
        }
    }
}

TEST_P(Truncated, TiffsInMemoryEndOrderly) {
    const SmallPicture picture = smallPicture(GetParam());
    const Bytes codeLast = codedTiffCodeLast(picture.page, picture.code);
    const Bytes directoryLast = codedTiff(picture.page, {picture.code}, tiff::kMM);
    for (const Bytes &whole : {codeLast, directoryLast}) {
        for (std::size_t size = 0; size < whole.size(); ++size) {
            SCOPED_TRACE(std::to_string(size) + " bytes of the file");
            if (const OpenedTiff tiff(cut(whole, size)); tiff) {
                useAllImages(tiff.get());
            }
        }
    }
}

// Several strips, the last ones behind the cut.
TEST_P(Truncated, StripsBehindTheCutAreAnErrorAndThoseBeforeItAreDelivered) {
    SmallPicture picture = smallPicture(GetParam());
    picture.page.rowsPerStrip = 5;
    tiff::Builder builder;
    const std::vector<Bytes> strips = encodeStrips(picture.page, picture.packed);
    const Bytes whole = codedTiff(picture.page, strips);
    // The strips moved behind the directory: their offsets grow by the size of what lies behind them now.
    const auto moved = static_cast<std::uint32_t>(whole.size());
    std::vector<tiff::Entry> entries = entriesOf(picture.page);
    std::vector<std::uint32_t> offsets;
    std::uint32_t at = moved;
    for (const Bytes &strip : strips) {
        offsets.push_back(at);
        at += static_cast<std::uint32_t>(strip.size());
    }
    entries.insert(std::find_if(entries.begin(), entries.end(), [](const tiff::Entry &e) { return e.tag > 273; }),
                   tiff::longs(273, offsets));
    builder.directory(entries);
    Bytes bytes = builder.bytes();
    ASSERT_LE(bytes.size(), moved);
    bytes.resize(moved);
    for (const Bytes &strip : strips) {
        bytes.insert(bytes.end(), strip.begin(), strip.end());
    }
    for (std::size_t size = moved; size <= bytes.size(); ++size) {
        SCOPED_TRACE(std::to_string(size - moved) + " bytes of code");
        const OpenedTiff tiff(cut(bytes, size));
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        LineLog log;
        const Outcome outcome = decodeInto(log, tiff.get(), 0);
        EXPECT_TRUE(orderly(outcome, log, picture.page.height));
        EXPECT_TRUE(startsWithLinesOf(picture.packed, log));
        if (size >= moved + strips[0].size()) {
            EXPECT_GE(log.lines, 5U);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Hostile, Truncated, testing::ValuesIn(kAllKeys),
                         [](const testing::TestParamInfo<DWORD> &key) { return "Key" + std::to_string(key.param); });

constexpr DWORD kCcittKeys[] = {VELLUM_KEY_MODIFIED_HUFFMAN, VELLUM_KEY_GROUP3_1D,      VELLUM_KEY_GROUP3_1D_FILL,
                                VELLUM_KEY_GROUP3_2D,        VELLUM_KEY_GROUP3_2D_FILL, VELLUM_KEY_GROUP4};

TEST(TruncatedRaw, StreamsDeliverTheLinesBeforeTheCut) {
    for (const DWORD key : kCcittKeys) {
        const SmallPicture picture = smallPicture(key);
        for (std::size_t size = 0; size <= picture.code.size(); ++size) {
            SCOPED_TRACE(std::string(keyName(key)) + ", " + std::to_string(size) + " bytes");
            const TempFile file(cut(picture.code, size));
            const RawFile stream(file.path());
            LineLog log;
            const Outcome outcome = decodeRawInto(
                log, stream.get(), {.width = picture.page.width, .height = picture.page.height, .key = key});
            EXPECT_TRUE(orderly(outcome, log, picture.page.height));
            EXPECT_TRUE(startsWithLinesOf(picture.packed, log));
        }
    }
}

struct MmrRun {
    Outcome outcome;
    Bytes lines;
    bool operator==(const MmrRun &) const = default;
};

MmrRun decodeBlocks(const Bytes &framed, const CodedPage &page) {
    const TempFile file(framed);
    const RawFile stream(file.path());
    LineLog log;
    const Outcome outcome = decodeMmrInto(log, stream.get(), {.width = page.width, .height = page.height});
    EXPECT_TRUE(orderly(outcome, log, page.height));
    return {outcome, log.data};
}

// What a cut block lacks reads as zeros, not as what the block before it left behind.
TEST(TruncatedRaw, BlocksOfMmrEndAsIfZerosFollowed) {
    constexpr std::size_t kBlock = 9;
    constexpr std::size_t kHeader = 4;
    const SmallPicture picture = smallPicture(VELLUM_KEY_GROUP4);
    const Bytes framed = frameBlocks(picture.code, kBlock);
    EXPECT_EQ(decodeBlocks(framed, picture.page), (MmrRun{kDecoded, picture.packed}));
    for (std::size_t size = 0; size < framed.size(); ++size) {
        SCOPED_TRACE(std::to_string(size) + " bytes");
        Bytes zeroed = cut(framed, size);
        if (size % (kBlock + kHeader) >= kHeader) {
            const std::size_t blockEnd = size - size % (kBlock + kHeader) + kBlock + kHeader;
            zeroed.resize(blockEnd < framed.size() ? blockEnd : framed.size());
        }
        EXPECT_EQ(decodeBlocks(cut(framed, size), picture.page), decodeBlocks(zeroed, picture.page));
    }
}

} // namespace
