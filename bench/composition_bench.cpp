// Composition: a million points through the Concat of five matrices (folded
// into one matrix) against the same five held in an MMTransformStack (five
// virtual mappings per point), with Eigen's product of five Affine3d as the
// peer when it is found.

#include <kormath/kormath.h>

#include "bench_timing.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#if KORMATH_HAVE_EIGEN
#include <Eigen/Geometry>
#endif

namespace {

constexpr std::size_t kPoints = 1000000;
constexpr int kFactors = 5;

const std::vector<MMPoint3d<double>> &Points() {
  static const std::vector<MMPoint3d<double>> points = [] {
    std::mt19937_64 rng(20261121);
    std::uniform_real_distribution<double> u(-100.0, 100.0);
    std::vector<MMPoint3d<double>> p(kPoints);
    for (auto &q : p) q = MMPoint3d<double>(u(rng), u(rng), u(rng));
    return p;
  }();
  return points;
}

// Five seeded rigid motions.
const std::vector<MMTransformMatrix> &Factors() {
  static const std::vector<MMTransformMatrix> factors = [] {
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> angle(-90.0, 90.0), shift(-10.0, 10.0);
    std::vector<MMTransformMatrix> f(kFactors);
    for (auto &m : f) {
      m.MakeRotationZYX(angle(rng), angle(rng), angle(rng));
      m.AddTranslation(MMPoint3d<double>(shift(rng), shift(rng), shift(rng)));
    }
    return f;
  }();
  return factors;
}

using kormath_bench::Ratio;
using kormath_bench::TimedLoop;

void MapAll(benchmark::State &state, const char *name, const MMTransform &t) {
  const auto &in = Points();
  std::vector<MMPoint3d<double>> out(in.size());
  TimedLoop(state, name, in.size(), [&] {
    for (std::size_t i = 0; i < in.size(); ++i) t.Transform(out[i], in[i]);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  });
}

void BM_ConcatOfFiveMatrices(benchmark::State &state) {
  std::vector<MMTransform *> list;
  for (const auto &m : Factors()) list.push_back(const_cast<MMTransformMatrix *>(&m));
  const std::unique_ptr<MMTransform> product(Concat(list, nullptr));
  state.SetLabel(dynamic_cast<const MMTransformMatrix *>(product.get()) ? "one matrix" : "not folded");
  MapAll(state, "concat", *product);
}
BENCHMARK(BM_ConcatOfFiveMatrices)->Unit(benchmark::kMillisecond);

void BM_StackOfFiveMatrices(benchmark::State &state) {
  MMTransformStack stack;
  for (const auto &m : Factors()) stack.PostMultiply(m);
  MapAll(state, "stack", stack);
}
BENCHMARK(BM_StackOfFiveMatrices)->Unit(benchmark::kMillisecond);

#if KORMATH_HAVE_EIGEN
void BM_EigenProductOfFive(benchmark::State &state) {
  Eigen::Affine3d product = Eigen::Affine3d::Identity();
  for (const auto &m : Factors()) {
    Eigen::Affine3d a = Eigen::Affine3d::Identity();
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 4; ++c) a.matrix()(r, c) = m.Matrix[r][c];
    product = product * a;
  }
  const auto &in = Points();
  std::vector<Eigen::Vector3d> out(in.size());
  TimedLoop(state, "eigen", in.size(), [&] {
    for (std::size_t i = 0; i < in.size(); ++i) out[i] = product * Eigen::Vector3d(in[i].x, in[i].y, in[i].z);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  });
}
BENCHMARK(BM_EigenProductOfFive)->Unit(benchmark::kMillisecond);
#endif

// Ratios of the time per point: concat / stack (below 1: folding pays), and
// ours / Eigen for the folded product.
void BM_Ratios(benchmark::State &state) {
  for (auto _ : state) {
  }
  state.counters["concat_over_stack"] = Ratio("concat", "stack");
#if KORMATH_HAVE_EIGEN
  state.counters["concat_over_eigen"] = Ratio("concat", "eigen");
#else
  state.SetLabel("Eigen not found: comparison with Eigen skipped");
#endif
}
BENCHMARK(BM_Ratios)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
