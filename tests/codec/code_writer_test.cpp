// The bit writer of the encoders, over code buffers of a few bytes, beside a writer that sets one bit after another.
#include "codec/code_writer.h"

#include "codec/buffers.h"
#include "support/ccitt_writer.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellum::test {
namespace {

// A state with a code buffer of its own, whose flushes are collected. Behind the buffer there is the usual slack and
// not a byte more.
class SmallBuffer {
public:
    explicit SmallBuffer(DWORD capacity) : bytes_(capacity + kCodeSlack, BYTE{0xA5}) {
        state.codeBuffer = state.codePointer = bytes_.data();
        state.codeCapacity = static_cast<LONG>(capacity);
        state.codeBytesLeft = state.bufferBase = capacity;
        state.userValue = static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(this));
    }
    SmallBuffer(const SmallBuffer &) = delete;
    SmallBuffer &operator=(const SmallBuffer &) = delete;

    static Error flush(CodecState &state) {
        auto &self = *reinterpret_cast<SmallBuffer *>(static_cast<std::uintptr_t>(state.userValue));
        if (self.flushes++ == self.failing) {
            return Error::Io;
        }
        EXPECT_EQ(state.codePointer, state.codeBuffer + (static_cast<DWORD>(state.codeCapacity) - state.codeBytesLeft));
        self.written.insert(self.written.end(), state.codeBuffer, state.codePointer);
        state.codePointer = state.codeBuffer;
        state.codeBytesLeft = static_cast<DWORD>(state.codeCapacity);
        return Error::None;
    }

    CodecState state{};
    Bytes written;
    int flushes = 0;
    int failing = -1; // the flush that fails

private:
    Bytes bytes_;
};

// Words of 1 to 25 bits with both ends set, so that a lost or a doubled bit shows.
CodeWord word(unsigned count) {
    return {0x80000000U | 1U << (32 - count), count};
}
void putNaively(BitWriter &out, CodeWord put) {
    for (unsigned i = 0; i < put.count(); ++i) {
        out.bit((put.bits() << i & 0x80000000U) != 0);
    }
}

TEST(CodeWriter, PutsWordsOfEveryLengthAtEveryBitOffset) {
    for (DWORD capacity = 1; capacity <= 9; ++capacity) {
        for (unsigned offset = 0; offset <= 75; ++offset) {
            for (unsigned count = 1; count <= CodeWord::kMostBits; ++count) {
                SmallBuffer buffer(capacity);
                CodeWriter writer(buffer.state, SmallBuffer::flush);
                writer.start();
                BitWriter naive;
                for (unsigned i = 0; i < offset; ++i) {
                    writer.put(CodeWord("0"));
                    writer.makeRoom();
                    naive.bit(false);
                }
                for (const CodeWord put : {word(count), word(13), word(count)}) {
                    writer.put(put);
                    writer.makeRoom();
                    putNaively(naive, put);
                }
                writer.alignTo(0);
                writer.handOver();
                EXPECT_EQ(buffer.written.size() % capacity, 0U) << "full buffers only";
                EXPECT_EQ(SmallBuffer::flush(buffer.state), Error::None);
                ASSERT_EQ(buffer.written, naive.bytes()) << capacity << ' ' << offset << ' ' << count;
                ASSERT_EQ(writer.error(), Error::None);
            }
        }
    }
}

TEST(CodeWriter, HandsOverWholeBytesAndGoesOn) {
    Random random(5);
    for (DWORD capacity = 1; capacity <= 40; capacity += 3) {
        SmallBuffer buffer(capacity);
        CodeWriter writer(buffer.state, SmallBuffer::flush);
        writer.start();
        BitWriter naive;
        for (int i = 0; i < 500; ++i) {
            const CodeWord put = word(1 + random.below(25));
            writer.put(put);
            writer.makeRoom();
            putNaively(naive, put);
            if (random.below(4) == 0) {
                writer.handOver();
                const DWORD there = capacity - buffer.state.codeBytesLeft;
                ASSERT_EQ(buffer.state.codePointer, buffer.state.codeBuffer + there);
                ASSERT_EQ(buffer.written.size() + there, naive.bitCount() / 8);
                ASSERT_TRUE(std::equal(buffer.state.codeBuffer, buffer.state.codePointer,
                                       naive.bytes().begin() + static_cast<std::ptrdiff_t>(buffer.written.size())));
            }
        }
    }
}

TEST(CodeWriter, AlignsToAnyBitOfAByte) {
    for (unsigned used = 0; used < 40; ++used) {
        for (unsigned target = 0; target < 8; ++target) {
            SmallBuffer buffer(100);
            CodeWriter writer(buffer.state, SmallBuffer::flush);
            writer.start();
            BitWriter naive;
            for (unsigned i = 0; i < used; ++i) {
                writer.put(CodeWord("1"));
                naive.bit(true);
            }
            writer.alignTo(target);
            writer.put(CodeWord("1"));
            while (naive.bitCount() % 8 != target) {
                naive.bit(false);
            }
            naive.bit(true);
            writer.alignTo(0);
            writer.handOver();
            EXPECT_EQ(SmallBuffer::flush(buffer.state), Error::None);
            EXPECT_EQ(buffer.written, naive.bytes()) << used << ' ' << target;
        }
    }
}

TEST(CodeWriter, AFailedFlushIsTheLast) {
    SmallBuffer buffer(4);
    buffer.failing = 1;
    CodeWriter writer(buffer.state, SmallBuffer::flush);
    writer.start();
    for (int i = 0; i < 100; ++i) {
        writer.put(word(25));
        writer.makeRoom();
        EXPECT_EQ(writer.error(), buffer.flushes < 2 ? Error::None : Error::Io);
    }
    writer.handOver();
    EXPECT_EQ(writer.error(), Error::Io);
    EXPECT_EQ(buffer.flushes, 2);
    EXPECT_EQ(buffer.written.size(), 4U) << "what went out before";
}

TEST(CodeWriter, AWindowMayBeWrittenOnWithForAWhile) {
    SmallBuffer buffer(10);
    CodeWriter writer(buffer.state, SmallBuffer::flush);
    writer.start();
    BitWriter naive;
    writer.put(word(3));
    putNaively(naive, word(3));
    CodeWindow window = writer.window();
    for (unsigned count = 1; count <= CodeWord::kMostBits; ++count) {
        window.put(word(count));
        writer.makeRoom(window);
        putNaively(naive, word(count));
    }
    writer.resume(window);
    writer.alignTo(0);
    writer.handOver();
    EXPECT_EQ(SmallBuffer::flush(buffer.state), Error::None);
    EXPECT_EQ(buffer.written, naive.bytes());
}

} // namespace
} // namespace vellum::test
