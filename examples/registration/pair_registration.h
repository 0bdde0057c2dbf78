#ifndef KORMATH_EXAMPLES_REGISTRATION_PAIR_REGISTRATION_H
#define KORMATH_EXAMPLES_REGISTRATION_PAIR_REGISTRATION_H

// Closest-point iterations that align one point set onto another, driven
// the way a planning application drives the kit.

#include <cstddef>
#include <vector>

#include <kormath/kormath.h>

namespace reg {

// Settings of the pairwise alignment, all relative to the sample resolution
// of the fixed set.
struct PairSettings {
  double searchRadiusFactor = 10.0;  // matches farther than this many spacings are ignored
  double inlierFactor = 2.5;         // inliers: residue at most this times the median residue
  double outlierFactor = 2.0;        // cost: a moving point is an outlier without a match this close
  double minOverlap = 0.15;          // fewer cost inliers than this share of the moving set: no edge
  double minImprovement = 1e-6;      // stop when the RMS changes by less than this fraction
  int maxIterations = 100;
};

struct IterationRecord {
  int iteration = 0;
  std::size_t matched = 0;
  std::size_t inliers = 0;
  double median = 0.0;  // median residue of the matches
  double rms = 0.0;     // RMS residue of the inliers
};

struct PairResult {
  std::size_t fixed = 0;
  std::size_t moving = 0;
  std::vector<IterationRecord> history;  // before each update, then the final state
  MMTransformMatrix movingToFixed;       // places the moving set in the frame of the fixed set
  MRegistrationCostInfo cost;            // outliers by outlierFactor; infinite when the overlap is too small
  bool converged = false;
};

// Aligns `moving` onto the set behind `locator` (resolution `resolution`).
PairResult RegisterPair(MKDTreePointLocator const &locator, double resolution, MRegistered3DPoints const &moving,
                        PairSettings const &settings);

}  // namespace reg

#endif  // KORMATH_EXAMPLES_REGISTRATION_PAIR_REGISTRATION_H
