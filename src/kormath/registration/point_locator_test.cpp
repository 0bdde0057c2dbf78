#include <kormath/registration/point_locator.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr std::uint64_t kAllOnes = ~static_cast<std::uint64_t>(0);
constexpr double kMaxDouble = 1.7976931348623157e308;
using Points = std::vector<MMPoint3d<double>>;

struct Brute {
  std::uint64_t index = kAllOnes;
  double d2 = 0.0;
};

// The oracle: a plain scan with the locator's acceptance rule (strictly below
// r * r, or anything for the unbounded radius); ties go to the lowest index.
Brute BruteForce(Points const &points, MMPoint3d<double> const &q, double r) {
  Brute b;
  b.d2 = r == kMaxDouble ? kMaxDouble : r * r;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double dx = points[i].x - q.x, dy = points[i].y - q.y, dz = points[i].z - q.z;
    const double d2 = dx * dx + dy * dy + dz * dz;
    if (b.d2 > d2) {
      b.d2 = d2;
      b.index = i;
    }
  }
  return b;
}

// Checks one query against the oracle: same success, same (exact) distance,
// and the reported point is the input point of that index.
void CheckQuery(MKDTreePointLocator const &loc, Points const &points, MMPoint3d<double> const &q, double r) {
  MClosestPointInfo info;
  info.SetInputPoint(q);
  info.SetResidue(r);
  const bool found = r == kMaxDouble ? loc.FindClosestPoint(info) : loc.FindClosestPointWithinRadius(info);
  const Brute b = BruteForce(points, q, r);
  ASSERT_EQ(found, b.index != kAllOnes) << "radius " << r;
  if (!found) {
    EXPECT_EQ(info.GetOutputIndex(), kAllOnes);
    EXPECT_EQ(info.GetResidue(), r);  // untouched
    EXPECT_EQ(info.GetOutputPoint(), MMPoint3d<double>(-1, -1, -1));
    return;
  }
  EXPECT_EQ(info.GetResidue(), std::sqrt(b.d2));
  ASSERT_LT(info.GetOutputIndex(), points.size());
  EXPECT_EQ(info.GetOutputPoint(), points[info.GetOutputIndex()]);
  const MMPoint3d<double> d = points[info.GetOutputIndex()] - q;
  EXPECT_EQ(d.x * d.x + d.y * d.y + d.z * d.z, b.d2);
}

void CollectIndices(MKDTreeNode const *node, std::vector<std::uint64_t> &out) {
  if (node == nullptr) return;
  out.insert(out.end(), node->indices.begin(), node->indices.end());
  CollectIndices(node->left, out);
  CollectIndices(node->right, out);
}

double Coord(MMPoint3d<double> const &p, int a) { return p[static_cast<std::size_t>(a)]; }

// Recomputes every node with a full sort and the written rules (axis of
// largest extent, lowest axis on ties; split position with the preference
// for the lower edge of a run; mean split value) and compares. Leaves must
// list their points in the order of the parent's axis.
void CheckTreeShape(MKDTreeNode const *node, Points const &points, int parentAxis, std::size_t &leafPoints) {
  std::vector<std::uint64_t> idx;
  CollectIndices(node, idx);
  const std::size_t m = idx.size();
  if (node->left == nullptr && node->right == nullptr) {
    EXPECT_EQ(node->splitAxis, 999);
    EXPECT_EQ(node->splitValue, 0.0);
    leafPoints += m;
    if (parentAxis >= 0) {
      for (std::size_t i = 1; i < m; ++i)
        EXPECT_LE(Coord(points[idx[i - 1]], parentAxis), Coord(points[idx[i]], parentAxis));
    }
    if (m > 10) {  // only coincident points may exceed the capacity
      for (auto i : idx) EXPECT_EQ(points[i], points[idx[0]]);
    }
    return;
  }
  ASSERT_GT(m, 10u);
  double ext[3];
  for (int a = 0; a < 3; ++a) {
    double lo = kMaxDouble, hi = -kMaxDouble;
    for (auto i : idx) {
      lo = std::min(lo, Coord(points[i], a));
      hi = std::max(hi, Coord(points[i], a));
    }
    ext[a] = hi - lo;
  }
  int axis = 0;
  for (int a = 1; a < 3; ++a)
    if (ext[a] > ext[axis]) axis = a;
  ASSERT_EQ(node->splitAxis, axis);
  std::vector<double> c;
  for (auto i : idx) c.push_back(Coord(points[i], axis));
  std::sort(c.begin(), c.end());
  const std::size_t med = (m + 1) / 2;
  std::size_t k = med;
  if (c[med] == c[med - 1]) {
    const auto first = std::lower_bound(c.begin(), c.end(), c[med]);
    const auto last = std::upper_bound(c.begin(), c.end(), c[med]);
    k = first != c.begin() ? static_cast<std::size_t>(first - c.begin()) : static_cast<std::size_t>(last - c.begin());
  }
  EXPECT_EQ(node->splitValue, (c[k - 1] + c[k]) * 0.5);
  std::vector<std::uint64_t> left;
  CollectIndices(node->left, left);
  EXPECT_EQ(left.size(), k);
  for (auto i : left) EXPECT_LE(Coord(points[i], axis), c[k - 1]);
  CheckTreeShape(node->left, points, axis, leafPoints);
  CheckTreeShape(node->right, points, axis, leafPoints);
}

Points RandomPoints(std::mt19937_64 &rng, std::size_t n, bool grid) {
  std::uniform_real_distribution<double> u(-10.0, 10.0);
  std::uniform_int_distribution<int> g(-3, 3);
  Points p;
  for (std::size_t i = 0; i < n; ++i) {
    if (grid) {
      p.emplace_back(g(rng), g(rng), g(rng) * 0.5);
    } else {
      p.emplace_back(u(rng), u(rng), u(rng));
    }
  }
  return p;
}

TEST(KDTreePointLocator, AgainstBruteForce) {
  const unsigned seed = 61001;
  SCOPED_TRACE(seed);
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> uq(-12.0, 12.0);
  for (std::size_t n : {1u, 2u, 10u, 11u, 12u, 57u, 400u, 2000u}) {
    for (bool grid : {false, true}) {  // grid: duplicates and points on splitting planes
      SCOPED_TRACE(testing::Message() << "n=" << n << " grid=" << grid);
      const Points points = RandomPoints(rng, n, grid);
      MKDTreePointLocator loc;
      loc.BuildLocator(points);
      std::size_t leafPoints = 0;
      CheckTreeShape(loc.GetRoot(), points, -1, leafPoints);
      EXPECT_EQ(leafPoints, n);
      for (int k = 0; k < 60; ++k) {
        MMPoint3d<double> q(uq(rng), uq(rng), uq(rng));
        if (grid && k % 2 == 0) q = MMPoint3d<double>(std::round(q.x) * 0.5, std::round(q.y), std::round(q.z) * 0.25);
        if (k % 7 == 0) q = points[rng() % n];  // distance 0
        CheckQuery(loc, points, q, kMaxDouble);
        const double d = std::sqrt(BruteForce(points, q, kMaxDouble).d2);
        for (double r : {d, std::nextafter(d, 0.0), std::nextafter(d, kMaxDouble), 0.5 * d, 1.5 * d + 0.1, 0.0}) {
          CheckQuery(loc, points, q, r);
        }
      }
    }
  }
}

TEST(KDTreePointLocator, EmptyTinyAndRebuild) {
  MKDTreePointLocator loc;
  EXPECT_EQ(loc.GetLeafCapacity(), 10u);
  loc.BuildLocator(Points());
  ASSERT_NE(loc.GetRoot(), nullptr);
  EXPECT_TRUE(loc.GetRoot()->indices.empty());
  MClosestPointInfo info;
  info.SetInputPoint(MMPoint3d<double>(1, 2, 3));
  EXPECT_FALSE(loc.FindClosestPoint(info));
  EXPECT_EQ(info.GetOutputIndex(), kAllOnes);
  EXPECT_EQ(info.GetOutputPoint(), MMPoint3d<double>(-1, -1, -1));

  // At most 10 points: one leaf, scanned in input order; the first of two
  // equally near points wins whatever its index.
  const Points two = {MMPoint3d<double>(1, 0, 0), MMPoint3d<double>(-1, 0, 0)};
  loc.BuildLocator(two);
  EXPECT_EQ(loc.GetRoot()->indices, (std::vector<std::uint64_t>{0, 1}));
  info.SetInputPoint(MMPoint3d<double>(0, 0, 0));
  EXPECT_TRUE(loc.FindClosestPoint(info));
  EXPECT_EQ(info.GetOutputIndex(), 0u);
  EXPECT_EQ(info.GetResidue(), 1.0);
  // A point at exactly the radius is rejected; so is everything for radius 0.
  info.SetDefaultsOutput();
  info.SetResidue(1.0);
  EXPECT_FALSE(loc.FindClosestPointWithinRadius(info));
  EXPECT_EQ(info.GetResidue(), 1.0);
  info.SetInputPoint(MMPoint3d<double>(1, 0, 0));
  info.SetResidue(0.0);
  EXPECT_FALSE(loc.FindClosestPointWithinRadius(info));

  // Rebuilding with an equal count needs SetDefaults first.
  loc.SetDefaults();
  EXPECT_EQ(loc.GetRoot(), nullptr);
  EXPECT_EQ(loc.GetRecordCount(), 0u);
  const Points swapped = {MMPoint3d<double>(-1, 0, 0), MMPoint3d<double>(1, 0, 0)};
  loc.BuildLocator(swapped);
  info.SetInputPoint(MMPoint3d<double>(0, 0, 0));
  EXPECT_TRUE(loc.FindClosestPoint(info));
  EXPECT_EQ(info.GetOutputPoint(), MMPoint3d<double>(-1, 0, 0));
}

TEST(KDTreePointLocator, TreeShapes) {
  auto line = [](std::vector<double> const &xs) {
    Points p;
    for (double x : xs) p.emplace_back(x, 0.0, 0.0);
    return p;
  };
  struct Case {
    std::vector<double> xs;
    std::size_t left;
    double split;
  };
  const std::vector<Case> cases = {
      {{10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0}, 6, 5.5},  // med = 6: left 6, right 5
      {{0, 1, 2, 3, 3, 3, 3, 3, 3, 10, 11}, 3, 2.5},  // lower edge of the run wins though the upper is nearer
      {{3, 3, 3, 3, 3, 3, 3, 3, 4, 5, 6}, 8, 3.5},    // run reaching the front: its upper edge
  };
  for (auto const &c : cases) {
    MKDTreePointLocator loc;
    const Points pts = line(c.xs);
    loc.BuildLocator(pts);
    MKDTreeNode const *root = loc.GetRoot();
    ASSERT_NE(root->left, nullptr);
    EXPECT_EQ(root->splitAxis, 0);
    EXPECT_EQ(root->splitValue, c.split);
    EXPECT_EQ(root->left->indices.size(), c.left);
    EXPECT_EQ(root->right->indices.size(), c.xs.size() - c.left);
  }

  // Eleven identical points: a single over-full leaf; the query returns index 0.
  MKDTreePointLocator same;
  const Points eleven(11, MMPoint3d<double>(2, 2, 2));
  same.BuildLocator(eleven);
  EXPECT_EQ(same.GetRoot()->left, nullptr);
  EXPECT_EQ(same.GetRoot()->indices.size(), 11u);
  MClosestPointInfo info;
  info.SetInputPoint(MMPoint3d<double>(0, 0, 0));
  EXPECT_TRUE(same.FindClosestPoint(info));
  EXPECT_EQ(info.GetOutputIndex(), 0u);

  // A query exactly on the plane x = 5.5 searches the right side first:
  // x = 6 (index 4 here) wins over the equally near x = 5.
  MKDTreePointLocator plane;
  const Points pts = line({0, 1, 2, 3, 6, 5, 4, 7, 8, 9, 10});
  plane.BuildLocator(pts);
  ASSERT_EQ(plane.GetRoot()->splitValue, 5.5);
  info.SetInputPoint(MMPoint3d<double>(5.5, 0, 0));
  EXPECT_TRUE(plane.FindClosestPoint(info));
  EXPECT_EQ(info.GetOutputIndex(), 4u);
  EXPECT_EQ(info.GetResidue(), 0.5);
}

}  // namespace
