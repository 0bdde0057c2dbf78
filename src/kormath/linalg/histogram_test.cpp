#include <gtest/gtest.h>
#include <kormath/linalg/histogram.h>

#include <cmath>
#include <utility>

namespace {

constexpr double kLargest = 1.7976931348623157e+308;

TEST(Histogram, BinsAtTheirBoundaries) {
  MHistogram h, single;
  EXPECT_EQ(h.GetDensity(0), 0.0);  // no intervals yet
  h.SetIntervals(0, 10, 3);
  ASSERT_EQ(h.GetIntervalsCount(), 4u);

  // AddValue: up to and including bounds[0] -> 1, (0, 5] -> 2, (5, 10] -> 3,
  // above 10 -> 0. Values on a bound belong to the interval that ends there.
  const std::pair<double, std::size_t> cases[] = {{-1, 1},       {0, 1},  {std::nextafter(0.0, 1.0), 2},  {5, 2},
                                                  {5.000001, 3}, {10, 3}, {std::nextafter(10.0, 11.0), 0}};
  for (const auto &c : cases) {
    MHistogram one;
    one.SetIntervals(0, 10, 3);
    one.AddValue(c.first, 1.0);
    EXPECT_EQ(one.GetWeight(c.second), 1.0) << "value " << c.first;
    EXPECT_EQ(one.GetAverageValue(c.second), c.first);
  }

  // GetIntervalBounds numbers differently on purpose.
  const double expected[][3] = {{0, -kLargest, 0}, {1, 0, 5}, {3, 10, kLargest}, {7, -kLargest, kLargest}};
  for (const auto &e : expected) {
    double low, high;
    h.GetIntervalBounds(static_cast<std::size_t>(e[0]), low, high);
    EXPECT_TRUE(low == e[1] && high == e[2]) << "index " << e[0];
  }
  single.SetIntervals(3, 9, 1);
  EXPECT_EQ(single.bounds, std::vector<double>{3.0});
}

TEST(Histogram, WeightsAndStatistics) {
  MHistogram h;
  h.SetIntervals(0, 10, 3);
  h.AddValue(2, 0);
  h.AddValue(-7, -1);  // ignored, min and max included
  EXPECT_EQ(h.GetMinValue(), kLargest);
  EXPECT_EQ(h.GetDistribution(3), 0.0);
  h.AddValue(2, 1);
  h.AddValue(4, 3);
  EXPECT_EQ(h.GetAverageValue(2), 3.5);
  h.AddValue(8, 4);
  EXPECT_EQ(h.GetTotalWeight(), 8.0);
  EXPECT_EQ(h.GetDensity(2), 0.5);
  EXPECT_EQ(h.GetDistribution(2), 0.5);
  EXPECT_NEAR(h.GetDistribution(3), 1.0, 1e-15);
  EXPECT_TRUE(h.GetMinValue() == 2.0 && h.GetMaxValue() == 8.0);
  // Mean of interval averages 3.5 (weight 4) and 8 (weight 4): 5.75, spread 2.25.
  EXPECT_EQ(h.GetAverageValue(), 5.75);
  EXPECT_EQ(h.GetStandartDeviation(), 2.25);
  h.ClearValues();
  EXPECT_EQ(h.GetTotalWeight(), 0.0);
  EXPECT_EQ(h.GetMaxValue(), -kLargest);
  EXPECT_EQ(h.GetIntervalsCount(), 4u);
}

TEST(Histogram, FractionalDigits) {
  const std::pair<float, int> cases[] = {{0.25f, 2}, {1.0f, 0}, {0.125f, 3},    {1e-7f, 0},
                                         {-2.5f, 1}, {0.1f, 1}, {1.000001f, 6}, {123456.0f, 0}};
  for (const auto &c : cases) EXPECT_EQ(GetFractionalDigits(c.first), c.second) << c.first;
}

}  // namespace
