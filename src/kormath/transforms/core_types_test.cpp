#include <kormath/transforms/core_types.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace {

std::uint64_t Bits(double v) {
  std::uint64_t b;
  std::memcpy(&b, &v, sizeof b);
  return b;
}

TEST(CoreConstants, AreBitExact) {
  struct Row {
    double value;
    std::uint64_t bits;
  } rows[] = {
      {CMathConst::kEpsilon, 0x3CD203AF9EE75616ull},
      {CMathConst::kSqrtEpsilon, 0x3E601B2B29A4692Bull},
      {CMathConst::kPi, 0x400921FB54442D18ull},
      {CMathConst::kSqrtPi, 0x3FFC5BE87B6901B0ull},
      {CMathConst::kGoldenSectionLeft, 0x3FD8722190488D0Dull},
      {CMathConst::kGoldenSectionRight, 0x3FE3C6EF37DBB97Aull},
      {kDoubleEpsilon, 0x3CB0000000000000ull},
      {kDoubleEpsilonX10, 0x3CE4000000000000ull},
      {kDoubleSqrtEpsilon, 0x3E50000000000000ull},
      {kDoubleSqrtEpsilonX100, 0x3EB9000000000000ull},
  };
  for (const auto &r : rows) EXPECT_EQ(Bits(r.value), r.bits) << r.value;
}

TEST(Point3d, LayoutAndGuardedNormalise) {
  static_assert(sizeof(MMPoint3d<double>) == 3 * sizeof(double), "point is T[3] in memory");
  static_assert(sizeof(MMPoint3d<float>) == 3 * sizeof(float), "point is T[3] in memory");
  MMPoint3d<double> tiny(1e-9, 0, 0);
  EXPECT_FALSE(tiny.Normalise());
  EXPECT_EQ(tiny.x, 1e-9);
  MMPoint3d<double> small(2e-8, 0, 0);
  EXPECT_TRUE(small.Normalise());
  EXPECT_EQ(small, MMPoint3d<double>(1, 0, 0));
  // Exactly at the threshold the vector is long enough (the test is strict).
  MMPoint3d<double> edge(kDoubleSqrtEpsilon, 0, 0);
  EXPECT_TRUE(edge.Normalise());

  MMPoint2d<double> t2(3e-16, 0);
  EXPECT_FALSE(t2.Normalise());
  MMPoint2d<double> u2(3.2e-16, 0);
  EXPECT_TRUE(u2.Normalise());
  EXPECT_EQ(u2.x, 1.0);
}

TEST(Point3d, CosineIsClampedAndZeroForShortVectors) {
  const MMPoint3d<double> a(0.1, 0.2, 0.3);
  EXPECT_EQ(a.CosineOfAngle(MMPoint3d<double>()), 0.0);
  // Parallel vectors give exactly 1 even where rounding gives more.
  for (double s : {1.0, 3.0, 7.1, 1e5}) {
    EXPECT_LE(a.CosineOfAngle(a * s), 1.0);
    EXPECT_GE(a.CosineOfAngle(a * -s), -1.0);
  }
  EXPECT_EQ(MMPoint3d<double>(1, 1, 1).CosineOfAngle(MMPoint3d<double>(2, 2, 2)), 1.0);
  EXPECT_NEAR(MMPoint3d<double>(1, 0, 0).CosineOfAngle(MMPoint3d<double>(1, 1, 0)), std::sqrt(0.5),
              2e-16);  // one rounding of the root and one of the division
  // The product of the squared lengths decides, not each length.
  EXPECT_EQ(MMPoint3d<double>(1e-5, 0, 0).CosineOfAngle(MMPoint3d<double>(1e-5, 0, 0)), 0.0);
}

TEST(BoundingBox, FitInLongReportsAdjustment) {
  MMPoint3d<double> offset(9, 9, 9);
  double scale = 0;
  MBoundingBox3DDouble inside(MMPoint3d<double>(-10, -10, -10), MMPoint3d<double>(10, 10, 10));
  EXPECT_FALSE(inside.FitInLong(offset, scale, 2.0));
  EXPECT_EQ(offset, MMPoint3d<double>(0, 0, 0));
  EXPECT_EQ(scale, 2.0);

  // A coordinate exactly at the limit still fits.
  MBoundingBox3DDouble atLimit(MMPoint3d<double>(0, 0, 0), MMPoint3d<double>(619925130.0, 1, 1));
  EXPECT_FALSE(atLimit.FitInLong(offset, scale, 1.0));
  MBoundingBox3DDouble beyond(MMPoint3d<double>(0, 0, 0), MMPoint3d<double>(619925131.0, 1, 1));
  EXPECT_TRUE(beyond.FitInLong(offset, scale, 1.0));

  MBoundingBox3DDouble far(MMPoint3d<double>(1e9, 1e9, 1e9), MMPoint3d<double>(1e9 + 10, 1e9 + 10, 1e9 + 10));
  EXPECT_TRUE(far.FitInLong(offset, scale, 1.0));
  EXPECT_EQ(offset, MMPoint3d<double>(-1000000005, -1000000005, -1000000005));
  EXPECT_EQ(scale, 1.0);
  // Rounding half away from zero of the negated centre, on both signs.
  MBoundingBox3DDouble halves(MMPoint3d<double>(-1e9 - 1, 1e9, 0), MMPoint3d<double>(-1e9, 1e9 + 1, 0));
  EXPECT_TRUE(halves.FitInLong(offset, scale, 1.0));
  EXPECT_EQ(offset, MMPoint3d<double>(1000000001, -1000000001, 0));

  MBoundingBox3DDouble huge(MMPoint3d<double>(-1e10, 0, 0), MMPoint3d<double>(1e10, 1, 1));
  EXPECT_TRUE(huge.FitInLong(offset, scale, 1.0));
  EXPECT_EQ(offset, MMPoint3d<double>(0, 0, 0));
  EXPECT_EQ(scale, 0.001);
  // The smallest per-coordinate scale wins; the box is scaled about the
  // origin before testing.
  MBoundingBox3DDouble wide(MMPoint3d<double>(-1e13, 0, 0), MMPoint3d<double>(1e9, 1, 1));
  EXPECT_TRUE(wide.FitInLong(offset, scale, 10.0));
  EXPECT_DOUBLE_EQ(scale, 1e-5);
}

}  // namespace
