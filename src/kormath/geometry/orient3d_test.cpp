#include <kormath/geometry/orient3d.h>

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>

namespace {

using KorMathPredicates::orient3d;

// Independent oracle: the sign of det(a - d; b - d; c - d) in exact integer
// arithmetic. Every finite double is M 2^e with an integer M of 53 bits; all
// twelve coordinates are brought to the smallest such exponent, which scales
// the determinant by a positive power of two and keeps its sign.
int ExactSign(const double *a, const double *b, const double *c, const double *d) {
  const double *pts[4] = {a, b, c, d};
  long mant[4][3];
  int exps[4][3];
  int lowest = 1 << 20;
  for (int i = 0; i < 4; ++i) {
    for (int k = 0; k < 3; ++k) {
      int e = 0;
      const double m = std::frexp(pts[i][k], &e);
      mant[i][k] = static_cast<long>(std::ldexp(m, 53));
      exps[i][k] = e - 53;
      if (mant[i][k] != 0 && exps[i][k] < lowest) lowest = exps[i][k];
    }
  }
  static mpz_class z[4][3];  // reused: no allocation per call
  for (int i = 0; i < 4; ++i) {
    for (int k = 0; k < 3; ++k) {
      z[i][k] = mant[i][k];
      if (mant[i][k] != 0) z[i][k] <<= static_cast<unsigned long>(exps[i][k] - lowest);
    }
  }
  static mpz_class m[3][3];
  for (int r = 0; r < 3; ++r) {
    for (int k = 0; k < 3; ++k) m[r][k] = z[r][k] - z[3][k];
  }
  static mpz_class det;
  det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                        m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                        m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
  return sgn(det);
}

int SignOf(double v) { return v > 0.0 ? 1 : (v < 0.0 ? -1 : 0); }

double Ulps(double v, int k) {
  for (; k > 0; --k) v = std::nextafter(v, HUGE_VAL);
  for (; k < 0; ++k) v = std::nextafter(v, -HUGE_VAL);
  return v;
}

TEST(Orient3d, FixedTetrahedronPinsTheSignConvention) {
  // d above the counter-clockwise triangle a, b, c gives a negative value;
  // swapping two rows flips it; coplanar gives exactly 0.
  const double a[3] = {0, 0, 0}, b[3] = {1, 0, 0}, c[3] = {0, 1, 0};
  const double above[3] = {0, 0, 1}, below[3] = {0, 0, -1}, on[3] = {0.25, 0.25, 0};
  EXPECT_EQ(orient3d(a, b, c, above), -1.0);  // small integers: the plain stage is exact
  EXPECT_EQ(orient3d(a, b, c, below), 1.0);
  EXPECT_EQ(orient3d(b, a, c, above), 1.0);
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
  std::printf("orient3d near-degenerate seed %u\n", seed);
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::uniform_int_distribution<int> ulps(-4, 4);
  std::uniform_int_distribution<int> small(-1000, 1000);
  std::uniform_int_distribution<int> exponent(-100, 100);
  const int kCases = 500000;  // about 3 s of CPU in a Debug build
  int wrong = 0;
  long stages[5] = {0, 0, 0, 0, 0};
  int zeros = 0;
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
        q[0] = x + big;
        q[1] = y - big;
        q[2] = 3.0 * x - 5.0 * y + 7.0 + big;
      }
    } else {
      for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) p[i][k] = offset + unit(rng) * scale;
      }
      if (family == 3) {
        const double s = unit(rng);
        for (int k = 0; k < 3; ++k) p[2][k] = Ulps(p[0][k] + s * (p[1][k] - p[0][k]), ulps(rng));
        for (int k = 0; k < 3; ++k) p[3][k] = offset + unit(rng) * scale;
      } else {
        const double s = unit(rng), t = unit(rng);
        for (int k = 0; k < 3; ++k) {
          p[3][k] = Ulps(p[0][k] + s * (p[1][k] - p[0][k]) + t * (p[2][k] - p[0][k]), ulps(rng));
        }
      }
      if (family == 4) {
        // One point far out, or one tiny: magnitudes up to 2^200 apart.
        const int which = n % 4;
        const double factor = std::ldexp(1.0, n % 8 < 4 ? 100 : -100);
        for (int k = 0; k < 3; ++k) p[which][k] *= factor;
      }
    }
    int stage = 0;
    const double v = orient3d(p[0], p[1], p[2], p[3], stage);
    const int exact = ExactSign(p[0], p[1], p[2], p[3]);
    ++stages[stage];
    if (exact == 0) ++zeros;
    if (SignOf(v) != exact) {
      ++wrong;
      if (wrong < 5) {
        ADD_FAILURE() << "case " << n << " family " << family << " stage " << stage << " value " << v
                      << " exact sign " << exact;
      }
    }
  }
  std::printf("orient3d: %d cases, %d wrong signs, %d exactly coplanar; decided by stage 1: %ld, 2: %ld, 3: %ld, 4: %ld\n",
              kCases, wrong, zeros, stages[1], stages[2], stages[3], stages[4]);
  EXPECT_EQ(wrong, 0);
  // Every stage must have been exercised, the exact one included.
  EXPECT_GT(stages[2], 0);
  EXPECT_GT(stages[3], 0);
  EXPECT_GT(stages[4], 0);
}

}  // namespace
