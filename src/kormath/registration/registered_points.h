#ifndef KORMATH_REGISTRATION_REGISTERED_POINTS_H
#define KORMATH_REGISTRATION_REGISTERED_POINTS_H

// One scanned point set in a registration: its points, the transform that
// currently places them, a unit value and a name.

#include <string>
#include <vector>

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>
#include <kormath/transforms/matrix_transform.h>

// MRegistered3DPoints. The host fills the points directly (GetPoints); no
// operation of this class does. The ISU is copied once from
// StdBase::MInternalUnits::mg_instance at construction and only carried.
class KORMATH_API MRegistered3DPoints {
 public:
  // No points, identity transform, the current internal unit value, no name.
  MRegistered3DPoints();
  MRegistered3DPoints(MRegistered3DPoints const &) = default;
  MRegistered3DPoints &operator=(MRegistered3DPoints const &) = default;
  ~MRegistered3DPoints();

  // Copies the whole matrix state (forward, inverse, flags, class) as it
  // stands; nothing is re-evaluated.
  void SetTransform(MMTransformMatrix const &transform);
  MMTransformMatrix const &GetTransform() const;
  // Maps every point in place through the forward transform (isVector
  // false), then resets the transform to the identity: the points move, the
  // placement of the set as a whole is unchanged.
  void ApplyTransform();

  double GetISU() const;
  void SetISU(double const &isu);
  void SetName(std::wstring const &name);
  std::wstring const &GetName() const;

  std::vector<MMPoint3d<double>> &GetPoints() { return m_points; }
  std::vector<MMPoint3d<double>> const &GetPoints() const { return m_points; }

  // Typical point spacing: the median nearest-neighbour distance from up to
  // 100 points at odd positions of the vector to the points at even
  // positions (so that a point never meets itself). With n points,
  // limit = n / 2 - 1 and samples = min(100, limit); the positions are
  // 1, 1 + step, ... with step 2, or 2 * floorf(limit / samples) (in single
  // precision) when samples * 4 < limit. The sampling is deterministic and,
  // for large sets, covers only the front of the vector (about four fifths
  // for 1000 points, the first 200 positions for 500); kept on purpose.
  // Returns -1.0 when no sample can be taken (fewer than 4 points); a host
  // must test for it.
  double EstimateSampleResolution() const;
  // As above; also the largest and smallest sampled spacing, which stay
  // untouched when -1.0 is returned.
  double EstimateSampleResolution(double &maximum, double &minimum) const;
  // The same samples and 3D neighbour search, measured over x and y only;
  // the median of a descending order (the lower middle value for an even
  // count). 0.0 when no sample can be taken.
  double EstimateSampleResolutionXY() const;

 private:
  std::vector<MMPoint3d<double>> m_points;
  MMTransformMatrix m_transform;
  double m_isu;
  std::wstring m_name;
};

#endif  // KORMATH_REGISTRATION_REGISTERED_POINTS_H
