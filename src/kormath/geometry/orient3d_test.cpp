#include <kormath/geometry/orient3d.h>

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>

namespace {

using KorMathPredicates::orient3d;

// Independent oracle: the sign of det(a - d; b - d; c - d) in exact integer
// arithmetic. Scaling every coordinate by 2^(53 - e), e the lowest leading
// exponent, makes each an exact integer and keeps the determinant's sign.
int ExactSign(const double (&p)[4][3]) {
  int lowest = INT_MAX, e = 0;
  for (const auto &q : p)
    for (double v : q)
      if (v != 0 && (std::frexp(v, &e), e < lowest)) lowest = e;
  static mpz_class z[4][3], m[3][3], det;  // reused: no allocation per call
  for (int i = 0; i < 4; ++i)
    for (int k = 0; k < 3; ++k) z[i][k] = std::ldexp(p[i][k], 53 - lowest);
  for (int r = 0; r < 3; ++r)
    for (int k = 0; k < 3; ++k) m[r][k] = z[r][k] - z[3][k];
  det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
        m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
  return sgn(det);
}

double Ulps(double v, int k) {
  for (int i = 0; i < std::abs(k); ++i) v = std::nextafter(v, k * HUGE_VAL);
  return v;
}

TEST(Orient3d, FixedTetrahedronPinsTheSignConvention) {
  // d above the counter-clockwise triangle a, b, c gives a negative value;
  // coplanar gives exactly 0.
  const double a[3] = {0, 0, 0}, b[3] = {1, 0, 0}, c[3] = {0, 1, 0};
  const double above[3] = {0, 0, 1}, below[3] = {0, 0, -1}, on[3] = {0.25, 0.25, 0};
  EXPECT_EQ(orient3d(a, b, c, above), -1.0);  // small integers: the plain stage is exact
  EXPECT_EQ(orient3d(a, b, c, below), 1.0);
  EXPECT_EQ(orient3d(a, b, c, on), 0.0);
}

// Half a million seeded near-degenerate cases, each sign compared with the
// rational oracle. Zero wrong signs allowed. The families:
//  0. d on the plane of a, b, c up to rounding, then moved by up to 4 ulps;
//  1. exactly coplanar integer points, shifted by a large offset;
//  2. as 0 around a large common offset (inexact differences: tail stages);
//  3. c nearly on the line a-b;
//  4. huge and tiny magnitudes mixed (no overflow or underflow).
TEST(Orient3d, NearDegenerateCasesAgainstRationalArithmetic) {
  const std::uint32_t seed = 7793u;
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::uniform_int_distribution<int> ulps(-4, 4), small(-1000, 1000), exponent(-100, 100);
  const int kCases = 500000;  // about 2.5 s of CPU in a Debug build
  int wrong = 0;
  long stages[5] = {0, 0, 0, 0, 0};
  for (int n = 0; n < kCases; ++n) {
    double p[4][3];
    const int family = n % 5;
    const double scale = std::ldexp(1.0, exponent(rng));
    const double offset = family == 2 ? std::ldexp(unit(rng), 30) : 0.0;
    if (family == 1) {
      // Plane z = 3 x - 5 y + 7, integer points, exact after the offset.
      const double big = std::ldexp(1.0, 40) * (n % 7);
      for (auto &q : p) {
        const double x = small(rng), y = small(rng);
        q[0] = x + big, q[1] = y - big, q[2] = 3.0 * x - 5.0 * y + 7.0 + big;
      }
    } else {
      for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 3; ++k) p[i][k] = offset + unit(rng) * scale;
      const double s = unit(rng);
      if (family == 3) {
        for (int k = 0; k < 3; ++k) p[2][k] = Ulps(p[0][k] + s * (p[1][k] - p[0][k]), ulps(rng));
        for (int k = 0; k < 3; ++k) p[3][k] = offset + unit(rng) * scale;
      } else {
        const double t = unit(rng);
        for (int k = 0; k < 3; ++k)
          p[3][k] = Ulps(p[0][k] + s * (p[1][k] - p[0][k]) + t * (p[2][k] - p[0][k]), ulps(rng));
      }
      // Family 4: one point far out, or one tiny: magnitudes up to 2^200 apart.
      if (family == 4) {
        for (int k = 0; k < 3; ++k) p[n % 4][k] *= std::ldexp(1.0, n % 8 < 4 ? 100 : -100);
      }
    }
    int stage = 0;
    const double v = orient3d(p[0], p[1], p[2], p[3], stage);
    const int exact = ExactSign(p);
    ++stages[stage];
    if ((v > 0.0) - (v < 0.0) != exact && ++wrong < 5) {
      ADD_FAILURE() << "seed " << seed << " case " << n << " family " << family << " stage " << stage << " value " << v
                    << " exact sign " << exact;
    }
  }
  std::printf("orient3d seed %u: %d wrong of %d; decided by stage 1: %ld, 2: %ld, 3: %ld, 4: %ld\n", seed, wrong,
              kCases, stages[1], stages[2], stages[3], stages[4]);
  EXPECT_EQ(wrong, 0);
  // Every stage must have been exercised, the exact one included.
  EXPECT_GT(stages[2], 0);
  EXPECT_GT(stages[3], 0);
  EXPECT_GT(stages[4], 0);
}

}  // namespace
