// The letters themselves, and how a letter becomes pixels: all pixels near enough to a stroke.
#include "bench/glyphs.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace bench {
namespace {

// A letter on a grid: y 0 is the top of capitals, 4 the top of small letters, 11 the baseline, 14 the descenders' end.
// Strokes: m x y (move), l x y (line), q cx cy x y (curve), o cx cy rx ry (oval), s x y (serif). Numbers in tenths.
struct Glyph {
    char letter;
    int advance; // grid steps, in tenths
    const char *strokes;
};

constexpr Glyph kGlyphs[] = {
    {'a', 75, "m 12 52 q 30 32 50 45 l 52 100 q 56 112 68 108 m 52 70 q 8 74 10 94 q 18 120 52 96"},
    {'b', 80, "m 18 0 l 18 110 s 10 0 o 42 76 24 34"},
    {'c', 70, "m 60 54 q 46 36 30 42 q 8 54 10 78 q 14 110 38 110 q 54 108 62 94"},
    {'d', 80, "m 60 0 l 60 110 s 54 0 s 66 110 o 36 76 25 34"},
    {'e', 72, "m 12 74 l 62 74 q 60 40 36 40 q 10 42 10 76 q 12 110 38 110 q 54 108 62 94"},
    {'f', 50, "m 52 10 q 24 -12 22 28 l 22 110 s 22 110 m 8 42 l 42 42"},
    {'g', 78,
     "o 36 66 22 26 m 56 46 l 70 42 m 26 92 q 10 104 30 106 l 50 108 q 76 120 54 136 q 28 148 12 132 q 8 116 26 108"},
    {'h', 82, "m 16 0 l 16 110 s 16 110 s 10 0 m 16 58 q 40 28 60 52 q 64 60 64 110 s 64 110"},
    {'i', 42, "m 22 42 l 22 110 s 22 110 s 16 42 m 22 14 l 22 17"},
    {'j', 42, "m 26 42 l 26 118 q 24 142 6 134 s 20 42 m 26 14 l 26 17"},
    {'k', 80, "m 16 0 l 16 110 s 16 110 s 10 0 m 58 42 l 18 82 m 32 70 l 64 110 s 60 42 s 66 110"},
    {'l', 42, "m 22 0 l 22 110 s 22 110 s 16 0"},
    {'m', 120,
     "m 16 42 l 16 110 s 16 110 s 10 42 m 16 58 q 40 28 56 52 l 58 110 s 58 110 m 58 58 q 84 28 98 52 l 100 110 s 100 "
     "110"},
    {'n', 82, "m 16 42 l 16 110 s 16 110 s 10 42 m 16 58 q 40 28 60 52 q 64 60 64 110 s 64 110"},
    {'o', 78, "o 38 76 27 34"},
    {'p', 80, "m 18 42 l 18 142 s 18 142 s 12 42 o 43 76 24 34"},
    {'q', 80, "m 60 42 l 60 142 s 60 142 o 35 76 24 34"},
    {'r', 58, "m 18 42 l 18 110 s 18 110 s 12 42 m 18 62 q 32 34 52 48"},
    {'s', 62, "m 50 54 q 30 32 16 50 q 8 68 32 74 q 62 84 48 102 q 28 118 10 98"},
    {'t', 50, "m 22 20 l 22 94 q 24 116 44 104 m 8 42 l 42 42"},
    {'u', 82, "m 16 42 l 16 90 q 20 120 46 106 l 62 94 m 62 42 l 62 110 s 68 110 s 10 42 s 56 42"},
    {'v', 78, "m 10 42 l 38 110 l 66 42 s 10 42 s 66 42"},
    {'w', 108, "m 8 42 l 30 110 l 52 48 l 76 110 l 98 42 s 8 42 s 98 42"},
    {'x', 78, "m 10 42 l 66 110 m 64 42 l 10 110 s 10 42 s 64 42 s 10 110 s 66 110"},
    {'y', 78, "m 10 42 l 38 108 m 66 42 l 36 118 q 26 144 8 134 s 10 42 s 66 42"},
    {'z', 70, "m 10 52 l 12 42 l 58 42 l 10 110 l 60 110 l 62 98"},
    {'A', 110, "m 8 110 l 52 0 l 98 110 s 8 110 s 98 110 m 24 74 l 82 74"},
    {'B', 100,
     "m 22 0 l 22 110 m 10 0 l 54 0 q 82 4 80 26 q 78 50 50 52 l 22 52 m 50 52 q 90 56 88 82 q 84 110 52 110 l 10 110"},
    {'C', 102, "m 86 30 q 76 -2 50 0 q 12 6 12 56 q 14 108 54 110 q 80 108 90 82"},
    {'D', 110, "m 22 0 l 22 110 m 10 0 l 50 0 q 98 4 98 54 q 98 106 50 110 l 10 110"},
    {'E', 96,
     "m 22 0 l 22 110 m 10 24 l 10 0 l 80 0 l 82 22 m 22 52 l 60 52 m 60 40 l 60 64 m 10 110 l 82 110 l 86 86"},
    {'F', 90, "m 22 0 l 22 110 s 22 110 m 10 0 l 78 0 l 80 22 m 22 52 l 58 52 m 58 40 l 58 64"},
    {'H', 112, "m 22 0 l 22 110 m 90 0 l 90 110 m 22 54 l 90 54 s 22 0 s 90 0 s 22 110 s 90 110"},
    {'I', 54, "m 27 0 l 27 110 s 27 0 s 27 110"},
    {'L', 92, "m 22 0 l 22 110 s 22 0 m 10 110 l 78 110 l 84 84"},
    {'M', 136, "m 22 0 l 22 110 m 22 0 l 66 106 l 112 0 l 112 110 s 16 0 s 116 0 s 22 110 s 112 110"},
    {'N', 114, "m 22 110 l 22 0 l 92 110 l 92 0 s 16 0 s 92 0 s 22 110"},
    {'O', 112, "o 54 55 43 55"},
    {'P', 88, "m 22 0 l 22 110 s 22 110 m 10 0 l 52 0 q 82 4 80 30 q 78 58 48 58 l 22 58"},
    {'R', 102, "m 22 0 l 22 110 s 22 110 m 10 0 l 52 0 q 84 4 82 28 q 80 54 48 56 l 22 56 m 50 56 l 84 110 l 96 110"},
    {'S', 84, "m 68 28 q 58 -4 34 2 q 4 14 22 42 l 54 60 q 84 76 62 102 q 30 122 12 78"},
    {'T', 98, "m 49 0 l 49 110 s 49 110 m 8 26 l 10 0 l 88 0 l 90 26"},
    {'V', 108, "m 10 0 l 54 110 l 98 0 s 10 0 s 98 0"},
    {'W', 146, "m 8 0 l 42 110 l 74 6 l 106 110 l 138 0 s 8 0 s 138 0"},
    {'0', 76, "o 38 55 26 55"},
    {'1', 76, "m 18 18 l 40 0 l 40 110 s 40 110"},
    {'2', 76, "m 12 28 q 18 -2 40 0 q 70 8 56 44 l 10 110 l 62 110 l 66 94"},
    {'3', 76, "m 14 18 q 30 -6 50 4 q 66 24 50 42 l 32 50 m 34 50 q 66 52 62 80 q 52 116 14 100"},
    {'4', 76, "m 50 110 l 50 0 l 8 78 l 68 78 s 50 110"},
    {'5', 76, "m 62 0 l 22 0 l 18 46 q 62 36 62 74 q 54 116 12 102"},
    {'6', 76, "m 60 4 q 14 20 12 72 o 38 76 25 34"},
    {'7', 76, "m 10 16 l 12 0 l 66 0 l 30 110"},
    {'8', 76, "o 38 27 21 27 o 38 82 26 28"},
    {'9', 76, "m 16 106 q 62 90 64 34 o 38 34 25 34"},
    {'.', 38, "m 18 108 l 18 110"},
    {',', 38, "m 18 106 l 20 110 l 12 124"},
    {'-', 52, "m 10 74 l 40 74"},
    {':', 38, "m 18 108 l 18 110 m 18 52 l 18 54"},
    {'/', 56, "m 50 0 l 6 110"},
    {'(', 46, "m 38 -6 q -6 54 38 122"},
    {')', 46, "m 8 -6 q 52 54 8 122"},
};

constexpr double kSpace = 4.2;
constexpr double kBaseline = 11.0;
constexpr double kPenAcross = 1.3;  // grid steps: stems are thick,
constexpr double kPenDown = 0.78;   // bars are thin
constexpr double kRoughness = 0.45; // pixels that an edge strays

const Glyph *find(char letter) {
    const auto *found = std::find_if(std::begin(kGlyphs), std::end(kGlyphs),
                                     [letter](const Glyph &glyph) { return glyph.letter == letter; });
    return found == std::end(kGlyphs) ? nullptr : found;
}

double advanceOf(char letter) {
    const Glyph *glyph = find(letter);
    return glyph == nullptr ? kSpace : glyph->advance / 10.0;
}

struct Segment {
    Point from;
    Point to;
};

// Reads the next number of a stroke list, in grid steps.
double nextNumber(const char *&at) {
    char *end = nullptr;
    const long tenths = std::strtol(at, &end, 10);
    at = end;
    return static_cast<double>(tenths) / 10.0;
}

Point nextPoint(const char *&at) {
    const double x = nextNumber(at);
    const double y = nextNumber(at);
    return {x, y};
}

std::vector<Segment> segmentsOf(const Glyph &glyph) {
    std::vector<Segment> segments;
    Point pen{0, 0};
    const auto drawTo = [&](const std::vector<Point> &points) {
        for (const Point &p : points) {
            segments.push_back({pen, p});
            pen = p;
        }
    };
    for (const char *at = glyph.strokes; *at != '\0';) {
        const char command = *at++;
        std::vector<Point> points;
        switch (command) {
        case 'm':
            pen = nextPoint(at);
            break;
        case 'l':
            drawTo({nextPoint(at)});
            break;
        case 'q': {
            const Point control = nextPoint(at);
            appendCurve(points, pen, control, nextPoint(at), 8);
            drawTo(points);
            break;
        }
        case 'o': {
            const Point centre = nextPoint(at);
            const Point radius = nextPoint(at);
            points = ellipsePoints(centre, radius.x, radius.y, 3);
            pen = points.front();
            drawTo(points);
            break;
        }
        case 's': {
            const Point centre = nextPoint(at);
            segments.push_back({{centre.x - 1.3, centre.y}, {centre.x + 1.3, centre.y}});
            break;
        }
        default: // blanks between the commands
            break;
        }
    }
    return segments;
}

double distance(Point p, const Segment &segment) {
    const double dx = segment.to.x - segment.from.x;
    const double dy = segment.to.y - segment.from.y;
    const double length2 = dx * dx + dy * dy;
    double t = length2 == 0 ? 0 : ((p.x - segment.from.x) * dx + (p.y - segment.from.y) * dy) / length2;
    t = std::clamp(t, 0.0, 1.0);
    const double x = p.x - segment.from.x - t * dx;
    const double y = p.y - segment.from.y - t * dy;
    return std::sqrt(x * x + y * y);
}

} // namespace

Typeface::Typeface(double points, int dotsPerInch) : unit_(points * dotsPerInch / 72.0 / 15.0) {}

const Typeface::Print &Typeface::print(char letter, int variant) {
    const auto [entry, isNew] = prints_.try_emplace({letter, variant});
    const Glyph *glyph = find(letter);
    if (!isNew || glyph == nullptr) {
        return entry->second;
    }
    // In pixels, and stretched downwards so that the round pen becomes a broad one.
    constexpr double kStretch = kPenAcross / kPenDown;
    std::vector<Segment> segments = segmentsOf(*glyph);
    const double shift = 0.25 * variant;
    for (Segment &segment : segments) {
        for (Point *p : {&segment.from, &segment.to}) {
            *p = {p->x * unit_ + shift, (p->y - kBaseline) * unit_ * kStretch + shift};
        }
    }
    const auto seed = static_cast<std::uint32_t>(letter * kVariants + variant);
    const int right = static_cast<int>((glyph->advance / 10.0 + 1) * unit_) + 2;
    for (int y = static_cast<int>(-13 * unit_); y < static_cast<int>(5 * unit_); ++y) {
        for (int x = static_cast<int>(-1.5 * unit_); x < right; ++x) {
            double nearest = 1e9;
            for (const Segment &segment : segments) {
                nearest = std::min(nearest, distance({x * 1.0, y * kStretch}, segment));
            }
            if (nearest <= kPenAcross * unit_ / 2 + kRoughness * surface(x / 2.5, y / 2.5, seed)) {
                entry->second.black.emplace_back(x, y);
            }
        }
    }
    return entry->second;
}

double Typeface::draw(Canvas &canvas, double x, double y, std::string_view text) {
    for (const char letter : text) {
        turn_ = (turn_ + 1) % kVariants;
        const int left = static_cast<int>(x);
        const int baseline = static_cast<int>(y);
        for (const auto &[dx, dy] : print(letter, turn_).black) {
            canvas.set(left + dx, baseline + dy);
        }
        x += advanceOf(letter) * unit_;
    }
    return x;
}

double Typeface::widthOf(std::string_view text) const {
    double steps = 0;
    for (const char letter : text) {
        steps += advanceOf(letter);
    }
    return steps * unit_;
}

std::string Prose::word() {
    // Every letter as often as in a hundred letters of English.
    static constexpr std::string_view kLetters = "eeeeeeeeeeeetttttttttaaaaaaaaooooooooiiiiiiinnnnnnnsssssshhhhhhrrrrrr"
                                                 "ddddlllluuucccmmmwwwffggyyppbbvkjxqz";
    static constexpr std::string_view kCapitals = "ABCDEFHILMNOPRSTVW";
    static constexpr int kLengths[] = {1, 2, 2, 2, 3, 3, 3, 3, 4, 4, 4, 5, 5, 6, 6, 7, 7, 8, 9, 10};
    std::string word;
    const int length = kLengths[random_.below(20)];
    for (int i = 0; i < length; ++i) {
        word += kLetters[static_cast<std::size_t>(random_.below(static_cast<int>(kLetters.size())))];
    }
    if (sentenceStarts_ || random_.below(25) == 0) {
        word[0] = kCapitals[static_cast<std::size_t>(random_.below(static_cast<int>(kCapitals.size())))];
    }
    sentenceStarts_ = random_.below(12) == 0;
    if (sentenceStarts_) {
        word += '.';
    } else if (random_.below(14) == 0) {
        word += ',';
    }
    return word;
}

std::string Prose::number() {
    std::string text = std::to_string(1 + random_.below(9999));
    text += '.';
    text += static_cast<char>('0' + random_.below(10));
    text += static_cast<char>('0' + random_.below(10));
    return text;
}

} // namespace bench
