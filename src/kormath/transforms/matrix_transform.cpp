// Storage, classification, mapping, multiplication and inversion of the
// classified matrix transform.

#include <kormath/transforms/matrix_transform.h>

#include <cmath>
#include <cstring>
#include <utility>

namespace {

void SetIdentity(double (&m)[4][4]) {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) m[r][c] = r == c ? 1.0 : 0.0;
}

void Multiply(double (&out)[4][4], const double (&a)[4][4], const double (&b)[4][4]) {
  double t[4][4];
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) t[r][c] = a[r][0] * b[0][c] + a[r][1] * b[1][c] + a[r][2] * b[2][c] + a[r][3] * b[3][c];
  std::memcpy(out, t, sizeof(t));
}

double RowDot(const double (&m)[4][4], int a, int b) {
  return m[a][0] * m[b][0] + m[a][1] * m[b][1] + m[a][2] * m[b][2];
}

double ColumnSquaredLength(const double (&m)[4][4], int c) {
  return m[0][c] * m[0][c] + m[1][c] * m[1][c] + m[2][c] * m[2][c];
}

}  // namespace

MMTransformMatrix::MMTransformMatrix() : MMTransform(), MMTransformMatrixData() {
  SetIdentity(Matrix);
  SetIdentity(Inverse);
  Homogeneous = false;
  Inversible = true;
  Class = Identity;
}

MMTransformMatrix::MMTransformMatrix(const MMTransformMatrix &other)
    : MMTransform(other), MMTransformMatrixData(other) {}

MMTransformMatrix &MMTransformMatrix::operator=(const MMTransformMatrix &other) {
  Copy(other);
  return *this;
}

MMTransformMatrix::~MMTransformMatrix() = default;

void MMTransformMatrix::Copy(const MMTransformMatrix &other) {
  if (this != &other) static_cast<MMTransformMatrixData &>(*this) = other;
}

MMTransformMatrix *MMTransformMatrix::Clone() const { return new MMTransformMatrix(*this); }

bool MMTransformMatrix::ConvertFloat16(float *matrix16) const {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) matrix16[r * 4 + c] = static_cast<float>(Matrix[r][c]);
  return true;
}

bool MMTransformMatrix::ConvertToDouble16(double *matrix16) const {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) matrix16[r * 4 + c] = Matrix[r][c];
  return true;
}

bool MMTransformMatrix::IsIdentity() const { return Class == Identity; }
bool MMTransformMatrix::IsTranslation() const { return Class == Identity || Class == Translation; }
bool MMTransformMatrix::IsOrthoNormal() const {
  return Class == Identity || Class == Translation || Class == OrthoNormal;
}
bool MMTransformMatrix::IsOrthoGonal() const {
  return Class == Identity || Class == Translation || Class == OrthoNormal || Class == OrthoGonal || Class == Scale1D;
}
bool MMTransformMatrix::IsScale1D() const { return Class == Identity || Class == Scale1D; }
bool MMTransformMatrix::IsScale3D() const { return Class == Identity || Class == Scale1D || Class == Scale3D; }

double MMTransformMatrix::GetElement(unsigned short row, unsigned short column, bool inverse) const {
  return inverse ? Inverse[row][column] : Matrix[row][column];
}
void MMTransformMatrix::SetElement(unsigned short row, unsigned short column, double value, bool inverse) {
  (inverse ? Inverse : Matrix)[row][column] = value;
}
double &MMTransformMatrix::AccessElement(unsigned short row, unsigned short column, bool inverse) {
  return (inverse ? Inverse : Matrix)[row][column];
}

double MMTransformMatrix::TransformX(double x, double y, double z, bool isVector) const {
  const double v = Matrix[0][0] * x + Matrix[0][1] * y + Matrix[0][2] * z;
  return isVector ? v : v + Matrix[0][3];
}
double MMTransformMatrix::TransformY(double x, double y, double z, bool isVector) const {
  const double v = Matrix[1][0] * x + Matrix[1][1] * y + Matrix[1][2] * z;
  return isVector ? v : v + Matrix[1][3];
}
double MMTransformMatrix::TransformZ(double x, double y, double z, bool isVector) const {
  const double v = Matrix[2][0] * x + Matrix[2][1] * y + Matrix[2][2] * z;
  return isVector ? v : v + Matrix[2][3];
}
double MMTransformMatrix::InverseTransformX(double x, double y, double z, bool isVector) const {
  const double v = Inverse[0][0] * x + Inverse[0][1] * y + Inverse[0][2] * z;
  return isVector ? v : v + Inverse[0][3];
}
double MMTransformMatrix::InverseTransformY(double x, double y, double z, bool isVector) const {
  const double v = Inverse[1][0] * x + Inverse[1][1] * y + Inverse[1][2] * z;
  return isVector ? v : v + Inverse[1][3];
}
double MMTransformMatrix::InverseTransformZ(double x, double y, double z, bool isVector) const {
  const double v = Inverse[2][0] * x + Inverse[2][1] * y + Inverse[2][2] * z;
  return isVector ? v : v + Inverse[2][3];
}

double MMTransformMatrix::GetScale() const {
  if (Class == Scale1D || Class == Identity) return Matrix[0][0];
  throw MMTransformException(5);
}

bool MMTransformMatrix::_Map(const double (&m)[4][4], MMPoint3d<double> &out, const MMPoint3d<double> &in,
                             bool isVector) const {
  double x = m[0][0] * in.x + m[0][1] * in.y + m[0][2] * in.z;
  double y = m[1][0] * in.x + m[1][1] * in.y + m[1][2] * in.z;
  double z = m[2][0] * in.x + m[2][1] * in.y + m[2][2] * in.z;
  if (!isVector) {
    x += m[0][3];
    y += m[1][3];
    z += m[2][3];
  }
  if (Homogeneous) {
    double w = m[3][0] * in.x + m[3][1] * in.y + m[3][2] * in.z;
    if (!isVector) w += m[3][3];
    if (w == 0.0) throw MMTransformException(0);
    x /= w;
    y /= w;
    z /= w;
  }
  out.x = x;
  out.y = y;
  out.z = z;
  return true;
}

bool MMTransformMatrix::_Transform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const {
  // The matrix's own identity test, called directly: this is the hot path of
  // every single-point mapping.
  if (MMTransformMatrix::IsIdentity()) {
    out = in;
    return true;
  }
  if (!Homogeneous && !isVector) {
    // The common case, as _Map computes it.
    const double x = Matrix[0][0] * in.x + Matrix[0][1] * in.y + Matrix[0][2] * in.z + Matrix[0][3];
    const double y = Matrix[1][0] * in.x + Matrix[1][1] * in.y + Matrix[1][2] * in.z + Matrix[1][3];
    const double z = Matrix[2][0] * in.x + Matrix[2][1] * in.y + Matrix[2][2] * in.z + Matrix[2][3];
    out.x = x;
    out.y = y;
    out.z = z;
    return true;
  }
  return _Map(Matrix, out, in, isVector);
}

bool MMTransformMatrix::_InverseTransform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const {
  if (!Inversible) return false;
  if (IsIdentity()) {
    out = in;
    return true;
  }
  return _Map(Inverse, out, in, isVector);
}

// The affine rows of a matrix, held in registers for a run of points. The
// sums are formed in the order of _Map, so the results are bit-identical.
namespace {
struct AffineRows {
  double r[3][4];
  explicit AffineRows(const double (&m)[4][4]) {
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 4; ++j) r[i][j] = m[i][j];
  }
  MMPoint3d<double> operator()(const MMPoint3d<double> &p) const {
    return MMPoint3d<double>(r[0][0] * p.x + r[0][1] * p.y + r[0][2] * p.z + r[0][3],
                             r[1][0] * p.x + r[1][1] * p.y + r[1][2] * p.z + r[1][3],
                             r[2][0] * p.x + r[2][1] * p.y + r[2][2] * p.z + r[2][3]);
  }
};
}  // namespace

bool MMTransformMatrix::Transform(std::vector<MMPoint3d<double>> &out, const std::vector<MMPoint3d<double>> &in) const {
  if (Homogeneous || &out == &in) return MMTransform::Transform(out, in);
  out.clear();
  if (IsIdentity()) {
    out.assign(in.begin(), in.end());
    return true;
  }
  out.reserve(in.size());
  const AffineRows rows(Matrix);
  for (const auto &p : in) out.push_back(rows(p));
  return true;
}

bool MMTransformMatrix::Transform(std::vector<MMPoint3d<double>> &points) const {
  if (Homogeneous) return MMTransform::Transform(points);
  if (IsIdentity()) return true;
  const AffineRows rows(Matrix);
  for (auto &p : points) p = rows(p);
  return true;
}

void MMTransformMatrix::_Multiply(const MMTransformMatrix &m, bool skipVerify) {
  Multiply(Matrix, Matrix, m.Matrix);
  Multiply(Inverse, m.Inverse, Inverse);
  if (!skipVerify) VerifyAndSetClass();
}

MMTransformMatrix &MMTransformMatrix::PostMultiply(const MMTransformMatrix &m) {
  _Multiply(m, false);
  return *this;
}

MMTransformMatrix &MMTransformMatrix::operator*=(const MMTransformMatrix &m) { return PostMultiply(m); }

MMTransformMatrix &MMTransformMatrix::PreMultiply(const MMTransformMatrix &m) {
  Multiply(Matrix, m.Matrix, Matrix);
  Multiply(Inverse, Inverse, m.Inverse);
  VerifyAndSetClass();
  return *this;
}

bool MMTransformMatrix::_Equal(const MMTransformMatrix &other) const {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c)
      if (!(std::fabs(Matrix[r][c] - other.Matrix[r][c]) < kDoubleSqrtEpsilonX100)) return false;
  return true;
}

bool MMTransformMatrix::Invert() {
  if (!Inversible) return false;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) std::swap(Matrix[r][c], Inverse[r][c]);
  return true;
}

void MMTransformMatrix::Transpose() {
  for (int r = 0; r < 4; ++r)
    for (int c = r + 1; c < 4; ++c) std::swap(Matrix[r][c], Matrix[c][r]);
  VerifyAndSetClass();
  Inversible = _ComputeInverse();
}

// ---- Classification

void MMTransformMatrix::_VerifyAndSetHomogeneous() {
  Homogeneous = !(Matrix[3][0] == 0.0 && Matrix[3][1] == 0.0 && Matrix[3][2] == 0.0 && Matrix[3][3] == 1.0);
}

bool MMTransformMatrix::_VerifyAndSetIdentity() {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c)
      if (Matrix[r][c] != (r == c ? 1.0 : 0.0)) return false;
  Class = Identity;
  return true;
}

bool MMTransformMatrix::_VerifyAndSetTranslation() {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 3; ++c)
      if (!(std::fabs(Matrix[r][c] - (r == c ? 1.0 : 0.0)) < kDoubleEpsilonX10)) return false;
  if (!(std::fabs(Matrix[3][3] - 1.0) < kDoubleEpsilonX10)) return false;
  Class = Translation;
  return true;
}

bool MMTransformMatrix::_VerifyAndSetScale1D() {
  const double s = Matrix[0][0];
  if (!(Matrix[1][1] == s && Matrix[2][2] == s && Matrix[3][3] == 1.0)) return false;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c)
      if (r != c && Matrix[r][c] != 0.0) return false;
  Class = Scale1D;
  return true;
}

bool MMTransformMatrix::_VerifyAndSetScale3D() {
  if (Matrix[3][3] != 1.0) return false;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c)
      if (r != c && Matrix[r][c] != 0.0) return false;
  Class = Scale3D;
  return true;
}

// Lengths are tested on columns, orthogonality on rows; kept so on purpose.
bool MMTransformMatrix::_VerifyAndSetOrthoNormal() {
  for (int c = 0; c < 3; ++c)
    if (!(std::fabs(ColumnSquaredLength(Matrix, c) - 1.0) < kDoubleEpsilonX10)) return false;
  if (!(std::fabs(RowDot(Matrix, 0, 1)) < kDoubleEpsilonX10)) return false;
  if (!(std::fabs(RowDot(Matrix, 0, 2)) < kDoubleEpsilonX10)) return false;
  if (!(std::fabs(RowDot(Matrix, 1, 2)) < kDoubleEpsilonX10)) return false;
  if (!(Matrix[3][0] == 0.0 && Matrix[3][1] == 0.0 && Matrix[3][2] == 0.0 && Matrix[3][3] == 1.0)) return false;
  Class = OrthoNormal;
  return true;
}

bool MMTransformMatrix::_VerifyAndSetOrthoGonal() {
  const double q0 = ColumnSquaredLength(Matrix, 0);
  if (!(std::fabs(ColumnSquaredLength(Matrix, 1) - q0) < kDoubleEpsilon)) return false;
  if (!(std::fabs(ColumnSquaredLength(Matrix, 2) - q0) < kDoubleEpsilon)) return false;
  if (!(std::fabs(RowDot(Matrix, 0, 1)) < kDoubleEpsilon)) return false;
  if (!(std::fabs(RowDot(Matrix, 0, 2)) < kDoubleEpsilon)) return false;
  if (!(std::fabs(RowDot(Matrix, 1, 2)) < kDoubleEpsilon)) return false;
  if (!(Matrix[0][3] == 0.0 && Matrix[1][3] == 0.0 && Matrix[2][3] == 0.0)) return false;
  if (!(Matrix[3][0] == 0.0 && Matrix[3][1] == 0.0 && Matrix[3][2] == 0.0 && Matrix[3][3] == 1.0)) return false;
  Class = OrthoGonal;
  return true;
}

void MMTransformMatrix::VerifyAndSetClass() {
  _VerifyAndSetHomogeneous();
  if (_VerifyAndSetIdentity()) return;
  if (_VerifyAndSetTranslation()) return;
  if (_VerifyAndSetScale1D()) return;
  if (_VerifyAndSetScale3D()) return;
  if (_VerifyAndSetOrthoNormal()) return;
  if (_VerifyAndSetOrthoGonal()) return;
  Class = General;
}

// ---- Inversion by class

bool MMTransformMatrix::ComputeInverse() { return _ComputeInverse(); }

bool MMTransformMatrix::_ComputeInverse() {
  bool ok;
  switch (Class) {
    case Identity:
      ok = _ComputeInverseIdentity();
      break;
    case Translation:
      ok = _ComputeInverseTranslation();
      break;
    case General:
      ok = _ComputeInverseGeneral();
      break;
    case OrthoNormal:
      ok = _ComputeInverseOrthoNormal();
      break;
    case OrthoGonal:
      ok = _ComputeInverseOrthoGonal();
      break;
    case Scale1D:
      ok = _ComputeInverseScale1D();
      break;
    case Scale3D:
      ok = _ComputeInverseScale3D();
      break;
    default:
      return false;
  }
  Inversible = ok;
  return ok;
}

bool MMTransformMatrix::_ComputeInverseIdentity() {
  SetIdentity(Inverse);
  return true;
}

bool MMTransformMatrix::_ComputeInverseTranslation() {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 3; ++c) Inverse[r][c] = r == c ? 1.0 : 0.0;
  Inverse[3][3] = 1.0;
  for (int r = 0; r < 3; ++r) Inverse[r][3] = -Matrix[r][3];
  return true;
}

bool MMTransformMatrix::_ComputeInverseOrthoNormal() {
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) Inverse[r][c] = Matrix[c][r];
  for (int r = 0; r < 3; ++r)
    Inverse[r][3] = -(Matrix[0][r] * Matrix[0][3] + Matrix[1][r] * Matrix[1][3] + Matrix[2][r] * Matrix[2][3]);
  Inverse[3][0] = Inverse[3][1] = Inverse[3][2] = 0.0;
  Inverse[3][3] = 1.0;
  return true;
}

bool MMTransformMatrix::_ComputeInverseOrthoGonal() {
  const double q = ColumnSquaredLength(Matrix, 0);
  if (q == 0.0) return false;
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) Inverse[r][c] = Matrix[c][r] / q;
  for (int r = 0; r < 3; ++r)
    Inverse[r][3] = -(Matrix[0][r] * Matrix[0][3] + Matrix[1][r] * Matrix[1][3] + Matrix[2][r] * Matrix[2][3]);
  Inverse[3][0] = Inverse[3][1] = Inverse[3][2] = 0.0;
  Inverse[3][3] = 1.0;
  return true;
}

bool MMTransformMatrix::_ComputeInverseScale1D() {
  const double s = Matrix[0][0];
  if (s == 0.0) return false;
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) Inverse[r][c] = r == c ? 1.0 / s : 0.0;
  Inverse[3][3] = 1.0;
  return true;
}

bool MMTransformMatrix::_ComputeInverseScale3D() {
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      if (r == c) {
        if (Matrix[r][c] == 0.0) return false;
        Inverse[r][c] = 1.0 / Matrix[r][c];
      } else {
        Inverse[r][c] = 0.0;
      }
    }
  }
  Inverse[3][3] = 1.0;
  return true;
}

void MMTransformMatrix::_InvertSwapRows(double (*array)[8], int a, int b) {
  for (int c = 0; c < 8; ++c) std::swap(array[a][c], array[b][c]);
}

void MMTransformMatrix::_InvertPivot(double (*array)[8], int k) {
  if (k >= 3) return;
  int best = k;
  for (int r = k + 1; r < 4; ++r)
    if (std::fabs(array[r][k]) > std::fabs(array[best][k])) best = r;
  if (best != k) _InvertSwapRows(array, best, k);
}

void MMTransformMatrix::_InvertDivideRowToOne(double (*array)[8], int k) {
  const double pivot = array[k][k];
  if (pivot == 0.0) throw MMTransformException(3);
  array[k][k] = 1.0;
  for (int c = k + 1; c < 8; ++c) array[k][c] /= pivot;
}

void MMTransformMatrix::_InvertSubtractRowFromRow(double (*array)[8], int k, int r) {
  const double f = array[r][k];
  array[r][k] = 0.0;
  for (int c = k + 1; c < 8; ++c) array[r][c] -= f * array[k][c];
}

bool MMTransformMatrix::_ComputeInverseGeneral() {
  double array[4][8];
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      array[r][c] = Matrix[r][c];
      array[r][c + 4] = r == c ? 1.0 : 0.0;
    }
  }
  try {
    for (int k = 0; k < 4; ++k) {
      _InvertPivot(array, k);
      _InvertDivideRowToOne(array, k);
      for (int r = 0; r < 4; ++r)
        if (r != k) _InvertSubtractRowFromRow(array, k, r);
    }
  } catch (const MMTransformException &) {
    return false;
  }
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) Inverse[r][c] = array[r][c + 4];
  return true;
}
