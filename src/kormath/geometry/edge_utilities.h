#ifndef KORMATH_GEOMETRY_EDGE_UTILITIES_H
#define KORMATH_GEOMETRY_EDGE_UTILITIES_H

// Edge and projection utilities. An edge is a line given by a point and a
// direction or by two points; a projection parameter t from 0 to 1 (both
// included) means that the foot falls between the ends.
//
// Thresholds: a direction is usable when its length is strictly above
// 2.220446049250313e-16; the 2D unit step and EdgeCosine treat a length (or
// product of lengths) strictly below 3.140185e-16 as zero. The clamped
// cosines use 1.4901161193847656e-8.

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>

namespace KorMathUtility {

// Distance to the line through the origin along `vector`. For a degenerate
// `vector` the result is the distance between `point` and `vector` itself,
// kept on purpose.
KORMATH_API double DistanceToVector(const MMPoint2d<double> &point, const MMPoint2d<double> &vector);

// Distance to the infinite line; the distance to `edgePoint` when the
// direction is degenerate.
KORMATH_API double DistanceToEdgePointDirection(const MMPoint2d<double> &point, const MMPoint2d<double> &edgePoint,
                                                const MMPoint2d<double> &direction);
KORMATH_API double DistanceToEdgePointDirection(const MMPoint3d<double> &point, const MMPoint3d<double> &edgePoint,
                                                const MMPoint3d<double> &direction);

// Distance to the infinite line through first and second, never clamped.
KORMATH_API double DistanceToEdge(const MMPoint2d<double> &point, const MMPoint2d<double> &first,
                                  const MMPoint2d<double> &second);
KORMATH_API double DistanceToEdge(const MMPoint3d<double> &point, const MMPoint3d<double> &first,
                                  const MMPoint3d<double> &second);

// Distance to the segment: the ends for t < 0 and t > 1.
KORMATH_API double DistanceToSegment(const MMPoint3d<double> &point, const MMPoint3d<double> &first,
                                     const MMPoint3d<double> &second);

// Projection parameter ((point - edgePoint).direction) / L / L (divided twice
// by the length L); 0 when L is not above 2.220446049250313e-16.
KORMATH_API double ProjectOnEdge(const MMPoint3d<double> &point, const MMPoint3d<double> &edgePoint,
                                 const MMPoint3d<double> &direction);
// t in [0, 1], both ends included.
KORMATH_API bool ProjectsOnEdge(const MMPoint3d<double> &point, const MMPoint3d<double> &edgePoint,
                                const MMPoint3d<double> &direction);
// These forms write the foot edgePoint + t direction (and/or the distance to
// it, and t) before they return whether t lies in [0, 1]; the outputs are
// written also when false is returned. A degenerate direction gives t = 0,
// the foot at edgePoint and true.
KORMATH_API bool ProjectOnEdge(MMPoint3d<double> &projected, const MMPoint3d<double> &point,
                               const MMPoint3d<double> &edgePoint, const MMPoint3d<double> &direction);
KORMATH_API bool ProjectOnEdge(double &distance, const MMPoint3d<double> &point, const MMPoint3d<double> &edgePoint,
                               const MMPoint3d<double> &direction);
KORMATH_API bool ProjectOnEdge(double &distance, double &t, MMPoint3d<double> &projected,
                               const MMPoint3d<double> &point, const MMPoint3d<double> &edgePoint,
                               const MMPoint3d<double> &direction);

// Moves `point` to its foot on the line first-second (also onto the
// extension) and tells whether t lies in [0, 1]. A degenerate edge returns
// false and leaves `point` as it is.
KORMATH_API bool PlaceOnEdge(MMPoint2d<double> &point, const MMPoint2d<double> &first, const MMPoint2d<double> &second);

// point - t normal, t the parameter of point on (origin, normal); `normal`
// needs no unit length, a degenerate one leaves the point. Always true.
KORMATH_API bool ProjectOnPlaneThroughOrigin(MMPoint3d<double> &projected, const MMPoint3d<double> &normal,
                                             const MMPoint3d<double> &point);
// point - (planePoint + t normal): the offset within the plane measured from
// `planePoint`, not the foot itself (add planePoint to get the foot). Kept
// on purpose. Always true.
KORMATH_API bool ProjectOnPlane(MMPoint3d<double> &projected, const MMPoint3d<double> &normal,
                                const MMPoint3d<double> &planePoint, const MMPoint3d<double> &point);

// Clamped cosine of the angle between a and b after projection on the plane
// of `normal`; 0 when either projection vanishes.
KORMATH_API double CosAngleInPlane(const MMPoint3d<double> &a, const MMPoint3d<double> &b,
                                   const MMPoint3d<double> &normal);
// Turn from a to b about `normal`, from 0 to 2 pi (radians). A vanishing
// projection gives a right angle.
KORMATH_API double AngleInPlane(const MMPoint3d<double> &a, const MMPoint3d<double> &b,
                                const MMPoint3d<double> &normal);

// Half the length of (a2 - a1) x (b2 - b1); the triangle area when a1 = b1.
KORMATH_API double EdgeArea3D(const MMPoint3d<double> &a1, const MMPoint3d<double> &a2, const MMPoint3d<double> &b1,
                              const MMPoint3d<double> &b2);
// Cosine of the angle between the two edges; 0 when the product of the
// lengths is below 3.140185e-16. Not clamped.
KORMATH_API double EdgeCosine(const MMPoint2d<double> &a1, const MMPoint2d<double> &a2, const MMPoint2d<double> &b1,
                              const MMPoint2d<double> &b2);
// Plain arc cosine of EdgeCosine: not-a-number when rounding lifts the
// cosine beyond 1.
KORMATH_API double EdgeAngle(const MMPoint2d<double> &a1, const MMPoint2d<double> &a2, const MMPoint2d<double> &b1,
                             const MMPoint2d<double> &b2);

// Do segments a-b and c-d cross. In the side tests `tolerance` bounds the
// sine of unit cross products (a sign is 0 when tolerance >= |value|); in
// the collinear case it bounds coordinate differences. Exact box rejection
// first, then a one-sided test of touching box sides (only x1 min against x2
// max and y1 min against y2 max, the asymmetry kept on purpose). A shared
// end point in general position is no crossing.
KORMATH_API bool IntersectingSegmentsTesting(const MMPoint2d<double> &a, const MMPoint2d<double> &b,
                                             const MMPoint2d<double> &c, const MMPoint2d<double> &d, double tolerance);

// Rounds each coordinate half away from zero through a 32-bit signed
// integer. Values outside the 32-bit range (and not-a-number) give the
// x86 conversion's out-of-range result, -2147483648, not the rounded double.
KORMATH_API void Round(MMPoint3d<double> &point);

}  // namespace KorMathUtility

#endif  // KORMATH_GEOMETRY_EDGE_UTILITIES_H
