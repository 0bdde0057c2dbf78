#ifndef KORMATH_TRANSFORMS_LEGACY_POINTS_H
#define KORMATH_TRANSFORMS_LEGACY_POINTS_H

// The three point classes of the older interfaces: MPoint, the float point
// of the curve interfaces, and PNT_3D_FLOAT and PNT_3D_LONG, the float and
// 32-bit integer points of the legacy image code.
//
// On-file form (through MFile): exactly the three members x, y, z, each 4
// bytes little-endian (IEEE 754 single for the float points, signed 32-bit
// integer for PNT_3D_LONG), with no header, count, tag or padding: 12 bytes a
// point.

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>

#include <cstdint>

class MFile;
class MMTransformMatrix;

class KORMATH_API MPoint {
 public:
  float x;
  float y;
  float z;

  // Leaves the three members undefined, with no code at all.
  MPoint() {}
  MPoint(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}
  // Reads three floats.
  explicit MPoint(const float *p) : x(p[0]), y(p[1]), z(p[2]) {}
  MPoint(const MPoint &) = default;
  MPoint &operator=(const MPoint &) = default;

  // The address of x; the three members follow it.
  operator float *() { return &x; }
  operator const float *() const { return &x; }

  // Exact comparison of the three members.
  bool operator==(const MPoint &o) const;
  bool operator!=(const MPoint &o) const;

  MPoint &operator+=(const MPoint &o);
  MPoint &operator-=(const MPoint &o);
  MPoint &operator*=(float s);
  // Divides each member by s (no reciprocal is used).
  MPoint &operator/=(float s);

  void SetPoint(float x_, float y_, float z_);
  void SetPoint(const float *p);
  void AssignFromPoint3dFloat(const MMPoint3d<float> &p);
  // Adds the three values.
  void MovePoint(float dx, float dy, float dz);
  // Narrows each member to the nearest float.
  void AssignFromPoint3dDouble(const MMPoint3d<double> &p);
  // Widens.
  void AssignToPoint3dDouble(MMPoint3d<double> &p) const;
  // Copies. The lower-case "to" belongs to the name.
  void AssigntoPoint3dFloat(MMPoint3d<float> &p) const;

  // One READ of 3 floats; true if all 3 were read (a short read may leave
  // some members changed).
  bool Load(MFile &file);
  // One WRITE of 3 floats; true if all 3 were written.
  bool Save(MFile &file);
};

class KORMATH_API PNT_3D_FLOAT {
 public:
  float x;
  float y;
  float z;

  PNT_3D_FLOAT() : x(0.0f), y(0.0f), z(0.0f) {}
  PNT_3D_FLOAT(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}

  // x^2 + y^2 + z^2, in float.
  float SQR_LENGTH();
  // Its square root, in float.
  float LENGTH();
  // Divides by the length, computed and divided in double from the widened
  // members and narrowed back. A length not greater than 0.0 changes
  // nothing.
  void NORMALISEER();
  // ROTEER_3D on its own x, y, z: about z by rz, then y by ry, then x by rx,
  // in degrees.
  void ROTEER_NORMAAL(float rx, float ry, float rz);
  // Three separate transfers of one float each, for x, y and z. Their
  // results are ignored, so nothing is reported; a member that could not be
  // read keeps its value.
  void READ(MFile &file);
  void WRITE(MFile &file);
};

// Storage and on-file form are 32-bit whatever the width of long; the
// signatures keep long. Values outside the 32-bit range are cut to 32 bits.
class KORMATH_API PNT_3D_LONG {
 public:
  std::int32_t x;
  std::int32_t y;
  std::int32_t z;

  // Leaves the three members undefined, with no code at all.
  PNT_3D_LONG() {}
  PNT_3D_LONG(long x_, long y_, long z_)
      : x(static_cast<std::int32_t>(x_)), y(static_cast<std::int32_t>(y_)), z(static_cast<std::int32_t>(z_)) {}
  PNT_3D_LONG(const PNT_3D_LONG &) = default;
  PNT_3D_LONG &operator=(const PNT_3D_LONG &) = default;

  // All three equal.
  bool operator==(const PNT_3D_LONG &o) const;

  // Three transfers of one integer each, x, y, z, stopping at the first that
  // does not transfer 1; false then (earlier members may already be read).
  bool READ(MFile &file);
  bool WRITE(MFile &file);

  // Rotates about `center`, in degrees: the integer difference to the
  // centre, widened to float, is rotated about z by rz, then y by ry, then x
  // by rx (ROTEER_ENKEL); the result is added to the centre in float and each
  // coordinate rounded half away from zero (v + 0.5 for v >= 0, else v - 0.5,
  // in double, truncated).
  void ROTEREN(float rx, float ry, float rz, PNT_3D_LONG &center);
  // Maps the point, as three doubles, through the forward matrix as a
  // position; each result is narrowed to float first, on purpose, and then
  // rounded half away from zero to an integer.
  void TRANSFORM(const MMTransformMatrix *matrix);
  // The same through InverseTransform. The result point starts at
  // (0, 0, 0), so a matrix without inverse gives (0, 0, 0).
  void INVERSE_TRANSFORM(const MMTransformMatrix *matrix);
};

static_assert(sizeof(MPoint) == 12, "MPoint is three contiguous floats");
static_assert(sizeof(PNT_3D_FLOAT) == 12, "PNT_3D_FLOAT is three contiguous floats");
static_assert(sizeof(PNT_3D_LONG) == 12, "PNT_3D_LONG is three contiguous 32-bit integers");

#endif  // KORMATH_TRANSFORMS_LEGACY_POINTS_H
