// Benchmarks of the registration kit against peers, on the same seeded data
// in the same process:
// - kd-tree build over 1,000,000 uniform points, against nanoflann (leaf 10);
// - 1,000,000 nearest-neighbour queries on that tree, against nanoflann;
// - MapPoints on 100,000 pairs, against Eigen::umeyama without scaling.
// Each comparison times both sides in every iteration and reports
// ours_ms, peer_ms, the throughput of both and ratio = ours / peer. Times are
// thread CPU times, and the queries alternate between both sides in blocks,
// so that load from other processes on a shared machine affects both alike.

#include <ctime>
#include <cmath>
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <kormath/kormath.h>

#if KORMATH_HAVE_NANOFLANN
#include <nanoflann.hpp>
#endif
#if KORMATH_HAVE_EIGEN
#include <Eigen/Dense>
#include <Eigen/Geometry>
#endif

namespace {

constexpr std::size_t kTreePoints = 1000000;
constexpr std::size_t kQueries = 1000000;
constexpr std::size_t kPairs = 100000;

// SplitMix64 uniform in [0, 1).
class Random {
 public:
  explicit Random(std::uint64_t seed) : m_state(seed) {}
  double Uniform() {
    std::uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return static_cast<double>((z ^ (z >> 31)) >> 11) * (1.0 / 9007199254740992.0);
  }

 private:
  std::uint64_t m_state;
};

std::vector<MMPoint3d<double>> UniformPoints(std::size_t n, std::uint64_t seed) {
  Random rng(seed);
  std::vector<MMPoint3d<double>> p(n);
  for (auto &q : p) q = MMPoint3d<double>(rng.Uniform(), rng.Uniform(), rng.Uniform());
  return p;
}

std::vector<MMPoint3d<double>> const &TreePoints() {
  static const std::vector<MMPoint3d<double>> p = UniformPoints(kTreePoints, 1);
  return p;
}
std::vector<MMPoint3d<double>> const &QueryPoints() {
  static const std::vector<MMPoint3d<double>> p = UniformPoints(kQueries, 2);
  return p;
}

// Thread CPU time in seconds.
double Now() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

void Report(benchmark::State &state, double ours, double peer, double items, char const *unit) {
  state.counters["ours_ms"] = 1e3 * ours;
  state.counters[std::string("ours_") + unit] = items / ours;
  if (peer > 0.0) {
    state.counters["peer_ms"] = 1e3 * peer;
    state.counters[std::string("peer_") + unit] = items / peer;
    state.counters["ratio"] = ours / peer;
  } else {
    state.SetLabel("peer missing: comparison skipped");
  }
}

#if KORMATH_HAVE_NANOFLANN
struct Cloud {
  std::vector<MMPoint3d<double>> const *points;
  std::size_t kdtree_get_point_count() const { return points->size(); }
  double kdtree_get_pt(std::size_t i, std::size_t dim) const { return (*points)[i][dim]; }
  template <class BBox>
  bool kdtree_get_bbox(BBox &) const {
    return false;
  }
};
using NanoTree =
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Cloud>, Cloud, 3, std::size_t>;
#endif

void BM_KDTreeBuild(benchmark::State &state) {
  auto const &points = TreePoints();
  double ours = 0.0, peer = 0.0;
  for (auto _ : state) {
    double t0 = Now();
    {
      MKDTreePointLocator locator;
      locator.BuildLocator(points);
      benchmark::DoNotOptimize(locator.GetRoot());
    }
    double t1 = Now();
    ours = t1 - t0;
#if KORMATH_HAVE_NANOFLANN
    const Cloud cloud{&points};
    t0 = Now();
    {
      NanoTree tree(3, cloud, nanoflann::KDTreeSingleIndexAdaptorParams(10));
      benchmark::DoNotOptimize(&tree);
    }
    t1 = Now();
    peer = t1 - t0;
#endif
    state.SetIterationTime(ours);
  }
  Report(state, ours, peer, static_cast<double>(points.size()), "Mpoints_per_s");
  state.counters["ours_Mpoints_per_s"] = state.counters["ours_Mpoints_per_s"] / 1e6;
  if (peer > 0.0) state.counters["peer_Mpoints_per_s"] = state.counters["peer_Mpoints_per_s"] / 1e6;
}
BENCHMARK(BM_KDTreeBuild)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_KDTreeQuery(benchmark::State &state) {
  auto const &points = TreePoints();
  auto const &queries = QueryPoints();
  MKDTreePointLocator locator;
  locator.BuildLocator(points);
#if KORMATH_HAVE_NANOFLANN
  const Cloud cloud{&points};
  NanoTree tree(3, cloud, nanoflann::KDTreeSingleIndexAdaptorParams(10));
#endif
  double ours = 0.0, peer = 0.0;
  std::size_t mismatches = 0;
  constexpr std::size_t kBlock = 50000;
  for (auto _ : state) {
    ours = 0.0;
    peer = 0.0;
    mismatches = 0;
    for (std::size_t begin = 0; begin < queries.size(); begin += kBlock) {
      const std::size_t end = std::min(queries.size(), begin + kBlock);
      std::vector<std::uint64_t> found(end - begin);
      double t0 = Now();
      MClosestPointInfo info;
      for (std::size_t i = begin; i < end; ++i) {
        info.SetInputPoint(queries[i]);
        locator.FindClosestPoint(info);
        found[i - begin] = info.GetOutputIndex();
      }
      double t1 = Now();
      ours += t1 - t0;
#if KORMATH_HAVE_NANOFLANN
      t0 = Now();
      for (std::size_t i = begin; i < end; ++i) {
        std::size_t index = 0;
        double d2 = 0.0;
        nanoflann::KNNResultSet<double, std::size_t> result(1);
        result.init(&index, &d2);
        tree.findNeighbors(result, queries[i].data(), nanoflann::SearchParams());
        if (index != found[i - begin]) ++mismatches;
      }
      t1 = Now();
      peer += t1 - t0;
#endif
    }
    state.SetIterationTime(ours);
  }
  Report(state, ours, peer, static_cast<double>(queries.size()) / 1e6, "Mqueries_per_s");
  state.counters["index_mismatches"] = static_cast<double>(mismatches);
}
BENCHMARK(BM_KDTreeQuery)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_MapPoints(benchmark::State &state) {
  // Well-conditioned data: a spread cloud, a rotation of about 50 degrees,
  // a shift and small noise on the targets.
  Random rng(3);
  std::vector<MMPoint3d<double>> b(kPairs), a(kPairs);
  MMOrthoTransform motion;
  motion.MakeRotation(MMPoint3d<double>(0.1, 0.2, 0.3), MMPoint3d<double>(1.0, -2.0, 0.5), 0.9, true);
  for (std::size_t i = 0; i < kPairs; ++i) {
    b[i] = MMPoint3d<double>(100 * rng.Uniform() - 50, 80 * rng.Uniform() - 40, 60 * rng.Uniform() - 30);
    for (int r = 0; r < 3; ++r) {
      a[i][static_cast<std::size_t>(r)] = motion.Rotation[r][0] * b[i].x + motion.Rotation[r][1] * b[i].y +
                                          motion.Rotation[r][2] * b[i].z + 5.0 * (r + 1) + 0.01 * (rng.Uniform() - 0.5);
    }
  }
  MPointPairList pairs;
  for (std::size_t i = 0; i < kPairs; ++i) pairs.emplace_back(&a[i], &b[i]);
  MMapper3DPoints mapper;
  MMOrthoTransform fit;
#if KORMATH_HAVE_EIGEN
  Eigen::Matrix3Xd src(3, kPairs), dst(3, kPairs);
  for (std::size_t i = 0; i < kPairs; ++i) {
    src.col(static_cast<Eigen::Index>(i)) << b[i].x, b[i].y, b[i].z;
    dst.col(static_cast<Eigen::Index>(i)) << a[i].x, a[i].y, a[i].z;
  }
  Eigen::Matrix4d eigenFit = Eigen::Matrix4d::Identity();
#endif
  double ours = 0.0, peer = 0.0;
  for (auto _ : state) {
    double t0 = Now();
    const bool ok = mapper.MapPoints(fit, pairs);
    double t1 = Now();
    benchmark::DoNotOptimize(ok);
    ours = t1 - t0;
#if KORMATH_HAVE_EIGEN
    t0 = Now();
    eigenFit = Eigen::umeyama(src, dst, false);
    t1 = Now();
    benchmark::DoNotOptimize(eigenFit.data());
    peer = t1 - t0;
#endif
    state.SetIterationTime(ours);
  }
  Report(state, ours, peer, static_cast<double>(kPairs) / 1e6, "Mpairs_per_s");
#if KORMATH_HAVE_EIGEN
  double worst = 0.0;
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) worst = std::max(worst, std::fabs(fit.Rotation[r][c] - eigenFit(r, c)));
  state.counters["max_rotation_difference"] = worst;
#endif
}
BENCHMARK(BM_MapPoints)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace

BENCHMARK_MAIN();
