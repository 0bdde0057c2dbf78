#ifndef KORMATH_TRANSFORMS_LEGACY_TRANSFORM_H
#define KORMATH_TRANSFORMS_LEGACY_TRANSFORM_H

// The older single-precision rigid transform, kept for callers that work in
// float and long, with its upper-case, partly Dutch interface.
//
// It keeps a rotation, a separate inverse rotation and a translation:
// p' = Rotation p + Translation. InverseRotation is kept by hand beside
// Rotation, never derived on demand, and nothing verifies that the two
// agree: a caller who writes one alone makes INVERT and the inverse mappings
// wrong (UpdateOrthonormalInverse re-derives it as the transpose). It has no
// virtual operations and is not an MMTransform; the conversions to and from
// MMTransformMatrix connect the two worlds. Angles are degrees, except in
// ROTATION_AROUND_AXIS (radians).
//
// The changed flag VERANDERD is the first byte of the object. Construction
// and nearly every mutator set it; TRANSLATE, ADD_TRANSLATE and
// SET_ORTHONORMAL_TRANSFORM do not, on purpose. Nothing here reads it: a
// host clears it with VERANDERD(false) and polls it with VERANDERD().
//
// Not re-entrant: operator float * and MakeIVRenderTransform return static
// buffers shared by all objects and threads.

#include <kormath/export.h>

#include <cstdint>

class MMTransformMatrix;

class KORMATH_API MTransform {
 private:
  bool m_veranderd;
  // Filler up to the float fields; always zero, so that the bitwise
  // operator!= compares objects with equal numbers and flags as equal.
  [[maybe_unused]] unsigned char m_filler[3];

 public:
  float Rotation[3][3];
  float InverseRotation[3][3];
  float Translation[3];

  // Identity rotations, zero translation, VERANDERD true.
  MTransform();
  // Copies everything; the flag stands as in the source.
  MTransform(const MTransform &source);
  MTransform &operator=(const MTransform &source);
  // Copies `source`, then by mode: 1 INVERT; 2 zeroes Translation; 3 as
  // GET_ROTATION(source). Any other mode leaves the numbers unfilled (they
  // are zero here). VERANDERD is true.
  MTransform(MTransform &source, unsigned char mode);
  // PRODUCT(a, b).
  MTransform(const MTransform &a, const MTransform &b);
  // See operator=(const MMTransformMatrix &).
  MTransform(const MMTransformMatrix &matrix);  // NOLINT: conversion by design

  // The changed flag.
  bool VERANDERD() const { return m_veranderd; }
  void VERANDERD(bool changed) { m_veranderd = changed; }

  // ---- Mappings: direct arithmetic on the float fields, no homogeneous
  // coordinate. Float forms compute in float; double forms compute in double
  // with the fields widened; long forms convert the inputs to float, compute
  // in float and round each result half away from zero (v + 0.5 truncated
  // for v >= 0.0, v - 0.5 otherwise, the 0.5 in double).

  // Rotation p + Translation.
  void TRANSFORM3D(float &x, float &y, float &z) const;
  void TRANSFORM3D(double &x, double &y, double &z) const;
  void TRANSFORM3D(long &x, long &y, long &z) const;
  void TRANSFORM3D(float *out, const float *in) const;
  void TRANSFORM3D(double *out, const double *in) const;
  float TRANSFORM_X(float x, float y, float z) const;
  float TRANSFORM_Y(float x, float y, float z) const;
  float TRANSFORM_Z(float x, float y, float z) const;
  // Rotation p.
  void ROTATE3D(float &x, float &y, float &z) const;
  void ROTATE3D(double &x, double &y, double &z) const;
  void ROTATE3D(float *out, const float *in) const;
  void ROTATE3D(double *out, const double *in) const;
  float ROTATE_X(float x, float y, float z) const;
  float ROTATE_Y(float x, float y, float z) const;
  float ROTATE_Z(float x, float y, float z) const;
  // InverseRotation (p - Translation).
  void INVERSE3D(float &x, float &y, float &z) const;
  void INVERSE3D(double &x, double &y, double &z) const;
  void INVERSE3D(long &x, long &y, long &z) const;
  void INVERSE3D(float *out, const float *in) const;
  float INVERSE_X(float x, float y, float z) const;
  float INVERSE_Y(float x, float y, float z) const;
  float INVERSE_Z(float x, float y, float z) const;
  // InverseRotation p.
  void INVROT3D(float &x, float &y, float &z) const;
  void INVROT3D(double &x, double &y, double &z) const;
  void INVROT3D(float *out, const float *in) const;
  float INVROT_X(float x, float y, float z) const;
  float INVROT_Y(float x, float y, float z) const;
  float INVROT_Z(float x, float y, float z) const;
  // The upper-left 2x2 of the block with the x and y of the translation;
  // z taken as 0.
  void TRANSFORM2D(float &x, float &y) const;
  void INVERSE2D(float &x, float &y) const;

  // ---- Building.
  // Identity rotations, zero translation, flag set.
  void IDENTITY();
  // Translation = -(InverseRotation Translation), then the two rotations
  // exchange. Trusts InverseRotation. Flag set.
  void INVERT();
  // InverseRotation = transpose of Rotation, for a caller that wrote
  // Rotation by hand.
  void UpdateOrthonormalInverse();
  // Resets both rotations and the translation; ROTEER_ENKEL of Rotation about
  // z by rz, y by ry, x by rx, and of InverseRotation about x, y, z by the
  // negated angles; then CENTER(cx, cy, cz). Degrees.
  void ROTATION(float rx, float ry, float rz, float cx, float cy, float cz);
  // Despite the name this is not the angle form: it is ROTATION_IN_PLANE
  // from vector `angles` to vector `center`, about the origin. The
  // parameter names are kept for that reason only; callers pass two vectors.
  void ROTATION(const float *const angles, const float *const center);
  // Rotates Rotation about z by the third argument (degrees, pi taken as the
  // float 3.1415927). The first two arguments are ignored, and
  // InverseRotation and Translation are left alone, on purpose: afterwards
  // the two matrices no longer agree. Flag set.
  void ROTATE(float ignoredX, float ignoredY, float rz);
  // ROTEER_ENKEL (pre-multiplication) on Rotation, and with the negated angle
  // also pre-multiplied on InverseRotation, kept so on purpose; the two stay
  // inverse only when they commute with the step. Flag set.
  void ROTEER_ENKEL(long axis, float degrees);
  // The rotation about the common normal taking vector a onto vector b,
  // about centre c, by outer products in double, stored as float. Nothing
  // changes when a or b has length exactly 0.0. Parallel vectors (squared
  // normal length below kDoubleEpsilonX10) take a perpendicular axis.
  void ROTATION_IN_PLANE(double ax, double ay, double az, double bx, double by, double bz, float cx, float cy,
                         float cz);
  void ROTATION_IN_PLANE(float ax, float ay, float az, float bx, float by, float bz, float cx, float cy, float cz);
  // The same aim by the axis-angle formula; a caller's normal n serves as
  // the axis when a x b is exactly zero.
  void ROTATION_IN_PLANE_WITH_NORMAL(double ax, double ay, double az, double bx, double by, double bz, double nx,
                                     double ny, double nz, float cx, float cy, float cz);
  void ROTATION_IN_PLANE_WITH_NORMAL(float ax, float ay, float az, float bx, float by, float bz, float nx, float ny,
                                     float nz, float cx, float cy, float cz);
  // Rodrigues rotation by `radians` about the axis, in double, stored as
  // float, its transpose as inverse, then CENTER(c). An axis of length
  // exactly 0.0 does nothing.
  void ROTATION_AROUND_AXIS(double ax, double ay, double az, double radians, float cx, float cy, float cz);
  // CENTER(c, c): c becomes a fixed point.
  void CENTER(float cx, float cy, float cz);
  // Translation = d - Rotation c, in float: c maps to d. Flag set.
  void CENTER(float cx, float cy, float cz, float dx, float dy, float dz);
  // Diagonal scale about c; the inverse holds the reciprocals. No test for
  // zero.
  void SCALE(float sx, float sy, float sz, float cx, float cy, float cz);
  // Fits the view box (x0, y0)-(x1, y1) to the target box (p0, q0)-(p1, q1)
  // with a uniform scale magnitude: the smaller of |sx|, |sy| wins and the
  // other keeps its sign; z scales by |sx|. The centre of the first box, at
  // z 0, goes to the centre of the second. Divides without a test.
  void KIJK_BOX(float x0, float y0, float x1, float y1, float p0, float q0, float p1, float q1);
  // Mirrors: negates Translation[axis] and only the diagonal element
  // (axis, axis) of both rotations. Flag set.
  void SPIEGEL(long axis);
  // this = a b (b applied first), with InverseRotation = b.Inv a.Inv.
  void PRODUCT(const MTransform &a, const MTransform &b);
  MTransform operator*(const MTransform &b) const;
  // this = t1 conjugated by t2: t2^-1 t1 t2 (inverses taken from the
  // InverseRotation fields). Flag set.
  void T1THIS_FROM_T2T1(MTransform &t1, MTransform &t2);
  // this = t applied after this.
  void _TRANSFORM(MTransform &t);
  // The nine values are Rotation in row order and InverseRotation their
  // transpose; the x and y of Translation become 0 while z stays, and the
  // flag is not set, both on purpose.
  void SET_ORTHONORMAL_TRANSFORM(float r00, float r01, float r02, float r10, float r11, float r12, float r20, float r21,
                                 float r22);
  // Translation = the values (narrowed). Flag not set, on purpose.
  void TRANSLATE(float tx, float ty, float tz);
  void TRANSLATE(double tx, double ty, double tz);
  // Adds to Translation. Flag not set, on purpose.
  void ADD_TRANSLATE(float tx, float ty, float tz);
  // ROTATION_IN_PLANE from (0, 0, 1) to v, then Translation = p.
  void MakeNewZAxis(const float &px, const float &py, const float &pz, const float &vx, const float &vy,
                    const float &vz);
  // Copies `source`, zeroes Translation and normalises the rows of Rotation
  // (lengths in float, no test for zero), multiplying the matching columns
  // of InverseRotation by the row lengths.
  void GET_ROTATION(MTransform &source);
  // ORIENTATIE on a copy of Rotation (of InverseRotation): the angles in
  // degrees.
  void ANGLES(float &rx, float &ry, float &rz);
  void INVERSE_ANGLES(float &rx, float &ry, float &rz);
  // Maps the eight corners of the box (interleaved order as M3DBoundingBox)
  // by the TRANSFORM3D arithmetic in float and writes back their hull; the
  // outputs start at +-3.4028235e38 and widen by strict comparisons.
  void TransformBoundingBox(float &xMin, float &xMax, float &yMin, float &yMax, float &zMin, float &zMax) const;
  // A unit vector normal to (x, y, z): (0, z, -y) normalised if y^2 + z^2
  // is greater than 1.1920928955078125e-07, else (y, -x, 0) normalised.
  void GetNormalToVector(double &nx, double &ny, double &nz, double x, double y, double z) const;

  // ---- Conversion.
  // Rotation and Translation from ConvertFloat16 of the matrix;
  // InverseRotation likewise from a copy whose Matrix and Inverse are
  // exchanged if it is Inversible (from Matrix itself otherwise). Flag set.
  MTransform &operator=(const MMTransformMatrix &matrix);
  // An identity matrix filled by Make(MMOrthoTransform) from the widened
  // fields: the translation is rounded to float there again, the matrix is
  // classified and its inverse computed as usual; InverseRotation plays no
  // part.
  operator MMTransformMatrix() const;
  // The 4x4 in column order: the three columns of Rotation, each followed by
  // 0, then Translation and 1. Points to one static array, overwritten at
  // each call by any object: not re-entrant.
  operator float *() const;
  // The 4x4 in row order: the rows of Rotation each followed by its
  // translation element, then 0, 0, 0, 1. Its own static array, overwritten
  // at each call: not re-entrant.
  float *MakeIVRenderTransform() const;
  // Bitwise comparison of the whole object, VERANDERD and filler included:
  // equal numbers with different flags are different.
  bool operator!=(const MTransform &other) const;
  // Not provided: it would otherwise compile as a comparison of the static
  // buffers of operator float *.
  bool operator==(const MTransform &other) const = delete;
};

static_assert(sizeof(MTransform) == 88, "MTransform is a flag, three filler bytes and 21 floats");

// MTransform with construction from orientation strings.
class KORMATH_API MTransformOrient : public MTransform {
 public:
  using MTransform::MTransform;
  MTransformOrient() = default;

  // Rotation = ORIENTATIE_REL(from, "RBP"), InverseRotation its transpose,
  // Translation zero.
  void ORIENTATION(wchar_t *from);
  // Rotation = ORIENTATIE_REL(from, to), InverseRotation its transpose,
  // Translation zero.
  void ORIENTATION(wchar_t *from, wchar_t *to);
};

#endif  // KORMATH_TRANSFORMS_LEGACY_TRANSFORM_H
