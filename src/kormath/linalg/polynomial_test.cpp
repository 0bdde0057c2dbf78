#include <gtest/gtest.h>
#include <kormath/linalg/polynomial.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <map>
#include <random>
#include <tuple>
#include <vector>

namespace {

using Complex = std::complex<double>;
constexpr double kEps = 2.220446049250313e-16;

// Ascending coefficients of scale * prod (x - r_i).
std::vector<double> FromRoots(const std::vector<Complex> &roots, double scale) {
  std::vector<Complex> c{Complex(scale, 0.0)};
  for (const Complex &r : roots) {  // times (x - r), in place from the top
    c.push_back(0.0);
    for (std::size_t i = c.size() - 1; i > 0; --i) c[i] = c[i - 1] - r * c[i];
    c[0] *= -r;
  }
  std::vector<double> out;
  for (const Complex &v : c) out.push_back(v.real());
  return out;
}

// Largest distance from each expected root to its nearest found root (the
// roots come back unsorted).
double RootDistance(const std::vector<Complex> &found, const std::vector<Complex> &expected) {
  double worst = 0.0;
  for (const Complex &e : expected) {
    double best = 1e300;
    for (const Complex &f : found) best = std::min(best, std::abs(f - e));
    worst = std::max(worst, best);
  }
  return worst;
}

TEST(SolvePolynomial, RootsOfKnownFactors) {
  // Name, roots, scale, tolerance on the root positions relative to the largest root.
  const std::tuple<const char *, std::vector<Complex>, double, double> cases[] = {
      // Simple roots are found to a few eps, relative to the largest.
      {"distinct", {{1, 0}, {-2, 0}, {3.5, 0}}, 1.0, 1e-14},
      {"scaled up", {{1, 0}, {-2, 0}, {3.5, 0}}, 1e6, 1e-14},
      {"scaled down", {{1, 0}, {-2, 0}, {3.5, 0}}, 1e-6, 1e-14},
      {"complex pair", {{2, 0}, {-1, 3}, {-1, -3}}, 1.0, 1e-14},
      {"imaginary pair", {{0.5, 0}, {0, 1}, {0, -1}}, -3.0, 1e-14},
      {"quadratic complex", {{1, 2}, {1, -2}}, 2.0, 1e-15},
      {"quadratic real", {{-4, 0}, {0.25, 0}}, 1.0, 1e-15},
      // A double root costs about sqrt(eps) and a triple one cbrt(eps) ~ 6e-6.
      {"close pair", {{1, 0}, {1 + 1e-6, 0}, {-3, 0}}, 1.0, 1e-8},
      {"double root", {{2, 0}, {2, 0}, {-1, 0}}, 1.0, 1e-7},
      {"triple root", {{2, 0}, {2, 0}, {2, 0}}, 1.0, 3e-5},
      {"triple zero", {{0, 0}, {0, 0}, {0, 0}}, 1.0, 1e-300},
      {"linear", {{-0.75, 0}}, 4.0, 1e-16},
  };
  for (const auto &[name, roots, scale, tolerance] : cases) {
    SCOPED_TRACE(name);
    const std::vector<double> coefficients = FromRoots(roots, scale);
    std::vector<Complex> found;
    ASSERT_TRUE(SolvePolynomial(coefficients, found));
    ASSERT_EQ(found.size(), roots.size());
    double largest = 1.0;
    for (const Complex &r : roots) largest = std::max(largest, std::abs(r));
    EXPECT_LE(RootDistance(found, roots), tolerance * largest);
    // Residuals relative to |scale| * largest^degree: a few eps for simple roots.
    const double size = std::abs(scale) * std::pow(largest, double(roots.size()));
    for (const Complex &r : found) EXPECT_LT(std::abs(EvaluatePolynomial(coefficients, r)), 64 * kEps * size);
  }
}

TEST(SolvePolynomial, DocumentedResidualsAndDegrees) {
  const std::pair<std::vector<double>, double> cases[] = {{{-4, 100}, 2.220446049250313e-14},
                                                          {{200, 6000, -3}, 7.993605777301127e-09},
                                                          {{2, 6, -3, 12}, 3.197442310920451e-14},
                                                          {{200, 6000, -3, 12}, 7.993605777301127e-09}};
  for (const auto &c : cases) {
    std::vector<Complex> roots;
    ASSERT_TRUE(SolvePolynomial(c.first, roots));
    ASSERT_EQ(roots.size(), c.first.size() - 1);
    for (const Complex &r : roots) {
      const Complex v = EvaluatePolynomial(c.first, r);
      EXPECT_LT(std::max(std::fabs(v.real()), std::fabs(v.imag())), c.second);
    }
  }
  std::vector<Complex> roots{Complex(9, 9)};
  for (const std::vector<double> &none : {std::vector<double>{5}, {0, 0, 0}, {}, {1, 0, 0, 0, 1}})
    EXPECT_FALSE(SolvePolynomial(none, roots));
  EXPECT_EQ(roots, std::vector<Complex>{Complex(9, 9)});  // untouched after false
  // Coefficients at or below 1.1102230246251565e-15 do not count.
  const std::pair<std::vector<double>, std::size_t> degrees[] = {
      {{1, 2, 0}, 1}, {{1, 2, 1.1102230246251565e-15}, 1}, {{1, 2, 1.2e-15}, 2}, {{-6, 11, -6, 1, 0, 1e-16}, 3}};
  for (const auto &d : degrees) {
    ASSERT_TRUE(SolvePolynomial(d.first, roots));
    EXPECT_EQ(roots.size(), d.second);
  }
  EXPECT_EQ(EvaluatePolynomial({}, Complex(3, 1)), Complex(0, 0));
}

TEST(QuadraticEquation, Solve) {
  MMQuadraticEquation two(1, -3, 2), one(1, 2, 1), none(1, 0, 1), flat(0, 2, 1);
  EXPECT_EQ(two.GetNumRoots(), 2);
  EXPECT_EQ(two.GetRoot(0), 1.0);  // smaller first for a > 0
  EXPECT_EQ(two.GetRoot(1), 2.0);
  EXPECT_EQ(one.GetNumSolutions(), 1);  // exactly 0 discriminant, root stored twice
  EXPECT_EQ(one.GetSecondRoot(), -1.0);
  EXPECT_FALSE(none.Solve());
  EXPECT_TRUE(none.numRoots == 0 && none.firstRoot == 0.0 && none.discriminant == -4.0);
  EXPECT_EQ(flat.GetNumRoots(), 2);  // a zero `a` is not linear
  EXPECT_FALSE(std::isfinite(flat.GetFirstRoot()));
  two.SetC(0.0);
  EXPECT_EQ(two.GetFirstRoot(), 1.0);  // unchanged until Solve
  ASSERT_TRUE(two.Solve());
  EXPECT_EQ(two.GetSecondRoot(), 3.0);
  EXPECT_EQ(two.Evaluate(4.0), 4.0);
}

TEST(Quadratic1d, VertexCoefficientsEqualityAndFit) {
  double x = 7, y = 7, a = 9, b = 9, c = 9;
  ASSERT_TRUE(MM1dQuadratic(1, -2, 3).GetTopOfQuadratic(x, y));
  EXPECT_TRUE(x == 1.0 && y == 2.0);
  EXPECT_FALSE(MM1dQuadratic(0, 5, 6).GetCoefficients(a, b, c));
  EXPECT_EQ(a + b + c, 0.0);  // zeroed even though b and c are not
  // Strictly below 1.4901161193847656e-8 per coefficient.
  const double t = 1.4901161193847656e-08;
  EXPECT_FALSE(MM1dQuadratic(0, 0, 0) == MM1dQuadratic(0, 0, -t));
  EXPECT_TRUE(MM1dQuadratic(0, 0, 0) == MM1dQuadratic(0, std::nextafter(t, 0.0), 0));

  MM1dQuadratic q(5, 5, 5);
  EXPECT_FALSE(q.FitThroughMap({{0, 1}, {1, 0}}));
  EXPECT_EQ(q.a, 5.0);
  ASSERT_TRUE(q.FitThroughMap({{0, 1}, {1, 0}, {2, 1}}));
  EXPECT_TRUE(q == MM1dQuadratic(1, -2, 1));
  // Seeded samples on a known quadratic; the normal equations have a
  // condition number of ~1e3 here, so 1e-12.
  std::mt19937 rng(99);
  std::uniform_real_distribution<double> u(-3.0, 3.0);
  std::map<double, double> samples;
  for (int i = 0; i < 50; ++i) {
    const double v = u(rng);
    samples[v] = 0.5 * v * v - 1.25 * v + 4.0;
  }
  ASSERT_TRUE(q.FitThroughMap(samples));
  EXPECT_NEAR(q.a, 0.5, 1e-12);
  EXPECT_NEAR(q.b, -1.25, 1e-12);
  EXPECT_NEAR(q.c, 4.0, 1e-12);
}

}  // namespace
