#ifndef KORMATH_LINALG_MATRIX2X2_H
#define KORMATH_LINALG_MATRIX2X2_H

// A 2x2 value matrix of double with inversion, Cramer's rule and a
// closed-form eigen-analysis. Elements are public and row-major:
// m[row][column]. No base, owns nothing, copies element by element.

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>

class KORMATH_API MMatrix2x2 {
 public:
  // Row-major elements: m[0][0] = a00, m[0][1] = a01, m[1][0] = a10,
  // m[1][1] = a11.
  double m[2][2];

  // The zero matrix.
  MMatrix2x2();
  MMatrix2x2(double a00, double a01, double a10, double a11);
  virtual ~MMatrix2x2();

  MMatrix2x2(const MMatrix2x2 &) = default;
  MMatrix2x2 &operator=(const MMatrix2x2 &) = default;

  double &operator()(unsigned int row, unsigned int column) { return m[row][column]; }
  double operator()(unsigned int row, unsigned int column) const { return m[row][column]; }

  // Inverts in place. A |determinant| below 2.220446049250313e-14 (100 machine
  // epsilons, strict) returns false and leaves the matrix unchanged. The
  // off-diagonal elements are negated after the scaling, so a zero becomes
  // -0.0.
  bool Invert();

  // Solves A x = b by Cramer's rule. Only an exactly zero determinant fails:
  // deliberately looser than Invert, so a matrix that Invert refuses may
  // still be solved here.
  bool SolveSquareSet(double *const x, double *const b) const;
  bool SolveSquareSet(MMPoint2d<double> &x, MMPoint2d<double> const &b) const;

  // Two eigenvalues, the larger first. A |determinant| below
  // 2.220446049250313e-15 gives (trace, 0). A discriminant within that
  // tolerance of 0 counts as a double eigenvalue; a more negative one
  // (complex eigenvalues) returns false with `values` untouched.
  bool GetEigenValues(double *const values) const;

  // A unit eigenvector of `value`. The call is refused when
  // (a00 - v)(a11 - v) - a10 a01 > m * t * m, with m the signed maximum
  // element and t = 2.220446049250313e-15; only the positive side of that
  // residual is tested, on purpose, so a large negative residual passes.
  // With negligible off-diagonals (below t) the result is the axis whose
  // diagonal element is within t of `value`, else false.
  bool GetEigenVector(double *const vector, double value) const;

  MMatrix2x2 operator*(const MMatrix2x2 &o) const;

 private:
  bool _SolveSquareSet(double &x0, double &x1, double b0, double b1) const;
};

#endif  // KORMATH_LINALG_MATRIX2X2_H
