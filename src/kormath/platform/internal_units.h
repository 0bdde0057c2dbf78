#ifndef KORMATH_PLATFORM_INTERNAL_UNITS_H
#define KORMATH_PLATFORM_INTERNAL_UNITS_H

// The host's internal-unit singleton. The library reads one value from it:
// the unit value that a new registered point set copies.

#include <kormath/export.h>

namespace StdBase {

class KORMATH_API MInternalUnits {
 public:
  static MInternalUnits mg_instance;

  // The internal unit value (1.0 until the host sets another).
  double GetUnitValue() const { return m_unit_value; }
  void SetUnitValue(double value) { m_unit_value = value; }

  double m_unit_value = 1.0;
};

}  // namespace StdBase

#endif  // KORMATH_PLATFORM_INTERNAL_UNITS_H
