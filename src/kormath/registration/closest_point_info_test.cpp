#include <kormath/registration/closest_point_info.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <vector>

#include <gtest/gtest.h>

#include <kormath/transforms/matrix_transform.h>

namespace {

constexpr std::uint64_t kAllOnes = ~static_cast<std::uint64_t>(0);
constexpr double kMaxDouble = 1.7976931348623157e308;

MClosestPointInfo Record(double residue, std::uint64_t tag) {
  MClosestPointInfo r;
  r.SetResidue(residue);
  r.SetInputIndex(tag);
  return r;
}

MClosestPointInfoList ListOf(std::vector<double> const &residues) {
  MClosestPointInfoList list;
  for (std::size_t i = 0; i < residues.size(); ++i) list.push_back(Record(residues[i], i));
  return list;
}

TEST(ClosestPointInfo, DefaultsAndCopies) {
  MClosestPointInfo r;
  const MMPoint3d<double> minus(-1.0, -1.0, -1.0);
  EXPECT_EQ(r.GetInputPoint(), minus);
  EXPECT_EQ(r.GetOutputPoint(), minus);
  EXPECT_EQ(r.GetInputIndex(), kAllOnes);
  EXPECT_EQ(r.GetOutputIndex(), kAllOnes);
  EXPECT_EQ(r.GetResidue(), kMaxDouble);
  EXPECT_EQ(r.inputPoint, &r.second);
  EXPECT_EQ(r.outputPoint, &r.first);

  r.SetInputPoint(MMPoint3d<double>(1, 2, 3));
  r.SetOutputPoint(MMPoint3d<double>(4, 6, 3));
  r.SetOutputIndex(7);
  r.UpdateResidues();
  EXPECT_EQ(r.GetResidue(), 5.0);

  MClosestPointInfo copy(r);
  EXPECT_EQ(copy.outputPoint, &copy.first);  // its own storage
  copy.outputPoint->x = 100.0;
  EXPECT_EQ(r.GetOutputPoint().x, 4.0);
  EXPECT_EQ(copy.GetOutputIndex(), 7u);
  EXPECT_EQ(copy.GetResidue(), 5.0);

  MClosestPointInfo assigned;
  assigned = r;
  EXPECT_EQ(assigned.inputPoint, &assigned.second);
  EXPECT_EQ(assigned.GetInputPoint(), r.GetInputPoint());

  // Comparisons look at the residue only.
  MClosestPointInfo other;
  other.SetResidue(5.0);
  EXPECT_TRUE(other == r);
  other.SetResidue(4.0);
  EXPECT_TRUE(other < r);
  EXPECT_TRUE(r > other);

  // Re-arming keeps the input.
  r.SetDefaultsOutput();
  EXPECT_EQ(r.GetOutputIndex(), kAllOnes);
  EXPECT_EQ(r.GetResidue(), kMaxDouble);
  EXPECT_EQ(r.GetInputPoint(), MMPoint3d<double>(1, 2, 3));
  r.SetDefaults();
  EXPECT_EQ(r.GetInputPoint(), minus);
}

TEST(ClosestPointInfoList, MediansOddEvenAndEmpty) {
  MClosestPointInfoList empty;
  double mx = 42.0, mn = 43.0;
  EXPECT_EQ(empty.GetResiduMedian(), -1.0);
  EXPECT_EQ(empty.GetResiduMedian(mx, mn), -1.0);
  EXPECT_EQ(mx, 42.0);
  EXPECT_EQ(mn, 43.0);
  EXPECT_EQ(empty.GetResiduMedianXY(), 0.0);
  EXPECT_EQ(empty.GetTotalError(), 0.0);

  struct Case {
    std::vector<double> residues;
    double median;
  };
  const std::vector<Case> cases = {{{2.5}, 2.5}, {{4, 1, 3, 2}, 3}, {{5, 1, 4, 2, 3}, 3}, {{6, 1, 5, 2, 4, 3}, 4}};
  for (auto const &c : cases) {
    MClosestPointInfoList list = ListOf(c.residues);
    EXPECT_EQ(list.GetResiduMedian(mx, mn), c.median);  // the upper middle for even counts
    EXPECT_EQ(mx, *std::max_element(c.residues.begin(), c.residues.end()));
    EXPECT_EQ(mn, *std::min_element(c.residues.begin(), c.residues.end()));
    double previous = -1.0;
    for (auto const &r : list) {  // left in ascending order
      EXPECT_LE(previous, r.GetResidue());
      previous = r.GetResidue();
    }
  }
}

TEST(ClosestPointInfoList, MedianXYIsLowerMiddleOfDescendingOrder) {
  // 2D distances 1..4 (z offsets must be ignored); residues are left alone.
  MClosestPointInfoList list;
  const double d[] = {3.0, 1.0, 4.0, 2.0};
  for (double v : d) {
    MClosestPointInfo r;
    r.SetInputPoint(MMPoint3d<double>(0, 0, 0));
    r.SetOutputPoint(MMPoint3d<double>(0.6 * v, 0.8 * v, 100.0 * v));
    r.SetResidue(-v);
    list.push_back(r);
  }
  // 0.6v and 0.8v are not exact in binary; the square root of their squares
  // is within a few ulps of v.
  EXPECT_NEAR(list.GetResiduMedianXY(), 2.0, 1e-15);
  double previous = 1e9;
  for (auto const &r : list) {
    const double xy = std::hypot(r.GetOutputPoint().x, r.GetOutputPoint().y);
    EXPECT_GE(previous, xy);
    EXPECT_NEAR(r.GetResidue(), -xy, 1e-15);  // residue untouched, still -v
    previous = xy;
  }
  EXPECT_EQ(list.front().GetResidue(), -4.0);
}

TEST(ClosestPointInfoList, SortIsStable) {
  // Equal residues keep their input order in both directions.
  const std::vector<double> residues = {2, 1, 2, 3, 1, 2, 3, 1, 0, 2, 1};
  for (bool ascending : {true, false}) {
    MClosestPointInfoList list = ListOf(residues);
    list.SortByDistance(ascending);
    ASSERT_EQ(list.size(), residues.size());
    for (auto it = list.begin(), next = std::next(it); next != list.end(); ++it, ++next) {
      if (ascending) {
        EXPECT_LE(it->GetResidue(), next->GetResidue());
      } else {
        EXPECT_GE(it->GetResidue(), next->GetResidue());
      }
      if (it->GetResidue() == next->GetResidue()) { EXPECT_LT(it->GetInputIndex(), next->GetInputIndex()); }
    }
  }

  MClosestPointInfoVector vec;
  for (std::size_t i = 0; i < residues.size(); ++i) vec.push_back(Record(residues[i], i));
  vec.SortByDistance(false);
  for (std::size_t i = 1; i < vec.size(); ++i) EXPECT_GE(vec[i - 1].GetResidue(), vec[i].GetResidue());
  for (auto const &r : vec) EXPECT_EQ(r.inputPoint, &r.second);
}

TEST(ClosestPointInfoList, TotalErrors) {
  MClosestPointInfoList list;
  for (int i = 0; i < 5; ++i) {
    MClosestPointInfo r;
    r.SetInputPoint(MMPoint3d<double>(i, 0, 0));
    r.SetOutputPoint(MMPoint3d<double>(i, 2.0 * i, 0));
    r.SetResidue(1000.0);  // stale
    list.push_back(r);
  }
  EXPECT_EQ(list.GetTotalError(), 5000.0);
  MMTransformMatrix identity;
  EXPECT_EQ(list.GetTotalError(identity), 0.0 + 2 + 4 + 6 + 8);  // stale residues ignored
  for (auto &r : list) r.UpdateResidues();
  EXPECT_EQ(list.GetTotalError(), list.GetTotalError(identity));
  MMTransformMatrix shift;
  shift.MakeTranslation(MMPoint3d<double>(0, 0, 3));  // each distance becomes sqrt(4 i^2 + 9)
  double expected = 0.0;
  for (int i = 0; i < 5; ++i) expected += std::sqrt(4.0 * i * i + 9.0);
  EXPECT_NEAR(list.GetTotalError(shift), expected, 1e-13);  // a few ulps of a sum near 25
}

}  // namespace
