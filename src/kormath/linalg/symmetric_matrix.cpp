#include <kormath/linalg/symmetric_matrix.h>

#include <cmath>
#include <cstring>
#include <new>
#include <utility>

namespace {

// Machine epsilon of double: the smallest pivot the substitutions accept.
constexpr double kMachineEpsilon = 2.220446049250313e-16;

inline unsigned int PackedIndex(unsigned int row, unsigned int column) {
  const unsigned int high = row > column ? row : column;
  const unsigned int low = row > column ? column : row;
  return high * (high + 1) / 2 + low;
}

}  // namespace

// ---- MSymmetricMatrix ---------------------------------------------------------

MSymmetricMatrix::MSymmetricMatrix() : MMatrix(), data(nullptr) {}

MSymmetricMatrix::MSymmetricMatrix(unsigned int n) : MMatrix(n, n), data(new double[(n + 1) * n / 2]) {}

MSymmetricMatrix::MSymmetricMatrix(const MSymmetricMatrix &other) : MMatrix(other), data(other.data) {}

MSymmetricMatrix &MSymmetricMatrix::operator=(const MSymmetricMatrix &other) {
  if (this == &other) return *this;
  if (data != other.data) delete[] data;
  MMatrix::operator=(other);
  data = other.data;
  return *this;
}

MSymmetricMatrix::MSymmetricMatrix(MSymmetricMatrix &&other) noexcept : MMatrix(other), data(other.data) {
  other.data = nullptr;
  other.rows = 0;
  other.columns = 0;
}

MSymmetricMatrix &MSymmetricMatrix::operator=(MSymmetricMatrix &&other) noexcept {
  if (this == &other) return *this;
  if (data != other.data) delete[] data;
  MMatrix::operator=(other);
  data = other.data;
  other.data = nullptr;
  other.rows = 0;
  other.columns = 0;
  return *this;
}

MSymmetricMatrix::~MSymmetricMatrix() { delete[] data; }

bool MSymmetricMatrix::SetDimensions(unsigned int rows_, unsigned int columns_) {
  if (rows_ != columns_) return false;
  if (rows_ * columns_ != rows * columns) {
    delete[] data;
    data = new (std::nothrow) double[(columns_ + 1) * rows_ / 2];
    if (data == nullptr) return false;
  }
  rows = rows_;
  columns = columns_;
  return true;
}

double &MSymmetricMatrix::Element(unsigned int row, unsigned int column) { return data[PackedIndex(row, column)]; }
double MSymmetricMatrix::Value(unsigned int row, unsigned int column) const { return data[PackedIndex(row, column)]; }

void MSymmetricMatrix::CleanUp() {
  delete[] data;
  data = nullptr;
}

void MSymmetricMatrix::SetToZero() {
  if (data == nullptr) return;
  const unsigned int count = (rows + 1) * rows / 2;
  for (unsigned int i = 0; i < count; ++i) data[i] = 0.0;
}

void MSymmetricMatrix::MakeIdentity() { _MakeIdentity(); }
void MSymmetricMatrix::Copy(MMatrix *source) { _Copy(source); }

void MSymmetricMatrix::MultiplyDiagonal(MSymmetricMatrix &out, double factor) const {
  out.rows = rows;
  out.columns = columns;
  const unsigned int count = (columns + 1) * rows / 2;
  if (count != 0 && out.data != data) std::memcpy(out.data, data, count * sizeof(double));
  for (unsigned int i = 0; i < rows; ++i) out.Element(i, i) *= factor;
}

bool MSymmetricMatrix::FactoriseCholesky() {
  const unsigned int n = rows;
  for (unsigned int k = 0; k < n; ++k) {
    if (k > 0) {
      for (unsigned int i = k; i < n; ++i) {
        double sum = 0.0;
        for (unsigned int j = 0; j < k; ++j) sum += Element(i, j) * Element(k, j);
        Element(i, k) -= sum;
      }
    }
    const double d = Element(k, k);
    if (d <= 0.0) return false;  // no tolerance: only zero or negative pivots
    const double s = std::sqrt(d);
    for (unsigned int i = k; i < n; ++i) Element(i, k) = Element(i, k) / s;
  }
  return true;
}

bool MSymmetricMatrix::FACTORISE_CHOLESKY(MLowerTriangularMatrix &g) {
  if (!FactoriseCholesky()) return false;
  // g's previous buffer is taken over without being freed, as it stands.
  g.data = data;
  g.rows = rows;
  g.columns = columns;
  data = nullptr;
  rows = 0;
  columns = 0;
  return true;
}

void MSymmetricMatrix::ChooseJacobiIndices(unsigned int &row, unsigned int &column) const {
  row = 0;
  column = 0;
  double largest = 0.0;
  for (unsigned int i = 0; i < rows; ++i) {
    for (unsigned int j = 0; j < columns; ++j) {
      if (i == j) continue;
      const double magnitude = std::fabs(Value(i, j));
      if (magnitude > largest) {
        largest = magnitude;
        row = i;
        column = j;
      }
    }
  }
}

double MSymmetricMatrix::GetEuclidNormSq() const {
  double sum = 0.0;
  for (unsigned int i = 0; i < rows; ++i)
    for (unsigned int j = 0; j < columns; ++j) sum += Value(i, j) * Value(i, j);
  return sum;
}

double MSymmetricMatrix::GetOffDiagonalEuclidNormSq() const {
  double sum = 0.0;
  for (unsigned int i = 0; i < rows; ++i)
    for (unsigned int j = 0; j < columns; ++j)
      if (i != j) sum += Value(i, j) * Value(i, j);
  return sum;
}

void MSymmetricMatrix::GetEigensJacobi(double **&vectors, double *const values, double tolerance) {
  const unsigned int n = rows;
  MSymmetricMatrix work(n);
  work.Copy(this);
  MGeneralMatrix scratch(n, n);
  scratch.Copy(this);
  MGeneralMatrix rotations(n, n);
  rotations.MakeIdentity();
  MGeneralMatrix plane(n, n);

  // Only a tolerance of 1.0 or more skips the iteration; any other value,
  // NaN included, runs at least one rotation.
  if (n > 0 && !(tolerance >= 1.0)) {
    double ratio;
    do {  // no iteration limit, on purpose
      unsigned int p;
      unsigned int q;
      work.ChooseJacobiIndices(p, q);
      const double theta = (work.Value(q, q) - work.Value(p, p)) / (2.0 * work.Value(p, q));
      double t = std::fabs(theta) / (std::sqrt(theta * theta + 1.0) + std::fabs(theta));
      if (theta < 0.0) t = -t;
      const double c = 1.0 / std::sqrt(t * t + 1.0);
      const double s = c * t;
      plane.MakeIdentity();
      plane.Element(p, p) = c;
      plane.Element(q, p) = s;
      plane.Element(p, q) = -s;
      plane.Element(q, q) = c;
      // P A P, with no transpose: kept as it stands.
      scratch = scratch * plane;
      scratch = plane * scratch;
      rotations = rotations * plane;
      for (unsigned int i = 0; i < n; ++i)
        for (unsigned int j = 0; j < n; ++j) work.Element(i, j) = scratch.Value(i, j);
      const double norm = work.GetEuclidNormSq();
      const double off = work.GetOffDiagonalEuclidNormSq();
      ratio = off / norm;
    } while (tolerance < ratio);
  }

  vectors = new double *[n];
  for (unsigned int i = 0; i < n; ++i) {
    vectors[i] = new double[n];
    values[i] = work.Value(i, i);
    for (unsigned int j = 0; j < n; ++j) vectors[i][j] = rotations.Value(i, j);
  }
  for (unsigned int pass = 0; pass < n; ++pass) {
    for (unsigned int k = 0; k + 1 < n; ++k) {
      if (std::fabs(values[k]) < std::fabs(values[k + 1])) {
        std::swap(values[k], values[k + 1]);
        std::swap(vectors[k], vectors[k + 1]);
      }
    }
  }
}

// ---- MLowerTriangularMatrix ------------------------------------------------------

MLowerTriangularMatrix::MLowerTriangularMatrix() : MMatrix(), data(nullptr) {}

MLowerTriangularMatrix::~MLowerTriangularMatrix() { delete[] data; }

bool MLowerTriangularMatrix::SetDimensions(unsigned int rows_, unsigned int columns_) {
  if (rows_ * columns_ != rows * columns) {
    delete[] data;
    data = new (std::nothrow) double[(rows_ + 1) * rows_ / 2];
    if (data == nullptr) return false;
  }
  rows = rows_;
  columns = columns_;
  return true;
}

double &MLowerTriangularMatrix::Element(unsigned int row, unsigned int column) {
  if (row < column) return data[0];  // not a zero: kept as it stands
  return data[row * (row + 1) / 2 + column];
}

double MLowerTriangularMatrix::Value(unsigned int row, unsigned int column) const {
  if (row < column) return 0.0;
  return data[row * (row + 1) / 2 + column];
}

void MLowerTriangularMatrix::CleanUp() {
  delete[] data;
  data = nullptr;
}

bool MLowerTriangularMatrix::SOLVE_G_TG_X_B(double *const b) const {
  const unsigned int n = columns;
  if (n == 0) return true;
  // Forward: G y = b.
  b[0] = b[0] / Value(0, 0);
  for (unsigned int i = 1; i < n; ++i) {
    double s = 0.0;
    for (unsigned int j = 0; j < i; ++j) s += Value(i, j) * b[j];
    if (std::fabs(Value(i, i)) < kMachineEpsilon) return false;
    b[i] = (b[i] - s) / Value(i, i);
  }
  // Backward: G^T x = y.
  b[n - 1] = b[n - 1] / Value(n - 1, n - 1);
  for (unsigned int i = n - 1; i-- > 0;) {
    double s = 0.0;
    for (unsigned int j = i + 1; j < n; ++j) s += Value(j, i) * b[j];
    if (std::fabs(Value(i, i)) < kMachineEpsilon) return false;
    b[i] = (b[i] - s) / Value(i, i);
  }
  return true;
}
