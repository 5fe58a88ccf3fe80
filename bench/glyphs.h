// A typeface for the pages: letters and digits as strokes of a broad pen, with serifs, drawn at the page's own
// resolution and with slightly rough edges as a scanner sees them. Runs and shifts from line to line are then those of
// real text, which they would not be with an enlarged dot font.
#pragma once

#include "bench/canvas.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bench {

class Typeface {
public:
    // Size in points (1/72 inch).
    Typeface(double points, int dotsPerInch);

    // Letters, digits and . , - ( ) / : ; anything else is a space. The baseline is at `y`. Gives the x behind the
    // text.
    double draw(Canvas &canvas, double x, double y, std::string_view text);
    [[nodiscard]] double widthOf(std::string_view text) const;
    [[nodiscard]] double lineHeight() const { return 17.0 * unit_; }

private:
    // No two prints of a letter are alike: they take turns.
    static constexpr int kVariants = 4;
    struct Print {
        std::vector<std::pair<int, int>> black; // pixels, from the letter's origin on the baseline
    };

    const Print &print(char letter, int variant);

    double unit_; // pixels of one step of the grid that the letters are drawn on
    int turn_ = 0;
    std::map<std::pair<char, int>, Print> prints_;
};

// Words of random letters in the proportions of English text.
class Prose {
public:
    explicit Prose(std::uint32_t seed) : random_(seed) {}
    // The next word, with its punctuation.
    std::string word();
    // A number or an amount, as in a table.
    std::string number();

private:
    Random random_;
    bool sentenceStarts_ = true;
};

} // namespace bench
