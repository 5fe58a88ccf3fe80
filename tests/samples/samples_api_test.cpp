// The real TIFF files of the sample collection: each opens, lists its images and decodes as its manifest entry states,
// every binding digest is met, and nothing else than an orderly end comes of the damaged ones.
#include "support/decode_lines.h"
#include "support/faults.h"
#include "support/sample_manifest.h"
#include "support/sha256.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace {

using namespace vellum::test;

std::string digestOf(const Bytes &data) {
    Sha256 digest;
    digest.add(data.data(), data.size());
    return digest.hex();
}

// Decodes a page of an open file the whole way a program goes: register, decode, drop.
struct PageRun {
    Outcome registered;
    Outcome decoded;
    LineLog log;
};

PageRun runPage(TiffHandle tiff, DWORD index) {
    PageRun run;
    SetTiffError(VELLUM_OK);
    run.registered.result = GetTiffImage(tiff, index);
    run.registered.error = TiffError();
    if (run.registered.result == 1) {
        run.decoded = decodeInto(run.log, tiff, index);
        DropTiffImage(tiff, index);
    }
    return run;
}

bool needsCompanionModule(const Json &page) {
    return page["compression"].whole() == 6;
}

void expectGolden(const PageRun &run, const Json &page) {
    EXPECT_EQ(run.registered, kDecoded);
    EXPECT_EQ(run.decoded, kDecoded);
    EXPECT_TRUE(run.log.inOrder);
    EXPECT_EQ(run.log.lines, page["height"].whole());
    EXPECT_EQ(run.log.data.size(), page["data_bytes"].whole());
    EXPECT_EQ(digestOf(run.log.data), page["sha256"].text);
}

// Success, or a failure that says why; the lines in order and none beyond the height.
void expectOrderly(const PageRun &run, const Json &page) {
    EXPECT_TRUE(run.log.inOrder);
    EXPECT_LE(run.log.lines, page["height"].whole());
    const Outcome last = run.registered.result == 1 ? run.decoded : run.registered;
    if (last.result == 1) {
        EXPECT_EQ(last.error, DWORD{VELLUM_OK});
        EXPECT_EQ(run.log.lines, page["height"].whole());
    } else {
        EXPECT_EQ(last.result, 0U);
        EXPECT_NE(last.error, DWORD{VELLUM_OK});
    }
}

void expectRefused(const PageRun &run, const Json &page) {
    const Outcome last = run.registered.result == 1 ? run.decoded : run.registered;
    EXPECT_EQ(last, failedWith(page["expected_error"].whole()));
    EXPECT_EQ(run.log.lines, 0U);
}

void expectPage(TiffHandle tiff, const Json &page) {
    SCOPED_TRACE("page " + std::to_string(page["page"].whole()));
    const PageRun run = runPage(tiff, page["page"].whole());
    if (page["golden"].isTrue()) {
        expectGolden(run, page);
    } else if (page["supported"].isTrue()) {
        expectOrderly(run, page);
    } else if (!page["expected_error"].isNull()) {
        expectRefused(run, page);
    } else if (!needsCompanionModule(page)) {
        expectOrderly(run, page);
    }
}

// Opens as the manifest states; false when there is nothing more to look at.
bool opensAsStated(const OpenedTiff &tiff, DWORD error, const Json &expected) {
    if (expected["open"].text == "unclear") {
        return static_cast<bool>(tiff);
    }
    EXPECT_EQ(static_cast<bool>(tiff), expected["open"].text == "ok");
    EXPECT_EQ(error, expected["error"].whole());
    if (tiff) {
        EXPECT_EQ(NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES), static_cast<LONG>(expected["images"].whole()));
    }
    return static_cast<bool>(tiff);
}

TEST(Samples, TheManifestIsWhole) {
    SKIP_WITHOUT_SAMPLES();
    EXPECT_GE(samplesOfKind({"tiff"}).size(), 307U);
    EXPECT_GE(samplesOfKind({"malformed"}).size(), 91U);
}

TEST(Samples, EveryFileOpensAndEveryPageDecodesAsStated) {
    SKIP_WITHOUT_SAMPLES();
    const MessageBoxes boxes;
    for (const Sample &sample : samplesOfKind({"tiff", "malformed"})) {
        SCOPED_TRACE(sample.file);
        const OpenedTiff tiff(sample.path());
        if (!opensAsStated(tiff, TiffError(), sample.entry["expected"])) {
            continue;
        }
        for (const Json &page : sample.pages()) {
            expectPage(tiff.get(), page);
        }
    }
}

TEST(Samples, EveryFileInMemoryDecodesAsStated) {
    SKIP_WITHOUT_SAMPLES();
    const MessageBoxes boxes;
    for (const Sample &sample : samplesOfKind({"tiff", "malformed"})) {
        SCOPED_TRACE(sample.file);
        const OpenedTiff tiff(readFile(sample.path()).value());
        // A position behind the end of a memory TIFF reads as zeros instead of failing, so that a damaged file may
        // open with other images than the same file on a disk.
        if (sample.kind == "malformed") {
            for (LONG i = 0; tiff && i < std::min<LONG>(NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES), 5); ++i) {
                const PageRun run = runPage(tiff.get(), static_cast<DWORD>(i));
                EXPECT_TRUE(run.log.inOrder);
            }
            continue;
        }
        if (opensAsStated(tiff, TiffError(), sample.entry["expected"])) {
            for (const Json &page : sample.pages()) {
                expectPage(tiff.get(), page);
            }
        }
    }
}

// The manifest lists a looping chain's distinct pages only; the library counts on to 1000.
TEST(Samples, ImagesThatTheManifestDoesNotListEndOrderly) {
    SKIP_WITHOUT_SAMPLES();
    const MessageBoxes boxes;
    for (const Sample &sample : samplesOfKind({"malformed"})) {
        SCOPED_TRACE(sample.file);
        const OpenedTiff tiff(sample.path());
        if (!tiff) {
            continue;
        }
        const LONG images = NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES);
        for (LONG i = static_cast<LONG>(sample.pages().size()); i < std::min<LONG>(images, 12); ++i) {
            const PageRun run = runPage(tiff.get(), static_cast<DWORD>(i));
            EXPECT_TRUE(run.log.inOrder) << i;
            const Outcome last = run.registered.result == 1 ? run.decoded : run.registered;
            EXPECT_EQ(last.result == 1, last.error == VELLUM_OK) << i;
        }
    }
}

TEST(Samples, DimensionsStripsAndColourMapsAreAsStated) {
    SKIP_WITHOUT_SAMPLES();
    for (const Sample &sample : samplesOfKind({"tiff"})) {
        SCOPED_TRACE(sample.file);
        const OpenedTiff tiff(sample.path());
        for (const Json &page : sample.pages()) {
            const DWORD index = page["page"].whole();
            if (!page["golden"].isTrue() || !registerImage(tiff.get(), index)) {
                continue;
            }
            BITMAPINFOHEADER header{};
            EXPECT_EQ(GetTiffDimensions(tiff.get(), index, &header), 0U);
            EXPECT_EQ(static_cast<DWORD>(header.biWidth), page["width"].whole());
            EXPECT_EQ(static_cast<DWORD>(header.biHeight), page["height"].whole());
            EXPECT_EQ(header.biBitCount, page["bits_per_pixel"].whole());
            EXPECT_EQ(static_cast<DWORD>(GetTiffStripCount(tiff.get(), index)), page["strip_count"].whole());
            const DWORD rows = page["rows_per_strip"].whole(page["height"].whole());
            EXPECT_EQ(GetTiffRowsPerStrip(tiff.get(), index), std::min<DWORD>(rows, page["height"].whole()));
        }
    }
}

// A colour map as the digest covers it: R, G, B a colour, the high byte of each value. The file holds all reds first.
TEST(Samples, ColourMapsAreReadRight) {
    SKIP_WITHOUT_SAMPLES();
    int maps = 0;
    for (const Sample &sample : samplesOfKind({"tiff"})) {
        for (const Json &page : sample.pages()) {
            const OpenedTiff tiff(sample.path());
            const DWORD index = page["page"].whole();
            if (page["colormap_entries"].isNull() || !tiff || !registerImage(tiff.get(), index)) {
                continue;
            }
            SCOPED_TRACE(sample.file);
            HGLOBAL block = nullptr;
            DWORD count = 0;
            ASSERT_EQ(GetTiffImageInfoBuffer(tiff.get(), index, 320, &block, nullptr, &count), 1);
            const Bytes values = blockBytes(block);
            GlobalFree(block);
            const std::size_t colours = page["colormap_entries"].whole();
            ASSERT_EQ(count, 3 * colours);
            Bytes triples;
            for (std::size_t i = 0; i < 3 * colours; ++i) {
                triples.push_back(values.at(2 * (i % 3 * colours + i / 3) + 1));
            }
            EXPECT_EQ(digestOf(triples), page["colormap_rgb_sha256"].text);
            ++maps;
        }
    }
    EXPECT_GE(maps, 30);
}

// Compression 6 is the companion module's. Without it every attempt shows a message, and success is reported with no
// line delivered, unless the page lacks a tag that the module would need.
TEST(Samples, JpegPagesWithoutTheCompanionModuleShowTheMessageAndDeliverNothing) {
    SKIP_WITHOUT_SAMPLES();
    int shown = 0;
    for (const Sample &sample : samplesOfKind({"tiff", "malformed"})) {
        for (const Json &page : sample.pages()) {
            if (!needsCompanionModule(page)) {
                continue;
            }
            SCOPED_TRACE(sample.file);
            const MessageBoxes boxes;
            const OpenedTiff tiff(sample.path());
            ASSERT_TRUE(tiff);
            const PageRun run = runPage(tiff.get(), page["page"].whole());
            EXPECT_EQ(run.log.lines, 0U);
            if (run.decoded == kDecoded) {
                EXPECT_EQ(boxes.count(), 1);
                EXPECT_EQ(boxes.text(), "'DCTLIB.DLL' module is not found");
                EXPECT_EQ(boxes.caption(), "VELLUMSDK");
                ++shown;
            } else {
                EXPECT_EQ(boxes.count(), 0);
                const DWORD error = run.registered.result == 1 ? run.decoded.error : run.registered.error;
                EXPECT_TRUE(error == VELLUM_TAG_MISSING || error == VELLUM_UNKNOWN_COMPRESSION ||
                            error == VELLUM_BAD_COLOR_FORMAT)
                    << error;
            }
        }
    }
    RecordProperty("shown", shown);
}

// Every row of a DIB is the decoded line at its place from the bottom, red and blue exchanged at 24 bits.
void expectDibHolds(HGLOBAL dib, const PageRun &run, const Json &page) {
    const Bytes bytes = blockBytes(dib);
    const std::size_t height = page["height"].whole();
    const std::size_t lineBytes = run.log.lineBytes;
    const std::size_t stride = (page["width"].whole() * page["bits_per_pixel"].whole() + 31) / 32 * 4;
    BITMAPINFOHEADER header{};
    ASSERT_GE(bytes.size(), sizeof header);
    std::memcpy(&header, bytes.data(), sizeof header);
    const std::size_t start = sizeof header + 4 * header.biClrUsed;
    ASSERT_EQ(header.biSizeImage, stride * height);
    ASSERT_GE(bytes.size(), start + stride * height);
    Bytes line(lineBytes);
    for (std::size_t y = 0; y < height; ++y) {
        const std::uint8_t *row = bytes.data() + start + (height - 1 - y) * stride;
        std::memcpy(line.data(), run.log.data.data() + y * lineBytes, lineBytes);
        for (std::size_t i = 0; header.biBitCount == 24 && i + 2 < lineBytes; i += 3) {
            std::swap(line[i], line[i + 2]);
        }
        ASSERT_EQ(std::memcmp(row, line.data(), lineBytes), 0) << "line " << y;
        ASSERT_TRUE(std::all_of(row + lineBytes, row + stride, [](std::uint8_t pad) { return pad == 0; })) << y;
    }
}

TEST(Samples, LoadedDibsHoldTheDecodedLines) {
    SKIP_WITHOUT_SAMPLES();
    int loaded = 0;
    for (const Sample &sample : samplesOfKind({"tiff"})) {
        SCOPED_TRACE(sample.file);
        for (const Json &page : sample.pages()) {
            if (!page["golden"].isTrue()) {
                continue;
            }
            const OpenedTiff tiff(sample.path());
            const PageRun run = runPage(tiff.get(), page["page"].whole());
            const HGLOBAL dib = LoadTiffIntoDIB(sample.path().c_str(), page["page"].whole(), 0);
            EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
            ASSERT_NE(dib, nullptr);
            expectDibHolds(dib, run, page);
            GlobalFree(dib);
            ++loaded;
        }
    }
    EXPECT_GE(loaded, 200);
}

} // namespace
