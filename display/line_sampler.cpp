// Sampling of lines by tables made once for a picture.
#include "display/line_sampler.h"

#include "support/pixel_order.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace vellum {
namespace {

template <class T>
std::unique_ptr<T[]> newArray(LONG count) {
    return std::unique_ptr<T[]>(new (std::nothrow) T[static_cast<std::size_t>(count)]);
}

} // namespace

LineSampler::Bits LineSampler::bitsBetween(DWORD first, DWORD last) {
    const auto fromFirst = static_cast<BYTE>(0xFF >> first % 8);
    const auto upToLast = static_cast<BYTE>(0xFF << (7 - last % 8));
    const bool inOneByte = first / 8 == last / 8;
    return {first / 8, last / 8, inOneByte ? static_cast<BYTE>(fromFirst & upToLast) : fromFirst, upToLast};
}

bool LineSampler::prepare(const Projection &projection, LONG linePixels, bool reversed, WORD bitsPerPixel) {
    samples_ = projection.length();
    bitsPerPixel_ = bitsPerPixel;
    bits_ = bitsPerPixel == 1 ? newArray<Bits>(samples_) : nullptr;
    pixels_ = bitsPerPixel == 1 ? nullptr : newArray<DWORD>(samples_);
    if (bits_ == nullptr && pixels_ == nullptr) {
        return false;
    }
    const auto onLine = [=](LONG canvasPixel) {
        return static_cast<DWORD>(reversed ? linePixels - 1 - canvasPixel : canvasPixel);
    };
    LONG next = projection.shown.first;
    for (std::size_t i = 0; i < count(); ++i) {
        const LONG pixel = projection.pixelAt(static_cast<LONG>(i));
        if (bits_ == nullptr) {
            pixels_[i] = onLine(pixel);
            continue;
        }
        const LONG from = std::min(next, pixel);
        const LONG to = i + 1 == count() && !projection.isCut() ? projection.shown.end - 1 : pixel;
        bits_[i] = bitsBetween(onLine(reversed ? to : from), onLine(reversed ? from : to));
        next = pixel + 1;
    }
    return true;
}

void LineSampler::sample(const BYTE *line, BYTE *to) const {
    switch (bitsPerPixel_) {
    case 1:
        return sampleBits(line, to);
    case 4:
        return sampleNibbles(line, to);
    case 8:
        return sampleBytes<1>(line, to);
    default:
        return sampleBytes<kBytesPerPixel>(line, to);
    }
}

// Most lines of a page are blank for the most part, many of them wholly.
bool LineSampler::isBlank(const BYTE *line) const {
    const Bits &one = bits_[0];
    const Bits &other = bits_[count() - 1];
    const DWORD first = std::min(one.firstByte, other.firstByte);
    const DWORD last = std::max(one.lastByte, other.lastByte);
    return line[first] == 0 && std::memcmp(line + first, line + first + 1, last - first) == 0;
}

void LineSampler::sampleBits(const BYTE *line, BYTE *to) const {
    if (count() == 0 || isBlank(line)) {
        std::memset(to, 0, (count() + 7) / 8);
        return;
    }
    unsigned collected = 0;
    for (std::size_t i = 0; i < count(); ++i) {
        const Bits &source = bits_[i];
        unsigned found = line[source.firstByte] & source.firstMask;
        if (source.lastByte != source.firstByte) {
            found |= line[source.lastByte] & source.lastMask;
            for (DWORD byte = source.firstByte + 1; byte < source.lastByte; ++byte) {
                found |= line[byte];
            }
        }
        collected = collected << 1 | (found != 0 ? 1 : 0);
        if (i % 8 == 7) {
            *to++ = static_cast<BYTE>(collected);
        }
    }
    if (count() % 8 != 0) {
        *to = static_cast<BYTE>(collected << (8 - count() % 8));
    }
}

void LineSampler::sampleNibbles(const BYTE *line, BYTE *to) const {
    const auto nibble = [line](DWORD pixel) {
        return static_cast<unsigned>(pixel % 2 == 0 ? line[pixel / 2] >> 4 : line[pixel / 2] & 0x0F);
    };
    std::size_t i = 0;
    for (; i + 1 < count(); i += 2) {
        *to++ = static_cast<BYTE>(nibble(pixels_[i]) << 4 | nibble(pixels_[i + 1]));
    }
    if (i < count()) {
        *to = static_cast<BYTE>(nibble(pixels_[i]) << 4);
    }
}

template <DWORD bytesPerPixel>
void LineSampler::sampleBytes(const BYTE *line, BYTE *to) const {
    for (std::size_t i = 0; i < count(); ++i, to += bytesPerPixel) {
        std::memcpy(to, line + std::size_t{pixels_[i]} * bytesPerPixel, bytesPerPixel);
    }
}

} // namespace vellum
