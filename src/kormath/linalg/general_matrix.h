#ifndef KORMATH_LINALG_GENERAL_MATRIX_H
#define KORMATH_LINALG_GENERAL_MATRIX_H

// Run-time sized dense matrices of double: the abstract MMatrix, its
// row-major heap realisation MGeneralMatrix, and MLUMatrix, the holder of an
// LU factorisation.
//
// Sizes here are small and the code favours plainness: element access in
// the algorithms goes through the virtual Element and Value, nothing checks
// bounds, and nothing checks that the dimensions of two operands agree.
// Wrong sizes read or write out of bounds and are the caller's fault.

#include <kormath/export.h>

#include <vector>

class MSymmetricMatrix;
class MLUMatrix;

// Abstract dense matrix with unsigned 32-bit dimensions. The destructor is
// not virtual: derived matrices are not deleted through an MMatrix pointer.
// Copying copies the two dimensions and nothing else.
class KORMATH_API MMatrix {
 public:
  unsigned int rows;
  unsigned int columns;

  MMatrix();
  MMatrix(unsigned int rows, unsigned int columns);
  MMatrix(const MMatrix &other);
  MMatrix &operator=(const MMatrix &other);
  // Not virtual, as it stands: never delete a matrix through MMatrix *.
  ~MMatrix() = default;

  // Stores both numbers; returns true.
  virtual bool SetDimensions(unsigned int rows, unsigned int columns);
  virtual double &Element(unsigned int row, unsigned int column) = 0;
  virtual double Value(unsigned int row, unsigned int column) const = 0;
  virtual void CleanUp() = 0;
  virtual unsigned int GetNumColumns() const;
  virtual unsigned int GetNumRows() const;

 protected:
  // Shared bodies of MakeIdentity and Copy, through Element and Value.
  void _MakeIdentity();
  void _Copy(MMatrix *source);
};

// Row-major dense matrix with an owned heap buffer: element (r, c) is
// data[r * columns + c]. States: empty (0 by 0, null data), sized, or cleaned
// up (dimensions kept, null data).
class KORMATH_API MGeneralMatrix : public MMatrix {
  friend class MLUMatrix;

 public:
  double *data;

  // 0 by 0 with null data.
  MGeneralMatrix();
  // rows * columns values, uninitialised.
  MGeneralMatrix(unsigned int rows, unsigned int columns);
  // Starts empty, then assigns (a deep copy).
  MGeneralMatrix(const MGeneralMatrix &other);
  // Takes the buffer of `other`, which is left empty.
  MGeneralMatrix(MGeneralMatrix &&other) noexcept;
  ~MGeneralMatrix();

  // When rows * columns (32-bit unsigned) differs from the current product
  // the buffer is freed and a new uninitialised one allocated; allocation
  // failure returns false with the dimensions unchanged (and data null).
  // When the product is the same the buffer and its contents stay and are
  // only reinterpreted (a 2 by 6 becomes a 3 by 4 with the same flat values);
  // after CleanUp this means that no buffer is allocated and data stays null.
  bool SetDimensions(unsigned int rows, unsigned int columns) override;
  double &Element(unsigned int row, unsigned int column) override;
  double Value(unsigned int row, unsigned int column) const override;
  // Frees the buffer and nulls it; rows and columns keep their values.
  void CleanUp() override;

  void SetToZero();
  // 1.0 where row equals column, 0.0 elsewhere, also when not square.
  void MakeIdentity();
  // Element(r, c) = source->Value(r, c) within this matrix's dimensions; the
  // destination is not resized.
  void Copy(MMatrix *source);

  // Equal dimensions copy the flat buffer; otherwise the buffer is replaced.
  MGeneralMatrix &operator=(const MGeneralMatrix &other);
  // Takes the buffer of `other`, which is left empty.
  MGeneralMatrix &operator=(MGeneralMatrix &&other) noexcept;
  MGeneralMatrix &operator*=(double factor);
  // No test for a zero divisor.
  MGeneralMatrix &operator/=(double divisor);
  // Element by element over this matrix's rows * columns flat values.
  MGeneralMatrix &operator+=(const MGeneralMatrix &other);
  MGeneralMatrix operator+(const MGeneralMatrix &other) const;
  // rows by other.columns; (i, j) = sum over k < columns of
  // other(k, j) * this(i, k), ascending k. other.rows is not looked at.
  MGeneralMatrix operator*(const MGeneralMatrix &other) const;

  // Copies the block of sub's own size whose top left is (row, column) of
  // this matrix; sub is not resized.
  void GetSubMatrix(MGeneralMatrix &sub, unsigned int row, unsigned int column);
  // Copies all of sub into this matrix at (row, column).
  void SetSubMatrix(const MGeneralMatrix &sub, unsigned int row, unsigned int column);

  // out = A^T A (lower triangle filled for i >= j); out is resized to
  // columns by columns. Always true.
  bool CreateATransposeA(MSymmetricMatrix &out);
  // out[j] = sum over i of A(i, j) * v[i]; out has `columns` entries, v has
  // `rows`. Always true.
  bool CalculationATransposeV(double *const out, double *const v) const;
  // The same sums into out, resized to `columns`. Always true.
  bool CalculationVTransposeA(std::vector<double> &out, std::vector<double> v) const;

  // Determinant of the leading size by size block by Laplace expansion along
  // row 0 (cost grows as size!). Order 2 is the base case; there is no base
  // case for order 1, kept on purpose: size 0 gives the empty sum 0, and so
  // size 1 returns 0 whatever the element. Callers pass 2 or more.
  double Determinant(unsigned int size) const;

  // Power iteration with the 1-norm, starting from all ones, until the norm
  // changes by a relative 0.001 or less. The norm deliberately sums the
  // running partial sums of each row. There is no iteration limit, kept on
  // purpose: on the zero matrix (norm 0, NaN entries) this never returns.
  void GetDominantEigenVector(std::vector<double> &out);
  // The same iteration from (1, 0, ..., 0), with the norm summed once per
  // row. Despite its name it multiplies by the matrix itself, so it finds
  // the dominant direction unless the start is orthogonal to it; kept so on
  // purpose. No iteration limit, as above.
  void GetLeastEigenVector(std::vector<double> &out);

  // Turns this n by n matrix (n = rows) into I - 2 v v^T / (v^T v). The
  // guard is deliberately the wrong way round: it proceeds only when the
  // squared length of v is at most n * 3 * 2.220446049250313e-16, and
  // returns false (matrix untouched) for every ordinary vector. A zero
  // vector gives infinities / NaNs.
  bool HouseholderReflection(double *const v);

  // Thin QR by modified Gram-Schmidt: q becomes rows by columns, r columns by
  // columns (strictly lower part of r left unwritten). q and r are cleaned up
  // and resized; since CleanUp keeps the dimensions, outputs that already
  // hold the target number of elements get no buffer, so pass fresh
  // matrices: such outputs make this return false without writing. A zero
  // column gives NaNs. false for an empty matrix. This matrix is unchanged.
  bool FactoriseQR(MGeneralMatrix &q, MGeneralMatrix &r);

  // In-place LU with partial pivoting (strict comparison: among equal
  // magnitudes the upper row wins; the search bound is `columns`, as the
  // operation is meant for square matrices). A pivot counts as negligible
  // when |d| <= k * 3.0 * 2.220446049250313e-16 at step k: the threshold grows
  // with the step, and at k = 0 only an exact zero is singular, on purpose.
  // A negligible pivot skips the column's elimination and the run continues.
  // In both cases the buffer is then moved into `lu` (whose old buffer is
  // freed) and this matrix is left empty. Returns false when a pivot was
  // negligible.
  bool FactoriseLU(MLUMatrix &lu);
  // Takes the buffer and dimensions back from `lu`, frees lu's pivots and
  // leaves `lu` empty. The values are the factors, not the former matrix.
  void RetrieveMemory(MLUMatrix &lu);

  // Least squares of A x = b through FactoriseQR and back substitution; b
  // has `rows` entries, x receives `columns`. false only when the QR fails
  // (x untouched). A rank-deficient matrix returns true with infinities or
  // NaNs in x: there is no test of r(i, i).
  bool SolveLeastSquare(double *b, double *x);

 private:
  // Takes `buffer` as data without copying; the object owns it from then on.
  MGeneralMatrix(unsigned int rows, unsigned int columns, double *buffer);
};

// Holder of the LU factors left by MGeneralMatrix::FactoriseLU: L strictly
// below the diagonal with an implied unit diagonal, U on and above it, in
// the row order produced by the swaps; pivots[k] is the row swapped with row
// k at step k. Owns both buffers. Not copyable (it owns raw buffers).
class KORMATH_API MLUMatrix : public MMatrix {
  friend class MGeneralMatrix;

 public:
  double *data;
  unsigned int *pivots;

  // Empty: 0 by 0, null data and pivots.
  MLUMatrix();
  ~MLUMatrix();
  MLUMatrix(const MLUMatrix &) = delete;
  MLUMatrix &operator=(const MLUMatrix &) = delete;

  // As MGeneralMatrix.
  bool SetDimensions(unsigned int rows, unsigned int columns) override;
  double &Element(unsigned int row, unsigned int column) override;
  double Value(unsigned int row, unsigned int column) const override;
  void CleanUp() override;

  // Solves in place: b enters as the right side and leaves as the solution.
  // All row swaps come first, then forward and back substitution. A
  // |U(i, i)| below 2.220446049250313e-16 returns false with b partly
  // processed. A 0 by 0 system returns true and leaves b alone.
  bool SolveLUxy(double *const b);
};

#endif  // KORMATH_LINALG_GENERAL_MATRIX_H
