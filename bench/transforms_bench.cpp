// Mapping a million points through a classified matrix, as single points and
// as the vector form, beside Eigen's Affine3d on the same points.

#include <kormath/kormath.h>

#include "bench_timing.h"

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#if KORMATH_HAVE_EIGEN
#include <Eigen/Geometry>
#endif

namespace {

constexpr std::size_t kPoints = 1000000;

const std::vector<MMPoint3d<double>> &Points() {
  static const std::vector<MMPoint3d<double>> points = [] {
    std::mt19937_64 rng(42);
    std::uniform_real_distribution<double> u(-100.0, 100.0);
    std::vector<MMPoint3d<double>> p(kPoints);
    for (auto &q : p) q = MMPoint3d<double>(u(rng), u(rng), u(rng));
    return p;
  }();
  return points;
}

MMTransformMatrix RigidMatrix() {
  MMTransformMatrix m;
  m.MakeRotationZYX(MMPoint3d<double>(1.0, 2.0, 3.0), 12.0, -31.0, 47.0);
  m.AddTranslation(MMPoint3d<double>(5.0, -6.0, 7.0));
  return m;
}

using kormath_bench::Ratio;
using kormath_bench::TimedLoop;

void BM_MatrixSinglePoints(benchmark::State &state) {
  const auto &in = Points();
  const MMTransformMatrix m = RigidMatrix();
  const MMTransform &t = m;
  std::vector<MMPoint3d<double>> out(in.size());
  TimedLoop(state, "single", in.size(), [&] {
    for (std::size_t i = 0; i < in.size(); ++i) t.Transform(out[i], in[i]);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  });
}
BENCHMARK(BM_MatrixSinglePoints)->Unit(benchmark::kMillisecond);

void BM_MatrixVectorForm(benchmark::State &state) {
  const auto &in = Points();
  const MMTransformMatrix m = RigidMatrix();
  std::vector<MMPoint3d<double>> out;
  TimedLoop(state, "vector", in.size(), [&] {
    m.Transform(out, in);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  });
}
BENCHMARK(BM_MatrixVectorForm)->Unit(benchmark::kMillisecond);

#if KORMATH_HAVE_EIGEN
void BM_EigenAffine3d(benchmark::State &state) {
  const auto &in = Points();
  const MMTransformMatrix m = RigidMatrix();
  Eigen::Affine3d a = Eigen::Affine3d::Identity();
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 4; ++c) a.matrix()(r, c) = m.Matrix[r][c];
  std::vector<Eigen::Vector3d> out(in.size());
  TimedLoop(state, "eigen", in.size(), [&] {
    for (std::size_t i = 0; i < in.size(); ++i) out[i] = a * Eigen::Vector3d(in[i].x, in[i].y, in[i].z);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  });
}
BENCHMARK(BM_EigenAffine3d)->Unit(benchmark::kMillisecond);

// Ratios ours / Eigen of the time per point (below 1: faster than Eigen).
void BM_RatioToEigen(benchmark::State &state) {
  for (auto _ : state) {
  }
  state.counters["single_over_eigen"] = Ratio("single", "eigen");
  state.counters["vector_over_eigen"] = Ratio("vector", "eigen");
}
BENCHMARK(BM_RatioToEigen)->Iterations(1);
#else
void BM_EigenAffine3d_Skipped(benchmark::State &state) {
  for (auto _ : state) {
  }
  state.SetLabel("Eigen not found: comparison skipped");
}
BENCHMARK(BM_EigenAffine3d_Skipped);
#endif

}  // namespace

BENCHMARK_MAIN();
