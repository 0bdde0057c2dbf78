#ifndef KORMATH_TRANSFORMS_FLOAT_ROUNDING_DETAIL_H
#define KORMATH_TRANSFORMS_FLOAT_ROUNDING_DETAIL_H

// Deliberate rounding of a double to float precision, for the operations
// whose results are specified as rounded through float. The empty asm
// statement makes the float value opaque to the optimiser, so that no
// vectoriser can fold the narrowing away (GCC 12's SLP vectoriser drops it
// when three such values build a point of doubles). It costs no instruction.

namespace kormath_detail {

inline double RoundThroughFloat(double v) {
  float f = static_cast<float>(v);
#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
  __asm__("" : "+x"(f));
#elif defined(__GNUC__)
  __asm__("" : "+g"(f));
#else
  volatile float opaque = f;
  f = opaque;
#endif
  return static_cast<double>(f);
}

}  // namespace kormath_detail

#endif  // KORMATH_TRANSFORMS_FLOAT_ROUNDING_DETAIL_H
