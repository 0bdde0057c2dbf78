#ifndef KORMATH_TRANSFORMS_TRANSFORMS_H
#define KORMATH_TRANSFORMS_TRANSFORMS_H

#include <kormath/transforms/concat.h>
#include <kormath/transforms/core_types.h>
#include <kormath/transforms/identity_transform.h>
#include <kormath/transforms/legacy_points.h>
#include <kormath/transforms/legacy_transform.h>
#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/orientation.h>
#include <kormath/transforms/ortho_transform.h>
#include <kormath/transforms/transform.h>
#include <kormath/transforms/transform_stack.h>

#endif  // KORMATH_TRANSFORMS_TRANSFORMS_H
