#ifndef KORMATH_GEOMETRY_LINE_H
#define KORMATH_GEOMETRY_LINE_H

// Straight lines given by two points, in 3D (MMLine) and 2D (MMLine2D). A
// line and a segment are the same object; the operation or a flag says which
// reading applies. Every question is decided against a tolerance supplied by
// the caller, and its meaning differs from operation to operation: each
// operation says what its tolerance bounds and whether the test is strict.

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>

// A 3D line from a first to a second point. The direction is always second
// point minus first point. A default line has all six coordinates at 0.
class KORMATH_API MMLine {
 public:
  MMLine();
  MMLine(const MMPoint3d<double> &first, const MMPoint3d<double> &second);
  MMLine(const MMLine &) = default;
  MMLine &operator=(const MMLine &) = default;
  virtual ~MMLine();

  const MMPoint3d<double> &GetFirstPoint() const { return firstPoint; }
  const MMPoint3d<double> &GetSecondPoint() const { return secondPoint; }
  MMPoint3d<double> &GetFirstPoint() { return firstPoint; }
  MMPoint3d<double> &GetSecondPoint() { return secondPoint; }
  void SetFirstPoint(const MMPoint3d<double> &p) { firstPoint = p; }
  void SetSecondPoint(const MMPoint3d<double> &p) { secondPoint = p; }
  // Second point minus first point, not normalised.
  MMPoint3d<double> GetDirection() const { return secondPoint - firstPoint; }
  double GetLength() const { return GetDirection().Length(); }

  // True when tolerance > |u1 x u2|, the sine of the angle between the two
  // guarded unit directions (strict). Opposite directions count as parallel;
  // a line shorter than kDoubleSqrtEpsilon keeps its short direction, so it
  // is parallel to everything for any positive tolerance. Tolerance 0 never
  // reports parallel.
  bool IsParallel(const MMLine &other, double tolerance) const;

  // Joins the closest points of the two infinite lines: the first point of
  // `perpendicular` lies on `other`, the second on this line. False, with
  // `perpendicular` untouched, when the lines are parallel by IsParallel or
  // when the cross product of the unit directions is exactly zero. An end
  // whose plane intersection has a denominator of exactly 0 keeps the value
  // the caller supplied; the result is still true.
  bool GetCommonPerpendicularLine(const MMLine &other, MMLine &perpendicular, double tolerance) const;

  // True when the perpendicular distance is below tolerance (strict; a
  // tolerance of 0 is always false). With `segment`, the point must also lie
  // between the ends, tested without tolerance: (p - second).(p - first) <= 0.
  bool IsPointOnLine(const MMPoint3d<double> &point, bool segment, double tolerance) const;

  // Intersection as the end, on `other`, of the common perpendicular.
  // Parallelism is always judged with the fixed sine 0.001, whatever the
  // tolerance passed; `tolerance` is the largest allowed gap (inclusive) and
  // is also handed to IsPointOnLine for the segment test. With `segments`,
  // a failing segment test returns false after `point` was written.
  bool GetIntersectionPoint(const MMLine &other, MMPoint3d<double> &point, double tolerance, bool segments) const;

  MMPoint3d<double> firstPoint;
  MMPoint3d<double> secondPoint;
};

// A 2D line from a first to a second point. The default is the unit segment
// from (0, 0) to (1, 0).
class KORMATH_API MMLine2D {
 public:
  MMLine2D();
  MMLine2D(const MMPoint2d<double> &first, const MMPoint2d<double> &second);
  MMLine2D(const MMLine2D &) = default;
  MMLine2D &operator=(const MMLine2D &) = default;

  const MMPoint2d<double> &GetFirstPoint() const { return m_first; }
  const MMPoint2d<double> &GetSecondPoint() const { return m_second; }
  MMPoint2d<double> &GetFirstPoint() { return m_first; }
  MMPoint2d<double> &GetSecondPoint() { return m_second; }
  void SetFirstPoint(const MMPoint2d<double> &p) { m_first = p; }
  void SetSecondPoint(const MMPoint2d<double> &p) { m_second = p; }

  // Unit direction; when the length is strictly below 3.140185e-16 the raw
  // difference is returned.
  MMPoint2d<double> GetDirection() const;
  double GetLength() const;

  // tolerance^2 > |d2 - d1|^2 for the two directions, after d1 is flipped
  // when d1.x * d2.x < 0. Only the x components decide the flip, kept on
  // purpose: two vertical lines of opposite direction are not parallel.
  bool IsParallel(const MMLine2D &other, double tolerance) const;
  // IsParallel, then IsParallel with the line from this first point to the
  // first point of `other`.
  bool IsCoincident(const MMLine2D &other, double tolerance) const;
  // A test of direction, not of distance: IsParallel with the line from this
  // first point to `point`. The first point itself is therefore not on the
  // line for tolerances up to 1 (its temporary line has zero direction).
  bool IsPointOnLine(const MMPoint2d<double> &point, double tolerance) const;
  // False from the distance of the second point on (the second point
  // included); otherwise true unless 1 - tolerance > cosine of the angle at
  // the first point.
  bool IsPointOnLineSegment(const MMPoint2d<double> &point, double tolerance) const;
  // Intersection of the infinite lines. False, with `point` untouched, when
  // tolerance > |e x f| for the unnormalised directions (so the same angle
  // passes or fails with the lengths of the lines).
  bool GetIntersectionPoint(MMPoint2d<double> &point, const MMLine2D &other, double tolerance) const;
  // GetIntersectionPoint, then 2 tolerance > sum of the distances of the
  // point to the two segments. `point` stays written when the second test
  // fails.
  bool GetIntersectionSegmentSegment(MMPoint2d<double> &point, const MMLine2D &other, double tolerance) const;
  // Despite its name: does the segment touch the closed rectangle. An end
  // inside (no tolerance) answers true; then the edges left, top, right,
  // bottom are tried with GetIntersectionSegmentSegment.
  bool DoesSegmentLieOnRect(double xMin, double yMin, double xMax, double yMax, double tolerance) const;
  // a x + b y + c = 0 in the normal form of the library; `tolerance` is the
  // magnitude below which a coordinate or a difference counts as zero.
  void GetLineEquation(double &a, double &b, double &c, double tolerance) const;
  // Foot of `point` on the infinite line. On a line of zero length
  // (|den| below 2.220446049250313e-16) `projected` is left untouched.
  void Project(MMPoint2d<double> &projected, const MMPoint2d<double> &point) const;
  // Distance from `point` to its foot, projected into a local (0, 0). On a
  // zero-length line this is the distance of `point` from the origin, kept
  // on purpose.
  double GetDistance(const MMPoint2d<double> &point) const;
  // GetDistance, negated when the line equation (tolerance
  // 2.220446049250313e-16) is strictly negative at `point`. The sign follows
  // the equation's normal form, not the direction of the line.
  double GetSignedDistance(const MMPoint2d<double> &point) const;

 private:
  static double _DistanceToSegment(const MMPoint2d<double> &p, const MMPoint2d<double> &a, const MMPoint2d<double> &b);

  MMPoint2d<double> m_first;
  MMPoint2d<double> m_second;
};

#endif  // KORMATH_GEOMETRY_LINE_H
