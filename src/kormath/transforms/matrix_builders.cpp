// Builders of the classified matrix transform: from numbers, rotations,
// frames and projections, and the angle readers.

#include <kormath/transforms/float_rounding_detail.h>
#include <kormath/transforms/in_plane_rotation_detail.h>
#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/ortho_transform.h>

#include <cmath>

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = 1.5707963267948966;

using kormath_detail::RoundThroughFloat;

double AngleBetween(const MMPoint3d<double> &a, const MMPoint3d<double> &b) { return std::acos(a.CosineOfAngle(b)); }

MMPoint3d<double> RotateAboutOrigin(const MMPoint3d<double> &p, const MMPoint3d<double> &axis, double radians) {
  MMTransformMatrix r;
  r.MakeRotation(MMPoint3d<double>(0.0, 0.0, 0.0), axis, radians);
  MMPoint3d<double> out;
  r.Transform(out, p, false);
  return out;
}

}  // namespace

void MMTransformMatrix::_StandardFinish() {
  VerifyAndSetClass();
  Inversible = _ComputeInverse();
}

bool MMTransformMatrix::MakeIdentity() {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) Matrix[r][c] = Inverse[r][c] = r == c ? 1.0 : 0.0;
  Homogeneous = false;
  Inversible = true;
  Class = Identity;
  return true;
}

bool MMTransformMatrix::MakeTransformation(const MMPoint3d<double> &translation, const MMPoint3d<double> &xAxis,
                                           const MMPoint3d<double> &yAxis, const MMPoint3d<double> &zAxis) {
  for (int r = 0; r < 3; ++r) {
    Matrix[r][0] = xAxis[r];
    Matrix[r][1] = yAxis[r];
    Matrix[r][2] = zAxis[r];
    Matrix[r][3] = translation[r];
  }
  Matrix[3][0] = Matrix[3][1] = Matrix[3][2] = 0.0;
  Matrix[3][3] = 1.0;
  _StandardFinish();
  return true;
}

bool MMTransformMatrix::MakeTranslation(const MMPoint3d<double> &translation) {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) Matrix[r][c] = r == c ? 1.0 : 0.0;
  for (int r = 0; r < 3; ++r) Matrix[r][3] = translation[r];
  _StandardFinish();
  return true;
}

bool MMTransformMatrix::MakeScale1D(double s) { return MakeScale3D(s, s, s); }

bool MMTransformMatrix::MakeScale3D(const double &x, const double &y, const double &z) {
  const double d[4] = {x, y, z, 1.0};
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) Matrix[r][c] = r == c ? d[r] : 0.0;
  _StandardFinish();
  return true;
}

bool MMTransformMatrix::MakeScale3D(const MMPoint3d<double> &scale) { return MakeScale3D(scale.x, scale.y, scale.z); }

void MMTransformMatrix::MakeFromDouble16(const double *matrix16) {
  for (int i = 0; i < 16; ++i) Matrix[i / 4][i % 4] = matrix16[i];
  _StandardFinish();
}

void MMTransformMatrix::MakeFromFloat16(const float *matrix16) {
  for (int i = 0; i < 16; ++i) Matrix[i / 4][i % 4] = matrix16[i];
  _StandardFinish();
}

void MMTransformMatrix::MakeFromDouble12(const double *matrix12) {
  for (int i = 0; i < 12; ++i) Matrix[i / 4][i % 4] = matrix12[i];
  Matrix[3][0] = Matrix[3][1] = Matrix[3][2] = 0.0;
  Matrix[3][3] = 1.0;
  _StandardFinish();
}

void MMTransformMatrix::MakeFromFloat12(const float *matrix12) {
  for (int i = 0; i < 12; ++i) Matrix[i / 4][i % 4] = matrix12[i];
  Matrix[3][0] = Matrix[3][1] = Matrix[3][2] = 0.0;
  Matrix[3][3] = 1.0;
  _StandardFinish();
}

void MMTransformMatrix::FillIn3x3(float (*const rotation)[3], float (*const inverse)[3]) {
  MakeIdentity();
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      Matrix[r][c] = rotation[r][c];
      Inverse[r][c] = inverse[r][c];
    }
  }
  VerifyAndSetClass();
}

void MMTransformMatrix::FillInTranslation(const MMPoint3d<double> &translation) {
  for (int r = 0; r < 3; ++r) Matrix[r][3] = Inverse[r][3] = 0.0;
  AddTranslation(translation);
  VerifyAndSetClass();
}
void MMTransformMatrix::FillInTranslation(const double *translation) {
  FillInTranslation(MMPoint3d<double>(translation[0], translation[1], translation[2]));
}
void MMTransformMatrix::FillInTranslation(const MMPoint3d<float> &translation) {
  FillInTranslation(MMPoint3d<double>(translation.x, translation.y, translation.z));
}
void MMTransformMatrix::FillInTranslation(const float *translation) {
  FillInTranslation(MMPoint3d<double>(translation[0], translation[1], translation[2]));
}

void MMTransformMatrix::AddTranslation(const MMPoint3d<double> &translation) {
  MMTransformMatrix t;
  t.MakeTranslation(translation);
  PreMultiply(t);
  VerifyAndSetClass();
}
void MMTransformMatrix::AddTranslation(const double *translation) {
  AddTranslation(MMPoint3d<double>(translation[0], translation[1], translation[2]));
}
void MMTransformMatrix::AddTranslation(const MMPoint3d<float> &translation) {
  AddTranslation(MMPoint3d<double>(translation.x, translation.y, translation.z));
}
void MMTransformMatrix::AddTranslation(const float *translation) {
  AddTranslation(MMPoint3d<double>(translation[0], translation[1], translation[2]));
}

void MMTransformMatrix::Make(const MMOrthoTransform &ortho) {
  MMPoint3d<double> t;
  for (int r = 0; r < 3; ++r) t[r] = RoundThroughFloat(ortho.Translation[r]);
  AddTranslation(t);
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) Matrix[r][c] = ortho.Rotation[r][c];
  Matrix[3][0] = Matrix[3][1] = Matrix[3][2] = 0.0;
  Matrix[3][3] = 1.0;
  _StandardFinish();
}

void MMTransformMatrix::ScaleTranslation(double s) {
  for (int r = 0; r < 3; ++r) {
    Matrix[r][3] *= s;
    Inverse[r][3] *= s;
  }
}

// ---- Rotations

void MMTransformMatrix::_Rotate(unsigned short axis, double degrees) {
  const double a = degrees * kPi / 180.0;
  const double c = std::cos(a), s = std::sin(a);
  const int ra = (axis + 2) % 3, rb = (axis + 1) % 3;
  for (int col = 0; col < 4; ++col) {
    const double va = Matrix[ra][col], vb = Matrix[rb][col];
    Matrix[ra][col] = va * c + vb * s;
    Matrix[rb][col] = vb * c - va * s;
  }
}

bool MMTransformMatrix::DoRotationZYX(double rx, double ry, double rz) {
  _Rotate(2, rz);
  _Rotate(1, ry);
  _Rotate(0, rx);
  _StandardFinish();
  return true;
}

bool MMTransformMatrix::DoRotationXYZ(double rx, double ry, double rz) {
  _Rotate(0, rx);
  _Rotate(1, ry);
  _Rotate(2, rz);
  _StandardFinish();
  return true;
}

bool MMTransformMatrix::MakeRotationZYX(double rx, double ry, double rz) {
  MakeIdentity();
  return DoRotationZYX(rx, ry, rz);
}

bool MMTransformMatrix::MakeRotationXYZ(double rx, double ry, double rz) {
  MakeIdentity();
  return DoRotationXYZ(rx, ry, rz);
}

bool MMTransformMatrix::MakeRotationZYX(const MMPoint3d<double> &center, double rx, double ry, double rz) {
  MakeRotationZYX(rx, ry, rz);
  return SetRotationCenter(center);
}

bool MMTransformMatrix::MakeRotationXYZ(const MMPoint3d<double> &center, double rx, double ry, double rz) {
  MakeRotationXYZ(rx, ry, rz);
  return SetRotationCenter(center);
}

bool MMTransformMatrix::MakeRotation(const MMPoint3d<double> &center, const MMPoint3d<double> &axis, double radians) {
  const double len = axis.Length();
  if (len < kDoubleSqrtEpsilon) return false;
  const double x = axis.x / len, y = axis.y / len, z = axis.z / len;
  const double c = std::cos(radians), s = std::sin(radians), t = 1.0 - c;
  Matrix[0][0] = x * x * t + c;
  Matrix[0][1] = x * y * t - z * s;
  Matrix[0][2] = x * z * t + y * s;
  Matrix[1][0] = x * y * t + z * s;
  Matrix[1][1] = y * y * t + c;
  Matrix[1][2] = y * z * t - x * s;
  Matrix[2][0] = x * z * t - y * s;
  Matrix[2][1] = y * z * t + x * s;
  Matrix[2][2] = z * z * t + c;
  VerifyAndSetClass();
  return SetRotationCenter(center);
}

bool MMTransformMatrix::MakeRotation(const MMTransformMatrix &source) {
  Copy(source);
  for (int r = 0; r < 3; ++r) Matrix[r][3] = 0.0;
  for (int r = 0; r < 3; ++r) {
    const double len = RoundThroughFloat(
        std::sqrt(Matrix[r][0] * Matrix[r][0] + Matrix[r][1] * Matrix[r][1] + Matrix[r][2] * Matrix[r][2]));
    for (int c = 0; c < 3; ++c) Matrix[r][c] /= len;
    for (int k = 0; k < 3; ++k) Inverse[k][r] *= len;
  }
  Matrix[3][0] = Matrix[3][1] = Matrix[3][2] = 0.0;
  Matrix[3][3] = 1.0;
  Inverse[3][0] = Inverse[3][1] = Inverse[3][2] = 0.0;
  Inverse[3][3] = 1.0;
  return true;
}

bool MMTransformMatrix::MakeRotationInPlane(MMPoint3d<double> from, MMPoint3d<double> to,
                                            const MMPoint3d<double> &center) {
  from.Normalise();
  to.Normalise();
  MMPoint3d<double> n = from.Cross(to);
  if (n.Length() < kDoubleSqrtEpsilon)
    n = KorMathDetail::PerpendicularAxis(from, kDoubleEpsilon);
  else
    n.Normalise();
  KorMathDetail::WriteInPlaneRotation(Matrix, from, to, n);
  // The class must describe the new block before the centre is mapped.
  VerifyAndSetClass();
  return SetRotationCenter(center);
}

bool MMTransformMatrix::SetRotationCenter(const MMPoint3d<double> &center) {
  MMPoint3d<double> r;
  if (!_Transform(r, center, true)) return false;
  for (int i = 0; i < 3; ++i) Matrix[i][3] = center[i] - r[i];
  _StandardFinish();
  return true;
}

bool MMTransformMatrix::_MakeNewAxis(const MMPoint3d<double> &axis, const MMPoint3d<double> &origin,
                                     const MMPoint3d<double> &point) {
  MakeRotationInPlane(point - origin, axis, MMPoint3d<double>(0.0, 0.0, 0.0));
  for (int i = 0; i < 3; ++i) Matrix[i][3] = origin[i];
  _StandardFinish();
  return true;
}

bool MMTransformMatrix::MakeNewXAxis(const MMPoint3d<double> &origin, const MMPoint3d<double> &point) {
  return _MakeNewAxis(MMPoint3d<double>(1.0, 0.0, 0.0), origin, point);
}
bool MMTransformMatrix::MakeNewYAxis(const MMPoint3d<double> &origin, const MMPoint3d<double> &point) {
  return _MakeNewAxis(MMPoint3d<double>(0.0, 1.0, 0.0), origin, point);
}
bool MMTransformMatrix::MakeNewZAxis(const MMPoint3d<double> &origin, const MMPoint3d<double> &point) {
  return _MakeNewAxis(MMPoint3d<double>(0.0, 0.0, 1.0), origin, point);
}

// ---- Projections

bool MMTransformMatrix::MakeOrthoGraphicProjection(double left, double right, double bottom, double top, double near,
                                                   double far) {
  if (left == right || bottom == top || near == far) return false;
  const double d[4] = {2.0 / (right - left), 2.0 / (top - bottom), 2.0 / (near - far), 1.0};
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) Matrix[r][c] = r == c ? d[r] : 0.0;
  _StandardFinish();
  MMTransformMatrix t;
  t.MakeTranslation(MMPoint3d<double>(-(left + right) / 2.0, -(top + bottom) / 2.0, -(near + far) / 2.0));
  PostMultiply(t);
  return true;
}

bool MMTransformMatrix::MakePerspectiveProjection(double left, double right, double bottom, double top, double near,
                                                  double far, double eye) {
  if (left == right || bottom == top || near == far) return false;
  const double dn = near - eye, df = far - eye;
  const double m[4][4] = {{-2.0 * df / (right - left), 0.0, (left + right) / (right - left), 0.0},
                          {0.0, -2.0 * df / (top - bottom), (top + bottom) / (top - bottom), 0.0},
                          {0.0, 0.0, -(dn + df) / (dn - df), 2.0 * dn * df / (dn - df)},
                          {0.0, 0.0, -1.0, 0.0}};
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) Matrix[r][c] = m[r][c];
  Homogeneous = true;
  MMTransformMatrix t;
  t.MakeTranslation(MMPoint3d<double>(0.0, 0.0, -eye));
  PostMultiply(t);
  _StandardFinish();
  return true;
}

// ---- Readers

bool MMTransformMatrix::GetRotationXYZ(double &rx, double &ry, double &rz) const {
  const MMPoint3d<double> ex(1.0, 0.0, 0.0), ey(0.0, 1.0, 0.0), ez(0.0, 0.0, 1.0);
  MMPoint3d<double> c0, c1;
  GetColumn(c0, 0);
  GetColumn(c1, 1);
  const double alpha = kHalfPi - AngleBetween(c0, ez);
  const MMPoint3d<double> p = c0 - ez * c0.Dot(ez);
  double beta = AngleBetween(ex, p);
  if (ez.CosineOfAngle(ex.Cross(p)) < 0.0) beta = -beta;
  c0 = RotateAboutOrigin(RotateAboutOrigin(c0, ez, -beta), ey, alpha);
  c1 = RotateAboutOrigin(RotateAboutOrigin(c1, ez, -beta), ey, alpha);
  double gamma = AngleBetween(c1, ey);
  if (ex.CosineOfAngle(c1.Cross(ey)) < 0.0) gamma = -gamma;
  rx = -gamma * 180.0 / kPi;
  ry = -alpha * 180.0 / kPi;
  rz = beta * 180.0 / kPi;
  return true;
}

bool MMTransformMatrix::GetRotationZYX(double &rx, double &ry, double &rz) const {
  const MMPoint3d<double> ex(1.0, 0.0, 0.0), ey(0.0, 1.0, 0.0), ez(0.0, 0.0, 1.0);
  MMPoint3d<double> c1, c2;
  GetColumn(c1, 1);
  GetColumn(c2, 2);
  const double alpha = kHalfPi - AngleBetween(c2, ex);
  const MMPoint3d<double> p = c2 - ex * c2.Dot(ex);
  double beta = AngleBetween(ez, p);
  if (ex.CosineOfAngle(ez.Cross(p)) < 0.0) beta = -beta;
  c1 = RotateAboutOrigin(RotateAboutOrigin(c1, ex, -beta), ey, -alpha);
  c2 = RotateAboutOrigin(RotateAboutOrigin(c2, ex, -beta), ey, -alpha);
  double gamma = AngleBetween(c1, ey);
  if (ez.CosineOfAngle(c1.Cross(ey)) < 0.0) gamma = -gamma;
  rz = -gamma * 180.0 / kPi;
  ry = alpha * 180.0 / kPi;
  rx = beta * 180.0 / kPi;
  return true;
}

double MMTransformMatrix::Determinant() const {
  const auto &m = Matrix;
  return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
         m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

bool MMTransformMatrix::Keeps2DOrientation() const { return Matrix[2][2] > 0.0; }

bool MMTransformMatrix::MakeOrthoNormal() {
  for (int c = 0; c < 3; ++c) {
    const double len =
        std::sqrt(Matrix[0][c] * Matrix[0][c] + Matrix[1][c] * Matrix[1][c] + Matrix[2][c] * Matrix[2][c]);
    if (len < kDoubleSqrtEpsilon) return false;
    for (int r = 0; r < 3; ++r) Matrix[r][c] /= len;
  }
  MMPoint3d<double> a, b, c;
  GetColumn(a, 0);
  GetColumn(b, 1);
  GetColumn(c, 2);
  auto rowDot = [this](int i, int j) {
    return Matrix[i][0] * Matrix[j][0] + Matrix[i][1] * Matrix[j][1] + Matrix[i][2] * Matrix[j][2];
  };
  bool rebuildColumn2 = true;
  if (std::fabs(rowDot(0, 1)) > kDoubleEpsilon) {
    const double ax = std::fabs(a.x), ay = std::fabs(a.y), az = std::fabs(a.z);
    if (ay > ax && !(az > ay)) {
      b.y = -(b.x * a.x + b.z * a.z) / a.y;
    } else if (az > (ax > ay ? ax : ay)) {
      b.z = -(b.x * a.x + b.y * a.y) / a.z;
    } else {
      b.x = -(b.y * a.y + b.z * a.z) / a.x;
    }
    for (int r = 0; r < 3; ++r) Matrix[r][1] = b[r];
  } else if (!(std::fabs(rowDot(1, 2)) > kDoubleEpsilon)) {
    rebuildColumn2 = false;
  }
  if (rebuildColumn2) {
    MMPoint3d<double> n = a.Cross(b);
    if (n.Dot(c) < 0.0) n = -n;
    for (int r = 0; r < 3; ++r) Matrix[r][2] = n[r];
  }
  Inversible = _ComputeInverseOrthoNormal();
  return true;
}
