// Lines measured as the library measures them: byte by byte, in the record's font.
#include "tools/fax_lines.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace tool {

namespace {

constexpr std::string_view kBreakCharacters = " !,-.:;?";
constexpr char kFirstPrinted = ' ';

class LineFont {
public:
    explicit LineFont(const FaxPageParams &page) : dc_(CreateCompatibleDC(nullptr)), font_(create(page)) {
        const HGDIOBJ before = SelectObject(dc_, font_);
        TEXTMETRICA metrics{};
        GetTextMetricsA(dc_, &metrics);
        overhang_ = metrics.tmOverhang;
        for (std::size_t i = 0; i < advances_.size(); ++i) {
            const char character = static_cast<char>(i);
            SIZE size{};
            GetTextExtentPoint32A(dc_, &character, 1, &size);
            advances_[i] = size.cx - overhang_;
        }
        SelectObject(dc_, before);
    }
    LineFont(const LineFont &) = delete;
    LineFont &operator=(const LineFont &) = delete;
    ~LineFont() {
        DeleteObject(font_);
        DeleteDC(dc_);
    }

    [[nodiscard]] LONG advance(char character) const { return advances_[static_cast<unsigned char>(character)]; }
    // What a text is wider than its characters' advances together.
    [[nodiscard]] LONG overhang() const { return overhang_; }

private:
    static HFONT create(const FaxPageParams &page) {
        LOGFONTA font{};
        font.lfHeight = -MulDiv(static_cast<int>(page.fontSize), static_cast<int>(page.verticalResolution), 72);
        font.lfCharSet = DEFAULT_CHARSET;
        font.lfItalic = (page.flags & VELLUM_FAX_ITALIC) != 0;
        font.lfWeight = (page.flags & VELLUM_FAX_BOLD) != 0 ? FW_BOLD : FW_NORMAL;
        lstrcpynA(font.lfFaceName, page.fontFace, LF_FACESIZE);
        return CreateFontIndirectA(&font);
    }

    HDC dc_;
    HFONT font_;
    LONG overhang_ = 0;
    std::array<LONG, 256> advances_{};
};

class LineBreaker {
public:
    LineBreaker(const std::string &text, const FaxPageParams &page) : text_(text), page_(page), font_(page) {
        beginLine();
    }

    std::string run() {
        for (std::size_t i = 0; i < text_.size(); ++i) {
            broken_ += text_[i];
            if (text_[i] == '\n') {
                beginLine();
            } else if (text_[i] == '\t') {
                tabulate();
            } else if (static_cast<unsigned char>(text_[i]) >= kFirstPrinted) {
                i -= take(text_[i]);
            }
        }
        return std::move(broken_);
    }

private:
    [[nodiscard]] LONG columns(DWORD hundredths) const {
        return static_cast<LONG>(ULONGLONG{hundredths} * page_.horizontalResolution / 100);
    }
    [[nodiscard]] bool isFull() const {
        const LONG width = advance_ == 0 ? 0 : advance_ + font_.overhang();
        return x_ + width >= columns(page_.pageWidth) - columns(page_.leftMargin);
    }

    void beginLine() {
        x_ = columns(page_.leftMargin);
        tab_ = 0;
        beginPart();
    }
    void beginPart() {
        advance_ = 0;
        breakEnd_.reset();
    }

    void tabulate() {
        x_ += advance_;
        beginPart();
        if (tab_ < std::size(page_.tabStops)) {
            x_ = std::max(x_, columns(page_.leftMargin) + columns(page_.tabStops[tab_++]));
        }
        if (isFull()) {
            beginLine();
        }
    }

    // Result: how many characters come once more, on the next line.
    std::size_t take(char character) {
        advance_ += font_.advance(character);
        if (kBreakCharacters.find(character) != std::string_view::npos) {
            breakEnd_ = broken_.size();
        }
        if (!isFull()) {
            return 0;
        }
        const std::size_t moved = breakEnd_ ? broken_.size() - *breakEnd_ : 0;
        if (moved != 0) {
            broken_.resize(*breakEnd_);
            broken_ += "\r\n";
        }
        beginLine(); // where nothing moves, the library begins it by itself
        return moved;
    }

    const std::string &text_;
    const FaxPageParams &page_;
    LineFont font_;
    std::string broken_;
    LONG x_ = 0;
    LONG advance_ = 0;                    // since the line's begin or the last tab
    std::optional<std::size_t> breakEnd_; // behind the last break character since then
    std::size_t tab_ = 0;
};

} // namespace

std::string breakLines(const std::string &text, const FaxPageParams &page) {
    return LineBreaker(text, page).run();
}

} // namespace tool
