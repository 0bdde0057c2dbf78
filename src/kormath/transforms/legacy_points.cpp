#include <kormath/transforms/legacy_points.h>

#include <kormath/platform/file.h>
#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/orientation.h>

#include <cmath>

namespace {

// Half away from zero with the 0.5 in double: v + 0.5 for v >= 0.0, else
// v - 0.5, truncated.
std::int32_t RoundHalfAway(float v) {
  const double d = v;
  return static_cast<std::int32_t>(d >= 0.0 ? d + 0.5 : d - 0.5);
}

}  // namespace

// ---- MPoint

bool MPoint::operator==(const MPoint &o) const { return x == o.x && y == o.y && z == o.z; }

bool MPoint::operator!=(const MPoint &o) const { return !(*this == o); }

MPoint &MPoint::operator+=(const MPoint &o) {
  x += o.x;
  y += o.y;
  z += o.z;
  return *this;
}

MPoint &MPoint::operator-=(const MPoint &o) {
  x -= o.x;
  y -= o.y;
  z -= o.z;
  return *this;
}

MPoint &MPoint::operator*=(float s) {
  x *= s;
  y *= s;
  z *= s;
  return *this;
}

MPoint &MPoint::operator/=(float s) {
  x /= s;
  y /= s;
  z /= s;
  return *this;
}

void MPoint::SetPoint(float x_, float y_, float z_) {
  x = x_;
  y = y_;
  z = z_;
}

void MPoint::SetPoint(const float *p) { SetPoint(p[0], p[1], p[2]); }

void MPoint::AssignFromPoint3dFloat(const MMPoint3d<float> &p) { SetPoint(p.x, p.y, p.z); }

void MPoint::MovePoint(float dx, float dy, float dz) {
  x += dx;
  y += dy;
  z += dz;
}

void MPoint::AssignFromPoint3dDouble(const MMPoint3d<double> &p) {
  x = static_cast<float>(p.x);
  y = static_cast<float>(p.y);
  z = static_cast<float>(p.z);
}

void MPoint::AssignToPoint3dDouble(MMPoint3d<double> &p) const {
  p.x = x;
  p.y = y;
  p.z = z;
}

void MPoint::AssigntoPoint3dFloat(MMPoint3d<float> &p) const {
  p.x = x;
  p.y = y;
  p.z = z;
}

bool MPoint::Load(MFile &file) {
  // x, y, z are contiguous; members are filled as far as the read went.
  return file.READ(&x, 3) == 3;
}

bool MPoint::Save(MFile &file) { return file.WRITE(&x, 3) == 3; }

// ---- PNT_3D_FLOAT

float PNT_3D_FLOAT::SQR_LENGTH() { return x * x + y * y + z * z; }

float PNT_3D_FLOAT::LENGTH() { return std::sqrt(SQR_LENGTH()); }

void PNT_3D_FLOAT::NORMALISEER() {
  const double dx = x, dy = y, dz = z;
  const double length = std::sqrt(dx * dx + dy * dy + dz * dz);
  if (!(length > 0.0)) return;
  x = static_cast<float>(dx / length);
  y = static_cast<float>(dy / length);
  z = static_cast<float>(dz / length);
}

void PNT_3D_FLOAT::ROTEER_NORMAAL(float rx, float ry, float rz) { ROTEER_3D(x, y, z, rx, ry, rz); }

void PNT_3D_FLOAT::READ(MFile &file) {
  file.READ(&x, 1);
  file.READ(&y, 1);
  file.READ(&z, 1);
}

void PNT_3D_FLOAT::WRITE(MFile &file) {
  file.WRITE(&x, 1);
  file.WRITE(&y, 1);
  file.WRITE(&z, 1);
}

// ---- PNT_3D_LONG

bool PNT_3D_LONG::operator==(const PNT_3D_LONG &o) const { return x == o.x && y == o.y && z == o.z; }

bool PNT_3D_LONG::READ(MFile &file) {
  std::int32_t *members[3] = {&x, &y, &z};
  for (std::int32_t *member : members) {
    long value = 0;
    if (file.READ(&value, 1) != 1) return false;
    *member = static_cast<std::int32_t>(value);
  }
  return true;
}

bool PNT_3D_LONG::WRITE(MFile &file) {
  const std::int32_t members[3] = {x, y, z};
  for (std::int32_t member : members) {
    const long value = member;
    if (file.WRITE(&value, 1) != 1) return false;
  }
  return true;
}

void PNT_3D_LONG::ROTEREN(float rx, float ry, float rz, PNT_3D_LONG &center) {
  float v[3] = {static_cast<float>(static_cast<long long>(x) - center.x),
                static_cast<float>(static_cast<long long>(y) - center.y),
                static_cast<float>(static_cast<long long>(z) - center.z)};
  ROTEER_ENKEL(v, 2, rz);
  ROTEER_ENKEL(v, 1, ry);
  ROTEER_ENKEL(v, 0, rx);
  x = RoundHalfAway(v[0] + static_cast<float>(center.x));
  y = RoundHalfAway(v[1] + static_cast<float>(center.y));
  z = RoundHalfAway(v[2] + static_cast<float>(center.z));
}

void PNT_3D_LONG::TRANSFORM(const MMTransformMatrix *matrix) {
  const MMPoint3d<double> in(x, y, z);
  MMPoint3d<double> out;
  matrix->Transform(out, in, false);
  x = RoundHalfAway(static_cast<float>(out.x));
  y = RoundHalfAway(static_cast<float>(out.y));
  z = RoundHalfAway(static_cast<float>(out.z));
}

void PNT_3D_LONG::INVERSE_TRANSFORM(const MMTransformMatrix *matrix) {
  const MMPoint3d<double> in(x, y, z);
  MMPoint3d<double> out;
  matrix->InverseTransform(out, in, false);
  x = RoundHalfAway(static_cast<float>(out.x));
  y = RoundHalfAway(static_cast<float>(out.y));
  z = RoundHalfAway(static_cast<float>(out.z));
}
