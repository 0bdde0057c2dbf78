#include <kormath/registration/closest_point_info.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include <kormath/transforms/matrix_transform.h>

namespace {

constexpr std::uint64_t kAllOnes = ~static_cast<std::uint64_t>(0);
constexpr double kMaxDouble = 1.7976931348623157e308;
using P = MMPoint3d<double>;

// Records tagged by input index with the given residues; the output points lie at 2D distance residues[i] from
// the input at the origin, offset in z by 100 times that.
template <class C>
C Records(std::vector<double> const &residues) {
  C out;
  for (std::size_t i = 0; i < residues.size(); ++i) {
    MClosestPointInfo r;
    r.SetInputIndex(i);
    r.SetResidue(residues[i]);
    r.SetInputPoint(P(0, 0, 0));
    r.SetOutputPoint(P(0.6 * residues[i], 0.8 * residues[i], 100.0 * residues[i]));
    out.push_back(r);
  }
  return out;
}

TEST(ClosestPointInfo, CopiesComparisonAndRearming) {
  MClosestPointInfo r, assigned, other;
  r.SetInputPoint(P(1, 2, 3));
  r.SetOutputPoint(P(4, 6, 3));
  r.UpdateResidues();
  EXPECT_EQ(r.GetResidue(), 5.0);
  // Copies point at their own storage.
  MClosestPointInfo copy(r);
  assigned = r;
  copy.outputPoint->x = assigned.inputPoint->x = 100.0;
  EXPECT_TRUE(r.GetOutputPoint() == P(4, 6, 3) && r.GetInputPoint() == P(1, 2, 3));
  EXPECT_TRUE(copy.GetInputPoint() == P(1, 2, 3) && assigned.GetOutputPoint() == P(4, 6, 3));
  // Comparisons look at the residue only.
  other.SetResidue(5.0);
  EXPECT_TRUE(other == r);
  other.SetResidue(4.0);
  EXPECT_TRUE(other < r && r > other);
  // Re-arming keeps the input; full defaults clear it.
  r.SetDefaultsOutput();
  EXPECT_TRUE(r.GetOutputIndex() == kAllOnes && r.GetResidue() == kMaxDouble && r.GetOutputPoint() == P(-1, -1, -1));
  EXPECT_EQ(r.GetInputPoint(), P(1, 2, 3));
  r.SetDefaults();
  EXPECT_TRUE(r.GetInputPoint() == P(-1, -1, -1) && r.GetInputIndex() == kAllOnes);
  // Assignment always goes through the virtual Copy, onto itself too.
  struct Counting : MClosestPointInfo {
    int copies = 0;
    void Copy(MClosestPointInfo const &o) override {
      ++copies;
      MClosestPointInfo::Copy(o);
    }
  } counting;
  static_cast<MClosestPointInfo &>(counting) = counting;
  EXPECT_EQ(counting.copies, 1);
}

TEST(ClosestPointInfoList, MediansOddEvenAndEmpty) {
  MClosestPointInfoList empty;
  double mx = 42.0, mn = 43.0;
  EXPECT_EQ(empty.GetResiduMedian(), -1.0);
  EXPECT_TRUE(empty.GetResiduMedian(mx, mn) == -1.0 && mx == 42.0 && mn == 43.0);
  EXPECT_TRUE(empty.GetResiduMedianXY() == 0.0 && empty.GetTotalError() == 0.0);

  // The 3D median is the upper middle value of an even count, the XY median the lower one.
  const std::tuple<std::vector<double>, double, double> cases[] = {
      {{2.5}, 2.5, 2.5}, {{4, 1, 3, 2}, 3, 2}, {{5, 1, 4, 2, 3}, 3, 3}, {{6, 1, 5, 2, 4, 3}, 4, 3}};
  MMTransformMatrix shift;
  shift.MakeTranslation(P(0, 0, 3));
  for (auto const &[residues, median, medianXY] : cases) {
    auto list = Records<MClosestPointInfoList>(residues);
    EXPECT_EQ(list.GetResiduMedian(mx, mn), median);
    EXPECT_EQ(mx, *std::max_element(residues.begin(), residues.end()));
    EXPECT_EQ(mn, *std::min_element(residues.begin(), residues.end()));
    EXPECT_TRUE(std::is_sorted(list.begin(), list.end()));  // left in ascending order
    // Totals: the stored residues as they are, or the 3D distances from the moved inputs (sums near 2000).
    EXPECT_EQ(list.GetTotalError(), std::accumulate(residues.begin(), residues.end(), 0.0));
    double expected = 0.0;
    for (double v : residues) expected += std::sqrt(v * v + (100.0 * v - 3.0) * (100.0 * v - 3.0));
    EXPECT_NEAR(list.GetTotalError(shift), expected, 1e-10);
    // The XY form ignores z and the residue (set to -v and left alone: ascending residues mean descending XY).
    for (auto &r : list) r.SetResidue(-r.GetResidue());
    // 0.6v and 0.8v are not exact in binary; their 2D length is within a few ulps of v <= 6.
    EXPECT_NEAR(list.GetResiduMedianXY(), medianXY, 4e-15);
    EXPECT_TRUE(std::is_sorted(list.begin(), list.end()));
    EXPECT_EQ(list.front().GetResidue(), -mx);
  }
}

TEST(ClosestPointInfoList, SortIsStable) {
  // The list keeps equal residues in input order in both directions (oracle: std::stable_sort); the vector need not.
  const std::vector<double> res = {2, 1, 2, 3, 1, 2, 3, 1, 0, 2, 1};
  for (bool up : {true, false}) {
    auto list = Records<MClosestPointInfoList>(res);
    auto vec = Records<MClosestPointInfoVector>(res);
    list.SortByDistance(up);
    vec.SortByDistance(up);
    std::vector<std::uint64_t> order(res.size()), got;
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint64_t a, std::uint64_t b) { return up ? res[a] < res[b] : res[a] > res[b]; });
    for (auto const &r : list) got.push_back(r.GetInputIndex());
    EXPECT_EQ(got, order);
    for (std::size_t i = 0; i < vec.size(); ++i) {
      EXPECT_EQ(vec[i].GetResidue(), res[order[i]]);
      EXPECT_EQ(vec[i].inputPoint, &vec[i].second);  // moved records point at their own storage
    }
  }
}

}  // namespace
