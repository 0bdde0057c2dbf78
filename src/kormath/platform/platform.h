#ifndef KORMATH_PLATFORM_PLATFORM_H
#define KORMATH_PLATFORM_PLATFORM_H

#include <kormath/platform/file.h>
#include <kormath/platform/internal_units.h>
#include <kormath/platform/memory_allocator.h>

#endif  // KORMATH_PLATFORM_PLATFORM_H
