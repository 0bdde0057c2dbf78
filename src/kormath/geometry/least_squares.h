#ifndef KORMATH_GEOMETRY_LEAST_SQUARES_H
#define KORMATH_GEOMETRY_LEAST_SQUARES_H

// Least-squares fits of a plane and of a circle in space. Both keep the
// deviations of the points from the fit.

#include <kormath/export.h>
#include <kormath/geometry/plane.h>
#include <kormath/transforms/core_types.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

// Plane fit from running sums of the coordinates and their products, or in
// one call from a list, with or without weights. AddPoint stores no point.
//
// Degenerate input: fewer than 3 points sets GetIsLine and leaves the plane
// without meaning (and `calculated` false, so every GetPlane repeats the
// work). Many collinear points through Calculate() do not set GetIsLine; the
// result is some plane containing the line. With no point at all Calculate()
// divides by 0 and leaves not-a-number. Not safe to share between threads:
// GetPlane mutates.
class KORMATH_API MMLeastSquarePlane {
 public:
  // Zero plane, flags, count and sums.
  MMLeastSquarePlane();
  MMLeastSquarePlane(const MMLeastSquarePlane &) = default;
  MMLeastSquarePlane(MMLeastSquarePlane &&) = default;
  MMLeastSquarePlane &operator=(const MMLeastSquarePlane &) = default;
  MMLeastSquarePlane &operator=(MMLeastSquarePlane &&) = default;

  // Clears `calculated`, `deviationValid`, sums and count; the plane and
  // GetIsLine stay as the last fit set them.
  void Init();
  // Adds to the sums and clears `calculated` and `deviationValid`.
  void AddPoint(double x, double y, double z);
  // Plane from the centred moments of the sums: the eigenvector of the
  // smallest absolute eigenvalue (ties keep the lower index) through the
  // centroid. Does not touch the deviations.
  void Calculate();
  // Plane from the uncentred sums. When their 3x3 determinant exceeds
  // 0.0003452669770922512 the eigenvector of the smallest eigenvalue with
  // d = 0; otherwise the closed-form solution of a x + b y + c z = 1 by
  // cofactors, normalised; when that vanishes exactly, a coordinate plane
  // through the origin chosen by exact zero sums of squares, or the all-zero
  // plane with GetIsLine set.
  void CalculateThroughOrigin();
  // Replaces the sums by those of `points`, fits and fills the deviations.
  // An empty list leaves not-a-number in the standard deviation.
  void Calculate(const std::vector<MMPoint3d<double>> &points);
  // Weighted fit: the offsets from the weighted mean, multiplied by their
  // weight (so that it enters the moments squared), through
  // CalculateThroughOrigin, then moved through the weighted mean. The
  // deviations are over the unweighted input points, divided by the number
  // of entries (a weight of 0 still counts there). The sums then describe the
  // shifted, weighted points, so GetAveragePoint is no longer the input mean.
  void CalculateWeighted(const std::vector<std::pair<MMPoint3d<double>, double>> &weighted);

  // Runs Calculate() first when the plane does not match the sums.
  MMPlaneEq<double> GetPlane();
  // Only meaningful after a fit.
  bool GetIsLine() const { return isLine; }
  // The fields as they stand: only the list forms fill them, so after
  // AddPoint and Calculate() they are stale.
  double GetStandardDeviation() const { return standardDeviation; }
  double GetMaxDeviation() const { return maxDeviation; }
  unsigned long GetNumPoints() const { return count; }
  // Sums divided by count; the origin for count 0.
  MMPoint3d<double> GetAveragePoint() const;

 protected:
  // Zeroes both deviations and clears deviationValid.
  void _InitDeviation();
  // Adds the squared distance of `point` from the plane and raises the
  // maximum deviation to its absolute distance if larger.
  void _UpdateDeviation(const MMPoint3d<double> &point);
  // Root mean of the squared distances over `number` points.
  void _UpdateDeviation(std::size_t number);

  MMPlaneEq<double> plane;
  bool calculated;
  bool deviationValid;
  bool isLine;
  std::uint32_t count;  // 32 bits, as the host stores it
  double Sx, Sy, Sz;
  double Sxx, Syy, Szz;
  double Sxy, Sxz, Syz;
  double standardDeviation;
  double maxDeviation;

 private:
  void _ClearSums();
  // Eigenvector of the smallest absolute eigenvalue of a symmetric matrix,
  // normalised unless its length is exactly 0.
  static MMPoint3d<double> _SmallestEigenVector(double xx, double yy, double zz, double xy, double xz, double yz);
};

// Circle fit in space: the plane fit first, then the points turned into
// that plane and an algebraic 2D circle fit there. The members are read
// directly. Failure: `calculated` false; collinear or too few points set
// `isLine` (only where the 2.220446049250313e-16 threshold on the 2D
// determinant catches them).
//
// The turn is MakeRotation((0,0,0), z x u, acos(u.z)) with u the unit plane
// normal: it turns the z axis onto the normal, not the normal onto z, so a
// circle whose normal is tilted out of the axes is measured in a turned
// frame that is not its plane. This is the behaviour of the fit and is kept
// on purpose; circles whose normal lies along an axis or in the x-y plane are
// measured in their own plane.
class KORMATH_API MMLeastSquareCircle {
 public:
  MMLeastSquareCircle();

  void Calculate(const std::vector<MMPoint3d<double>> &points);

  MMPoint3d<double> centre;
  MMPoint3d<double> normal;
  double radius;
  bool calculated;
  bool isLine;
  std::uint32_t count;
  double Sx, Sy, Sxx, Syy, Sxy, Sxxx, Sxxy, Sxyy, Syyy;
  double planeStandardDeviation;
  double circleStandardDeviation;
  double planeMaxDeviation;
  double circleMaxDeviation;

 protected:
  // Clears the flags, the count and the 2D sums.
  void _Init();
};

#endif  // KORMATH_GEOMETRY_LEAST_SQUARES_H
