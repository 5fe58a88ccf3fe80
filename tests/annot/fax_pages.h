// Windows: fax pages from the library, and the pages that a plain walk over the same text makes: it measures the whole
// line again at every character and draws every line in one piece.
#pragma once

#include "support/bitmap_pixels.h"
#include "support/paths.h"
#include "vellum32.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace vellum::test {

// A page of 400 x 300 pixels with margins of 20, at 100 dots per inch; lengths are pixels.
inline FaxPageParams smallPage(const char *textFile) {
    FaxPageParams page{};
    lstrcpynA(page.textFile, textFile, sizeof page.textFile);
    page.pageWidth = 400;
    page.pageHeight = 300;
    page.leftMargin = 20;
    page.topMargin = 20;
    lstrcpynA(page.fontFace, "Arial", sizeof page.fontFace);
    page.fontSize = 12;
    page.horizontalResolution = 100;
    page.verticalResolution = 100;
    for (DWORD i = 0; i < 16; ++i) {
        page.tabStops[i] = 40 * (i + 1);
    }
    page.flags = VELLUM_FAX_HUNDREDTHS;
    return page;
}

// The pages of a call; freed with the object.
class FaxResult {
public:
    FaxResult(const FaxPageParams &params, DWORD kind, DWORD maxPages = 50, HBITMAP bitmap = nullptr)
        : kind_(kind), callers_(bitmap), handles_(maxPages, kUntouched) {
        count_ = CreateFaxPageFromASCII(&params, maxPages, handles_.data(), kind, bitmap, &status_);
    }
    FaxResult(const FaxResult &) = delete;
    FaxResult &operator=(const FaxResult &) = delete;
    ~FaxResult() {
        for (DWORD i = 0; i < count_; ++i) {
            if (kind_ == VELLUM_FAX_DIBS) {
                GlobalFree(handles_[i]);
            } else if (handles_[i] != callers_) {
                DeleteObject(handles_[i]);
            }
        }
    }

    [[nodiscard]] DWORD count() const { return count_; }
    [[nodiscard]] DWORD status() const { return status_; }
    [[nodiscard]] HANDLE handle(DWORD page) const { return handles_.at(page); }
    [[nodiscard]] HBITMAP bitmap(DWORD page) const { return static_cast<HBITMAP>(handle(page)); }
    // Whether the entries from that one on are as they were before the call.
    [[nodiscard]] bool untouchedFrom(DWORD page) const {
        return std::all_of(handles_.begin() + static_cast<std::ptrdiff_t>(page), handles_.end(),
                           [](HANDLE handle) { return handle == kUntouched; });
    }
    // Of bitmaps, page by page.
    [[nodiscard]] std::vector<Pixels> pixels() const {
        std::vector<Pixels> pages;
        for (DWORD i = 0; i < count_; ++i) {
            pages.push_back(pixelsOf(bitmap(i)));
        }
        return pages;
    }

private:
    static inline const HANDLE kUntouched = reinterpret_cast<HANDLE>(0x7E57);

    DWORD kind_;
    HBITMAP callers_;
    std::vector<HANDLE> handles_;
    DWORD count_ = 0;
    DWORD status_ = 0xBAD;
};

// A bitmap in a memory context with a font, to draw what is expected.
class ExpectedPage {
public:
    // The bitmap's pixels are kept; without one, a white page.
    ExpectedPage(int width, int height, const std::optional<LOGFONTA> &font, HBITMAP onto = nullptr)
        : dc_(CreateCompatibleDC(nullptr)),
          bitmap_(onto != nullptr ? onto : CreateBitmap(width, height, 1, 1, nullptr)), callers_(onto != nullptr),
          font_(font ? CreateFontIndirectA(&*font) : nullptr), oldBitmap_(SelectObject(dc_, bitmap_)),
          oldFont_(font_ == nullptr ? nullptr : SelectObject(dc_, font_)) {
        if (onto == nullptr) {
            PatBlt(dc_, 0, 0, width, height, WHITENESS);
        }
    }
    ExpectedPage(const ExpectedPage &) = delete;
    ExpectedPage &operator=(const ExpectedPage &) = delete;
    ~ExpectedPage() {
        SelectObject(dc_, oldBitmap_);
        if (font_ != nullptr) {
            SelectObject(dc_, oldFont_);
            DeleteObject(font_);
        }
        DeleteDC(dc_);
        if (!callers_) {
            DeleteObject(bitmap_);
        }
    }

    [[nodiscard]] HDC dc() const { return dc_; }
    [[nodiscard]] SIZE extent(const std::string &text) const {
        SIZE size{};
        GetTextExtentPoint32A(dc_, text.c_str(), static_cast<int>(text.size()), &size);
        return size;
    }
    void draw(int x, int y, const std::string &text) const {
        TextOutA(dc_, x, y, text.c_str(), static_cast<int>(text.size()));
    }
    [[nodiscard]] Pixels pixels() const {
        SelectObject(dc_, oldBitmap_);
        Pixels pixels = pixelsOf(bitmap_);
        SelectObject(dc_, bitmap_);
        return pixels;
    }

private:
    HDC dc_;
    HBITMAP bitmap_;
    bool callers_;
    HFONT font_;
    HGDIOBJ oldBitmap_;
    HGDIOBJ oldFont_;
};

inline LOGFONTA expectedFont(const FaxPageParams &params) {
    LOGFONTA font{};
    font.lfHeight = -MulDiv(static_cast<int>(params.fontSize), static_cast<int>(params.verticalResolution), 72);
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfItalic = (params.flags & VELLUM_FAX_ITALIC) != 0;
    font.lfWeight = (params.flags & VELLUM_FAX_BOLD) != 0 ? 700 : 400;
    lstrcpynA(font.lfFaceName, params.fontFace, LF_FACESIZE);
    return font;
}

// The plain walk, for records in hundredths of an inch at 100 dots per inch.
class PlainFax {
public:
    PlainFax(const FaxPageParams &params, std::string text, const std::optional<LOGFONTA> &font)
        : params_(params), text_(std::move(text)), font_(font) {
        newPage();
        walk();
    }
    [[nodiscard]] const std::vector<Pixels> &pages() const { return pages_; }

private:
    void newPage() {
        page_.emplace(static_cast<int>(params_.pageWidth), static_cast<int>(params_.pageHeight), font_);
        x_ = left();
        y_ = static_cast<int>(params_.topMargin);
        tab_ = 0;
    }
    [[nodiscard]] int left() const { return static_cast<int>(params_.leftMargin); }
    void lineEnd() {
        x_ = left();
        y_ += page_->extent("M").cy + static_cast<int>(params_.lineSpacing);
        tab_ = 0;
    }
    void character(char byte, std::size_t &at) {
        if (byte == '\t') {
            page_->draw(x_, y_, line_);
            x_ += page_->extent(line_).cx;
            line_.clear();
            if (tab_ < 16) {
                x_ = std::max(x_, left() + static_cast<int>(params_.tabStops[tab_++]));
            }
        } else if (byte == '\r') {
            ++at;
            page_->draw(x_, y_, line_);
            line_.clear();
            lineEnd();
        } else if (static_cast<BYTE>(byte) >= 32) {
            line_ += byte;
        }
    }
    void wrap() {
        const std::size_t last = line_.find_last_of(" !,-.:;?");
        const std::string rest = last == std::string::npos ? "" : line_.substr(last + 1);
        page_->draw(x_, y_, line_.substr(0, line_.size() - rest.size()));
        line_ = rest;
        lineEnd();
    }
    void walk() {
        for (std::size_t at = 0; at < text_.size(); ++at) {
            character(text_[at], at);
            if (x_ + page_->extent(line_).cx >= static_cast<int>(params_.pageWidth) - left()) {
                wrap();
            }
            if (y_ >= static_cast<int>(params_.pageHeight - params_.topMargin)) {
                line_.clear();
                pages_.push_back(page_->pixels());
                newPage();
            }
        }
        page_->draw(x_, y_, line_);
        pages_.push_back(page_->pixels());
    }

    FaxPageParams params_;
    std::string text_;
    std::optional<LOGFONTA> font_;
    std::optional<ExpectedPage> page_;
    std::string line_;
    int x_ = 0;
    int y_ = 0;
    int tab_ = 0;
    std::vector<Pixels> pages_;
};

inline bool hasInk(const Pixels &pixels) {
    return std::any_of(pixels.begin(), pixels.end(), [](DWORD pixel) { return pixel == 0; });
}

// A text file of the test's.
class TextFile {
public:
    explicit TextFile(const std::string &text) : file_(Bytes(text.begin(), text.end())) {}
    [[nodiscard]] const char *path() const { return file_.path(); }

private:
    TempFile file_;
};

// The picture with lines of text on it, as the fax must have them.
inline Pixels withText(HBITMAP picture, const FaxPageParams &params, const std::vector<std::string> &lines) {
    const ExpectedPage page(0, 0, expectedFont(params), picture);
    SetBkMode(page.dc(), TRANSPARENT);
    int y = 20;
    for (const std::string &line : lines) {
        page.draw(20, y, line);
        y += page.extent("M").cy;
    }
    return page.pixels();
}

} // namespace vellum::test
