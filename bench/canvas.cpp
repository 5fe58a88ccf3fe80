// Drawing with a round pen, and chance that depends on the place alone.
#include "bench/canvas.h"

#include <algorithm>
#include <cmath>

namespace bench {
namespace {

// Chance bound to a place: the same for the same place and seed.
double latticeValue(int x, int y, std::uint32_t seed) {
    std::uint32_t hash =
        static_cast<std::uint32_t>(x) * 0x9E3779B1u ^ static_cast<std::uint32_t>(y) * 0x85EBCA77u ^ seed * 0xC2B2AE3Du;
    hash ^= hash >> 15;
    hash *= 0x2C1B3C6Du;
    hash ^= hash >> 12;
    hash *= 0x297A2D39u;
    hash ^= hash >> 15;
    return static_cast<double>(hash >> 8) / (1 << 23) - 1.0;
}

// std::floor costs far more than this in 32-bit code.
int floorOf(double value) {
    const int cut = static_cast<int>(value);
    return cut > value ? cut - 1 : cut;
}

double smooth(double t) {
    return t * t * (3.0 - 2.0 * t);
}

} // namespace

double surface(double x, double y, std::uint32_t seed) {
    const int left = floorOf(x);
    const int top = floorOf(y);
    const double acrossShare = smooth(x - left);
    const double downShare = smooth(y - top);
    const double a = latticeValue(left, top, seed);
    const double b = latticeValue(left + 1, top, seed);
    const double c = latticeValue(left, top + 1, seed);
    const double d = latticeValue(left + 1, top + 1, seed);
    const double upper = a + (b - a) * acrossShare;
    const double lower = c + (d - c) * acrossShare;
    return upper + (lower - upper) * downShare;
}

void Canvas::fill(int left, int top, int right, int bottom) {
    for (int y = std::max(top, 0); y < std::min(bottom, height_); ++y) {
        for (int x = std::max(left, 0); x < std::min(right, width_); ++x) {
            bits_[at(x, y)] |= mask(x);
        }
    }
}

void Canvas::dot(Point centre, double radius) {
    const int top = static_cast<int>(std::ceil(centre.y - radius));
    const int bottom = static_cast<int>(std::floor(centre.y + radius));
    for (int y = top; y <= bottom; ++y) {
        const double half = std::sqrt(std::max(0.0, radius * radius - (y - centre.y) * (y - centre.y)));
        const int left = static_cast<int>(std::ceil(centre.x - half));
        const int right = static_cast<int>(std::floor(centre.x + half));
        for (int x = left; x <= right; ++x) {
            set(x, y);
        }
    }
}

void Canvas::line(Point from, Point to, double pen) {
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const int steps = 1 + static_cast<int>(2.0 * std::max(std::fabs(dx), std::fabs(dy)));
    for (int i = 0; i <= steps; ++i) {
        dot({from.x + dx * i / steps, from.y + dy * i / steps}, pen / 2);
    }
}

void Canvas::ellipse(Point centre, double radiusX, double radiusY, double pen) {
    const std::vector<Point> points = ellipsePoints(centre, radiusX, radiusY, 24);
    for (std::size_t i = 1; i < points.size(); ++i) {
        line(points[i - 1], points[i], pen);
    }
}

std::vector<Point> ellipsePoints(Point centre, double radiusX, double radiusY, int parts) {
    // Eighths of a turn: the points on the circle, and where the tangents of two neighbours meet.
    constexpr double kHalf = 0.70710678118654752;
    constexpr double kTangent = 0.41421356237309505;
    constexpr Point kOn[9] = {{1, 0},           {kHalf, kHalf}, {0, 1},          {-kHalf, kHalf}, {-1, 0},
                              {-kHalf, -kHalf}, {0, -1},        {kHalf, -kHalf}, {1, 0}};
    constexpr Point kMeet[8] = {{1, kTangent},   {kTangent, 1},   {-kTangent, 1}, {-1, kTangent},
                                {-1, -kTangent}, {-kTangent, -1}, {kTangent, -1}, {1, -kTangent}};
    const auto place = [&](Point p) { return Point{centre.x + radiusX * p.x, centre.y + radiusY * p.y}; };
    std::vector<Point> points{place(kOn[0])};
    for (int i = 0; i < 8; ++i) {
        appendCurve(points, place(kOn[i]), place(kMeet[i]), place(kOn[i + 1]), parts);
    }
    return points;
}

void appendCurve(std::vector<Point> &points, Point from, Point control, Point to, int parts) {
    for (int i = 1; i <= parts; ++i) {
        const double t = static_cast<double>(i) / parts;
        const double u = 1.0 - t;
        points.push_back({u * u * from.x + 2 * u * t * control.x + t * t * to.x,
                          u * u * from.y + 2 * u * t * control.y + t * t * to.y});
    }
}

} // namespace bench
