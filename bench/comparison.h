// One measurement: VELLUM and libtiff decode the same image in turns, or encode the same page, as a Google Benchmark of
// so many rounds (bench/turns.h).
#pragma once

#include "bench/memory_tiff.h"

#include <benchmark/benchmark.h>

#include <string>

namespace bench {

struct Settings {
    int rounds = 11;
    double turnMilliseconds = 1; // at least one decode or encode
    bool decodeOnly = false;     // leave opening and closing out of the times
    bool mapped = true;          // let libtiff use the file's bytes in place instead of reading them
    std::string pagesFolder;     // measure real files too
    bool wholePages = false;     // encoding: libtiff takes strips from the page instead of having lines supplied
    std::string scratchFolder;   // where the encoders write their files
};

// What the reporter finds among a run's counters.
namespace counter {
constexpr const char *kLines = "lines";
constexpr const char *kMegabytes = "megabytes"; // uncompressed
constexpr const char *kCodeBytes = "code_bytes";
constexpr const char *kVellumNanoseconds = "vellum_ns";
constexpr const char *kLibtiffNanoseconds = "libtiff_ns";
constexpr const char *kRatio = "ratio"; // libtiff's time / VELLUM's: above 1 VELLUM is the faster one
constexpr const char *kLowerQuartile = "ratio_q1";
constexpr const char *kUpperQuartile = "ratio_q3";
constexpr const char *kLibtiffByLine = "libtiff_by_line";
} // namespace counter

// Registers every made page with every codec that takes it in three layouts, and the files of settings.pagesFolder.
// Names are codec/page/layout; encode/codec/page/layout of the encoders.
void registerMadePages(const Settings &settings);
void registerEncodes(const Settings &settings);
void registerFolder(const Settings &settings);

} // namespace bench
