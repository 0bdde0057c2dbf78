#include <kormath/registration/registration_cost.h>

#include <cmath>
#include <cstdint>
#include <random>
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
  MRegistrationCostInfo fresh;
  EXPECT_TRUE(fresh.GetInfiniteCost());
  EXPECT_EQ(fresh.GetNumberOfOutliers(), kAllOnes);
  EXPECT_EQ(fresh.GetSampleSize(), 1u);
  EXPECT_EQ(fresh.GetTotalError(), kMaxDouble);
  // 1 - all-ones wraps to 2: the overlap of the infinite cost is 2.0, kept as stated.
  EXPECT_EQ(fresh.GetOverlapPercentage(), 2.0);

  MRegistrationCostInfo none;
  none.SetNoCost();
  EXPECT_FALSE(none.GetInfiniteCost());
  EXPECT_EQ(none.GetOverlapPercentage(), 1.0);
  EXPECT_EQ(none.GetSampleSize(), 1u);
  EXPECT_EQ(none.GetTotalError(), 0.0);

  none.SetInfiniteCost();
  EXPECT_TRUE(none == fresh);
  EXPECT_FALSE(none < fresh);
  EXPECT_FALSE(none > fresh);

  // Infinite only with both fields at their sentinels.
  EXPECT_FALSE(Cost(kAllOnes, 1, 1e300).GetInfiniteCost());
  EXPECT_FALSE(Cost(kAllOnes - 1, 1, kMaxDouble).GetInfiniteCost());
  EXPECT_TRUE(Cost(kAllOnes, 7, kMaxDouble).GetInfiniteCost());

  MRegistrationCostInfo inl;
  inl.SetInfoInliers(7, 10, 1.5);
  EXPECT_EQ(inl.GetNumberOfOutliers(), 3u);
  EXPECT_EQ(inl.GetSampleSize(), 10u);
  EXPECT_EQ(inl.GetTotalError(), 1.5);
  inl.SetInfoInliers(11, 10, 1.5);  // unchecked wrap-around
  EXPECT_EQ(inl.GetNumberOfOutliers(), kAllOnes);

  EXPECT_DOUBLE_EQ(Cost(3, 10, 0.0).GetOverlapPercentage(), 0.7);
  EXPECT_TRUE(std::isnan(Cost(0, 0, 0.0).GetOverlapPercentage()));
}

TEST(RegistrationCost, OrderTable) {
  struct Case {
    MRegistrationCostInfo a, b;
    bool less, greater, equal;
  };
  const std::vector<Case> cases = {
      {Cost(2, 10, 100.0), Cost(3, 10, 1.0), true, false, false},      // outliers beat error
      {Cost(2, 10, 1.0), Cost(2, 10, 2.0), true, false, false},        // error breaks ties
      {Cost(5, 10, 1.0), Cost(6, 1000, 1.0), true, false, false},      // raw counts, not rates
      {Cost(4, 10, 1.5), Cost(4, 99, 1.5), false, false, true},        // sample size ignored
      {Cost(kAllOnes, 1, 1.0), MRegistrationCostInfo(), true, false, false},
      {MRegistrationCostInfo(), Cost(kAllOnes - 1, 1, kMaxDouble), false, true, false},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(cases[i].a < cases[i].b, cases[i].less);
    EXPECT_EQ(cases[i].a > cases[i].b, cases[i].greater);
    EXPECT_EQ(cases[i].a == cases[i].b, cases[i].equal);
    EXPECT_EQ(cases[i].b < cases[i].a, cases[i].greater);
  }
}

// operator< must be a strict weak order for the tree's choice of edges to be
// well defined: irreflexive, asymmetric, transitive, with transitive
// incomparability (which is ==). Small ranges make ties frequent.
TEST(RegistrationCost, StrictWeakOrderOnRandomValues) {
  const unsigned seed = 20261121;
  SCOPED_TRACE(seed);
  std::mt19937_64 rng(seed);
  std::vector<MRegistrationCostInfo> v;
  for (int i = 0; i < 40; ++i) {
    const std::uint64_t outl = rng() % 4 == 0 ? kAllOnes : rng() % 3;
    const double err = rng() % 5 == 0 ? kMaxDouble : static_cast<double>(rng() % 3);
    v.push_back(Cost(outl, 1 + rng() % 5, err));
  }
  for (auto const &a : v) {
    EXPECT_FALSE(a < a);
    for (auto const &b : v) {
      EXPECT_FALSE(a < b && b < a);
      EXPECT_EQ(a > b, b < a);
      const bool incomparable = !(a < b) && !(b < a);
      EXPECT_EQ(incomparable, a == b);
      for (auto const &c : v) {
        if (a < b && b < c) { EXPECT_TRUE(a < c); }
        if (a == b && b == c) { EXPECT_TRUE(a == c); }
      }
    }
  }
}

}  // namespace
