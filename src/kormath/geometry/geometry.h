#ifndef KORMATH_GEOMETRY_GEOMETRY_H
#define KORMATH_GEOMETRY_GEOMETRY_H

// Geometry primitives and fits: lines, planes, rectangles, edge utilities,
// triangles and the least-squares fits.

#include <kormath/geometry/edge_utilities.h>
#include <kormath/geometry/least_squares.h>
#include <kormath/geometry/line.h>
#include <kormath/geometry/plane.h>
#include <kormath/geometry/triangle.h>

#endif  // KORMATH_GEOMETRY_GEOMETRY_H
