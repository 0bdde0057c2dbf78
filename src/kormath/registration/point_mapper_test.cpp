#include <kormath/registration/point_mapper.h>

#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Points = std::vector<MMPoint3d<double>>;

MMPoint3d<double> Apply(MMOrthoTransform const &t, MMPoint3d<double> const &p) {
  MMPoint3d<double> r;
  for (int i = 0; i < 3; ++i)
    r[static_cast<std::size_t>(i)] = t.Rotation[i][0] * p.x + t.Rotation[i][1] * p.y + t.Rotation[i][2] * p.z + t.Translation[i];
  return r;
}

MPointPairList Pairs(Points &a, Points &b) {
  MPointPairList list;
  for (std::size_t i = 0; i < a.size(); ++i) list.emplace_back(&a[i], &b[i]);
  return list;
}

// A random proper rotation and shift.
MMOrthoTransform RandomMotion(std::mt19937_64 &rng) {
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  MMPoint3d<double> axis(u(rng), u(rng), u(rng));
  MMOrthoTransform t;
  t.MakeRotation(MMPoint3d<double>(u(rng), u(rng), u(rng)), axis, 3.0 * u(rng), true);
  t.SetTranslation(MMPoint3d<double>(50 * u(rng), 50 * u(rng), 50 * u(rng)));
  return t;
}

double MaxRotationDifference(MMOrthoTransform const &a, MMOrthoTransform const &b) {
  double m = 0.0;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) m = std::max(m, std::fabs(a.Rotation[i][j] - b.Rotation[i][j]));
  return m;
}

TEST(MapPoints, RecoversRigidMotionsAlsoAfterScaling) {
  const unsigned seed = 6301;
  SCOPED_TRACE(seed);
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> u(-20.0, 20.0);
  MMapper3DPoints mapper;
  for (int trial = 0; trial < 40; ++trial) {
    const MMOrthoTransform motion = RandomMotion(rng);
    Points b;
    const std::size_t n = 3 + static_cast<std::size_t>(trial) * 5;
    for (std::size_t i = 0; i < n; ++i) b.emplace_back(u(rng), u(rng), u(rng));
    Points a;
    for (auto const &p : b) a.push_back(Apply(motion, p));
    MMOrthoTransform fit;
    ASSERT_TRUE(mapper.MapPoints(fit, Pairs(a, b)));
    // Exact data, coordinates up to ~80: the polar factor is accurate to a
    // few hundred ulps of 1; 1e-11 leaves margin without hiding a wrong fit.
    EXPECT_LT(MaxRotationDifference(fit, motion), 1e-11);
    for (std::size_t i = 0; i < n; ++i) EXPECT_LT((Apply(fit, b[i]) - a[i]).Length(), 1e-9);

    // The same sets scaled by 1e-3 and 1e4 give the same rotation (the
    // normalisation by the mean spread removes the unit).
    for (double s : {1e-3, 1e4}) {
      Points as, bs;
      for (std::size_t i = 0; i < n; ++i) {
        as.push_back(a[i] * s);
        bs.push_back(b[i] * s);
      }
      MMOrthoTransform scaled;
      ASSERT_TRUE(mapper.MapPoints(scaled, Pairs(as, bs)));
      EXPECT_LT(MaxRotationDifference(scaled, fit), 1e-11);
    }
  }
}

TEST(MapPoints, DegenerateInputs) {
  MMapper3DPoints mapper;
  MMOrthoTransform marker;
  marker.SetTranslation(MMPoint3d<double>(7, 8, 9));

  Points a = {MMPoint3d<double>(0, 0, 0), MMPoint3d<double>(1, 0, 0)};
  Points b = a;
  MMOrthoTransform t = marker;
  EXPECT_FALSE(mapper.MapPoints(t, Pairs(a, b)));  // two pairs
  EXPECT_EQ(t.Translation[0], 7.0);

  a = {MMPoint3d<double>(0, 0, 0), MMPoint3d<double>(1, 1, 1), MMPoint3d<double>(3, 3, 3), MMPoint3d<double>(-2, -2, -2)};
  b = a;
  EXPECT_FALSE(mapper.MapPoints(t, Pairs(a, b)));  // collinear: rank 1
  EXPECT_EQ(t.Translation[2], 9.0);

  // Identical non-degenerate sets: identity and zero translation.
  a = {MMPoint3d<double>(0, 0, 0), MMPoint3d<double>(4, 0, 0), MMPoint3d<double>(0, 3, 0), MMPoint3d<double>(1, 1, 5)};
  b = a;
  ASSERT_TRUE(mapper.MapPoints(t, Pairs(a, b)));
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(t.Translation[i], 0.0, 1e-14);  // a few ulps of coordinates near 5
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(t.Rotation[i][j], i == j ? 1.0 : 0.0, 1e-15);
  }

  // Coplanar points (rank 2) still give a proper rotation: a quarter turn about z.
  a = {MMPoint3d<double>(0, 0, 0), MMPoint3d<double>(2, 0, 0), MMPoint3d<double>(0, 1, 0), MMPoint3d<double>(3, 3, 0)};
  b.clear();
  for (auto const &p : a) b.emplace_back(p.y, -p.x, 0.0);  // a = Rz(90) b
  ASSERT_TRUE(mapper.MapPoints(t, Pairs(a, b)));
  for (std::size_t i = 0; i < a.size(); ++i) EXPECT_LT((Apply(t, b[i]) - a[i]).Length(), 1e-13);
  const double det = t.Rotation[0][0] * (t.Rotation[1][1] * t.Rotation[2][2] - t.Rotation[1][2] * t.Rotation[2][1]) -
                     t.Rotation[0][1] * (t.Rotation[1][0] * t.Rotation[2][2] - t.Rotation[1][2] * t.Rotation[2][0]) +
                     t.Rotation[0][2] * (t.Rotation[1][0] * t.Rotation[2][1] - t.Rotation[1][1] * t.Rotation[2][0]);
  EXPECT_NEAR(det, 1.0, 1e-14);
}

TEST(MapSegments, OutcomesAndTranslation) {
  MMapper3dSegments mapper;
  MMOrthoTransform t;
  t.SetTranslation(MMPoint3d<double>(7, 8, 9));
  EXPECT_FALSE(mapper.MapSegments(t, MSegmentPairList()));
  EXPECT_EQ(t.Translation[1], 8.0);

  using Seg = std::pair<MMPoint3d<double>, MMPoint3d<double>>;
  // One pair of segments: rank-1 H, false, identity rotation, centroid shift.
  MSegmentPairList one = {{Seg(MMPoint3d<double>(0, 0, 0), MMPoint3d<double>(2, 0, 0)),
                           Seg(MMPoint3d<double>(0, 5, 0), MMPoint3d<double>(0, 7, 0))}};
  t.Rotation[0][1] = 0.5;
  EXPECT_FALSE(mapper.MapSegments(t, one));
  EXPECT_EQ(t.Rotation[0][1], 0.0);
  EXPECT_EQ(t.Rotation[1][1], 1.0);
  EXPECT_EQ(t.Translation[0], 1.0);
  EXPECT_EQ(t.Translation[1], -6.0);

  // All end points of the second set coincident: H is zero, true, identity.
  MSegmentPairList flat = {{Seg(MMPoint3d<double>(0, 0, 0), MMPoint3d<double>(2, 0, 0)),
                            Seg(MMPoint3d<double>(1, 1, 1), MMPoint3d<double>(1, 1, 1))},
                           {Seg(MMPoint3d<double>(0, 4, 0), MMPoint3d<double>(0, 0, 6)),
                            Seg(MMPoint3d<double>(1, 1, 1), MMPoint3d<double>(1, 1, 1))}};
  EXPECT_TRUE(mapper.MapSegments(t, flat));
  EXPECT_EQ(t.Rotation[2][2], 1.0);
  EXPECT_EQ(t.Rotation[2][0], 0.0);
  EXPECT_EQ(t.Translation[0], -0.5);
  EXPECT_EQ(t.Translation[1], 0.0);
  EXPECT_EQ(t.Translation[2], 0.5);

  // Segments of a rigidly moved tetrahedron recover the motion.
  std::mt19937_64 rng(6302);
  const MMOrthoTransform motion = RandomMotion(rng);
  const Points v = {MMPoint3d<double>(0, 0, 0), MMPoint3d<double>(3, 0, 0), MMPoint3d<double>(0, 2, 0),
                    MMPoint3d<double>(0, 0, 4)};
  MSegmentPairList tet;
  for (int i = 0; i < 3; ++i)
    tet.push_back({Seg(Apply(motion, v[static_cast<std::size_t>(i)]), Apply(motion, v[3])),
                   Seg(v[static_cast<std::size_t>(i)], v[3])});
  ASSERT_TRUE(mapper.MapSegments(t, tet));
  EXPECT_LT(MaxRotationDifference(t, motion), 1e-12);
}

TEST(FindTranslation, KeepsRotation) {
  MBasePointMapper base;
  MMOrthoTransform t;
  t.MakeRotation(MMPoint3d<double>(0, 0, 0), MMPoint3d<double>(0, 0, 1), std::acos(-1.0) / 2.0, true);
  const MMOrthoTransform before = t;
  base.FindTranslation(t, {MMPoint3d<double>(5, 5, 5), MMPoint3d<double>(1, 0, 0)});
  EXPECT_EQ(MaxRotationDifference(t, before), 0.0);
  EXPECT_LT((Apply(t, MMPoint3d<double>(1, 0, 0)) - MMPoint3d<double>(5, 5, 5)).Length(), 1e-15);
}

}  // namespace
