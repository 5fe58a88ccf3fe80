// Running sums and differences along a line, one routine for each sample layout.
#include "codec/differencing.h"

#include <emmintrin.h>

namespace vellum {
namespace {

BYTE lowNibble(unsigned value) {
    return static_cast<BYTE>(value & 15);
}

BYTE joined(BYTE high, BYTE low) {
    return static_cast<BYTE>(high << 4 | low);
}

void sumNibbles(BYTE *line, std::size_t bytes) {
    BYTE sample = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
        const BYTE high = lowNibble(sample + (line[i] >> 4));
        sample = lowNibble(high + line[i]);
        line[i] = joined(high, sample);
    }
}

void differNibbles(BYTE *line, std::size_t bytes) {
    BYTE sample = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
        const BYTE high = line[i] >> 4;
        const BYTE low = lowNibble(line[i]);
        line[i] = joined(lowNibble(high - sample), lowNibble(low - high));
        sample = low;
    }
}

void sumBytes(BYTE *line, std::size_t bytes) {
    BYTE sample = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
        sample = static_cast<BYTE>(sample + line[i]);
        line[i] = sample;
    }
}

constexpr std::size_t kChannels = 3;

void sumPixels(BYTE *line, std::size_t bytes) {
    BYTE sample[kChannels] = {};
    const auto sum = [&sample, &line](std::size_t channels) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            sample[channel] = static_cast<BYTE>(sample[channel] + line[channel]);
            line[channel] = sample[channel];
        }
    };
    for (; bytes >= kChannels; bytes -= kChannels, line += kChannels) {
        sum(kChannels);
    }
    sum(bytes);
}

// Backwards, so that every byte still finds the byte before it unchanged.
void differBytes(BYTE *line, std::size_t bytes, std::size_t distance) {
    constexpr std::size_t kPiece = sizeof(__m128i);
    std::size_t i = bytes;
    for (; i >= distance + kPiece; i -= kPiece) {
        auto *piece = reinterpret_cast<__m128i *>(line + i - kPiece);
        const auto *before = reinterpret_cast<const __m128i *>(line + i - kPiece - distance);
        _mm_storeu_si128(piece, _mm_sub_epi8(_mm_loadu_si128(piece), _mm_loadu_si128(before)));
    }
    for (; i > distance; --i) {
        line[i - 1] = static_cast<BYTE>(line[i - 1] - line[i - 1 - distance]);
    }
}

} // namespace

void undoHorizontalDifferencing(BYTE *line, std::size_t bytes, unsigned bitsPerPixel) {
    switch (bitsPerPixel) {
    case 4:
        return sumNibbles(line, bytes);
    case 8:
        return sumBytes(line, bytes);
    case 24:
        return sumPixels(line, bytes);
    default:
        return;
    }
}

void applyHorizontalDifferencing(BYTE *line, std::size_t bytes, unsigned bitsPerPixel) {
    switch (bitsPerPixel) {
    case 4:
        return differNibbles(line, bytes);
    case 8:
        return differBytes(line, bytes, 1);
    case 24:
        return differBytes(line, bytes, kChannels);
    default:
        return;
    }
}

} // namespace vellum
