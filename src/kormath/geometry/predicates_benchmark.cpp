// The exact orientation predicate and the exact triangle intersection test
// beside CGAL's exact-predicate kernel, on the same inputs in the same run:
// random, nearly coplanar (one ulp off) and exactly coplanar quadruples, and
// random integer triangles. Answers are compared; coplanar triangle pairs are
// left out of the comparison, since this library answers them true.

#include <kormath/geometry/orient3d.h>
#include <kormath/geometry/triangle.h>

#include "bench_timing.h"

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/intersections.h>
#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cmath>
#include <random>
#include <vector>

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using CgalPoint = Kernel::Point_3;
using Quad = std::array<std::array<double, 3>, 4>;

constexpr std::size_t kQuadruples = 1000000;
constexpr std::size_t kTrianglePairs = 200000;

std::array<double, 3> Random3(std::mt19937_64 &rng, double lo, double hi) {
  std::uniform_real_distribution<double> u(lo, hi);
  return {u(rng), u(rng), u(rng)};
}

// Family 0: uniform in a cube. Family 1: the fourth point built on the plane
// of the first three in double arithmetic, then every coordinate moved by one
// ulp up or down. Family 2: integer points with d = a + i (b - a) + j (c - a),
// exactly coplanar, around offsets up to 2^20.
std::vector<Quad> Quadruples(int family) {
  std::mt19937_64 rng(1000u + static_cast<unsigned>(family));
  std::vector<Quad> out(kQuadruples);
  std::uniform_int_distribution<int> small(-64, 64), coin(0, 1);
  std::uniform_real_distribution<double> w(-2.0, 2.0);
  for (auto &q : out) {
    if (family == 0) {
      for (auto &p : q) p = Random3(rng, -1.0, 1.0);
    } else if (family == 1) {
      for (int k = 0; k < 3; ++k) q[k] = Random3(rng, -100.0, 100.0);
      const double s = w(rng), t = w(rng);
      for (int a = 0; a < 3; ++a) {
        const double v = q[0][a] + s * (q[1][a] - q[0][a]) + t * (q[2][a] - q[0][a]);
        q[3][a] = std::nextafter(v, coin(rng) ? HUGE_VAL : -HUGE_VAL);
      }
    } else {
      const double offset = std::ldexp(static_cast<double>(small(rng)), 14);
      for (int k = 0; k < 3; ++k)
        for (int a = 0; a < 3; ++a) q[k][a] = offset + small(rng);
      const double i = small(rng), j = small(rng);
      for (int a = 0; a < 3; ++a) q[3][a] = q[0][a] + i * (q[1][a] - q[0][a]) + j * (q[2][a] - q[0][a]);
    }
  }
  return out;
}

int Sign(double v) { return (v > 0) - (v < 0); }

void OrientationFamily(benchmark::State &state, int family, const char *ours, const char *peer) {
  static std::vector<Quad> data[3];
  if (data[family].empty()) data[family] = Quadruples(family);
  const auto &quads = data[family];
  std::vector<CgalPoint> points;
  points.reserve(quads.size() * 4);
  for (const auto &q : quads)
    for (const auto &p : q) points.emplace_back(p[0], p[1], p[2]);
  std::vector<int> oursSign(quads.size()), peerSign(quads.size());
  kormath_bench::TimedLoop(state, ours, quads.size(), [&] {
    for (std::size_t i = 0; i < quads.size(); ++i) {
      const auto &q = quads[i];
      oursSign[i] = Sign(KorMathPredicates::orient3d(q[0].data(), q[1].data(), q[2].data(), q[3].data()));
    }
  });
  // The peer on the same points. CGAL's orientation(p, q, r, s) is the sign
  // of det[q - p, r - p, s - p], the opposite of orient3d's convention.
  const auto t0 = std::chrono::steady_clock::now();
  for (std::size_t i = 0; i < quads.size(); ++i) {
    const CgalPoint *p = &points[4 * i];
    peerSign[i] = -static_cast<int>(CGAL::orientation(p[0], p[1], p[2], p[3]));
  }
  const double peerSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  kormath_bench::SecondsPerItem()[peer] = peerSeconds / static_cast<double>(quads.size());
  std::size_t disagreements = 0, zeros = 0;
  for (std::size_t i = 0; i < quads.size(); ++i) {
    disagreements += oursSign[i] != peerSign[i];
    zeros += oursSign[i] == 0;
  }
  state.counters["ours_ns"] = 1e9 * kormath_bench::SecondsPerItem()[ours];
  state.counters["cgal_ns"] = 1e9 * kormath_bench::SecondsPerItem()[peer];
  state.counters["ratio_ours_over_cgal"] = kormath_bench::Ratio(ours, peer);
  state.counters["disagreements"] = static_cast<double>(disagreements);
  state.counters["coplanar_answers"] = static_cast<double>(zeros);
}

void BM_Orient3d_Random(benchmark::State &state) { OrientationFamily(state, 0, "o_random", "c_random"); }
void BM_Orient3d_NearlyCoplanar(benchmark::State &state) { OrientationFamily(state, 1, "o_near", "c_near"); }
void BM_Orient3d_ExactlyCoplanar(benchmark::State &state) { OrientationFamily(state, 2, "o_exact", "c_exact"); }
BENCHMARK(BM_Orient3d_Random)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Orient3d_NearlyCoplanar)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Orient3d_ExactlyCoplanar)->Iterations(1)->Unit(benchmark::kMillisecond);

struct TrianglePair {
  double a[3][3], b[3][3];
};

// Random triangles with integer corners in [-4, 4]: many touch at a corner
// or along an edge, and many are coplanar or degenerate.
std::vector<TrianglePair> IntegerTrianglePairs() {
  std::mt19937_64 rng(77u);
  std::uniform_int_distribution<int> c(-4, 4);
  std::vector<TrianglePair> out(kTrianglePairs);
  for (auto &t : out)
    for (int k = 0; k < 3; ++k)
      for (int a = 0; a < 3; ++a) {
        t.a[k][a] = c(rng);
        t.b[k][a] = c(rng);
      }
  return out;
}

Kernel::Triangle_3 ToCgal(const double (&t)[3][3]) {
  return Kernel::Triangle_3(CgalPoint(t[0][0], t[0][1], t[0][2]), CgalPoint(t[1][0], t[1][1], t[1][2]),
                            CgalPoint(t[2][0], t[2][1], t[2][2]));
}

void BM_TrianglesIntersect_IntegerCorners(benchmark::State &state) {
  static const auto pairs = IntegerTrianglePairs();
  // CGAL requires non-degenerate triangles; coplanar pairs are compared apart.
  std::vector<std::size_t> compared;
  std::size_t coplanar = 0;
  std::vector<Kernel::Triangle_3> ta, tb;
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    const auto a = ToCgal(pairs[i].a), b = ToCgal(pairs[i].b);
    if (a.is_degenerate() || b.is_degenerate()) continue;
    const auto &pa = a.vertex(0), &qa = a.vertex(1), &ra = a.vertex(2);
    if (CGAL::orientation(pa, qa, ra, b.vertex(0)) == CGAL::COPLANAR &&
        CGAL::orientation(pa, qa, ra, b.vertex(1)) == CGAL::COPLANAR &&
        CGAL::orientation(pa, qa, ra, b.vertex(2)) == CGAL::COPLANAR) {
      ++coplanar;
      continue;
    }
    compared.push_back(i);
    ta.push_back(a);
    tb.push_back(b);
  }
  std::vector<char> ours(compared.size()), peer(compared.size());
  std::vector<TrianglePair> work(compared.size());
  for (std::size_t k = 0; k < compared.size(); ++k) work[k] = pairs[compared[k]];
  kormath_bench::TimedLoop(state, "tri_ours", work.size(), [&] {
    for (std::size_t k = 0; k < work.size(); ++k) ours[k] = DoTrianglesIntersectRobust(work[k].a, work[k].b);
  });
  const auto t0 = std::chrono::steady_clock::now();
  for (std::size_t k = 0; k < ta.size(); ++k) peer[k] = CGAL::do_intersect(ta[k], tb[k]);
  const double peerSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  kormath_bench::SecondsPerItem()["tri_cgal"] = peerSeconds / static_cast<double>(ta.size());
  std::size_t disagreements = 0, hits = 0;
  for (std::size_t k = 0; k < ours.size(); ++k) {
    disagreements += ours[k] != peer[k];
    hits += ours[k] != 0;
  }
  state.counters["pairs_compared"] = static_cast<double>(compared.size());
  state.counters["coplanar_pairs_left_out"] = static_cast<double>(coplanar);
  state.counters["intersecting"] = static_cast<double>(hits);
  state.counters["disagreements"] = static_cast<double>(disagreements);
  state.counters["ours_ns"] = 1e9 * kormath_bench::SecondsPerItem()["tri_ours"];
  state.counters["cgal_ns"] = 1e9 * kormath_bench::SecondsPerItem()["tri_cgal"];
  state.counters["ratio_ours_over_cgal"] = kormath_bench::Ratio("tri_ours", "tri_cgal");
}
BENCHMARK(BM_TrianglesIntersect_IntegerCorners)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
