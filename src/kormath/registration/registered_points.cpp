#include <kormath/registration/registered_points.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include <kormath/platform/internal_units.h>
#include <kormath/registration/closest_point_info.h>
#include <kormath/registration/point_locator.h>

namespace {

constexpr std::int64_t kMaximumSamples = 100;

// Queries the points at odd positions against a locator over the even ones,
// as described in the header, and gathers the records in `list`.
void SampleNeighbours(std::vector<MMPoint3d<double>> const &points, MClosestPointInfoList &list) {
  std::vector<MMPoint3d<double>> even;
  even.reserve(points.size() / 2 + 1);
  for (std::size_t i = 0; i < points.size(); i += 2) {
    even.push_back(points[i]);
  }
  MKDTreePointLocator locator;
  locator.BuildLocator(even);

  const std::int64_t n = static_cast<std::int64_t>(points.size());
  if (n <= 1) {
    return;
  }
  const std::int64_t limit = n / 2 - 1;
  const std::int64_t samples = std::min(kMaximumSamples, limit);
  if (samples <= 0) {
    return;
  }
  std::int64_t step = 2;
  if (samples * 4 < limit) {
    const float ratio = static_cast<float>(limit) / static_cast<float>(samples);
    step = 2 * static_cast<std::int64_t>(std::floor(ratio));
  }
  for (std::int64_t position = 1; static_cast<std::int64_t>(list.size()) < samples; position += step) {
    MClosestPointInfo info;
    info.SetInputPoint(points[static_cast<std::size_t>(position)]);
    locator.FindClosestPoint(info);
    list.push_back(info);
  }
}

}  // namespace

MRegistered3DPoints::MRegistered3DPoints()
    : m_points(), m_transform(), m_isu(StdBase::MInternalUnits::mg_instance.GetUnitValue()), m_name() {}

MRegistered3DPoints::~MRegistered3DPoints() = default;

void MRegistered3DPoints::SetTransform(MMTransformMatrix const &transform) { m_transform.Copy(transform); }

MMTransformMatrix const &MRegistered3DPoints::GetTransform() const { return m_transform; }

void MRegistered3DPoints::ApplyTransform() {
  for (MMPoint3d<double> &p : m_points) {
    m_transform.Transform(p, p, false);
  }
  m_transform.MakeIdentity();
}

double MRegistered3DPoints::GetISU() const { return m_isu; }

void MRegistered3DPoints::SetISU(double const &isu) { m_isu = isu; }

void MRegistered3DPoints::SetName(std::wstring const &name) {
  if (&name != &m_name) {
    m_name = name;
  }
}

std::wstring const &MRegistered3DPoints::GetName() const { return m_name; }

double MRegistered3DPoints::EstimateSampleResolution() const {
  double maximum = 0.0;
  double minimum = 0.0;
  return EstimateSampleResolution(maximum, minimum);
}

double MRegistered3DPoints::EstimateSampleResolution(double &maximum, double &minimum) const {
  MClosestPointInfoList list;
  SampleNeighbours(m_points, list);
  if (list.empty()) {
    return -1.0;
  }
  return list.GetResiduMedian(maximum, minimum);
}

double MRegistered3DPoints::EstimateSampleResolutionXY() const {
  MClosestPointInfoList list;
  SampleNeighbours(m_points, list);
  if (list.empty()) {
    return 0.0;
  }
  return list.GetResiduMedianXY();
}
