#include <kormath/registration/point_locator.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr std::uint64_t kAllOnes = ~static_cast<std::uint64_t>(0);
constexpr double kMaxDouble = 1.7976931348623157e308;
using P = MMPoint3d<double>;
using Points = std::vector<P>;

double Dist2(P const &a, P const &b) { return (a - b).Dot(a - b); }
double Coord(P const &p, int a) { return p[static_cast<std::size_t>(a)]; }

// The oracle: a plain scan with the locator's acceptance rule (strictly below r * r, anything for the unbounded
// radius). Returns the lowest index of the nearest points (all-ones if none) and the squared distance.
std::pair<std::uint64_t, double> BruteForce(Points const &points, P const &q, double r) {
  std::pair<std::uint64_t, double> b(kAllOnes, r == kMaxDouble ? kMaxDouble : r * r);
  for (std::size_t i = 0; i < points.size(); ++i)
    if (Dist2(points[i], q) < b.second) b = {i, Dist2(points[i], q)};
  return b;
}

// One query with radius r; the unbounded radius goes through FindClosestPoint.
bool Query(MKDTreePointLocator const &loc, MClosestPointInfo &info, P const &q, double r) {
  info.SetDefaultsOutput();
  info.SetInputPoint(q);
  info.SetResidue(r);
  return r == kMaxDouble ? loc.FindClosestPoint(info) : loc.FindClosestPointWithinRadius(info);
}

// Same success and exact distance as the oracle; on failure the index is cleared and the rest left as it was.
// A set of at most 10 points is one leaf scanned in input order, so there the first of equally near points wins.
void CheckQuery(MKDTreePointLocator const &loc, Points const &points, P const &q, double r) {
  MClosestPointInfo info;
  const bool found = Query(loc, info, q, r);
  const auto b = BruteForce(points, q, r);
  const std::uint64_t k = info.GetOutputIndex();
  ASSERT_EQ(found, b.first != kAllOnes) << "radius " << r;
  ASSERT_TRUE(found ? k < points.size() : k == kAllOnes) << k;
  EXPECT_TRUE(points.size() > 10 || k == b.first) << k;
  EXPECT_EQ(info.GetResidue(), found ? std::sqrt(b.second) : r);
  EXPECT_EQ(info.GetOutputPoint(), found ? points[k] : P(-1, -1, -1));
  EXPECT_EQ(Dist2(info.GetOutputPoint(), q), found ? b.second : Dist2(P(-1, -1, -1), q));
}

void CollectIndices(MKDTreeNode const *node, std::vector<std::uint64_t> &out) {
  if (node == nullptr) return;
  out.insert(out.end(), node->indices.begin(), node->indices.end());
  CollectIndices(node->left, out);
  CollectIndices(node->right, out);
}

// Recomputes every node with a full sort and the documented rules (axis of largest extent, lowest on ties; split
// position moved to the lower edge of a run; mean split value) and compares with the selection-based build.
// Leaves list their points in the order of the parent's axis; only coincident points may overfill one.
void CheckTreeShape(MKDTreeNode const *node, Points const &points, int parentAxis, std::size_t &leafPoints) {
  std::vector<std::uint64_t> idx;
  CollectIndices(node, idx);
  const std::size_t m = idx.size();
  if (node->left == nullptr && node->right == nullptr) {
    leafPoints += m;
    for (std::size_t i = 1; parentAxis >= 0 && i < m; ++i)
      EXPECT_LE(Coord(points[idx[i - 1]], parentAxis), Coord(points[idx[i]], parentAxis));
    for (std::size_t i = 1; m > 10 && i < m; ++i) EXPECT_EQ(points[idx[i]], points[idx[0]]);
    return;
  }
  ASSERT_GT(m, 10u);
  std::vector<double> c[3];
  for (int a = 0; a < 3; ++a) {
    for (auto i : idx) c[a].push_back(Coord(points[i], a));
    std::sort(c[a].begin(), c[a].end());
  }
  auto ext = [&c](int a) { return c[a].back() - c[a].front(); };
  const int axis = ext(1) > ext(0) ? (ext(2) > ext(1) ? 2 : 1) : (ext(2) > ext(0) ? 2 : 0);
  ASSERT_EQ(node->splitAxis, axis);
  std::vector<double> const &s = c[axis];
  std::size_t k = (m + 1) / 2;
  if (s[k] == s[k - 1]) {
    const auto first = std::lower_bound(s.begin(), s.end(), s[k]);
    k = static_cast<std::size_t>((first != s.begin() ? first : std::upper_bound(s.begin(), s.end(), s[k])) - s.begin());
  }
  EXPECT_EQ(node->splitValue, (s[k - 1] + s[k]) * 0.5);
  std::vector<std::uint64_t> left;
  CollectIndices(node->left, left);
  EXPECT_EQ(left.size(), k);
  for (auto i : left) EXPECT_LE(Coord(points[i], axis), s[k - 1]);
  CheckTreeShape(node->left, points, axis, leafPoints);
  CheckTreeShape(node->right, points, axis, leafPoints);
}

// Sizes from empty through one leaf to deep trees. One locator serves all: a new count rebuilds directly, an equal
// count (the grid set after the uniform one) only after SetDefaults.
TEST(KDTreePointLocator, AgainstBruteForce) {
  std::mt19937_64 rng(61001);
  std::uniform_real_distribution<double> u(-10.0, 10.0), uq(-12.0, 12.0);
  std::uniform_int_distribution<int> g(-3, 3);
  MKDTreePointLocator loc;
  for (std::size_t n : {0u, 1u, 2u, 3u, 10u, 11u, 12u, 57u, 400u, 2000u}) {
    for (bool grid : {false, true}) {  // grid: duplicates and points on splitting planes
      SCOPED_TRACE(testing::Message() << "seed 61001 n=" << n << " grid=" << grid);
      Points points;
      for (std::size_t i = 0; i < n; ++i)
        points.push_back(grid ? P(g(rng), g(rng), g(rng) * 0.5) : P(u(rng), u(rng), u(rng)));
      if (grid) loc.SetDefaults();
      EXPECT_TRUE(!grid || (loc.GetRoot() == nullptr && loc.GetRecordCount() == 0u));
      loc.BuildLocator(points);
      std::size_t leafPoints = 0;
      ASSERT_NE(loc.GetRoot(), nullptr);
      CheckTreeShape(loc.GetRoot(), points, -1, leafPoints);
      EXPECT_EQ(leafPoints, n);
      for (int k = 0; k < 60; ++k) {
        P q(uq(rng), uq(rng), uq(rng));
        if (grid && k % 2 == 0) q = P(std::round(q.x) * 0.5, std::round(q.y), std::round(q.z) * 0.25);
        if (k % 7 == 0 && n > 0) q = points[rng() % n];  // distance 0
        CheckQuery(loc, points, q, kMaxDouble);
        const double d = std::sqrt(BruteForce(points, q, kMaxDouble).second);
        for (double r : {d, std::nextafter(d, 0.0), std::nextafter(d, kMaxDouble), 0.5 * d, 1.5 * d + 0.1, 0.0})
          CheckQuery(loc, points, q, r);
      }
    }
  }
}

TEST(KDTreePointLocator, TreeShapes) {
  const std::tuple<std::vector<double>, std::size_t, double> cases[] = {
      {{10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0}, 6, 5.5},   // med = 6: left 6, right 5
      {{0, 1, 2, 3, 3, 3, 3, 3, 3, 10, 11}, 3, 2.5},  // lower edge of the run wins though the upper is nearer
      {{3, 3, 3, 3, 3, 3, 3, 3, 4, 5, 6}, 8, 3.5},    // run reaching the front: its upper edge
  };
  MClosestPointInfo info;
  for (auto const &[xs, left, split] : cases) {
    Points pts;
    for (double x : xs) pts.emplace_back(x, 0.0, 0.0);
    MKDTreePointLocator loc;
    loc.BuildLocator(pts);
    ASSERT_NE(loc.GetRoot()->left, nullptr);
    EXPECT_EQ(loc.GetRoot()->splitValue, split);
    EXPECT_EQ(loc.GetRoot()->left->indices.size(), left);
    // A query on the plane has equally near points on both sides; the right side is searched first and wins
    // (in the first case x = 6 at index 4, where a left-first search would return x = 5 at index 5).
    EXPECT_TRUE(Query(loc, info, P(split, 0, 0), kMaxDouble));
    EXPECT_EQ(info.GetResidue(), 0.5);
    EXPECT_GT(info.GetOutputPoint().x, split);
  }

  // Eleven identical points: a single over-full leaf; the query returns index 0.
  MKDTreePointLocator same;
  same.BuildLocator(Points(11, P(2, 2, 2)));
  EXPECT_TRUE(same.GetRoot()->left == nullptr && same.GetRoot()->indices.size() == 11u);
  EXPECT_TRUE(Query(same, info, P(0, 0, 0), kMaxDouble));
  EXPECT_EQ(info.GetOutputIndex(), 0u);
}

}  // namespace
