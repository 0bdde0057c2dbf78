#ifndef KORMATH_LINALG_SYMMETRIC_MATRIX_H
#define KORMATH_LINALG_SYMMETRIC_MATRIX_H

// Packed symmetric and lower triangular matrices, with Cholesky
// factorisation and the solution of the normal equations G G^T x = b.
//
// Packed order: row by row over the lower triangle, so element (r, c) with
// r >= c lies at r*(r+1)/2 + c, and order n takes n*(n+1)/2 values.

#include <kormath/export.h>
#include <kormath/linalg/general_matrix.h>

class MLowerTriangularMatrix;

// A symmetric matrix in packed storage; (r, c) and (c, r) name the same
// value.
//
// The copy constructor and copy assignment are deliberately shallow: they
// copy both dimensions and the data pointer, so the two objects then share
// one buffer and each frees it at destruction. Nothing in the library takes
// such a copy; use Copy for a true copy. (Assignment frees the buffer that
// the destination held before, unless it is the shared one.)
class KORMATH_API MSymmetricMatrix : public MMatrix {
 public:
  double *data;

  // 0 by 0, null data.
  MSymmetricMatrix();
  // Order n, n*(n+1)/2 uninitialised values.
  explicit MSymmetricMatrix(unsigned int n);
  // Shallow, see above.
  MSymmetricMatrix(const MSymmetricMatrix &other);
  MSymmetricMatrix &operator=(const MSymmetricMatrix &other);
  // Moves hand the buffer over and leave the source empty (0 by 0, null).
  MSymmetricMatrix(MSymmetricMatrix &&other) noexcept;
  MSymmetricMatrix &operator=(MSymmetricMatrix &&other) noexcept;
  ~MSymmetricMatrix();

  // false when rows != columns (nothing changes). When rows*columns differs
  // from the current product the buffer is replaced by (columns+1)*rows/2
  // uninitialised values (false on allocation failure). Otherwise the buffer
  // stays.
  bool SetDimensions(unsigned int rows, unsigned int columns) override;
  // Packed index max*(max+1)/2 + min.
  double &Element(unsigned int row, unsigned int column) override;
  double Value(unsigned int row, unsigned int column) const override;
  // Frees the buffer and nulls it; the dimensions stay.
  void CleanUp() override;

  void SetToZero();
  void MakeIdentity();
  // Element(r, c) = source->Value(r, c) within this matrix's dimensions.
  void Copy(MMatrix *source);

  // out takes these dimensions and a flat copy of the packed values into its
  // existing buffer (no reallocation: out must already hold at least as many
  // values), then out(i, i) *= factor.
  void MultiplyDiagonal(MSymmetricMatrix &out, double factor) const;

  // Cholesky A = G G^T by columns, in place. Only a zero or negative pivot
  // fails (no tolerance); the storage then stays partly factorised.
  bool FactoriseCholesky();
  // The same factorisation; on success the buffer and both dimensions move
  // into g and this matrix is left empty. g's previous buffer is not freed,
  // as it stands: pass an empty g. On failure g is untouched and the partial
  // factor stays here.
  bool FACTORISE_CHOLESKY(MLowerTriangularMatrix &g);

  // Largest-off-diagonal Jacobi iteration on copies; this matrix is not
  // changed. `vectors` receives a new array of n pointers to new arrays of n
  // values (rows of the accumulated rotation), owned by the caller (delete[]
  // each row, then the array); `values` receives the diagonal. Both are sorted
  // descending by magnitude (equal magnitudes keep their order).
  //
  // The rotation is kept as it stands: the tangent uses |theta| in the
  // numerator and the rotation is applied as P A P without a transpose, so it
  // is not a similarity transform. A diagonal matrix with a non-zero first
  // element finishes after one pass; a matrix that is not diagonal in general
  // never reaches the tolerance, and the loop has no iteration limit, on
  // purpose. A tolerance of 1.0 or more skips the iteration and returns the
  // input diagonal with the identity rows, sorted. Zero diagonal elements
  // or the zero matrix give NaNs.
  void GetEigensJacobi(double **&vectors, double *const values, double tolerance);

  // The largest |off-diagonal| element, scanned in row-major order with a
  // strict comparison from 0: ties go to the first (above the diagonal) and
  // a diagonal matrix gives (0, 0).
  void ChooseJacobiIndices(unsigned int &row, unsigned int &column) const;

  // Sum of Value(i, j)^2 over all i, j (off-diagonal elements count twice).
  double GetEuclidNormSq() const;
  // The same sum without i == j.
  double GetOffDiagonalEuclidNormSq() const;
};

// A lower triangle in packed storage, the holder of a Cholesky factor. Owns
// its buffer; not copyable.
class KORMATH_API MLowerTriangularMatrix : public MMatrix {
 public:
  double *data;

  // 0 by 0, null data.
  MLowerTriangularMatrix();
  ~MLowerTriangularMatrix();
  MLowerTriangularMatrix(const MLowerTriangularMatrix &) = delete;
  MLowerTriangularMatrix &operator=(const MLowerTriangularMatrix &) = delete;

  // No demand that rows and columns agree. When rows*columns differs from the
  // current product the buffer is replaced by (rows+1)*rows/2 values.
  bool SetDimensions(unsigned int rows, unsigned int columns) override;
  // For row >= column the packed value. Above the diagonal it returns a
  // reference to data[0], element (0,0), not to a zero: writing above the
  // diagonal corrupts (0,0). That is the behaviour as it stands.
  double &Element(unsigned int row, unsigned int column) override;
  // 0.0 above the diagonal.
  double Value(unsigned int row, unsigned int column) const override;
  void CleanUp() override;

  // Solves G G^T x = b in place by forward then backward substitution
  // (n = columns). The first division of each substitution is not tested;
  // every later |G(i, i)| below 2.220446049250313e-16 returns false with b
  // partly overwritten.
  bool SOLVE_G_TG_X_B(double *const b) const;
};

#endif  // KORMATH_LINALG_SYMMETRIC_MATRIX_H
