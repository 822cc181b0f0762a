// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include <time.h>

/// Seconds of the processor that a call takes, of all threads of the process.
template <class Work> double processorSeconds(const Work& work)
{
    timespec before{};
    timespec after{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &before);
    work();
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &after);
    return double(after.tv_sec - before.tv_sec) + double(after.tv_nsec - before.tv_nsec) / 1e9;
}

/// Runs what the program does and the least that does the same by turns, so that whatever else the
/// machine is at hits both. Counts by how much the program takes longer: "ratio" is the median,
/// "low" and "high" are the quartiles, which lie far apart when the machine has spoilt the figure.
/// The benchmark has to use manual time, which is the program's.
template <class Program, class Floor>
void compareByTurns(benchmark::State& state, const Program& program, const Floor& floor)
{
    std::vector<double> ratios;
    for (auto _ : state) {
        const double floorSeconds = processorSeconds(floor);
        const double seconds = processorSeconds(program);
        state.SetIterationTime(seconds);
        ratios.push_back(seconds / floorSeconds);
    }
    std::sort(ratios.begin(), ratios.end());
    const auto quantile = [&ratios](double share) {
        return ratios[std::size_t(share * double(ratios.size() - 1))];
    };
    state.counters["ratio"] = quantile(0.5);
    state.counters["low"] = quantile(0.25);
    state.counters["high"] = quantile(0.75);
}
