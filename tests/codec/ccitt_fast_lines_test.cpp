// The quick way through lines against the plain one, on sound, damaged and random code, in one piece and divided among
// small code buffers: where the quick way takes a line it must leave what the plain way leaves, and where it does not
// it must leave the reader alone.
#include "codec/ccitt_fast_lines.h"
#include "codec/ccitt_lines.h"
#include "support/ccitt_writer.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellum::test {
namespace {

enum class Coding { OneDimensional, TwoDimensional };

// A reader over code that comes in pieces; each piece lies in a block of exactly its size.
class CodePieces {
public:
    CodePieces(const Bytes &code, std::size_t pieceBytes)
        : code_(code), pieceBytes_(pieceBytes), reader(state_, refill) {
        state_.userValue = reinterpret_cast<DWORD>(this);
        EXPECT_EQ(refill(state_), Error::None);
        reader.start();
    }
    CodePieces(const CodePieces &) = delete;
    CodePieces &operator=(const CodePieces &) = delete;

private:
    static Error refill(CodecState &state) {
        auto &self = *reinterpret_cast<CodePieces *>(state.userValue);
        const std::size_t count = std::min(self.pieceBytes_, self.code_.size() - self.at_);
        if (count == 0) {
            return Error::UnexpectedEnd;
        }
        const auto from = self.code_.begin() + static_cast<std::ptrdiff_t>(self.at_);
        self.piece_ = Bytes(from, from + static_cast<std::ptrdiff_t>(count));
        self.at_ += count;
        state.codePointer = self.piece_.data();
        state.codeBytesLeft = static_cast<DWORD>(count);
        return Error::None;
    }

    const Bytes &code_;
    std::size_t pieceBytes_;
    std::size_t at_ = 0;
    Bytes piece_;
    CodecState state_{};

public:
    BitReader reader;
};

// One of the two decoders with its lists.
struct Side {
    Side(const Bytes &stream, std::size_t pieceBytes, LONG width) : code(stream, pieceBytes) {
        EXPECT_TRUE(reference.setWhite(width));
        EXPECT_TRUE(line.setWhite(width));
    }

    LineResult plain(Coding coding, LONG width) {
        return coding == Coding::OneDimensional ? decodeOneDimensionalLine(code.reader, line, width)
                                                : decodeTwoDimensionalLine(code.reader, reference, line, width);
    }
    bool fast(Coding coding, LONG width) {
        return coding == Coding::OneDimensional ? decodeFastOneDimensionalLine(code.reader, line, width)
                                                : decodeFastTwoDimensionalLine(code.reader, reference, line, width);
    }

    CodePieces code;
    ChangingElements reference;
    ChangingElements line;
};

std::vector<LONG> positionsOf(const ChangingElements &line) {
    return {line.positions(), line.positions() + line.count() + ChangingElements::kSentinels};
}

struct Counts {
    unsigned fast = 0;
    unsigned plain = 0;
};

// Decodes up to so many lines both ways and adds up which way the quick side went.
void compareLines(const Bytes &code, std::size_t pieceBytes, Coding coding, LONG width, unsigned lines,
                  Counts &counts) {
    Side plain(code, pieceBytes, width);
    Side fast(code, pieceBytes, width);
    for (unsigned y = 0; y < lines; ++y) {
        const LineResult expected = plain.plain(coding, width);
        if (fast.fast(coding, width)) {
            ++counts.fast;
            ASSERT_EQ(expected.end, LineEnd::Width);
            ASSERT_TRUE(expected.hasData);
            ASSERT_TRUE(fast.line.ordered());
        } else {
            ++counts.plain;
            const LineResult result = fast.plain(coding, width);
            ASSERT_EQ(result.end, expected.end);
            ASSERT_EQ(result.hasData, expected.hasData);
            ASSERT_EQ(result.error, expected.error);
        }
        if (expected.end == LineEnd::Failure) {
            return;
        }
        ASSERT_EQ(positionsOf(fast.line), positionsOf(plain.line)) << "line " << y;
        ASSERT_EQ(fast.line.ordered(), plain.line.ordered());
        const bool more = expected.end == LineEnd::Width || plain.code.reader.takeZerosAndOne();
        if (expected.end != LineEnd::Width) {
            ASSERT_EQ(fast.code.reader.takeZerosAndOne(), more);
        }
        if (!more) {
            return;
        }
        std::swap(plain.line, plain.reference);
        std::swap(fast.line, fast.reference);
    }
}

constexpr Coding kCodings[] = {Coding::OneDimensional, Coding::TwoDimensional};
constexpr std::size_t kPieceSizes[] = {100000, 61, 4, 1};

// Lines one behind the other, without anything between them.
Bytes encoded(const Rows &rows, Coding coding) {
    if (coding == Coding::TwoDimensional) {
        return encodeGroup4(rows);
    }
    BitWriter code;
    for (const Row &row : rows) {
        appendRuns(code, row);
    }
    return code.bytes();
}

TEST(FastLines, TakesSoundLinesAndFindsWhatThePlainDecoderFinds) {
    for (const Coding coding : kCodings) {
        Counts counts;
        Random random(1);
        for (unsigned round = 0; round < 200; ++round) {
            const std::uint32_t width = 1 + random.below(round % 10 == 0 ? 4000 : 400);
            Bytes code = encoded(randomRows(random, width, 20), coding);
            code.resize(code.size() + 8); // so that no line is at the end of the buffer
            compareLines(code, 1000000, coding, static_cast<LONG>(width), 20, counts);
            ASSERT_FALSE(HasFatalFailure()) << "round " << round;
        }
        EXPECT_EQ(counts.fast, 200U * 20U);
        EXPECT_EQ(counts.plain, 0U);
    }
}

TEST(FastLines, GivesLinesAtTheEndsOfCodeBuffersToThePlainDecoder) {
    Random random(2);
    for (const std::size_t pieceBytes : kPieceSizes) {
        Counts counts;
        for (unsigned round = 0; round < 100; ++round) {
            const std::uint32_t width = 1 + random.below(500);
            const Coding coding = kCodings[round % 2];
            const Bytes code = encoded(randomRows(random, width, 20), coding);
            compareLines(code, pieceBytes, coding, static_cast<LONG>(width), 20, counts);
            ASSERT_FALSE(HasFatalFailure()) << "round " << round << ", pieces of " << pieceBytes;
        }
        EXPECT_EQ(counts.fast > 0, pieceBytes >= 4) << pieceBytes;
        EXPECT_GT(counts.plain, 0U) << pieceBytes;
    }
}

TEST(FastLines, AgreesWithThePlainDecoderOnDamagedCode) {
    Random random(3);
    Counts counts;
    for (unsigned round = 0; round < 6000; ++round) {
        const std::uint32_t width = 1 + random.below(300);
        const Coding coding = kCodings[round % 2];
        Bytes code = encoded(randomRows(random, width, 12), coding);
        for (std::uint32_t i = 1 + random.below(4); i > 0; --i) {
            code[random.below(static_cast<std::uint32_t>(code.size()))] ^=
                static_cast<std::uint8_t>(1U << random.below(8));
        }
        compareLines(code, kPieceSizes[round / 2 % 2], coding, static_cast<LONG>(width), 40, counts);
        ASSERT_FALSE(HasFatalFailure()) << "round " << round;
    }
    EXPECT_GT(counts.fast, 1000U);
    EXPECT_GT(counts.plain, 1000U);
}

TEST(FastLines, AgreesWithThePlainDecoderOnRandomCode) {
    Random random(4);
    Counts counts;
    for (unsigned round = 0; round < 6000; ++round) {
        Bytes code(20 + random.below(200));
        for (std::uint8_t &byte : code) {
            // Many set bits, so that vertical modes are as frequent as they are in pictures.
            byte = static_cast<std::uint8_t>(random.below(256) | (round % 3 == 0 ? random.below(256) : 0));
        }
        const LONG width = 1 + static_cast<LONG>(random.below(round % 5 == 0 ? 3000 : 90));
        compareLines(code, kPieceSizes[round / 2 % 2], kCodings[round % 2], width, 400, counts);
        ASSERT_FALSE(HasFatalFailure()) << "round " << round;
    }
    EXPECT_GT(counts.fast, 1000U);
    EXPECT_GT(counts.plain, 1000U);
}

TEST(FastLines, LeavesLinesThatStepBackToThePlainDecoder) {
    // A reference with edges at 5 and 9; VR3 and VL3 cross each other.
    const Bytes code =
        BitWriter().horizontal(Colour::White, 5, 4).vertical(0).vertical(3).vertical(-3).vertical(0).zeros(64).bytes();
    Side side(code, code.size(), 16);
    ASSERT_TRUE(side.fast(Coding::TwoDimensional, 16));
    std::swap(side.line, side.reference);
    EXPECT_FALSE(side.fast(Coding::TwoDimensional, 16));
    EXPECT_EQ(side.plain(Coding::TwoDimensional, 16).end, LineEnd::Width);
    EXPECT_FALSE(side.line.ordered());
    std::swap(side.line, side.reference);
    EXPECT_FALSE(side.fast(Coding::TwoDimensional, 16)) << "nor does it search on such a reference";
}

TEST(FastLines, LeavesMoreEmptyRunsThanItsListHoldsToThePlainDecoder) {
    BitWriter code;
    for (int i = 0; i < 6000; ++i) {
        code.horizontal(Colour::White, 0, 0);
    }
    Counts counts;
    compareLines(code.horizontal(Colour::White, 8, 0).zeros(64).bytes(), 1000000, Coding::TwoDimensional, 8, 1, counts);
    EXPECT_EQ(counts.plain, 1U);
}

} // namespace
} // namespace vellum::test
