#ifndef KORMATH_LINALG_LINALG_H
#define KORMATH_LINALG_LINALG_H

// Dense linear algebra and numerics: general, symmetric and LU matrices, the
// fixed 2x2 and 3x3 matrices, polynomial roots, rotation repair, 1D search,
// the histogram and the fade functions.

#include <kormath/linalg/diminishing_functions.h>
#include <kormath/linalg/general_matrix.h>
#include <kormath/linalg/histogram.h>
#include <kormath/linalg/matrix2x2.h>
#include <kormath/linalg/matrix3x3.h>
#include <kormath/linalg/numerical_methods.h>
#include <kormath/linalg/polynomial.h>
#include <kormath/linalg/rotation_repair.h>
#include <kormath/linalg/symmetric_matrix.h>

#endif  // KORMATH_LINALG_LINALG_H
