#ifndef KORMATH_BENCH_BENCH_TIMING_H
#define KORMATH_BENCH_BENCH_TIMING_H

// Shared timing of the benchmarks: every variant records its seconds per
// item under a name, and a last benchmark of the file reports the ratios
// ours / peer of those figures (below 1: ours is faster).

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace kormath_bench {

inline std::map<std::string, double> &SecondsPerItem() {
  static std::map<std::string, double> seconds;
  return seconds;
}

// Times `body`, which handles `items` items per call, over the benchmark's
// iterations; records and returns the seconds per item (0 if nothing ran).
template <class Body>
double TimedLoop(benchmark::State &state, const char *name, std::size_t items, Body body) {
  double seconds = 0.0;
  for (auto _ : state) {
    const auto t0 = std::chrono::steady_clock::now();
    body();
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  }
  const double n = static_cast<double>(state.iterations()) * static_cast<double>(items);
  state.SetItemsProcessed(static_cast<std::int64_t>(n));
  if (n <= 0) return 0.0;
  SecondsPerItem()[name] = seconds / n;
  return seconds / n;
}

// Time per item of `ours` over that of `peer`; 0 when the peer did not run.
inline double Ratio(const char *ours, const char *peer) {
  const double p = SecondsPerItem()[peer];
  return p > 0 ? SecondsPerItem()[ours] / p : 0.0;
}

}  // namespace kormath_bench

#endif  // KORMATH_BENCH_BENCH_TIMING_H
