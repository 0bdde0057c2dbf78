#include <gtest/gtest.h>
#include <kormath/linalg/numerical_methods.h>

#include <cmath>
#include <functional>

namespace {

using namespace MMNumericalMethods;

// Counts the calls, which are what the search costs.
struct Counted final : IFunction1D {
  explicit Counted(std::function<double(double)> f) : f(std::move(f)) {}
  double Evaluate(double x) const override { return ++calls, f(x); }
  std::function<double(double)> f;
  mutable int calls = 0;
};

double Parabola(double x) { return x * x - 4.0; }

TEST(BracketExtremumOrRoot, DocumentedOutcomes) {
  Counted f(Parabola), g(Parabola);
  double a = 10, b = 11, c = 0;
  // Searching a maximum uphill of x^2 - 4 runs off past the limit.
  EXPECT_EQ(BracketExtremumOrRoot(c, a, b, EXTREMUM_MAXIMUM, &f, 100000000, false), BRACKET_EXTREMUM_LIMIT_REACHED);
  EXPECT_GE(c, 100000000.0);

  a = -10;
  b = -9;
  ASSERT_EQ(BracketExtremumOrRoot(c, a, b, EXTREMUM_MINIMUM, &g, 100000000, false), BRACKET_EXTREMUM_FOUND);
  // The first parabolic step lands on the vertex beyond c, which is lower,
  // so one golden step past it closes the bracket: 3 + 2 calls.
  EXPECT_EQ(g.calls, 5);
  EXPECT_NEAR(b, 0.0, 1e-13);  // the vertex, up to the rounding of the parabola
  EXPECT_LT(std::min(a, c), 0.0 + 1e-12);
  EXPECT_GT(std::max(a, c), 0.0 - 1e-12);
  EXPECT_LE(Parabola(b), std::min(Parabola(a), Parabola(c)));
  EXPECT_LT(std::fabs(FindPointOfExtremum(a, b, c, EXTREMUM_MINIMUM, &f, 0.0001)), 0.0001);

  a = 0;
  b = 1;
  ASSERT_EQ(BracketExtremumOrRoot(c, a, b, EXTREMUM_MAXIMUM, &f, 100000000, true), BRACKET_EXTREMUM_ROOT_FOUND);
  EXPECT_LE(Parabola(a) * Parabola(b), 0.0);
  EXPECT_NEAR(FindRoot(a, b, &f, 1e-12), 2.0, 1e-6);
}

TEST(FindPointOfExtremum, GoldenSectionCallsAndResults) {
  // The width shrinks by 0.618034 per call to tolerance * (|x1| + |x2|): from
  // width 4 around x = 3 at 1e-8, ln(4 / 6e-8) / ln(1/0.618034) = 38 calls.
  Counted f([](double x) { return (x - 3.0) * (x - 3.0) + 1.0; }), g([](double x) { return std::sin(x); }), h(Parabola);
  EXPECT_NEAR(FindPointOfExtremum(1.0, 2.5, 5.0, EXTREMUM_MINIMUM, &f, 1e-8), 3.0, 1e-7);  // flat: ~sqrt(eps) in x
  EXPECT_GE(f.calls, 36);
  EXPECT_LE(f.calls, 42);
  EXPECT_NEAR(FindPointOfExtremum(0.5, 1.5, 3.0, EXTREMUM_MAXIMUM, &g, 1e-9), M_PI / 2, 1e-7);
  // All points within 1e-10: only the first two evaluations happen.
  FindPointOfExtremum(1.0, 1.0 + 3e-11, 1.0 + 6e-11, EXTREMUM_MINIMUM, &h, 0.0);
  EXPECT_EQ(h.calls, 2);
}

TEST(FindRoot, RiddersMethod) {
  Counted f(Parabola), g([](double x) { return std::cos(x) - x; }), h([](double x) { return 1.0 - x * x * x; });
  EXPECT_EQ(FindRoot(2, 3, &f, 1e-10), 2.0);  // f(2) == 0 at once
  EXPECT_EQ(f.calls, 2);
  EXPECT_EQ(FindRoot(3, 4, &f, 1e-10), 0.0);   // no sign change: silent 0.0
  EXPECT_EQ(FindRoot(-3, 2, &f, 1e-10), 2.0);  // f(high) == 0
  EXPECT_NEAR(FindRoot(0.0, 1.0, &g, 1e-13), 0.7390851332151607, 1e-12);
  EXPECT_LE(g.calls, 2 + 2 * 8);  // quadratic convergence: a handful of two-call iterations
  // A decreasing function exercises the other sign of the update.
  EXPECT_NEAR(FindRoot(0.0, 3.0, &h, 1e-13), 1.0, 1e-12);
}

}  // namespace
