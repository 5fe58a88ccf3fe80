// Error numbers that only the library itself can store.
#include "core/error.h"
#include "vellum32.h"

#include <gtest/gtest.h>

namespace vellum {
namespace {

TEST(LastError, HoldsTheNumberOfALineFunctionUnchanged) {
    setError(fromLineFunction(1000));
    EXPECT_EQ(TiffError(), 1000u);
    char buffer[43];
    EXPECT_STREQ(TiffErrorString(buffer, 99), "Unknown error.");
    EXPECT_EQ(SetTiffError(0), 1000u);
}

TEST(LastError, IsSetByAFailureWhoseResultIs0) {
    EXPECT_EQ(failed(Error::NotTiff), 0u);
    EXPECT_EQ(TiffError(), 8u);
    SetTiffError(0);
}

} // namespace
} // namespace vellum
