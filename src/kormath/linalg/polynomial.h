#ifndef KORMATH_LINALG_POLYNOMIAL_H
#define KORMATH_LINALG_POLYNOMIAL_H

// Closed-form polynomial roots up to degree 3 and two small quadratic value
// types.

#include <kormath/export.h>

#include <complex>
#include <cstdint>
#include <map>
#include <vector>

// Complex roots of a real polynomial of degree 1, 2 or 3, coefficients in
// ascending order of power. The degree is the highest index whose
// coefficient has magnitude above 1.1102230246251565e-15 (five machine
// epsilons), so trailing tiny coefficients are ignored: (1, 2, 0) is linear.
// Degree 0 (a constant, or the zero polynomial) and degree above 3 return
// false with `roots` untouched. Otherwise `roots` is replaced by `degree`
// entries, unsorted; a lack of real roots is no failure (the roots come back
// complex) and a double root comes back as two equal entries. Degree 3 uses
// Cardano's formulas through std::complex, without iteration.
KORMATH_API bool SolvePolynomial(const std::vector<double> &coefficients, std::vector<std::complex<double>> &roots);

// Horner evaluation from the highest coefficient down; 0 for an empty vector.
KORMATH_API std::complex<double> EvaluatePolynomial(const std::vector<double> &coefficients, std::complex<double> x);

namespace KorMathDetail {
// The degree-2 and degree-3 branches of SolvePolynomial on fixed arrays, for
// callers whose leading coefficient is known to count (the 3x3 eigenvalues);
// they give the same roots as SolvePolynomial without allocating.
void SolveQuadraticRoots(const double coefficients[3], std::complex<double> roots[2]);
void SolveCubicRoots(const double coefficients[4], std::complex<double> roots[3]);
}  // namespace KorMathDetail

// a x^2 + b x + c = 0 over the reals, with the number of roots. A plain value.
// The default constructor leaves every field uninitialised.
class KORMATH_API MMQuadraticEquation {
 public:
  double a;
  double b;
  double c;
  double discriminant;  // last computed b*b - 4*a*c
  double firstRoot;     // 0.0 when there are none
  double secondRoot;    // 0.0 when there are none
  std::uint8_t numRoots;

  MMQuadraticEquation() {}  // NOLINT: uninitialised on purpose
  // Stores the coefficients and calls Solve.
  MMQuadraticEquation(double a, double b, double c);
  MMQuadraticEquation(const MMQuadraticEquation &) = default;
  MMQuadraticEquation &operator=(const MMQuadraticEquation &) = default;
  ~MMQuadraticEquation() = default;

  // Stores the coefficients and calls Solve.
  void Set(double a, double b, double c);
  // Store only; the caller must call Solve.
  void SetA(double value);
  void SetB(double value);
  void SetC(double value);

  // Resets both roots to 0.0 and stores the discriminant. A negative
  // discriminant gives numRoots 0 and false. Otherwise numRoots is 1 when the
  // discriminant is exactly 0.0 (no tolerance) and 2 otherwise, with
  // firstRoot = (-b - s)/(2a) and secondRoot = (s - b)/(2a), s the root of
  // the discriminant: for a > 0 the smaller root comes first, and a double
  // root is stored twice. A zero `a` is not treated as linear, on purpose:
  // the roots become infinities or NaNs and numRoots stays 2 unless b is 0.
  bool Solve();

  // firstRoot for 0, secondRoot for anything else; no bound check.
  double GetRoot(unsigned char index) const;
  double GetFirstRoot() const;
  double GetSecondRoot() const;
  double GetDiscriminant() const;
  unsigned char GetNumRoots() const;
  unsigned char GetNumSolutions() const;  // the same as GetNumRoots
  // x*a*x + x*b + c.
  double Evaluate(double x) const;
};

// A quadratic a x^2 + b x + c as a function. The default constructor leaves
// the coefficients uninitialised.
class KORMATH_API MM1dQuadratic {
 public:
  double a;
  double b;
  double c;

  MM1dQuadratic() {}  // NOLINT: uninitialised on purpose
  MM1dQuadratic(double a, double b, double c);
  void Set(double a, double b, double c);

  // x*a*x + x*b + c.
  double operator()(double x) const;
  // true when each coefficient differs by strictly less than
  // 1.4901161193847656e-8.
  bool operator==(const MM1dQuadratic &o) const;

  // Least-squares fit of y = a x^2 + b x + c through the samples by the
  // normal equations, solved with a packed Cholesky factorisation. Fewer
  // than 3 samples return false with the coefficients unchanged. When the
  // factorisation or a substitution fails (for instance all samples at one
  // or two abscissae) the result is false and the coefficients hold the
  // accumulated sums or partly solved values.
  bool FitThroughMap(const std::map<double, double> &samples);

  // Vertex: x = b/(a*-2), y = c - b*b/(a*4). false when a == 0.0, with x and
  // y untouched.
  bool GetTopOfQuadratic(double &x, double &y) const;

  // Sets all three outputs to 0 first; when a == 0.0 returns false and leaves
  // them 0, even if b and c are not 0. Otherwise copies the coefficients.
  bool GetCoefficients(double &a, double &b, double &c) const;
};

#endif  // KORMATH_LINALG_POLYNOMIAL_H
