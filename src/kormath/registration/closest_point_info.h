#ifndef KORMATH_REGISTRATION_CLOSEST_POINT_INFO_H
#define KORMATH_REGISTRATION_CLOSEST_POINT_INFO_H

// Closest-point records: the exchange record of a point locator query, which
// then serves as one correspondence of a registration, and two collections of
// such records with the statistics a registration loop asks of its matches.

#include <cstdint>
#include <list>
#include <utility>
#include <vector>

#include <kormath/export.h>
#include <kormath/registration/registration_constants.h>
#include <kormath/transforms/core_types.h>

class MMTransformMatrix;

// MClosestPointInfo: query point in; closest point, its index and the
// distance out. `first` stores the output point and `second` the input
// point; all code reaches them through the two point pointers, which every
// constructor sets to the record's own members (a copy points at its own
// storage). The residue carries the search radius in and the distance out.
//
// Defaults: input index and output index all-ones (none), input and output
// point (-1, -1, -1), residue 1.7976931348623157e308. An unanswered query is
// recognised by an output index of all-ones.
//
// The comparison operators compare the residue only: two records with equal
// residues and different points are ==.
class KORMATH_API MClosestPointInfo : public std::pair<MMPoint3d<double>, MMPoint3d<double>> {
 public:
  MClosestPointInfo();
  MClosestPointInfo(MClosestPointInfo const &other);
  virtual ~MClosestPointInfo();

  // CopyInput, then CopyOutput, both virtually. The residue is copied twice.
  virtual void Copy(MClosestPointInfo const &other);
  // Input index, input point coordinates and residue.
  virtual void CopyInput(MClosestPointInfo const &other);
  // Output point coordinates, output index and residue.
  virtual void CopyOutput(MClosestPointInfo const &other);
  virtual bool operator<(MClosestPointInfo const &other) const;
  virtual bool operator==(MClosestPointInfo const &other) const;
  virtual bool operator>(MClosestPointInfo const &other) const;
  // Calls Copy virtually.
  virtual MClosestPointInfo &operator=(MClosestPointInfo const &other);
  // SetDefaultsInput, then SetDefaultsOutput, both virtually.
  virtual void SetDefaults();
  // Output index all-ones, residue 1.7976931348623157e308, output point
  // (-1, -1, -1). Re-arms the record for the next query; the input stays.
  virtual void SetDefaultsOutput();
  // Input index all-ones, input point (-1, -1, -1).
  virtual void SetDefaultsInput();
  // Residue = 3D Euclidean distance between input and output point.
  virtual void UpdateResidues();

  // Accessors. The points are read and written through the point pointers.
  double GetResidue() const { return residue; }
  void SetResidue(double value) { residue = value; }
  std::uint64_t GetInputIndex() const { return inputIndex; }
  void SetInputIndex(std::uint64_t index) { inputIndex = index; }
  std::uint64_t GetOutputIndex() const { return outputIndex; }
  void SetOutputIndex(std::uint64_t index) { outputIndex = index; }
  MMPoint3d<double> &GetInputPoint() { return *inputPoint; }
  MMPoint3d<double> const &GetInputPoint() const { return *inputPoint; }
  void SetInputPoint(MMPoint3d<double> const &point) { *inputPoint = point; }
  MMPoint3d<double> &GetOutputPoint() { return *outputPoint; }
  MMPoint3d<double> const &GetOutputPoint() const { return *outputPoint; }
  void SetOutputPoint(MMPoint3d<double> const &point) { *outputPoint = point; }

  // Fields, in this order after the pair.
  double residue;
  std::uint64_t inputIndex;
  MMPoint3d<double> *inputPoint;
  std::uint64_t outputIndex;
  MMPoint3d<double> *outputPoint;
};

// An ordered list of records with the registration statistics.
class KORMATH_API MClosestPointInfoList : public std::list<MClosestPointInfo> {
 public:
  // Stable merge sort: split at n / 2, sort both halves, merge by moving a node
  // of the right half in front of the current left node when the comparator
  // puts it first. Ascending uses operator<, descending operator>.
  void SortByDistance(bool const &ascending);

  // Sorts ascending (a side effect) and returns the residue at position n / 2:
  // for an even count the upper of the two middle values, not an average.
  // -1.0 for an empty list.
  double GetResiduMedian();
  // As above; also writes the last residue to maximum and the first to
  // minimum. For an empty list returns -1.0 and leaves both untouched.
  double GetResiduMedian(double &maximum, double &minimum);
  // Measures each record by the distance between input and output point over
  // x and y only, sorts by it DESCENDING (a side effect) and returns the value
  // at position n / 2. For an even count this is the lower of the two middle
  // values, the mirror of GetResiduMedian; the asymmetry is kept on purpose.
  // The residue is neither read nor changed. 0.0 for an empty list.
  double GetResiduMedianXY();
  // Sum of the stored residues in list order (not a mean); 0.0 when empty.
  double GetTotalError() const;
  // Sum over the records of the 3D distance from transform(input point) to
  // the output point (not a mean); stored residues are ignored and not
  // updated. 0.0 when empty.
  double GetTotalError(MMTransformMatrix const &transform) const;
};

// A vector of records.
class KORMATH_API MClosestPointInfoVector : public std::vector<MClosestPointInfo> {
 public:
  // std::sort (not stable); ascending by operator<, descending by operator>.
  void SortByDistance(bool const &ascending);
};

#endif  // KORMATH_REGISTRATION_CLOSEST_POINT_INFO_H
