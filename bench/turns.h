// Timing two libraries in turns.
//
// In a round the two take several short turns, one right behind the other and every other round in the opposite order,
// and the best turn of each counts, so that what disturbs the machine meets both or neither. What is reported are
// medians over the rounds: of the time of each, and of the ratio within a round.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <vector>

namespace bench {

// Time that this thread has worked, where the system tells it finely enough; else time that has passed.
double nowNanoseconds();

// Does a piece of work so many times, and gives the nanoseconds of one, as a mean.
using TimedRuns = std::function<double(int runs)>;

struct Contest {
    TimedRuns vellum;
    TimedRuns libtiff;
    double turnMilliseconds = 1; // of a turn, at least; at least one run
};

struct Times {
    std::vector<double> vellum;
    std::vector<double> libtiff;
    std::vector<double> ratio;
};

// Runs that fill a turn.
int runsPerTurn(const TimedRuns &work, double turnMilliseconds);

// All rounds of a benchmark.
Times takeTurns(benchmark::State &state, const Contest &contest);

// Whether the second way is faster, by the best of three turns each.
bool secondIsFaster(const TimedRuns &first, const TimedRuns &second, double turnMilliseconds);

// What both worked on.
struct Work {
    std::size_t lines = 0;
    std::size_t bytes = 0; // uncompressed
    std::size_t codeBytes = 0;
    bool libtiffByLine = false;
};

// Leaves the medians among the run's counters.
void report(benchmark::State &state, const Times &times, const Work &work);

} // namespace bench
