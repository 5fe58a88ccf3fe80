// Pages as CALS files, a file a page.
#include "tools/console.h"
#include "tools/convert.h"
#include "tools/output_file.h"

namespace tool {

namespace {

Status fail(const std::string &label, const std::string &reason) {
    Console::get().complain(label + ": " + reason);
    return Status::Failed;
}

Status convertPage(const PageSource &source, DWORD index, const CalsDescription &description, const FileName &output) {
    Console::get().progress(source.progressLabel(index));
    const PageReading reading = source.read(index);
    if (!reading.picture) {
        return fail(source.pageLabel(index), reading.failure);
    }
    const Picture &picture = *reading.picture;
    if (const std::string obstacle = calsObstacle(picture); !obstacle.empty()) {
        return fail(source.pageLabel(index), obstacle);
    }
    OutputFile file(output);
    const FileName &beside = file.handOver();
    std::string failure = file.failure();
    if (failure.empty()) {
        failure = writeCals(beside, picture, description, source.progressLabel(index));
    }
    if (failure.empty() && !file.commit()) {
        failure = file.failure();
    }
    if (!failure.empty()) {
        return fail(output.shown(), failure);
    }
    Console::get().print(output.shown() + ": " + sizeText(picture.width, picture.height, 1) + "\n");
    if (const std::string loss = calsLoss(picture); !loss.empty()) {
        Console::get().complain(source.pageLabel(index) + ": warning: " + loss);
    }
    return reading.warning.empty() ? Status::Ok : fail(source.pageLabel(index), "warning: " + reading.warning);
}

} // namespace

Status convertToCals(const PageSource &source, const ConvertRequest &request) {
    Status status = Status::Ok;
    for (DWORD index = request.firstPage(); index < request.endPage(source.pageCount()); ++index) {
        const FileName output = request.outputOf(index);
        status = worse(status, convertPage(source, index, request.cals, output));
    }
    return status;
}

} // namespace tool
