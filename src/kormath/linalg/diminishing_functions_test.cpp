#include <gtest/gtest.h>
#include <kormath/linalg/diminishing_functions.h>

#include <cmath>

namespace {

using namespace DiminishingFunctions;

TEST(Diminishing, DoubleBlends) {
  EXPECT_EQ(DoDiminishing<double>(5, 0, 10, 1, 3, DIMINISHING_LINEAR), 2.0);
  EXPECT_EQ(DoDiminishing<double>(2.5, 0, 10, 1, 3, DIMINISHING_LINEAR), 1.5);
  // Float cosine and weights: ~1e-7 relative (cos(pi/2) in float is ~-4.4e-8, not 0).
  EXPECT_NEAR(DoDiminishing<double>(5, 0, 10, 1, 3, DIMINISHING_COSINE), 2.0, 1e-7);
  EXPECT_NEAR(DoDiminishing<double>(2.5, 0, 10, 1, 3, DIMINISHING_COSINE), 1.0 + (1 - std::sqrt(0.5)), 1e-7);
  // The weights are float: 1/3 is not a float, so the blend is off by ~1e-8.
  const double third = DoDiminishing<double>(1, 0, 3, 0.0, 3.0, DIMINISHING_LINEAR);
  EXPECT_NE(third, 1.0);
  EXPECT_NEAR(third, 1.0, 1e-7);
}

TEST(Diminishing, SnappingBandsAndTypes) {
  const double e = 1.4901161193847656e-08;
  // {position, lower, upper, expected}: bands of e at both bounds; a position
  // below e itself gives second even inside (lower, upper); equal bounds.
  const double bands[][4] = {{0, 0, 10, 1},  {e, 0, 10, 1}, {10 - e, 0, 10, 3},
                             {-1, -2, 2, 3}, {5, 5, 5, 1},  {6, 5, 5, 3}};
  for (DiminishingType type : {DIMINISHING_LINEAR, DIMINISHING_COSINE})
    for (const auto &b : bands)
      EXPECT_EQ(DoDiminishing<double>(b[0], b[1], b[2], 1, 3, type), b[3]) << "at " << b[0] << " type " << type;
  for (double position : {-5.0, 0.0, 5.0, 50.0}) {
    EXPECT_EQ(DoDiminishing<double>(position, 0, 10, 1, 3, DIMINISHING_NONE), 3.0);
    EXPECT_EQ(DoDiminishing<double>(position, 0, 10, 1, 3, static_cast<DiminishingType>(3)), 1.0);
  }
}

TEST(Diminishing, FloatPoints) {
  const MMPoint3d<float> first(0.0f, 1.0f, -2.0f), second(4.0f, 1.0f, 2.0f);
  EXPECT_EQ(DoDiminishing(5, 0, 10, first, second, DIMINISHING_LINEAR), MMPoint3d<float>(2.0f, 1.0f, 0.0f));
  const MMPoint3d<float> c = DoDiminishing(2.5, 0, 10, first, second, DIMINISHING_COSINE);
  EXPECT_NEAR(c.x, 4.0f * (1.0f - std::cos(3.1415927f / 4.0f)) / 2.0f, 1e-6f);
  EXPECT_EQ(DoDiminishing(20, 0, 10, first, second, DIMINISHING_COSINE), second);
}

}  // namespace
