// The sample collection's code streams outside TIFF: headerless fax files, CALS files behind their 2048-byte header,
// and blocks of MMR code in image objects.
#include "support/decode_lines.h"
#include "support/sample_manifest.h"
#include "support/sha256.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

RawCode codeOf(const Json &page) {
    return {page["data_offset"].whole(), page["width"].whole(), page["height"].whole(), page["compression_key"].whole(),
            page["fill_order"].whole(1)};
}

void expectPage(const Outcome &outcome, const LineLog &log, const Json &page) {
    EXPECT_TRUE(log.inOrder);
    EXPECT_LE(log.lines, page["height"].whole());
    if (!page["golden"].isTrue()) {
        EXPECT_EQ(outcome.result == 1, outcome.error == VELLUM_OK);
        return;
    }
    EXPECT_EQ(outcome, kDecoded);
    EXPECT_EQ(log.lines, page["height"].whole());
    Sha256 digest;
    digest.add(log.data.data(), log.data.size());
    EXPECT_EQ(digest.hex(), page["sha256"].text);
}

// Files with a page, of one kind; the count guards against a manifest that has lost them.
std::vector<Sample> pagesOf(const char *kind, std::size_t least) {
    std::vector<Sample> samples = samplesOfKind({kind});
    std::erase_if(samples, [](const Sample &sample) { return sample.pages().empty(); });
    EXPECT_GE(samples.size(), least);
    return samples;
}

TEST(RawSamples, FaxFilesDecodeAsStated) {
    SKIP_WITHOUT_SAMPLES();
    for (const Sample &sample : pagesOf("fax", 16)) {
        SCOPED_TRACE(sample.file);
        const RawFile file(sample.path());
        ASSERT_TRUE(file);
        LineLog log;
        const Outcome outcome = decodeRawInto(log, file.get(), codeOf(sample.pages()[0]));
        expectPage(outcome, log, sample.pages()[0]);
    }
}

TEST(RawSamples, FaxFilesDecodeFromThePositionOfTheFile) {
    SKIP_WITHOUT_SAMPLES();
    for (const Sample &sample : pagesOf("fax", 16)) {
        const RawCode code = codeOf(sample.pages()[0]);
        if (code.fillOrder != 1) {
            continue;
        }
        SCOPED_TRACE(sample.file);
        const RawFile file(sample.path());
        ASSERT_EQ(_llseek(file.get(), static_cast<LONG>(code.offset), 0), static_cast<LONG>(code.offset));
        LineLog log;
        log.lineBytes = packedLineBytes(code.width, 1);
        const DWORD result =
            DecodeCcittImage(file.get(), code.width, code.height, code.key, log.userValue(), &LineLog::receive);
        expectPage({result, TiffError()}, log, sample.pages()[0]);
    }
}

// A line that an EOL cuts short goes on to the width in the colour that was being decoded; the count of lines and the
// lines before the first short one are settled.
TEST(RawSamples, AReceivedFaxWithShortLinesDeliversAllItsLines) {
    SKIP_WITHOUT_SAMPLES();
    const RawFile file(sample("fax/g3test.g3"));
    ASSERT_TRUE(file);
    LineLog log;
    EXPECT_EQ(decodeRawInto(log, file.get(), {.width = 1728, .height = 1103, .key = VELLUM_KEY_GROUP3_1D}), kDecoded);
    EXPECT_EQ(log.lines, 1103U);
}

TEST(RawSamples, CalsImagesDecodeFromBehindTheirHeader) {
    SKIP_WITHOUT_SAMPLES();
    for (const Sample &sample : pagesOf("cals", 12)) {
        SCOPED_TRACE(sample.file);
        const RawFile file(sample.path());
        ASSERT_TRUE(file);
        RawCode code = codeOf(sample.pages()[0]);
        EXPECT_EQ(code.offset, 2048U);
        LineLog log;
        const Outcome outcome = decodeRawInto(log, file.get(), code);
        expectPage(outcome, log, sample.pages()[0]);
    }
}

TEST(RawSamples, MmrBlocksOfImageObjectsDecodeAsStated) {
    SKIP_WITHOUT_SAMPLES();
    for (const Sample &sample : pagesOf("ioca", 3)) {
        SCOPED_TRACE(sample.file);
        const RawFile file(sample.path());
        ASSERT_TRUE(file);
        LineLog log;
        const Outcome outcome = decodeMmrInto(log, file.get(), codeOf(sample.pages()[0]));
        expectPage(outcome, log, sample.pages()[0]);
    }
}

} // namespace
