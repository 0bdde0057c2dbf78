#ifndef KORMATH_LINALG_NUMERICAL_METHODS_H
#define KORMATH_LINALG_NUMERICAL_METHODS_H

// One-dimensional search over a caller's function: downhill bracketing with
// parabolic extrapolation, golden-section search for an extremum, and
// Ridders' method for a root. A maximum is searched by multiplying every
// function value by the EXTREMUM factor (-1), so one code serves both.
//
// The constants are deliberately the short values 0.381966, 0.618034 and
// 1.618034, not the CMathConst golden-section ones. What counts for speed is
// the number of function calls.

#include <kormath/export.h>

// A function of one variable. The search functions do not own it and may
// call it any number of times.
class KORMATH_API IFunction1D {
 public:
  virtual double Evaluate(double x) const = 0;

 protected:
  ~IFunction1D() = default;
};

namespace MMNumericalMethods {

// Factor applied to every function value.
enum EXTREMUM : int { EXTREMUM_MINIMUM = 1, EXTREMUM_MAXIMUM = -1 };

enum BRACKET_EXTREMUM_RETVAL : int {
  BRACKET_EXTREMUM_FOUND = 0,          // a, b, c bracket an extremum
  BRACKET_EXTREMUM_LIMIT_REACHED = 1,  // the search passed `limit`
  BRACKET_EXTREMUM_ROOT_FOUND = 2      // f(a), f(b) of opposite sign or one 0
};

// Downhill bracketing from a towards b (the points are not swapped, so the
// search goes towards b even if the function rises), with parabolic steps of
// at most 100 times the current step. Overwrites all three points. With
// stopAtRoot it returns BRACKET_EXTREMUM_ROOT_FOUND as soon as fa * fb <= 0.
// The limit test is `limit <= u` on the signed value, so a search running
// towards minus infinity never reaches it and has no iteration limit.
KORMATH_API BRACKET_EXTREMUM_RETVAL BracketExtremumOrRoot(double &c, double &a, double &b, EXTREMUM extremum,
                                                          IFunction1D const *function, double limit, bool stopAtRoot);

// Golden-section search on a bracket a < b < c or a > b > c. Stops when the
// interval is at most 1e-10 wide or at most tolerance * (|x1| + |x2|). Equal
// values keep the left part, and at the end return x2. One function call per
// iteration.
KORMATH_API double FindPointOfExtremum(double a, double b, double c, EXTREMUM extremum, IFunction1D const *function,
                                       double tolerance);

// Ridders' method on [low, high], at most 60 iterations of two calls each.
// Without a strict sign change it returns low if f(low) == 0, else high if
// f(high) == 0, else 0.0; running out of iterations also returns 0.0. Both
// are silent: 0.0 cannot be told from a root at 0.
KORMATH_API double FindRoot(double low, double high, IFunction1D const *function, double tolerance);

}  // namespace MMNumericalMethods

#endif  // KORMATH_LINALG_NUMERICAL_METHODS_H
