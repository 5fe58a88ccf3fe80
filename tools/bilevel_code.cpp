// Lines and resolution of bilevel pictures.
#include "tools/bilevel_code.h"

#include <algorithm>
#include <exception>

namespace tool {

namespace {

constexpr double kCentimetresPerInch = 2.54;

const TagValues *findTag(const Picture &picture, DWORD tag) {
    const auto found = std::ranges::find(picture.tags, tag, &TagValues::tag);
    return found == picture.tags.end() ? nullptr : &*found;
}

} // namespace

bool isBilevel(const Picture &picture) {
    return picture.bitsPerPixel() == 1 && (picture.photometric == kWhiteIsZero || picture.photometric == kBlackIsZero);
}

double dotsPerInch(const Picture &picture, DWORD tag) {
    const TagValues *const values = findTag(picture, tag);
    const TagValues *const unitValues = findTag(picture, tag::kResolutionUnit);
    const bool hasUnit = unitValues != nullptr && !unitValues->isRational() && unitValues->count() > 0;
    const LONGLONG unit = hasUnit ? unitValues->number(0) : LONGLONG{kInch};
    if (values == nullptr || !values->isRational() || values->count() == 0 || (unit != kInch && unit != kCentimetre)) {
        return 0;
    }
    const auto [numerator, denominator] = values->rational(0);
    const double perUnit = denominator == 0 ? 0 : static_cast<double>(numerator) / denominator;
    return perUnit * (unit == kInch ? 1 : kCentimetresPerInch);
}

DWORD VELLUMAPI supplyBilevelLine(BYTE *line, DWORD index, DWORD userValue) {
    const BilevelRun &run = *reinterpret_cast<BilevelRun *>(DWORD_PTR{userValue});
    try {
        showLineProgress(run.progressLabel, "writing", index, run.picture.height);
        const DWORD error = run.picture.fillLine(line, index);
        const auto bytes = static_cast<std::size_t>(run.picture.lineBytes());
        for (std::size_t at = 0; at < bytes && run.picture.photometric == kBlackIsZero; ++at) {
            line[at] = static_cast<BYTE>(~line[at]);
        }
        return error;
    } catch (const std::exception &) {
        return VELLUM_NO_MEMORY; // nothing may be thrown through the library
    }
}

} // namespace tool
