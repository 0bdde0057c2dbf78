#ifndef KORMATH_REGISTRATION_REGISTRATION_CONSTANTS_H
#define KORMATH_REGISTRATION_REGISTRATION_CONSTANTS_H

// Sentinels shared by the registration kit.

#include <cstdint>

namespace KorMathRegistration {

// An unsigned index with all bits set means "none" throughout the kit.
constexpr std::uint64_t kNoIndex = ~static_cast<std::uint64_t>(0);

// The largest finite double: an unset distance, or an infinite error.
constexpr double kLargestDouble = 1.7976931348623157e308;  // 0x7FEFFFFFFFFFFFFF

}  // namespace KorMathRegistration

#endif  // KORMATH_REGISTRATION_REGISTRATION_CONSTANTS_H
