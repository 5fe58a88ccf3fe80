// Pictures that independent encoders coded in every way they know decode to the pixels they were made from: from files,
// from memory, strip by strip, as raw streams and into DIBs. scripts/make-fixtures makes the files beside this one.
#include "support/decode_lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace {

using namespace vellum::test;

struct Picture {
    std::string name;
    DWORD width = 0;
    DWORD height = 0;
    DWORD bits = 0;
    DWORD samples = 0;
    DWORD photometric = 0;
    Bytes data; // rows of lineBytes()

    [[nodiscard]] DWORD bitsPerPixel() const { return bits * samples; }
    [[nodiscard]] std::size_t lineBytes() const { return packedLineBytes(width, bitsPerPixel()); }
    // Some of its rows.
    [[nodiscard]] Bytes rows(DWORD first, DWORD count) const {
        const auto begin = data.begin() + static_cast<std::ptrdiff_t>(first * lineBytes());
        return {begin, begin + static_cast<std::ptrdiff_t>(count * lineBytes())};
    }
};

struct TiffPage {
    std::string file;
    DWORD page = 0;
    const Picture *picture = nullptr;
    DWORD key = 0;
    DWORD rowsPerStrip = 0; // 0: the tool chose
};

struct RawPage {
    std::string file;
    const Picture *picture = nullptr;
    RawCode code;
};

struct Corpus {
    std::map<std::string, Picture> pictures;
    std::vector<TiffPage> pages;
    std::vector<RawPage> raw;
};

Bytes wholeFile(const std::string &path) {
    std::optional<Bytes> content = readFile(path);
    if (!content) {
        throw std::runtime_error("cannot read " + path);
    }
    return *std::move(content);
}

// Lines of a text file without comments.
std::vector<std::string> linesOf(const std::string &name) {
    std::ifstream file(fixture(name));
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#') {
            lines.push_back(line);
        }
    }
    return lines;
}

void readPictures(Corpus &corpus) {
    const Bytes all = wholeFile(fixture("pictures.raw"));
    for (const std::string &line : linesOf("pictures.txt")) {
        Picture picture;
        std::size_t offset = 0;
        std::istringstream(line) >> picture.name >> picture.width >> picture.height >> picture.bits >>
            picture.samples >> picture.photometric >> offset;
        const auto begin = all.begin() + static_cast<std::ptrdiff_t>(offset);
        picture.data.assign(begin, begin + static_cast<std::ptrdiff_t>(picture.lineBytes() * picture.height));
        corpus.pictures.emplace(picture.name, picture);
    }
}

Corpus readCorpus() {
    Corpus corpus;
    readPictures(corpus);
    for (const std::string &line : linesOf("manifest.txt")) {
        std::istringstream in(line);
        std::string kind;
        std::string file;
        std::string picture;
        std::string key;
        DWORD number = 0;
        DWORD last = 0;
        DWORD codedWidth = 0;
        in >> kind >> file >> number >> picture >> key >> last >> codedWidth;
        const Picture &known = corpus.pictures.at(picture);
        const DWORD keyNumber = std::stoul(key, nullptr, 16);
        if (kind == "tiff") {
            corpus.pages.push_back({file, number, &known, keyNumber, last});
        } else {
            corpus.raw.push_back({file, &known, {number, codedWidth, known.height, keyNumber, last}});
        }
    }
    return corpus;
}

const Corpus &corpus() {
    static const Corpus read = readCorpus();
    return read;
}

// Says where two pages differ first, instead of printing both.
testing::AssertionResult sameLines(const LineLog &log, const Bytes &expected) {
    if (!log.inOrder) {
        return testing::AssertionFailure() << "lines out of order";
    }
    const std::size_t common = log.data.size() < expected.size() ? log.data.size() : expected.size();
    for (std::size_t i = 0; i < common; ++i) {
        if (log.data[i] != expected[i]) {
            return testing::AssertionFailure()
                   << "line " << log.firstLine + i / log.lineBytes << ", byte " << i % log.lineBytes << ": "
                   << unsigned{log.data[i]} << " for " << unsigned{expected[i]};
        }
    }
    if (log.data.size() != expected.size()) {
        return testing::AssertionFailure() << log.data.size() << " bytes for " << expected.size();
    }
    return testing::AssertionSuccess();
}

void expectPage(TiffHandle tiff, const TiffPage &page) {
    ASSERT_TRUE(registerImage(tiff, page.page));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff, page.page), kDecoded);
    EXPECT_TRUE(sameLines(log, page.picture->data));
    DropTiffImage(tiff, page.page);
}

std::string label(const TiffPage &page) {
    return page.file + " page " + std::to_string(page.page) + " (" + page.picture->name + ")";
}

TEST(Corpus, HoldsEveryCodingAndBothOrders) {
    std::map<DWORD, int> pagesByKey;
    for (const TiffPage &page : corpus().pages) {
        ++pagesByKey[page.key];
    }
    for (const DWORD key : {VELLUM_KEY_MODIFIED_HUFFMAN, VELLUM_KEY_GROUP3_1D, VELLUM_KEY_GROUP3_1D_FILL,
                            VELLUM_KEY_GROUP3_2D, VELLUM_KEY_GROUP3_2D_FILL, VELLUM_KEY_GROUP4}) {
        EXPECT_GE(pagesByKey[key], 39) << key;
    }
    for (const DWORD key : {VELLUM_KEY_NONE, VELLUM_KEY_PACKBITS, VELLUM_KEY_LZW}) {
        EXPECT_GE(pagesByKey[key], 36) << key;
    }
    EXPECT_GE(pagesByKey[VELLUM_KEY_LZW_DIFFERENCING], 18);
    EXPECT_GE(corpus().raw.size(), 19U);
}

TEST(Corpus, EveryPageOfAFileDecodesToItsPicture) {
    for (const TiffPage &page : corpus().pages) {
        SCOPED_TRACE(label(page));
        const OpenedTiff tiff(fixture(page.file));
        ASSERT_TRUE(tiff);
        expectPage(tiff.get(), page);
    }
}

TEST(Corpus, EveryPageInMemoryDecodesToItsPicture) {
    for (const TiffPage &page : corpus().pages) {
        SCOPED_TRACE(label(page));
        const OpenedTiff tiff(wholeFile(fixture(page.file)));
        ASSERT_TRUE(tiff);
        expectPage(tiff.get(), page);
    }
}

TEST(Corpus, OneOpenFileDecodesAllItsPagesInAnyOrder) {
    const std::string name = "g4-lsb-mm-r7.tif";
    const OpenedTiff tiff(fixture(name));
    ASSERT_TRUE(tiff);
    std::vector<TiffPage> pages;
    for (const TiffPage &page : corpus().pages) {
        if (page.file == name) {
            pages.insert(pages.begin(), page);
        }
    }
    ASSERT_EQ(pages.size(), static_cast<std::size_t>(NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES)));
    for (const TiffPage &page : pages) {
        SCOPED_TRACE(label(page));
        expectPage(tiff.get(), page);
    }
}

TEST(Corpus, DimensionsAndStripsAreThePictures) {
    for (const TiffPage &page : corpus().pages) {
        SCOPED_TRACE(label(page));
        const OpenedTiff tiff(fixture(page.file));
        ASSERT_TRUE(registerImage(tiff.get(), page.page));
        BITMAPINFOHEADER header{};
        ASSERT_EQ(GetTiffDimensions(tiff.get(), page.page, &header), 0U);
        EXPECT_EQ(static_cast<DWORD>(header.biWidth), page.picture->width);
        EXPECT_EQ(static_cast<DWORD>(header.biHeight), page.picture->height);
        EXPECT_EQ(header.biBitCount, page.picture->bitsPerPixel());
        if (page.rowsPerStrip != 0) {
            const DWORD rows = std::min(page.rowsPerStrip, page.picture->height);
            EXPECT_EQ(GetTiffRowsPerStrip(tiff.get(), page.page), rows);
            EXPECT_EQ(static_cast<DWORD>(GetTiffStripCount(tiff.get(), page.page)),
                      (page.picture->height + rows - 1) / rows);
        }
    }
}

// Decodes count lines from a strip on and compares them with the picture's.
void expectRange(TiffHandle tiff, const TiffPage &page, DWORD firstStrip, DWORD count) {
    const DWORD height = page.picture->height;
    const DWORD first = firstStrip * page.rowsPerStrip;
    const DWORD expected = count == 0 || first + count > height ? height - first : count;
    SCOPED_TRACE("strip " + std::to_string(firstStrip) + ", " + std::to_string(count) + " lines");
    LineLog log;
    log.firstLine = first;
    EXPECT_EQ(decodeInto(log, tiff, page.page, firstStrip, count), kDecoded);
    EXPECT_TRUE(sameLines(log, page.picture->rows(first, expected)));
}

void expectRanges(TiffHandle tiff, const TiffPage &page) {
    ASSERT_TRUE(registerImage(tiff, page.page));
    const auto strips = static_cast<DWORD>(GetTiffStripCount(tiff, page.page));
    for (DWORD strip = 0; strip < strips; ++strip) {
        for (const DWORD count : {DWORD{0}, DWORD{1}, page.rowsPerStrip, page.rowsPerStrip + 2, DWORD{1000}}) {
            expectRange(tiff, page, strip, count);
        }
    }
    LineLog none;
    EXPECT_EQ(decodeInto(none, tiff, page.page, strips, 1), failedWith(VELLUM_INDEX_OUT_OF_RANGE));
    EXPECT_EQ(none.lines, 0U);
}

TEST(Corpus, EveryRangeOfStripsDeliversItsLinesWithTheirNumbers) {
    for (const TiffPage &page : corpus().pages) {
        if (page.rowsPerStrip == 0 || page.rowsPerStrip >= page.picture->height) {
            continue;
        }
        SCOPED_TRACE(label(page));
        const OpenedTiff file(fixture(page.file));
        expectRanges(file.get(), page);
        const OpenedTiff memory(wholeFile(fixture(page.file)));
        expectRanges(memory.get(), page);
    }
}

TEST(Corpus, RawStreamsDecodeToTheirPicture) {
    for (const RawPage &page : corpus().raw) {
        SCOPED_TRACE(page.file);
        const RawFile file(fixture(page.file));
        ASSERT_TRUE(file);
        LineLog log;
        EXPECT_EQ(decodeRawInto(log, file.get(), page.code), kDecoded);
        EXPECT_TRUE(sameLines(log, page.picture->data));
    }
}

TEST(Corpus, RawStreamsDecodeFromTheFilesPosition) {
    for (const RawPage &page : corpus().raw) {
        if (page.code.fillOrder != 1) {
            continue;
        }
        SCOPED_TRACE(page.file);
        const RawFile file(fixture(page.file));
        ASSERT_EQ(_llseek(file.get(), static_cast<LONG>(page.code.offset), 0), static_cast<LONG>(page.code.offset));
        LineLog log;
        log.lineBytes = page.picture->lineBytes();
        EXPECT_EQ(DecodeCcittImage(file.get(), page.code.width, page.code.height, page.code.key, log.userValue(),
                                   &LineLog::receive),
                  1U);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
        EXPECT_TRUE(sameLines(log, page.picture->data));
    }
}

// The rows of a packed DIB of a picture: bottom-up, padded with zeros to 32 bits, red and blue exchanged.
Bytes dibRows(const Picture &picture) {
    const std::size_t stride = (picture.lineBytes() + 3) / 4 * 4;
    Bytes rows(stride * picture.height);
    for (DWORD y = 0; y < picture.height; ++y) {
        const Bytes line = picture.rows(y, 1);
        std::uint8_t *to = rows.data() + (picture.height - 1 - y) * stride;
        for (std::size_t i = 0; i < line.size(); ++i) {
            const std::size_t from = picture.bitsPerPixel() == 24 ? i / 3 * 3 + (2 - i % 3) : i;
            to[i] = line[from];
        }
    }
    return rows;
}

TEST(Corpus, LoadedDibsHoldTheRowsBottomUpAndPadded) {
    for (const TiffPage &page : corpus().pages) {
        SCOPED_TRACE(label(page));
        const HGLOBAL dib = LoadTiffIntoDIB(fixture(page.file).c_str(), page.page, 0);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
        ASSERT_NE(dib, nullptr);
        const auto *bytes = static_cast<const std::uint8_t *>(GlobalLock(dib));
        BITMAPINFOHEADER header{};
        std::memcpy(&header, bytes, sizeof header);
        const Bytes expected = dibRows(*page.picture);
        const std::size_t colours = page.picture->bitsPerPixel() > 8 ? 0 : std::size_t{1} << header.biBitCount;
        const std::size_t start = 40 + 4 * colours;
        EXPECT_EQ(header.biBitCount, page.picture->bitsPerPixel());
        EXPECT_EQ(header.biSizeImage, expected.size());
        ASSERT_GE(GlobalSize(dib), start + expected.size());
        EXPECT_EQ(std::memcmp(bytes + start, expected.data(), expected.size()), 0);
        GlobalUnlock(dib);
        GlobalFree(dib);
    }
}

TEST(Corpus, ALineFunctionStopsTheDecodeWithItsNumber) {
    const OpenedTiff tiff(fixture("g4-msb-mm-r1.tif"));
    ASSERT_TRUE(registerImage(tiff.get(), 4));
    LineLog failing;
    failing.answer = 7;
    failing.answerAt = 5;
    EXPECT_EQ(decodeInto(failing, tiff.get(), 4), failedWith(7));
    EXPECT_EQ(failing.lines, 6U);
    LineLog stopping;
    stopping.answer = 3;
    EXPECT_EQ(decodeInto(stopping, tiff.get(), 4), kDecoded);
    EXPECT_EQ(stopping.lines, 1U);
}

TEST(Corpus, DecodingLeavesTheFileAsItWas) {
    const Bytes before = wholeFile(fixture("lzw2-lsb-mm-r7.tif"));
    const TempFile copy(before);
    {
        const OpenedTiff tiff(copy.path());
        ASSERT_TRUE(registerImage(tiff.get(), 1));
        LineLog log;
        EXPECT_EQ(decodeInto(log, tiff.get(), 1), kDecoded);
    }
    EXPECT_EQ(wholeFile(copy.path()), before);
}

} // namespace
