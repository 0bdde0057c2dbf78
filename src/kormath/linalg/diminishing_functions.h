#ifndef KORMATH_LINALG_DIMINISHING_FUNCTIONS_H
#define KORMATH_LINALG_DIMINISHING_FUNCTIONS_H

// Fades from one value to another over an interval of a position parameter,
// linearly or with a raised cosine.

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>

namespace DiminishingFunctions {

enum DiminishingType : int {
  DIMINISHING_NONE = 0,    // always `second`
  DIMINISHING_LINEAR = 1,  // linear blend
  DIMINISHING_COSINE = 2   // raised-cosine blend
};

// `first` at or below `lower`, `second` at or above `upper`, a blend between.
// Any type other than the three above returns `first`. With
// e = 1.4901161193847656e-8, types 1 and 2 return `first` when
// position <= lower + e, `second` when position >= upper - e, and `second`
// when position < e: that last test is on the position itself, not relative
// to `lower`, so with a negative `lower` all positions up to e give `second`;
// kept on purpose. Equal bounds never reach the blend.
//
// Exported for T = double (weights and cosine in float, widened to blend the
// double values) and T = MMPoint3d<float> (all in float, per component).
// Other types are not provided.
template <class T>
T DoDiminishing(double position, double lower, double upper, T const &first, T const &second, DiminishingType type);

template <>
KORMATH_API double DoDiminishing<double>(double position, double lower, double upper, double const &first,
                                         double const &second, DiminishingType type);
template <>
KORMATH_API MMPoint3d<float> DoDiminishing<MMPoint3d<float>>(double position, double lower, double upper,
                                                             MMPoint3d<float> const &first,
                                                             MMPoint3d<float> const &second, DiminishingType type);

}  // namespace DiminishingFunctions

#endif  // KORMATH_LINALG_DIMINISHING_FUNCTIONS_H
