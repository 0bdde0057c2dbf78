#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/ortho_transform.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

constexpr double kPi = 3.141592653589793;

TEST(OrthoTransform, VerifyToleranceAndDegenerateAxes) {
  MMOrthoTransform o;
  EXPECT_TRUE(o.Verify());
  const MMOrthoTransform before = o;
  o.MakeRotation({1, 2, 3}, {0, 0, 1e-9}, 1.0, true);
  EXPECT_EQ(o.Rotation[0][0], before.Rotation[0][0]);
  EXPECT_EQ(o.Translation[0], 0.0);
  o.MakeRotation({0, 0, 0}, {0, 0, 2}, 0.5, false);
  EXPECT_FALSE(o.Verify());

  // The row tolerance 1.1102230246251565e-12 is inclusive.
  MMOrthoTransform t;
  t.Rotation[0][0] = std::sqrt(1.0 + 1.1102230246251565e-12);
  const double dev = t.Rotation[0][0] * t.Rotation[0][0] - 1.0;
  EXPECT_EQ(t.Verify(), std::fabs(dev) <= 1.1102230246251565e-12);
  t.Rotation[0][0] = std::sqrt(1.0 + 1.2e-12);
  EXPECT_FALSE(t.Verify());
  MMOrthoTransform mirror;
  mirror.Rotation[2][2] = -1.0;  // the determinant sign is not tested
  EXPECT_TRUE(mirror.Verify());
}

TEST(OrthoTransform, ConcatenateAndMatrixAgree) {
  std::mt19937 rng(5u);
  std::uniform_real_distribution<double> u(-3.0, 3.0);
  for (int i = 0; i < 100; ++i) {
    MMOrthoTransform a, b;
    a.MakeRotation({u(rng), u(rng), u(rng)}, {u(rng), u(rng), u(rng)}, u(rng), true);
    b.MakeRotation({u(rng), u(rng), u(rng)}, {u(rng), u(rng), u(rng)}, u(rng), true);
    ASSERT_TRUE(a.Verify());
    const MMPoint3d<double> p(u(rng), u(rng), u(rng));
    MMOrthoTransform ab = a;
    ab.Concatenate(b);
    const MMPoint3d<double> expected = b.Map(a.Map(p));
    const MMPoint3d<double> got = ab.Map(p);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(got[k], expected[k], 1e-13);

    // The same rotation as a classified matrix (translation rounded to float).
    MMTransformMatrix m;
    m.Make(a);
    EXPECT_TRUE(m.IsOrthoNormal());
    MMPoint3d<double> q;
    m.Transform(q, p);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(q[k], a.Map(p)[k], 1e-6);  // float-rounded translation
  }
  MMTransformMatrix r;  // both Rodrigues forms give the same block, bit for bit
  r.MakeRotation({0, 0, 0}, {1, 1, 0}, 0.3);
  MMOrthoTransform o, rows;
  o.MakeRotation({0, 0, 0}, {1, 1, 0}, 0.3, true);
  for (int k = 0; k < 9; ++k) EXPECT_EQ(o.Rotation[k / 3][k % 3], r.Matrix[k / 3][k % 3]) << k;
  rows.MakeTransformation({1, 2, 3}, {0, 1, 0}, {-1, 0, 0}, {0, 0, 1});
  EXPECT_EQ(rows.Rotation[0][1], 1.0);
  const double m12[12] = {1, 0, 0, 4, 0, 0, 1, 5, 0, -1, 0, 6};
  rows.Copy(m12);
  EXPECT_TRUE(rows.Translation[2] == 6.0 && rows.Rotation[2][1] == -1.0);
  rows.MakeRotation({0, 0, 0}, {0, 0, 1}, kPi, true);
  EXPECT_NEAR(rows.Rotation[0][0], -1.0, 1e-15);
}

}  // namespace
