#ifndef KORMATH_REGISTRATION_POINT_MAPPER_H
#define KORMATH_REGISTRATION_POINT_MAPPER_H

// Rigid fits of matched points and matched segments: the least-squares
// rotation and translation, with no scale, that carry the second element of
// each pair onto the first. One step of a closest-point registration; the
// loop lives in the host.

#include <list>
#include <utility>

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>
#include <kormath/transforms/ortho_transform.h>

// Pairs of caller-owned points: (first, second); the fit maps second onto first.
using MPointPairList = std::list<std::pair<MMPoint3d<double> *, MMPoint3d<double> *>>;
// Pairs of segments by value, each segment a pair of end points; the fit maps
// the second segment onto the first, end by end in the given order.
using MSegmentPairList = std::list<
    std::pair<std::pair<MMPoint3d<double>, MMPoint3d<double>>, std::pair<MMPoint3d<double>, MMPoint3d<double>>>>;

// The shared translation step.
class KORMATH_API MBasePointMapper {
 public:
  MBasePointMapper() = default;
  MBasePointMapper(MBasePointMapper const &) = default;
  MBasePointMapper &operator=(MBasePointMapper const &) = default;
  virtual ~MBasePointMapper();

  // Keeps the rotation R of `transform` and sets its translation to
  // points.first - R * points.second, so that second maps exactly onto first.
  void FindTranslation(MMOrthoTransform &transform, std::pair<MMPoint3d<double>, MMPoint3d<double>> const &points);
};

// Rigid fit of point pairs.
class KORMATH_API MMapper3DPoints : public MBasePointMapper {
 public:
  MMapper3DPoints() = default;
  MMapper3DPoints(MMapper3DPoints const &) = default;
  MMapper3DPoints &operator=(MMapper3DPoints const &) = default;
  ~MMapper3DPoints() override;

  // Centroids ca, cb; H = sum (a - ca)(b - cb)^T divided by m^2, where m is
  // the mean distance of all points from their centroids (this makes H free
  // of the unit of length, so uniform scaling of both sets leaves R
  // unchanged); R = MMatrix3x3::NearestOrthonormal(H), the polar factor;
  // t = ca - R cb. Writes R and t and returns true.
  // Returns false with `transform` untouched for fewer than 3 pairs and when
  // NearestOrthonormal fails (collinear or coincident points: rank 1 or 0).
  // Coplanar points take the rank-2 path, which yields a proper rotation;
  // with full rank no sign correction is made, so a best fit that is a
  // reflection goes to the orthonormal repair as an improper matrix. If all
  // points coincide in both sets m is 0 and H becomes NaN: this step is
  // deliberately unguarded (unlike MapSegments) and the result is whatever
  // NearestOrthonormal does with it.
  bool MapPoints(MMOrthoTransform &transform, MPointPairList const &pairs);
};

// Rigid fit of segment pairs through their end points.
class KORMATH_API MMapper3dSegments {
 public:
  // Flattens each element into two point pairs (first ends, then second
  // ends; the reversed order of a segment's ends is not tried) and fits as
  // MapPoints does, with these differences, kept on purpose:
  // - an empty list returns false, transform untouched; one pair of segments
  //   is accepted (it gives a rank-1 H, hence false, see below);
  // - H exactly zero: identity rotation, centroid translation, true;
  // - NearestOrthonormal fails: identity rotation, centroid translation,
  //   false.
  // In every case but the empty list the translation t = ca - R cb is
  // written, so a failed fit still leaves the pure centroid translation.
  bool MapSegments(MMOrthoTransform &transform, MSegmentPairList const &pairs);
};

#endif  // KORMATH_REGISTRATION_POINT_MAPPER_H
