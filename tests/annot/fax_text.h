// Texts laid out on pages that only note what they are given.
#pragma once

#include "annot/fax_layout.h"
#include "support/paths.h"

#include <ostream>
#include <string>
#include <vector>

namespace vellum::test {

inline Bytes bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

struct DrawnText {
    std::size_t page; // from 0
    Pixels x;
    Pixels y;
    std::string text;
    bool operator==(const DrawnText &) const = default;
};
using DrawnTexts = std::vector<DrawnText>;

inline std::ostream &operator<<(std::ostream &out, const DrawnText &drawn) {
    return out << "page " << drawn.page << " (" << drawn.x << ", " << drawn.y << ") \"" << drawn.text << '"';
}

// Notes all but empty texts.
class NotedPages final : public FaxCanvas {
public:
    explicit NotedPages(std::size_t most = 1000) : most_(most) {}

    void draw(Pixels x, Pixels y, std::string_view text) override {
        if (!text.empty()) {
            drawing.push_back({page, x, y, std::string(text)});
        }
    }
    bool turnPage() override { return ++page < most_; }

    DrawnTexts drawing;
    std::size_t page = 0; // the page being drawn on

private:
    std::size_t most_;
};

// Every character has 10 pixels, but "i" has 4 and "|" none; a line has 20.
inline FontMeasures plainFont() {
    FontMeasures font;
    font.lineHeight = 20;
    font.advances.fill(10);
    font.advances['i'] = 4;
    font.advances['|'] = 0;
    return font;
}

// Lines between 5 and 105, three of them on a page, and tab stops at every 30 pixels.
inline FaxFrame smallFrame() {
    FaxFrame frame;
    frame.left = 5;
    frame.top = 7;
    frame.right = 105;
    frame.bottom = 67;
    for (std::size_t i = 0; i < kTabStops; ++i) {
        frame.tabStops[i] = frame.left + static_cast<Pixels>(30 * (i + 1));
    }
    return frame;
}

inline FaxTextEnd layOut(std::string_view text, FaxCanvas &pages, const FaxFrame &frame = smallFrame(),
                         const FontMeasures &font = plainFont()) {
    const TempFile file(bytesOf(text));
    const Stream stream(openFileStream(file.path(), kOpenRead));
    return layOutFaxText(stream.get(), frame, font, pages);
}

inline DrawnTexts laidOut(std::string_view text, const FaxFrame &frame = smallFrame(),
                          const FontMeasures &font = plainFont()) {
    NotedPages pages;
    layOut(text, pages, frame, font);
    return pages.drawing;
}

} // namespace vellum::test
