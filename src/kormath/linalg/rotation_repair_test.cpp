#include <gtest/gtest.h>
#include <kormath/linalg/matrix3x3.h>
#include <kormath/linalg/rotation_repair.h>
#include <kormath/transforms/matrix_transform.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

constexpr double kEps = 2.220446049250313e-16;
constexpr unsigned kSeed = 777u;

// Rotation about an axis by Rodrigues' formula, independent of the
// quaternion route under test.
MMatrix3x3 AxisAngle(MMPoint3d<double> a, double angle) {
  a.Normalise();
  const double c = std::cos(angle), s = std::sin(angle), t = 1.0 - c;
  return MMatrix3x3(t * a.x * a.x + c, t * a.x * a.y - s * a.z, t * a.x * a.z + s * a.y, t * a.x * a.y + s * a.z,
                    t * a.y * a.y + c, t * a.y * a.z - s * a.x, t * a.x * a.z - s * a.y, t * a.y * a.z + s * a.x,
                    t * a.z * a.z + c);
}

double MaxDifference(const MMatrix3x3 &a, const MMatrix3x3 &b) {
  double worst = 0.0;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) worst = std::max(worst, std::fabs(a.m[i][j] - b.m[i][j]));
  return worst;
}

MMatrix3x3 Block(const MMTransformMatrix &t) {
  MMatrix3x3 b;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) b.m[i][j] = t.Matrix[i][j];
  return b;
}

MMTransformMatrix FromBlock(const MMatrix3x3 &block, double shift) {
  MMTransformMatrix t;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) t.Matrix[i][j] = block.m[i][j];
  t.Matrix[0][3] = shift;
  t.VerifyAndSetClass();
  return t;
}

TEST(MakeOrthonormal, RotationsRoundTripThroughEveryCandidate) {
  std::mt19937 rng(kSeed);
  std::normal_distribution<double> n(0.0, 1.0);
  std::uniform_real_distribution<double> angle(-M_PI, M_PI);
  for (int trial = 0; trial < 505; ++trial) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << " trial " << trial);
    // Half turns about x, y, z make t1, t2, t3 the largest candidate.
    const MMPoint3d<double> axis = trial < 5 ? MMPoint3d<double>(trial == 0, trial == 1, trial >= 2 ? 1 : 0)
                                             : MMPoint3d<double>(n(rng), n(rng), n(rng));
    const MMatrix3x3 r = AxisAngle(axis, trial < 5 ? M_PI - 0.01 * (trial == 4) : angle(rng));
    MMatrix3x3 repaired(r), perturbed(r);
    ASSERT_TRUE(KorMathUtility::MakeOrthonormal(repaired));
    EXPECT_LT(MaxDifference(repaired, r), 16 * kEps);  // a few roundings of unit-size terms
    // A perturbed rotation comes back orthonormal and near the rotation.
    for (auto &row : perturbed.m)
      for (double &v : row) v += 1e-6 * n(rng);
    ASSERT_TRUE(KorMathUtility::MakeOrthonormal(perturbed));
    EXPECT_LT(MaxDifference(perturbed.GetATransposeA(), MMatrix3x3::Identity()), 8 * kEps);
    EXPECT_LT(MaxDifference(perturbed, r), 1e-5);
  }
}

TEST(MakeOrthonormal, DegenerateInputs) {
  // The identity stays; the zero matrix becomes it (t0 = 1 wins the four-way tie).
  for (MMatrix3x3 a : {MMatrix3x3::Identity(), MMatrix3x3()}) {
    ASSERT_TRUE(KorMathUtility::MakeOrthonormal(a));
    EXPECT_EQ(MaxDifference(a, MMatrix3x3::Identity()), 0.0);
  }
  MMatrix3x3 reflection(-1, 0, 0, 0, 1, 0, 0, 0, 1), bad(NAN, 0, 0, 0, 1, 0, 0, 0, 1);
  ASSERT_TRUE(KorMathUtility::MakeOrthonormal(reflection));
  EXPECT_NEAR(reflection.Determinant(), 1.0, 4 * kEps);  // always proper
  // The four candidates add up to 4, so only NaN makes them all fail.
  EXPECT_FALSE(KorMathUtility::MakeOrthonormal(bad));
  EXPECT_EQ(bad.m[1][1], 1.0);  // left as it was
}

TEST(MakeOrthonormal, TransformBlocks) {
  const MMatrix3x3 r = AxisAngle(MMPoint3d<double>(1, 2, 3), 0.7);
  MMatrix3x3 perturbed(r);
  perturbed.m[0][1] += 1e-4;
  MMTransformMatrix t = FromBlock(perturbed, 5.0), ortho = FromBlock(r, 5.0);
  ASSERT_EQ(t.GetClass(), MMTransformClass::General);
  ASSERT_TRUE(KorMathUtility::MakeOrthonormal(t));
  EXPECT_EQ(t.GetClass(), MMTransformClass::General);  // not refreshed here
  EXPECT_LT(MaxDifference(Block(t).GetATransposeA(), MMatrix3x3::Identity()), 8 * kEps);
  EXPECT_EQ(t.Matrix[0][3], 5.0);
  ASSERT_EQ(ortho.GetClass(), MMTransformClass::OrthoNormal);
  ASSERT_TRUE(KorMathUtility::MakeOrthonormal(ortho));
  EXPECT_EQ(MaxDifference(Block(ortho), r), 0.0);  // left alone, bit for bit

  // MakeOrthogonal: R' D with the diagonal scale D of the block itself, so
  // the columns come out orthogonal; unequal lengths stay General.
  MMatrix3x3 scaled = AxisAngle(MMPoint3d<double>(0.3, -1, 0.2), 0.4) * MMatrix3x3(2, 0, 0, 0, 3, 0, 0, 0, 0.5);
  scaled.m[1][0] += 1e-5;
  MMTransformMatrix s = FromBlock(scaled, 0.0), uniform;
  ASSERT_TRUE(KorMathUtility::MakeOrthogonal(s));
  const MMatrix3x3 ata = Block(s).GetATransposeA();
  EXPECT_LT(std::fabs(ata.m[0][1]) + std::fabs(ata.m[0][2]) + std::fabs(ata.m[1][2]), 1e-14);
  EXPECT_EQ(s.GetClass(), MMTransformClass::General);
  uniform.MakeScale1D(2.0);
  ASSERT_TRUE(KorMathUtility::MakeOrthogonal(uniform));
  EXPECT_EQ(uniform.Matrix[0][0], 2.0);
}

}  // namespace
