#include <kormath/linalg/general_matrix.h>
#include <kormath/linalg/symmetric_matrix.h>

#include <cmath>
#include <cstring>
#include <new>
#include <utility>

namespace {

// Machine epsilon of double, the unit of the factorisation thresholds.
constexpr double kMachineEpsilon = 2.220446049250313e-16;

// Relative change of the 1-norm that ends the power iterations.
constexpr double kPowerIterationTolerance = 0.001;

void CopyValues(double *destination, const double *source, std::size_t count) {
  if (count != 0 && destination != nullptr && source != nullptr && destination != source)
    std::memmove(destination, source, count * sizeof(double));
}

// Keeps the buffer when the element count stays, otherwise replaces it
// (uninitialised). false, with no buffer and the old dimensions, when the
// allocation fails.
bool Redimension(double *&data, unsigned int &rows, unsigned int &columns, unsigned int newRows,
                 unsigned int newColumns) {
  const unsigned int count = newRows * newColumns;
  if (count != rows * columns) {
    delete[] data;
    data = new (std::nothrow) double[count];
    if (data == nullptr) return false;
  }
  rows = newRows;
  columns = newColumns;
  return true;
}

}  // namespace

// ---- MMatrix ----------------------------------------------------------------

MMatrix::MMatrix() : rows(0), columns(0) {}
MMatrix::MMatrix(unsigned int rows_, unsigned int columns_) : rows(rows_), columns(columns_) {}
MMatrix::MMatrix(const MMatrix &other) : rows(other.rows), columns(other.columns) {}
MMatrix &MMatrix::operator=(const MMatrix &other) {
  rows = other.rows;
  columns = other.columns;
  return *this;
}

bool MMatrix::SetDimensions(unsigned int rows_, unsigned int columns_) {
  rows = rows_;
  columns = columns_;
  return true;
}
unsigned int MMatrix::GetNumColumns() const { return columns; }
unsigned int MMatrix::GetNumRows() const { return rows; }

void MMatrix::_MakeIdentity() {
  for (unsigned int r = 0; r < rows; ++r)
    for (unsigned int c = 0; c < columns; ++c) Element(r, c) = r == c ? 1.0 : 0.0;
}

void MMatrix::_Copy(MMatrix *source) {
  for (unsigned int r = 0; r < rows; ++r)
    for (unsigned int c = 0; c < columns; ++c) Element(r, c) = source->Value(r, c);
}

// ---- MGeneralMatrix -----------------------------------------------------------

MGeneralMatrix::MGeneralMatrix() : MMatrix(), data(nullptr) {}

MGeneralMatrix::MGeneralMatrix(unsigned int rows_, unsigned int columns_)
    : MMatrix(rows_, columns_), data(new double[static_cast<unsigned int>(rows_ * columns_)]) {}

MGeneralMatrix::MGeneralMatrix(unsigned int rows_, unsigned int columns_, double *buffer)
    : MMatrix(rows_, columns_), data(buffer) {}

MGeneralMatrix::MGeneralMatrix(const MGeneralMatrix &other) : MMatrix(), data(nullptr) { *this = other; }

MGeneralMatrix::MGeneralMatrix(MGeneralMatrix &&other) noexcept : MMatrix(other), data(other.data) {
  other.data = nullptr;
  other.rows = 0;
  other.columns = 0;
}

MGeneralMatrix::~MGeneralMatrix() { delete[] data; }

bool MGeneralMatrix::SetDimensions(unsigned int rows_, unsigned int columns_) {
  return Redimension(data, rows, columns, rows_, columns_);
}

double &MGeneralMatrix::Element(unsigned int row, unsigned int column) { return data[row * columns + column]; }
double MGeneralMatrix::Value(unsigned int row, unsigned int column) const { return data[row * columns + column]; }

void MGeneralMatrix::CleanUp() {
  delete[] data;
  data = nullptr;
}

void MGeneralMatrix::SetToZero() {
  if (data == nullptr) return;
  const unsigned int count = rows * columns;
  for (unsigned int i = 0; i < count; ++i) data[i] = 0.0;
}

void MGeneralMatrix::MakeIdentity() { _MakeIdentity(); }
void MGeneralMatrix::Copy(MMatrix *source) { _Copy(source); }

MGeneralMatrix &MGeneralMatrix::operator=(const MGeneralMatrix &other) {
  if (this == &other) return *this;
  if (rows != other.rows || columns != other.columns) {
    delete[] data;
    rows = other.rows;
    columns = other.columns;
    data = new double[static_cast<unsigned int>(rows * columns)];
  }
  CopyValues(data, other.data, static_cast<std::size_t>(rows) * columns);
  return *this;
}

MGeneralMatrix &MGeneralMatrix::operator=(MGeneralMatrix &&other) noexcept {
  if (this == &other) return *this;
  delete[] data;
  data = other.data;
  rows = other.rows;
  columns = other.columns;
  other.data = nullptr;
  other.rows = 0;
  other.columns = 0;
  return *this;
}

MGeneralMatrix &MGeneralMatrix::operator*=(double factor) {
  const unsigned int count = rows * columns;
  for (unsigned int i = 0; i < count; ++i) data[i] *= factor;
  return *this;
}

MGeneralMatrix &MGeneralMatrix::operator/=(double divisor) {
  const unsigned int count = rows * columns;
  for (unsigned int i = 0; i < count; ++i) data[i] /= divisor;
  return *this;
}

MGeneralMatrix &MGeneralMatrix::operator+=(const MGeneralMatrix &other) {
  const unsigned int count = rows * columns;
  for (unsigned int i = 0; i < count; ++i) data[i] += other.data[i];
  return *this;
}

MGeneralMatrix MGeneralMatrix::operator+(const MGeneralMatrix &other) const {
  const unsigned int count = rows * columns;
  double *buffer = new double[count];
  for (unsigned int i = 0; i < count; ++i) buffer[i] = data[i] + other.data[i];
  return MGeneralMatrix(rows, columns, buffer);
}

MGeneralMatrix MGeneralMatrix::operator*(const MGeneralMatrix &other) const {
  const unsigned int outColumns = other.columns;
  double *buffer = new double[static_cast<unsigned int>(rows * outColumns)];
  for (unsigned int i = 0; i < rows; ++i) {
    for (unsigned int j = 0; j < outColumns; ++j) {
      double sum = 0.0;
      for (unsigned int k = 0; k < columns; ++k) sum += other.Value(k, j) * Value(i, k);
      buffer[i * outColumns + j] = sum;
    }
  }
  return MGeneralMatrix(rows, outColumns, buffer);
}

void MGeneralMatrix::GetSubMatrix(MGeneralMatrix &sub, unsigned int row, unsigned int column) {
  for (unsigned int r = 0; r < sub.rows; ++r)
    CopyValues(sub.data + static_cast<std::size_t>(r) * sub.columns,
               data + static_cast<std::size_t>(row + r) * columns + column, sub.columns);
}

void MGeneralMatrix::SetSubMatrix(const MGeneralMatrix &sub, unsigned int row, unsigned int column) {
  for (unsigned int r = 0; r < sub.rows; ++r)
    CopyValues(data + static_cast<std::size_t>(row + r) * columns + column,
               sub.data + static_cast<std::size_t>(r) * sub.columns, sub.columns);
}

bool MGeneralMatrix::CreateATransposeA(MSymmetricMatrix &out) {
  out.SetDimensions(columns, columns);
  for (unsigned int i = 0; i < columns; ++i) {
    for (unsigned int j = 0; j <= i; ++j) {
      double sum = 0.0;
      for (unsigned int k = 0; k < rows; ++k) sum += Value(k, j) * Value(k, i);
      out.Element(i, j) = sum;
    }
  }
  return true;
}

bool MGeneralMatrix::CalculationATransposeV(double *const out, double *const v) const {
  for (unsigned int j = 0; j < columns; ++j) {
    out[j] = 0.0;
    for (unsigned int i = 0; i < rows; ++i) out[j] += Value(i, j) * v[i];
  }
  return true;
}

bool MGeneralMatrix::CalculationVTransposeA(std::vector<double> &out, std::vector<double> v) const {
  out.resize(columns);
  for (unsigned int j = 0; j < columns; ++j) {
    out[j] = 0.0;
    for (unsigned int i = 0; i < rows; ++i) out[j] += Value(i, j) * v[i];
  }
  return true;
}

double MGeneralMatrix::Determinant(unsigned int size) const {
  if (size == 2) return Value(1, 1) * Value(0, 0) - Value(0, 1) * Value(1, 0);
  double sum = 0.0;
  for (unsigned int c = 0; c < size; ++c) {
    MGeneralMatrix minor(size - 1, size - 1);
    for (unsigned int r = 1; r < size; ++r) {
      unsigned int target = 0;
      for (unsigned int k = 0; k < size; ++k) {
        if (k == c) continue;
        minor.Element(r - 1, target++) = Value(r, k);
      }
    }
    sum += Value(0, c) * std::pow(-1.0, static_cast<double>(c)) * minor.Determinant(size - 1);
  }
  return sum;
}

void MGeneralMatrix::GetDominantEigenVector(std::vector<double> &out) {
  const unsigned int n = GetNumColumns();
  out.assign(n, 1.0);
  std::vector<double> x(out);
  double previous = 1.0;
  for (;;) {  // no iteration limit, on purpose
    double norm = 0.0;
    for (unsigned int i = 0; i < GetNumRows(); ++i) {
      out[i] = 0.0;
      for (unsigned int j = 0; j < GetNumColumns(); ++j) {
        out[i] += Element(i, j) * x[j];
        norm += std::fabs(out[i]);  // running partial sums, on purpose
      }
    }
    for (double &value : out) value /= norm;
    if (std::fabs(norm / previous - 1.0) < kPowerIterationTolerance) return;
    x = out;
    previous = norm;
  }
}

void MGeneralMatrix::GetLeastEigenVector(std::vector<double> &out) {
  const unsigned int n = GetNumColumns();
  out.assign(n, 0.0);
  if (n > 0) out[0] = 1.0;
  std::vector<double> x(out);
  double previous = 1.0;
  for (;;) {  // no iteration limit, on purpose
    double norm = 0.0;
    for (unsigned int i = 0; i < GetNumRows(); ++i) {
      out[i] = 0.0;
      for (unsigned int j = 0; j < GetNumColumns(); ++j) out[i] += Element(i, j) * x[j];
      norm += std::fabs(out[i]);
    }
    for (double &value : out) value /= norm;
    if (std::fabs(norm / previous - 1.0) < kPowerIterationTolerance) return;
    x = out;
    previous = norm;
  }
}

bool MGeneralMatrix::HouseholderReflection(double *const v) {
  const unsigned int n = rows;
  double s = 0.0;
  for (unsigned int i = 0; i < n; ++i) s += v[i] * v[i];
  // Deliberately inverted: every ordinary vector is refused.
  if (std::fabs(s) > n * 3.0 * kMachineEpsilon) return false;
  const double f = 1.0 / s;
  for (unsigned int i = 0; i < n; ++i)
    for (unsigned int j = 0; j < n; ++j) Element(i, j) = v[i] * -2.0 * v[j] * f;
  for (unsigned int i = 0; i < n; ++i) Element(i, i) += 1.0;
  return true;
}

bool MGeneralMatrix::FactoriseQR(MGeneralMatrix &q, MGeneralMatrix &r) {
  if (GetNumRows() == 0 || GetNumColumns() == 0) return false;
  q.CleanUp();
  r.CleanUp();
  q.SetDimensions(rows, columns);
  r.SetDimensions(columns, columns);
  // Outputs that kept their element count have no buffer now; nothing can be
  // written into them.
  if (q.data == nullptr || r.data == nullptr) return false;

  MGeneralMatrix work(*this);
  for (unsigned int k = 0; k < columns; ++k) {
    std::vector<double> qk(rows);
    double squares = 0.0;
    for (unsigned int i = 0; i < rows; ++i) squares += work.Value(i, 0) * work.Value(i, 0);
    const double d = std::sqrt(squares);
    for (unsigned int i = 0; i < rows; ++i) qk[i] = work.Value(i, 0) / d;

    const unsigned int m = columns - k - 1;
    std::vector<double> t(m);
    if (m > 0) {
      MGeneralMatrix rest(rows, m);
      for (unsigned int i = 0; i < rows; ++i)
        for (unsigned int j = 0; j < m; ++j) rest.Element(i, j) = work.Value(i, j + 1);
      rest.CalculationATransposeV(t.data(), qk.data());
      MGeneralMatrix next(rows, m);
      for (unsigned int i = 0; i < rows; ++i)
        for (unsigned int j = 0; j < m; ++j) next.Element(i, j) = rest.Value(i, j) - qk[i] * t[j];
      work = std::move(next);
    }

    for (unsigned int i = 0; i < rows; ++i) q.Element(i, k) = qk[i];
    r.Element(k, k) = d;
    for (unsigned int j = k + 1; j < columns; ++j) r.Element(k, j) = t[j - k - 1];
  }
  return true;
}

bool MGeneralMatrix::FactoriseLU(MLUMatrix &lu) {
  const unsigned int n = rows;
  if (lu.rows != n) {
    delete[] lu.pivots;
    lu.pivots = new (std::nothrow) unsigned int[n];
    if (lu.pivots != nullptr) lu.rows = n;
  }

  bool singular = false;
  for (unsigned int k = 0; k < n; ++k) {
    unsigned int p = k;
    for (unsigned int i = k + 1; i < columns; ++i)
      if (std::fabs(Value(i, k)) > std::fabs(Value(p, k))) p = i;
    if (p != k)
      for (unsigned int j = 0; j < columns; ++j) std::swap(Element(k, j), Element(p, j));
    if (lu.pivots != nullptr && k < lu.rows) lu.pivots[k] = p;

    const double d = Value(k, k);
    // The threshold grows with the step, not with the size; at k = 0 only an
    // exact zero is singular.
    if (std::fabs(d) <= k * 3.0 * kMachineEpsilon) {
      singular = true;
      continue;
    }
    for (unsigned int i = k + 1; i < n; ++i) Element(i, k) /= d;
    for (unsigned int i = k + 1; i < n; ++i)
      for (unsigned int j = k + 1; j < columns; ++j) Element(i, j) -= Value(k, j) * Value(i, k);
  }

  delete[] lu.data;
  lu.data = data;
  lu.rows = rows;
  lu.columns = columns;
  data = nullptr;
  rows = 0;
  columns = 0;
  return !singular;
}

void MGeneralMatrix::RetrieveMemory(MLUMatrix &lu) {
  if (data != lu.data) delete[] data;
  data = lu.data;
  rows = lu.rows;
  columns = lu.columns;
  delete[] lu.pivots;
  lu.pivots = nullptr;
  lu.data = nullptr;
  lu.rows = 0;
  lu.columns = 0;
}

bool MGeneralMatrix::SolveLeastSquare(double *b, double *x) {
  MGeneralMatrix q;
  MGeneralMatrix r;
  if (!FactoriseQR(q, r)) return false;
  const unsigned int n = GetNumColumns();
  std::vector<double> y(n);
  q.CalculationATransposeV(y.data(), b);
  for (unsigned int i = n; i-- > 0;) {
    double s = 0.0;
    for (unsigned int j = i + 1; j < n; ++j) s += r.Value(i, j) * x[j];
    x[i] = (y[i] - s) / r.Value(i, i);
  }
  return true;
}

// ---- MLUMatrix ------------------------------------------------------------------

MLUMatrix::MLUMatrix() : MMatrix(), data(nullptr), pivots(nullptr) {}

MLUMatrix::~MLUMatrix() {
  delete[] data;
  delete[] pivots;
}

bool MLUMatrix::SetDimensions(unsigned int rows_, unsigned int columns_) {
  return Redimension(data, rows, columns, rows_, columns_);
}

double &MLUMatrix::Element(unsigned int row, unsigned int column) { return data[row * columns + column]; }
double MLUMatrix::Value(unsigned int row, unsigned int column) const { return data[row * columns + column]; }

void MLUMatrix::CleanUp() {
  delete[] data;
  data = nullptr;
}

bool MLUMatrix::SolveLUxy(double *const b) {
  const unsigned int n = rows;
  if (n == 0) return true;
  for (unsigned int k = 0; k + 1 < n; ++k) std::swap(b[k], b[pivots[k]]);
  for (unsigned int k = 0; k + 1 < n; ++k)
    for (unsigned int i = k + 1; i < n; ++i) b[i] -= Value(i, k) * b[k];
  if (std::fabs(Value(n - 1, n - 1)) < kMachineEpsilon) return false;
  b[n - 1] /= Value(n - 1, n - 1);
  for (unsigned int i = n - 1; i-- > 0;) {
    if (std::fabs(Value(i, i)) < kMachineEpsilon) return false;
    double s = 0.0;
    for (unsigned int j = i + 1; j < n; ++j) s += Value(i, j) * b[j];
    b[i] = (b[i] - s) / Value(i, i);
  }
  return true;
}
