#include <kormath/registration/registered_points.h>

#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include <kormath/platform/internal_units.h>

namespace {

// Points whose sampled spacing reveals the position that was sampled: even position 2i sits at x = 10 i, odd
// position 2i + 1 at x = 10 i + (i + 1) / 1024, so sampling position 2i + 1 measures (i + 1) / 1024 (exact).
MRegistered3DPoints Tagged(std::size_t n) {
  MRegistered3DPoints set;
  for (std::size_t p = 0; p < n; ++p) {
    const double i = static_cast<double>(p / 2);
    set.GetPoints().emplace_back(p % 2 == 0 ? 10.0 * i : 10.0 * i + (i + 1.0) / 1024.0, 0.0, 0.0);
  }
  return set;
}

TEST(RegisteredPoints, ResolutionSamplingPositions) {
  for (std::size_t n = 0; n < 4; ++n) {  // too few points: no sample, extremes untouched
    double mx = 5.0, mn = 6.0;
    EXPECT_EQ(Tagged(n).EstimateSampleResolution(mx, mn), -1.0);
    EXPECT_TRUE(mx == 5.0 && mn == 6.0);
    EXPECT_EQ(Tagged(n).EstimateSampleResolutionXY(), 0.0);
  }
  // i of the last sampled odd position 2i + 1, of the 3D median (upper middle) and of the XY median (lower middle).
  const std::tuple<std::size_t, double, double, double> cases[] = {
      {4, 0, 0, 0},           // position 1 only, against positions 0 and 2
      {10, 3, 2, 1},          // 4 samples: upper and lower middle differ
      {100, 48, 24, 24},      // 49 samples, step 2: positions 1 .. 97
      {500, 99, 50, 49},      // 100 samples, step 2: only the front, positions 1 .. 199
      {1000, 396, 200, 196},  // step 2 * floor(4.99) = 8: positions 1, 9, .. 793
  };
  for (auto const &[n, lastI, medianI, medianXYI] : cases) {
    SCOPED_TRACE(n);
    const MRegistered3DPoints set = Tagged(n);
    double mx = 0.0, mn = 0.0;
    EXPECT_EQ(set.EstimateSampleResolution(mx, mn), (medianI + 1.0) / 1024.0);
    EXPECT_EQ(set.EstimateSampleResolution(), (medianI + 1.0) / 1024.0);
    EXPECT_EQ(mx, (lastI + 1.0) / 1024.0);
    EXPECT_EQ(mn, 1.0 / 1024.0);
    EXPECT_EQ(set.EstimateSampleResolutionXY(), (medianXYI + 1.0) / 1024.0);
  }
  // The XY form ignores z.
  MRegistered3DPoints column;
  for (int i = 0; i < 300; ++i) column.GetPoints().emplace_back(0.0, 0.0, i);
  EXPECT_EQ(column.EstimateSampleResolution(), 1.0);
  EXPECT_EQ(column.EstimateSampleResolutionXY(), 0.0);
}

TEST(RegisteredPoints, TransformNameAndUnits) {
  StdBase::MInternalUnits::mg_instance.SetUnitValue(0.25);
  MRegistered3DPoints set;
  StdBase::MInternalUnits::mg_instance.SetUnitValue(1.0);
  EXPECT_EQ(set.GetISU(), 0.25);  // copied at construction
  set.SetName(L"femur");
  set.SetName(set.GetName());
  EXPECT_EQ(set.GetName(), L"femur");

  set.GetPoints() = {MMPoint3d<double>(1, 2, 3), MMPoint3d<double>(-1, 0, 4)};
  MMTransformMatrix shift;
  shift.MakeTranslation(MMPoint3d<double>(10, 20, 30));
  set.SetTransform(shift);
  set.ApplyTransform();  // the points move, the transform becomes the identity
  EXPECT_TRUE(set.GetTransform().IsIdentity());
  EXPECT_EQ(set.GetPoints(),
            (std::vector<MMPoint3d<double>>{MMPoint3d<double>(11, 22, 33), MMPoint3d<double>(9, 20, 34)}));
}

}  // namespace
