#ifndef KORMATH_KORMATH_H
#define KORMATH_KORMATH_H

// The umbrella header: every public header of the library.

#include <kormath/export.h>
#include <kormath/platform/platform.h>
#include <kormath/transforms/transforms.h>
#include <kormath/linalg/linalg.h>
#include <kormath/geometry/geometry.h>
#include <kormath/registration/registration.h>
#if __has_include(<kormath/polyplane/polyplane.h>)
#include <kormath/polyplane/polyplane.h>
#endif
#if __has_include(<kormath/transforms/field/field.h>)
#include <kormath/transforms/field/field.h>
#endif
#if __has_include(<kormath/curves/nurbs/nurbs.h>)
#include <kormath/curves/nurbs/nurbs.h>
#endif
#if __has_include(<kormath/curves/curves.h>)
#include <kormath/curves/curves.h>
#endif
#if __has_include(<kormath/smal/smal.h>)
#include <kormath/smal/smal.h>
#endif
#if __has_include(<kormath/selftest/selftest.h>)
#include <kormath/selftest/selftest.h>
#endif

#endif  // KORMATH_KORMATH_H
