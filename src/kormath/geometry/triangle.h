#ifndef KORMATH_GEOMETRY_TRIANGLE_H
#define KORMATH_GEOMETRY_TRIANGLE_H

// Single triangles and pairs of triangles in space: the MMTriangle value
// class, projection of a point on a triangle with the feature hit, the
// closest points of two triangles, and the exact intersection test.
//
// Two families that must not be mixed: the projection and distance
// routines work with floating-point tolerances (1.4901161193847656e-8 for
// lengths and squared lengths alike) and report the nearest feature; the
// intersection test is exact and has no tolerance at all.

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>

// Three corners, in order.
class KORMATH_API MMTriangle {
 public:
  MMTriangle();
  MMTriangle(const MMPoint3d<double> &p0, const MMPoint3d<double> &p1, const MMPoint3d<double> &p2);

  // Corner 0, 1 or 2; any other index gives corner 0.
  const MMPoint3d<double> &GetPoint(char index) const;
  // Unit of (P1 - P0) x (P2 - P0) through the guarded normalisation: a
  // degenerate triangle gives the raw short vector.
  MMPoint3d<double> GetNormal() const;

  // The corners as an array of three consecutive points, the form that
  // MTriangle3dUtilities and DistanceT2T take.
  const MMPoint3d<double> *GetPoints() const { return m_points; }

 private:
  MMPoint3d<double> m_points[3];
};

namespace MTriangle3dUtilities {

// The feature on which a projection landed. The value 0 is never produced.
enum MPosition {
  POSITION_INSIDE = 1,    // foot inside the triangle or on its boundary
  POSITION_VERTEX_0 = 2,  // corner P0
  POSITION_VERTEX_1 = 3,  // corner P1
  POSITION_VERTEX_2 = 4,  // corner P2
  POSITION_EDGE_01 = 5,   // interior of edge P0-P1
  POSITION_EDGE_12 = 6,   // interior of edge P1-P2
  POSITION_EDGE_02 = 7,   // interior of edge P0-P2
};

// Projects `point` on the triangle (three consecutive points) and returns
// the squared distance. `normal` must be the unit normal of the triangle,
// supplied by the caller: the height is taken as normal . offset, without
// division. A foot inside or on the boundary gives POSITION_INSIDE with the
// normal as `direction`. Otherwise the features are walked in a fixed order
// (edge 0-1 or P0, then edge 0-2 with an early return, then edge 1-2, P1,
// P2), which is a walk and not a global minimum; the order is kept on
// purpose. For a candidate farther than 0.2 (squared 0.04) `direction`
// becomes the vector from the candidate to the point, turned to the
// normal's side; nearer candidates leave it as it stood. A triangle with
// coincident corners ends on POSITION_VERTEX_2.
KORMATH_API double ProjectPoint2(MMPoint3d<double> &closest, MMPoint3d<double> &direction, MPosition &position,
                                 const MMPoint3d<double> &point, const MMPoint3d<double> *const triangle,
                                 const MMPoint3d<double> &normal);

// ProjectPoint2, returning the distance d; when d > 0.2 and the position is
// not POSITION_INSIDE, `direction` is divided by d and so becomes a unit
// vector. Otherwise `direction` is as ProjectPoint2 left it (usually the
// normal).
KORMATH_API double ProjectPoint(MMPoint3d<double> &closest, MMPoint3d<double> &direction, MPosition &position,
                                const MMPoint3d<double> &point, const MMPoint3d<double> *const triangle,
                                const MMPoint3d<double> &normal);

}  // namespace MTriangle3dUtilities

// Squared distance of two triangles (arrays of three points) with their
// unit normals, and the closest points, each written only when its pointer
// is not null. First the edges of each triangle are tested against the
// interior of the other (a hit needs the strict interior, so touching on a
// boundary is not found here): a hit returns 0 with both points at the
// piercing point. Then the vertices of A against B and of B against A, each
// pass stopping early when the triangle lies wholly behind the vertex as
// seen along the connecting vector; then the interior pairs of edges. Ties
// keep the earlier candidate. For closest points further apart than
// 1.4901161193847656e-8 no vertex of either triangle lies more than that
// tolerance ahead of its closest point along the connecting vector.
KORMATH_API double DistanceT2T(const MMPoint3d<double> *triangleA, const MMPoint3d<double> &normalA,
                               const MMPoint3d<double> *triangleB, const MMPoint3d<double> &normalB,
                               MMPoint3d<double> *closestA, MMPoint3d<double> *closestB);

namespace MTriangle3dUtilities {
using ::DistanceT2T;
}  // namespace MTriangle3dUtilities

// Exact test whether two triangles, each given as three arrays of three
// doubles, intersect. The signs come from the exact orientation predicate,
// so the answer holds for all finite input without overflow or underflow.
// Coplanar triangles are answered true with no further test, also when they
// lie far apart; kept on purpose. Touching at a single point counts as
// intersecting.
KORMATH_API bool DoTrianglesIntersectRobust(double (*const a)[3], double (*const b)[3]);

#endif  // KORMATH_GEOMETRY_TRIANGLE_H
