// vellum_bench: VELLUM's decoders beside libtiff's, in memory, or its encoders, into files. Takes Google Benchmark's
// options
// (--benchmark_filter=REGEX, --benchmark_out=FILE and so on) and those of usage() below.
#include "bench/comparison.h"
#include "bench/encode_comparison.h"
#include "bench/table_reporter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <system_error>

namespace {

void usage() {
    std::cout
        << "vellum_bench [OPTION...] [--benchmark_...]\n"
           "  --rounds=N       rounds of each comparison (11)\n"
           "  --turn-ms=T      least time of a library's turn, in milliseconds (1); a round has three turns of each\n"
           "  --decode-only    do not time opening and closing\n"
           "  --not-mapped     libtiff reads the bytes through its callbacks instead of using them in place\n"
           "  --encode         measure the encoders instead of the decoders\n"
           "  --whole-pages    encoding: libtiff takes strips from the page itself, without a line function\n"
           "  --append         time the appending of many pages to one file, and stop\n"
           "  --scratch=DIR    where the encoders write their files; memory if it can be had\n"
           "  --pages=DIR      also measure every TIFF in a folder\n"
           "  --no-made-pages  do not measure the pages that the program makes\n"
           "  --write-pages=DIR  write the pages that the program makes as PGM, PPM and PBM files, and stop\n";
}

// The text behind "--name=", if this is that option.
std::optional<std::string> valueOf(const char *argument, const char *name) {
    const std::size_t length = std::strlen(name);
    if (std::strncmp(argument, name, length) != 0 || argument[length] != '=') {
        return std::nullopt;
    }
    return argument + length + 1;
}

void writePages(const std::string &folder) {
    for (const std::string &name : bench::pageNames()) {
        const bench::Page &page = bench::pageNamed(name);
        const bool bilevel = page.bitsPerSample == 1;
        const char *suffix = bilevel ? ".pbm" : page.samplesPerPixel == 3 ? ".ppm" : ".pgm";
        const char *kind = bilevel ? "P4" : page.samplesPerPixel == 3 ? "P6" : "P5";
        std::ofstream file(std::filesystem::path(folder) / (name + suffix), std::ios::binary);
        file << kind << '\n' << page.width << ' ' << page.height << '\n' << (bilevel ? "" : "255\n");
        file.write(reinterpret_cast<const char *>(page.rows.data()), static_cast<std::streamsize>(page.rows.size()));
    }
}

int run(int argc, char **argv) {
    bench::Settings settings;
    bool madePages = true;
    bool encoders = false;
    bool appending = false;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        if (const auto rounds = valueOf(argv[i], "--rounds")) {
            settings.rounds = std::max(1, std::atoi(rounds->c_str()));
        } else if (const auto time = valueOf(argv[i], "--turn-ms")) {
            settings.turnMilliseconds = std::atof(time->c_str());
        } else if (const auto folder = valueOf(argv[i], "--pages")) {
            settings.pagesFolder = *folder;
        } else if (const auto target = valueOf(argv[i], "--write-pages")) {
            writePages(*target);
            return 0;
        } else if (const auto scratch = valueOf(argv[i], "--scratch")) {
            settings.scratchFolder = *scratch;
        } else if (std::strcmp(argv[i], "--encode") == 0) {
            encoders = true;
        } else if (std::strcmp(argv[i], "--whole-pages") == 0) {
            settings.wholePages = true;
        } else if (std::strcmp(argv[i], "--append") == 0) {
            appending = true;
        } else if (std::strcmp(argv[i], "--decode-only") == 0) {
            settings.decodeOnly = true;
        } else if (std::strcmp(argv[i], "--not-mapped") == 0) {
            settings.mapped = false;
        } else if (std::strcmp(argv[i], "--no-made-pages") == 0) {
            madePages = false;
        } else {
            argv[kept++] = argv[i];
        }
    }
    if (settings.scratchFolder.empty()) {
        const std::filesystem::path memory("/dev/shm");
        std::error_code error;
        settings.scratchFolder =
            (std::filesystem::is_directory(memory, error) ? memory : std::filesystem::temp_directory_path()).string();
    }
    if (appending) {
        bench::timeAppending(settings);
        return 0;
    }
    benchmark::Initialize(&kept, argv, usage);
    if (benchmark::ReportUnrecognizedArguments(kept, argv)) {
        return 2;
    }
    if (encoders) {
        bench::registerEncodes(settings);
    } else if (madePages) {
        bench::registerMadePages(settings);
    }
    if (!settings.pagesFolder.empty()) {
        bench::registerFolder(settings);
    }
    bench::TableReporter reporter(settings.pagesFolder.empty() ? 16 : 44);
    if (benchmark::RunSpecifiedBenchmarks(&reporter) == 0) {
        std::cerr << "vellum_bench: no comparison matches\n";
        return 2;
    }
    // In a folder of any files there may be some that one of the libraries refuses.
    return reporter.failures() == 0 || !settings.pagesFolder.empty() ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << "vellum_bench: " << error.what() << '\n';
        return 1;
    }
}
