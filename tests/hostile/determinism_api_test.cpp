// The same input gives the same lines, whatever was decoded before it and whatever fresh memory holds.
#include "hostile/orderly.h"

namespace {

using namespace vellum::test;

struct Decoding {
    Outcome outcome;
    Bytes lines;
    bool operator==(const Decoding &) const = default;
};

Decoding decodeOnce(const Bytes &content) {
    const OpenedTiff tiff(content);
    EXPECT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    const Outcome outcome = decodeInto(log, tiff.get(), 0);
    return {outcome, log.data};
}

// Noise under a key, for pictures of changing sizes.
Bytes noise(DWORD key, std::uint32_t seed) {
    Random random(seed);
    CodedPage page = smallPicture(key).page;
    page.width = 1 + random.below(200);
    page.height = 40;
    Bytes code;
    for (std::uint32_t i = 20 + random.below(300); i > 0; --i) {
        code.push_back(static_cast<std::uint8_t>(random.below(2) == 0 ? random.below(16) : random.below(256)));
    }
    return codedTiff(page, {code});
}

TEST(Determinism, ADecodeDoesNotDependOnTheOneBefore) {
    for (const DWORD key : kAllKeys) {
        std::vector<Decoding> first;
        for (std::uint32_t seed = 0; seed < 100; ++seed) {
            first.push_back(decodeOnce(noise(key, seed)));
        }
        for (std::uint32_t seed = 100; seed-- > 0;) {
            decodeOnce(noise(kAllKeys[seed % std::size(kAllKeys)], seed + 1000));
            EXPECT_TRUE(decodeOnce(noise(key, seed)) == first[seed]) << keyName(key) << ", seed " << seed;
        }
    }
}

#ifdef VELLUM_NATIVE
TEST(Determinism, ADecodeDoesNotDependOnWhatFreshMemoryHolds) {
    const BYTE before = vellum::shim::state.freshByte;
    for (const DWORD key : kAllKeys) {
        for (std::uint32_t seed = 0; seed < 100; ++seed) {
            vellum::shim::state.freshByte = 0;
            const Decoding clean = decodeOnce(noise(key, seed));
            for (const BYTE pattern : {BYTE{0xFF}, BYTE{0x5A}}) {
                vellum::shim::state.freshByte = pattern;
                EXPECT_TRUE(decodeOnce(noise(key, seed)) == clean) << keyName(key) << ", seed " << seed;
            }
        }
    }
    vellum::shim::state.freshByte = before;
}
#endif

} // namespace
