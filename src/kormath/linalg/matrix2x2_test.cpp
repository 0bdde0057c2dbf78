#include <gtest/gtest.h>
#include <kormath/linalg/matrix2x2.h>

#include <cmath>
#include <random>

namespace {

constexpr double kEps = 2.220446049250313e-16;
constexpr unsigned kSeed = 20261121u;

TEST(Matrix2x2, InvertAndSolveThresholds) {
  const MMatrix2x2 original(1, 3, 0, 2);
  MMatrix2x2 a = original;
  ASSERT_TRUE(a.Invert());
  EXPECT_TRUE(a.m[0][0] == 1.0 && a.m[0][1] == -1.5 && a.m[1][1] == 0.5);
  EXPECT_TRUE(a.m[1][0] == 0.0 && std::signbit(a.m[1][0]));  // negated after the product: -0
  // det = 1e-14 is below the 100-eps bound of Invert but solvable by Cramer.
  MMatrix2x2 tiny(1e-7, 0, 0, 1e-7), edge(100 * kEps, 0, 0, 1);
  EXPECT_FALSE(tiny.Invert());
  EXPECT_EQ(tiny.m[0][0], 1e-7);
  double x[2], b[2] = {2e-7, 3e-7};
  ASSERT_TRUE(tiny.SolveSquareSet(x, b));
  EXPECT_NEAR(x[1], 3.0, 1e-15);
  MMPoint2d<double> px;
  ASSERT_TRUE(tiny.SolveSquareSet(px, MMPoint2d<double>(2e-7, 3e-7)));
  EXPECT_EQ(px.x, x[0]);
  EXPECT_FALSE(MMatrix2x2(1, 2, 2, 4).SolveSquareSet(x, b));
  EXPECT_TRUE(edge.Invert());  // exactly at the bound: the strict test passes it
}

TEST(Matrix2x2, EigenAnalysis) {
  double v[2] = {7, 7}, e[2];
  ASSERT_TRUE(MMatrix2x2(1, 2, 2, 4).GetEigenValues(v));  // singular: (trace, 0)
  EXPECT_TRUE(v[0] == 5.0 && v[1] == 0.0);
  EXPECT_FALSE(MMatrix2x2(0, -1, 1, 0).GetEigenValues(v));  // complex pair, untouched
  EXPECT_EQ(v[0], 5.0);
  std::mt19937 rng(kSeed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  for (int trial = 0; trial < 500; ++trial) {
    const double p = u(rng), q = u(rng), r = u(rng);
    const MMatrix2x2 a(p, q, q, r);
    ASSERT_TRUE(a.GetEigenValues(v));
    EXPECT_GE(v[0], v[1]);
    for (double l : v) {
      if (!a.GetEigenVector(e, l)) continue;  // a positive residual beyond the bound
      EXPECT_NEAR(std::hypot(e[0], e[1]), 1.0, 4 * kEps);
      // l carries a few eps, amplified by 1/|a01| in (l - a00)/a01: 1e-12 on unit-size elements.
      EXPECT_LT(std::fabs(q * e[0] + r * e[1] - l * e[1]), 1e-12) << "seed " << kSeed << " trial " << trial;
    }
  }
  ASSERT_TRUE(MMatrix2x2(3, 0, 0, 5).GetEigenVector(e, 5));  // negligible off-diagonals: an axis
  EXPECT_EQ(e[1], 1.0);
  EXPECT_FALSE(MMatrix2x2(3, 0, 0, 5).GetEigenVector(e, 10));
  // One-sided residual test, kept on purpose: a large negative one passes.
  EXPECT_TRUE(MMatrix2x2(3, 1, 1, 5).GetEigenVector(e, 4));
}

}  // namespace
