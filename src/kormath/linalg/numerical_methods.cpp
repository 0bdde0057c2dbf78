#include <kormath/linalg/numerical_methods.h>

#include <algorithm>
#include <cmath>

namespace MMNumericalMethods {

namespace {

constexpr double kGoldenSmall = 0.381966;        // golden section, smaller part
constexpr double kGoldenLarge = 0.618034;        // golden section, larger part
constexpr double kGoldenGrowth = 1.618034;       // growth of a bracket step
constexpr double kParabolicLimit = 100.0;        // largest parabolic step, in steps
constexpr double kParabolaFloor = 1e-20;         // floor of the parabola's denominator
constexpr double kGoldenStopWidth = 1e-10;       // absolute stopping width
constexpr double kNoRootEstimate = -1.1111e+30;  // no estimate yet
constexpr int kRootIterations = 60;

}  // namespace

BRACKET_EXTREMUM_RETVAL BracketExtremumOrRoot(double &c, double &a, double &b, EXTREMUM extremum,
                                              IFunction1D const *function, double limit, bool stopAtRoot) {
  const double factor = static_cast<double>(extremum);
  auto f = [&](double x) { return function->Evaluate(x) * factor; };

  double fa = f(a);
  double fb = f(b);
  c = b + kGoldenGrowth * (b - a);
  double fc = f(c);
  while (fc <= fb) {
    if (stopAtRoot && fa * fb <= 0.0) return BRACKET_EXTREMUM_ROOT_FOUND;
    const double q = (fb - fa) * (b - c);
    const double r = (fb - fc) * (b - a);
    const double d = std::copysign(std::max(std::fabs(q - r), kParabolaFloor), q - r);
    double u = b - ((b - c) * q - (b - a) * r) / (2.0 * d);
    const double ulimit = c + kParabolicLimit * (c - b);
    double fu;
    if ((u - c) * (b - u) > 0.0) {
      // u between b and c.
      fu = f(u);
      if (fu < fc) {
        a = b;
        b = u;
        return BRACKET_EXTREMUM_FOUND;
      }
      if (fb < fu) {
        c = u;
        return BRACKET_EXTREMUM_FOUND;
      }
      u = c + kGoldenGrowth * (c - b);
      fu = f(u);
    } else if ((c - u) * (u - ulimit) > 0.0) {
      // u between c and ulimit.
      fu = f(u);
      if (fu < fc) {
        b = c;
        fb = fc;
        c = u;
        fc = fu;
        u = u + kGoldenGrowth * (u - b);
        fu = f(u);
        if (stopAtRoot && fa * fb <= 0.0) return BRACKET_EXTREMUM_ROOT_FOUND;
      }
    } else if ((ulimit - c) * (u - ulimit) < 0.0) {
      u = c + kGoldenGrowth * (c - b);
      fu = f(u);
    } else {
      u = ulimit;
      fu = f(u);
    }
    a = b;
    b = c;
    c = u;
    fa = fb;
    fb = fc;
    fc = fu;
    if (limit <= u) return BRACKET_EXTREMUM_LIMIT_REACHED;
  }
  return BRACKET_EXTREMUM_FOUND;
}

double FindPointOfExtremum(double a, double b, double c, EXTREMUM extremum, IFunction1D const *function,
                           double tolerance) {
  const double factor = static_cast<double>(extremum);
  auto f = [&](double x) { return function->Evaluate(x) * factor; };

  double x1;
  double x2;
  if (std::fabs(c - b) <= std::fabs(b - a)) {
    x1 = b - kGoldenSmall * (b - a);
    x2 = b;
  } else {
    x1 = b;
    x2 = b + kGoldenSmall * (c - b);
  }
  double x0 = a;
  double x3 = c;
  double f1 = f(x1);
  double f2 = f(x2);
  while (std::fabs(x3 - x0) > kGoldenStopWidth && std::fabs(x3 - x0) > tolerance * (std::fabs(x1) + std::fabs(x2))) {
    if (f1 <= f2) {
      x3 = x2;
      x2 = x1;
      x1 = kGoldenSmall * x0 + kGoldenLarge * x1;
      f2 = f1;
      f1 = f(x1);
    } else {
      x0 = x1;
      x1 = x2;
      x2 = kGoldenSmall * x3 + kGoldenLarge * x2;
      f1 = f2;
      f2 = f(x2);
    }
  }
  return f1 < f2 ? x1 : x2;
}

double FindRoot(double low, double high, IFunction1D const *function, double tolerance) {
  double fl = function->Evaluate(low);
  double fh = function->Evaluate(high);
  const bool bracketed = (fl > 0.0 && fh < 0.0) || (fl < 0.0 && fh > 0.0);
  if (!bracketed) {
    if (fl == 0.0) return low;
    if (fh == 0.0) return high;
    return 0.0;
  }
  double xl = low;
  double xh = high;
  double ans = kNoRootEstimate;
  for (int iteration = 0; iteration < kRootIterations; ++iteration) {
    const double xm = (xl + xh) * 0.5;
    const double fm = function->Evaluate(xm);
    const double s = std::sqrt(fm * fm - fl * fh);
    if (s == 0.0) return ans;
    const double sign = fl < fh ? -1.0 : 1.0;
    const double xnew = xm + (xm - xl) * (sign * fm / s);
    if (std::fabs(xnew - ans) <= tolerance) return ans;
    ans = xnew;
    const double fnew = function->Evaluate(ans);
    if (fnew == 0.0) return ans;
    // Signs compared by their sign bits.
    if (std::signbit(fm) != std::signbit(fnew)) {
      xl = xm;
      fl = fm;
      xh = ans;
      fh = fnew;
    } else if (std::signbit(fl) != std::signbit(fnew)) {
      xh = ans;
      fh = fnew;
    } else if (std::signbit(fh) != std::signbit(fnew)) {
      xl = ans;
      fl = fnew;
    }
    if (std::fabs(xh - xl) <= tolerance) return ans;
  }
  return 0.0;
}

}  // namespace MMNumericalMethods
