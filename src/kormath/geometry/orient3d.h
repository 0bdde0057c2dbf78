#ifndef KORMATH_GEOMETRY_ORIENT3D_H
#define KORMATH_GEOMETRY_ORIENT3D_H

// Sign-exact orientation of four points in space, by adaptive-precision
// floating-point expansion arithmetic. Internal to the library (not
// exported); DoTrianglesIntersectRobust is its public user.
//
// orient3d(a, b, c, d) approximates the determinant of the rows a - d,
// b - d, c - d. Its sign is exact for all finite inputs that cause no
// overflow or underflow: positive when d lies below the plane through a, b,
// c oriented counter-clockwise seen from above, negative above, zero when
// the four points are coplanar. The magnitude is an approximation.
//
// Stages, each taken only when the previous one cannot decide: a plain
// double evaluation with a forward error bound; an evaluation whose 2x2
// minors and products are exact expansions built from the rounded
// differences; a first-order correction with the rounding tails of the
// differences; the exact determinant as an expansion. Expansions live in
// fixed arrays on the stack. IEEE double with round-to-nearest-even and no
// contraction of a*b+c into fused operations are required.

namespace KorMathPredicates {

double orient3d(const double *a, const double *b, const double *c, const double *d);

// The same, reporting the stage (1 to 4) that decided the sign. For tests
// and measurements.
double orient3d(const double *a, const double *b, const double *c, const double *d, int &stage);

}  // namespace KorMathPredicates

#endif  // KORMATH_GEOMETRY_ORIENT3D_H
