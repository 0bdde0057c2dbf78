#include <kormath/linalg/polynomial.h>
#include <kormath/linalg/symmetric_matrix.h>

#include <cmath>

namespace {

// Coefficients at or below five machine epsilons do not count towards the
// degree.
constexpr double kPolynomialZero = 1.1102230246251565e-15;

// Tolerance of the coefficient comparison of MM1dQuadratic::operator==.
constexpr double kQuadraticEqualTolerance = 1.4901161193847656e-08;

}  // namespace

namespace KorMathDetail {

void SolveQuadraticRoots(const double coefficients[3], std::complex<double> roots[2]) {
  const double c0 = coefficients[0];
  const double c1 = coefficients[1];
  const double c2 = coefficients[2];
  const double d = c1 * c1 - c2 * 4.0 * c0;
  const std::complex<double> r = std::sqrt(std::complex<double>(d, 0.0));
  const double f = 0.5 / c2;
  roots[0] = (r - c1) * f;
  roots[1] = (-r - c1) * f;
}

// Cardano's formulas for a cubic whose leading coefficient is c[3].
void SolveCubicRoots(const double coefficients[4], std::complex<double> roots[3]) {
  using Complex = std::complex<double>;
  double c[4] = {coefficients[0], coefficients[1], coefficients[2], coefficients[3]};
  const double leading = c[3];
  for (double &value : c) value /= leading;

  const double a = c[2];
  const double shift = a / -3.0;
  // Depressed cubic t^3 + p t + q.
  const double p = c[1] - a * a / 3.0;
  const double q = c[0] - a * c[1] / 3.0 + (2.0 * a * a * a) / 27.0;

  const double discriminant = (p * 4.0 * p * p) / 27.0 + q * q;
  const Complex r = std::sqrt(Complex(discriminant, 0.0));
  const Complex v = (r - q) * 0.5;

  Complex u;
  Complex w;
  if (std::abs(v) <= kPolynomialZero) {
    // No cube root: all three roots collapse onto the shift.
    u = v;
    w = Complex(0.0, 0.0);
  } else {
    if (v.imag() == 0.0 && !(v.real() < 0.0)) {
      u = Complex(std::pow(v.real(), 1.0 / 3.0), 0.0);
    } else {
      // Principal complex cube root; the factor is the double nearest 1/3.
      u = std::exp(std::log(v) * (1.0 / 3.0));
    }
    w = Complex(-p, 0.0) / (3.0 * u);
  }

  const double h = std::sqrt(3.0) * 0.5;
  const Complex m(-0.5, h);
  const Complex mc = std::conj(m);
  roots[0] = u + w + shift;
  roots[1] = u * m + w * mc + shift;
  roots[2] = u * mc + w * m + shift;
}

}  // namespace KorMathDetail

bool SolvePolynomial(const std::vector<double> &coefficients, std::vector<std::complex<double>> &roots) {
  std::size_t degree = 0;
  for (std::size_t i = coefficients.size(); i-- > 0;) {
    if (std::fabs(coefficients[i]) > kPolynomialZero) {
      degree = i;
      break;
    }
  }

  switch (degree) {
    case 1:
      roots.assign(1, std::complex<double>(-coefficients[0] / coefficients[1], 0.0));
      return true;
    case 2:
      roots.resize(2);
      KorMathDetail::SolveQuadraticRoots(coefficients.data(), roots.data());
      return true;
    case 3:
      roots.resize(3);
      KorMathDetail::SolveCubicRoots(coefficients.data(), roots.data());
      return true;
    default:
      // Degree 0 (constant or zero) and degrees above 3 have no solver.
      return false;
  }
}

std::complex<double> EvaluatePolynomial(const std::vector<double> &coefficients, std::complex<double> x) {
  if (coefficients.empty()) return std::complex<double>(0.0, 0.0);
  std::complex<double> result(coefficients.back(), 0.0);
  for (std::size_t i = coefficients.size() - 1; i-- > 0;) result = result * x + coefficients[i];
  return result;
}

// ---- MMQuadraticEquation --------------------------------------------------

MMQuadraticEquation::MMQuadraticEquation(double a_, double b_, double c_) { Set(a_, b_, c_); }

void MMQuadraticEquation::Set(double a_, double b_, double c_) {
  a = a_;
  b = b_;
  c = c_;
  Solve();
}

void MMQuadraticEquation::SetA(double value) { a = value; }
void MMQuadraticEquation::SetB(double value) { b = value; }
void MMQuadraticEquation::SetC(double value) { c = value; }

bool MMQuadraticEquation::Solve() {
  firstRoot = 0.0;
  secondRoot = 0.0;
  discriminant = b * b - a * 4.0 * c;
  if (discriminant < 0.0) {
    numRoots = 0;
    return false;
  }
  numRoots = discriminant == 0.0 ? 1 : 2;
  const double s = std::sqrt(discriminant);
  const double d = a + a;
  firstRoot = (-b - s) / d;
  secondRoot = (s - b) / d;
  return true;
}

double MMQuadraticEquation::GetRoot(unsigned char index) const { return index == 0 ? firstRoot : secondRoot; }
double MMQuadraticEquation::GetFirstRoot() const { return firstRoot; }
double MMQuadraticEquation::GetSecondRoot() const { return secondRoot; }
double MMQuadraticEquation::GetDiscriminant() const { return discriminant; }
unsigned char MMQuadraticEquation::GetNumRoots() const { return numRoots; }
unsigned char MMQuadraticEquation::GetNumSolutions() const { return GetNumRoots(); }
double MMQuadraticEquation::Evaluate(double x) const { return x * a * x + x * b + c; }

// ---- MM1dQuadratic ---------------------------------------------------------

MM1dQuadratic::MM1dQuadratic(double a_, double b_, double c_) : a(a_), b(b_), c(c_) {}

void MM1dQuadratic::Set(double a_, double b_, double c_) {
  a = a_;
  b = b_;
  c = c_;
}

double MM1dQuadratic::operator()(double x) const { return x * a * x + x * b + c; }

bool MM1dQuadratic::operator==(const MM1dQuadratic &o) const {
  return std::fabs(a - o.a) < kQuadraticEqualTolerance && std::fabs(b - o.b) < kQuadraticEqualTolerance &&
         std::fabs(c - o.c) < kQuadraticEqualTolerance;
}

bool MM1dQuadratic::FitThroughMap(const std::map<double, double> &samples) {
  if (samples.size() < 3) return false;

  MSymmetricMatrix normal(3);
  normal.SetToZero();
  // The coefficients double as the right side of the normal equations.
  double rhs[3] = {0.0, 0.0, 0.0};
  for (const auto &sample : samples) {
    const double x = sample.first;
    const double y = sample.second;
    const double x2 = x * x;
    normal.Element(0, 0) += x2 * x2;
    normal.Element(1, 0) += x2 * x;
    normal.Element(2, 0) += x2;
    normal.Element(2, 1) += x;
    rhs[0] += x2 * y;
    rhs[1] += x * y;
    rhs[2] += y;
  }
  normal.Element(1, 1) = normal.Value(2, 0);
  normal.Element(2, 2) = static_cast<double>(samples.size());

  MLowerTriangularMatrix factor;
  bool ok = normal.FACTORISE_CHOLESKY(factor);
  if (ok) ok = factor.SOLVE_G_TG_X_B(rhs);
  a = rhs[0];
  b = rhs[1];
  c = rhs[2];
  return ok;
}

bool MM1dQuadratic::GetTopOfQuadratic(double &x, double &y) const {
  if (a == 0.0) return false;
  x = b / (a * -2.0);
  y = c - b * b / (a * 4.0);
  return true;
}

bool MM1dQuadratic::GetCoefficients(double &a_, double &b_, double &c_) const {
  a_ = 0.0;
  b_ = 0.0;
  c_ = 0.0;
  if (a == 0.0) return false;
  a_ = a;
  b_ = b;
  c_ = c;
  return true;
}
