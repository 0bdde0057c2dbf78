#ifndef KORMATH_GEOMETRY_TRIANGLE_DETAIL_H
#define KORMATH_GEOMETRY_TRIANGLE_DETAIL_H

// Internal steps of the triangle distance, not exported; declared here so
// that the library's own tests can check them one by one.

#include <kormath/transforms/core_types.h>

namespace MTriangle3dUtilities {
namespace detail {

// Below this, lengths and squared lengths count as zero.
constexpr double kTriangleTolerance = 1.4901161193847656e-8;

// ((p - a).(b - a)) / |b - a|^2, or exactly 0.5 when |b - a|^2 is below the
// tolerance.
double SegmentParameter(const MMPoint3d<double> &p, const MMPoint3d<double> &a, const MMPoint3d<double> &b);

// Squared distance of p to the triangle a, b, c by the seven-region
// minimisation, with the closest point and its barycentric coordinates
// (1 - s - t, s, t). A triangle with |E1 x E0|^2 below the tolerance takes
// the nearest of the segments a-c, a-b, b-c instead.
double PointTriangleSquaredDistance(const MMPoint3d<double> &p, const MMPoint3d<double> &a, const MMPoint3d<double> &b,
                                    const MMPoint3d<double> &c, MMPoint3d<double> &closest, double *barycentric);

// Parameters s on A-B and t on C-D of the closest points of the two lines;
// for nearly parallel lines (a c - b b below the tolerance) one end is fixed
// at 0 and the other found by SegmentParameter.
void ClosestLineParameters(const MMPoint3d<double> &A, const MMPoint3d<double> &B, const MMPoint3d<double> &C,
                           const MMPoint3d<double> &D, double &s, double &t);

// Does the edge p-q pass through the strict interior of the triangle with
// normal n; writes the crossing point x.
bool EdgeThroughTriangle(const MMPoint3d<double> *triangle, const MMPoint3d<double> &n, const MMPoint3d<double> &p,
                         const MMPoint3d<double> &q, MMPoint3d<double> &x);

}  // namespace detail
}  // namespace MTriangle3dUtilities

#endif  // KORMATH_GEOMETRY_TRIANGLE_DETAIL_H
