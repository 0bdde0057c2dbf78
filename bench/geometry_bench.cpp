// Benchmarks of the geometry subsystem, on the public API only.
//
//  - DoTrianglesIntersectRobust on a million random triangle pairs, and on
//    pairs whose corners lie on the other's plane up to a few ulps (the
//    exact orientation predicate then escalates through its adaptive
//    stages). The peer is the same decision procedure with a plain double
//    determinant, run on the same data; the ratio ours / plain is reported.
//    (The predicate itself is internal, so it is measured through the test.)
//  - DistanceT2T on a million pairs.
//  - MMLeastSquarePlane::Calculate on 1,000,000 points, against Eigen's
//    self-adjoint eigen-solver on the same centred moments when Eigen is
//    available.

#include <kormath/kormath.h>
#include <kormath/geometry/geometry.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>
#include <utility>
#include <vector>

#if KORMATH_HAVE_EIGEN
#include <Eigen/Dense>
#endif

namespace {

using P3 = MMPoint3d<double>;

struct Tri {
  double v[3][3];
};

constexpr std::size_t kPairs = 1000000;

std::vector<std::pair<Tri, Tri>> RandomPairs(unsigned seed) {
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> u(0.0, 10.0);
  std::vector<std::pair<Tri, Tri>> pairs(kPairs);
  for (auto &p : pairs) {
    for (auto &row : p.first.v) {
      for (double &x : row) x = u(rng);
    }
    for (auto &row : p.second.v) {
      for (double &x : row) x = u(rng);
    }
  }
  return pairs;
}

// The second triangle's corners lie on the first's plane (rounded), then
// move by up to two ulps: nearly coplanar, every sign is a hard decision.
std::vector<std::pair<Tri, Tri>> NearlyCoplanarPairs(unsigned seed) {
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> u(0.0, 10.0);
  std::uniform_real_distribution<double> w(-0.5, 1.5);
  std::uniform_int_distribution<int> ulp(-2, 2);
  std::vector<std::pair<Tri, Tri>> pairs(kPairs / 10);
  for (auto &p : pairs) {
    for (auto &row : p.first.v) {
      for (double &x : row) x = u(rng) + 1e3;
    }
    for (auto &row : p.second.v) {
      const double s = w(rng), t = w(rng);
      for (int k = 0; k < 3; ++k) {
        double x = p.first.v[0][k] + s * (p.first.v[1][k] - p.first.v[0][k]) + t * (p.first.v[2][k] - p.first.v[0][k]);
        for (int m = ulp(rng); m != 0; m += (m > 0 ? -1 : 1)) x = std::nextafter(x, m > 0 ? 1e300 : -1e300);
        row[k] = x;
      }
    }
  }
  return pairs;
}

// ---- the peer: the same decision with a plain double determinant ------

double PlainOrient(const double *a, const double *b, const double *c, const double *d) {
  const double adx = a[0] - d[0], bdx = b[0] - d[0], cdx = c[0] - d[0];
  const double ady = a[1] - d[1], bdy = b[1] - d[1], cdy = c[1] - d[1];
  const double adz = a[2] - d[2], bdz = b[2] - d[2], cdz = c[2] - d[2];
  return adz * (bdx * cdy - cdx * bdy) + bdz * (cdx * ady - adx * cdy) + cdz * (adx * bdy - bdx * ady);
}

int Sign(double v) { return v > 0.0 ? 1 : (v < 0.0 ? -1 : 0); }

bool PlainTrianglesIntersect(const double (*a)[3], const double (*b)[3]) {
  const double(*tri[2])[3] = {a, b};
  int g[2][3];
  for (int t = 0; t < 2; ++t) {
    const int o = 1 - t;
    for (int i = 0; i < 3; ++i) g[o][i] = Sign(-PlainOrient(tri[t][0], tri[t][1], tri[t][2], tri[o][i]));
    if (g[o][0] == g[o][1] && g[o][1] == g[o][2]) return g[o][0] == 0;
  }
  int order[2][3];
  for (int k = 0; k < 2; ++k) {
    int apex = -1;
    for (int i = 0; i < 3 && apex < 0; ++i) {
      if (g[k][i] != 0 && g[k][i] != g[k][(i + 1) % 3] && g[k][i] != g[k][(i + 2) % 3]) apex = i;
    }
    for (int i = 0; i < 3 && apex < 0; ++i) {
      if (g[k][i] == 0) apex = i;
    }
    order[k][0] = apex;
    order[k][1] = (apex + 1) % 3;
    order[k][2] = (apex + 2) % 3;
  }
  for (int k = 0; k < 2; ++k) {
    const int s = g[k][order[k][0]];
    if (s < 0 || (s == 0 && g[k][order[k][1]] >= 1)) std::swap(order[1 - k][1], order[1 - k][2]);
  }
  const double *p1 = tri[0][order[0][0]], *q1 = tri[0][order[0][1]], *r1 = tri[0][order[0][2]];
  const double *p2 = tri[1][order[1][0]], *q2 = tri[1][order[1][1]], *r2 = tri[1][order[1][2]];
  return 0.0 >= -PlainOrient(p1, q1, p2, q2) && 0.0 >= -PlainOrient(p1, r1, r2, p2);
}

template <class F>
double SecondsFor(F &&f) {
  const auto start = std::chrono::steady_clock::now();
  f();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void RunIntersectionBenchmark(benchmark::State &state, const std::vector<std::pair<Tri, Tri>> &pairs) {
  std::size_t hits = 0, plainHits = 0, disagreements = 0;
  double oursSeconds = 0.0, plainSeconds = 0.0;
  for (auto _ : state) {
    oursSeconds += SecondsFor([&] {
      for (auto p : pairs) hits += DoTrianglesIntersectRobust(p.first.v, p.second.v);
    });
    state.PauseTiming();
    plainSeconds += SecondsFor([&] {
      for (auto p : pairs) plainHits += PlainTrianglesIntersect(p.first.v, p.second.v);
    });
    for (auto p : pairs) {
      disagreements +=
          DoTrianglesIntersectRobust(p.first.v, p.second.v) != PlainTrianglesIntersect(p.first.v, p.second.v);
    }
    state.ResumeTiming();
  }
  benchmark::DoNotOptimize(hits);
  benchmark::DoNotOptimize(plainHits);
  const double calls = static_cast<double>(pairs.size()) * static_cast<double>(state.iterations());
  state.SetItemsProcessed(static_cast<int64_t>(calls));
  state.counters["ours_calls_per_s"] = calls / oursSeconds;
  state.counters["plain_calls_per_s"] = calls / plainSeconds;
  state.counters["ratio_ours_over_plain"] = oursSeconds / plainSeconds;
  state.counters["plain_wrong_answers_per_pass"] =
      static_cast<double>(disagreements) / static_cast<double>(state.iterations());
}

void BM_TrianglesIntersectRobust_Random(benchmark::State &state) {
  static const auto pairs = RandomPairs(1u);
  RunIntersectionBenchmark(state, pairs);
}
BENCHMARK(BM_TrianglesIntersectRobust_Random)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_TrianglesIntersectRobust_NearlyCoplanar(benchmark::State &state) {
  static const auto pairs = NearlyCoplanarPairs(2u);
  RunIntersectionBenchmark(state, pairs);
}
BENCHMARK(BM_TrianglesIntersectRobust_NearlyCoplanar)->Unit(benchmark::kMillisecond)->Iterations(3);

// ---- DistanceT2T -----------------------------------------------------------

void BM_DistanceT2T(benchmark::State &state) {
  static const auto raw = RandomPairs(3u);
  static std::vector<P3> points;
  static std::vector<P3> normals;
  if (points.empty()) {
    for (const auto &p : raw) {
      for (const Tri *t : {&p.first, &p.second}) {
        for (const auto &row : t->v) points.emplace_back(row[0], row[1], row[2]);
        P3 n = (points[points.size() - 2] - points[points.size() - 3]).Cross(points.back() - points[points.size() - 3]);
        n.Normalise();
        normals.push_back(n);
      }
    }
  }
  double sum = 0.0;
  for (auto _ : state) {
    for (std::size_t i = 0; i < raw.size(); ++i) {
      P3 ca, cb;
      sum += DistanceT2T(&points[6 * i], normals[2 * i], &points[6 * i + 3], normals[2 * i + 1], &ca, &cb);
    }
  }
  benchmark::DoNotOptimize(sum);
  const double calls = static_cast<double>(raw.size()) * static_cast<double>(state.iterations());
  state.SetItemsProcessed(static_cast<int64_t>(calls));
  state.counters["calls_per_s"] = benchmark::Counter(calls, benchmark::Counter::kIsRate);
}
BENCHMARK(BM_DistanceT2T)->Unit(benchmark::kMillisecond)->Iterations(3);

// ---- plane fit -------------------------------------------------------------

void BM_LeastSquarePlane_Calculate(benchmark::State &state) {
  static std::vector<P3> points;
  if (points.empty()) {
    std::mt19937_64 rng(4u);
    std::uniform_real_distribution<double> u(-100.0, 100.0);
    std::normal_distribution<double> noise(0.0, 0.1);
    for (int i = 0; i < 1000000; ++i) {
      const double x = u(rng), y = u(rng);
      points.emplace_back(x, y, 0.3 * x - 0.2 * y + 5.0 + noise(rng));
    }
  }
  double oursSeconds = 0.0, peerSeconds = 0.0, agreement = 0.0;
  for (auto _ : state) {
    MMLeastSquarePlane fit;
    MMPlaneEq<double> plane;
    oursSeconds += SecondsFor([&] {
      fit.Calculate(points);
      plane = fit.GetPlane();
    });
    benchmark::DoNotOptimize(plane);
#if KORMATH_HAVE_EIGEN
    state.PauseTiming();
    Eigen::Vector3d normal;
    peerSeconds += SecondsFor([&] {
      // The same work: sums, centred moments, eigen-solve, deviations.
      Eigen::Vector3d s = Eigen::Vector3d::Zero();
      Eigen::Matrix3d m = Eigen::Matrix3d::Zero();
      for (const P3 &p : points) {
        const Eigen::Vector3d v(p.x, p.y, p.z);
        s += v;
        m += v * v.transpose();
      }
      const double n = static_cast<double>(points.size());
      const Eigen::Vector3d c = s / n;
      m -= n * c * c.transpose();
      Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(m);
      normal = solver.eigenvectors().col(0);
      const double d = -c.dot(normal);
      double sq = 0.0;
      for (const P3 &p : points) {
        const double v = normal.x() * p.x + normal.y() * p.y + normal.z() * p.z + d;
        sq += v * v;
      }
      benchmark::DoNotOptimize(sq);
    });
    agreement = std::abs(normal.x() * plane.A() + normal.y() * plane.B() + normal.z() * plane.C());
    state.ResumeTiming();
#endif
  }
  const double points_done = static_cast<double>(points.size()) * static_cast<double>(state.iterations());
  state.SetItemsProcessed(static_cast<int64_t>(points_done));
  state.counters["ours_points_per_s"] = points_done / oursSeconds;
#if KORMATH_HAVE_EIGEN
  state.counters["eigen_points_per_s"] = points_done / peerSeconds;
  state.counters["ratio_ours_over_eigen"] = oursSeconds / peerSeconds;
  state.counters["normal_agreement"] = agreement;
#else
  state.SetLabel("Eigen not found: comparison skipped");
#endif
}
BENCHMARK(BM_LeastSquarePlane_Calculate)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
