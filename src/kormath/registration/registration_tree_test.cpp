#include <kormath/registration/registration_tree.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr std::uint64_t kAllOnes = ~static_cast<std::uint64_t>(0);

MRegistrationCostInfo Cost(std::uint64_t outliers, double error) {
  MRegistrationCostInfo c;
  c.SetInfo(outliers, 100, error);
  return c;
}

MMTransformMatrix Shift(double x, double y, double z) {
  MMTransformMatrix m;
  m.MakeTranslation(MMPoint3d<double>(x, y, z));
  return m;
}

// Symmetric cost table with the given finite edges; all others stay infinite.
MDataArray2D<MRegistrationCostInfo> Table(std::uint64_t n,
                                          std::vector<std::pair<std::pair<int, int>, MRegistrationCostInfo>> const &edges) {
  MDataArray2D<MRegistrationCostInfo> t(n);
  for (auto const &e : edges) {
    t(static_cast<std::uint64_t>(e.first.first), static_cast<std::uint64_t>(e.first.second)) = e.second;
    t(static_cast<std::uint64_t>(e.first.second), static_cast<std::uint64_t>(e.first.first)) = e.second;
  }
  return t;
}

TEST(RegistrationTree, SmallCases) {
  MRegistered3DPointsTree tree;
  MDataArray2D<MMTransformMatrix> transforms(1);
  std::vector<MMTransformMatrix> wcs(1);
  EXPECT_FALSE(tree.Build(MDataArray2D<MRegistrationCostInfo>(1), transforms, wcs, 0));
  EXPECT_TRUE(tree.GetNodes().empty());

  // Two sets with only infinite cost: true, no root, and evaluation throws.
  transforms.Resize(2);
  wcs.assign(2, MMTransformMatrix());
  MRegistered3DPointsTree none;
  EXPECT_TRUE(none.Build(MDataArray2D<MRegistrationCostInfo>(2), transforms, wcs, 0));
  EXPECT_EQ(none.GetRoot(), kAllOnes);
  EXPECT_EQ(none.GetNode(1).index, kAllOnes);
  EXPECT_THROW(none.UpdateWcsTransforms(), std::out_of_range);

  // Two sets: the child's wcs is wcs(root) * transforms(child, root).
  transforms(1, 0) = Shift(1, 2, 3);
  transforms(0, 1) = Shift(100, 100, 100);  // not read
  wcs[0] = Shift(10, 0, 0);
  wcs[1] = Shift(55, 55, 55);  // replaced by the evaluation
  MRegistered3DPointsTree two;
  ASSERT_TRUE(two.Build(Table(2, {{{0, 1}, Cost(1, 1.0)}}), transforms, wcs, 0));
  EXPECT_EQ(two.GetRoot(), 0u);
  EXPECT_EQ(two.GetNode(0).children, std::list<std::uint64_t>{1});
  EXPECT_EQ(two.GetNode(1).cost, Cost(1, 1.0));
  two.UpdateWcsTransforms();
  MMPoint3d<double> t;
  two.GetNode(1).wcsTransform.GetTranslation(t);
  EXPECT_EQ(t, MMPoint3d<double>(11, 2, 3));
  two.GetNode(0).wcsTransform.GetTranslation(t);
  EXPECT_EQ(t, MMPoint3d<double>(10, 0, 0));
  EXPECT_EQ(two.GetParent(1), 0u);
}

TEST(RegistrationTree, ChainTiesAndOrder) {
  // 0 - 1 - 2 chain; set 2 reachable only through set 1. Rotations make the
  // order of the product visible: wcs(2) = wcs(0) * rel(1,0) * rel(2,1).
  MDataArray2D<MMTransformMatrix> rel(3);
  rel(1, 0).MakeRotationZYX(0, 0, 90);
  rel(2, 1) = Shift(1, 0, 0);
  std::vector<MMTransformMatrix> wcs(3);
  wcs[0] = Shift(0, 0, 5);
  MRegistered3DPointsTree chain;
  ASSERT_TRUE(chain.Build(Table(3, {{{0, 1}, Cost(0, 9.0)}, {{1, 2}, Cost(0, 9.0)}}), rel, wcs, 0));
  chain.UpdateWcsTransforms();
  MMPoint3d<double> p;
  chain.GetNode(2).wcsTransform.Transform(p, MMPoint3d<double>(0, 0, 0));
  // rel(2,1) moves the origin to (1,0,0), the quarter turn to (0,1,0), wcs(0) adds z 5.
  EXPECT_NEAR(p.x, 0.0, 1e-15);  // cos(90 degrees) is off zero by ~6e-17
  EXPECT_NEAR(p.y, 1.0, 1e-15);
  EXPECT_EQ(p.z, 5.0);

  // Equal costs: the lower placed index first, then the lower outside index.
  // From root 0 the first edge goes to 1 (0-1 and 0-2 tie), then from 0 to 2
  // (0-2 and 1-2 tie, placed index 0 < 1).
  MRegistered3DPointsTree ties;
  ASSERT_TRUE(ties.Build(Table(3, {{{0, 1}, Cost(2, 1.0)}, {{0, 2}, Cost(2, 1.0)}, {{1, 2}, Cost(2, 1.0)}}), rel, wcs, 0));
  EXPECT_EQ(ties.GetNode(0).children, (std::list<std::uint64_t>{1, 2}));

  // Fewer outliers beat a smaller error.
  MRegistered3DPointsTree outl;
  ASSERT_TRUE(outl.Build(Table(3, {{{0, 1}, Cost(1, 100.0)}, {{0, 2}, Cost(2, 0.5)}, {{1, 2}, Cost(1, 50.0)}}), rel, wcs, 0));
  EXPECT_EQ(outl.GetNode(0).children, std::list<std::uint64_t>{1});
  EXPECT_EQ(outl.GetNode(1).children, std::list<std::uint64_t>{2});

  // Root 2 of 3: the discarded search from set 0 leaves no trace.
  MRegistered3DPointsTree root2;
  ASSERT_TRUE(root2.Build(Table(3, {{{0, 1}, Cost(0, 1.0)}, {{1, 2}, Cost(0, 2.0)}}), rel, wcs, 2));
  EXPECT_EQ(root2.GetRoot(), 2u);
  EXPECT_EQ(root2.GetNode(2).children, std::list<std::uint64_t>{1});
  EXPECT_EQ(root2.GetNode(1).children, std::list<std::uint64_t>{0});
  EXPECT_TRUE(root2.GetNode(2).cost.GetInfiniteCost());

  // An edge with all-ones outliers but a finite error is usable.
  MRegistered3DPointsTree weak;
  ASSERT_TRUE(weak.Build(Table(2, {{{0, 1}, Cost(kAllOnes, 3.0)}}), rel, wcs, 1));
  EXPECT_EQ(weak.GetNode(1).children, std::list<std::uint64_t>{0});
}

// Oracle: Kruskal with a union-find over the root's component. All minimum
// spanning trees of a graph share the same sorted sequence of edge weights,
// so that sequence must match whatever the tie rules pick.
TEST(RegistrationTree, PrimAgainstKruskalOnRandomTables) {
  const unsigned seed = 66001;
  SCOPED_TRACE(seed);
  std::mt19937_64 rng(seed);
  for (int trial = 0; trial < 60; ++trial) {
    const std::uint64_t n = 2 + rng() % 9;
    const std::uint64_t root = rng() % n;
    std::vector<std::pair<std::pair<int, int>, MRegistrationCostInfo>> edges;
    for (int i = 0; i < static_cast<int>(n); ++i)
      for (int j = i + 1; j < static_cast<int>(n); ++j)
        if (rng() % 4 != 0)  // about a quarter of the edges forbidden
          edges.push_back({{i, j}, Cost(rng() % 3, static_cast<double>(rng() % 4))});
    MDataArray2D<MMTransformMatrix> rel(n);
    std::vector<MMTransformMatrix> wcs(n);
    MRegistered3DPointsTree tree;
    ASSERT_TRUE(tree.Build(Table(n, edges), rel, wcs, root));

    std::vector<std::uint64_t> parent(n);
    std::iota(parent.begin(), parent.end(), 0);
    auto find = [&parent](std::uint64_t x) {
      while (parent[x] != x) x = parent[x] = parent[parent[x]];
      return x;
    };
    auto sorted = edges;
    std::stable_sort(sorted.begin(), sorted.end(), [](auto const &a, auto const &b) { return a.second < b.second; });
    std::vector<std::pair<std::pair<int, int>, MRegistrationCostInfo>> forest;
    for (auto const &e : sorted) {
      const auto a = find(static_cast<std::uint64_t>(e.first.first));
      const auto b = find(static_cast<std::uint64_t>(e.first.second));
      if (a != b) {
        parent[a] = b;
        forest.push_back(e);
      }
    }
    std::vector<MRegistrationCostInfo> expected;
    for (auto const &e : forest)
      if (find(static_cast<std::uint64_t>(e.first.first)) == find(root)) expected.push_back(e.second);

    std::vector<MRegistrationCostInfo> got;
    std::size_t reached = 0;
    for (std::uint64_t i = 0; i < n; ++i) {
      auto const &node = tree.GetNode(i);
      if (node.index != kAllOnes) ++reached;
      if (i != root && node.index != kAllOnes) got.push_back(node.cost);
      if (node.index == kAllOnes) { EXPECT_TRUE(node.cost.GetInfiniteCost()); }
    }
    if (expected.empty()) {
      EXPECT_EQ(tree.GetRoot(), kAllOnes);
      EXPECT_EQ(reached, 0u);
      continue;
    }
    EXPECT_EQ(tree.GetRoot(), root);
    EXPECT_EQ(reached, expected.size() + 1);
    auto less = [](MRegistrationCostInfo const &a, MRegistrationCostInfo const &b) { return a < b; };
    std::sort(got.begin(), got.end(), less);
    std::sort(expected.begin(), expected.end(), less);
    ASSERT_EQ(got.size(), expected.size());
    for (std::size_t k = 0; k < got.size(); ++k) EXPECT_TRUE(got[k] == expected[k]) << "edge " << k;
  }
}

}  // namespace
