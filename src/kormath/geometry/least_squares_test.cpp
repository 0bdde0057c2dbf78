#include <kormath/geometry/least_squares.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using P3 = MMPoint3d<double>;

// Reaches the protected sums and flags, to feed sums directly and to read
// `calculated`.
class PlaneProbe : public MMLeastSquarePlane {
 public:
  explicit PlaneProbe(const std::vector<P3> &points = {}) {
    for (const P3 &p : points) AddPoint(p.x, p.y, p.z);
  }
  void SetSums(std::uint32_t n, double sx, double sy, double sz, double sxx, double syy, double szz, double sxy,
               double sxz, double syz) {
    count = n, Sx = sx, Sy = sy, Sz = sz, Sxx = sxx, Syy = syy, Szz = szz, Sxy = sxy, Sxz = sxz, Syz = syz;
    calculated = false;
  }
  bool IsCalculated() const { return calculated; }
};

P3 Normal(const MMPlaneEq<double> &p) { return P3(p.A(), p.B(), p.C()); }

// Points of the plane through `origin` spanned by unit u, v, with Gaussian
// noise of `sigma` along n = u x v.
std::vector<P3> NoisyPlane(std::mt19937 &rng, const P3 &origin, const P3 &u, const P3 &v, double sigma, int n) {
  std::uniform_real_distribution<double> spread(-10.0, 10.0);
  std::normal_distribution<double> noise(0.0, sigma);
  std::vector<P3> points;
  for (int i = 0; i < n; ++i) points.push_back(origin + u * spread(rng) + v * spread(rng) + u.Cross(v) * noise(rng));
  return points;
}

TEST(LeastSquarePlane, NoisyPlanesRecovered) {
  const unsigned seed = 2024u;
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> u(-1, 1);
  for (int trial = 0; trial < 50; ++trial) {
    P3 a(u(rng), u(rng), u(rng)), b(u(rng), u(rng), u(rng));
    a.Normalise();
    b = b - a * a.Dot(b);
    b.Normalise();
    const P3 origin(u(rng) * 100, u(rng) * 100, u(rng) * 100);
    const std::vector<P3> points = NoisyPlane(rng, origin, a, b, 0.01, 500);
    MMLeastSquarePlane fit;
    fit.Calculate(points);
    ASSERT_FALSE(fit.GetIsLine());
    const MMPlaneEq<double> plane = fit.GetPlane();
    // Tilt error of 500 samples with noise 0.01 over a 20 x 20 patch: about
    // 1e-4 rad; 2e-3 leaves a wide margin.
    EXPECT_NEAR(std::abs(Normal(plane).Dot(a.Cross(b))), 1.0, 2e-3) << "seed " << seed << " trial " << trial;
    EXPECT_NEAR(plane.Distance(origin), 0.0, 5e-3);
    EXPECT_NEAR(fit.GetStandardDeviation(), 0.01, 2e-3);  // the noise itself
    // Incremental use gives the same plane as the list.
    const MMPlaneEq<double> again = PlaneProbe(points).GetPlane();
    EXPECT_TRUE(Normal(again) == Normal(plane) && again.D() == plane.D());
  }
}

TEST(LeastSquarePlane, LargeCoordinatesAndGivenSums) {
  // Three points near 1e7, all with y = 9950000, through the sums.
  PlaneProbe big({P3(10004886, 9950000, 9968463), P3(10004886, 9950000, 9968464), P3(10004887, 9950000, 9968463)});
  EXPECT_GT(std::abs(big.GetPlane().B()), 0.9);
  EXPECT_EQ(big.GetAveragePoint().y, 9950000.0);
  // Five points with Sz = 0.1, Sxx = Syy = 4, Szz = 0.01 and all else 0.
  PlaneProbe probe;
  probe.SetSums(5, 0, 0, 0.1, 4, 4, 0.01, 0, 0, 0);
  EXPECT_GT(std::abs(probe.GetPlane().C()), 0.9);
  EXPECT_TRUE(probe.IsCalculated());
}

TEST(LeastSquarePlane, DegenerateInputs) {
  PlaneProbe two({P3(0, 0, 0), P3(1, 2, 3)});
  two.Calculate();
  EXPECT_TRUE(two.GetIsLine());
  two.GetPlane();
  EXPECT_FALSE(two.IsCalculated());  // every GetPlane repeats the work
  two.Init();
  EXPECT_TRUE(two.GetIsLine());  // Init leaves it as the last fit set it
  EXPECT_EQ(two.GetNumPoints(), 0u);

  // Ten collinear points: not a line for Calculate(); some plane holds them.
  std::vector<P3> line;
  for (int i = 0; i < 10; ++i) line.push_back(P3(1 + i, 2 + 2 * i, 3 - i));
  MMLeastSquarePlane collinear;
  collinear.Calculate(line);
  EXPECT_FALSE(collinear.GetIsLine());
  for (const P3 &p : line) EXPECT_NEAR(collinear.GetPlane().Distance(p), 0.0, 1e-9);

  // Stale deviation after AddPoint and Calculate().
  MMLeastSquarePlane stale;
  stale.Calculate(std::vector<P3>{P3(0, 0, 0.25), P3(2, 0, -0.25), P3(0, 1, -0.25), P3(2, 1, 0.25)});
  const double before = stale.GetStandardDeviation();
  EXPECT_NEAR(before, 0.25, 1e-12);  // a saddle: every corner 0.25 off the plane z = 0
  stale.AddPoint(5, 5, 5);
  stale.Calculate();
  EXPECT_EQ(stale.GetStandardDeviation(), before);
  // Empty list: not-a-number in the deviation.
  stale.Calculate(std::vector<P3>{});
  EXPECT_TRUE(std::isnan(stale.GetStandardDeviation()));
}

TEST(LeastSquarePlane, ThroughOrigin) {
  const std::tuple<const char *, std::vector<P3>, P3, double, bool> cases[] = {
      // The closed form vanishes on x = 0: the coordinate plane wins.
      {"on x = 0", {P3(0, 1, 2), P3(0, -3, 1), P3(0, 2, -5)}, P3(1, 0, 0), 0.0, false},
      {"on the x axis", {P3(1, 0, 0), P3(2, 0, 0), P3(3, 0, 0), P3(4, 0, 0)}, P3(0, 0, 0), 0.0, true},
      // Ill-conditioned patch off the origin: the closed form of a x + b y + c z = 1.
      {"small patch at z = 2", {P3(0.01, 0, 2), P3(0, 0.01, 2), P3(-0.01, -0.01, 2)}, P3(0, 0, 1), -2.0, false},
  };
  for (const auto &[name, points, normal, d, isLine] : cases) {
    PlaneProbe fit(points);
    fit.CalculateThroughOrigin();
    const MMPlaneEq<double> p = fit.GetPlane();
    EXPECT_NEAR((Normal(p) - normal).Length(), 0.0, 1e-12) << name;
    EXPECT_NEAR(p.D(), d, 1e-12) << name;
    EXPECT_EQ(fit.GetIsLine(), isLine) << name;
  }
  // Well-conditioned sums: the eigenvector branch, d = 0.
  const unsigned seed = 8u;
  std::mt19937 rng(seed);
  PlaneProbe origin(NoisyPlane(rng, P3(0, 0, 0), P3(0.6, 0.8, 0), P3(0, 0, 1), 0.05, 200));
  origin.CalculateThroughOrigin();
  const MMPlaneEq<double> p = origin.GetPlane();
  EXPECT_EQ(p.D(), 0.0);
  EXPECT_NEAR(std::abs(Normal(p).Dot(P3(0.8, -0.6, 0))), 1.0, 1e-3);  // noise 0.05 over 200 points
}

TEST(LeastSquarePlane, WeightZeroCountsOnlyInDeviations) {
  MMLeastSquarePlane fit;
  fit.CalculateWeighted(
      {{P3(0, 0, 0), 1.0}, {P3(1, 0, 0), 1.0}, {P3(0, 1, 0), 1.0}, {P3(1, 1, 0), 1.0}, {P3(0.5, 0.5, 4.0), 0.0}});
  const MMPlaneEq<double> p = fit.GetPlane();
  EXPECT_NEAR(std::abs(p.C()), 1.0, 1e-12);  // the outlier does not tilt or move the plane
  EXPECT_NEAR(p.D(), 0.0, 1e-12);
  EXPECT_NEAR(fit.GetMaxDeviation(), 4.0, 1e-12);
  EXPECT_NEAR(fit.GetStandardDeviation(), std::sqrt(16.0 / 5.0), 1e-12);  // divided by all 5 entries
}

TEST(LeastSquareCircle, KnownCirclesWithNoise) {
  const unsigned seed = 77u;
  std::mt19937 rng(seed);
  std::normal_distribution<double> noise(0.0, 0.001);
  std::uniform_real_distribution<double> angle(0.0, 6.283185307179586);
  // Centre, u and v spanning the circle's plane, radius. Normals along z, along
  // x, and (0.8, 0.6, 0) in the x-y plane.
  const std::tuple<P3, P3, P3, double> cases[] = {
      {P3(1, 2, 3), P3(1, 0, 0), P3(0, 1, 0), 5.0},
      {P3(-4, 0, 7), P3(0, 1, 0), P3(0, 0, 1), 2.5},
      {P3(3, 3, 3), P3(0, 0, 1), P3(0.6, -0.8, 0), 10.0},
  };
  for (const auto &[centre, u, v, radius] : cases) {
    std::vector<P3> points;
    for (int i = 0; i < 300; ++i) {
      const double a = angle(rng), r = radius + noise(rng);
      points.push_back(centre + u * (r * std::cos(a)) + v * (r * std::sin(a)) + u.Cross(v) * noise(rng));
    }
    MMLeastSquareCircle fit;
    fit.Calculate(points);
    ASSERT_TRUE(fit.calculated && !fit.isLine);
    // Noise 0.001 over 300 samples: centre and radius to a few 1e-4.
    EXPECT_NEAR(fit.radius, radius, 1e-3) << "seed " << seed;
    EXPECT_NEAR((fit.centre - centre).Length(), 0.0, 2e-3) << "seed " << seed;
    EXPECT_NEAR(std::abs(fit.normal.Dot(u.Cross(v))), 1.0, 1e-4);
    EXPECT_NEAR(fit.circleStandardDeviation, 0.001, 3e-4);
    EXPECT_NEAR(fit.planeStandardDeviation, 0.001, 3e-4);
  }
}

TEST(LeastSquareCircle, DegenerateInputsReportALine) {
  // Collinear, coincident, too few.
  for (const auto &points : std::vector<std::vector<P3>>{{P3(0, 0, 0), P3(1, 0, 0), P3(2, 0, 0), P3(3, 0, 0)},
                                                         {P3(1, 1, 1), P3(1, 1, 1), P3(1, 1, 1)},
                                                         {P3(0, 0, 0), P3(1, 1, 0)}}) {
    MMLeastSquareCircle fit;
    fit.Calculate(points);
    EXPECT_TRUE(fit.isLine && !fit.calculated) << points.size() << " points";
  }
}

}  // namespace
