#ifndef KORMATH_REGISTRATION_REGISTRATION_TREE_H
#define KORMATH_REGISTRATION_REGISTRATION_TREE_H

// The registration tree: one consistent placement of many point sets from
// the costs and relative transforms of their pairwise alignments.

#include <cstdint>
#include <list>
#include <vector>

#include <kormath/export.h>
#include <kormath/registration/registration_constants.h>
#include <kormath/registration/registration_cost.h>
#include <kormath/transforms/matrix_transform.h>

// MDataArray2D<T>: a dense square table, row by row; element (i, j) at
// position stride * i + j. Copied by value.
template <class T>
class MDataArray2D : public std::vector<T> {
 public:
  MDataArray2D() : std::vector<T>(), m_size(0), m_stride(0) {}
  // A table of `size` rows and `size` columns of default elements.
  explicit MDataArray2D(std::uint64_t size) : std::vector<T>(), m_size(0), m_stride(0) { Resize(size); }
  MDataArray2D(MDataArray2D const &) = default;
  MDataArray2D &operator=(MDataArray2D const &) = default;
  virtual ~MDataArray2D() = default;

  // Discards the contents and makes `size` rows and columns of default elements.
  void Resize(std::uint64_t size) {
    this->assign(static_cast<std::size_t>(size * size), T());
    m_size = size;
    m_stride = size;
  }
  std::uint64_t GetSize() const { return m_size; }
  std::uint64_t GetStride() const { return m_stride; }

  // Unchecked element access.
  T &operator()(std::uint64_t row, std::uint64_t column) {
    return (*this)[static_cast<std::size_t>(m_stride * row + column)];
  }
  T const &operator()(std::uint64_t row, std::uint64_t column) const {
    return (*this)[static_cast<std::size_t>(m_stride * row + column)];
  }
  // Checked element access: the standard out-of-range exception beyond the
  // stored elements.
  T &At(std::uint64_t row, std::uint64_t column) { return this->at(static_cast<std::size_t>(m_stride * row + column)); }
  T const &At(std::uint64_t row, std::uint64_t column) const {
    return this->at(static_cast<std::size_t>(m_stride * row + column));
  }

 private:
  std::uint64_t m_size;
  std::uint64_t m_stride;
};

// One set in the tree.
struct MRegisteredTreeNode {
  MMTransformMatrix relativeTransform;                  // placement relative to the parent; identity when new
  MMTransformMatrix wcsTransform;                       // placement in the world frame; identity when new
  MRegistrationCostInfo cost;                           // cost of the edge to the parent; infinite when new
  std::list<std::uint64_t> children;                    // in the order of attachment
  std::uint64_t index = KorMathRegistration::kNoIndex;  // own index once reached by an edge
};

// MRegistered3DPointsTree: the minimum spanning tree of the cost graph,
// grown from a root by Prim's method on the dense table (every edge rescans
// the whole table, O(n^2) per edge, no priority queue), then the relative
// transforms chained down the tree. Works on indices only.
class KORMATH_API MRegistered3DPointsTree {
 public:
  MRegistered3DPointsTree();
  ~MRegistered3DPointsTree();

  // Grows the tree. `costs` and `transforms` have one row and column per set;
  // transforms(i, j) places set i relative to set j; wcsTransforms[i] is the
  // placement of set i before the tree is evaluated. Returns false, tree
  // untouched, for fewer than 2 sets; otherwise true, also when the tree
  // does not reach every set (those keep index all-ones, identity transforms
  // and infinite cost).
  //
  // Edge choice: among edges from a placed set i to an unplaced set j, the
  // cost at row i, column j that is strictly smallest by
  // MRegistrationCostInfo::operator<; ties go to the smallest i, then the
  // smallest j. An edge whose cost is exactly the infinite cost is never
  // chosen: leaving the default value in the table forbids an edge. The
  // chosen edge is recorded from row `to`, column `from` (cost and
  // transform): the table is read in two directions on purpose, which
  // matters only when it is not symmetric.
  //
  // Nodes that already exist keep their state (children included): Build is
  // meant for a new tree. A first search from set 0 runs before the one from
  // `root` and leaves no trace. Tables smaller than n by n or a short
  // wcsTransforms meet the standard out-of-range exception; a root of n or
  // above is a caller error (here also the out-of-range exception).
  bool Build(MDataArray2D<MRegistrationCostInfo> const &costs, MDataArray2D<MMTransformMatrix> const &transforms,
             std::vector<MMTransformMatrix> const &wcsTransforms, std::uint64_t const &root);

  // Depth first from the root, children in attachment order: each node's
  // wcs transform becomes parent wcs * relative (relative applied first,
  // by PreMultiply). The root keeps its wcs transform. Throws the standard
  // out-of-range exception when the root is all-ones or not below the
  // number of nodes.
  void UpdateWcsTransforms();

  // Read access for the host.
  std::vector<MRegisteredTreeNode> const &GetNodes() const { return m_nodes; }
  MRegisteredTreeNode const &GetNode(std::uint64_t index) const { return m_nodes.at(static_cast<std::size_t>(index)); }
  std::uint64_t GetRoot() const { return m_root; }
  // The parent of a node, or all-ones for the root and for unreached nodes.
  std::uint64_t GetParent(std::uint64_t index) const;

 private:
  void _Visit(std::uint64_t index, MMTransformMatrix const &parent);

  std::vector<MRegisteredTreeNode> m_nodes;
  std::uint64_t m_root;
};

#endif  // KORMATH_REGISTRATION_REGISTRATION_TREE_H
