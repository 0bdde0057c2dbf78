#ifndef KORMATH_LINALG_MATRIX3X3_H
#define KORMATH_LINALG_MATRIX3X3_H

// A 3x3 value matrix of double with the closed-form eigen-analysis that the
// plane fit, the sphere fit and the rigid point mapping rest on.
//
// Nothing here iterates: eigenvalues are the roots of the characteristic
// cubic (SolvePolynomial), eigenvectors come from cross products of rows,
// and the nearest rotation is A (A^T A)^(-1/2) finished by
// KorMathUtility::MakeOrthonormal. Every failure is a false result; nothing
// throws. Working storage lives on the stack; the only heap use is the small
// coefficient and root vectors of the polynomial solver.
//
// Elements are public and row-major: m[row][column]. The class has no base,
// owns nothing, and copies element by element.

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>

class KORMATH_API MMatrix3x3 {
 public:
  // Row-major elements: m[0][0] = a00, m[0][1] = a01, ... m[2][2] = a22.
  double m[3][3];

  // The zero matrix.
  MMatrix3x3();
  // Row-major values.
  MMatrix3x3(double a00, double a01, double a02, double a10, double a11, double a12, double a20, double a21,
             double a22);
  virtual ~MMatrix3x3();

  MMatrix3x3(const MMatrix3x3 &) = default;
  MMatrix3x3 &operator=(const MMatrix3x3 &) = default;

  static MMatrix3x3 Identity();

  double &operator()(unsigned int row, unsigned int column) { return m[row][column]; }
  double operator()(unsigned int row, unsigned int column) const { return m[row][column]; }
  double *Data() { return &m[0][0]; }
  const double *Data() const { return &m[0][0]; }
  MMPoint3d<double> GetRow(unsigned int row) const { return MMPoint3d<double>(m[row][0], m[row][1], m[row][2]); }
  MMPoint3d<double> GetColumn(unsigned int column) const {
    return MMPoint3d<double>(m[0][column], m[1][column], m[2][column]);
  }

  // Three real eigenvalues, unsorted, in the order the cubic solver gives
  // them. The characteristic polynomial goes to SolvePolynomial; the real
  // parts are written to `values` before any check, and the call succeeds
  // only if every imaginary part has magnitude at most
  // GetMaxElement() * 8.881784197001252e-15 (40 machine epsilons). The bound
  // uses the signed maximum element on purpose: a matrix whose elements are
  // all negative has a negative bound and always returns false (with the
  // real parts already written), and one whose largest element is small
  // against its size may fail too. The zero matrix gives three zeros and
  // true. A repeated eigenvalue other than 0 costs about sqrt(eps) through
  // the cubic: it is either split by that much or reported as false.
  bool GetEigenValues(double *const values) const;

  // Three eigenvectors for the three given eigenvalues. Only neighbouring
  // values are compared (tolerance 2.220446049250313e-15, absolute), so equal
  // ones must be neighbours: pass them sorted or in the solver's order.
  // Three equal values give the identity frame. A repeated value is
  // completed by a vector perpendicular to the first one, built from the
  // longest row of this matrix itself (not of the shifted matrix); that is
  // kept on purpose and is exact for a repeated eigenvalue 0 and for
  // axis-aligned eigenspaces. Returns false only when that completion fails.
  // Each vector is the longest cross product of two rows of the shifted
  // matrix, normalised with the 1.4901161193847656e-8 guard: a value that is
  // zero only up to rounding (a double root split by ~1e-8) may give a
  // vector that is left shorter than that, unnormalised.
  bool GetEigenVectors(MMPoint3d<double> *const vectors, double *const values) const;

  // Nearest rotation by the polar decomposition R = A (A^T A)^(-1/2), A this
  // matrix. Full rank is decided by d^2 > m^2 * 2.220446049250313e-16 with d
  // the determinant and m the signed maximum element of A^T A (so the choice
  // depends on the scale of A); otherwise, and for a NaN determinant, the
  // rank-2 path completes the missing direction with the outer product of
  // the left and right null vectors. The full-rank path applies no sign
  // correction: an improper A goes into MakeOrthonormal as it is. Rank 1 and
  // rank 0 return false. After false, `result` holds A^T A (or a working
  // state), not a rotation.
  bool NearestOrthonormal(MMatrix3x3 &result) const;

  // Inverse by cofactors, with the determinant expanded along row 0. There is
  // no singularity test: a singular matrix yields infinities and NaNs.
  MMatrix3x3 Inverse() const;

  // Determinant by expansion along row 0.
  double Determinant() const;

  // Signed maximum of the nine elements (not the largest magnitude).
  double GetMaxElement() const;

  // A^T A: element (i,j) is the dot product of columns i and j.
  MMatrix3x3 GetATransposeA() const;

  MMatrix3x3 operator*(const MMatrix3x3 &o) const;
  MMatrix3x3 operator+(const MMatrix3x3 &o) const;
  MMatrix3x3 operator-(const MMatrix3x3 &o) const;

 private:
  bool GetEigenValuesRankTwo(double *const values) const;
  static bool GetRightNullVector(const MMatrix3x3 &matrix, MMPoint3d<double> &nullVector);
  static bool GetLeftNullVector(const MMatrix3x3 &matrix, MMPoint3d<double> &nullVector);
  bool GetEigenVectorOfValue(double value, MMPoint3d<double> &vector) const;
  bool GetPerpendicularInEigenspace(const MMPoint3d<double> &given, MMPoint3d<double> &out) const;
  static MMPoint3d<double> GetAnyPerpendicular(const MMPoint3d<double> &r);
  static bool InverseSquareRootFullRank(MMatrix3x3 &s);
  static bool InverseSquareRootRankTwo(MMatrix3x3 &s);
};

#endif  // KORMATH_LINALG_MATRIX3X3_H
