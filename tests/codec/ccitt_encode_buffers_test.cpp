// The CCITT encoders where the code buffer is full: pages whose code just fills it, streams that fail, and the MMR code
// that goes out in blocks with headers.
#include "encoded_page.h"

#include "code_stream.h"
#include "support/faults.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

constexpr std::size_t kCapacity = 32767;
constexpr DWORD kWidth = 1000;

// Long words: few of them fit the reference line. Some 145 bytes of code.
Row denseRow(Random &random, DWORD width = kWidth) {
    return randomRow(random, width, 8);
}
Rows denseRows(std::size_t count) {
    Random random(13);
    Rows rows;
    while (rows.size() < count) {
        rows.push_back(denseRow(random));
    }
    return rows;
}

// A page of two-dimensional lines with its code, made a line at a time up to a number of bits.
class GrowingPage {
public:
    static constexpr DWORD kPageWidth = 100;

    void fillTo(std::size_t bits) {
        Random random(17);
        while (code.bitCount() + 400 < bits) {
            add(denseRow(random, kPageWidth));
        }
        // White below white takes one bit.
        while (code.bitCount() < bits) {
            add(Row(kPageWidth));
        }
    }
    void add(const Row &row) {
        appendTwoDimensional(code, rows.empty() ? Row(kPageWidth) : rows.back(), row);
        rows.push_back(row);
    }

    Rows rows;
    BitWriter code;
};

TEST(FullCodeBuffer, MayEndWithTheImage) {
    for (const std::size_t bytes : {kCapacity - 1, kCapacity, kCapacity + 1, 2 * kCapacity}) {
        // Lines of a byte each.
        const EncodePage page{.rows = Rows(bytes, Row(1)), .key = 2};
        const Encoded encoded = encodePage(page);
        EXPECT_EQ(encoded.stream, Bytes(bytes, BYTE{0x1C}));
        EXPECT_EQ(encoded.counts, std::vector<DWORD>{static_cast<DWORD>(bytes)});
    }
}

TEST(FullCodeBuffer, IsPassedByWordsAtEveryBitOffset) {
    // Each leading white line of Group 4 shifts all code behind it by one bit.
    const Rows dense = denseRows(240);
    const Bytes tail = expectedStrip(dense, VELLUM_KEY_GROUP4, true);
    ASSERT_GT(tail.size(), kCapacity + 100);
    BitWriter tailBits;
    for (const std::uint8_t byte : tail) {
        tailBits.byte(byte);
    }
    for (std::size_t whiteLines = 0; whiteLines <= 32; ++whiteLines) {
        Rows rows(whiteLines, Row(kWidth));
        rows.insert(rows.end(), dense.begin(), dense.end());
        BitWriter expected;
        for (std::size_t i = 0; i < whiteLines; ++i) {
            expected.bit(true);
        }
        Bytes code = expected.bits(tailBits).bytes();
        const Bytes encoded = encodePage({.rows = rows}).stream;
        code.resize(encoded.size()); // the last word's padding may take a byte more
        ASSERT_EQ(encoded, code) << whiteLines;
        ASSERT_LE((tail.size() * 8 - 7 + whiteLines) / 8, encoded.size());
    }
}

TEST(FullCodeBuffer, TakesGroup4PagesOfEverySizeAroundItsOwn) {
    constexpr std::size_t kBits = kCapacity * 8;
    GrowingPage page;
    page.fillTo(kBits - 24 - 30);
    for (std::size_t bits = kBits - 30; bits <= kBits + 30; ++bits) {
        ASSERT_EQ(page.code.bitCount(), bits - 24);
        BitWriter code = page.code;
        const Encoded encoded = encodePage({.rows = page.rows});
        ASSERT_EQ(encoded.stream, code.eofb().bytes()) << bits;
        ASSERT_EQ(encoded.counts, std::vector<DWORD>{static_cast<DWORD>((bits + 7) / 8)});
        page.add(Row(GrowingPage::kPageWidth));
    }
}

TEST(FullCodeBuffer, TakesGroup3PagesOfItsVerySize) {
    // White lines of width 1 take 18 bits, black ones 23, what ends the page 60.
    std::vector<std::size_t> sizes;
    for (std::size_t black = 0; black < 18; ++black) {
        const std::size_t white = (kCapacity * 8 - 60 - 23 * black) / 18;
        for (const std::size_t more : {0U, 1U}) {
            EncodePage page{.rows = Rows(black, Row(1, true)), .key = VELLUM_KEY_GROUP3_1D};
            page.rows.insert(page.rows.end(), white + more, Row(1));
            const Encoded encoded = encodePage(page);
            ASSERT_EQ(encoded.stream, expectedStrip(page.rows, page.key, true));
            ASSERT_EQ(encoded.counts, std::vector<DWORD>{static_cast<DWORD>(encoded.stream.size())});
            sizes.push_back(encoded.stream.size());
        }
    }
    for (const std::size_t size : {kCapacity - 1, kCapacity, kCapacity + 1}) {
        EXPECT_NE(std::find(sizes.begin(), sizes.end(), size), sizes.end()) << size;
    }
}

TEST(FullCodeBuffer, StripsMayEndAnywhereInIt) {
    const Rows rows = denseRows(400);
    for (const DWORD key : {DWORD{2}, DWORD{VELLUM_KEY_GROUP3_2D}, DWORD{VELLUM_KEY_GROUP4}}) {
        for (const DWORD rowsPerStrip : {1U, 7U, 158U, 399U}) {
            const EncodePage page{.rows = rows, .key = key, .rowsPerStrip = rowsPerStrip, .before = {1, 2, 3}};
            const Encoded encoded = encodePage(page);
            const std::vector<Bytes> expected = expectedStrips(page);
            ASSERT_EQ(encoded.strips(), expected) << rowsPerStrip;
            ASSERT_EQ(encoded.stream.size(), 3 + joined(expected).size());
        }
    }
}

// ---------------------------------------------------------------- streams that fail

class FileToWrite {
public:
    FileToWrite() : handle_(_lcreat(file_.path(), 0)) {}
    FileToWrite(const FileToWrite &) = delete;
    FileToWrite &operator=(const FileToWrite &) = delete;
    ~FileToWrite() { close(); }

    [[nodiscard]] StreamHandle stream() const { return handle_; }
    void close() {
        if (handle_ != HFILE_ERROR) {
            _lclose(handle_);
            handle_ = HFILE_ERROR;
        }
    }
    [[nodiscard]] const char *path() const { return file_.path(); }
    [[nodiscard]] Bytes content() {
        close();
        return readFile(file_.path()).value_or(Bytes{});
    }

private:
    TempFile file_;
    HFILE handle_;
};

TEST(FailingStream, EndsTheEncoderAtOnce) {
    const Rows rows = denseRows(600);
    const auto encoders = {vellum::encodeOneDimensional, vellum::encodeGroup3TwoDimensional, vellum::encodeGroup4,
                           vellum::encodeBlockFramedMmr};
    for (const CcittEncoder encoder : encoders) {
        for (const long failing : {0L, 1L}) {
            FileToWrite file;
            Encoded encoded;
            unsigned long calls = 0;
            {
                const FailNth fault(Call::Write, failing);
                encoded = encodeTo(file.stream(), {.rows = rows, .key = VELLUM_KEY_GROUP3_1D}, encoder);
                EXPECT_TRUE(fault.happened());
                calls = fault.calls();
            }
            EXPECT_EQ(encoded.error, Error::Io);
            EXPECT_EQ(calls, static_cast<unsigned long>(failing) + 1) << "no write is tried again";
            EXPECT_LT(encoded.asked, rows.size());
        }
    }
}

TEST(FailingStream, MayFailWithTheBlockOfTheBuffers) {
    for (const DWORD key : kCcittKeys) {
        const HGLOBAL block = makeBlock({});
        const StreamHandle stream = openMemoryStream(block, 0);
        // The strip tables are the first two blocks.
        const FailNth fault(Call::Allocate, 2);
        const Encoded encoded = encodeTo(stream, {.rows = Rows(3, Row(20)), .key = key}, ccittEncoderOf(key));
        EXPECT_EQ(encoded.error, Error::NoMemory);
        EXPECT_EQ(encoded.asked, 0U);
        closeStream(stream);
        GlobalFree(block);
    }
}

// ---------------------------------------------------------------- framed blocks

Bytes expectedFramedCode(const Rows &rows) {
    BitWriter out;
    out.bits("0000000000011");
    appendRuns(out, rows[0]);
    out.bits("0000000000010");
    for (std::size_t i = 1; i < rows.size(); ++i) {
        appendTwoDimensional(out, rows[i - 1], rows[i]);
    }
    for (int i = 0; i < 6; ++i) {
        out.bits("0000000000011");
    }
    return out.bytes();
}

Encoded encodeFramed(const EncodePage &page, Bytes &file) {
    FileToWrite output;
    // The closing flush of encodeTo finds nothing left.
    Encoded encoded = encodeTo(output.stream(), page, vellum::encodeBlockFramedMmr);
    file = output.content();
    return encoded;
}

void expectFramed(const EncodePage &page, const Bytes &code) {
    Bytes file;
    const Encoded encoded = encodeFramed(page, file);
    ASSERT_EQ(encoded.error, Error::None);
    ASSERT_EQ(file, frameBlocks(page.fillOrder == 2 ? reverseBits(code) : code, kCapacity));
    ASSERT_EQ(encoded.counts, std::vector<DWORD>{static_cast<DWORD>(code.size())});
}

TEST(FramedMmrEncoder, HasOneOneDimensionalLineBetweenEolsAndSixAtTheEnd) {
    const Row first = rowFromRuns({3, 4, 3});
    const Row second = rowFromRuns({2, 5, 3});
    Bytes file;
    const Encoded encoded = encodeFramed({.rows = {first, second, second}, .key = 0}, file);
    BitWriter code;
    code.bits("0000000000011 1000 011 1000 0000000000010 010 1 1 1 1 1");
    for (int i = 0; i < 6; ++i) {
        code.bits("0000000000011");
    }
    EXPECT_EQ(file, frameBlocks(code.bytes(), 1000));
    EXPECT_EQ(encoded.counts, std::vector<DWORD>{static_cast<DWORD>(code.bytes().size())});
    EXPECT_EQ(encoded.error, Error::None);
}

TEST(FramedMmrEncoder, AgreesWithTheNaiveWriterAndTheDecoder) {
    for (DWORD seed = 0; seed < 20; ++seed) {
        Random random(seed);
        const DWORD width = 1 + random.below(2000);
        const EncodePage page{
            .rows = randomRows(random, width, 1 + random.below(20)), .key = 0, .fillOrder = 1 + seed % 2};
        expectFramed(page, expectedFramedCode(page.rows));
        Bytes file;
        encodeFramed(page, file);
        const TempFile temp(file);
        const RawFile opened(temp.path());
        LineLog log;
        EXPECT_EQ(decodeMmrInto(log, opened.get(), {0, width, page.height(), 0, page.fillOrder}), kDecoded);
        EXPECT_EQ(log.data, packRows(page.rows));
    }
}

TEST(FramedMmrEncoder, FillsItsBlocksAndWritesNoEmptyOne) {
    constexpr std::size_t kBits = kCapacity * 8;
    GrowingPage page;
    // The first line is one-dimensional, between EOLs; six EOLs of 13 bits end the page.
    page.rows.emplace_back(GrowingPage::kPageWidth);
    page.code.eol().bit(true).white(GrowingPage::kPageWidth).eol().bit(false);
    page.fillTo(kBits - 78 - 20);
    BitWriter end;
    for (int i = 0; i < 6; ++i) {
        end.eol().bit(true);
    }
    for (std::size_t bits = kBits - 20; bits <= kBits + 90; bits += 3) {
        BitWriter code = page.code;
        ASSERT_EQ(code.bits(end).bitCount(), bits);
        expectFramed({.rows = page.rows, .key = 0}, code.bytes());
        for (int i = 0; i < 3; ++i) {
            page.add(Row(GrowingPage::kPageWidth));
        }
    }
    expectFramed({.rows = denseRows(600), .key = 0}, expectedFramedCode(denseRows(600)));
}

TEST(FramedMmrEncoder, MayEndEarly) {
    Random random(15);
    const Rows rows = randomRows(random, 90, 5);
    for (DWORD there = 1; there < 5; ++there) {
        const Rows shorter(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(there));
        expectFramed({.rows = rows, .key = 0, .linesThere = there}, expectedFramedCode(shorter));
    }
    Bytes file;
    EXPECT_EQ(encodeFramed({.rows = rows, .key = 0, .linesThere = 0}, file).error, Error::None);
    EXPECT_TRUE(file.empty());
    EXPECT_EQ(number(encodeFramed({.rows = rows, .key = 0, .linesThere = 2, .answer = 9}, file).error), 9U);
    EXPECT_TRUE(file.empty());
}

} // namespace
} // namespace vellum::test
