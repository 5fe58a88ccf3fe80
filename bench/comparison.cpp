// The measuring loop: checks that both libraries deliver the same picture, then times them in turns.
#include "bench/comparison.h"

#include "bench/decoders.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace bench {
namespace {

constexpr int kTurns = 3; // of each library in a round

// Time that this thread has worked, where the system tells it finely enough; else time that has passed.
double nowNanoseconds() {
#ifdef _WIN32
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now().time_since_epoch()).count();
#else
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
#endif
}

double quantile(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5)];
}

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

// The picture as one library sees it; empty when it cannot decode the image.
Bytes decodeAll(Decoder &decoder, std::size_t rowBytes) {
    Bytes picture;
    const bool good = decoder.open() && decoder.decodeTo([&](const std::uint8_t *line, unsigned) {
        picture.insert(picture.end(), line, line + rowBytes);
    });
    decoder.close();
    return good ? picture : Bytes();
}

std::size_t rowBytesOf(const Bytes &file, unsigned image) {
    MemoryFile source;
    source.bytes = &file;
    const TiffPointer tiff = openForReading(source);
    if (tiff == nullptr || TIFFSetDirectory(tiff.get(), static_cast<tdir_t>(image)) != 1) {
        return 0;
    }
    return static_cast<std::size_t>(TIFFScanlineSize(tiff.get()));
}

struct Times {
    std::vector<double> vellum;
    std::vector<double> libtiff;
    std::vector<double> ratio;
};

int decodesPerTurn(Decoder &decoder, const Settings &settings) {
    const double once =
        std::min(timeDecodes(decoder, 1, settings.decodeOnly), timeDecodes(decoder, 1, settings.decodeOnly));
    return 1 + static_cast<int>(settings.turnMilliseconds * 1e6 / std::max(once, 1.0));
}

Times takeTurns(benchmark::State &state, VellumDecoder &vellum, LibtiffDecoder &libtiff, const Settings &settings) {
    Decoder *decoders[2] = {&vellum, &libtiff};
    const int decodes[2] = {decodesPerTurn(vellum, settings), decodesPerTurn(libtiff, settings)};
    Times times;
    for ([[maybe_unused]] auto round : state) {
        const std::size_t first = times.ratio.size() % 2;
        double best[2] = {1e18, 1e18};
        for (std::size_t turn = 0; turn < 2 * kTurns; ++turn) {
            const std::size_t who = (first + turn) % 2;
            best[who] = std::min(best[who], timeDecodes(*decoders[who], decodes[who], settings.decodeOnly));
        }
        times.vellum.push_back(best[0]);
        times.libtiff.push_back(best[1]);
        times.ratio.push_back(best[1] / best[0]);
        state.SetIterationTime(best[0] * 1e-9);
    }
    return times;
}

// Which way of reading is faster for libtiff, by the best of three each.
bool fasterByLine(LibtiffDecoder &byStrip, LibtiffDecoder &byLine, const Settings &settings) {
    const int decodes = decodesPerTurn(byStrip, settings);
    double best[2] = {1e18, 1e18};
    for (int i = 0; i < 3; ++i) {
        best[0] = std::min(best[0], timeDecodes(byStrip, decodes, settings.decodeOnly));
        best[1] = std::min(best[1], timeDecodes(byLine, decodes, settings.decodeOnly));
    }
    return best[1] < best[0];
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
    const bool line = fasterByLine(byStrip, byLine, settings);
    const Times times = takeTurns(state, vellum, line ? byLine : byStrip, settings);
    state.counters[counter::kLines] = static_cast<double>(theirs.size() / rowBytes);
    state.counters[counter::kMegabytes] = static_cast<double>(theirs.size()) * 1e-6;
    state.counters[counter::kCodeBytes] = static_cast<double>(file.size());
    state.counters[counter::kVellumNanoseconds] = quantile(times.vellum, 0.5);
    state.counters[counter::kLibtiffNanoseconds] = quantile(times.libtiff, 0.5);
    state.counters[counter::kRatio] = quantile(times.ratio, 0.5);
    state.counters[counter::kLowerQuartile] = quantile(times.ratio, 0.25);
    state.counters[counter::kUpperQuartile] = quantile(times.ratio, 0.75);
    state.counters[counter::kLibtiffByLine] = line ? 1 : 0;
}

template <class Run>
void add(const std::string &name, const Settings &settings, Run run) {
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->UseManualTime()
        ->Iterations(settings.rounds)
        ->Unit(benchmark::kMicrosecond);
}

struct Layout {
    const char *name;
    unsigned rowsPerStrip;
};

constexpr Layout kLayouts[] = {{"one-strip", 0xFFFFFFFF}, {"64-line-strips", 64}, {"strip-per-line", 1}};
constexpr Codec kBilevelCodecs[] = {Codec::Group4,
                                    Codec::Group3OneDimensional,
                                    Codec::Group3TwoDimensional,
                                    Codec::ModifiedHuffman,
                                    Codec::PackBits,
                                    Codec::Lzw,
                                    Codec::None};
constexpr Codec kSampledCodecs[] = {Codec::PackBits, Codec::Lzw, Codec::LzwDifferencing, Codec::None};

void registerPages(const Settings &settings, Codec codec, bool bilevel) {
    for (const std::string &page : pageNames()) {
        // Uncompressed bytes are the same work whatever they show.
        const bool repeats = codec == Codec::None && bilevel && page.find("text-dense") == std::string::npos;
        if (isBilevel(page) != bilevel || repeats) {
            continue;
        }
        for (const Layout &layout : kLayouts) {
            const std::string name = std::string(codecName(codec)) + "/" + page + "/" + layout.name;
            add(name, settings, [=](benchmark::State &state) {
                const Page &source = pageNamed(page);
                compare(state, writeTiff(source, codec, layout.rowsPerStrip), 0, &source.rows, settings);
            });
        }
    }
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
    for (const Codec codec : kBilevelCodecs) {
        registerPages(settings, codec, true);
    }
    for (const Codec codec : kSampledCodecs) {
        registerPages(settings, codec, false);
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
