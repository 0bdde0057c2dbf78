#include <kormath/registration/registered_points.h>

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <kormath/platform/internal_units.h>

namespace {

// Points whose sampled spacing reveals the position that was sampled: even
// position 2i sits at x = 10 i, odd position 2i + 1 at x = 10 i + (i + 1) / 1024,
// so the nearest even point of odd position 2i + 1 lies at (i + 1) / 1024
// (exact in binary).
MRegistered3DPoints Tagged(std::size_t n) {
  MRegistered3DPoints set;
  for (std::size_t p = 0; p < n; ++p) {
    const double i = static_cast<double>(p / 2);
    set.GetPoints().emplace_back(p % 2 == 0 ? 10.0 * i : 10.0 * i + (i + 1.0) / 1024.0, 0.0, 0.0);
  }
  return set;
}

TEST(RegisteredPoints, ResolutionSamplingPositions) {
  // Too few points: no sample.
  for (std::size_t n = 0; n < 4; ++n) {
    MRegistered3DPoints set = Tagged(n);
    double mx = 5.0, mn = 6.0;
    EXPECT_EQ(set.EstimateSampleResolution(), -1.0);
    EXPECT_EQ(set.EstimateSampleResolution(mx, mn), -1.0);
    EXPECT_EQ(mx, 5.0);
    EXPECT_EQ(mn, 6.0);
    EXPECT_EQ(set.EstimateSampleResolutionXY(), 0.0);
  }
  struct Case {
    std::size_t n;
    double lastI;    // i of the last sampled odd position 2i + 1
    double medianI;  // i of the sample at count / 2
  };
  const std::vector<Case> cases = {
      {4, 0, 0},      // position 1 only, against positions 0 and 2
      {100, 48, 24},  // 49 samples, step 2: positions 1 .. 97
      {500, 99, 50},  // 100 samples, step 2: only the front, positions 1 .. 199
      {1000, 396, 200},  // step 2 * floor(4.99) = 8: positions 1, 9, .. 793
  };
  for (auto const &c : cases) {
    SCOPED_TRACE(c.n);
    MRegistered3DPoints set = Tagged(c.n);
    double mx = 0.0, mn = 0.0;
    EXPECT_EQ(set.EstimateSampleResolution(mx, mn), (c.medianI + 1.0) / 1024.0);
    EXPECT_EQ(mx, (c.lastI + 1.0) / 1024.0);
    EXPECT_EQ(mn, 1.0 / 1024.0);
    EXPECT_LE(mn, set.EstimateSampleResolution());
    EXPECT_GE(mx, set.EstimateSampleResolution());
  }
  // The XY form takes the lower middle of a descending order: for 100 points
  // (49 samples, i = 0 .. 48) position 24 of the descending order is i = 24.
  EXPECT_EQ(Tagged(100).EstimateSampleResolutionXY(), 25.0 / 1024.0);
  // 4 samples (n = 10): the XY median is the lower middle (i = 1), the 3D one
  // the upper middle (i = 2).
  EXPECT_EQ(Tagged(10).EstimateSampleResolutionXY(), 2.0 / 1024.0);
  EXPECT_EQ(Tagged(10).EstimateSampleResolution(), 3.0 / 1024.0);

  // A regular line of spacing 1: resolution 1; z is ignored by the XY form.
  MRegistered3DPoints line;
  for (int i = 0; i < 300; ++i) line.GetPoints().emplace_back(0.0, i, 0.0);
  EXPECT_EQ(line.EstimateSampleResolution(), 1.0);
  MRegistered3DPoints column;
  for (int i = 0; i < 300; ++i) column.GetPoints().emplace_back(0.0, 0.0, i);
  EXPECT_EQ(column.EstimateSampleResolutionXY(), 0.0);
}

TEST(RegisteredPoints, TransformNameAndUnits) {
  StdBase::MInternalUnits::mg_instance.SetUnitValue(0.25);
  MRegistered3DPoints set;
  StdBase::MInternalUnits::mg_instance.SetUnitValue(1.0);
  EXPECT_EQ(set.GetISU(), 0.25);  // copied at construction
  set.SetISU(2.0);
  EXPECT_EQ(set.GetISU(), 2.0);
  EXPECT_TRUE(set.GetTransform().IsIdentity());

  set.SetName(L"femur");
  set.SetName(set.GetName());
  EXPECT_EQ(set.GetName(), L"femur");

  set.GetPoints() = {MMPoint3d<double>(1, 2, 3), MMPoint3d<double>(-1, 0, 4)};
  MMTransformMatrix shift;
  shift.MakeTranslation(MMPoint3d<double>(10, 20, 30));
  set.SetTransform(shift);
  EXPECT_TRUE(set.GetTransform().IsTranslation());
  EXPECT_FALSE(set.GetTransform().IsIdentity());
  set.ApplyTransform();
  EXPECT_TRUE(set.GetTransform().IsIdentity());
  EXPECT_EQ(set.GetPoints()[0], MMPoint3d<double>(11, 22, 33));
  EXPECT_EQ(set.GetPoints()[1], MMPoint3d<double>(9, 20, 34));
}

}  // namespace
