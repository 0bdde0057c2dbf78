#ifndef KORMATH_KORMATH_H
#define KORMATH_KORMATH_H

// The umbrella header: every public header of the library.

#include <kormath/export.h>
#include <kormath/platform/platform.h>
#include <kormath/transforms/transforms.h>

#endif  // KORMATH_KORMATH_H
