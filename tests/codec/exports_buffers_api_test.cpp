// The exported buffer operations, called without a state.
#include "vellum32.h"

#include <gtest/gtest.h>

namespace {

TEST(BufferOperations, WithoutAStateThereIsNotEnoughMemory) {
    EXPECT_EQ(InitDecodeBuffers(nullptr), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(InitEncodeBuffers(nullptr), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(FillCodeBuffer(nullptr), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(FlushCodeBuffer(nullptr), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(FillDataBuffer(nullptr), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(FlushDataBuffer(nullptr), DWORD{VELLUM_NO_MEMORY});
}

} // namespace
