#include "bench/encode_comparison.h"

#include "bench/decoders.h"
#include "bench/encoders.h"
#include "bench/turns.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace bench {
namespace {

Bytes readFile(const std::string &path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// A name in the scratch folder; the file is deleted when the object goes.
class ScratchFile {
public:
    ScratchFile(const Settings &settings, const char *name)
        : path_((std::filesystem::path(settings.scratchFolder) / name).string()) {}
    ScratchFile(const ScratchFile &) = delete;
    ScratchFile &operator=(const ScratchFile &) = delete;
    ~ScratchFile() {
        std::error_code error;
        std::filesystem::remove(path_, error);
    }
    [[nodiscard]] const std::string &path() const { return path_; }

private:
    std::string path_;
};

double timeEncodes(Encoder &encoder, int encodes) {
    bool good = true;
    const double start = nowNanoseconds();
    for (int i = 0; i < encodes; ++i) {
        good = encoder.encode() && good;
    }
    const double time = (nowNanoseconds() - start) / encodes;
    if (!good) {
        throw std::runtime_error("an encode failed that had succeeded before");
    }
    return time;
}

TimedRuns encodesOf(Encoder &encoder) {
    return [&encoder](int encodes) { return timeEncodes(encoder, encodes); };
}

// Whether libtiff reads the page out of what an encoder has written; the size of the file then.
std::size_t sizeIfRight(Encoder &encoder, const std::string &path, const Page &page) {
    if (!encoder.encode()) {
        return 0;
    }
    const Bytes file = readFile(path);
    LibtiffDecoder reader(file, 0, LibtiffDecoder::By::Strip, true);
    return decodeAll(reader, page.rowBytes) == page.rows ? file.size() : 0;
}

} // namespace

void compareEncoders(benchmark::State &state, const MadeCase &made, const Settings &settings) {
    const Page &page = pageNamed(made.page);
    const ScratchFile ours(settings, "vellum-bench-ours.tif");
    const ScratchFile theirs(settings, "vellum-bench-theirs.tif");
    VellumEncoder vellum({&page, made.codec, made.rowsPerStrip, ours.path(), false});
    const EncodeTask task{&page, made.codec, made.rowsPerStrip, theirs.path(), settings.wholePages};
    LibtiffEncoder byStrip(task, LibtiffEncoder::By::Strip);
    LibtiffEncoder byLine(task, LibtiffEncoder::By::Line);
    if (sizeIfRight(byStrip, theirs.path(), page) == 0 || sizeIfRight(byLine, theirs.path(), page) == 0) {
        state.SkipWithError("libtiff does not encode it");
        return;
    }
    const std::size_t size = sizeIfRight(vellum, ours.path(), page);
    if (size == 0) {
        const std::string text = "VELLUM's file is not the page, error " + std::to_string(TiffError());
        state.SkipWithError(text.c_str());
        return;
    }
    const bool line = secondIsFaster(encodesOf(byStrip), encodesOf(byLine), settings.turnMilliseconds);
    const Contest contest{encodesOf(vellum), line ? encodesOf(byLine) : encodesOf(byStrip), settings.turnMilliseconds};
    report(state, takeTurns(state, contest), {page.height, page.rows.size(), size, line});
}

void timeAppending(const Settings &settings) {
    const Page &page = pageNamed("text-sparse-200");
    std::printf("%-9s %14s %14s\n", "pages", "us/page", "last us");
    for (const int pages : {10, 100, 500}) {
        const ScratchFile file(settings, "vellum-bench-pages.tif");
        VellumEncoder vellum({&page, Codec::Group4, page.height, file.path(), false});
        const double start = nowNanoseconds();
        double last = start;
        for (int i = 0; i < pages; ++i) {
            last = nowNanoseconds();
            if (!(i == 0 ? vellum.encode() : vellum.append())) {
                throw std::runtime_error("page " + std::to_string(i) + " is refused");
            }
        }
        const double end = nowNanoseconds();
        std::printf("%-9d %14.1f %14.1f\n", pages, (end - start) / pages / 1e3, (end - last) / 1e3);
    }
}

} // namespace bench
