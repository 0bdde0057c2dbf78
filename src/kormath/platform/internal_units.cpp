#include <kormath/platform/internal_units.h>

StdBase::MInternalUnits StdBase::MInternalUnits::mg_instance;
