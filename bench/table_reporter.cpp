// The table's columns and the summary.
#include "bench/table_reporter.h"

#include "bench/comparison.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace bench {
namespace {

double valueOf(const benchmark::BenchmarkReporter::Run &run, const char *name) {
    const auto found = run.counters.find(name);
    return found == run.counters.end() ? 0.0 : found->second.value;
}

struct Name {
    std::string codec;
    std::string page;
    std::string layout;
};

// codec/page/layout, where a page's name may hold anything; encoders have "encode/" before the codec.
Name split(const std::string &name) {
    constexpr std::size_t kPrefix = sizeof "encode/" - 1;
    const std::size_t first = name.find('/', name.rfind("encode/", 0) == 0 ? kPrefix : 0);
    const std::size_t last = name.rfind('/');
    if (first == std::string::npos || first == last) {
        return {name, "", ""};
    }
    return {name.substr(0, first), name.substr(first + 1, last - first - 1), name.substr(last + 1)};
}

} // namespace

bool TableReporter::ReportContext(const Context &) {
    std::printf("ratio = libtiff's time / VELLUM's time, the median of the rounds with their quartiles; MB =\n"
                "uncompressed bytes; libtiff works by strip or by line, whichever is faster there\n\n"
                "%-23s %-*s %-15s %12s %12s %9s %9s %7s %13s  %s\n",
                "codec", pageColumn_, "page", "layout", "VELLUM", "libtiff", "VELLUM", "libtiff", "ratio", "quartiles",
                "libtiff");
    std::printf("%-23s %-*s %-15s %12s %12s %9s %9s %7s %13s  %s\n", "", pageColumn_, "", "", "ns/line", "ns/line",
                "MB/s", "MB/s", "", "", "works by");
    return true;
}

void TableReporter::ReportRuns(const std::vector<Run> &runs) {
    for (const Run &run : runs) {
        const Name name = split(run.run_name.function_name);
        if (run.error_occurred) {
            std::printf("%-23s %-*s %-15s %s\n", name.codec.c_str(), pageColumn_, name.page.c_str(),
                        name.layout.c_str(), run.error_message.c_str());
            failed_.push_back(run.run_name.function_name + ": " + run.error_message);
            continue;
        }
        const double lines = valueOf(run, counter::kLines);
        const double bytes = valueOf(run, counter::kMegabytes) * 1e6;
        const double ours = valueOf(run, counter::kVellumNanoseconds);
        const double theirs = valueOf(run, counter::kLibtiffNanoseconds);
        const double ratio = valueOf(run, counter::kRatio);
        std::printf("%-23s %-*s %-15s %12.1f %12.1f %9.0f %9.0f %7.2f %6.2f-%6.2f  %s%s\n", name.codec.c_str(),
                    pageColumn_, name.page.c_str(), name.layout.c_str(), ours / lines, theirs / lines,
                    bytes / ours * 1e3, bytes / theirs * 1e3, ratio, valueOf(run, counter::kLowerQuartile),
                    valueOf(run, counter::kUpperQuartile),
                    valueOf(run, counter::kLibtiffByLine) != 0 ? "line" : "strip", ratio < 1 ? "  SLOWER" : "");
        byCodec_[name.codec].push_back({run.run_name.function_name, ratio});
    }
    std::fflush(stdout);
}

void TableReporter::Finalize() {
    std::printf("\n%-23s %6s %8s %8s %8s  %s\n", "codec", "cases", "least", "median", "most", "slower than libtiff");
    for (auto &[codec, cases] : byCodec_) {
        std::sort(cases.begin(), cases.end(), [](const Case &a, const Case &b) { return a.ratio < b.ratio; });
        const auto slower = std::count_if(cases.begin(), cases.end(), [](const Case &c) { return c.ratio < 1; });
        std::printf("%-23s %6d %8.2f %8.2f %8.2f  %d\n", codec.c_str(), static_cast<int>(cases.size()),
                    cases.front().ratio, cases[cases.size() / 2].ratio, cases.back().ratio, static_cast<int>(slower));
    }
    if (!failed_.empty()) {
        std::printf("\nNot measured:\n");
        for (const std::string &text : failed_) {
            std::printf("  %s\n", text.c_str());
        }
    }
    std::fflush(stdout);
}

} // namespace bench
