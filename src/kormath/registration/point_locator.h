#ifndef KORMATH_REGISTRATION_POINT_LOCATOR_H
#define KORMATH_REGISTRATION_POINT_LOCATOR_H

// Point locators: the closest point of a fixed set to a query point,
// optionally only within a radius. All exchange runs through a
// MClosestPointInfo record.

#include <cstdint>
#include <vector>

#include <kormath/export.h>
#include <kormath/registration/closest_point_info.h>
#include <kormath/transforms/core_types.h>

// Abstract locator.
class KORMATH_API MPointLocator {
 public:
  virtual ~MPointLocator();
  // Closest point with no radius limit.
  virtual bool FindClosestPoint(MClosestPointInfo &info) const = 0;
  // Closest point strictly within the radius held in the residue of info.
  virtual bool FindClosestPointWithinRadius(MClosestPointInfo &info) const = 0;
};

// One input point as the locator keeps it: its position in the vector given
// to BuildLocator and a copy of its coordinates.
struct MKDTreePointRecord {
  std::uint64_t index;
  double x;
  double y;
  double z;
};

// A node of the kd-tree. A node is interior exactly when left or right is
// non-null; a leaf holds record indices (split value 0, split axis 999).
struct MKDTreeNode {
  double splitValue = 0.0;
  std::int16_t splitAxis = 999;
  std::vector<std::uint64_t> indices;
  MKDTreeNode *left = nullptr;   // coordinates below the split
  MKDTreeNode *right = nullptr;  // the others
};

// MKDTreePointLocator: a static bucket kd-tree over MMPoint3d<double>.
//
// Build. A stretch of at most 10 points (the leaf capacity) becomes a leaf.
// Otherwise the axis of largest extent is split (ties go to the lowest axis);
// if the extent is exactly 0 (all points coincide) the stretch becomes one
// leaf, however large. The split position starts at ceil(m / 2) and, if that
// falls inside a run of equal coordinates, moves to the LOWER edge of the run
// even when the upper edge is nearer (to the upper edge only if the run
// reaches the front). The preference is kept on purpose: it fixes a
// reproducible tree shape. The split value is the mean of the two coordinates
// on either side of the position, so the plane separates two different
// values. Points below the split go left, the others right.
//
// Query. FindClosestPointWithinRadius reads the input point and takes the
// residue of `info` as the radius r. A point counts only if its distance is
// strictly below r: a point at exactly r, and any point for r = 0, is
// rejected. On success it writes the output index, the output point and the
// distance (into the residue) and returns true. On failure it returns false,
// sets the output index to all-ones and leaves the output point and the
// residue (still r) untouched. r = 1.7976931348623157e308 means unbounded.
// Among equal distances the point reached first wins; a query exactly on a
// splitting plane searches the right side first. FindClosestPoint sets the
// residue to 1.7976931348623157e308 and makes the virtual call to
// FindClosestPointWithinRadius, so a subclass that overrides the radius
// search changes both queries.
//
// Lifecycle and preconditions:
// - A query before BuildLocator is undefined (answered false here).
// - Coordinates must not be NaN.
// - REBUILD RESTRICTION: BuildLocator releases the records but reallocates
//   them only when the point count differs from the previous one. A second
//   BuildLocator with the same number of points as the previous one is
//   therefore not allowed: call SetDefaults() first. This is kept on purpose.
// - Queries are const and use only the caller's stack and record, so any
//   number of threads may query a built locator, each with its own record.
//   BuildLocator and SetDefaults need exclusive access.
class KORMATH_API MKDTreePointLocator : public MPointLocator {
 public:
  MKDTreePointLocator();
  ~MKDTreePointLocator() override;
  MKDTreePointLocator(const MKDTreePointLocator &) = delete;
  MKDTreePointLocator &operator=(const MKDTreePointLocator &) = delete;

  bool FindClosestPoint(MClosestPointInfo &info) const override;
  bool FindClosestPointWithinRadius(MClosestPointInfo &info) const override;

  // Frees tree and records; leaf capacity back to 10, record count 0.
  void SetDefaults();
  // Replaces the contents with a tree over `points` (see the rebuild
  // restriction above). The points are copied; the vector may die afterwards.
  void BuildLocator(std::vector<MMPoint3d<double>> const &points);

  // Read access for inspection.
  MKDTreeNode const *GetRoot() const { return m_root; }
  std::uint64_t GetLeafCapacity() const { return m_leafCapacity; }
  std::uint64_t GetRecordCount() const { return m_recordCount; }
  MKDTreePointRecord const *GetRecords() const { return m_records; }

 private:
  void _FreeTree();

  std::uint64_t m_leafCapacity;
  MKDTreeNode *m_root;
  MKDTreePointRecord *m_records;
  std::uint64_t m_recordCount;
  // A compact depth-first copy of the tree that the query runs on.
  struct SearchIndex;
  SearchIndex *m_search;
};

#endif  // KORMATH_REGISTRATION_POINT_LOCATOR_H
