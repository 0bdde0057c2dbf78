#ifndef KORMATH_REGISTRATION_REGISTRATION_COST_H
#define KORMATH_REGISTRATION_REGISTRATION_COST_H

// The score of one pairwise alignment of two point sets.

#include <cstdint>

#include <kormath/export.h>

// MRegistrationCostInfo: number of outliers, sample size and total error of
// an alignment. A plain value, copied field by field, with no invariant
// between the fields (outliers may exceed the sample size).
//
// Order: lexicographic on (outliers, total error); the sample size takes no
// part. Fewer outliers always win, whatever the error, and raw counts are
// compared rather than rates, so 5 outliers of 10 beat 6 outliers of 1000.
// This is the order in which the registration tree picks its edges.
//
// The default value is the infinite cost: outliers all-ones, sample size 1,
// total error 1.7976931348623157e308. It sorts after every other value and
// compares equal to itself.
class KORMATH_API MRegistrationCostInfo {
 public:
  MRegistrationCostInfo();
  MRegistrationCostInfo(const MRegistrationCostInfo &) = default;
  MRegistrationCostInfo(MRegistrationCostInfo &&) = default;
  MRegistrationCostInfo &operator=(const MRegistrationCostInfo &) = default;
  MRegistrationCostInfo &operator=(MRegistrationCostInfo &&) = default;

  // Stores the three values as given; nothing is checked.
  void SetInfo(std::uint64_t const &outliers, std::uint64_t const &sampleSize, double totalError);
  // Outliers become sampleSize - inliers, in unsigned arithmetic: more inliers
  // than samples wrap around to a huge outlier count (not checked).
  void SetInfoInliers(std::uint64_t const &inliers, std::uint64_t const &sampleSize, double totalError);
  // Outliers 0, sample size 1, error 0.
  void SetNoCost();
  // Outliers all-ones, sample size 1, error 1.7976931348623157e308.
  void SetInfiniteCost();
  // True exactly when outliers are all-ones and the error is the largest
  // finite double.
  bool GetInfiniteCost() const;

  std::uint64_t GetNumberOfOutliers() const { return m_numberOfOutliers; }
  std::uint64_t GetSampleSize() const { return m_sampleSize; }
  double GetTotalError() const { return m_totalError; }

  // (sampleSize - outliers) / sampleSize: a fraction from 0 to 1, despite the
  // name. The difference is taken in unsigned 64-bit arithmetic and kept so on
  // purpose: the infinite cost gives 1 - all-ones = 2, hence 2.0, a value above
  // the legal range that callers treat as "no overlap" (or they test
  // GetInfiniteCost first). A sample size of 0 divides by zero (NaN for 0
  // outliers); it is not guarded.
  double GetOverlapPercentage() const;

  // Outliers first (unsigned), then total error; strict.
  bool operator<(MRegistrationCostInfo const &other) const;
  bool operator>(MRegistrationCostInfo const &other) const;
  // Equal outliers and equal total error; the sample size is not compared.
  bool operator==(MRegistrationCostInfo const &other) const;

 private:
  std::uint64_t m_numberOfOutliers;
  std::uint64_t m_sampleSize;
  double m_totalError;
};

#endif  // KORMATH_REGISTRATION_REGISTRATION_COST_H
