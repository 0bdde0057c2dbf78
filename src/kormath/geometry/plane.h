#ifndef KORMATH_GEOMETRY_PLANE_H
#define KORMATH_GEOMETRY_PLANE_H

// Planes and rectangles. MMPlaneEq<double> is the working plane of the
// library, a x + b y + c z + d = 0 with a unit normal by convention; MMPlane
// is the point-and-normal form; MMRectangle is a right-angled quadrilateral
// in space and MMRectangle2D an axis-parallel rectangle in the plane.

#include <kormath/export.h>
#include <kormath/geometry/line.h>
#include <kormath/transforms/core_types.h>
#include <kormath/transforms/transform.h>

#include <cmath>
#include <cstddef>

// Result of MMPlaneEq::IntersectWithPlane.
enum MPlaneIntersectionType {
  PLANES_PARALLEL = 0,    // parallel and distinct; no point written
  PLANES_INTERSECT = 1,   // a line; point and direction written
  PLANES_COINCIDENT = 2,  // the same plane up to orientation; no point written
};

// Plane in equation form. All constructors and setters that take a normal or
// coefficients normalise; Normalise ignores an exactly zero normal (no small
// threshold), so such an object keeps its coefficients and IsPlane is false.
// After Normalise, Distance is a true signed distance; a caller that writes
// coefficients through the accessors owns that invariant.
template <class T>
class MMPlaneEq {
 public:
  MMPlaneEq() : m_normal{T(0), T(0), T(0)}, m_d(T(0)) {}
  MMPlaneEq(const MMVector<T, 3> &p0, const MMVector<T, 3> &p1, const MMVector<T, 3> &p2) { Set(p0, p1, p2); }
  MMPlaneEq(const MMVector<T, 3> &point, const MMVector<T, 3> &normal) { Set(point, normal); }
  MMPlaneEq(T a, T b, T c, T d) { Set(a, b, c, d); }
  MMPlaneEq(const MMPlaneEq &) = default;
  MMPlaneEq &operator=(const MMPlaneEq &) = default;

  // Plane through three points: normal (p1 - p0) x (p2 - p0), d = -(n.p0),
  // then Normalise. Collinear points give the all-zero plane.
  void Set(const MMVector<T, 3> &p0, const MMVector<T, 3> &p1, const MMVector<T, 3> &p2) {
    const T ux = p1.x - p0.x, uy = p1.y - p0.y, uz = p1.z - p0.z;
    const T wx = p2.x - p0.x, wy = p2.y - p0.y, wz = p2.z - p0.z;
    m_normal.x = uy * wz - uz * wy;
    m_normal.y = uz * wx - ux * wz;
    m_normal.z = ux * wy - uy * wx;
    m_d = -(m_normal.x * p0.x + m_normal.y * p0.y + m_normal.z * p0.z);
    Normalise();
  }
  // Plane through a point with the given normal, then Normalise.
  void Set(const MMVector<T, 3> &point, const MMVector<T, 3> &normal) {
    m_normal.x = normal.x;
    m_normal.y = normal.y;
    m_normal.z = normal.z;
    m_d = -(m_normal.x * point.x + m_normal.y * point.y + m_normal.z * point.z);
    Normalise();
  }
  // Coefficients as given, then Normalise.
  void Set(T a, T b, T c, T d) {
    m_normal.x = a;
    m_normal.y = b;
    m_normal.z = c;
    m_d = d;
    Normalise();
  }

  T &A() { return m_normal.x; }
  T &B() { return m_normal.y; }
  T &C() { return m_normal.z; }
  T &D() { return m_d; }
  const T &A() const { return m_normal.x; }
  const T &B() const { return m_normal.y; }
  const T &C() const { return m_normal.z; }
  const T &D() const { return m_d; }
  MMVector<T, 3> &GetNormal() { return m_normal; }
  const MMVector<T, 3> &GetNormal() const { return m_normal; }

  // Geometric, asymmetric equality with e = 1.4901161193847656e-8: when
  // |d2| > e, equal when |d1| > e too and d2 n1 == d1 n2 component-wise,
  // exactly (so a plane equals its own inversion); when only |d1| > e, not
  // equal; with both through the origin, equal when e > |n1.n2 - 1| (so the
  // inversion is not equal).
  bool operator==(const MMPlaneEq &other) const {
    const T e = T(1.4901161193847656e-8);
    const T d1 = m_d, d2 = other.m_d;
    if (std::abs(d2) > e) {
      return std::abs(d1) > e && d2 * m_normal.x == d1 * other.m_normal.x && d2 * m_normal.y == d1 * other.m_normal.y &&
             d2 * m_normal.z == d1 * other.m_normal.z;
    }
    if (std::abs(d1) > e) return false;
    const T dot = m_normal.x * other.m_normal.x + m_normal.y * other.m_normal.y + m_normal.z * other.m_normal.z;
    return e > std::abs(dot - T(1));
  }
  bool operator!=(const MMPlaneEq &other) const { return !(*this == other); }

  // Any of a, b, c differs from exactly 0.
  bool IsPlane() const { return m_normal.x != T(0) || m_normal.y != T(0) || m_normal.z != T(0); }

  // Divides a, b, c and d by the length of the normal, unless that length is
  // exactly 0.
  void Normalise() {
    const T len = std::sqrt(m_normal.x * m_normal.x + m_normal.y * m_normal.y + m_normal.z * m_normal.z);
    if (len == T(0)) return;
    m_normal.x /= len;
    m_normal.y /= len;
    m_normal.z /= len;
    m_d /= len;
  }
  // Negates a, b, c and leaves d: a different plane, not the same one flipped.
  void InvertNormal() {
    m_normal.x = -m_normal.x;
    m_normal.y = -m_normal.y;
    m_normal.z = -m_normal.z;
  }
  // Negates all four: the same plane, flipped.
  void Invert() {
    InvertNormal();
    m_d = -m_d;
  }
  // A copy with all four negated, then normalised.
  MMPlaneEq Inverted() const {
    MMPlaneEq r(*this);
    r.Invert();
    r.Normalise();
    return r;
  }

  // Carries the plane through the point operation of `transform`: the foot
  // of the origin as a point and the normal as the difference of two mapped
  // points. The new normal and the mapped foot are rounded to single
  // precision on purpose, so a transformed plane carries about seven digits
  // (even the identity may change the eighth digit). Under a non-uniform
  // scale the normal is not corrected by the inverse transpose, also on
  // purpose. The denominator a a + b b + c c is not guarded.
  void Transform(const MMTransform &transform);

  // a x + b y + c z + d, no division.
  T Distance(T x, T y, T z) const { return m_normal.x * x + m_normal.y * y + m_normal.z * z + m_d; }
  T Distance(const MMVector<T, 3> &p) const { return Distance(p.x, p.y, p.z); }

  // Intersects the line origin + t direction. When normal.direction is
  // exactly 0, t = 0, the result is false and `point` is untouched (not
  // meaningful). `direction` need not be a unit vector; t is in its length.
  bool Intersect(T &t, MMVector<T, 3> &point, const MMVector<T, 3> &origin, const MMVector<T, 3> &direction) const {
    const T den = m_normal.x * direction.x + m_normal.y * direction.y + m_normal.z * direction.z;
    if (den == T(0)) {
      t = T(0);
      return false;
    }
    t = -((m_normal.x * origin.x + m_normal.y * origin.y + m_normal.z * origin.z) + m_d) / den;
    point.x = origin.x + t * direction.x;
    point.y = origin.y + t * direction.y;
    point.z = origin.z + t * direction.z;
    return true;
  }

  // The line through the two planes. `direction` = n1 x n2, normalised unless
  // exactly zero, written in every case. The point is taken with z = 0, then
  // y = 0, then x = 0, the first whose 2x2 determinant exceeds `tolerance` in
  // magnitude. Parallel planes are PLANES_COINCIDENT when their constants
  // agree (with the sign of n1.n2) within `tolerance`, strictly; `point` is
  // not written then, nor for PLANES_PARALLEL.
  MPlaneIntersectionType IntersectWithPlane(MMVector<T, 3> &point, MMVector<T, 3> &direction, const MMPlaneEq &other,
                                            T tolerance) const {
    const T a1 = m_normal.x, b1 = m_normal.y, c1 = m_normal.z, d1 = m_d;
    const T a2 = other.m_normal.x, b2 = other.m_normal.y, c2 = other.m_normal.z, d2 = other.m_d;
    direction.x = b1 * c2 - c1 * b2;
    direction.y = c1 * a2 - a1 * c2;
    direction.z = a1 * b2 - b1 * a2;
    const T len = std::sqrt(direction.x * direction.x + direction.y * direction.y + direction.z * direction.z);
    if (len != T(0)) {
      direction.x /= len;
      direction.y /= len;
      direction.z /= len;
    }
    T k = a2 * b1 - a1 * b2;
    if (std::abs(k) > tolerance) {
      point.x = (d1 * b2 - d2 * b1) / k;
      point.y = (d2 * a1 - d1 * a2) / k;
      point.z = T(0);
      return PLANES_INTERSECT;
    }
    k = c1 * a2 - c2 * a1;
    if (std::abs(k) > tolerance) {
      point.x = (d1 * c2 - d2 * c1) / k;
      point.y = T(0);
      point.z = (d2 * a1 - d1 * a2) / k;
      return PLANES_INTERSECT;
    }
    k = c1 * b2 - c2 * b1;
    if (std::abs(k) > tolerance) {
      point.x = T(0);
      point.y = (d1 * c2 - d2 * c1) / k;
      point.z = (d2 * b1 - d1 * b2) / k;
      return PLANES_INTERSECT;
    }
    const T g = a1 * a2 + b1 * b2 + c1 * c2;
    if ((g > T(0) && tolerance > std::abs(d1 - d2)) || (g < T(0) && tolerance > std::abs(d1 + d2))) {
      return PLANES_COINCIDENT;
    }
    return PLANES_PARALLEL;
  }

  // Intersect along the plane's own normal; returns t as Intersect left it.
  // For a unit normal this is the foot, and the value returned is
  // -Distance(point): note the sign, opposite to Mirror.
  T Project(MMVector<T, 3> &projected, const MMVector<T, 3> &point) const {
    T t = T(0);
    Intersect(t, projected, point, m_normal);
    return t;
  }
  // mirrored = point - 2 v normal with v = Distance(point); returns v,
  // positive on the side the normal points to.
  T Mirror(MMVector<T, 3> &mirrored, const MMVector<T, 3> &point) const {
    const T v = Distance(point);
    mirrored.x = point.x - T(2) * v * m_normal.x;
    mirrored.y = point.y - T(2) * v * m_normal.y;
    mirrored.z = point.z - T(2) * v * m_normal.z;
    return v;
  }
  // tolerance > |Distance(point)|, strict: tolerance 0 is always false.
  bool On(const MMVector<T, 3> &point, T tolerance) const { return tolerance > std::abs(Distance(point)); }

 private:
  MMVector<T, 3> m_normal;
  T m_d;
};

// The library exports the double instantiation.
extern template class KORMATH_API MMPlaneEq<double>;

// A plane as a point and a normal, the normal kept as supplied.
class KORMATH_API MMPlane {
 public:
  MMPlane();
  MMPlane(const MMPoint3d<double> &point, const MMPoint3d<double> &normal);
  // Normal copied as it is; the point is where the axis of the largest
  // absolute coefficient (ties to x, then y) meets the plane. A zero normal
  // has no such point (division by 0 on the x branch).
  MMPlane(const MMPlaneEq<double> &plane);  // NOLINT: converting on purpose
  MMPlane(const MMPlane &) = default;
  MMPlane &operator=(const MMPlane &) = default;
  virtual ~MMPlane();

  const MMPoint3d<double> &GetPoint() const { return point; }
  const MMPoint3d<double> &GetNormal() const { return normal; }

  // tolerance > |angle - pi/2|, strict, with the angle from the clamped
  // cosine between the normal and the guarded unit line direction: the
  // tolerance is an angle in radians. A degenerate line is parallel to every
  // plane (its cosine is 0).
  bool IsParallel(const MMLine &line, double tolerance) const;
  // -tolerance < s < tolerance (both strict) for the L1 size s of the cross
  // product of the two stored normals.
  bool IsParallel(const MMPlane &other, double tolerance) const;

  MMPoint3d<double> point;
  MMPoint3d<double> normal;
};

// A right-angled quadrilateral in space; corners in order around it.
class KORMATH_API MMRectangle {
 public:
  // The unit square in z = 0: Set((0,0,0), (1,0,0), (0,1,0)).
  MMRectangle();
  MMRectangle(const MMPoint3d<double> &first, const MMPoint3d<double> &second, const MMPoint3d<double> &third);

  // Corners first, second, opposite, third: `third` is the neighbour of
  // `first`. When |(third - first).(second - first)| is not below 1e-8 (on
  // the unnormalised product), `third` is moved along the edge direction
  // onto the plane through `first` perpendicular to that edge, so the angle
  // at `first` is right.
  void Set(const MMPoint3d<double> &first, const MMPoint3d<double> &second, const MMPoint3d<double> &third);

  // The index is not checked.
  const MMPoint3d<double> &GetCornerPoint(std::size_t index) const { return m_corners[index]; }
  // Line from corner (index & 3) to corner ((index + 1) & 3): the index may
  // run past 3.
  MMLine GetEdge(std::size_t index) const;
  // Point = centre (mean of corners 0 and 2), normal = guarded unit of
  // (c1 - c0) x (c3 - c0).
  MMPlane GetPlane() const;
  // Maps the corners in place through the point operation; results ignored.
  // The rectangle is not re-squared.
  void Transform(const MMTransform &transform);

 private:
  MMPoint3d<double> m_corners[4];
};

// Axis-parallel rectangle; corners (p.x, p.y), (q.x, p.y), (q.x, q.y),
// (p.x, q.y), with no ordering of p and q enforced.
class KORMATH_API MMRectangle2D {
 public:
  MMRectangle2D();
  MMRectangle2D(const MMPoint2d<double> &first, const MMPoint2d<double> &second);
  void Set(const MMPoint2d<double> &first, const MMPoint2d<double> &second);
  // The index is not checked.
  const MMPoint2d<double> &GetCornerPoint(std::size_t index) const { return m_corners[index]; }

 private:
  MMPoint2d<double> m_corners[4];
};

#endif  // KORMATH_GEOMETRY_PLANE_H
