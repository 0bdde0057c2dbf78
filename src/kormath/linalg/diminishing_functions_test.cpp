#include <gtest/gtest.h>
#include <kormath/linalg/diminishing_functions.h>

#include <cmath>

namespace {

using namespace DiminishingFunctions;

TEST(Diminishing, DoubleBlends) {
  EXPECT_EQ(DoDiminishing<double>(5, 0, 10, 1, 3, DIMINISHING_LINEAR), 2.0);
  // The cosine of pi/2 in float is about -4.4e-8, not 0.
  EXPECT_NEAR(DoDiminishing<double>(5, 0, 10, 1, 3, DIMINISHING_COSINE), 2.0, 1e-7);
  // A quarter of the way: linear 1.5, cosine (1 - cos(pi/4)) / 2 of the way.
  EXPECT_EQ(DoDiminishing<double>(2.5, 0, 10, 1, 3, DIMINISHING_LINEAR), 1.5);
  EXPECT_NEAR(DoDiminishing<double>(2.5, 0, 10, 1, 3, DIMINISHING_COSINE), 1.0 + 2.0 * (1 - std::sqrt(0.5)) / 2,
              1e-7);  // float cosine and weights: ~1e-7 relative

  // The weights are float: 1/3 is not a float, so the blend is off by ~1e-8.
  const double third = DoDiminishing<double>(1, 0, 3, 0.0, 3.0, DIMINISHING_LINEAR);
  EXPECT_NE(third, 1.0);
  EXPECT_NEAR(third, 1.0, 1e-7);
}

TEST(Diminishing, SnappingBandsAndTypes) {
  const double e = 1.4901161193847656e-08;
  for (DiminishingType type : {DIMINISHING_LINEAR, DIMINISHING_COSINE}) {
    EXPECT_EQ(DoDiminishing<double>(0, 0, 10, 1, 3, type), 1.0);
    EXPECT_EQ(DoDiminishing<double>(e, 0, 10, 1, 3, type), 1.0);  // at lower + e
    EXPECT_EQ(DoDiminishing<double>(10 - e, 0, 10, 1, 3, type), 3.0);
    // Below e on the position itself: second, even inside (lower, upper).
    EXPECT_EQ(DoDiminishing<double>(-1, -2, 2, 1, 3, type), 3.0);
    EXPECT_EQ(DoDiminishing<double>(5, 5, 5, 1, 3, type), 1.0);  // equal bounds
    EXPECT_EQ(DoDiminishing<double>(6, 5, 5, 1, 3, type), 3.0);
  }
  for (double position : {-5.0, 0.0, 5.0, 50.0}) {
    EXPECT_EQ(DoDiminishing<double>(position, 0, 10, 1, 3, DIMINISHING_NONE), 3.0);
    EXPECT_EQ(DoDiminishing<double>(position, 0, 10, 1, 3, static_cast<DiminishingType>(3)), 1.0);
  }
}

TEST(Diminishing, FloatPoints) {
  const MMPoint3d<float> first(0.0f, 1.0f, -2.0f), second(4.0f, 1.0f, 2.0f);
  const MMPoint3d<float> mid = DoDiminishing(5, 0, 10, first, second, DIMINISHING_LINEAR);
  EXPECT_EQ(mid.x, 2.0f);
  EXPECT_EQ(mid.y, 1.0f);
  EXPECT_EQ(mid.z, 0.0f);
  const MMPoint3d<float> c = DoDiminishing(2.5, 0, 10, first, second, DIMINISHING_COSINE);
  const float expected = 4.0f * (1.0f - std::cos(3.1415927f / 4.0f)) / 2.0f;
  EXPECT_NEAR(c.x, expected, 1e-6f);
  EXPECT_EQ(DoDiminishing(20, 0, 10, first, second, DIMINISHING_COSINE), second);
}

}  // namespace
