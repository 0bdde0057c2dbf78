#ifndef KORMATH_TRANSFORMS_TWIST_TRANSFORM_TEST_H
#define KORMATH_TRANSFORMS_TWIST_TRANSFORM_TEST_H

// Test helper: a twist about z by `rate` radians per unit of z, a transform
// of a kind that composition cannot merge (as a field transform). It counts
// its live instances, so that tests see every clone and every delete.

#include <kormath/transforms/transform.h>

#include <cmath>

class TwistForTest : public MMTransform {
 public:
  static inline int live = 0;
  explicit TwistForTest(double rate) : m_rate(rate) { ++live; }
  TwistForTest(const TwistForTest &other) : MMTransform(other), m_rate(other.m_rate) { ++live; }
  ~TwistForTest() override { --live; }
  TwistForTest *Clone() const override { return new TwistForTest(*this); }
  bool ConvertFloat16(float *) const override { return false; }
  bool Invert() override { return (m_rate = -m_rate, true); }
  bool IsIdentity() const override { return m_rate == 0.0; }

 protected:
  bool _Transform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool) const override {
    return Turn(out, in, m_rate);
  }
  bool _InverseTransform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool) const override {
    return Turn(out, in, -m_rate);
  }

 private:
  static bool Turn(MMPoint3d<double> &out, const MMPoint3d<double> &in, double rate) {
    const double a = rate * in.z, c = std::cos(a), s = std::sin(a);
    out = MMPoint3d<double>(c * in.x - s * in.y, s * in.x + c * in.y, in.z);
    return true;
  }
  double m_rate;
};

#endif  // KORMATH_TRANSFORMS_TWIST_TRANSFORM_TEST_H
