#ifndef KORMATH_EXAMPLES_REGISTRATION_DEMO_DATA_H
#define KORMATH_EXAMPLES_REGISTRATION_DEMO_DATA_H

// The embedded default: several partial, noisy, displaced views of one
// smooth closed surface, generated from a fixed seed, with their ground truth.

#include <cstdint>
#include <string>
#include <vector>

#include <kormath/kormath.h>

#include "point_io.h"

namespace reg {

struct DemoView {
  std::string name;
  PointSet points;
  // Where the scanner put the view: stored point = displacement(world point) + noise.
  MMTransformMatrix displacement;
};

// Four views of a bumpy ellipsoid (semi-axes about 40, 28 and 22 mm) sampled
// at 9000 surface points; each view sees the points on a little more than
// half of it from a different side, with its own Gaussian noise of 0.05 mm
// and a rigid displacement of a few degrees and millimetres.
// The generator and its distributions are our own, so the same seed gives
// the same data wherever the math library rounds alike.
std::vector<DemoView> MakeDemoViews(std::uint64_t seed);

}  // namespace reg

#endif  // KORMATH_EXAMPLES_REGISTRATION_DEMO_DATA_H
