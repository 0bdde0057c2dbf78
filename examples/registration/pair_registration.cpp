#include "pair_registration.h"

#include <cmath>

namespace reg {

namespace {

constexpr std::size_t kMinimumPairs = 3;  // a rigid fit needs three pairs

struct Matches {
  MClosestPointInfoList inliers;
  IterationRecord record;
};

// One round of matching: every moving point against the fixed set within
// the search radius; the inliers are the matches whose residue is at most
// inlierFactor times the median residue.
Matches Match(MKDTreePointLocator const &locator, std::vector<MMPoint3d<double>> const &points, double radius,
              double inlierFactor) {
  Matches m;
  MClosestPointInfoList matched;
  for (std::size_t i = 0; i < points.size(); ++i) {
    MClosestPointInfo info;
    info.SetInputPoint(points[i]);
    info.SetInputIndex(i);
    info.SetResidue(radius);
    if (locator.FindClosestPointWithinRadius(info)) {
      matched.push_back(info);
    }
  }
  m.record.matched = matched.size();
  if (matched.empty()) {
    return m;
  }
  m.record.median = matched.GetResiduMedian();  // leaves the list in ascending order
  const double limit = inlierFactor * m.record.median;
  double sumSquares = 0.0;
  while (!matched.empty() && matched.front().GetResidue() <= limit) {
    sumSquares += matched.front().GetResidue() * matched.front().GetResidue();
    m.inliers.splice(m.inliers.end(), matched, matched.begin());
  }
  m.record.inliers = m.inliers.size();
  m.record.rms = m.inliers.empty() ? 0.0 : std::sqrt(sumSquares / static_cast<double>(m.inliers.size()));
  return m;
}

}  // namespace

PairResult RegisterPair(MKDTreePointLocator const &locator, double resolution, MRegistered3DPoints const &moving,
                        PairSettings const &settings) {
  PairResult result;
  MRegistered3DPoints current(moving);
  const double radius = settings.searchRadiusFactor * resolution;
  MMapper3DPoints mapper;
  Matches m = Match(locator, current.GetPoints(), radius, settings.inlierFactor);
  double previousRms = -1.0;
  for (int iteration = 1; iteration <= settings.maxIterations; ++iteration) {
    m.record.iteration = iteration;
    result.history.push_back(m.record);
    if (m.inliers.size() < kMinimumPairs) {
      break;
    }
    if (previousRms >= 0.0 && std::fabs(previousRms - m.record.rms) <= settings.minImprovement * previousRms) {
      result.converged = true;
      break;
    }
    previousRms = m.record.rms;

    MPointPairList pairs;
    for (MClosestPointInfo &info : m.inliers) {
      pairs.emplace_back(&info.GetOutputPoint(), &info.GetInputPoint());  // maps moving onto fixed
    }
    MMOrthoTransform fit;
    if (!mapper.MapPoints(fit, pairs)) {
      break;
    }
    MMTransformMatrix step;  // identity, so Make leaves exactly the fit
    step.Make(fit);
    current.SetTransform(step);
    current.ApplyTransform();
    result.movingToFixed.PreMultiply(step);
    m = Match(locator, current.GetPoints(), radius, settings.inlierFactor);
  }

  // The cost counts the moving points that found no fixed point within an
  // absolute distance, so that a pair that slid apart scores badly.
  MClosestPointInfoList close;
  for (std::size_t i = 0; i < current.GetPoints().size(); ++i) {
    MClosestPointInfo info;
    info.SetInputPoint(current.GetPoints()[i]);
    info.SetResidue(settings.outlierFactor * resolution);
    if (locator.FindClosestPointWithinRadius(info)) {
      close.push_back(info);
    }
  }
  const std::size_t sampleSize = current.GetPoints().size();
  if (close.size() >= kMinimumPairs &&
      static_cast<double>(close.size()) >= settings.minOverlap * static_cast<double>(sampleSize)) {
    result.cost.SetInfoInliers(close.size(), sampleSize, close.GetTotalError());
  }
  return result;
}

}  // namespace reg
