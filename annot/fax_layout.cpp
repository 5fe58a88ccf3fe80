// The walk through a text, byte by byte, with the line that waits to be drawn.
#include "annot/fax_layout.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

namespace vellum {
namespace {

constexpr BYTE kTab = 9;
constexpr BYTE kCarriageReturn = 13;
constexpr BYTE kFirstPrinted = 32;
constexpr std::string_view kBreakCharacters = " !,-.:;?";

constexpr DWORD kFirstLineBytes = 512;
constexpr std::size_t kReadAtOnce = 4096;

constexpr std::uint64_t kLongest = std::numeric_limits<DWORD>::max();
constexpr std::uint64_t kHundredthsPerInch = 100;

constexpr std::uint64_t inHundredths(const FaxPageParams &params, DWORD length) {
    constexpr std::uint64_t kTenthsOfMillimetrePerInch = 254;
    constexpr std::uint64_t kTenthsOfMillimetreInHundredths = 1000;
    return (params.flags & VELLUM_FAX_HUNDREDTHS) != 0
               ? length
               : length * kTenthsOfMillimetreInHundredths / kTenthsOfMillimetrePerInch;
}

// Either factor may have 34 bits.
constexpr Pixels inPixels(std::uint64_t hundredths, std::uint64_t resolution) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    if (resolution != 0 && hundredths > kMost / resolution) {
        return static_cast<Pixels>(kLongest);
    }
    return static_cast<Pixels>(std::min(hundredths * resolution / kHundredthsPerInch, kLongest));
}

// The text's bytes, one by one. A read error counts as the end.
class TextBytes {
public:
    explicit TextBytes(StreamHandle stream) : stream_(stream) {}

    std::optional<BYTE> next() {
        if (at_ == end_) {
            const LONG read = readStream(stream_, bytes_.data(), static_cast<LONG>(bytes_.size()));
            at_ = 0;
            end_ = read > 0 ? static_cast<std::size_t>(read) : 0;
        }
        return at_ == end_ ? std::nullopt : std::optional<BYTE>(bytes_[at_++]);
    }

private:
    StreamHandle stream_;
    std::array<BYTE, kReadAtOnce> bytes_;
    std::size_t at_ = 0;
    std::size_t end_ = 0;
};

// The characters since the last line end or tab. It knows its width and its last break character, so that neither needs
// a second look at the characters.
class WaitingLine {
public:
    explicit WaitingLine(const FontMeasures &font) : font_(font) {}
    WaitingLine(const WaitingLine &) = delete;
    WaitingLine &operator=(const WaitingLine &) = delete;
    ~WaitingLine() { freeLockedBlock(block_); }

    // False when there is no memory for it.
    bool append(BYTE character) {
        if (size_ == capacity_ && !grow()) {
            return false;
        }
        characters_[size_++] = character;
        advance_ += font_.advances[character];
        if (kBreakCharacters.find(static_cast<char>(character)) != std::string_view::npos) {
            breakEnd_ = size_;
            advanceToBreak_ = advance_;
        }
        return true;
    }

    [[nodiscard]] Pixels width() const { return size_ == 0 ? 0 : advance_ + font_.overhang; }
    [[nodiscard]] std::string_view text() const { return textOf(size_); }
    // What stays on the line when it is wrapped: everything up to the last break character, or everything.
    [[nodiscard]] std::string_view kept() const { return textOf(keptBytes()); }

    void clear() {
        size_ = 0;
        advance_ = 0;
        breakEnd_ = 0;
        advanceToBreak_ = 0;
    }

    // Leaves what does not stay on the line. There is no break character in it.
    void removeKept() {
        const DWORD kept = keptBytes();
        const DWORD rest = size_ - kept;
        const Pixels restAdvance = rest == 0 ? 0 : advance_ - advanceToBreak_;
        if (rest != 0) {
            std::memmove(characters_, characters_ + kept, rest);
        }
        clear();
        size_ = rest;
        advance_ = restAdvance;
    }

private:
    [[nodiscard]] DWORD keptBytes() const { return breakEnd_ == 0 ? size_ : breakEnd_; }
    [[nodiscard]] std::string_view textOf(DWORD bytes) const {
        return bytes == 0 ? std::string_view() : std::string_view(reinterpret_cast<const char *>(characters_), bytes);
    }

    // The new block is filled before the old one goes.
    bool grow() {
        const Size bytes = capacity_ == 0 ? Size(kFirstLineBytes) : Size(capacity_) * Size(2);
        HGLOBAL larger = GlobalBlock::allocate(bytes).release();
        BYTE *const characters = larger == nullptr ? nullptr : static_cast<BYTE *>(lockBlock(larger));
        if (characters == nullptr) {
            freeBlock(larger);
            return false;
        }
        if (size_ != 0) {
            std::memcpy(characters, characters_, size_);
        }
        freeLockedBlock(block_);
        block_ = larger;
        characters_ = characters;
        capacity_ = bytes.fit().value_or(0);
        return true;
    }

    const FontMeasures &font_;
    HGLOBAL block_ = nullptr; // locked
    BYTE *characters_ = nullptr;
    DWORD capacity_ = 0;
    DWORD size_ = 0;
    DWORD breakEnd_ = 0; // bytes up to the last break character, with it; 0 without one
    Pixels advance_ = 0;
    Pixels advanceToBreak_ = 0;
};

class TextWalk {
public:
    TextWalk(StreamHandle text, const FaxFrame &frame, const FontMeasures &font, FaxCanvas &canvas)
        : bytes_(text), frame_(frame), lineAdvance_(font.lineHeight + frame.lineSpacing), canvas_(canvas), line_(font) {
        beginPage();
    }

    FaxTextEnd run() {
        while (const auto byte = bytes_.next()) {
            if (!take(*byte)) {
                return FaxTextEnd::NoMemory;
            }
            if (x_ + line_.width() >= frame_.right) {
                wrap();
            }
            if (y_ >= frame_.bottom && !turnPage()) {
                return FaxTextEnd::CanvasIsFull;
            }
        }
        canvas_.draw(x_, y_, line_.text());
        return FaxTextEnd::Reached;
    }

private:
    // False when there is no memory for the line.
    bool take(BYTE byte) {
        if (byte == kTab) {
            tabulate();
        } else if (byte == kCarriageReturn) {
            // By design: the byte behind a carriage return goes with it, whatever it is. Texts have a line feed there.
            (void)bytes_.next();
            canvas_.draw(x_, y_, line_.text());
            line_.clear();
            beginLine();
        } else if (byte >= kFirstPrinted) {
            return line_.append(byte);
        }
        // By design: all other control bytes are as good as not there. A form feed does not begin a page, and a line
        // feed alone no line.
        return true;
    }

    // By design: a tab stop that has been passed by is used up all the same. Behind the last one a tab leads nowhere.
    void tabulate() {
        canvas_.draw(x_, y_, line_.text());
        x_ += line_.width();
        line_.clear();
        if (tab_ < kTabStops) {
            x_ = std::max(x_, frame_.tabStops[tab_++]);
        }
    }

    // By design: the character that reaches the limit has been taken already. A line without a break character is drawn
    // as it is, so its last character stands in the margin, and the text goes on behind it on the next line.
    void wrap() {
        canvas_.draw(x_, y_, line_.kept());
        line_.removeKept();
        beginLine();
    }

    // By design: what a wrap has moved down does not come along to the next page.
    bool turnPage() {
        line_.clear();
        beginPage();
        return canvas_.turnPage();
    }

    void beginLine() {
        x_ = frame_.left;
        y_ += lineAdvance_;
        tab_ = 0;
    }

    void beginPage() {
        x_ = frame_.left;
        y_ = frame_.top;
        tab_ = 0;
    }

    TextBytes bytes_;
    const FaxFrame &frame_;
    Pixels lineAdvance_;
    FaxCanvas &canvas_;
    WaitingLine line_;
    Pixels x_ = 0;
    Pixels y_ = 0;
    std::size_t tab_ = 0;
};

} // namespace

Pixels faxColumns(const FaxPageParams &params, DWORD length) {
    return inPixels(inHundredths(params, length), params.horizontalResolution);
}

Pixels faxRows(const FaxPageParams &params, DWORD length) {
    return inPixels(inHundredths(params, length), params.verticalResolution);
}

FaxFrame faxFrame(const FaxPageParams &params) {
    FaxFrame frame;
    frame.left = faxColumns(params, params.leftMargin);
    frame.top = faxRows(params, params.topMargin);
    frame.right = faxColumns(params, params.pageWidth) - frame.left;
    frame.bottom = faxRows(params, params.pageHeight) - frame.top;
    frame.lineSpacing = faxRows(params, params.lineSpacing);
    for (std::size_t i = 0; i < kTabStops; ++i) {
        frame.tabStops[i] = frame.left + faxColumns(params, params.tabStops[i]);
    }
    return frame;
}

FaxTextEnd layOutFaxText(StreamHandle text, const FaxFrame &frame, const FontMeasures &font, FaxCanvas &canvas) {
    return TextWalk(text, frame, font, canvas).run();
}

} // namespace vellum
