#include <kormath/registration/registration_cost.h>

#include <kormath/registration/registration_constants.h>

using KorMathRegistration::kLargestDouble;
using KorMathRegistration::kNoIndex;

MRegistrationCostInfo::MRegistrationCostInfo()
    : m_numberOfOutliers(kNoIndex), m_sampleSize(1), m_totalError(kLargestDouble) {}

void MRegistrationCostInfo::SetInfo(std::uint64_t const &outliers, std::uint64_t const &sampleSize, double totalError) {
  m_numberOfOutliers = outliers;
  m_sampleSize = sampleSize;
  m_totalError = totalError;
}

void MRegistrationCostInfo::SetInfoInliers(std::uint64_t const &inliers, std::uint64_t const &sampleSize,
                                           double totalError) {
  m_numberOfOutliers = sampleSize - inliers;
  m_sampleSize = sampleSize;
  m_totalError = totalError;
}

void MRegistrationCostInfo::SetNoCost() {
  m_numberOfOutliers = 0;
  m_sampleSize = 1;
  m_totalError = 0.0;
}

void MRegistrationCostInfo::SetInfiniteCost() {
  m_numberOfOutliers = kNoIndex;
  m_sampleSize = 1;
  m_totalError = kLargestDouble;
}

bool MRegistrationCostInfo::GetInfiniteCost() const {
  return m_numberOfOutliers == kNoIndex && m_totalError == kLargestDouble;
}

double MRegistrationCostInfo::GetOverlapPercentage() const {
  const std::uint64_t inliers = m_sampleSize - m_numberOfOutliers;
  return static_cast<double>(inliers) / static_cast<double>(m_sampleSize);
}

bool MRegistrationCostInfo::operator<(MRegistrationCostInfo const &other) const {
  if (m_numberOfOutliers != other.m_numberOfOutliers) {
    return m_numberOfOutliers < other.m_numberOfOutliers;
  }
  return m_totalError < other.m_totalError;
}

bool MRegistrationCostInfo::operator>(MRegistrationCostInfo const &other) const {
  if (m_numberOfOutliers != other.m_numberOfOutliers) {
    return m_numberOfOutliers > other.m_numberOfOutliers;
  }
  return m_totalError > other.m_totalError;
}

bool MRegistrationCostInfo::operator==(MRegistrationCostInfo const &other) const {
  return m_numberOfOutliers == other.m_numberOfOutliers && m_totalError == other.m_totalError;
}
