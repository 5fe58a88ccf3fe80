// Windows: which pixel of a picture, or which background, every pixel of a client area must show after the painting.
// The model looks from the screen to the picture, one pixel at a time; the painter goes the other way.
#pragma once

#include "support/screen_host.h"
#include "support/screen_picture.h"

#include <gtest/gtest.h>

namespace vellum::test {

using Ratios = std::vector<DWORD>; // four numbers, or none

// How a picture is asked for.
struct Look {
    DWORD flags = 0;
    Ratios ratios = {};

    [[nodiscard]] DWORD rotation() const { return flags & 3; }
    [[nodiscard]] bool turned() const { return (flags & 1) != 0; }
    [[nodiscard]] const DWORD *ratiosOrNull() const { return ratios.empty() ? nullptr : ratios.data(); }
};

// One direction of the screen.
struct Axis {
    int canvas = 0; // pixels of the (turned) picture
    int target = 0; // screen pixels that all of it covers
    int client = 0; // the room for it
    bool bar = false;
    int position = 0;                    // of the bar, afterwards
    int start = 0;                       // the first canvas pixel that is shown
    std::vector<int> edges;              // device positions of the canvas pixels' borders, from start on
    std::vector<std::pair<int, int>> at; // for every device pixel, the first and the last canvas pixel it may show
};

// The window before the painting.
struct Room {
    SIZE window; // without scroll bars
    ScrollState horizontal = {};
    ScrollState vertical = {};
    bool fixed = false; // no window: nothing to scroll by, and no bars
};

class ScreenModel {
public:
    ScreenModel(const ScreenPicture &picture, const Look &look, const Room &room);

    [[nodiscard]] const Axis &x() const { return x_; }
    [[nodiscard]] const Axis &y() const { return y_; }
    // The colour of a pixel of the client area; nothing where it is left to GDI's stretching.
    [[nodiscard]] std::optional<DWORD> at(int deviceX, int deviceY, DWORD background) const;
    // What a pixel of the client area shows, for a person.
    [[nodiscard]] std::string source(int deviceX, int deviceY) const;

private:
    [[nodiscard]] DWORD canvasColor(int canvasX, int canvasY) const;
    [[nodiscard]] POINT pictureOf(int canvasX, int canvasY) const;
    void scale();
    void fit();
    void showBars(const Room &room);
    static void scrollTo(Axis &axis, const ScrollState &state);
    void findSources();
    static void spread(Axis &axis, bool alongLines);

    const ScreenPicture &picture_;
    Look look_;
    Axis x_;
    Axis y_;
    double xScale_ = 1;
    double yScale_ = 1;
};

// All pixels of a client area, or of a bitmap that stands for one.
testing::AssertionResult shows(const Pixels &pixels, const ScreenModel &model, DWORD background = kBackground);

// The mapping that a device context keeps after the painting.
testing::AssertionResult keepsMapping(HDC dc, const ScreenModel &model);

// The scroll bars of a window after the painting, and its client area.
testing::AssertionResult hasBars(const Host &host, const ScreenModel &model);

} // namespace vellum::test
