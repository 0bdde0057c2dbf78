#include <kormath/registration/registration_tree.h>

#include <cstdint>
#include <list>
#include <random>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr std::uint64_t kAllOnes = ~static_cast<std::uint64_t>(0);
using Costs = MDataArray2D<MRegistrationCostInfo>;

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

TEST(RegistrationTree, SmallCasesAndTransformOrder) {
  MRegistered3DPointsTree tree, none, chain;
  EXPECT_FALSE(tree.Build(Costs(1), MDataArray2D<MMTransformMatrix>(1), std::vector<MMTransformMatrix>(1), 0));
  EXPECT_TRUE(tree.GetNodes().empty());
  // Only infinite costs: true, no root, and evaluation throws.
  MDataArray2D<MMTransformMatrix> rel(3);
  std::vector<MMTransformMatrix> wcs(3);
  EXPECT_TRUE(none.Build(Costs(3), rel, wcs, 0));
  EXPECT_TRUE(none.GetRoot() == kAllOnes && none.GetNode(1).index == kAllOnes);
  EXPECT_THROW(none.UpdateWcsTransforms(), std::out_of_range);

  // Chain 0 - 1 - 2 from root 0; a rotation makes the order visible: wcs(2) = wcs(0) * rel(1,0) * rel(2,1).
  rel(1, 0).MakeRotationZYX(0, 0, 90);
  rel(2, 1) = Shift(1, 0, 0);
  rel(0, 1) = rel(1, 2) = Shift(100, 100, 100);  // not read
  wcs[0] = Shift(0, 0, 5);
  wcs[2] = Shift(55, 55, 55);  // replaced by the evaluation
  Costs costs(3);
  costs(0, 1) = costs(1, 0) = costs(1, 2) = costs(2, 1) = Cost(1, 1.0);
  ASSERT_TRUE(chain.Build(costs, rel, wcs, 0));
  chain.UpdateWcsTransforms();
  MMPoint3d<double> p;
  chain.GetNode(2).wcsTransform.Transform(p, MMPoint3d<double>(0, 0, 0));
  // rel(2,1) moves the origin to (1,0,0), the quarter turn to (0,1,0), wcs(0) adds z 5.
  EXPECT_NEAR(p.x, 0.0, 1e-15);  // cos(90 degrees) is off zero by ~6e-17
  EXPECT_NEAR(p.y, 1.0, 1e-15);
  EXPECT_EQ(p.z, 5.0);
  chain.GetNode(0).wcsTransform.GetTranslation(p);
  EXPECT_EQ(p, MMPoint3d<double>(0, 0, 5));  // the root keeps its own
}

// Oracle on random tables with frequent ties: a plain Prim with the documented rules (strictly smallest finite cost
// at row placed i, column unplaced j; ties to the smallest i, then the smallest j) gives every parent and the
// attachment order. On symmetric tables this is an independent minimum spanning tree.
TEST(RegistrationTree, PrimAgainstOracleOnRandomTables) {
  std::mt19937_64 rng(66001);
  for (int trial = 0; trial < 60; ++trial) {
    SCOPED_TRACE(testing::Message() << "seed 66001 trial " << trial);
    const std::uint64_t n = 2 + rng() % 9, root = rng() % n;
    auto randomCost = [&rng]() {  // about a quarter forbidden; all-ones outliers with a finite error stay usable
      const std::uint64_t outliers = rng() % 6 == 0 ? kAllOnes : rng() % 3;
      return rng() % 4 == 0 ? MRegistrationCostInfo() : Cost(outliers, static_cast<double>(rng() % 4));
    };
    Costs costs(n);
    for (std::uint64_t i = 0; i < n; ++i) {
      for (std::uint64_t j = i + 1; j < n; ++j) {
        costs(i, j) = costs(j, i) = randomCost();
        if (trial % 2 == 1) costs(j, i) = randomCost();  // odd trials: asymmetric tables
      }
    }
    MRegistered3DPointsTree tree;
    ASSERT_TRUE(tree.Build(costs, MDataArray2D<MMTransformMatrix>(n), std::vector<MMTransformMatrix>(n), root));

    std::vector<std::uint64_t> parent(n, kAllOnes);
    std::vector<std::list<std::uint64_t>> children(n);
    auto placed = [&](std::uint64_t k) { return k == root || parent[k] != kAllOnes; };
    for (std::uint64_t step = 1; step < n; ++step) {
      std::uint64_t bi = kAllOnes, bj = kAllOnes;
      for (std::uint64_t i = 0; i < n; ++i)
        for (std::uint64_t j = 0; j < n; ++j)
          if (placed(i) && !placed(j) && !costs(i, j).GetInfiniteCost() &&
              (bi == kAllOnes || costs(i, j) < costs(bi, bj)))
            bi = i, bj = j;
      if (bi == kAllOnes) break;
      parent[bj] = bi;
      children[bi].push_back(bj);
    }
    const bool alone = children[root].empty();
    EXPECT_EQ(tree.GetRoot(), alone ? kAllOnes : root);
    for (std::uint64_t k = 0; k < n; ++k) {
      auto const &node = tree.GetNode(k);
      EXPECT_EQ(node.index, placed(k) && !alone ? k : kAllOnes) << k;
      EXPECT_EQ(tree.GetParent(k), parent[k]) << k;
      EXPECT_EQ(node.children, children[k]) << k;
      // The edge cost is read from row child, column parent; the root and unreached nodes keep the infinite cost.
      EXPECT_TRUE(node.cost == (parent[k] == kAllOnes ? MRegistrationCostInfo() : costs(k, parent[k]))) << k;
    }
  }
}

}  // namespace
