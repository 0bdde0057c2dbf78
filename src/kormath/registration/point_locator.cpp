#include <kormath/registration/point_locator.h>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>

#include <kormath/registration/registration_constants.h>

using KorMathRegistration::kLargestDouble;
using KorMathRegistration::kNoIndex;

namespace {

constexpr std::uint64_t kDefaultLeafCapacity = 10;

void FreeNode(MKDTreeNode *node) {
  if (node == nullptr) {
    return;
  }
  FreeNode(node->left);
  FreeNode(node->right);
  delete node;
}

inline double Coordinate(MKDTreePointRecord const &r, int axis) { return axis == 0 ? r.x : (axis == 1 ? r.y : r.z); }

// Recursive build over a stretch of record copies, which it reorders. The
// result equals that of sorting each split stretch by its axis: the same
// split values and the same points on each side; a leaf lists its points in
// the order of its parent's split axis. Only the order among equal
// coordinates may differ, which no rule depends on.
class TreeBuilder {
 public:
  explicit TreeBuilder(std::uint64_t leafCapacity) : m_capacity(leafCapacity) {}

  MKDTreeNode *Build(MKDTreePointRecord *w, std::size_t m, int parentAxis) const {
    MKDTreeNode *node = new MKDTreeNode();
    if (m <= m_capacity) {
      MakeLeaf(node, w, m, parentAxis);
      return node;
    }
    double lo[3] = {kLargestDouble, kLargestDouble, kLargestDouble};
    double hi[3] = {-kLargestDouble, -kLargestDouble, -kLargestDouble};
    for (std::size_t i = 0; i < m; ++i) {
      const double c[3] = {w[i].x, w[i].y, w[i].z};
      for (int a = 0; a < 3; ++a) {
        if (c[a] < lo[a]) lo[a] = c[a];
        if (c[a] > hi[a]) hi[a] = c[a];
      }
    }
    int axis = 0;
    double extent = 0.0;
    for (int a = 0; a < 3; ++a) {
      if (hi[a] - lo[a] > extent) {
        extent = hi[a] - lo[a];
        axis = a;
      }
    }
    if (extent == 0.0) {
      // All points of the stretch coincide: one leaf, beyond the capacity.
      MakeLeaf(node, w, m, -1);
      return node;
    }

    const std::size_t k = SplitPosition(w, m, axis, node->splitValue);
    node->splitAxis = static_cast<std::int16_t>(axis);
    node->left = Build(w, k, axis);
    node->right = Build(w + k, m - k, axis);
    return node;
  }

 private:
  static void MakeLeaf(MKDTreeNode *node, MKDTreePointRecord *w, std::size_t m, int parentAxis) {
    if (parentAxis >= 0) {
      // Insertion sort by the parent's axis (at most the leaf capacity).
      for (std::size_t i = 1; i < m; ++i) {
        const MKDTreePointRecord r = w[i];
        const double c = Coordinate(r, parentAxis);
        std::size_t j = i;
        while (j > 0 && Coordinate(w[j - 1], parentAxis) > c) {
          w[j] = w[j - 1];
          --j;
        }
        w[j] = r;
      }
    }
    node->indices.resize(m);
    for (std::size_t i = 0; i < m; ++i) {
      node->indices[i] = w[i].index;
    }
  }

  // Places the stretch so that the first k records are those left of the
  // split, computes k and the split value. With c the coordinates in sorted
  // order: med = ceil(m / 2); if c[med - 1] != c[med], k = med. Otherwise
  // v = c[med] lies in a run of equal values, and k is the lower edge of that
  // run when there is anything below it, else its upper edge. The lower edge
  // wins even when the upper one is nearer (the unsigned distance to the upper
  // edge wraps around); kept on purpose for a fixed tree shape.
  static std::size_t SplitPosition(MKDTreePointRecord *w, std::size_t m, int axis, double &split) {
    const std::size_t med = static_cast<std::size_t>(std::ceil(static_cast<double>(m) * 0.5));
    // One comparator per axis, so that each comparison is a plain load.
    switch (axis) {
      case 0:
        std::nth_element(w, w + med, w + m, [](auto const &a, auto const &b) { return a.x < b.x; });
        break;
      case 1:
        std::nth_element(w, w + med, w + m, [](auto const &a, auto const &b) { return a.y < b.y; });
        break;
      default:
        std::nth_element(w, w + med, w + m, [](auto const &a, auto const &b) { return a.z < b.z; });
        break;
    }
    const double cmed = Coordinate(w[med], axis);
    double below = -kLargestDouble;  // c[med - 1]: the largest left of med
    for (std::size_t i = 0; i < med; ++i) {
      below = std::max(below, Coordinate(w[i], axis));
    }
    if (below != cmed) {
      split = (below + cmed) * 0.5;
      return med;
    }
    const double v = cmed;
    // Records left of med that lie strictly below the run.
    MKDTreePointRecord *lowEnd =
        std::partition(w, w + med, [axis, v](MKDTreePointRecord const &r) { return Coordinate(r, axis) != v; });
    const std::size_t lowCount = static_cast<std::size_t>(lowEnd - w);
    if (lowCount > 0) {
      double top = -kLargestDouble;
      for (std::size_t i = 0; i < lowCount; ++i) {
        top = std::max(top, Coordinate(w[i], axis));
      }
      split = (top + v) * 0.5;
      return lowCount;
    }
    // The run reaches the front: take its upper edge. A positive extent
    // guarantees a larger value behind it.
    MKDTreePointRecord *runEnd =
        std::partition(w + med + 1, w + m, [axis, v](MKDTreePointRecord const &r) { return Coordinate(r, axis) == v; });
    const std::size_t upper = static_cast<std::size_t>(runEnd - w);
    double next = kLargestDouble;
    for (std::size_t i = upper; i < m; ++i) {
      next = std::min(next, Coordinate(w[i], axis));
    }
    split = (v + next) * 0.5;
    return upper;
  }

  std::uint64_t m_capacity;
};

// Query state; lives on the caller's stack.
struct SearchState {
  double q[3];
  double lo[3];
  double hi[3];
  double best2;
  std::uint64_t best;  // input index of the best point, or all-ones
  double bx, by, bz;   // its coordinates
};

// Overlap of the far child's box with the best ball, treated as its
// bounding cube: the box overlaps unless, on some axis, low > q + d or
// q - d > high. Per axis, with no accumulation over the axes, so a far child
// is visited a little more often than a true ball test would; the result is
// still exact.
inline bool BoxOverlaps(SearchState const &s, double d) {
  for (int a = 0; a < 3; ++a) {
    if (s.lo[a] > s.q[a] + d || s.q[a] - d > s.hi[a]) {
      return false;
    }
  }
  return true;
}

// True when the best ball lies inside the box (closed bounds): the search may end.
inline bool BallInBox(SearchState const &s) {
  if (s.best == kNoIndex) {
    return false;
  }
  const double d = std::sqrt(s.best2);
  for (int a = 0; a < 3; ++a) {
    if (!(s.lo[a] <= s.q[a] && s.q[a] <= s.hi[a])) {
      return false;
    }
    if (!(d <= s.q[a] - s.lo[a] && d <= s.hi[a] - s.q[a])) {
      return false;
    }
  }
  return true;
}

}  // namespace

// A compact copy of the tree for the query: the nodes in depth-first order
// (left child directly behind its parent) and the points of all leaves
// contiguous, each leaf in its stored order. It mirrors the node tree
// exactly, so a query visits the same leaves in the same order and gives the
// same answer; it only spares the scattered reads of the records array.
struct MKDTreePointLocator::SearchIndex {
  struct Node {
    double split;
    std::int32_t axis;    // 0, 1, 2; -1 in a leaf
    std::uint32_t count;  // points of a leaf
    std::uint64_t link;   // interior: position of the right child; leaf: first point
  };
  struct Point {
    double x, y, z;
    std::uint64_t index;
  };
  std::vector<Node> nodes;
  std::vector<Point> points;

  void Add(MKDTreeNode const *node, MKDTreePointRecord const *records) {
    const std::size_t self = nodes.size();
    nodes.push_back(Node{node->splitValue, -1, 0, 0});
    if (node->left != nullptr && node->right != nullptr) {
      nodes[self].axis = node->splitAxis;
      Add(node->left, records);
      nodes[self].link = nodes.size();
      Add(node->right, records);
    } else {
      nodes[self].link = points.size();
      nodes[self].count = static_cast<std::uint32_t>(node->indices.size());
      for (std::uint64_t i : node->indices) {
        MKDTreePointRecord const &r = records[i];
        points.push_back(Point{r.x, r.y, r.z, r.index});
      }
    }
  }

  bool Search(std::size_t at, SearchState &s) const {
    Node const &node = nodes[at];
    if (node.axis >= 0) {
      const int a = node.axis;
      const double split = node.split;
      const std::size_t left = at + 1;
      const std::size_t right = static_cast<std::size_t>(node.link);
      if (split > s.q[a]) {
        // Near side left, far side right.
        const double saved = s.hi[a];
        s.hi[a] = split;
        const bool done = Search(left, s);
        s.hi[a] = saved;
        if (done) {
          return true;
        }
        const double savedLow = s.lo[a];
        s.lo[a] = split;
        if (BoxOverlaps(s, std::sqrt(s.best2))) {
          Search(right, s);
        }
        s.lo[a] = savedLow;
      } else {
        const double saved = s.lo[a];
        s.lo[a] = split;
        const bool done = Search(right, s);
        s.lo[a] = saved;
        if (done) {
          return true;
        }
        const double savedHigh = s.hi[a];
        s.hi[a] = split;
        if (BoxOverlaps(s, std::sqrt(s.best2))) {
          Search(left, s);
        }
        s.hi[a] = savedHigh;
      }
    } else {
      // First point reached wins among equal distances: strict comparison.
      Point const *p = points.data() + node.link;
      Point const *const end = p + node.count;
      const double qx = s.q[0];
      const double qy = s.q[1];
      const double qz = s.q[2];
      for (; p != end; ++p) {
        const double dx = p->x - qx;
        const double dy = p->y - qy;
        const double dz = p->z - qz;
        const double d2 = dx * dx + dy * dy + dz * dz;
        if (s.best2 > d2) {
          s.best2 = d2;
          s.best = p->index;
          s.bx = p->x;
          s.by = p->y;
          s.bz = p->z;
        }
      }
    }
    return BallInBox(s);
  }
};

MPointLocator::~MPointLocator() = default;

MKDTreePointLocator::MKDTreePointLocator()
    : m_leafCapacity(kDefaultLeafCapacity), m_root(nullptr), m_records(nullptr), m_recordCount(0), m_search(nullptr) {}

MKDTreePointLocator::~MKDTreePointLocator() { _FreeTree(); }

void MKDTreePointLocator::_FreeTree() {
  FreeNode(m_root);
  m_root = nullptr;
  delete[] m_records;
  m_records = nullptr;
  delete m_search;
  m_search = nullptr;
}

void MKDTreePointLocator::SetDefaults() {
  _FreeTree();
  m_leafCapacity = kDefaultLeafCapacity;
  m_recordCount = 0;
}

void MKDTreePointLocator::BuildLocator(std::vector<MMPoint3d<double>> const &points) {
  // The record count survives on purpose; see the rebuild restriction.
  _FreeTree();
  const std::size_t n = points.size();
  if (n != m_recordCount) {
    m_records = new MKDTreePointRecord[n]();
    m_recordCount = n;
  }
  assert((m_records != nullptr || n == 0) && "BuildLocator with an unchanged count needs SetDefaults first");
  for (std::size_t i = 0; i < n; ++i) {
    m_records[i].index = i;
    m_records[i].x = points[i].x;
    m_records[i].y = points[i].y;
    m_records[i].z = points[i].z;
  }
  std::vector<MKDTreePointRecord> work(m_records, m_records + n);
  m_root = TreeBuilder(m_leafCapacity).Build(work.data(), n, -1);
  work.clear();
  work.shrink_to_fit();
  m_search = new SearchIndex();
  m_search->points.reserve(n);
  m_search->Add(m_root, m_records);
}

bool MKDTreePointLocator::FindClosestPoint(MClosestPointInfo &info) const {
  info.residue = kLargestDouble;
  return FindClosestPointWithinRadius(info);
}

bool MKDTreePointLocator::FindClosestPointWithinRadius(MClosestPointInfo &info) const {
  const double r = info.residue;
  info.outputIndex = kNoIndex;
  MMPoint3d<double> const &in = *info.inputPoint;
  SearchState s;
  s.q[0] = in.x;
  s.q[1] = in.y;
  s.q[2] = in.z;
  if (r == kLargestDouble) {
    s.best2 = kLargestDouble;
    for (int a = 0; a < 3; ++a) {
      s.lo[a] = -kLargestDouble;
      s.hi[a] = kLargestDouble;
    }
  } else {
    s.best2 = r * r;
    for (int a = 0; a < 3; ++a) {
      s.lo[a] = s.q[a] - r;
      s.hi[a] = s.q[a] + r;
    }
  }
  s.best = kNoIndex;
  s.bx = s.by = s.bz = 0.0;
  if (m_search != nullptr && !m_search->nodes.empty()) {
    m_search->Search(0, s);
  }
  if (s.best == kNoIndex) {
    return false;
  }
  info.outputIndex = s.best;
  info.outputPoint->x = s.bx;
  info.outputPoint->y = s.by;
  info.outputPoint->z = s.bz;
  info.residue = std::sqrt(s.best2);
  return true;
}
