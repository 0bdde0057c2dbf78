#include <kormath/transforms/core_types.h>

#include <kormath/platform/memory_allocator.h>

#include <cmath>

const double CMathConst::kEpsilon = 1e-15;
const double CMathConst::kSqrtEpsilon = 3e-08;
const double CMathConst::kPi = 3.141592653589793;
const double CMathConst::kSqrtPi = 1.77243850905516;
const double CMathConst::kGoldenSectionLeft = 0.38196601;
const double CMathConst::kGoldenSectionRight = 0.61803399;

namespace {
// The integer coordinate range of the host, compared against coordinates and
// extents of a scaled box.
constexpr double kLongCoordinateLimit = 619925130.0;

double RoundHalfAwayFromZero(double v) { return v > 0.0 ? std::floor(v + 0.5) : std::ceil(v - 0.5); }
}  // namespace

void MBoundingBox3DDouble::Scale(double factor, bool aboutCentre) {
  if (aboutCentre) {
    const MMPoint3d<double> centre((min.x + max.x) * 0.5, (min.y + max.y) * 0.5, (min.z + max.z) * 0.5);
    min = (min - centre) * factor + centre;
    max = (max - centre) * factor + centre;
  } else {
    min *= factor;
    max *= factor;
  }
}

bool MBoundingBox3DDouble::FitInLong(MMPoint3d<double> &offset, double &scale, const double &requestedScale) const {
  offset = MMPoint3d<double>(0.0, 0.0, 0.0);
  scale = requestedScale;

  MBoundingBox3DDouble scaled(*this);
  scaled.Scale(requestedScale, false);
  const double coords[6] = {scaled.min.x, scaled.min.y, scaled.min.z, scaled.max.x, scaled.max.y, scaled.max.z};

  bool fits = true;
  for (double c : coords) {
    if (!(std::fabs(c) <= kLongCoordinateLimit)) fits = false;
  }
  if (fits) return false;

  double extent = -1.0;
  for (int i = 0; i < 3; ++i) {
    const double e = scaled.max[i] - scaled.min[i];
    if (e > extent) extent = e;
  }

  if (extent < kLongCoordinateLimit) {
    offset.x = RoundHalfAwayFromZero(-((min.x + max.x) * 0.5));
    offset.y = RoundHalfAwayFromZero(-((min.y + max.y) * 0.5));
    offset.z = RoundHalfAwayFromZero(-((min.z + max.z) * 0.5));
    return true;
  }

  for (double coord : coords) {
    double c = std::fabs(coord);
    if (c > kLongCoordinateLimit) {
      double s = requestedScale;
      for (int i = 0; i < 100 && c > kLongCoordinateLimit; ++i) {
        c /= 1000.0;
        s /= 1000.0;
      }
      if (s < scale) scale = s;
    }
  }
  return true;
}

void *MMTransformAllocator::operator new(std::size_t size) {
  return g_mmtransforms_kor_memory_allocator.NewObjectThrow(size);
}

void MMTransformAllocator::operator delete(void *pointer) {
  g_mmtransforms_kor_memory_allocator.ReleaseObject(pointer);
}
