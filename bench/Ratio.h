#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

/// Every benchmark here answers one question with a ratio: our work to a peer's, or to a physical
/// limit, measured in the same run, turn by turn, so that a busy machine slows both. Counters:
/// `figure`, the ratio, `bar`, what it should not pass (0: none), `ours_us` and `peer_us`.

inline double fx_Median(std::vector<double> values)
{
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Seconds that \p work takes.
template<class Work>
double fx_Seconds(Work&& work)
{
    auto const start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Reports the ratio of two times, in seconds.
inline void fx_ReportRatio(benchmark::State& state, double bar, double ours, double peer)
{
    state.counters["ours_us"] = 1e6 * ours;
    state.counters["peer_us"] = 1e6 * peer;
    state.counters["figure"] = ours / peer;
    state.counters["bar"] = bar;
}

/// Runs \p peer and \p ours in turn for as long as the benchmark lasts. Register with UseManualTime().
template<class Ours, class Peer>
void fx_CompareWork(benchmark::State& state, double bar, Ours&& ours, Peer&& peer)
{
    peer();
    ours(); // once before the clock: pages and caches
    std::vector<double> ourTimes, peerTimes;
    for (auto _ : state) {
        peerTimes.push_back(fx_Seconds(peer));
        ourTimes.push_back(fx_Seconds(ours));
        state.SetIterationTime(ourTimes.back());
    }
    fx_ReportRatio(state, bar, fx_Median(ourTimes), fx_Median(peerTimes));
}
