// Sampling of lines beside a plain reading of the rule: a canvas pixel covers the pixels of the screen from its own
// place to that of the next one, and bits that have no place are ORed to the next that has one.
#include "display/line_sampler.h"

#include "display/packed_pixels.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace vellum;
using vellum::test::pixelOf;
using Bytes = std::vector<BYTE>;

// Screen positions as the rule has them, in floating point.
LONG placeOf(const Projection &along, LONG pixel) {
    const double place = static_cast<double>(pixel - along.shown.first) * along.target / along.canvas;
    return std::min(static_cast<LONG>(place + 0.5), along.most);
}

std::vector<unsigned> expectedSamples(const Bytes &line, const Projection &along, LONG linePixels, bool reversed,
                                      WORD bits) {
    std::vector<unsigned> samples;
    unsigned leftOut = 0;
    for (LONG pixel = along.shown.first; pixel < along.shown.end; ++pixel) {
        const unsigned value = pixelOf(line.data(), reversed ? linePixels - 1 - pixel : pixel, bits);
        const LONG from = placeOf(along, pixel);
        const LONG end = placeOf(along, pixel + 1);
        leftOut |= bits == 1 ? value : 0;
        for (LONG i = from; i < end; ++i) {
            samples.push_back(bits == 1 ? leftOut : value);
        }
        leftOut = from < end ? 0 : leftOut;
    }
    if (!samples.empty() && !along.isCut()) {
        samples.back() |= leftOut;
    }
    return samples;
}

void expectSamples(const Projection &along, LONG linePixels, WORD bits) {
    Bytes line = vellum::test::randomBytes((static_cast<std::size_t>(linePixels) * bits + 7) / 8,
                                           static_cast<unsigned>(linePixels * 31 + bits));
    if (bits == 1) { // sparse, so that ORing shows
        for (std::size_t i = 0; i < line.size(); ++i) {
            line[i] = static_cast<BYTE>(i % 3 == 0 ? line[i] & 0x21 : 0);
        }
    }
    for (const bool reversed : {false, true}) {
        SCOPED_TRACE(std::to_string(bits) + " bits, " + std::to_string(linePixels) + " pixels, target " +
                     std::to_string(along.target) + ", from " + std::to_string(along.shown.first) + " to " +
                     std::to_string(along.shown.end) + ", room " + std::to_string(along.most) +
                     (reversed ? ", reversed" : ""));
        LineSampler sampler;
        ASSERT_TRUE(sampler.prepare(along, linePixels, reversed, bits));
        const auto expected = expectedSamples(line, along, linePixels, reversed, bits);
        ASSERT_EQ(sampler.samples(), static_cast<LONG>(expected.size()));
        Bytes sampled((expected.size() * bits + 7) / 8 + 1, BYTE{0xA5});
        sampler.sample(line.data(), sampled.data());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            ASSERT_EQ(pixelOf(sampled.data(), static_cast<LONG>(i), bits), expected[i]) << "pixel " << i;
        }
        EXPECT_EQ(sampled.back(), 0xA5) << "written behind the samples";
    }
}

TEST(LineSampler, TakesEveryPixelOfALineThatIsNotScaled) {
    for (const WORD bits : vellum::test::kBitsPerPixel) {
        for (const LONG pixels : {1, 2, 3, 7, 8, 9, 31, 33, 100}) {
            expectSamples({pixels, pixels, {0, pixels}, pixels}, pixels, bits);
        }
    }
}

TEST(LineSampler, TakesAPartOfALine) {
    for (const WORD bits : vellum::test::kBitsPerPixel) {
        expectSamples({100, 100, {13, 58}, 45}, 100, bits);
        expectSamples({100, 100, {99, 100}, 45}, 100, bits);
    }
}

TEST(LineSampler, ScalesDown) {
    for (const WORD bits : vellum::test::kBitsPerPixel) {
        for (const LONG target : {1, 2, 3, 17, 50, 64, 99}) {
            expectSamples({100, target, {0, 100}, target}, 100, bits);
            expectSamples({100, target, {7, 80}, target}, 100, bits);
        }
        expectSamples({4960, 724, {0, 4960}, 724}, 4960, bits);
    }
}

TEST(LineSampler, ScalesUp) {
    for (const WORD bits : vellum::test::kBitsPerPixel) {
        for (const LONG target : {101, 150, 200, 777}) {
            expectSamples({100, target, {0, 100}, target}, 100, bits);
            expectSamples({100, target, {7, 80}, target}, 100, bits);
        }
    }
}

TEST(LineSampler, EndsWhereThereIsNoMoreRoom) {
    for (const WORD bits : vellum::test::kBitsPerPixel) {
        expectSamples({100, 777, {50, 60}, 31}, 100, bits);
        expectSamples({100, 30, {0, 100}, 29}, 100, bits);
        expectSamples({3, 0x7FFFFFF, {1, 2}, 50}, 3, bits);
    }
}

TEST(LineSampler, GivesNothingOfNothing) {
    LineSampler sampler;
    ASSERT_TRUE(sampler.prepare({100, 100, {5, 5}, 100}, 100, false, 1));
    EXPECT_EQ(sampler.samples(), 0);
    ASSERT_TRUE(sampler.prepare({0, 0, {0, 0}, 100}, 0, false, 8));
    EXPECT_EQ(sampler.samples(), 0);
}

} // namespace
