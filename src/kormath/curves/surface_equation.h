#ifndef KORMATH_CURVES_SURFACE_EQUATION_H
#define KORMATH_CURVES_SURFACE_EQUATION_H

// The implicit-surface interface: a scalar field in space whose zero set is
// the surface, and the mapping of a point to the surface's own (u, v)
// parameters. Implemented by the swept 2D curve equations and by the
// radial-basis interpolated surface. Its table holds the two operations
// only: there is no virtual destructor, so an object is never deleted
// through this interface (the destructor is protected to make that a
// compile error).

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>

class KORMATH_API ISurfaceEquation3d {
 public:
  // The field at (x, y, z).
  virtual double Evaluate3d(double x, double y, double z) const = 0;
  // The surface parameters (u, v) of the point (x, y, z).
  virtual MMPoint2d<double> FromXYZtoUV(double x, double y, double z) = 0;

 protected:
  ISurfaceEquation3d() = default;
  ISurfaceEquation3d(const ISurfaceEquation3d &) = default;
  ISurfaceEquation3d &operator=(const ISurfaceEquation3d &) = default;
  ~ISurfaceEquation3d() = default;
};

#endif  // KORMATH_CURVES_SURFACE_EQUATION_H
