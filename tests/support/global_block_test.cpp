// Owners and views of global memory: every way they end, and what they refuse.
#include "support/faults.h"
#include "support/global_block.h"
#include "support/global_memory.h"

#include <gtest/gtest.h>

#include <utility>

namespace vellum {
namespace {

using test::blockBytes;
using test::Bytes;
using test::lockCount;
using test::makeBlock;

TEST(GlobalBlock, AllocatesZeroedMemoryOfTheExactSize) {
    const auto block = GlobalBlock::allocate(13);
    ASSERT_TRUE(block);
    EXPECT_EQ(blockBytes(block.get()), Bytes(13, 0));
}

TEST(GlobalBlock, IsEmptyWhenTheSizeIsTooLargeOrMemoryIsShort) {
    EXPECT_FALSE(GlobalBlock::allocate(Size(0x80000000u)));
    const test::FailNth failing(test::Call::Allocate, 0);
    EXPECT_FALSE(GlobalBlock::allocate(1));
    EXPECT_TRUE(GlobalBlock::allocate(1));
}

TEST(GlobalBlock, GrowsWithZerosAndKeepsItsBytes) {
    GlobalBlock block(makeBlock({1, 2}));
    EXPECT_TRUE(block.grow(4));
    EXPECT_EQ(blockBytes(block.get()), (Bytes{1, 2, 0, 0}));
}

TEST(GlobalBlock, StaysAsItWasWhenItCannotGrow) {
    GlobalBlock block(makeBlock({1, 2}));
    EXPECT_FALSE(block.grow(Size(0x80000000u)));
    const test::FailNth failing(test::Call::Reallocate, 0);
    EXPECT_FALSE(block.grow(4));
    EXPECT_EQ(blockBytes(block.get()), (Bytes{1, 2}));
}

TEST(GlobalBlock, IsNotMovedWhileItIsLocked) {
    GlobalBlock block(makeBlock({1, 2}));
    {
        const GlobalView<BYTE> view(block.get());
        EXPECT_FALSE(block.grow(1000000));
        EXPECT_EQ(view.get()[1], 2);
    }
    EXPECT_EQ(blockBytes(block.get()), (Bytes{1, 2}));
    EXPECT_TRUE(block.grow(1000000)) << "and is when it is not";
}

TEST(GlobalBlock, MovesItsHandle) {
    GlobalBlock first(makeBlock({1}));
    HGLOBAL handle = first.get();
    GlobalBlock second(std::move(first));
    EXPECT_EQ(second.get(), handle);
    GlobalBlock third;
    third = std::move(second);
    EXPECT_EQ(third.get(), handle);
    EXPECT_EQ(blockBytes(handle), Bytes{1});
}

TEST(GlobalBlock, ReleaseLeavesTheBlockToTheCaller) {
    GlobalBlock block(makeBlock({9}));
    HGLOBAL handle = block.release();
    EXPECT_FALSE(block);
    EXPECT_EQ(blockBytes(handle), Bytes{9});
    GlobalFree(handle);
}

TEST(GlobalBlock, ResetFreesOnce) {
    GlobalBlock block(makeBlock({9}));
    block.reset();
    EXPECT_FALSE(block);
    block.reset();
}

TEST(GlobalView, LocksForItsLifetimeOnly) {
    const GlobalBlock block(makeBlock({5, 6}));
    {
        const GlobalView<BYTE> view(block.get());
        ASSERT_TRUE(view);
        EXPECT_EQ(view.bytes(), 2u);
        EXPECT_EQ(*view, 5);
        EXPECT_EQ(lockCount(block.get()), 1u);
    }
    EXPECT_EQ(lockCount(block.get()), 0u);
}

TEST(GlobalView, ShowsNothingOfABlockThatIsTooSmall) {
    const GlobalBlock block(makeBlock({5, 6, 7}));
    const GlobalView<DWORD> view(block.get());
    EXPECT_FALSE(view);
    EXPECT_EQ(view.bytes(), 0u);
    EXPECT_EQ(lockCount(block.get()), 0u);
    EXPECT_FALSE(GlobalView<BYTE>(block.get(), 4));
    EXPECT_TRUE(GlobalView<BYTE>(block.get(), 3));
}

TEST(GlobalView, ShowsNothingOfNull) {
    EXPECT_FALSE(GlobalView<BYTE>(nullptr));
}

} // namespace
} // namespace vellum
