// Small files that promise huge pictures, and raw streams of impossible sizes: an answer at once and in little memory.
#include "hostile/orderly.h"

namespace {

using namespace vellum::test;

// What stands where the code should be.
Bytes filler(std::uint32_t kind) {
    Random random(kind);
    Bytes code;
    while (code.size() < 800) {
        code.push_back(static_cast<std::uint8_t>(kind == 0   ? 0
                                                 : kind == 1 ? 0xFF
                                                 : kind == 2 ? 0x80
                                                             : random.below(256)));
    }
    return code;
}
constexpr std::uint32_t kFillers = 5;

struct Depth {
    DWORD bits;
    DWORD samples;
};
constexpr Depth kDepths[] = {{1, 1}, {4, 1}, {8, 1}, {8, 3}};

Bytes hugeTiff(DWORD width, DWORD height, const Depth &depth, DWORD key, std::uint32_t kind) {
    const CodedPage page{.width = width, .height = height, .bits = depth.bits, .samples = depth.samples, .key = key};
    return codedTiff(page, {filler(kind)});
}

void expectPrompt(const Bytes &content) {
    ASSERT_LE(content.size(), 1024U);
    const Stopwatch watch;
    const PeakMemory memory;
    const TempFile file(content);
    {
        const OpenedTiff tiff{std::string(file.path())};
        ASSERT_TRUE(tiff);
        useAllImages(tiff.get());
        const OpenedTiff inMemory(content);
        useAllImages(inMemory.get());
    }
    const HGLOBAL dib = LoadTiffIntoDIB(file.path(), 0, 0);
    if (dib == nullptr) {
        EXPECT_NE(TiffError(), DWORD{VELLUM_OK});
    } else {
        EXPECT_NE(TiffError(), DWORD{VELLUM_OK}) << "800 bytes cannot fill the picture";
        GlobalFree(dib);
    }
    EXPECT_LT(watch.seconds(), kPromptSeconds);
    EXPECT_LT(memory.bytes(), kLittleMemory);
    EXPECT_EQ(readFile(file.path()), content);
}

class HugeImages : public testing::TestWithParam<DWORD> {};

TEST_P(HugeImages, OfTheLargest16BitSizeAreAnsweredAtOnceInLittleMemory) {
    for (const Depth &depth : kDepths) {
        for (std::uint32_t kind = 0; kind < kFillers; ++kind) {
            SCOPED_TRACE(std::to_string(depth.bits * depth.samples) + " bits, filler " + std::to_string(kind));
            expectPrompt(hugeTiff(65535, 65535, depth, GetParam(), kind));
        }
    }
}

TEST_P(HugeImages, TallerOrWiderThan16BitsAreAnsweredAtOnce) {
    for (const Depth &depth : kDepths) {
        SCOPED_TRACE(std::to_string(depth.bits * depth.samples) + " bits");
        for (const DWORD height : {0x10000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
            SCOPED_TRACE("height " + std::to_string(height));
            expectPrompt(hugeTiff(1000, height, depth, GetParam(), 3));
        }
    }
}

// Lines that are themselves larger than the memory for them should be; the answer may take what one line takes.
TEST_P(HugeImages, WidthsWhoseLinesOverflowAreAnsweredAtOnce) {
    for (const Depth &depth : kDepths) {
        SCOPED_TRACE(std::to_string(depth.bits * depth.samples) + " bits");
        for (const DWORD width :
             {0x0AAAAAABU, 0x15555556U, 0x20000000U, 0x40000000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFF9U, 0xFFFFFFFFU}) {
            SCOPED_TRACE("width " + std::to_string(width));
            const Stopwatch watch;
            const OpenedTiff tiff(hugeTiff(width, 3, depth, GetParam(), 3));
            ASSERT_TRUE(tiff);
            useAllImages(tiff.get());
            EXPECT_LT(watch.seconds(), kPromptSeconds);
        }
    }
}

TEST_P(HugeImages, OfNoWidthOrNoHeightAreAnsweredAtOnce) {
    struct Size {
        DWORD width;
        DWORD height;
    };
    for (const Size size : {Size{0, 1}, Size{0, 65535}, Size{0, 0xFFFFFFFF}, Size{0, 0x7FFFFFFF}, Size{1, 0},
                            Size{65535, 0}, Size{0, 0}}) {
        for (const Depth &depth : kDepths) {
            SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height) + ", " +
                         std::to_string(depth.bits * depth.samples) + " bits");
            const Stopwatch watch;
            const Bytes content = hugeTiff(size.width, size.height, depth, GetParam(), 4);
            const OpenedTiff tiff(content);
            ASSERT_TRUE(tiff);
            useAllImages(tiff.get());
            const TempFile file(content);
            if (const HGLOBAL dib = LoadTiffIntoDIB(file.path(), 0, 0); dib != nullptr) {
                GlobalFree(dib);
            }
            EXPECT_LT(watch.seconds(), kPromptSeconds);
        }
    }
}

// Keys the library knows, and some it does not.
const std::vector<DWORD> kKeys = {VELLUM_KEY_NONE,
                                  VELLUM_KEY_MODIFIED_HUFFMAN,
                                  VELLUM_KEY_GROUP3_1D,
                                  VELLUM_KEY_GROUP3_2D,
                                  VELLUM_KEY_GROUP4,
                                  VELLUM_KEY_LZW,
                                  VELLUM_KEY_LZW_DIFFERENCING,
                                  VELLUM_KEY_PACKBITS,
                                  0,
                                  7,
                                  8,
                                  32771,
                                  65535,
                                  0x20003,
                                  0x30005};
INSTANTIATE_TEST_SUITE_P(Hostile, HugeImages, testing::ValuesIn(kKeys),
                         [](const testing::TestParamInfo<DWORD> &key) { return "Key" + std::to_string(key.param); });

// ------------------------------------------------------------------------------------------------ raw streams

constexpr DWORD kCcittKeys[] = {2,
                                VELLUM_KEY_MODIFIED_HUFFMAN,
                                VELLUM_KEY_GROUP3_1D,
                                VELLUM_KEY_GROUP3_1D_FILL,
                                VELLUM_KEY_GROUP3_2D,
                                VELLUM_KEY_GROUP3_2D_FILL,
                                VELLUM_KEY_GROUP4};

TEST(HugeRawImages, EndOrderlyAndAtOnce) {
    for (const DWORD key : kCcittKeys) {
        for (std::uint32_t kind = 0; kind < kFillers; ++kind) {
            const TempFile file(filler(kind));
            for (const DWORD width :
                 {0U, 1U, 65535U, 0x01000000U, 0x7FFFFFFFU, 0xFFFFFFF8U, 0xFFFFFFF9U, 0xFFFFFFFFU}) {
                for (const DWORD height : {0U, 1U, 65535U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
                    SCOPED_TRACE("key " + std::to_string(key) + ", filler " + std::to_string(kind) + ", " +
                                 std::to_string(width) + " x " + std::to_string(height));
                    const Stopwatch watch;
                    const RawFile stream(file.path());
                    LineLog log;
                    log.keepData = false;
                    const Outcome outcome = decodeRawInto(log, stream.get(), {0, width, height, key, 1});
                    EXPECT_EQ(outcome.result == 1, outcome.error == VELLUM_OK);
                    EXPECT_TRUE(log.inOrder);
                    EXPECT_LE(log.lines, height);
                    EXPECT_LT(watch.seconds(), kPromptSeconds);
                }
            }
        }
    }
}

TEST(HugeRawImages, WidthsThatWrapAreRefusedWithoutALine) {
    const TempFile file(filler(1));
    for (const DWORD width : {0xFFFFFFF9U, 0xFFFFFFFFU}) {
        for (const DWORD key : kCcittKeys) {
            const RawFile stream(file.path());
            LineLog log;
            log.keepData = false;
            EXPECT_EQ(decodeRawInto(log, stream.get(), {0, width, 10, key, 1}).result, 0U);
            EXPECT_NE(TiffError(), DWORD{VELLUM_OK});
            EXPECT_EQ(log.lines, 0U);
        }
    }
}

TEST(HugeRawImages, UnknownKeysAreRefusedWithoutALine) {
    const TempFile file(filler(1));
    for (const DWORD key : {DWORD{0}, DWORD{7}, DWORD{8}, DWORD{0x20003}, DWORD{0x30005}, DWORD{0x50004},
                            DWORD{0x10004}, DWORD{0x18005}, DWORD{0xFFFFFFFF}}) {
        const RawFile stream(file.path());
        LineLog log;
        EXPECT_EQ(decodeRawInto(log, stream.get(), {0, 100, 100, key, 1}), failedWith(VELLUM_UNKNOWN_COMPRESSION))
            << key;
        EXPECT_EQ(log.lines, 0U);
    }
}

TEST(HugeRawImages, StreamsThatAreNoneAreIoErrors) {
    for (const StreamHandle stream : {StreamHandle{-1}, StreamHandle{0}, StreamHandle{-2}, StreamHandle{-30},
                                      StreamHandle{-31}, StreamHandle{0x7FFF0000}}) {
        LineLog log;
        EXPECT_EQ(decodeRawInto(log, stream, {0, 100, 100, VELLUM_KEY_GROUP4, 1}), failedWith(VELLUM_IO_ERROR))
            << stream;
        EXPECT_EQ(decodeMmrInto(log, stream, {0, 100, 100, VELLUM_KEY_GROUP4, 1}), failedWith(VELLUM_IO_ERROR))
            << stream;
        EXPECT_EQ(log.lines, 0U);
    }
}

} // namespace
