#include <kormath/linalg/matrix2x2.h>

#include <cmath>

namespace {

constexpr double kInvertTolerance = 2.220446049250313e-14;  // 100 machine epsilons
constexpr double kEigenTolerance = 2.220446049250313e-15;   // 10 machine epsilons

}  // namespace

MMatrix2x2::MMatrix2x2() : m{{0.0, 0.0}, {0.0, 0.0}} {}
MMatrix2x2::MMatrix2x2(double a00, double a01, double a10, double a11) : m{{a00, a01}, {a10, a11}} {}
MMatrix2x2::~MMatrix2x2() = default;

bool MMatrix2x2::Invert() {
  const double det = m[0][0] * m[1][1] - m[0][1] * m[1][0];
  if (std::fabs(det) < kInvertTolerance) return false;
  const double s = 1.0 / det;
  const double a00 = m[1][1] * s;
  const double a01 = -(m[0][1] * s);
  const double a10 = -(m[1][0] * s);
  const double a11 = m[0][0] * s;
  m[0][0] = a00;
  m[0][1] = a01;
  m[1][0] = a10;
  m[1][1] = a11;
  return true;
}

bool MMatrix2x2::_SolveSquareSet(double &x0, double &x1, double b0, double b1) const {
  const double det = m[1][1] * m[0][0] - m[0][1] * m[1][0];
  if (det == 0.0) return false;
  x0 = (m[1][1] * b0 - m[0][1] * b1) / det;
  x1 = (b1 * m[0][0] - m[1][0] * b0) / det;
  return true;
}

bool MMatrix2x2::SolveSquareSet(double *const x, double *const b) const {
  return _SolveSquareSet(x[0], x[1], b[0], b[1]);
}

bool MMatrix2x2::SolveSquareSet(MMPoint2d<double> &x, MMPoint2d<double> const &b) const {
  return _SolveSquareSet(x.x, x.y, b.x, b.y);
}

bool MMatrix2x2::GetEigenValues(double *const values) const {
  const double trace = m[0][0] + m[1][1];
  if (std::fabs(m[0][0] * m[1][1] - m[0][1] * m[1][0]) < kEigenTolerance) {
    values[0] = trace;
    values[1] = 0.0;
    return true;
  }
  const double d = m[0][0] - m[1][1];
  double disc = 4.0 * m[0][1] * m[1][0] + d * d;
  if (std::fabs(disc) < kEigenTolerance) {
    disc = 0.0;
  } else if (disc < 0.0) {
    return false;
  }
  const double s = std::sqrt(disc);
  values[0] = (s + trace) * 0.5;
  values[1] = (trace - s) * 0.5;
  return true;
}

bool MMatrix2x2::GetEigenVector(double *const vector, double value) const {
  double largest = m[0][0];  // signed maximum
  if (m[0][1] > largest) largest = m[0][1];
  if (m[1][0] > largest) largest = m[1][0];
  if (m[1][1] > largest) largest = m[1][1];
  // One-sided on purpose: only a positive residual is refused.
  if ((m[0][0] - value) * (m[1][1] - value) - m[1][0] * m[0][1] > largest * kEigenTolerance * largest) return false;

  const double a01 = std::fabs(m[0][1]);
  const double a10 = std::fabs(m[1][0]);
  if (a01 >= a10 && a01 >= kEigenTolerance) {
    const double r = (value - m[0][0]) / m[0][1];
    const double x = 1.0 / std::sqrt(r * r + 1.0);
    vector[0] = x;
    vector[1] = x * r;
    return true;
  }
  if (a10 > a01 && a10 >= kEigenTolerance) {
    const double r = (value - m[1][1]) / m[1][0];
    const double y = 1.0 / std::sqrt(r * r + 1.0);
    vector[0] = y * r;
    vector[1] = y;
    return true;
  }
  if (std::fabs(m[0][0] - value) < kEigenTolerance) {
    vector[0] = 1.0;
    vector[1] = 0.0;
    return true;
  }
  if (std::fabs(m[1][1] - value) < kEigenTolerance) {
    vector[0] = 0.0;
    vector[1] = 1.0;
    return true;
  }
  return false;
}

MMatrix2x2 MMatrix2x2::operator*(const MMatrix2x2 &o) const {
  return MMatrix2x2(m[0][0] * o.m[0][0] + m[0][1] * o.m[1][0], m[0][0] * o.m[0][1] + m[0][1] * o.m[1][1],
                    m[1][0] * o.m[0][0] + m[1][1] * o.m[1][0], m[1][0] * o.m[0][1] + m[1][1] * o.m[1][1]);
}
