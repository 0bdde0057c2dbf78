#include <kormath/registration/closest_point_info.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include <kormath/transforms/matrix_transform.h>

using KorMathRegistration::kLargestDouble;
using KorMathRegistration::kNoIndex;

MClosestPointInfo::MClosestPointInfo()
    : residue(kLargestDouble), inputIndex(kNoIndex), inputPoint(&second), outputIndex(kNoIndex), outputPoint(&first) {
  MClosestPointInfo::SetDefaultsInput();
  SetDefaultsOutput();
}

MClosestPointInfo::MClosestPointInfo(MClosestPointInfo const &other)
    : std::pair<MMPoint3d<double>, MMPoint3d<double>>(),
      residue(kLargestDouble),
      inputIndex(kNoIndex),
      inputPoint(&second),
      outputIndex(kNoIndex),
      outputPoint(&first) {
  MClosestPointInfo::CopyInput(other);
  CopyOutput(other);
}

MClosestPointInfo::~MClosestPointInfo() = default;

void MClosestPointInfo::Copy(MClosestPointInfo const &other) {
  CopyInput(other);
  CopyOutput(other);
}

void MClosestPointInfo::CopyInput(MClosestPointInfo const &other) {
  inputIndex = other.inputIndex;
  *inputPoint = *other.inputPoint;
  residue = other.residue;
}

void MClosestPointInfo::CopyOutput(MClosestPointInfo const &other) {
  *outputPoint = *other.outputPoint;
  outputIndex = other.outputIndex;
  residue = other.residue;
}

bool MClosestPointInfo::operator<(MClosestPointInfo const &other) const { return residue < other.residue; }

bool MClosestPointInfo::operator==(MClosestPointInfo const &other) const { return residue == other.residue; }

bool MClosestPointInfo::operator>(MClosestPointInfo const &other) const { return residue > other.residue; }

// Always the virtual Copy, self-assignment included (copying a record onto
// itself is harmless, and a derived Copy sees every assignment).
MClosestPointInfo &MClosestPointInfo::operator=(MClosestPointInfo const &other) {
  Copy(other);
  return *this;
}

void MClosestPointInfo::SetDefaults() {
  SetDefaultsInput();
  SetDefaultsOutput();
}

void MClosestPointInfo::SetDefaultsOutput() {
  outputIndex = kNoIndex;
  residue = kLargestDouble;
  *outputPoint = MMPoint3d<double>(-1.0, -1.0, -1.0);
}

void MClosestPointInfo::SetDefaultsInput() {
  inputIndex = kNoIndex;
  *inputPoint = MMPoint3d<double>(-1.0, -1.0, -1.0);
}

void MClosestPointInfo::UpdateResidues() {
  const double dx = inputPoint->x - outputPoint->x;
  const double dy = inputPoint->y - outputPoint->y;
  const double dz = inputPoint->z - outputPoint->z;
  residue = std::sqrt(dx * dx + dy * dy + dz * dz);
}

namespace {

using InfoList = std::list<MClosestPointInfo>;

// Top-down stable merge sort on list nodes (no element is copied).
template <class Compare>
void MergeSortList(InfoList &list, Compare const &comes_first) {
  const std::size_t n = list.size();
  if (n < 2) {
    return;
  }
  InfoList right;
  right.splice(right.begin(), list, std::next(list.begin(), static_cast<std::ptrdiff_t>(n / 2)), list.end());
  MergeSortList(list, comes_first);
  MergeSortList(right, comes_first);
  auto left_it = list.begin();
  while (!right.empty()) {
    if (left_it == list.end()) {
      list.splice(list.end(), right);
      break;
    }
    if (comes_first(right.front(), *left_it)) {
      list.splice(left_it, right, right.begin());
    } else {
      ++left_it;
    }
  }
}

double SquaredDistanceXY(MClosestPointInfo const &info) {
  const double dx = info.GetInputPoint().x - info.GetOutputPoint().x;
  const double dy = info.GetInputPoint().y - info.GetOutputPoint().y;
  return dx * dx + dy * dy;
}

}  // namespace

void MClosestPointInfoList::SortByDistance(bool const &ascending) {
  if (ascending) {
    MergeSortList(*this, [](MClosestPointInfo const &a, MClosestPointInfo const &b) { return a < b; });
  } else {
    MergeSortList(*this, [](MClosestPointInfo const &a, MClosestPointInfo const &b) { return a > b; });
  }
}

double MClosestPointInfoList::GetResiduMedian() {
  if (empty()) {
    return -1.0;
  }
  SortByDistance(true);
  return std::next(begin(), static_cast<std::ptrdiff_t>(size() / 2))->residue;
}

double MClosestPointInfoList::GetResiduMedian(double &maximum, double &minimum) {
  if (empty()) {
    return -1.0;
  }
  SortByDistance(true);
  maximum = back().residue;
  minimum = front().residue;
  return std::next(begin(), static_cast<std::ptrdiff_t>(size() / 2))->residue;
}

double MClosestPointInfoList::GetResiduMedianXY() {
  if (empty()) {
    return 0.0;
  }
  MergeSortList(*this, [](MClosestPointInfo const &a, MClosestPointInfo const &b) {
    return SquaredDistanceXY(a) > SquaredDistanceXY(b);
  });
  return std::sqrt(SquaredDistanceXY(*std::next(begin(), static_cast<std::ptrdiff_t>(size() / 2))));
}

double MClosestPointInfoList::GetTotalError() const {
  double sum = 0.0;
  for (MClosestPointInfo const &info : *this) {
    sum += info.residue;
  }
  return sum;
}

double MClosestPointInfoList::GetTotalError(MMTransformMatrix const &transform) const {
  double sum = 0.0;
  for (MClosestPointInfo const &info : *this) {
    MMPoint3d<double> mapped;
    transform.Transform(mapped, info.GetInputPoint(), false);
    sum += mapped.Distance(info.GetOutputPoint());
  }
  return sum;
}

void MClosestPointInfoVector::SortByDistance(bool const &ascending) {
  if (ascending) {
    std::sort(begin(), end(), [](MClosestPointInfo const &a, MClosestPointInfo const &b) { return a < b; });
  } else {
    std::sort(begin(), end(), [](MClosestPointInfo const &a, MClosestPointInfo const &b) { return a > b; });
  }
}
