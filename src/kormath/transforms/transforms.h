#ifndef KORMATH_TRANSFORMS_TRANSFORMS_H
#define KORMATH_TRANSFORMS_TRANSFORMS_H

#include <kormath/transforms/core_types.h>
#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/ortho_transform.h>
#include <kormath/transforms/transform.h>

#endif  // KORMATH_TRANSFORMS_TRANSFORMS_H
