// Defining and encoding a page.
#include "tools/tiff_page_writer.h"

#include <vector>

namespace tool {

namespace {

constexpr DWORD kLargestShort = 0xFFFF;

// A TIFF that is being written, closed in the end.
class OpenTarget {
public:
    explicit OpenTarget(const PageTarget &target)
        : handle_(OpenTiffFile(target.libraryPath.c_str(), target.pagesThere == 0 ? T_CREAT : T_APPEND)) {}
    OpenTarget(const OpenTarget &) = delete;
    OpenTarget &operator=(const OpenTarget &) = delete;
    ~OpenTarget() {
        if (handle_ != nullptr) {
            CloseTiffFile(handle_);
        }
    }

    [[nodiscard]] TiffHandle handle() const { return handle_; }
    // A file that could not be read just now would be made anew, and its pages be lost.
    [[nodiscard]] bool hasPages(DWORD count) const {
        TiffFileInfo info{};
        return handle_ != nullptr && GetTiffFileInfo(handle_, &info) != 0 && info.imageCount == count;
    }

private:
    TiffHandle handle_;
};

// Defines tags of one image; once one has failed, no more.
class PageDefinition {
public:
    PageDefinition(TiffHandle tiff, DWORD index) : tiff_(tiff), index_(index) {}

    PageDefinition &number(DWORD tag, Type type, DWORD value) {
        defined_ = defined_ && DefineTiffImageInfo(tiff_, index_, tag, static_cast<DWORD>(type), value) != 0;
        return *this;
    }
    PageDefinition &values(const TagValues &values) {
        defined_ = defined_ && DefineTiffImageInfoBuffer(tiff_, index_, values.tag(), values.bytes().data(),
                                                         values.type(), values.count()) != 0;
        return *this;
    }
    PageDefinition &general(const Picture &picture) {
        BITMAP bitmap{};
        bitmap.bmWidth = static_cast<LONG>(picture.width);
        bitmap.bmHeight = static_cast<LONG>(picture.height);
        bitmap.bmPlanes = 1;
        bitmap.bmBitsPixel = static_cast<WORD>(picture.bitsPerPixel());
        defined_ = defined_ && DefineGeneralTags(tiff_, index_, bitmap) == VELLUM_OK;
        return *this;
    }
    [[nodiscard]] bool done() const { return defined_; }

private:
    TiffHandle tiff_;
    DWORD index_;
    bool defined_ = true;
};

// Numbers that the general tags, all of them SHORT, cannot hold.
void defineLargeSizes(PageDefinition &page, const Picture &picture, const Compression &compression) {
    if (picture.width > kLargestShort) {
        page.number(tag::kImageWidth, Type::Long, picture.width);
    }
    if (picture.height > kLargestShort) {
        page.number(tag::kImageLength, Type::Long, picture.height);
        if (compression.isCcitt()) {
            page.number(tag::kRowsPerStrip, Type::Long, picture.height);
        }
    }
}

// The general tags know one sample a pixel, or three of 8 bits.
void defineSamples(PageDefinition &page, const Picture &picture) {
    const bool usual = picture.bitsPerPixel() == 24 ? picture.bitsPerSample == 8 : picture.samplesPerPixel == 1;
    if (!usual) {
        const std::vector<WORD> bits(picture.samplesPerPixel, static_cast<WORD>(picture.bitsPerSample));
        page.values(shortsTag(tag::kBitsPerSample, bits));
    }
    page.number(tag::kSamplesPerPixel, Type::Short, picture.samplesPerPixel);
}

bool define(PageDefinition page, const Picture &picture, const TiffCoding &coding) {
    const Compression &compression = coding.of(picture);
    page.number(tag::kCompression, Type::Short, compression.number).general(picture);
    defineLargeSizes(page, picture, compression);
    defineSamples(page, picture);
    // The companion module codes colours as luminance and differences.
    const bool asYCbCr = compression.isJpeg() && picture.bitsPerPixel() == 24;
    page.number(tag::kPhotometric, Type::Short, asYCbCr ? DWORD{kYCbCr} : picture.photometric);
    if (compression.optionTag != 0) {
        const Type type = compression.optionTag == tag::kPredictor ? Type::Short : Type::Long;
        page.number(compression.optionTag, type, compression.option);
    }
    if (coding.fillOrder) {
        page.number(tag::kFillOrder, Type::Short, *coding.fillOrder);
    }
    for (const TagValues &values : picture.tags) {
        page.values(values);
    }
    return page.done();
}

struct EncodeRun {
    const Picture &picture;
    const std::string &progressLabel;
    DWORD sourceError = VELLUM_OK; // what the picture's lines failed with
};

DWORD VELLUMAPI supplyLine(BYTE *line, DWORD index, DWORD userValue) {
    EncodeRun &run = *reinterpret_cast<EncodeRun *>(DWORD_PTR{userValue});
    try {
        run.sourceError = run.picture.fillLine(line, index);
        showLineProgress(run.progressLabel, "writing", index, run.picture.height);
    } catch (const std::exception &) {
        run.sourceError = VELLUM_NO_MEMORY; // nothing may be thrown through the library
    }
    return run.sourceError;
}

std::string failureText(DWORD error) {
    return "cannot be written: " + libraryMessage(error);
}

} // namespace

std::string writeTiffPage(const PageTarget &target, const Picture &picture, const TiffCoding &coding) {
    const OpenTarget tiff(target);
    if (tiff.handle() == nullptr) {
        return failureText(TiffError());
    }
    if (!tiff.hasPages(target.pagesThere)) {
        return failureText(VELLUM_IO_ERROR);
    }
    const LONG image = DefineTiffImage(tiff.handle());
    const auto index = static_cast<DWORD>(image);
    if (image < 0 || !define({tiff.handle(), index}, picture, coding)) {
        return failureText(VELLUM_NO_MEMORY);
    }
    EncodeRun run{picture, target.progressLabel};
    const auto userValue = static_cast<DWORD>(reinterpret_cast<DWORD_PTR>(&run));
    const bool written = EncodeTiffImage(tiff.handle(), index, userValue, supplyLine) != 0;
    const DWORD error = TiffError();
    DropTiffImage(tiff.handle(), index);
    if (written) {
        return {};
    }
    return run.sourceError != VELLUM_OK ? "the page cannot be read: " + libraryMessage(run.sourceError)
                                        : failureText(error);
}

class PageCopier::OpenTarget : public tool::OpenTarget {
    using tool::OpenTarget::OpenTarget;
};

PageCopier::PageCopier(PageTarget target)
    : tiff_(std::make_unique<OpenTarget>(target)), pagesThere_(target.pagesThere) {}

PageCopier::~PageCopier() = default;

std::string PageCopier::copy(const TiffDocument &source, DWORD index) {
    if (!tiff_->hasPages(pagesThere_)) {
        return failureText(VELLUM_IO_ERROR);
    }
    SetTiffError(VELLUM_OK);
    if (CopyTiffImage(source.handle(), index, tiff_->handle()) != 0) {
        ++pagesThere_;
        return {};
    }
    const DWORD error = TiffError();
    return failureText(error != VELLUM_OK ? error : DWORD{VELLUM_IO_ERROR});
}

} // namespace tool
