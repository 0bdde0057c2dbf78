#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/ortho_transform.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

constexpr double kPi = 3.141592653589793;

MMPoint3d<double> Map(const MMTransformMatrix &m, const MMPoint3d<double> &p, bool isVector = false) {
  MMPoint3d<double> out;
  m.Transform(out, p, isVector);
  return out;
}

void ExpectNear(const MMPoint3d<double> &a, const MMPoint3d<double> &b, double tol) {
  for (int k = 0; k < 3; ++k) EXPECT_NEAR(a[k], b[k], tol) << k;
}

TEST(Rotation, AxesCentresAndDegenerateAxis) {
  MMTransformMatrix m, keep;
  m.MakeRotationZYX(0, 0, 90);
  ExpectNear(Map(m, {1, 0, 0}), {0, 1, 0}, 1e-15);
  m.MakeRotationXYZ(90, 0, 0);
  ExpectNear(Map(m, {0, 1, 0}), {0, 0, 1}, 1e-15);

  const MMPoint3d<double> centre(1, 2, 3);
  ASSERT_TRUE(m.MakeRotation(centre, {0, 0, 1}, kPi / 2));
  ExpectNear(Map(m, centre), centre, 1e-15);
  ExpectNear(Map(m, {2, 2, 3}), {1, 3, 3}, 1e-15);
  EXPECT_TRUE(m.IsOrthoNormal());
  m.MakeRotationZYX(centre, 10, 20, 30);
  ExpectNear(Map(m, centre), centre, 1e-14);

  keep.MakeTranslation({4, 5, 6});
  EXPECT_FALSE(keep.MakeRotation(centre, {1e-9, 0, 0}, 1.0));
  EXPECT_EQ(keep.Matrix[0][3], 4.0);
  EXPECT_EQ(keep.Class, MMTransformClass::Translation);
}

TEST(Rotation, AnglesReadBackOverSeededRandomAngles) {
  std::mt19937 rng(7u);
  std::uniform_real_distribution<double> wide(-170.0, 170.0), narrow(-80.0, 80.0);
  for (int i = 0; i < 2000; ++i) {
    const double rx = wide(rng), ry = narrow(rng), rz = wide(rng);
    for (bool xyz : {false, true}) {
      MMTransformMatrix m;
      MMPoint3d<double> a;
      xyz ? m.MakeRotationXYZ(rx, ry, rz) : m.MakeRotationZYX(rx, ry, rz);
      ASSERT_TRUE(xyz ? m.GetRotationXYZ(a.x, a.y, a.z) : m.GetRotationZYX(a.x, a.y, a.z));
      // 1e-6 degrees: acos loses precision near 0 and 180 degrees; the read back goes through several rotations.
      ExpectNear(a, {rx, ry, rz}, 1e-6);
    }
  }
}

TEST(Rotation, InPlaneAndNewAxes) {
  MMTransformMatrix m;
  m.MakeRotationInPlane({1, 0, 0}, {-1, 0, 0}, {0, 0, 0});
  ExpectNear(Map(m, {0, 0, 1}), {0, 0, -1}, 1e-15);
  ExpectNear(Map(m, {0, 1, 0}), {0, 1, 0}, 1e-15);
  m.MakeRotationInPlane({0, 2, 0}, {0, 3, 0}, {5, 5, 5});
  EXPECT_TRUE(m.IsIdentity());

  std::mt19937 rng(11u);
  std::normal_distribution<double> n(0.0, 1.0);
  for (int i = 0; i < 200; ++i) {
    MMPoint3d<double> from(n(rng), n(rng), n(rng)), to(n(rng), n(rng), n(rng)), c(n(rng), n(rng), n(rng));
    m.MakeRotationInPlane(from, to, c);
    from.Normalise();
    to.Normalise();
    ExpectNear(Map(m, from, true), to, 1e-13);
    ExpectNear(Map(m, c), c, 1e-13);
    EXPECT_NEAR(m.Determinant(), 1.0, 1e-13);
  }

  m.MakeNewXAxis({1, 1, 1}, {1, 3, 1});
  // The direction (0, 2, 0) is taken onto the x axis, then moved by origin.
  ExpectNear(Map(m, {0, 1, 0}), {2, 1, 1}, 1e-15);
}

TEST(Rotation, ExtractFromScaledMatrixRoundsLengthsThroughFloat) {
  MMTransformMatrix scaled, r, m;
  scaled.MakeScale1D(0.1);
  r.MakeRotationZYX(0, 0, 30);
  scaled.PostMultiply(r);
  scaled.AddTranslation(MMPoint3d<double>(1, 2, 3));
  ASSERT_TRUE(m.MakeRotation(scaled));
  // Row lengths 0.1 rounded to float: the rows come out as 0.1/0.1f times a
  // unit row, not exactly unit.
  const double row0 = std::hypot(m.Matrix[0][0], m.Matrix[0][1]);
  // 1e-15: a few roundings of the length computation.
  EXPECT_NEAR(row0, std::hypot(scaled.Matrix[0][0], scaled.Matrix[0][1]) / static_cast<double>(0.1f), 1e-15);
  EXPECT_GT(std::fabs(row0 - 1.0), 1e-9);
  EXPECT_EQ(m.Matrix[0][3], 0.0);
  EXPECT_EQ(m.Class, scaled.Class);
  EXPECT_EQ(m.Inverse[0][3], scaled.Inverse[0][3]);
}

TEST(Builders, TranslationsProjectionsAndReaders) {
  MMTransformMatrix m, s, half, o, p;
  m.MakeRotationZYX(0, 0, 90);
  m.AddTranslation(MMPoint3d<double>(1, 0, 0));
  EXPECT_TRUE(m.Matrix[0][3] == 1.0 && m.Matrix[1][3] == 0.0);
  m.FillInTranslation(MMPoint3d<double>(5, 6, 7));
  m.FillInTranslation(MMPoint3d<double>(1, 2, 3));
  EXPECT_EQ(m.Matrix[1][3], 2.0);
  MMPoint3d<double> back;
  m.InverseTransform(back, Map(m, {3, 4, 5}));
  ExpectNear(back, {3, 4, 5}, 1e-14);

  s.MakeScale3D(2, 3, 4);
  EXPECT_EQ(s.Determinant(), 24.0);
  s.AddTranslation(MMPoint3d<double>(9, 9, 9));
  EXPECT_EQ(s.Determinant(), 24.0);

  half.MakeRotationXYZ(180, 0, 0);
  EXPECT_FALSE(half.Keeps2DOrientation());

  EXPECT_FALSE(o.MakeOrthoGraphicProjection(1, 1, -1, 1, 0, 1));
  EXPECT_TRUE(o.IsIdentity());
  ASSERT_TRUE(o.MakeOrthoGraphicProjection(-1, 1, -1, 1, 0, 1));
  ExpectNear(Map(o, {1, 1, 1}), {1, 1, -1}, 1e-15);
  o.InverseTransform(back, MMPoint3d<double>(1, 1, -1));
  ExpectNear(back, {1, 1, 1}, 1e-15);

  EXPECT_FALSE(p.MakePerspectiveProjection(0, 1, 0, 1, 2, 2, 0));
  ASSERT_TRUE(p.MakePerspectiveProjection(-1, 1, -1, 1, 1, 10, 0));
  EXPECT_TRUE(p.IsHomogeneous());
  EXPECT_TRUE(p.Inversible);
  const MMPoint3d<double> q(0.3, -0.2, 4.0);
  p.InverseTransform(back, Map(p, q));
  ExpectNear(back, q, 1e-12);
}

TEST(Builders, OrthoNormalRepair) {
  std::mt19937 rng(3u);
  std::uniform_real_distribution<double> u(-1e-6, 1e-6);
  for (int i = 0; i < 100; ++i) {
    MMTransformMatrix m;
    m.MakeRotationZYX(10.0 * i, 5.0 * i, 3.0 * i);
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 3; ++c) m.Matrix[r][c] += u(rng);
    ASSERT_TRUE(m.MakeOrthoNormal());
    m.VerifyAndSetClass();
    // Column 1 is made orthogonal by one element and not renormalised, so
    // the repaired block is orthonormal only to about the perturbation^2.
    double d01 = 0;
    for (int r = 0; r < 3; ++r) d01 += m.Matrix[r][0] * m.Matrix[r][1];
    EXPECT_LT(std::fabs(d01), 1e-15);
    EXPECT_GT(m.Determinant(), 0.0);
  }
  MMTransformMatrix z;
  z.MakeScale3D(2, 0, 1);
  EXPECT_FALSE(z.MakeOrthoNormal());
  EXPECT_EQ(z.Matrix[0][0], 1.0);  // column 0 was normalised before failing
}

TEST(Builders, OrthoTransformRoundsTranslationThroughFloat) {
  // Pins the deliberate rounding: 0.1 must come back as (double)0.1f, also in
  // an optimised build (a known GCC 12 vectoriser fault drops the narrowing).
  MMOrthoTransform o;
  o.SetTranslation({0.1, 0.2, 0.3});
  MMTransformMatrix m, id, t, fm;
  m.Make(o);
  EXPECT_EQ(m.Matrix[0][3], static_cast<double>(0.1f));
  EXPECT_EQ(m.Matrix[1][3], static_cast<double>(0.2f));
  EXPECT_EQ(m.Matrix[2][3], static_cast<double>(0.3f));
  EXPECT_EQ(m.Class, MMTransformClass::Translation);

  id.Make(MMOrthoTransform());
  EXPECT_EQ(id.Class, MMTransformClass::Identity);

  // On a matrix not at identity the old translation stays in the sum.
  t.MakeTranslation({1, 0, 0});
  o.MakeRotation({0, 0, 0}, {0, 0, 1}, kPi / 2, true);
  o.SetTranslation({0.5, 0, 0});
  t.Make(o);
  EXPECT_EQ(t.Matrix[0][3], 1.5);
  EXPECT_TRUE(t.IsOrthoNormal());

  const MFrame<float> frame{{}, {1, 2, 3}, {0, 2, 0}, {-3, 0, 0}, {0, 0, 1}};  // leading, origin, axes 1 to 3
  fm.MakeFromFrame(frame);
  EXPECT_TRUE(fm.IsOrthoNormal());
  ExpectNear(Map(fm, {1, 0, 0}), {1, 3, 3}, 0);
}

}  // namespace
