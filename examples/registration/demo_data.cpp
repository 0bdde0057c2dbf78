#include "demo_data.h"

#include <cmath>

namespace reg {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr int kViewCount = 4;
constexpr int kSurfacePoints = 9000;      // shared by all views; each sees its visible part
constexpr double kNoiseSigma = 0.05;      // mm
constexpr double kVisibleCosine = -0.05;  // a little more than a hemisphere
constexpr double kMaxAngleDegrees = 4.0;  // displacement rotation
constexpr double kMaxShift = 2.5;         // mm per axis

// SplitMix64 with its own uniform and normal draws, so the data do not
// depend on the standard library's distributions.
class Random {
 public:
  explicit Random(std::uint64_t seed) : m_state(seed) {}
  std::uint64_t Next() {
    std::uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  double Uniform() { return static_cast<double>(Next() >> 11) * (1.0 / 9007199254740992.0); }  // [0, 1)
  double Uniform(double lo, double hi) { return lo + (hi - lo) * Uniform(); }
  double Normal() {  // Box-Muller
    const double u1 = 1.0 - Uniform();
    const double u2 = Uniform();
    return std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * kPi * u2);
  }

 private:
  std::uint64_t m_state;
};

MMPoint3d<double> RandomDirection(Random &rng) {
  for (;;) {
    MMPoint3d<double> u(rng.Normal(), rng.Normal(), rng.Normal());
    if (u.Normalise()) return u;
  }
}

// The surface in the direction u: an ellipsoid modulated by smooth bumps.
MMPoint3d<double> Surface(MMPoint3d<double> const &u) {
  const double s = 1.0 + 0.10 * std::sin(2.5 * u.x + 1.3 * u.y) + 0.08 * std::cos(3.0 * u.y * u.z + 0.7 * u.z) +
                   0.05 * std::sin(4.0 * u.z - 2.0 * u.x);
  return MMPoint3d<double>(40.0 * u.x * s, 28.0 * u.y * s, 22.0 * u.z * s);
}

MMTransformMatrix RandomDisplacement(Random &rng) {
  const MMPoint3d<double> axis = RandomDirection(rng);
  const double angle = rng.Uniform(0.5, 1.0) * kMaxAngleDegrees * kPi / 180.0;
  MMOrthoTransform ortho;
  ortho.MakeRotation(MMPoint3d<double>(0.0, 0.0, 0.0), axis, angle, true);
  ortho.SetTranslation(MMPoint3d<double>(rng.Uniform(-kMaxShift, kMaxShift), rng.Uniform(-kMaxShift, kMaxShift),
                                         rng.Uniform(-kMaxShift, kMaxShift)));
  MMTransformMatrix m;  // identity; Make adds to it
  m.Make(ortho);
  return m;
}

}  // namespace

std::vector<DemoView> MakeDemoViews(std::uint64_t seed) {
  Random rng(seed);
  std::vector<MMPoint3d<double>> directions;
  for (int i = 0; i < kSurfacePoints; ++i) directions.push_back(RandomDirection(rng));
  std::vector<DemoView> views;
  const double azimuth[kViewCount] = {0.0, 95.0, 185.0, 270.0};
  for (int k = 0; k < kViewCount; ++k) {
    DemoView view;
    view.name = "view" + std::to_string(k);
    const double a = azimuth[k] * kPi / 180.0;
    MMPoint3d<double> look(std::cos(a), std::sin(a), k % 2 == 0 ? 0.3 : -0.3);
    look.Normalise();
    view.displacement = RandomDisplacement(rng);
    for (MMPoint3d<double> const &u : directions) {
      if (u.Dot(look) <= kVisibleCosine) continue;
      MMPoint3d<double> p;
      view.displacement.Transform(p, Surface(u), false);
      p += MMPoint3d<double>(rng.Normal(), rng.Normal(), rng.Normal()) * kNoiseSigma;
      view.points.push_back(p);
    }
    views.push_back(view);
  }
  return views;
}

}  // namespace reg
