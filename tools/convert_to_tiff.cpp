// Pages into one TIFF, each coded as asked for or as fits it.
#include "tools/console.h"
#include "tools/convert.h"
#include "tools/tiff_output.h"

namespace tool {

namespace {

void setText(Picture &picture, DWORD tag, const std::optional<std::string> &text) {
    if (text && text->empty()) {
        picture.remove(tag);
    } else if (text) {
        picture.set(textTag(tag, *text));
    }
}

class TiffConversion {
public:
    TiffConversion(const PageSource &source, const ConvertRequest &request, TiffOutput &output)
        : source_(source), request_(request), output_(output) {}

    // False when there is no use in going on.
    bool convert(DWORD index);
    // Gives the file its name and tells what is in it.
    Status finish();

private:
    void failPage(DWORD index, const std::string &reason);

    const PageSource &source_;
    const ConvertRequest &request_;
    TiffOutput &output_;
    std::string report_;
    Status status_ = Status::Ok;
};

void TiffConversion::failPage(DWORD index, const std::string &reason) {
    Console::get().complain(source_.pageLabel(index) + ": " + reason);
    status_ = Status::Failed;
}

bool TiffConversion::convert(DWORD index) {
    Console::get().progress(source_.progressLabel(index));
    PageReading reading = source_.read(index);
    if (!reading.picture) {
        failPage(index, reading.failure);
        return true;
    }
    Picture &picture = *reading.picture;
    const Compression &compression = request_.coding.of(picture);
    if (const std::string obstacle = codingObstacle(picture, compression); !obstacle.empty()) {
        failPage(index, obstacle);
        return true;
    }
    setText(picture, tag::kImageDescription, request_.title);
    setText(picture, tag::kArtist, request_.artist);
    if (!output_.add(picture, request_.coding, source_.progressLabel(index))) {
        return false;
    }
    report_ += request_.output.shown() + ": page " + std::to_string(output_.pageCount()) + ": " +
               sizeText(picture.width, picture.height, picture.bitsPerPixel()) + ", " + std::string(compression.name) +
               "\n";
    if (!reading.warning.empty()) {
        failPage(index, "warning: " + reading.warning);
    }
    return true;
}

Status TiffConversion::finish() {
    const bool anything = !report_.empty() || !output_.failure().empty();
    if (anything && !output_.commit()) {
        Console::get().complain(request_.output.shown() + ": " + output_.failure());
        return Status::Failed;
    }
    Console::get().print(report_);
    return status_;
}

} // namespace

Status convertToTiff(const PageSource &source, const ConvertRequest &request) {
    const Compression *const compression = request.coding.compression;
    if (compression != nullptr && compression->isJpeg() && !jpegModuleEncodes()) {
        Console::get().complain(request.output.shown() + ": " + kNoJpegModule);
        return Status::Failed;
    }
    const auto output = request.append ? appendedTiff(request.output) : newTiff(request.output);
    TiffConversion conversion(source, request, *output);
    const DWORD end = request.endPage(source.pageCount());
    for (DWORD index = request.firstPage(); index < end && output->failure().empty(); ++index) {
        if (!conversion.convert(index)) {
            break;
        }
    }
    return conversion.finish();
}

} // namespace tool
