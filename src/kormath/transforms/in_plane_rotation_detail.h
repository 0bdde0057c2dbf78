#ifndef KORMATH_TRANSFORMS_IN_PLANE_ROTATION_DETAIL_H
#define KORMATH_TRANSFORMS_IN_PLANE_ROTATION_DETAIL_H

// The rotation about the common normal of two directions, shared by the
// matrix transform and the legacy float transform. Not installed.

#include <kormath/transforms/core_types.h>

#include <cmath>

namespace KorMathDetail {

// A unit axis perpendicular to the unit direction a, for directions that are
// parallel or opposite: (0, a.z, -a.y) normalised when a.y^2 + a.z^2 exceeds
// `threshold`, otherwise (a.y, -a.x, 0) normalised.
inline MMPoint3d<double> PerpendicularAxis(const MMPoint3d<double> &a, double threshold) {
  const double yz = a.y * a.y + a.z * a.z;
  if (yz > threshold) {
    const double l = std::sqrt(yz);
    return MMPoint3d<double>(0.0, a.z / l, -a.y / l);
  }
  const double l = std::sqrt(a.x * a.x + a.y * a.y);
  return MMPoint3d<double>(a.y / l, -a.x / l, 0.0);
}

// Writes the 3x3 block b a^T + n n^T + q p^T, with p = a x n and q = b x n,
// into m[0..2][0..2]: it takes a onto b and keeps the unit normal n, with no
// trigonometry; opposite directions give a half turn about n.
template <class Block>
void WriteInPlaneRotation(Block &m, const MMPoint3d<double> &a, const MMPoint3d<double> &b,
                          const MMPoint3d<double> &n) {
  const MMPoint3d<double> p = a.Cross(n);
  const MMPoint3d<double> q = b.Cross(n);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) m[i][j] = b[i] * a[j] + n[i] * n[j] + q[i] * p[j];
}

}  // namespace KorMathDetail

#endif  // KORMATH_TRANSFORMS_IN_PLANE_ROTATION_DETAIL_H
