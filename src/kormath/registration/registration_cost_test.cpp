#include <kormath/registration/registration_cost.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr std::uint64_t kAllOnes = ~static_cast<std::uint64_t>(0);
constexpr double kMaxDouble = 1.7976931348623157e308;

MRegistrationCostInfo Cost(std::uint64_t outliers, std::uint64_t samples, double error) {
  MRegistrationCostInfo c;
  c.SetInfo(outliers, samples, error);
  return c;
}

TEST(RegistrationCost, NamedStates) {
  MRegistrationCostInfo fresh, none;
  EXPECT_TRUE(fresh.GetInfiniteCost());
  EXPECT_EQ(fresh.GetSampleSize(), 1u);
  EXPECT_EQ(fresh.GetOverlapPercentage(), 2.0);  // 1 - all-ones wraps to 2, kept on purpose
  none.SetNoCost();
  EXPECT_FALSE(none.GetInfiniteCost());
  EXPECT_EQ(none.GetOverlapPercentage(), 1.0);
  EXPECT_EQ(none.GetTotalError(), 0.0);
  none.SetInfiniteCost();
  EXPECT_TRUE(none == fresh && !(none < fresh) && !(none > fresh));

  // Infinite only with both fields at their sentinels.
  EXPECT_FALSE(Cost(kAllOnes, 1, 1e300).GetInfiniteCost());
  EXPECT_FALSE(Cost(kAllOnes - 1, 1, kMaxDouble).GetInfiniteCost());
  EXPECT_TRUE(Cost(kAllOnes, 7, kMaxDouble).GetInfiniteCost());

  none.SetInfoInliers(7, 10, 1.5);
  EXPECT_TRUE(none.GetNumberOfOutliers() == 3u && none.GetSampleSize() == 10u && none.GetTotalError() == 1.5);
  none.SetInfoInliers(11, 10, 1.5);  // unchecked wrap-around
  EXPECT_EQ(none.GetNumberOfOutliers(), kAllOnes);
  EXPECT_DOUBLE_EQ(Cost(3, 10, 0.0).GetOverlapPercentage(), 0.7);
  EXPECT_TRUE(std::isnan(Cost(0, 0, 0.0).GetOverlapPercentage()));
}

// Oracle: lexicographic on (outliers, total error) with raw counts; the sample size (1 to 5 here) takes no part.
// Agreeing with the pair order makes < a strict weak order with == as its equivalence. Small ranges make ties
// frequent.
TEST(RegistrationCost, OrderOnRandomValues) {
  std::mt19937_64 rng(20261121);
  std::vector<MRegistrationCostInfo> v(1);  // the infinite cost sorts after all others
  for (int i = 0; i < 40; ++i) {
    const std::uint64_t outl = rng() % 4 == 0 ? kAllOnes : rng() % 3;
    const double err = rng() % 5 == 0 ? kMaxDouble : static_cast<double>(rng() % 3);
    v.push_back(Cost(outl, 1 + rng() % 5, err));
  }
  auto key = [](MRegistrationCostInfo const &c) { return std::make_pair(c.GetNumberOfOutliers(), c.GetTotalError()); };
  for (auto const &a : v) {
    for (auto const &b : v) {
      EXPECT_EQ(a < b, key(a) < key(b));
      EXPECT_EQ(a == b, key(a) == key(b));
      EXPECT_EQ(a > b, key(b) < key(a));
    }
  }
}

}  // namespace
