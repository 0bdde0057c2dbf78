#ifndef KORMATH_CURVES_CURVES_H
#define KORMATH_CURVES_CURVES_H

// Curves and surfaces: the implicit-surface interface, the curve base and
// the NURBS curve, the 2D curve equations and the interpolated surface.

#include <kormath/curves/surface_equation.h>

#endif  // KORMATH_CURVES_CURVES_H
