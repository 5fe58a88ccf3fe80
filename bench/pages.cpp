// The black-and-white pages, and the list of all pages.
#include "bench/pages.h"

#include "bench/glyphs.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <stdexcept>
#include <utility>

namespace bench {
namespace {

// Millimetres on the paper to pixels.
struct Scale {
    int dotsPerInch;
    double operator()(double millimetres) const { return millimetres * dotsPerInch / 25.4; }
};

constexpr double kPaperWidth = 210;
constexpr double kPaperHeight = 297;

Canvas paper(Scale px) {
    return {static_cast<int>(px(kPaperWidth) + 0.5), static_cast<int>(px(kPaperHeight) + 0.5)};
}

Page pageOf(const Canvas &canvas) {
    Page page;
    page.width = static_cast<unsigned>(canvas.width());
    page.height = static_cast<unsigned>(canvas.height());
    page.bitsPerSample = 1;
    page.samplesPerPixel = 1;
    page.rowBytes = (page.width + 7) / 8;
    page.rows = canvas.bits();
    return page;
}

// A paragraph of so many lines, justified except for the last line. Gives the baseline of the line behind it.
double paragraph(Canvas &canvas, Typeface &face, Prose &prose, Point at, double width, int lines) {
    std::string carried = prose.word();
    for (int line = 0; line < lines; ++line) {
        std::vector<std::string> words;
        double used = 0;
        while (used + face.widthOf(carried) <= width) {
            used += face.widthOf(carried) + face.widthOf(" ");
            words.push_back(std::exchange(carried, prose.word()));
            if (line == lines - 1 && used > 0.6 * width) {
                break;
            }
        }
        const double spare = width - used + face.widthOf(" ");
        const double gap = words.size() > 1 && line < lines - 1 ? spare / static_cast<double>(words.size() - 1) : 0;
        double x = at.x;
        for (const std::string &word : words) {
            x = face.draw(canvas, x, at.y, word) + face.widthOf(" ") + gap;
        }
        at.y += face.lineHeight();
    }
    return at.y;
}

// Parallel lines across a rectangle, as a section is hatched.
void hatch(Canvas &canvas, Point topLeft, Point bottomRight, double step, double pen) {
    const double height = bottomRight.y - topLeft.y;
    for (double x = topLeft.x - height; x < bottomRight.x; x += step) {
        const double first = std::max(topLeft.x - x, 0.0);
        const double last = std::min(bottomRight.x - x, height);
        if (first < last) {
            canvas.line({x + first, topLeft.y + first}, {x + last, topLeft.y + last}, pen);
        }
    }
}

void rectangle(Canvas &canvas, Point topLeft, Point bottomRight, double pen) {
    canvas.line(topLeft, {bottomRight.x, topLeft.y}, pen);
    canvas.line({bottomRight.x, topLeft.y}, bottomRight, pen);
    canvas.line(bottomRight, {topLeft.x, bottomRight.y}, pen);
    canvas.line({topLeft.x, bottomRight.y}, topLeft, pen);
}

// A measure between two points on a level, with arrow heads and its number.
void dimension(Canvas &canvas, Typeface &face, Scale px, Point from, double length, const std::string &text) {
    const Point to{from.x + length, from.y};
    canvas.line(from, to, px(0.18));
    for (const auto &[tip, way] : {std::pair{from, 1.0}, std::pair{to, -1.0}}) {
        canvas.line(tip, {tip.x + way * px(2.5), tip.y - px(0.7)}, px(0.18));
        canvas.line(tip, {tip.x + way * px(2.5), tip.y + px(0.7)}, px(0.18));
        canvas.line({tip.x, tip.y - px(8)}, {tip.x, tip.y + px(2)}, px(0.18));
    }
    face.draw(canvas, from.x + (length - face.widthOf(text)) / 2, from.y - px(1), text);
}

} // namespace

// A printed page of 9.5 points, single-spaced in paragraphs, with a heading.
Page denseText(int dotsPerInch) {
    const Scale px{dotsPerInch};
    Canvas canvas = paper(px);
    Typeface heading(16, dotsPerInch);
    Typeface body(9.5, dotsPerInch);
    Prose prose(1);
    Random random(2);
    paragraph(canvas, heading, prose, {px(22), px(26)}, px(120), 1);
    double y = px(36);
    const double bottom = px(278);
    while (y < bottom) {
        const int room = static_cast<int>((bottom - y) / body.lineHeight());
        y = paragraph(canvas, body, prose, {px(20), y}, px(172), std::clamp(room, 1, 4 + random.below(7)));
        y += 0.4 * body.lineHeight();
    }
    return pageOf(canvas);
}

// A business letter: a letterhead, an address, two paragraphs, a small table and a signature.
Page sparseText(int dotsPerInch) {
    const Scale px{dotsPerInch};
    Canvas canvas = paper(px);
    Typeface head(20, dotsPerInch);
    Typeface body(11, dotsPerInch);
    Prose prose(3);
    head.draw(canvas, px(110), px(28), "Morland and Sons");
    canvas.fill(static_cast<int>(px(25)), static_cast<int>(px(33)), static_cast<int>(px(190)),
                static_cast<int>(px(33.6)));
    for (int line = 0; line < 4; ++line) {
        body.draw(canvas, px(25), px(55 + 5.5 * line), prose.word() + " " + prose.word());
    }
    double y = paragraph(canvas, body, prose, {px(25), px(105)}, px(160), 5);
    y = paragraph(canvas, body, prose, {px(25), y + px(5)}, px(160), 4);
    for (int line = 0; line < 5; ++line) {
        const double baseline = y + px(8 + 7 * line);
        body.draw(canvas, px(35), baseline, prose.word() + " " + prose.word());
        const std::string amount = prose.number();
        body.draw(canvas, px(160) - body.widthOf(amount), baseline, amount);
        canvas.line({px(33), baseline + px(2)}, {px(162), baseline + px(2)}, px(0.2));
    }
    std::vector<Point> signature{{px(28), px(240)}};
    for (int i = 0; i < 7; ++i) {
        const Point from = signature.back();
        appendCurve(signature, from, {from.x + px(2 + i), from.y - px(i % 2 == 0 ? 22 : -12)},
                    {from.x + px(6), px(240 + i % 3)}, 16);
    }
    for (std::size_t i = 1; i < signature.size(); ++i) {
        canvas.line(signature[i - 1], signature[i], px(0.5));
    }
    return pageOf(canvas);
}

// A workshop drawing: a frame, a flange in two views, hatching, measures and a title block.
Page lineDrawing(int dotsPerInch) {
    const Scale px{dotsPerInch};
    Canvas canvas = paper(px);
    Typeface small(8, dotsPerInch);
    Typeface title(14, dotsPerInch);
    Prose prose(5);
    rectangle(canvas, {px(10), px(10)}, {px(200), px(287)}, px(0.7));

    const Point centre{px(75), px(85)};
    for (const double radius : {12.0, 20.0, 22.0, 48.0}) {
        canvas.ellipse(centre, px(radius), px(radius), px(0.5));
    }
    for (const Point &hole : ellipsePoints(centre, px(35), px(35), 1)) {
        canvas.ellipse(hole, px(5), px(5), px(0.5));
        canvas.line({hole.x - px(7), hole.y}, {hole.x + px(7), hole.y}, px(0.18));
        canvas.line({hole.x, hole.y - px(7)}, {hole.x, hole.y + px(7)}, px(0.18));
        canvas.line(centre, hole, px(0.18));
    }
    rectangle(canvas, {px(145), px(37)}, {px(163), px(133)}, px(0.5));
    rectangle(canvas, {px(163), px(63)}, {px(188), px(107)}, px(0.5));
    hatch(canvas, {px(145), px(37)}, {px(163), px(65)}, px(2.2), px(0.2));
    hatch(canvas, {px(145), px(105)}, {px(163), px(133)}, px(2.2), px(0.2));
    for (const double y : {37.0, 63.0, 85.0, 107.0, 133.0}) {
        canvas.line({px(30), px(y)}, {px(192), px(y)}, px(0.13));
    }
    dimension(canvas, small, px, {px(27), px(146)}, px(96), "96.0");
    dimension(canvas, small, px, {px(145), px(146)}, px(43), "43.0");

    // A link seen from the side: long slanting lines and curves.
    canvas.line({px(22), px(225)}, {px(150), px(176)}, px(0.5));
    canvas.line({px(26), px(236)}, {px(156), px(188)}, px(0.5));
    canvas.ellipse({px(27), px(230)}, px(6), px(6), px(0.5));
    canvas.ellipse({px(153), px(182)}, px(6.4), px(6.4), px(0.5));
    canvas.ellipse({px(90), px(206)}, px(60), px(20), px(0.18));
    hatch(canvas, {px(150), px(195)}, {px(190), px(225)}, px(1.4), px(0.2));

    for (int row = 0; row <= 5; ++row) {
        canvas.line({px(100), px(247 + 8 * row)}, {px(200), px(247 + 8 * row)}, px(0.35));
        if (row < 5) {
            small.draw(canvas, px(103), px(253 + 8 * row), prose.word());
            small.draw(canvas, px(128), px(253 + 8 * row), prose.word() + " " + prose.word());
        }
    }
    canvas.line({px(125), px(247)}, {px(125), px(287)}, px(0.35));
    title.draw(canvas, px(14), px(282), "Flange 4-17 / B");
    return pageOf(canvas);
}

// A page filled by a picture in a screen of dots at 45 degrees, of about 50 (200 dpi) or 85 (600 dpi) lines to the
// inch.
Page halftone(int dotsPerInch) {
    const Scale px{dotsPerInch};
    Canvas canvas = paper(px);
    const double cell = dotsPerInch >= 400 ? 7.0 : 4.0; // pixels from dot to dot
    const double turned = 0.70710678118654752 / cell;
    // 0 at a dot's centre, 1 between the dots.
    const auto wave = [](double t) { // t >= 0
        const double part = t - static_cast<int>(t);
        return part < 0.5 ? 2 * part : 2 - 2 * part;
    };
    const int margin = static_cast<int>(px(12));
    for (int y = margin; y < canvas.height() - margin; ++y) {
        for (int x = margin; x < canvas.width() - margin; ++x) {
            const double ink =
                0.45 + 0.4 * surface(x / px(45), y / px(45), 7) + 0.12 * surface(x / px(6), y / px(6), 8);
            const double threshold = (wave((x + y) * turned) + wave((x - y + canvas.height()) * turned)) / 2;
            if (threshold < ink) {
                canvas.set(x, y);
            }
        }
    }
    return pageOf(canvas);
}

Page blank(int dotsPerInch) {
    return pageOf(paper(Scale{dotsPerInch}));
}

namespace {

struct Maker {
    const char *name;
    bool bilevel;
    std::function<Page()> make;
};

const std::vector<Maker> &makers() {
    static const std::vector<Maker> list = {
        {"text-dense-200", true, [] { return denseText(200); }},
        {"text-sparse-200", true, [] { return sparseText(200); }},
        {"drawing-200", true, [] { return lineDrawing(200); }},
        {"halftone-200", true, [] { return halftone(200); }},
        {"blank-200", true, [] { return blank(200); }},
        {"text-dense-600", true, [] { return denseText(600); }},
        {"text-sparse-600", true, [] { return sparseText(600); }},
        {"drawing-600", true, [] { return lineDrawing(600); }},
        {"halftone-600", true, [] { return halftone(600); }},
        {"blank-600", true, [] { return blank(600); }},
        {"grey-8", false, [] { return greyScan(); }},
        {"photo-24", false, [] { return photo(); }},
        {"palette-8", false, [] { return paletteGraphic(); }},
    };
    return list;
}

const Maker &makerOf(const std::string &name) {
    const auto &list = makers();
    const auto found = std::find_if(list.begin(), list.end(), [&](const Maker &maker) { return maker.name == name; });
    if (found == list.end()) {
        throw std::invalid_argument("no page is called " + name);
    }
    return *found;
}

} // namespace

std::vector<std::string> pageNames() {
    std::vector<std::string> names;
    for (const Maker &maker : makers()) {
        names.emplace_back(maker.name);
    }
    return names;
}

bool isBilevel(const std::string &pageName) {
    return makerOf(pageName).bilevel;
}

const Page &pageNamed(const std::string &name) {
    static std::map<std::string, Page> made;
    const auto found = made.find(name);
    if (found != made.end()) {
        return found->second;
    }
    Page page = makerOf(name).make();
    page.name = name;
    return made.emplace(name, std::move(page)).first->second;
}

} // namespace bench
