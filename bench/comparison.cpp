// Checks that both libraries deliver the same picture, then times them in turns.
#include "bench/comparison.h"

#include "bench/decoders.h"
#include "bench/encode_comparison.h"
#include "bench/made_cases.h"
#include "bench/turns.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace bench {
namespace {

// Nanoseconds of one decode, the mean of so many.
double timeDecodes(Decoder &decoder, int decodes, bool decodeOnly) {
    bool good = !decodeOnly || decoder.open();
    const double start = nowNanoseconds();
    for (int i = 0; i < decodes; ++i) {
        if (decodeOnly) {
            good = good && decoder.decode();
        } else {
            good = good && decoder.open() && decoder.decode();
            decoder.close();
        }
    }
    const double time = (nowNanoseconds() - start) / decodes;
    decoder.close();
    if (!good) {
        throw std::runtime_error("a decode failed that had succeeded before");
    }
    return time;
}

TimedRuns decodesOf(Decoder &decoder, const Settings &settings) {
    return [&decoder, &settings](int decodes) { return timeDecodes(decoder, decodes, settings.decodeOnly); };
}

// Measures one image of a file. The picture that must come out may be given.
void compare(benchmark::State &state, const Bytes &file, unsigned image, const Bytes *expected,
             const Settings &settings) {
    VellumDecoder vellum(file, image);
    LibtiffDecoder byStrip(file, image, LibtiffDecoder::By::Strip, settings.mapped);
    LibtiffDecoder byLine(file, image, LibtiffDecoder::By::Line, settings.mapped);
    const std::size_t rowBytes = rowBytesOf(file, image);
    const Bytes theirs = rowBytes == 0 ? Bytes() : decodeAll(byStrip, rowBytes);
    if (theirs.empty() || (expected != nullptr && theirs != *expected) || decodeAll(byLine, rowBytes) != theirs) {
        state.SkipWithError("libtiff does not decode it");
        return;
    }
    if (decodeAll(vellum, rowBytes) != theirs) {
        const std::string text = "VELLUM differs, error " + std::to_string(TiffError());
        state.SkipWithError(text.c_str());
        return;
    }
    const TimedRuns strips = decodesOf(byStrip, settings);
    const TimedRuns lines = decodesOf(byLine, settings);
    const bool line = secondIsFaster(strips, lines, settings.turnMilliseconds);
    const Times times =
        takeTurns(state, {decodesOf(vellum, settings), line ? lines : strips, settings.turnMilliseconds});
    report(state, times, {theirs.size() / rowBytes, theirs.size(), file.size(), line});
}

template <class Run>
void add(const std::string &name, const Settings &settings, Run run) {
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->UseManualTime()
        ->Iterations(settings.rounds)
        ->Unit(benchmark::kMicrosecond);
}

Bytes readFile(const std::filesystem::path &path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void registerFile(const Settings &settings, const std::filesystem::path &path) {
    const auto file = std::make_shared<const Bytes>(readFile(path));
    MemoryFile source;
    source.bytes = file.get();
    const TiffPointer tiff = openForReading(source);
    if (tiff == nullptr) {
        return;
    }
    unsigned image = 0;
    do {
        const std::string layout = std::to_string(TIFFNumberOfStrips(tiff.get())) + "-strips";
        const std::string name =
            codecNameOf(tiff.get()) + "/" + path.filename().string() + "#" + std::to_string(image) + "/" + layout;
        add(name, settings, [=](benchmark::State &state) { compare(state, *file, image, nullptr, settings); });
        ++image;
    } while (TIFFReadDirectory(tiff.get()) == 1);
}

} // namespace

void registerMadePages(const Settings &settings) {
    for (const MadeCase &made : madeCases()) {
        add(made.name, settings, [=](benchmark::State &state) {
            const Page &source = pageNamed(made.page);
            compare(state, writeTiff(source, made.codec, made.rowsPerStrip), 0, &source.rows, settings);
        });
    }
}

void registerEncodes(const Settings &settings) {
    for (const MadeCase &made : madeCases()) {
        add("encode/" + made.name, settings, [=](benchmark::State &state) { compareEncoders(state, made, settings); });
    }
}

void registerFolder(const Settings &settings) {
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(settings.pagesFolder)) {
        if (entry.is_regular_file()) {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    for (const auto &path : paths) {
        registerFile(settings, path);
    }
}

} // namespace bench
