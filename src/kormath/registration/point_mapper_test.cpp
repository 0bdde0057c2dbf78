#include <kormath/registration/point_mapper.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using P = MMPoint3d<double>;
using Points = std::vector<P>;
using Seg = std::pair<P, P>;

MPointPairList Pairs(Points &a, Points &b) {
  MPointPairList list;
  for (std::size_t i = 0; i < a.size(); ++i) list.emplace_back(&a[i], &b[i]);
  return list;
}

// A random proper rotation and shift.
MMOrthoTransform RandomMotion(std::mt19937_64 &rng) {
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  MMOrthoTransform t;
  t.MakeRotation(P(u(rng), u(rng), u(rng)), P(u(rng), u(rng), u(rng)), 3.0 * u(rng), true);
  t.SetTranslation(P(50 * u(rng), 50 * u(rng), 50 * u(rng)));
  return t;
}

double MaxRotationDifference(MMOrthoTransform const &a, MMOrthoTransform const &b) {
  double m = 0.0;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) m = std::max(m, std::fabs(a.Rotation[i][j] - b.Rotation[i][j]));
  return m;
}

TEST(MapPointsAndSegments, RecoverRigidMotionsAlsoAfterScaling) {
  std::mt19937_64 rng(6301);
  std::uniform_real_distribution<double> u(-20.0, 20.0);
  MMapper3DPoints mapper;
  for (int trial = 0; trial < 40; ++trial) {
    SCOPED_TRACE(testing::Message() << "seed 6301 trial " << trial);
    const MMOrthoTransform motion = RandomMotion(rng);
    const std::size_t n = 3 + static_cast<std::size_t>(trial) * 5;
    Points a, b;
    for (std::size_t i = 0; i < n; ++i) b.emplace_back(u(rng), u(rng), u(rng));
    for (auto const &p : b) a.push_back(motion.Map(p));
    MMOrthoTransform fit;
    ASSERT_TRUE(mapper.MapPoints(fit, Pairs(a, b)));
    // Exact data, coordinates up to ~80: the polar factor is accurate to a few hundred ulps of 1.
    EXPECT_LT(MaxRotationDifference(fit, motion), 1e-11);
    for (std::size_t i = 0; i < n; ++i) EXPECT_LT((fit.Map(b[i]) - a[i]).Length(), 1e-9);
    // FindTranslation keeps the rotation and carries b[0] exactly onto the given point.
    MMOrthoTransform moved = fit;
    MBasePointMapper().FindTranslation(moved, {a[0] + P(1, 2, 3), b[0]});
    EXPECT_EQ(MaxRotationDifference(moved, fit), 0.0);
    EXPECT_LT((moved.Map(b[0]) - a[0] - P(1, 2, 3)).Length(), 1e-12);
    // The same motion from segments between consecutive points (first ends to first ends).
    MSegmentPairList segs;
    for (std::size_t i = 0; i + 1 < n; ++i) segs.push_back({Seg(a[i], a[i + 1]), Seg(b[i], b[i + 1])});
    MMOrthoTransform segFit;
    ASSERT_TRUE(MMapper3dSegments().MapSegments(segFit, segs));
    EXPECT_LT(MaxRotationDifference(segFit, motion), 1e-11);
    EXPECT_LT((segFit.Map(b[0]) - a[0]).Length(), 1e-9);
    // Both sets scaled by 1e-3 and 1e4 give the same rotation (the mean spread removes the unit).
    for (double s : {1e-3, 1e4}) {
      Points as(a), bs(b);
      for (auto *v : {&as, &bs})
        for (auto &p : *v) p *= s;
      MMOrthoTransform scaled;
      ASSERT_TRUE(mapper.MapPoints(scaled, Pairs(as, bs)));
      EXPECT_LT(MaxRotationDifference(scaled, fit), 1e-11);
    }
  }
}

TEST(MapPointsAndSegments, FailureAndDegenerateInputs) {
  MMapper3DPoints mapper;
  MMapper3dSegments segMapper;
  const MMOrthoTransform identity;
  MMOrthoTransform t;
  t.SetTranslation(P(7, 8, 9));
  t.Rotation[0][1] = 0.5;
  const MMOrthoTransform marker = t;
  auto untouched = [&]() { return MaxRotationDifference(t, marker) == 0.0 && P(t.Translation) == P(7, 8, 9); };
  // Points: no pairs, two pairs, collinear points (rank 1). Segments: none. All false, transform untouched.
  for (Points a :
       {Points{}, Points{P(0, 0, 0), P(1, 0, 0)}, Points{P(0, 0, 0), P(1, 1, 1), P(3, 3, 3), P(-2, -2, -2)}}) {
    Points b = a;
    EXPECT_FALSE(mapper.MapPoints(t, Pairs(a, b)));
    EXPECT_TRUE(untouched());
  }
  EXPECT_FALSE(segMapper.MapSegments(t, MSegmentPairList()));
  EXPECT_TRUE(untouched());
  // One pair of segments (rank-1 H): false. All end points of the second set coincident (H zero): true. Both
  // write the identity rotation and the centroid translation.
  EXPECT_FALSE(segMapper.MapSegments(t, {{Seg(P(0, 0, 0), P(2, 0, 0)), Seg(P(0, 5, 0), P(0, 7, 0))}}));
  EXPECT_TRUE(MaxRotationDifference(t, identity) == 0.0 && P(t.Translation) == P(1, -6, 0));
  t = marker;
  EXPECT_TRUE(segMapper.MapSegments(t, {{Seg(P(0, 0, 0), P(2, 0, 0)), Seg(P(1, 1, 1), P(1, 1, 1))},
                                        {Seg(P(0, 4, 0), P(0, 0, 6)), Seg(P(1, 1, 1), P(1, 1, 1))}}));
  EXPECT_TRUE(MaxRotationDifference(t, identity) == 0.0 && P(t.Translation) == P(-0.5, 0, 0.5));

  // Coplanar points (rank 2) still give a proper rotation, not the mirror in their plane: a quarter turn about z.
  Points a = {P(0, 0, 0), P(2, 0, 0), P(0, 1, 0), P(3, 3, 0)}, b;
  for (auto const &p : a) b.emplace_back(p.y, -p.x, 0.0);  // a = Rz(90) b
  ASSERT_TRUE(mapper.MapPoints(t, Pairs(a, b)));
  for (std::size_t i = 0; i < a.size(); ++i) EXPECT_LT((t.Map(b[i]) - a[i]).Length(), 1e-13);
  auto row = [&t](int i) { return P(t.Rotation[i][0], t.Rotation[i][1], t.Rotation[i][2]); };
  EXPECT_NEAR(row(0).Dot(row(1).Cross(row(2))), 1.0, 1e-14);
}

}  // namespace
