#include <kormath/transforms/legacy_transform.h>

#include <kormath/transforms/core_types.h>
#include <kormath/transforms/in_plane_rotation_detail.h>
#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/orientation.h>
#include <kormath/transforms/ortho_transform.h>

#include <cmath>
#include <cstring>

namespace {

// pi of ROTATE, as the float literal it uses.
constexpr float kRotatePi = 3.1415927f;
// The threshold of the perpendicular choice for parallel vectors: the float
// machine epsilon, as a double.
constexpr double kPerpendicularThreshold = 1.1920928955078125e-07;
// The largest finite float, start of the bounding-box hull.
constexpr float kLargestFloat = 3.4028235e38f;

using Mat3 = float[3][3];

void SetIdentity(float (*m)[3]) {
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) m[r][c] = r == c ? 1.0f : 0.0f;
}

void CopyMat(float (*out)[3], const float (*in)[3]) { std::memcpy(out, in, sizeof(Mat3)); }

// out = m v, in float (out may be v).
void MulVec(float *out, const float (*m)[3], const float *v) {
  float t[3];
  MATRIX_VECTOR(t, m, v);
  out[0] = t[0];
  out[1] = t[1];
  out[2] = t[2];
}

void Transpose(float (*out)[3], const float (*in)[3]) {
  Mat3 t;
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) t[r][c] = in[c][r];
  CopyMat(out, t);
}

// Half away from zero, the 0.5 in double, truncated.
long RoundHalfAway(float v) {
  const double d = v;
  return static_cast<long>(d >= 0.0 ? d + 0.5 : d - 0.5);
}

// Row r of m applied to (x, y, z), plus t, in float.
float RowF(const float (*m)[3], int r, float x, float y, float z, float t) {
  return m[r][0] * x + m[r][1] * y + m[r][2] * z + t;
}

// Stores a double 3x3 as float into `rotation` and its transpose into
// `inverse`.
void StoreRotation(float (*rotation)[3], float (*inverse)[3], const double (*m)[3]) {
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) {
      rotation[r][c] = static_cast<float>(m[r][c]);
      inverse[c][r] = static_cast<float>(m[r][c]);
    }
}

}  // namespace

// ---- Construction

MTransform::MTransform() : m_veranderd(true), m_filler{0, 0, 0} {
  SetIdentity(Rotation);
  SetIdentity(InverseRotation);
  Translation[0] = Translation[1] = Translation[2] = 0.0f;
}

MTransform::MTransform(const MTransform &source) = default;

MTransform &MTransform::operator=(const MTransform &source) = default;

MTransform::MTransform(MTransform &source, unsigned char mode) : MTransform(source) {
  switch (mode) {
    case 1:
      INVERT();
      break;
    case 2:
      Translation[0] = Translation[1] = Translation[2] = 0.0f;
      break;
    case 3:
      GET_ROTATION(source);
      break;
    default:
      // Not filled.
      std::memset(Rotation, 0, sizeof(Rotation));
      std::memset(InverseRotation, 0, sizeof(InverseRotation));
      std::memset(Translation, 0, sizeof(Translation));
      break;
  }
  m_veranderd = true;
}

MTransform::MTransform(const MTransform &a, const MTransform &b) : MTransform() { PRODUCT(a, b); }

MTransform::MTransform(const MMTransformMatrix &matrix) : MTransform() { *this = matrix; }

// ---- Mappings

namespace {

// (x, y, z) replaced by the float block m times it, in the arithmetic of T.
template <class T>
void MultiplyRows(const float (&m)[3][3], T &x, T &y, T &z) {
  const T px = x, py = y, pz = z;
  x = m[0][0] * px + m[0][1] * py + m[0][2] * pz;
  y = m[1][0] * px + m[1][1] * py + m[1][2] * pz;
  z = m[2][0] * px + m[2][1] * py + m[2][2] * pz;
}

// The pointer form of an in-place mapping: through a copy, so out may be in.
template <class T, class Map>
void ThroughCopy(T *out, const T *in, Map map) {
  T p[3] = {in[0], in[1], in[2]};
  map(p[0], p[1], p[2]);
  out[0] = p[0];
  out[1] = p[1];
  out[2] = p[2];
}

// One component of an in-place mapping of (x, y, z).
template <class Map>
float Component(int k, float x, float y, float z, Map map) {
  map(x, y, z);
  return k == 0 ? x : (k == 1 ? y : z);
}

// The long form of a mapping: through float, rounded half away from zero.
template <class Map>
void ThroughFloat(long &x, long &y, long &z, Map map) {
  float fx = static_cast<float>(x), fy = static_cast<float>(y), fz = static_cast<float>(z);
  map(fx, fy, fz);
  x = RoundHalfAway(fx);
  y = RoundHalfAway(fy);
  z = RoundHalfAway(fz);
}

}  // namespace

void MTransform::TRANSFORM3D(float &x, float &y, float &z) const {
  MultiplyRows(Rotation, x, y, z);
  x += Translation[0];
  y += Translation[1];
  z += Translation[2];
}

void MTransform::TRANSFORM3D(double &x, double &y, double &z) const {
  MultiplyRows(Rotation, x, y, z);
  x += Translation[0];
  y += Translation[1];
  z += Translation[2];
}

void MTransform::TRANSFORM3D(long &x, long &y, long &z) const {
  ThroughFloat(x, y, z, [this](float &a, float &b, float &c) { TRANSFORM3D(a, b, c); });
}

void MTransform::TRANSFORM3D(float *out, const float *in) const {
  ThroughCopy(out, in, [this](float &a, float &b, float &c) { TRANSFORM3D(a, b, c); });
}

void MTransform::TRANSFORM3D(double *out, const double *in) const {
  ThroughCopy(out, in, [this](double &a, double &b, double &c) { TRANSFORM3D(a, b, c); });
}

float MTransform::TRANSFORM_X(float x, float y, float z) const { return RowF(Rotation, 0, x, y, z, Translation[0]); }
float MTransform::TRANSFORM_Y(float x, float y, float z) const { return RowF(Rotation, 1, x, y, z, Translation[1]); }
float MTransform::TRANSFORM_Z(float x, float y, float z) const { return RowF(Rotation, 2, x, y, z, Translation[2]); }

void MTransform::ROTATE3D(float &x, float &y, float &z) const { MultiplyRows(Rotation, x, y, z); }

void MTransform::ROTATE3D(double &x, double &y, double &z) const { MultiplyRows(Rotation, x, y, z); }

void MTransform::ROTATE3D(float *out, const float *in) const {
  ThroughCopy(out, in, [this](float &a, float &b, float &c) { ROTATE3D(a, b, c); });
}

void MTransform::ROTATE3D(double *out, const double *in) const {
  ThroughCopy(out, in, [this](double &a, double &b, double &c) { ROTATE3D(a, b, c); });
}

float MTransform::ROTATE_X(float x, float y, float z) const {
  return Rotation[0][0] * x + Rotation[0][1] * y + Rotation[0][2] * z;
}
float MTransform::ROTATE_Y(float x, float y, float z) const {
  return Rotation[1][0] * x + Rotation[1][1] * y + Rotation[1][2] * z;
}
float MTransform::ROTATE_Z(float x, float y, float z) const {
  return Rotation[2][0] * x + Rotation[2][1] * y + Rotation[2][2] * z;
}

void MTransform::INVERSE3D(float &x, float &y, float &z) const {
  x -= Translation[0];
  y -= Translation[1];
  z -= Translation[2];
  MultiplyRows(InverseRotation, x, y, z);
}

void MTransform::INVERSE3D(double &x, double &y, double &z) const {
  x -= Translation[0];
  y -= Translation[1];
  z -= Translation[2];
  MultiplyRows(InverseRotation, x, y, z);
}

void MTransform::INVERSE3D(long &x, long &y, long &z) const {
  ThroughFloat(x, y, z, [this](float &a, float &b, float &c) { INVERSE3D(a, b, c); });
}

void MTransform::INVERSE3D(float *out, const float *in) const {
  ThroughCopy(out, in, [this](float &a, float &b, float &c) { INVERSE3D(a, b, c); });
}

float MTransform::INVERSE_X(float x, float y, float z) const {
  return Component(0, x, y, z, [this](float &a, float &b, float &c) { INVERSE3D(a, b, c); });
}
float MTransform::INVERSE_Y(float x, float y, float z) const {
  return Component(1, x, y, z, [this](float &a, float &b, float &c) { INVERSE3D(a, b, c); });
}
float MTransform::INVERSE_Z(float x, float y, float z) const {
  return Component(2, x, y, z, [this](float &a, float &b, float &c) { INVERSE3D(a, b, c); });
}

void MTransform::INVROT3D(float &x, float &y, float &z) const { MultiplyRows(InverseRotation, x, y, z); }

void MTransform::INVROT3D(double &x, double &y, double &z) const { MultiplyRows(InverseRotation, x, y, z); }

void MTransform::INVROT3D(float *out, const float *in) const {
  ThroughCopy(out, in, [this](float &a, float &b, float &c) { INVROT3D(a, b, c); });
}

float MTransform::INVROT_X(float x, float y, float z) const {
  return Component(0, x, y, z, [this](float &a, float &b, float &c) { INVROT3D(a, b, c); });
}
float MTransform::INVROT_Y(float x, float y, float z) const {
  return Component(1, x, y, z, [this](float &a, float &b, float &c) { INVROT3D(a, b, c); });
}
float MTransform::INVROT_Z(float x, float y, float z) const {
  return Component(2, x, y, z, [this](float &a, float &b, float &c) { INVROT3D(a, b, c); });
}

void MTransform::TRANSFORM2D(float &x, float &y) const {
  const float px = x, py = y;
  x = Rotation[0][0] * px + Rotation[0][1] * py + Translation[0];
  y = Rotation[1][0] * px + Rotation[1][1] * py + Translation[1];
}

void MTransform::INVERSE2D(float &x, float &y) const {
  const float px = x - Translation[0], py = y - Translation[1];
  x = InverseRotation[0][0] * px + InverseRotation[0][1] * py;
  y = InverseRotation[1][0] * px + InverseRotation[1][1] * py;
}

// ---- Building

void MTransform::IDENTITY() {
  SetIdentity(Rotation);
  SetIdentity(InverseRotation);
  Translation[0] = Translation[1] = Translation[2] = 0.0f;
  m_veranderd = true;
}

void MTransform::INVERT() {
  float t[3];
  MulVec(t, InverseRotation, Translation);
  Translation[0] = -t[0];
  Translation[1] = -t[1];
  Translation[2] = -t[2];
  Mat3 swap;
  CopyMat(swap, Rotation);
  CopyMat(Rotation, InverseRotation);
  CopyMat(InverseRotation, swap);
  m_veranderd = true;
}

void MTransform::UpdateOrthonormalInverse() {
  Transpose(InverseRotation, Rotation);
  m_veranderd = true;
}

void MTransform::ROTATION(float rx, float ry, float rz, float cx, float cy, float cz) {
  SetIdentity(Rotation);
  SetIdentity(InverseRotation);
  Translation[0] = Translation[1] = Translation[2] = 0.0f;
  ::ROTEER_ENKEL(Rotation, 2, rz);
  ::ROTEER_ENKEL(Rotation, 1, ry);
  ::ROTEER_ENKEL(Rotation, 0, rx);
  ::ROTEER_ENKEL(InverseRotation, 0, -rx);
  ::ROTEER_ENKEL(InverseRotation, 1, -ry);
  ::ROTEER_ENKEL(InverseRotation, 2, -rz);
  CENTER(cx, cy, cz);
}

void MTransform::ROTATION(const float *const angles, const float *const center) {
  ROTATION_IN_PLANE(static_cast<double>(angles[0]), static_cast<double>(angles[1]), static_cast<double>(angles[2]),
                    static_cast<double>(center[0]), static_cast<double>(center[1]), static_cast<double>(center[2]),
                    0.0f, 0.0f, 0.0f);
}

void MTransform::ROTATE(float, float, float rz) {
  m_veranderd = true;
  const float radians = rz * kRotatePi / 180.0f;
  const float c = static_cast<float>(std::cos(static_cast<double>(radians)));
  const float s = static_cast<float>(std::sin(static_cast<double>(radians)));
  for (int k = 0; k < 3; ++k) {
    const float r0 = Rotation[0][k], r1 = Rotation[1][k];
    Rotation[0][k] = r0 * c - r1 * s;
    Rotation[1][k] = r1 * c + r0 * s;
  }
}

void MTransform::ROTEER_ENKEL(long axis, float degrees) {
  ::ROTEER_ENKEL(Rotation, axis, degrees);
  ::ROTEER_ENKEL(InverseRotation, axis, -degrees);
  m_veranderd = true;
}

void MTransform::ROTATION_IN_PLANE(double ax, double ay, double az, double bx, double by, double bz, float cx, float cy,
                                   float cz) {
  MMPoint3d<double> a(ax, ay, az), b(bx, by, bz);
  const double la = a.Length(), lb = b.Length();
  if (la == 0.0 || lb == 0.0) return;
  a /= la;
  b /= lb;
  MMPoint3d<double> n = a.Cross(b);
  if (std::fabs(n.SquaredLength()) < kDoubleEpsilonX10)
    n = KorMathDetail::PerpendicularAxis(a, kPerpendicularThreshold);
  else
    n /= n.Length();
  double m[3][3];
  KorMathDetail::WriteInPlaneRotation(m, a, b, n);
  StoreRotation(Rotation, InverseRotation, m);
  CENTER(cx, cy, cz);
}

void MTransform::ROTATION_IN_PLANE(float ax, float ay, float az, float bx, float by, float bz, float cx, float cy,
                                   float cz) {
  ROTATION_IN_PLANE(static_cast<double>(ax), static_cast<double>(ay), static_cast<double>(az), static_cast<double>(bx),
                    static_cast<double>(by), static_cast<double>(bz), cx, cy, cz);
}

void MTransform::ROTATION_IN_PLANE_WITH_NORMAL(double ax, double ay, double az, double bx, double by, double bz,
                                               double nx, double ny, double nz, float cx, float cy, float cz) {
  MMPoint3d<double> a(ax, ay, az), b(bx, by, bz);
  const double la = a.Length(), lb = b.Length();
  if (la == 0.0 || lb == 0.0) return;
  a /= la;
  b /= lb;
  double co = a.Dot(b);
  if (co > 1.0) co = 1.0;
  if (co < -1.0) co = -1.0;
  const double si = std::sqrt(1.0 - co * co);
  MMPoint3d<double> axis = a.Cross(b);
  const double l = axis.Length();
  if (l == 0.0)
    axis = MMPoint3d<double>(nx, ny, nz);
  else
    axis /= l;
  const double l2 = axis.Length();
  if (l2 != 0.0) axis /= l2;
  const double x = axis.x, y = axis.y, z = axis.z, t = 1.0 - co;
  const double m[3][3] = {{x * x * t + co, x * y * t - z * si, x * z * t + y * si},
                          {x * y * t + z * si, y * y * t + co, y * z * t - x * si},
                          {x * z * t - y * si, y * z * t + x * si, z * z * t + co}};
  StoreRotation(Rotation, InverseRotation, m);
  CENTER(cx, cy, cz);
}

void MTransform::ROTATION_IN_PLANE_WITH_NORMAL(float ax, float ay, float az, float bx, float by, float bz, float nx,
                                               float ny, float nz, float cx, float cy, float cz) {
  ROTATION_IN_PLANE_WITH_NORMAL(static_cast<double>(ax), static_cast<double>(ay), static_cast<double>(az),
                                static_cast<double>(bx), static_cast<double>(by), static_cast<double>(bz),
                                static_cast<double>(nx), static_cast<double>(ny), static_cast<double>(nz), cx, cy, cz);
}

void MTransform::ROTATION_AROUND_AXIS(double ax, double ay, double az, double radians, float cx, float cy, float cz) {
  MMPoint3d<double> axis(ax, ay, az);
  const double l = axis.Length();
  if (l == 0.0) return;
  axis /= l;
  const double x = axis.x, y = axis.y, z = axis.z;
  const double c = std::cos(radians), s = std::sin(radians), t = 1.0 - c;
  const double m[3][3] = {{x * x * t + c, x * y * t - z * s, x * z * t + y * s},
                          {x * y * t + z * s, y * y * t + c, y * z * t - x * s},
                          {x * z * t - y * s, y * z * t + x * s, z * z * t + c}};
  StoreRotation(Rotation, InverseRotation, m);
  CENTER(cx, cy, cz);
}

void MTransform::CENTER(float cx, float cy, float cz) { CENTER(cx, cy, cz, cx, cy, cz); }

void MTransform::CENTER(float cx, float cy, float cz, float dx, float dy, float dz) {
  Translation[0] = dx - (Rotation[0][0] * cx + Rotation[0][1] * cy + Rotation[0][2] * cz);
  Translation[1] = dy - (Rotation[1][0] * cx + Rotation[1][1] * cy + Rotation[1][2] * cz);
  Translation[2] = dz - (Rotation[2][0] * cx + Rotation[2][1] * cy + Rotation[2][2] * cz);
  m_veranderd = true;
}

void MTransform::SCALE(float sx, float sy, float sz, float cx, float cy, float cz) {
  std::memset(Rotation, 0, sizeof(Rotation));
  std::memset(InverseRotation, 0, sizeof(InverseRotation));
  Rotation[0][0] = sx;
  Rotation[1][1] = sy;
  Rotation[2][2] = sz;
  InverseRotation[0][0] = 1.0f / sx;
  InverseRotation[1][1] = 1.0f / sy;
  InverseRotation[2][2] = 1.0f / sz;
  Translation[0] = (1.0f - sx) * cx;
  Translation[1] = (1.0f - sy) * cy;
  Translation[2] = (1.0f - sz) * cz;
  m_veranderd = true;
}

void MTransform::KIJK_BOX(float x0, float y0, float x1, float y1, float p0, float q0, float p1, float q1) {
  float sx = (p1 - p0 + 1.0f) / (x1 - x0 + 1.0f);
  float sy = (q1 - q0 + 1.0f) / (y1 - y0 + 1.0f);
  if (std::fabs(sx) < std::fabs(sy))
    sy = std::copysign(std::fabs(sx), sy);
  else
    sx = std::copysign(std::fabs(sy), sx);
  const float sz = std::fabs(sx);
  std::memset(Rotation, 0, sizeof(Rotation));
  std::memset(InverseRotation, 0, sizeof(InverseRotation));
  Rotation[0][0] = sx;
  Rotation[1][1] = sy;
  Rotation[2][2] = sz;
  InverseRotation[0][0] = 1.0f / sx;
  InverseRotation[1][1] = 1.0f / sy;
  InverseRotation[2][2] = 1.0f / sz;
  CENTER((x0 + x1) / 2.0f, (y0 + y1) / 2.0f, 0.0f, (p0 + p1) / 2.0f, (q0 + q1) / 2.0f, 0.0f);
}

void MTransform::SPIEGEL(long axis) {
  Translation[axis] = -Translation[axis];
  Rotation[axis][axis] = -Rotation[axis][axis];
  InverseRotation[axis][axis] = -InverseRotation[axis][axis];
  m_veranderd = true;
}

void MTransform::PRODUCT(const MTransform &a, const MTransform &b) {
  float t[3];
  MulVec(t, a.Rotation, b.Translation);
  const float tx = t[0] + a.Translation[0], ty = t[1] + a.Translation[1], tz = t[2] + a.Translation[2];
  Mat3 r, inv;
  MATRIX_MATRIX(r, a.Rotation, b.Rotation);
  MATRIX_MATRIX(inv, b.InverseRotation, a.InverseRotation);
  CopyMat(Rotation, r);
  CopyMat(InverseRotation, inv);
  Translation[0] = tx;
  Translation[1] = ty;
  Translation[2] = tz;
  m_veranderd = true;
}

MTransform MTransform::operator*(const MTransform &b) const { return MTransform(*this, b); }

void MTransform::T1THIS_FROM_T2T1(MTransform &t1, MTransform &t2) {
  Mat3 inner, r, inv;
  MATRIX_MATRIX(inner, t1.Rotation, t2.Rotation);
  MATRIX_MATRIX(r, t2.InverseRotation, inner);
  MATRIX_MATRIX(inner, t1.InverseRotation, t2.Rotation);
  MATRIX_MATRIX(inv, t2.InverseRotation, inner);
  float v[3], t[3];
  MATRIX_VECTOR(v, t1.Rotation, t2.Translation);
  for (int k = 0; k < 3; ++k) v[k] = (v[k] + t1.Translation[k]) - t2.Translation[k];
  MATRIX_VECTOR(t, t2.InverseRotation, v);
  CopyMat(Rotation, r);
  CopyMat(InverseRotation, inv);
  Translation[0] = t[0];
  Translation[1] = t[1];
  Translation[2] = t[2];
  m_veranderd = true;
}

void MTransform::_TRANSFORM(MTransform &t) {
  float v[3];
  MulVec(v, t.Rotation, Translation);
  Mat3 r, inv;
  MATRIX_MATRIX(r, t.Rotation, Rotation);
  MATRIX_MATRIX(inv, InverseRotation, t.InverseRotation);
  Translation[0] = v[0] + t.Translation[0];
  Translation[1] = v[1] + t.Translation[1];
  Translation[2] = v[2] + t.Translation[2];
  CopyMat(Rotation, r);
  CopyMat(InverseRotation, inv);
  m_veranderd = true;
}

void MTransform::SET_ORTHONORMAL_TRANSFORM(float r00, float r01, float r02, float r10, float r11, float r12, float r20,
                                           float r21, float r22) {
  const float m[3][3] = {{r00, r01, r02}, {r10, r11, r12}, {r20, r21, r22}};
  CopyMat(Rotation, m);
  Transpose(InverseRotation, m);
  Translation[0] = 0.0f;
  Translation[1] = 0.0f;
}

void MTransform::TRANSLATE(float tx, float ty, float tz) {
  Translation[0] = tx;
  Translation[1] = ty;
  Translation[2] = tz;
}

void MTransform::TRANSLATE(double tx, double ty, double tz) {
  Translation[0] = static_cast<float>(tx);
  Translation[1] = static_cast<float>(ty);
  Translation[2] = static_cast<float>(tz);
}

void MTransform::ADD_TRANSLATE(float tx, float ty, float tz) {
  Translation[0] += tx;
  Translation[1] += ty;
  Translation[2] += tz;
}

void MTransform::MakeNewZAxis(const float &px, const float &py, const float &pz, const float &vx, const float &vy,
                              const float &vz) {
  ROTATION_IN_PLANE(0.0, 0.0, 1.0, static_cast<double>(vx), static_cast<double>(vy), static_cast<double>(vz), 0.0f,
                    0.0f, 0.0f);
  Translation[0] = px;
  Translation[1] = py;
  Translation[2] = pz;
  m_veranderd = true;
}

void MTransform::GET_ROTATION(MTransform &source) {
  if (&source != this) *this = source;
  Translation[0] = Translation[1] = Translation[2] = 0.0f;
  for (int r = 0; r < 3; ++r) {
    const float length =
        std::sqrt(Rotation[r][0] * Rotation[r][0] + Rotation[r][1] * Rotation[r][1] + Rotation[r][2] * Rotation[r][2]);
    for (int c = 0; c < 3; ++c) Rotation[r][c] /= length;
    for (int k = 0; k < 3; ++k) InverseRotation[k][r] *= length;
  }
  m_veranderd = true;
}

void MTransform::ANGLES(float &rx, float &ry, float &rz) {
  Mat3 m;
  CopyMat(m, Rotation);
  ORIENTATIE(m, rx, ry, rz);
}

void MTransform::INVERSE_ANGLES(float &rx, float &ry, float &rz) {
  Mat3 m;
  CopyMat(m, InverseRotation);
  ORIENTATIE(m, rx, ry, rz);
}

void MTransform::TransformBoundingBox(float &xMin, float &xMax, float &yMin, float &yMax, float &zMin,
                                      float &zMax) const {
  const float xs[2] = {xMin, xMax}, ys[2] = {yMin, yMax}, zs[2] = {zMin, zMax};
  float lo[3] = {kLargestFloat, kLargestFloat, kLargestFloat};
  float hi[3] = {-kLargestFloat, -kLargestFloat, -kLargestFloat};
  for (int corner = 0; corner < 8; ++corner) {
    float p[3] = {xs[corner & 1], ys[(corner >> 1) & 1], zs[(corner >> 2) & 1]};
    TRANSFORM3D(p[0], p[1], p[2]);
    for (int k = 0; k < 3; ++k) {
      if (p[k] < lo[k]) lo[k] = p[k];
      if (p[k] > hi[k]) hi[k] = p[k];
    }
  }
  xMin = lo[0];
  xMax = hi[0];
  yMin = lo[1];
  yMax = hi[1];
  zMin = lo[2];
  zMax = hi[2];
}

void MTransform::GetNormalToVector(double &nx, double &ny, double &nz, double x, double y, double z) const {
  const double yz = y * y + z * z;
  if (yz > kPerpendicularThreshold) {
    const double l = std::sqrt(yz);
    nx = 0.0;
    ny = z / l;
    nz = -y / l;
  } else {
    const double l = std::sqrt(x * x + y * y);
    nx = y / l;
    ny = -x / l;
    nz = 0.0;
  }
}

// ---- Conversion

MTransform &MTransform::operator=(const MMTransformMatrix &matrix) {
  float m16[16];
  matrix.ConvertFloat16(m16);
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) Rotation[r][c] = m16[r * 4 + c];
    Translation[r] = m16[r * 4 + 3];
  }
  MMTransformMatrix inverse(matrix);
  inverse.Invert();  // exchanges Matrix and Inverse only if Inversible
  inverse.ConvertFloat16(m16);
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) InverseRotation[r][c] = m16[r * 4 + c];
  m_veranderd = true;
  return *this;
}

MTransform::operator MMTransformMatrix() const {
  MMOrthoTransform ortho;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) ortho.Rotation[r][c] = Rotation[r][c];
    ortho.Translation[r] = Translation[r];
  }
  MMTransformMatrix matrix;
  matrix.Make(ortho);
  return matrix;
}

MTransform::operator float *() const {
  // Shared by every object and every call: not re-entrant.
  static float columns[16];
  for (int c = 0; c < 3; ++c) {
    for (int r = 0; r < 3; ++r) columns[c * 4 + r] = Rotation[r][c];
    columns[c * 4 + 3] = 0.0f;
  }
  columns[12] = Translation[0];
  columns[13] = Translation[1];
  columns[14] = Translation[2];
  columns[15] = 1.0f;
  return columns;
}

float *MTransform::MakeIVRenderTransform() const {
  // Shared by every object and every call: not re-entrant.
  static float rows[16];
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) rows[r * 4 + c] = Rotation[r][c];
    rows[r * 4 + 3] = Translation[r];
  }
  rows[12] = 0.0f;
  rows[13] = 0.0f;
  rows[14] = 0.0f;
  rows[15] = 1.0f;
  return rows;
}

bool MTransform::operator!=(const MTransform &other) const {
  return std::memcmp(this, &other, sizeof(MTransform)) != 0;
}

// ---- MTransformOrient

void MTransformOrient::ORIENTATION(wchar_t *from) { ORIENTATION(from, const_cast<wchar_t *>(L"RBP")); }

void MTransformOrient::ORIENTATION(wchar_t *from, wchar_t *to) {
  ORIENTATIE_REL(Rotation, from, to);
  Transpose(InverseRotation, Rotation);
  Translation[0] = Translation[1] = Translation[2] = 0.0f;
  VERANDERD(true);
}
