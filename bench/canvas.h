// A black-and-white picture in memory and a pen to draw on it, and the two sources of chance that the pages use.
//
// Everything is computed with additions, multiplications, divisions and square roots of SSE2 arithmetic only, so every
// build draws the same page, bit for bit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bench {

// A sequence of numbers that depends on its seed alone.
class Random {
public:
    explicit Random(std::uint32_t seed) : state_(seed * 2654435761u + 1) {}
    std::uint32_t next() {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 17;
        state_ ^= state_ << 5;
        return state_;
    }
    // A number from 0 to limit - 1.
    int below(int limit) { return static_cast<int>(next() % static_cast<std::uint32_t>(limit)); }

private:
    std::uint32_t state_;
};

// A smooth random surface between -1 and 1 with bumps of about one unit: for edges, paper and skies.
double surface(double x, double y, std::uint32_t seed);

struct Point {
    double x;
    double y;
};

// One bit a pixel, most significant bit first, 1 for black; the spare bits of a row are 0.
class Canvas {
public:
    Canvas(int width, int height)
        : width_(width), height_(height), rowBytes_((width + 7) / 8),
          bits_(static_cast<std::size_t>(rowBytes_) * static_cast<std::size_t>(height)) {}

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] const std::vector<std::uint8_t> &bits() const { return bits_; }
    [[nodiscard]] bool black(int x, int y) const { return (bits_[at(x, y)] & mask(x)) != 0; }

    // Pixels outside the picture are ignored.
    void set(int x, int y) {
        if (x >= 0 && x < width_ && y >= 0 && y < height_) {
            bits_[at(x, y)] |= mask(x);
        }
    }
    void fill(int left, int top, int right, int bottom);
    // A line drawn with a round pen of this diameter, in pixels.
    void line(Point from, Point to, double pen);
    // An ellipse along the axes.
    void ellipse(Point centre, double radiusX, double radiusY, double pen);

private:
    [[nodiscard]] std::size_t at(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(rowBytes_) + static_cast<std::size_t>(x / 8);
    }
    static std::uint8_t mask(int x) { return static_cast<std::uint8_t>(0x80 >> (x % 8)); }
    void dot(Point centre, double radius);

    int width_;
    int height_;
    int rowBytes_;
    std::vector<std::uint8_t> bits_;
};

// The corners of a polygon close to an ellipse, with a corner every eighth of a turn divided into `parts`; the last
// corner is the first one again.
std::vector<Point> ellipsePoints(Point centre, double radiusX, double radiusY, int parts);

// A quadratic curve as `parts` straight pieces; `from` itself is not among the points.
void appendCurve(std::vector<Point> &points, Point from, Point control, Point to, int parts);

} // namespace bench
