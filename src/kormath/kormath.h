#ifndef KORMATH_KORMATH_H
#define KORMATH_KORMATH_H

// The umbrella header: every public header of the library.

#include <kormath/export.h>
#include <kormath/platform/platform.h>
#include <kormath/transforms/transforms.h>
#include <kormath/linalg/linalg.h>
#include <kormath/geometry/geometry.h>
#include <kormath/registration/registration.h>

#endif  // KORMATH_KORMATH_H
