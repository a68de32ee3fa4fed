#ifndef BENCHMARKS_COMPARISON_H
#define BENCHMARKS_COMPARISON_H

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <type_traits>

/// The duration of a piece of work (s).
template<typename Work>
double secondsOf(const Work& a_work)
{
    const auto begin = std::chrono::steady_clock::now();
    a_work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Runs `a_ours`, which uses the library, and `a_bare`, the same work without the
/// library, in turn. Reports both times (ms) and their ratio. `a_ours` is timed as a
/// whole, unless it returns the duration of the measured part (s). For benchmarks with
/// manual time.
template<typename Bare, typename Ours>
void compare(benchmark::State& a_state, std::int64_t a_iBytes, const Bare& a_bare, const Ours& a_ours)
{
    double dBare = 0.0;
    double dOurs = 0.0;
    for ([[maybe_unused]] auto iteration : a_state) {
        dBare += secondsOf(a_bare);
        double dSeconds = 0.0;
        if constexpr (std::is_void_v<decltype(a_ours())>) {
            dSeconds = secondsOf(a_ours);
        } else {
            dSeconds = a_ours();
        }
        dOurs += dSeconds;
        a_state.SetIterationTime(dSeconds);
    }
    const auto dIterations = static_cast<double>(a_state.iterations());
    a_state.counters["bare_ms"] = dBare / dIterations * 1000.0;
    a_state.counters["ours_ms"] = dOurs / dIterations * 1000.0;
    a_state.counters["ratio"] = dOurs / dBare;
    a_state.counters["MiB"] = static_cast<double>(a_iBytes) / (1024.0 * 1024.0);
}

#endif
