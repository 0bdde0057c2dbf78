#ifndef KORMATH_EXPORT_H
#define KORMATH_EXPORT_H

// KORMATH_API marks the classes and free functions that the kormath library
// exports. Everything else is built with hidden visibility.
#if defined(_WIN32)
#if defined(KORMATH_BUILDING)
#define KORMATH_API __declspec(dllexport)
#else
#define KORMATH_API __declspec(dllimport)
#endif
#else
#define KORMATH_API __attribute__((visibility("default")))
#endif

#endif  // KORMATH_EXPORT_H
