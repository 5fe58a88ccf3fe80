// What the savers for fax receivers tell a debugger.
#include "native/shim.h"
#include "write/save_calls.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

std::string traceOf(const PackedDib &dib) {
    const TempFile file;
    const DibBlock block(dib);
    vellum::shim::state.debugOutput.clear();
    EXPECT_EQ(SaveDIBInGammaTiffFile(file.path(), block.get(), VELLUM_SAVE_LZW, 0, 1), 1U);
    return vellum::shim::state.debugOutput;
}

std::string times(int count, const std::string &text) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

TEST(DebugTraces, TellOfTheKindOfSaveAndOfEveryLine) {
    PackedDib whiteFirst(9, 3, 1);
    whiteFirst.colours = {{255, 255, 255, 0}, {0, 0, 0, 0}};
    EXPECT_EQ(traceOf(whiteFirst), "MONO Gamma save \n" + times(3, "NOT Inverting image\n"));
    PackedDib blackFirst(9, 3, 1);
    blackFirst.colours = {{0, 0, 0, 0}, {255, 255, 255, 0}};
    EXPECT_EQ(traceOf(blackFirst), "MONO Gamma save \n" + times(3, "Inverting image\n"));
    EXPECT_EQ(traceOf(PackedDib(9, 4, 8)), "Color Gamma save \n" + times(4, "NOT Inverting image\n"));
    EXPECT_EQ(traceOf(PackedDib(9, 4, 24)), "Color Gamma save \n");
}

} // namespace
