// Pages as bitmaps: the device context that they are drawn in, their font, and how they are handed over.
#include "annot/fax_page.h"

#include "annot/fax_layout.h"
#include "annot/text_drawing.h"
#include "display/dib_bitmap.h"

#include <cstring>
#include <optional>

namespace vellum {
namespace {

constexpr LONG kNormalWeight = 400;
constexpr LONG kBoldWeight = 700;

// A text of a record: it ends at a zero or with its field.
template <std::size_t size>
std::string_view fieldText(const char (&field)[size]) {
    const std::string_view all(field, size);
    return all.substr(0, all.find('\0'));
}

// A path of a record, with a terminator in any case.
class FieldPath {
public:
    template <std::size_t size>
    explicit FieldPath(const char (&field)[size]) {
        static_assert(size < sizeof path_);
        std::memcpy(path_, field, size);
    }
    [[nodiscard]] const char *get() const { return path_; }

private:
    char path_[sizeof(FaxPageParams::textFile) + 1] = "";
};

LOGFONTA fontOf(const FaxPageParams &params, const BITMAP &page) {
    LOGFONTA font{};
    if (params.fontDescription != nullptr) {
        font = *params.fontDescription;
        setFace(font, fieldText(font.lfFaceName));
    } else {
        font.lfCharSet = DEFAULT_CHARSET;
        font.lfItalic = (params.flags & VELLUM_FAX_ITALIC) != 0;
        font.lfWeight = (params.flags & VELLUM_FAX_BOLD) != 0 ? kBoldWeight : kNormalWeight;
        setFace(font, fieldText(params.fontFace));
    }
    setHeight(font, params.fontSize, params.verticalResolution, page);
    return font;
}

// By design: without a face the device context's own font serves, and a description is not looked at.
OwnedFont createFont(const FaxPageParams &params, const BITMAP &page) {
    if (params.fontFace[0] == '\0') {
        return OwnedFont();
    }
    const LOGFONTA font = fontOf(params, page);
    return OwnedFont(CreateFontIndirectA(&font));
}

// What a text's width is beyond its characters' advances is in the width of every single one of them, too.
FontMeasures measureFont(HDC dc) {
    TEXTMETRICA metrics{};
    GetTextMetricsA(dc, &metrics);
    SIZE size{};
    GetTextExtentPoint32A(dc, "M", 1, &size);
    FontMeasures font;
    font.lineHeight = size.cy;
    font.overhang = metrics.tmOverhang;
    for (std::size_t i = 0; i < font.advances.size(); ++i) {
        const char character = static_cast<char>(i);
        size = {};
        GetTextExtentPoint32A(dc, &character, 1, &size);
        font.advances[i] = size.cx - font.overhang;
    }
    return font;
}

// A page of the record's size, black and white. Empty when it has none, or there is no memory for it.
OwnedBitmap createPage(const FaxPageParams &params) {
    const auto width = Size(static_cast<std::uint64_t>(faxColumns(params, params.pageWidth))).fit();
    const auto height = Size(static_cast<std::uint64_t>(faxRows(params, params.pageHeight))).fit();
    if (width.value_or(0) == 0 || height.value_or(0) == 0 || (wordRowBytes(*width, 1) * Size(*height)).tooLarge()) {
        return OwnedBitmap();
    }
    return OwnedBitmap(CreateBitmap(static_cast<int>(*width), static_cast<int>(*height), 1, 1, nullptr));
}

struct FaxPageOrder {
    const FaxPageParams &params;
    DWORD maxPages;
    HANDLE *pages;
    bool asDibs;
};

// The page that is being drawn. It belongs to this object unless it is the caller's; either way it is selected while it
// is drawn on and free when it is handed over.
class FaxPages final : public FaxCanvas {
public:
    explicit FaxPages(const FaxPageOrder &order) : order_(order), dc_(nullptr) {}

    // False when there is no page to draw on.
    bool begin(HBITMAP callersPage) {
        if (!dc_ || !(callersPage != nullptr ? select(callersPage) : selectOwn())) {
            return false;
        }
        selectFont();
        SetTextColor(dc_.get(), RGB(0, 0, 0));
        if (callersPage != nullptr) {
            SetBkMode(dc_.get(), TRANSPARENT);
        } else {
            clear();
        }
        return true;
    }

    [[nodiscard]] FontMeasures measures() const { return measureFont(dc_.get()); }
    // Pages handed over.
    [[nodiscard]] DWORD count() const { return count_; }
    [[nodiscard]] DWORD status() const { return status_; }

    void draw(Pixels x, Pixels y, std::string_view text) override { drawTextLine(dc_.get(), x, y, text); }

    bool turnPage() override {
        if (!handOver() || !(order_.asDibs ? select(page_) : selectOwn())) {
            return stop(VELLUM_FAX_NO_MEMORY);
        }
        // By design: the page behind the last one that there is room for is cleared, too, so a caller's bitmap of which
        // DIBs are made is white when the text was too long.
        clear();
        return count_ < order_.maxPages || stop(VELLUM_FAX_PAGE_LIMIT);
    }

    // The text ends, or cannot go on.
    void finish(FaxTextEnd end) {
        if (end == FaxTextEnd::NoMemory || (end == FaxTextEnd::Reached && !handOver())) {
            stop(VELLUM_FAX_NO_MEMORY);
        }
    }

private:
    bool stop(DWORD status) {
        status_ = status;
        return false;
    }

    void selectFont() {
        font_ = createFont(order_.params, describeBitmap(page_));
        if (font_) {
            selectedFont_.emplace(dc_.get(), font_.get());
        }
    }

    // By design: no palette is selected with it. Only black and white are drawn, and they are the same in every one.
    bool select(HBITMAP page) {
        page_ = page;
        selectedPage_.emplace(dc_.get(), page);
        return selectedPage_->selected();
    }

    bool selectOwn() {
        own_ = createPage(order_.params);
        return own_ && select(own_.get());
    }

    void clear() {
        const BITMAP size = describeBitmap(page_);
        PatBlt(dc_.get(), 0, 0, size.bmWidth, size.bmHeight, WHITENESS);
    }

    bool handOver() {
        selectedPage_.reset();
        HANDLE handed = page_;
        if (order_.asDibs) {
            GlobalBlock dib = packBitmap(page_);
            setResolution(dib.get(), order_.params.horizontalResolution, order_.params.verticalResolution);
            handed = dib.release();
        } else {
            (void)own_.release();
        }
        if (handed == nullptr) {
            return false;
        }
        order_.pages[count_++] = handed;
        return true;
    }

    const FaxPageOrder &order_;
    OwnedBitmap own_;
    MemoryDc dc_;
    OwnedFont font_;
    std::optional<SelectedObject> selectedFont_;
    HBITMAP page_ = nullptr;
    std::optional<SelectedObject> selectedPage_;
    DWORD count_ = 0;
    DWORD status_ = VELLUM_FAX_COMPLETE;
};

DWORD drawPages(const FaxPageOrder &order, HBITMAP callersPage, DWORD &status) {
    FaxPages pages(order);
    if (!pages.begin(callersPage)) {
        status = VELLUM_FAX_NO_MEMORY;
        return 0;
    }
    const FieldPath path(order.params.textFile);
    const Stream text(openFileStream(path.get(), kOpenRead));
    if (!text) {
        status = VELLUM_FAX_NO_TEXT;
        return 0;
    }
    const FaxFrame frame = faxFrame(order.params);
    const FontMeasures font = pages.measures();
    pages.finish(layOutFaxText(text.get(), frame, font, pages));
    status = pages.status();
    return pages.count();
}

} // namespace

DWORD drawFaxPages(const FaxPageParams *params, DWORD maxPages, HANDLE *pages, DWORD kind, HBITMAP bitmap,
                   DWORD &status) {
    if (params == nullptr || pages == nullptr || maxPages == 0) {
        status = VELLUM_FAX_NOTHING_TO_DO;
        return 0;
    }
    return drawPages({*params, maxPages, pages, kind == VELLUM_FAX_DIBS}, bitmap, status);
}

} // namespace vellum

extern "C" {

DWORD VELLUMAPI CreateFaxPageFromASCII(const FaxPageParams *params, DWORD maxPages, HANDLE *pages, DWORD kind,
                                       HBITMAP bitmap, DWORD *status) {
    DWORD unwanted = 0;
    return vellum::drawFaxPages(params, maxPages, pages, kind, bitmap, status != nullptr ? *status : unwanted);
}

DWORD VELLUMAPI CreateBMPFaxPageFromASCII(const FaxPageParams *params, DWORD maxPages, HANDLE *pages, DWORD *status) {
    return CreateFaxPageFromASCII(params, maxPages, pages, VELLUM_FAX_BITMAPS, nullptr, status);
}

DWORD VELLUMAPI CreateDIBFaxPageFromASCII(const FaxPageParams *params, DWORD maxPages, HANDLE *pages, DWORD *status) {
    return CreateFaxPageFromASCII(params, maxPages, pages, VELLUM_FAX_DIBS, nullptr, status);
}

} // extern "C"
