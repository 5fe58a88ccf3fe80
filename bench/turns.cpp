// The measuring loop and what it reports.
#include "bench/turns.h"

#include "bench/comparison.h"

#include <algorithm>
#include <chrono>
#include <ctime>

namespace bench {
namespace {

constexpr int kTurns = 3; // of each library in a round

double quantile(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5)];
}

} // namespace

double nowNanoseconds() {
#ifdef _WIN32
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now().time_since_epoch()).count();
#else
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
#endif
}

int runsPerTurn(const TimedRuns &work, double turnMilliseconds) {
    const double once = std::min(work(1), work(1));
    return 1 + static_cast<int>(turnMilliseconds * 1e6 / std::max(once, 1.0));
}

Times takeTurns(benchmark::State &state, const Contest &contest) {
    const TimedRuns *works[2] = {&contest.vellum, &contest.libtiff};
    const int runs[2] = {runsPerTurn(contest.vellum, contest.turnMilliseconds),
                         runsPerTurn(contest.libtiff, contest.turnMilliseconds)};
    Times times;
    for ([[maybe_unused]] auto round : state) {
        const std::size_t first = times.ratio.size() % 2;
        double best[2] = {1e18, 1e18};
        for (std::size_t turn = 0; turn < 2 * kTurns; ++turn) {
            const std::size_t who = (first + turn) % 2;
            best[who] = std::min(best[who], (*works[who])(runs[who]));
        }
        times.vellum.push_back(best[0]);
        times.libtiff.push_back(best[1]);
        times.ratio.push_back(best[1] / best[0]);
        state.SetIterationTime(best[0] * 1e-9);
    }
    return times;
}

bool secondIsFaster(const TimedRuns &first, const TimedRuns &second, double turnMilliseconds) {
    const int runs = runsPerTurn(first, turnMilliseconds);
    double best[2] = {1e18, 1e18};
    for (int i = 0; i < 3; ++i) {
        best[0] = std::min(best[0], first(runs));
        best[1] = std::min(best[1], second(runs));
    }
    return best[1] < best[0];
}

void report(benchmark::State &state, const Times &times, const Work &work) {
    state.counters[counter::kLines] = static_cast<double>(work.lines);
    state.counters[counter::kMegabytes] = static_cast<double>(work.bytes) * 1e-6;
    state.counters[counter::kCodeBytes] = static_cast<double>(work.codeBytes);
    state.counters[counter::kVellumNanoseconds] = quantile(times.vellum, 0.5);
    state.counters[counter::kLibtiffNanoseconds] = quantile(times.libtiff, 0.5);
    state.counters[counter::kRatio] = quantile(times.ratio, 0.5);
    state.counters[counter::kLowerQuartile] = quantile(times.ratio, 0.25);
    state.counters[counter::kUpperQuartile] = quantile(times.ratio, 0.75);
    state.counters[counter::kLibtiffByLine] = work.libtiffByLine ? 1 : 0;
}

} // namespace bench
